#include "SectorOverlay.h"

#include "FacingLabels.h"
#include "FramePipeline.h"

#include <pcl/visualization/pcl_visualizer.h>
#include <vtkActor.h>
#include <vtkCellArray.h>
#include <vtkPoints.h>
#include <vtkPolyData.h>
#include <vtkPolyDataMapper.h>
#include <vtkProperty.h>
#include <vtkRenderer.h>

#include <algorithm>
#include <cmath>

namespace {

// Glyph height of the labels, metres.
constexpr double kLabelScale = 0.12;
// The edges reach a little past the farthest nearest return, in whole
// metres so that they are not rebuilt for every frame's noise.
constexpr double kFewestEdgeMetres = 2.0;

vtkRenderer* firstRenderer(pcl::visualization::PCLVisualizer& viewer)
{
    return viewer.getRendererCollection()->GetFirstRenderer();
}

vtkSmartPointer<vtkActor> actorOf(vtkPolyData* geometry)
{
    auto mapper = vtkSmartPointer<vtkPolyDataMapper>::New();
    mapper->SetInputData(geometry);
    auto actor = vtkSmartPointer<vtkActor>::New();
    actor->SetMapper(mapper);
    return actor;
}

void groundPoint(double azimuth, double radius, double out[3])
{
    const double a = azimuth * M_PI / 180.0;
    out[0] = std::sin(a) * radius;
    out[1] = std::cos(a) * radius;
    out[2] = 0.0;
}

}  // namespace

SectorOverlay::SectorOverlay(pcl::visualization::PCLVisualizer& viewer, std::function<void()> render)
    : m_viewer(viewer),
      m_render(std::move(render)),
      m_labels(vtkSmartPointer<FacingLabels>::New()),
      m_nearestPoint(vtkSmartPointer<vtkPoints>::New())
{
    m_labels->GetProperty()->SetColor(1.0, 0.85, 0.2);
    m_nearestPoint->InsertNextPoint(0.0, 0.0, 0.0);
    auto vertex = vtkSmartPointer<vtkCellArray>::New();
    const vtkIdType only = 0;
    vertex->InsertNextCell(1, &only);
    auto geometry = vtkSmartPointer<vtkPolyData>::New();
    geometry->SetPoints(m_nearestPoint);
    geometry->SetVerts(vertex);
    m_nearest = actorOf(geometry);
    m_nearest->GetProperty()->SetColor(1.0, 0.0, 1.0);
    m_nearest->GetProperty()->SetPointSize(14.0f);
}

SectorOverlay::~SectorOverlay() = default;

void SectorOverlay::setOn(bool on)
{
    m_on = on;
    if (!on) {
        remove();
        m_minima = display::SectorMinima();
        if (m_listener)
            m_listener();
    }
    m_render();
}

void SectorOverlay::setSectors(int sectors)
{
    m_sectors = std::clamp(sectors, display::kFewestSectors, display::kMostSectors);
}

void SectorOverlay::frameShown(const display::FrameView& view)
{
    if (!m_on)
        return;
    m_minima = display::sectorMinima(view.frame, m_sectors, view.settings.minAngle, view.settings.maxAngle);
    draw();
    if (m_listener)
        m_listener();
}

void SectorOverlay::viewCleared()
{
    m_minima = display::SectorMinima();
}

QString SectorOverlay::labelText(const display::SectorNearest& sector)
{
    if (!sector.found)
        return QStringLiteral("–");
    return QStringLiteral("%1 m %2°").arg(sector.distanceM, 0, 'f', 2).arg(sector.azimuth, 0, 'f', 0);
}

void SectorOverlay::ensureAdded(vtkActor* actor, const char* id)
{
    if (m_viewer.contains(id))
        return;
    firstRenderer(m_viewer)->AddActor(actor);
    (*m_viewer.getShapeActorMap())[id] = actor;
}

void SectorOverlay::remove()
{
    for (const char* id : {kEdgesId, kLabelsId, kNearestId})
        if (m_viewer.contains(id))
            m_viewer.removeShape(id);
}

void SectorOverlay::drawEdges(double radius)
{
    if (m_edges && m_edgesSectors == m_minima.sectors.size() && m_edgesRadius == radius)
        return;
    auto points = vtkSmartPointer<vtkPoints>::New();
    auto lines = vtkSmartPointer<vtkCellArray>::New();
    const vtkIdType centre = points->InsertNextPoint(0.0, 0.0, 0.0);
    for (const display::SectorNearest& sector : m_minima.sectors) {
        double end[3];
        groundPoint(sector.fromAzimuth, radius, end);
        const vtkIdType line[2] = {centre, points->InsertNextPoint(end)};
        lines->InsertNextCell(2, line);
    }
    auto geometry = vtkSmartPointer<vtkPolyData>::New();
    geometry->SetPoints(points);
    geometry->SetLines(lines);
    if (m_edges && m_viewer.contains(kEdgesId))
        m_viewer.removeShape(kEdgesId);
    m_edges = actorOf(geometry);
    m_edges->GetProperty()->SetColor(1.0, 0.85, 0.2);
    m_edges->GetProperty()->SetOpacity(0.6);
    m_edges->ForceOpaqueOn();  // no translucent pass for a few lines
    m_edgesSectors = m_minima.sectors.size();
    m_edgesRadius = radius;
}

void SectorOverlay::draw()
{
    double farthest = 0.0;
    std::vector<FacingLabels::Label> labels;
    labels.reserve(size_t(m_minima.sectors.size()));
    for (int i = 0; i < m_minima.sectors.size(); ++i) {
        const display::SectorNearest& sector = m_minima.sectors[i];
        if (!sector.found)
            continue;
        farthest = std::max(farthest, sector.distanceM);
        FacingLabels::Label label;
        label.id = std::string(kLabelsId) + '_' + std::to_string(i);
        // The vector font has no degree sign.
        label.text = QStringLiteral("%1M @%2").arg(sector.distanceM, 0, 'f', 2).arg(sector.azimuth, 0, 'f', 0).toStdString();
        // The middle of the sector (across 0 its edges are reversed).
        const double to = sector.toAzimuth < sector.fromAzimuth ? sector.toAzimuth + 360.0 : sector.toAzimuth;
        groundPoint((sector.fromAzimuth + to) / 2.0, sector.distanceM, label.position);
        label.scale = kLabelScale;
        labels.push_back(label);
    }
    drawEdges(std::max(kFewestEdgeMetres, std::ceil(farthest) + 1.0));
    ensureAdded(m_edges, kEdgesId);
    m_labels->setLabels(labels, firstRenderer(m_viewer)->GetActiveCamera());
    ensureAdded(m_labels, kLabelsId);
    if (const display::SectorNearest* nearest = m_minima.nearest()) {
        m_nearestPoint->SetPoint(0, nearest->x, nearest->y, nearest->z);
        m_nearestPoint->Modified();
        ensureAdded(m_nearest, kNearestId);
    } else if (m_viewer.contains(kNearestId)) {
        m_viewer.removeShape(kNearestId);
    }
}

const FacingLabels* SectorOverlay::labels() const
{
    return m_labels.GetPointer();
}
