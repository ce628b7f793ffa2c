#pragma once
// Turns one frame into the coloured cloud that the view draws: the angle
// range decides which points are drawn, the colour mode (or a fixed colour)
// colours them, and the first points drawn are reported as table rows.

#include "ChangeComparison.h"
#include "LidarRecords.h"
#include "PclForward.h"
#include "PointColouring.h"

#include <cstdint>
#include <functional>
#include <limits>

namespace display {

struct CloudFillOptions {
    float minAngle = 0.0f;  // degrees, inclusive
    float maxAngle = 360.0f;
    int colourMode = IntensityColours;
    bool useFixedColour = false;  // a named colour overrides the mode
    Rgb fixedColour;
    // The Change colouring: one class per point of the frame (in ID and
    // array order, drawn or not) colours it in place of the mode.
    const std::vector<ChangeClass>* changeClasses = nullptr;
    int rowLimit = -1;            // rows to report across all IDs; -1 = every point
    bool trackDistances = false;  // the box readouts want the distance span
};

struct CloudFillResult {
    int rows = 0;
    int32_t minDistance = std::numeric_limits<int32_t>::max();
    int32_t maxDistance = std::numeric_limits<int32_t>::min();
};

using RowSink = std::function<void(int id, const lidar::LidarPoint& point)>;

// Empties `cloud` and fills it with the frame's points in ID and array order
// (width = number of points, height 1). `row` is called for each of the
// first rowLimit points drawn.
CloudFillResult fillCloud(const lidar::LidarDataPoint_V4& frame,
                          pcl::PointCloud<pcl::PointXYZRGB>& cloud, const CloudFillOptions& options,
                          const RowSink& row);

// Smallest and largest x, y, z of the cloud's points (finite points only
// when the cloud is not marked dense). An empty cloud gives min > max.
struct CloudExtent {
    float min[3];
    float max[3];
};
CloudExtent cloudExtent(const pcl::PointCloud<pcl::PointXYZRGB>& cloud);

}  // namespace display
