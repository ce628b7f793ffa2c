#pragma once
// One revolution as the two ROS messages of a bag, headers left to the
// caller. Only points whose azimuth lies in the angle range (inclusive) are
// taken, in the order of the CSV export: by ID, then as they came.
//
// - sensor_msgs/LaserScan: ranges in metres over ScanBins, +inf where no
//   point with a distance fell; where several did (the two channels of
//   Wren_Plus, neighbouring points of a packet), the nearest, with its
//   intensity. scan_time is the revolution's period, time_increment the
//   period over the bins.
// - sensor_msgs/PointCloud2: one row of points, little-endian float32 x, y,
//   z, intensity, azimuth (degrees) and distance (metres), and float64
//   timestamp (ms as the lidar stamps its points, -1 when it does not).

#include "LidarRecords.h"
#include "ModelGeometry.h"
#include "ScanBins.h"

#include <sensor_msgs/LaserScan.h>
#include <sensor_msgs/PointCloud2.h>

namespace rosscan {

struct AngleRange {
    float start = 0.0f;
    float end = 360.0f;
};

// Fills everything but the header; storage is reused from one call to the next.
void fillLaserScan(const lidar::LidarDataPoint_V4& frame, const lidar::ScanGeometry& geometry, const ScanBins& bins,
                   double periodSeconds, const AngleRange& range, sensor_msgs::LaserScan& scan);

// Sets the fields once; fillPointCloud() then only writes points.
void describePointFields(sensor_msgs::PointCloud2& cloud);
// Returns the number of points written.
qint64 fillPointCloud(const lidar::LidarDataPoint_V4& frame, const AngleRange& range,
                      sensor_msgs::PointCloud2& cloud);

}  // namespace rosscan
