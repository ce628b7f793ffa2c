// ScanDeck and the mouse over the 3D view: the readouts of what is under the
// cursor, the ranging rubber band, and clicks that pick a point for the
// table or for a ranging pair.

#include "ScanDeck.h"

#include "RangingMarks.h"
#include "ScreenPicking.h"
#include "StatusReadouts.h"
#include "ui_ScanDeck.h"

#include <QMouseEvent>
#include <QStandardItemModel>
#include <QStatusBar>

#include <pcl/point_cloud.h>
#include <pcl/point_types.h>
#include <pcl/visualization/pcl_visualizer.h>
#include <vtkRenderer.h>
#include <vtkWorldPointPicker.h>

namespace {
// A press and release this close together is a click, not a camera drag.
constexpr int kClickSlopPixels = 3;
// The ranging distance message stays this long in the status bar.
constexpr int kDistanceMessageMs = 5000;
}  // namespace

void ScanDeck::handleViewMouse(QMouseEvent* event)
{
    switch (event->type()) {
    case QEvent::MouseButtonPress:
        if (event->button() == Qt::LeftButton)
            m_pressPosition = event->pos();
        break;
    case QEvent::MouseButtonRelease:
        if (event->button() == Qt::LeftButton && m_pressPosition.x() >= 0
            && (event->pos() - m_pressPosition).manhattanLength() <= kClickSlopPixels)
            pickAt(event->pos());
        m_pressPosition = QPoint(-1, -1);
        break;
    case QEvent::MouseMove:
        hoverAt(event->pos());
        break;
    default:
        break;
    }
}

// Readouts alone change labels only: no render. The rubber band redraws.
void ScanDeck::hoverAt(const QPoint& position)
{
    if (ui->btn_point_cloud_select->isChecked()) {
        m_readouts->clearCursor();
        return;
    }
    double world[3];
    measure::worldPointAt(m_cursorPicker, renderer(), measure::displayFromWidget(ui->openGLWidget, position), world);
    m_readouts->showCursor(world);
    if (m_rangingActive && m_ranging->preview(world))
        renderView();
}

void ScanDeck::pickAt(const QPoint& position)
{
    // In box mode a click is the end of a (small) rubber band.
    if (ui->btn_point_cloud_select->isChecked())
        return;
    if (m_cloud->points.empty() || !m_viewer->contains("m_pointCloud"))
        return;
    const int index = measure::nearestDrawnPoint(*m_cloud, measure::ScreenProjection::of(renderer()),
                                                 measure::displayFromWidget(ui->openGLWidget, position));
    if (index < 0)
        return;  // empty space: the marks stay as they are
    const pcl::PointXYZRGB point = m_cloud->points[size_t(index)];
    if (m_rangingActive)
        rangingStep(index, point);
    else
        singlePick(index, point);
    renderView();
}

void ScanDeck::singlePick(int index, const pcl::PointXYZRGB& point)
{
    m_tableModel->removeRows(0, m_tableModel->rowCount());
    m_ranging->markSingle(point, m_pointSize);
    addPickedRow(index);
}

void ScanDeck::rangingStep(int index, const pcl::PointXYZRGB& point)
{
    float distance = 0.0f;
    const RangingMarks::Step step = m_ranging->addRangingPoint(index, point, m_pointSize, &distance);
    ScenePoint& picked = m_pickedPoints[step == RangingMarks::Step::FirstOfPair ? 0 : 1];
    picked.x = point.x, picked.y = point.y, picked.z = point.z;
    picked.r = point.r, picked.g = point.g, picked.b = point.b;
    if (step == RangingMarks::Step::FirstOfPair) {
        singlePick(index, point);
        return;
    }
    addPickedRow(index);
    statusBar()->showMessage(tr("Distance between two points:")
                                 + QString::number(distance, 'f', RangingMarks::kPrecision),
                             kDistanceMessageMs);
}

// The row of a picked point carries its index in the displayed cloud.
void ScanDeck::addPickedRow(int index)
{
    if (const lidar::LidarPoint* point =
            measure::drawnFramePoint(m_lastFrame, m_drawnMinAngle, m_drawnMaxAngle, index, nullptr))
        addTableRow(index, *point);
}

void ScanDeck::resetMeasurement()
{
    m_rangingActive = 0;
    m_ranging->removeMarks();
    renderView();
}
