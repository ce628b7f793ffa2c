#include "BoxOverlay.h"

#include "FrameCloud.h"
#include "FramePipeline.h"

#include <pcl/point_cloud.h>
#include <pcl/point_types.h>

BoxOverlay::BoxOverlay(DrawCloud draw, std::function<int()> pointSize)
    : m_draw(std::move(draw)), m_pointSize(std::move(pointSize)), m_cloud(std::make_shared<Cloud>())
{
}

void BoxOverlay::frameShown(const display::FrameView& view)
{
    if (view.boxCloud)
        m_cloud->swap(*view.boxCloud);
    m_draw(m_cloud, "m_boxPointCloud", m_pointSize() + 2);
}

void BoxOverlay::takeExtentOf(const Cloud& drawn, const std::vector<int>& indices)
{
    m_cloud->points.clear();
    for (int index : indices)
        if (index >= 0 && size_t(index) < drawn.points.size())
            m_cloud->points.push_back(drawn.points[size_t(index)]);
    m_cloud->width = uint32_t(m_cloud->points.size());
    m_cloud->height = 1;
    const display::CloudExtent extent = display::cloudExtent(*m_cloud);
    m_range = {{extent.min[0], extent.min[1], extent.min[2], 1.0f}, {extent.max[0], extent.max[1], extent.max[2], 1.0f}};
}
