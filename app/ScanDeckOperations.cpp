// Operations of the overlays, box selection, ranging and the device panel
// (the live link's are in ScanDeckLive.cpp, the exports' in
// ScanDeckExport.cpp). Each is wired to its control already; the ones
// without a body yet only keep what they are given.

#include "ScanDeck.h"

#include "FrameCloud.h"
#include "FrameSelection.h"
#include "LidarAnalysis.h"
#include "ui_ScanDeck.h"

#include <pcl/point_cloud.h>
#include <pcl/point_types.h>
#include <pcl/visualization/pcl_visualizer.h>

void ScanDeck::showGrid(bool on)
{
    IGridPolar::showGrid(on);
}

void ScanDeck::showPolar(bool on)
{
    IGridPolar::showPolar(on);
}

void ScanDeck::setBoxRange(const BoxCorner& min, const BoxCorner& max)
{
    m_boxRange = {min, max};
}

BoxRange ScanDeck::getBoxRange() const
{
    return m_boxRange;
}

void ScanDeck::setRangingMode(bool on)
{
    m_rangingActive = on ? 1 : 0;
}

void ScanDeck::toggleBoxSelection(bool on)
{
    Q_UNUSED(on);
}

// The view reports the points of the displayed cloud inside the dragged
// rectangle; their bounding box becomes the selection box.
void ScanDeck::areaPicked(const std::vector<int>& indices)
{
    m_viewer->removePointCloud("m_clickPointCloud");
    m_boxCloud->points.clear();
    for (int index : indices) {
        if (index >= 0 && size_t(index) < m_cloud->points.size())
            m_boxCloud->points.push_back(m_cloud->points[size_t(index)]);
    }
    m_boxCloud->width = uint32_t(m_boxCloud->points.size());
    m_boxCloud->height = 1;
    // An empty pick leaves min above max: a box that holds nothing.
    const display::CloudExtent extent = display::cloudExtent(*m_boxCloud);
    m_boxRange = {{extent.min[0], extent.min[1], extent.min[2], 1.0f},
                  {extent.max[0], extent.max[1], extent.max[2], 1.0f}};

    const bool paused = m_live.isConnected() && !m_playing;
    if (!paused && m_boxActive) {
        const lidar::LidarDataPoint_V4 selection = display::selectInBox(m_lastFrame, m_boxRange);
        if (!selection.points.isEmpty())
            updateCloud(selection, m_boxCloud, m_pointSize + 2, QStringLiteral("white"),
                        QStringLiteral("m_boxPointCloud"), -1);
    }
    m_boxActive = true;
    ui->btn_resize_range->setEnabled(true);
}

void ScanDeck::showBoxRangeDialog() {}

void ScanDeck::showSelectionReadouts(const display::CloudExtent& extent, const display::CloudFillResult& filled)
{
    Q_UNUSED(extent);
    Q_UNUSED(filled);
}

void ScanDeck::showGridPolarDialog() {}

void ScanDeck::toggleGpsTest() {}

void ScanDeck::startNetworkTool() {}

void ScanDeck::setMotorFrequencyFromText(const QString& text)
{
    if (m_live.session())
        m_live.session()->SetDeviceParam(static_cast<quint8>(text.toInt() & 0xFF));
}

void ScanDeck::configureDevicePanel(const QString& group)
{
    Q_UNUSED(group);
}
