#include "FrameCloud.h"

#include "ChangeColouring.h"

#include <pcl/point_cloud.h>
#include <pcl/point_types.h>

#include <cmath>

namespace display {

CloudFillResult fillCloud(const lidar::LidarDataPoint_V4& frame,
                          pcl::PointCloud<pcl::PointXYZRGB>& cloud, const CloudFillOptions& options,
                          const RowSink& row)
{
    CloudFillResult result;
    cloud.points.clear();
    cloud.points.reserve(frame.pointCount());
    const std::vector<ChangeClass>* changes =
        options.changeClasses && options.changeClasses->size() == frame.pointCount() ? options.changeClasses : nullptr;
    size_t index = 0;
    for (auto line = frame.points.cbegin(); line != frame.points.cend(); ++line) {
        for (const lidar::LidarPoint& p : line.value()) {
            const size_t at = index++;
            if (!inAngleRange(p.azimuth, options.minAngle, options.maxAngle))
                continue;
            const Rgb c = options.useFixedColour ? options.fixedColour
                : changes                        ? changeColour((*changes)[at])
                                                 : modeColour(options.colourMode, p);
            pcl::PointXYZRGB point(c.r, c.g, c.b);  // alpha 255, fourth coordinate 1
            point.x = p.x;
            point.y = p.y;
            point.z = p.z;
            cloud.points.push_back(point);
            if (row && (options.rowLimit == -1 || result.rows < options.rowLimit)) {
                row(line.key(), p);
                ++result.rows;
            }
            if (options.trackDistances) {
                result.minDistance = std::min(result.minDistance, p.distance);
                result.maxDistance = std::max(result.maxDistance, p.distance);
            }
        }
    }
    cloud.width = static_cast<uint32_t>(cloud.points.size());
    cloud.height = 1;
    return result;
}

CloudExtent cloudExtent(const pcl::PointCloud<pcl::PointXYZRGB>& cloud)
{
    CloudExtent e;
    for (int axis = 0; axis < 3; ++axis) {
        e.min[axis] = std::numeric_limits<float>::max();
        e.max[axis] = std::numeric_limits<float>::lowest();
    }
    for (const pcl::PointXYZRGB& p : cloud.points) {
        if (!cloud.is_dense && !(std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z)))
            continue;
        const float xyz[3] = {p.x, p.y, p.z};
        for (int axis = 0; axis < 3; ++axis) {
            e.min[axis] = std::min(e.min[axis], xyz[axis]);
            e.max[axis] = std::max(e.max[axis], xyz[axis]);
        }
    }
    return e;
}

}  // namespace display
