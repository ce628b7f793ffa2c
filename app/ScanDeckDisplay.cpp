// ScanDeck's per-frame display path and the view controls: point size,
// angle range, camera views, axes, the table pane and clearing the view.

#include "ScanDeck.h"

#include "FrameCloud.h"
#include "FrameSelection.h"
#include "PointTableRow.h"
#include "StatusReadouts.h"
#include "ui_ScanDeck.h"

#include <QApplication>
#include <QColor>
#include <QElapsedTimer>
#include <QStandardItemModel>

#include <pcl/point_cloud.h>
#include <pcl/point_types.h>
#include <pcl/visualization/pcl_visualizer.h>
#include <vtkCamera.h>
#include <vtkGenericOpenGLRenderWindow.h>
#include <vtkRenderer.h>

namespace {
const std::string kFrameCloudId = "m_pointCloud";
const std::string kBoxCloudId = "m_boxPointCloud";
}  // namespace

void ScanDeck::showFrame(lidar::LidarDataPoint_V4 frame)
{
    QElapsedTimer clock;
    clock.start();
    m_timings = FrameTimings();

    // Drop the previous frame's picked points while ranging stays on.
    if (ui->btn_ranging->isChecked()) {
        ui->btn_ranging->setChecked(false);
        ui->btn_ranging->click();
    }

    const lidar::LidarDataPoint_V4 boxFrame =
        display::roundAndSelect(frame, m_boxActive ? &m_boxRange : nullptr);

    // Both clouds change on every frame; the screen needs one render for both.
    ++m_renderBatchDepth;
    m_drawnMinAngle = m_minAngle;
    m_drawnMaxAngle = m_maxAngle;
    updateCloud(frame, m_cloud, m_pointSize, QString(), QString::fromStdString(kFrameCloudId), m_tableRows);
    updateCloud(boxFrame, m_boxCloud, m_pointSize + 2, QStringLiteral("white"),
                QString::fromStdString(kBoxCloudId), -1);
    if (!m_boxActive)
        m_readouts->clearSelection();
    m_readouts->showFrame(frame);
    --m_renderBatchDepth;

    if (m_csvExport.isActive())
        writeCsvFrame(m_boxActive ? boxFrame : frame);
    m_lastFrame = std::move(frame);
    m_timings.ownNs = clock.nsecsElapsed() - m_timings.viewerNs;

    if (m_renderPending && m_renderBatchDepth == 0) {
        m_renderPending = false;
        QElapsedTimer renderClock;
        renderClock.start();
        m_renderWindow->Render();
        m_timings.renderNs = renderClock.nsecsElapsed();
    }
}

void ScanDeck::updateCloud(const lidar::LidarDataPoint_V4& frame, const CloudPtr& cloud, int size,
                           const QString& colourName, const QString& id, int rowLimit)
{
    display::CloudFillOptions options;
    options.minAngle = m_minAngle;
    options.maxAngle = m_maxAngle;
    options.colourMode = ui->comboBox_color_mode->currentIndex();
    if (!colourName.isEmpty()) {
        const QColor colour(colourName);
        options.useFixedColour = true;
        options.fixedColour = {uint8_t(colour.red()), uint8_t(colour.green()), uint8_t(colour.blue())};
    }
    options.rowLimit = rowLimit;
    options.trackDistances = m_boxActive;

    // An empty frame still empties the drawn cloud but leaves the table alone.
    if (!frame.points.isEmpty())
        m_tableModel->removeRows(0, m_tableModel->rowCount());
    const display::CloudFillResult filled = display::fillCloud(
        frame, *cloud, options, [this](int pointId, const lidar::LidarPoint& p) { addTableRow(pointId, p); });
    // The box readouts describe the drawn selection, empty or not.
    if (m_boxActive && cloud == m_boxCloud)
        m_readouts->showSelection(*cloud, filled.minDistance, filled.maxDistance);

    QElapsedTimer clock;
    clock.start();
    const std::string viewId = id.toStdString();
    m_viewer->removePointCloud(viewId);
    const pcl::visualization::PointCloudColorHandlerRGBField<pcl::PointXYZRGB> colours(cloud);
    m_viewer->addPointCloud<pcl::PointXYZRGB>(cloud, colours, viewId, 0);
    m_viewer->setPointCloudRenderingProperties(pcl::visualization::PCL_VISUALIZER_POINT_SIZE, size, viewId);
    m_timings.viewerNs += clock.nsecsElapsed();
    renderView();
}

