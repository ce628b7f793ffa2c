// Operations of the overlays, box selection and ranging. The live link's
// are in ScanDeckLive.cpp, the device panel's in ScanDeckDevice.cpp, the
// exports' in ScanDeckExport.cpp.

#include "ScanDeck.h"

#include "AreaPicking.h"
#include "BoxSelectionDialog.h"
#include "FrameCloud.h"
#include "FrameSelection.h"
#include "GridPolarDialog.h"
#include "LidarAnalysis.h"
#include "OverlayPainter.h"
#include "RangingMarks.h"
#include "StatusReadouts.h"
#include "ui_ScanDeck.h"

#include <QVTKOpenGLNativeWidget.h>

#include <pcl/point_cloud.h>
#include <pcl/point_types.h>
#include <pcl/visualization/pcl_visualizer.h>

void ScanDeck::showGrid(bool on)
{
    IGridPolar::showGrid(on);
    if (on)
        ui->btn_grid->setChecked(true);
    m_overlays->redrawGrid(*this, m_overlayCount);
    renderView();
}

void ScanDeck::showPolar(bool on)
{
    IGridPolar::showPolar(on);
    if (on)
        ui->btn_polar->setChecked(true);
    m_overlays->redrawPolar(*this, m_overlayCount);
    renderView();
}

// The edited box applies to the frame on screen at once, like a new frame.
void ScanDeck::setBoxRange(const BoxCorner& min, const BoxCorner& max)
{
    m_boxRange = {min, max};
    if (ui->btn_ranging->isChecked()) {
        ui->btn_ranging->setChecked(false);
        ui->btn_ranging->click();
    }
    const lidar::LidarDataPoint_V4 selection =
        display::roundAndSelect(m_lastFrame, m_boxActive ? &m_boxRange : nullptr);
    updateCloud(selection, m_boxCloud, m_pointSize + 2, QStringLiteral("white"), QStringLiteral("m_boxPointCloud"),
                -1);
}

BoxRange ScanDeck::getBoxRange() const
{
    return m_boxRange;
}

// Each (re)start of ranging forgets the pair shown with the last frame; a
// first point still waiting for its partner is kept (RangingMarks).
void ScanDeck::setRangingMode(bool on)
{
    m_rangingActive = on ? 1 : 0;
    m_pickedPoints[0] = m_pickedPoints[1] = ScenePoint();
}

// "Point Cloud Box": while on, a left drag in the view selects an area
// instead of turning the camera, and the cursor readouts rest.
void ScanDeck::toggleBoxSelection(bool on)
{
    resetMeasurement();
    if (ui->btn_ranging->isChecked())
        ui->btn_ranging->setChecked(false);
    measure::setAreaPicking(ui->openGLWidget->interactor(), on);
    m_readouts->clearCursor();
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

// Made on first use and kept, so that it opens as it was left.
void ScanDeck::showBoxRangeDialog()
{
    if (!m_boxDialog)
        m_boxDialog = new BoxSelectionDialog(this, this);
    m_boxDialog->exec();
}

void ScanDeck::showGridPolarDialog()
{
    if (!m_gridPolarDialog)
        m_gridPolarDialog = new GridPolarDialog(this, this);
    m_gridPolarDialog->exec();
}
