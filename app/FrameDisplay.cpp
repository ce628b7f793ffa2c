#include "FrameDisplay.h"

#include "StatusReadouts.h"
#include "ViewOverlay.h"

#include <QElapsedTimer>
#include <QStandardItemModel>

#include <pcl/point_cloud.h>
#include <pcl/point_types.h>
#include <pcl/visualization/pcl_visualizer.h>
#include <vtkRenderWindow.h>

FrameDisplay::FrameDisplay(pcl::visualization::PCLVisualizer& viewer, vtkRenderWindow* renderWindow,
                           QStandardItemModel* table)
    : m_viewer(viewer), m_renderWindow(renderWindow), m_table(table), m_cloud(std::make_shared<Cloud>())
{
}

display::FrameView FrameDisplay::view(lidar::LidarDataPoint_V4 frame, const display::ViewSettings& settings)
{
    return display::frameView(std::move(frame), settings);
}

const display::FrameView& FrameDisplay::show(lidar::LidarDataPoint_V4 frame, const display::ViewSettings& settings,
                                             int pointSize)
{
    QElapsedTimer clock;
    clock.start();
    m_timings = Timings();
    m_last = display::frameView(std::move(frame), settings);
    m_last.drawnAgain = m_showingAgain;
    // Both clouds change with every frame; the screen needs one render for all.
    ++m_batchDepth;
    // The drawn cloud stays one object, which the picking tools hold.
    m_cloud->swap(*m_last.cloud);
    m_last.cloud = m_cloud;
    drawCloud(m_cloud, "m_pointCloud", pointSize);
    fillTable(m_last);
    if (m_readouts) {
        m_readouts->showFrame(m_last.frame);
        m_readouts->showSelection(m_last.selection, m_last.boxActive);
    }
    for (ViewOverlay* overlay : m_overlays)
        overlay->frameShown(m_last);
    --m_batchDepth;
    m_timings.ownNs = clock.nsecsElapsed() - m_timings.viewerNs;
    if (m_renderPending && m_batchDepth == 0) {
        m_renderPending = false;
        QElapsedTimer renderClock;
        renderClock.start();
        m_renderWindow->Render();
        m_timings.renderNs = renderClock.nsecsElapsed();
    }
    return m_last;
}

const display::FrameView& FrameDisplay::showAgain(const display::ViewSettings& settings, int pointSize)
{
    m_showingAgain = true;
    show(m_last.frame, settings, pointSize);
    m_showingAgain = false;
    return m_last;
}

const display::FrameView& FrameDisplay::showBox(const display::ViewSettings& settings)
{
    const display::FrameView box = display::boxView(m_last.frame, settings);
    m_last.boxFrame = box.boxFrame;
    m_last.boxCloud = box.boxCloud;
    m_last.boxActive = box.boxActive;
    m_last.selection = box.selection;
    m_last.settings = box.settings;
    m_last.drawnAgain = true;
    ++m_batchDepth;
    fillTable(box);
    if (m_readouts)
        m_readouts->showSelection(box.selection, box.boxActive);
    for (ViewOverlay* overlay : m_overlays)
        overlay->frameShown(m_last);
    --m_batchDepth;
    render();
    return m_last;
}

void FrameDisplay::fillTable(const display::FrameView& view)
{
    if (!view.tableChanges)
        return;
    m_table->removeRows(0, m_table->rowCount());
    for (const QStringList& texts : view.tableRows) {
        QList<QStandardItem*> row;
        for (const QString& text : texts)
            row.append(new QStandardItem(text));
        m_table->appendRow(row);
    }
}

void FrameDisplay::drawCloud(const std::shared_ptr<Cloud>& cloud, const char* id, int pointSize)
{
    QElapsedTimer clock;
    clock.start();
    m_viewer.removePointCloud(id);
    const pcl::visualization::PointCloudColorHandlerRGBField<pcl::PointXYZRGB> colours(cloud);
    m_viewer.addPointCloud<pcl::PointXYZRGB>(cloud, colours, id, 0);
    m_viewer.setPointCloudRenderingProperties(pcl::visualization::PCL_VISUALIZER_POINT_SIZE, pointSize, id);
    m_timings.viewerNs += clock.nsecsElapsed();
    render();
}

void FrameDisplay::render()
{
    if (m_batchDepth > 0)
        m_renderPending = true;
    else
        m_renderWindow->Render();
}