void ScanDeck::addTableRow(int id, const lidar::LidarPoint& point)
{
    QList<QStandardItem*> row;
    for (const QString& text : pointtable::rowTexts(id, point, m_precision))
        row.append(new QStandardItem(text));
    m_tableModel->appendRow(row);
}

void ScanDeck::renderView()
{
    if (m_renderBatchDepth > 0)
        m_renderPending = true;
    else
        m_renderWindow->Render();
}

void ScanDeck::setPointSize(int size)
{
    m_pointSize = size;
}

// C-locale conversion; a text that is no number gives 0. No check that the
// minimum stays below the maximum: a reversed range simply shows nothing.
void ScanDeck::setMinAngle(const QString& text)
{
    m_minAngle = text.toFloat();
}

void ScanDeck::setMaxAngle(const QString& text)
{
    m_maxAngle = text.toFloat();
}

void ScanDeck::setCameraView()
{
    const QObject* button = sender();
    double position[3] = {0, 0, 0};
    double viewUp[3] = {0, 0, 0};
    auto set = [&](std::initializer_list<double> p, std::initializer_list<double> up) {
        std::copy(p.begin(), p.end(), position);
        std::copy(up.begin(), up.end(), viewUp);
    };
    if (button == ui->btn_top_view)
        set({0, 0, 15}, {0, 1, 0});
    else if (button == ui->btn_left_view)
        set({-10, 0, 5}, {0, 0, 1});
    else if (button == ui->btn_right_view)
        set({10, 0, 5}, {0, 0, 1});
    else if (button == ui->btn_front_view)
        set({0, -10, 5}, {0, 0, 1});
    vtkCamera* camera = renderer()->GetActiveCamera();
    camera->SetPosition(position);
    camera->SetViewUp(viewUp);
    renderer()->ResetCamera();
    renderView();
}

void ScanDeck::showAxes(bool on)
{
    if (on)
        m_viewer->addCoordinateSystem(1.5, "coordinate", 0);
    else
        m_viewer->removeCoordinateSystem("coordinate", 0);
    renderView();
}

// The pane slides open or shut over a few steps, the window staying live.
void ScanDeck::toggleTablePane(bool open)
{
    const QList<int> sizes = ui->splitter->sizes();
    const int total = sizes.value(0) + sizes.value(1);
    const int start = sizes.value(0);
    const int target = open ? std::min(520, total * 2 / 5) : 0;
    constexpr int kSteps = 8;
    for (int step = 1; step <= kSteps; ++step) {
        const int width = start + (target - start) * step / kSteps;
        ui->splitter->setSizes({width, total - width});
        QElapsedTimer pause;
        pause.start();
        while (pause.elapsed() < 15)
            QApplication::processEvents(QEventLoop::AllEvents, 5);
    }
}

void ScanDeck::clearView()
{
    // The grid button is deliberately left as it is, although its lines go too.
    if (ui->btn_polar->isChecked())
        ui->btn_polar->click();
    if (ui->btn_axis->isChecked())
        ui->btn_axis->click();
    m_tableModel->removeRows(0, m_tableModel->rowCount());
    m_viewer->removeAllShapes();
    m_viewer->removeAllPointClouds();
    renderView();
    m_boxActive = false;
    ui->btn_resize_range->setEnabled(false);
}

void ScanDeck::setTableRows(int rows)
{
    m_tableRows = rows;
}

void ScanDeck::setTablePrecision(int precision)
{
    m_precision = precision;
}
