#pragma once
// The points of PCD and PLY files: x, y, z and intensity as point cloud
// tools expect them, then azimuth (degrees), distance (metres), the point's
// timestamp (ms, -1 when the model has none), the frame number and the ID.
// PLY has no 64-bit integers, so its timestamp is a double, which holds
// every millisecond count exactly.

#define PCL_NO_PRECOMPILE
#include <pcl/point_types.h>
#include <pcl/register_point_struct.h>

#include <cstdint>

namespace cloudfile {

struct EIGEN_ALIGN16 PcdPoint {
    PCL_ADD_POINT4D;
    float intensity;
    float azimuth;
    float distance;
    std::int64_t timestamp;
    std::uint32_t frame;
    std::int32_t id;
    PCL_MAKE_ALIGNED_OPERATOR_NEW
};

struct EIGEN_ALIGN16 PlyPoint {
    PCL_ADD_POINT4D;
    float intensity;
    float azimuth;
    float distance;
    double timestamp;
    std::uint32_t frame;
    std::int32_t id;
    PCL_MAKE_ALIGNED_OPERATOR_NEW
};

}  // namespace cloudfile

POINT_CLOUD_REGISTER_POINT_STRUCT(cloudfile::PcdPoint,
                                  (float, x, x)(float, y, y)(float, z, z)(float, intensity, intensity)
                                  (float, azimuth, azimuth)(float, distance, distance)
                                  (std::int64_t, timestamp, timestamp)(std::uint32_t, frame, frame)
                                  (std::int32_t, id, id))

POINT_CLOUD_REGISTER_POINT_STRUCT(cloudfile::PlyPoint,
                                  (float, x, x)(float, y, y)(float, z, z)(float, intensity, intensity)
                                  (float, azimuth, azimuth)(float, distance, distance)
                                  (double, timestamp, timestamp)(std::uint32_t, frame, frame)
                                  (std::int32_t, id, id))
