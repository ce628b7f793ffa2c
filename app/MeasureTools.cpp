#include "MeasureTools.h"

#include "AreaPicking.h"
#include "BoxOverlay.h"
#include "FrameDisplay.h"
#include "FrameSelection.h"
#include "PointTableRow.h"
#include "RangingOverlay.h"
#include "ScreenPicking.h"
#include "StatusReadouts.h"

#include <QAbstractButton>
#include <QMouseEvent>
#include <QStandardItemModel>
#include <QStatusBar>
#include <QVTKOpenGLNativeWidget.h>

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

MeasureTools::MeasureTools(const Controls& controls, const Parts& parts, std::function<int()> pointSize,
                           std::function<bool()> livePaused)
    : m_controls(controls),
      m_parts(parts),
      m_pointSize(std::move(pointSize)),
      m_livePaused(std::move(livePaused)),
      m_cursorPicker(vtkSmartPointer<vtkWorldPointPicker>::New())
{
}

MeasureTools::~MeasureTools() = default;

void MeasureTools::mouse(QMouseEvent* event)
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
void MeasureTools::hoverAt(const QPoint& position)
{
    if (m_controls.boxMode->isChecked()) {
        m_parts.readouts.clearCursor();
        return;
    }
    vtkRenderer* renderer = m_parts.viewer.getRendererCollection()->GetFirstRenderer();
    double world[3];
    measure::worldPointAt(m_cursorPicker, renderer, measure::displayFromWidget(m_controls.view, position), world);
    m_parts.readouts.showCursor(world);
    if (m_parts.ranging.isOn() && m_parts.ranging.preview(world))
        m_parts.display.render();
}

void MeasureTools::pickAt(const QPoint& position)
{
    // In box mode a click is the end of a (small) rubber band.
    if (m_controls.boxMode->isChecked())
        return;
    const FrameDisplay::Cloud& cloud = m_parts.display.cloud();
    if (cloud.points.empty() || !m_parts.viewer.contains("m_pointCloud"))
        return;
    vtkRenderer* renderer = m_parts.viewer.getRendererCollection()->GetFirstRenderer();
    const int index = measure::nearestDrawnPoint(cloud, measure::ScreenProjection::of(renderer),
                                                 measure::displayFromWidget(m_controls.view, position));
    if (index < 0)
        return;  // empty space: the marks stay as they are
    const pcl::PointXYZRGB point = cloud.points[size_t(index)];
    if (m_parts.ranging.isOn())
        rangingStep(index, point);
    else
        singlePick(index, point);
    m_parts.display.render();
}

void MeasureTools::singlePick(int index, const pcl::PointXYZRGB& point)
{
    m_controls.table->removeRows(0, m_controls.table->rowCount());
    m_parts.ranging.markSingle(point, m_pointSize());
    addPickedRow(index);
}

void MeasureTools::rangingStep(int index, const pcl::PointXYZRGB& point)
{
    float distance = 0.0f;
    if (!m_parts.ranging.addPoint(index, point, m_pointSize(), &distance)) {
        // The first of a pair is marked alone, its row alone in the table.
        m_controls.table->removeRows(0, m_controls.table->rowCount());
        addPickedRow(index);
        return;
    }
    addPickedRow(index);
    // The bearing and offsets follow the distance, which keeps its place first.
    m_controls.statusBar->showMessage(tr("Distance between two points:")
                                          + QString::number(distance, 'f', RangingMarks::kPrecision)
                                          + display::RangingBearing::text(m_parts.ranging.lastPair()),
                                      kDistanceMessageMs);
}

// The row of a picked point carries its index in the drawn cloud.
void MeasureTools::addPickedRow(int index)
{
    const FrameDisplay& display = m_parts.display;
    const lidar::LidarPoint* point =
        measure::drawnFramePoint(display.lastFrame(), display.drawnMinAngle(), display.drawnMaxAngle(), index, nullptr);
    if (!point)
        return;
    QList<QStandardItem*> row;
    for (const QString& text : pointtable::rowTexts(index, *point, display.lastView().settings.precision))
        row.append(new QStandardItem(text));
    m_controls.table->appendRow(row);
}

void MeasureTools::areaPicked(const std::vector<int>& indices)
{
    m_parts.viewer.removePointCloud("m_clickPointCloud");
    BoxOverlay& box = m_parts.box;
    box.takeExtentOf(m_parts.display.cloud(), indices);
    // A paused live display keeps the picked points; otherwise an active box
    // shows at once what it holds of the frame on screen.
    if (!m_livePaused() && box.isOn()
        && !display::selectInBox(m_parts.display.lastFrame(), box.range()).points.isEmpty()) {
        display::ViewSettings settings = m_parts.display.lastView().settings;
        settings.boxActive = true;
        settings.box = box.range();
        m_parts.display.showBox(settings);
    }
    box.setOn(true);
    m_controls.resizeRange->setEnabled(true);
}

void MeasureTools::toggleBoxSelection(bool on)
{
    resetRanging();
    if (m_controls.ranging->isChecked())
        m_controls.ranging->setChecked(false);
    measure::setAreaPicking(m_controls.view->interactor(), on);
    m_parts.readouts.clearCursor();
}

void MeasureTools::resetRanging()
{
    m_parts.ranging.setOn(false);
    m_parts.ranging.removeMarks();
    m_parts.display.render();
}

void MeasureTools::restartRangingForNewFrame()
{
    if (!m_controls.ranging->isChecked())
        return;
    m_controls.ranging->setChecked(false);
    m_controls.ranging->click();
}
