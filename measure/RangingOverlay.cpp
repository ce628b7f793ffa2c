#include "RangingOverlay.h"

#include <pcl/point_cloud.h>
#include <pcl/point_types.h>

RangingOverlay::RangingOverlay(pcl::visualization::PCLVisualizer& viewer, std::shared_ptr<Cloud> boxCloud)
    : m_clickCloud(std::make_shared<Cloud>()), m_marks(viewer, m_clickCloud, std::move(boxCloud))
{
}

void RangingOverlay::setOn(bool on)
{
    m_active = on;
    m_picked[0] = m_picked[1] = ScenePoint();
}

bool RangingOverlay::addPoint(int index, const pcl::PointXYZRGB& point, int pointSize, float* distance)
{
    const RangingMarks::Step step = m_marks.addRangingPoint(index, point, pointSize, distance);
    ScenePoint& picked = m_picked[step == RangingMarks::Step::FirstOfPair ? 0 : 1];
    picked.x = point.x, picked.y = point.y, picked.z = point.z;
    picked.r = point.r, picked.g = point.g, picked.b = point.b;
    if (step == RangingMarks::Step::FirstOfPair) {
        markSingle(point, pointSize);
        return false;
    }
    return true;
}
