#include "RosScanMessages.h"

#include "display/AngleRange.h"

#include <QtEndian>
#include <cmath>
#include <cstring>
#include <limits>

namespace rosscan {
namespace {

constexpr double kDegree = M_PI / 180.0;

bool inRange(const lidar::LidarPoint& p, const AngleRange& range)
{
    return display::inAngleRange(p.azimuth, range.start, range.end);
}

float metres(int32_t millimetres)
{
    return float(millimetres / 1000.0);
}

struct FieldLayout {
    const char* name;
    uint32_t offset;
    uint8_t type;
};
constexpr FieldLayout kFields[] = {
    {"x", 0, sensor_msgs::PointField::FLOAT32},         {"y", 4, sensor_msgs::PointField::FLOAT32},
    {"z", 8, sensor_msgs::PointField::FLOAT32},         {"intensity", 12, sensor_msgs::PointField::FLOAT32},
    {"azimuth", 16, sensor_msgs::PointField::FLOAT32},  {"distance", 20, sensor_msgs::PointField::FLOAT32},
    {"timestamp", 24, sensor_msgs::PointField::FLOAT64},
};
constexpr uint32_t kPointStep = 32;

template <typename T>
void putLittleEndian(uint8_t* at, T value)
{
    qToLittleEndian(value, at);
}

}  // namespace

void fillLaserScan(const lidar::LidarDataPoint_V4& frame, const lidar::ScanGeometry& geometry, const ScanBins& bins,
                   double periodSeconds, const AngleRange& range, sensor_msgs::LaserScan& scan)
{
    const int count = bins.count();
    const double increment = bins.incrementDegrees() * kDegree;
    scan.angle_min = 0.0f;
    scan.angle_increment = float(increment);
    scan.angle_max = float((count - 1) * increment);
    scan.scan_time = float(periodSeconds);
    scan.time_increment = float(periodSeconds / count);
    scan.range_min = float(geometry.rangeMin);
    scan.range_max = float(geometry.rangeMax);
    scan.ranges.assign(size_t(count), std::numeric_limits<float>::infinity());
    scan.intensities.assign(size_t(count), 0.0f);
    for (const auto& line : frame.points) {
        for (const lidar::LidarPoint& p : line) {
            if (p.distance <= 0 || !inRange(p, range))
                continue;  // no echo
            const int bin = bins.binOf(p.azimuth);
            const float r = metres(p.distance);
            if (r < scan.ranges[size_t(bin)]) {
                scan.ranges[size_t(bin)] = r;
                scan.intensities[size_t(bin)] = float(p.intensity);
            }
        }
    }
}

void describePointFields(sensor_msgs::PointCloud2& cloud)
{
    cloud.fields.clear();
    for (const FieldLayout& f : kFields) {
        sensor_msgs::PointField field;
        field.name = f.name;
        field.offset = f.offset;
        field.datatype = f.type;
        field.count = 1;
        cloud.fields.push_back(field);
    }
    cloud.height = 1;
    cloud.is_bigendian = false;
    cloud.point_step = kPointStep;
    cloud.is_dense = true;  // every point has finite coordinates
}

qint64 fillPointCloud(const lidar::LidarDataPoint_V4& frame, const AngleRange& range,
                      sensor_msgs::PointCloud2& cloud)
{
    cloud.data.resize(frame.pointCount() * kPointStep);
    uint8_t* at = cloud.data.data();
    qint64 written = 0;
    for (const auto& line : frame.points) {
        for (const lidar::LidarPoint& p : line) {
            if (!inRange(p, range))
                continue;
            putLittleEndian(at + 0, p.x);
            putLittleEndian(at + 4, p.y);
            putLittleEndian(at + 8, p.z);
            putLittleEndian(at + 12, float(p.intensity));
            putLittleEndian(at + 16, p.azimuth);
            putLittleEndian(at + 20, metres(p.distance));
            putLittleEndian(at + 24, double(p.timestamp));
            at += kPointStep;
            ++written;
        }
    }
    cloud.data.resize(size_t(written) * kPointStep);
    cloud.width = uint32_t(written);
    cloud.row_step = uint32_t(written) * kPointStep;
    return written;
}

}  // namespace rosscan
