#include "OverlayPainter.h"

#include "FacingLabels.h"
#include "OverlayGeometry.h"

#include <pcl/visualization/pcl_visualizer.h>
#include <vtkActor.h>
#include <vtkAppendPolyData.h>
#include <vtkCellArray.h>
#include <vtkPoints.h>
#include <vtkPolyData.h>
#include <vtkPolyDataMapper.h>
#include <vtkProperty.h>
#include <vtkRegularPolygonSource.h>
#include <vtkRenderer.h>

namespace {

struct Colour {
    double r, g, b;
};

Colour colourOf(const QColor& c)
{
    return {c.redF(), c.greenF(), c.blueF()};
}

void removeAll(pcl::visualization::PCLVisualizer& viewer, QStringList& ids)
{
    // The 3D-text removal finds line shapes by id as well.
    for (const QString& id : ids)
        viewer.removeText3D(id.toStdString(), 0);
    ids.clear();
}

vtkRenderer* firstRenderer(pcl::visualization::PCLVisualizer& viewer)
{
    return viewer.getRendererCollection()->GetFirstRenderer();
}

// Adds the actor to the view once and makes it the shape of every id, as if
// each line or label had been added by itself.
void addUnder(pcl::visualization::PCLVisualizer& viewer, vtkActor* actor, const QStringList& ids)
{
    firstRenderer(viewer)->AddActor(actor);
    auto& shapes = *viewer.getShapeActorMap();
    for (const QString& id : ids)
        shapes[id.toStdString()] = actor;
}

vtkSmartPointer<vtkActor> actorOf(vtkPolyData* geometry)
{
    auto mapper = vtkSmartPointer<vtkPolyDataMapper>::New();
    mapper->SetInputData(geometry);
    auto actor = vtkSmartPointer<vtkActor>::New();
    actor->SetMapper(mapper);
    return actor;
}

// Translucent actors would send every frame's render through the
// order-independent transparency passes, which on software OpenGL cost more
// than the whole frame cloud. The overlays are drawn before the clouds (the
// clouds are re-added every frame), so in the opaque pass their opacity
// still blends them over the background as intended.
void lookOf(vtkActor* actor, const Colour& c, double opacity)
{
    vtkProperty* property = actor->GetProperty();
    property->SetColor(c.r, c.g, c.b);
    property->SetOpacity(opacity);
    property->SetRepresentationToWireframe();
    actor->ForceOpaqueOn();
}

// Every grid line as one cell of one geometry, in the order of the ids.
vtkSmartPointer<vtkActor> gridLinesActor(const std::vector<overlay::Line>& lines, const Colour& c)
{
    auto points = vtkSmartPointer<vtkPoints>::New();
    auto cells = vtkSmartPointer<vtkCellArray>::New();
    for (const overlay::Line& line : lines) {
        const vtkIdType ends[2] = {points->InsertNextPoint(line.from[0], line.from[1], line.from[2]),
                                   points->InsertNextPoint(line.to[0], line.to[1], line.to[2])};
        cells->InsertNextCell(2, ends);
    }
    auto geometry = vtkSmartPointer<vtkPolyData>::New();
    geometry->SetPoints(points);
    geometry->SetLines(cells);
    vtkSmartPointer<vtkActor> actor = actorOf(geometry);
    lookOf(actor, c, 0.5);
    actor->GetProperty()->SetInterpolationToFlat();  // as the view's own line shapes
    return actor;
}

// Each ring a regular 50-sided polygon, drawn as its outline; all of them
// in one geometry, innermost first.
vtkSmartPointer<vtkActor> ringsActor(const std::vector<double>& radii, const Colour& c)
{
    auto rings = vtkSmartPointer<vtkAppendPolyData>::New();
    for (double radius : radii) {
        auto source = vtkSmartPointer<vtkRegularPolygonSource>::New();
        source->SetNumberOfSides(50);
        source->SetRadius(radius);
        source->SetCenter(0, 0, 0);
        rings->AddInputConnection(source->GetOutputPort());
    }
    rings->Update();
    auto geometry = vtkSmartPointer<vtkPolyData>::New();
    geometry->ShallowCopy(rings->GetOutput());
    vtkSmartPointer<vtkActor> actor = actorOf(geometry);
    lookOf(actor, c, 0.25);
    actor->GetProperty()->SetLineWidth(0.2f);
    return actor;
}

void addLabels(pcl::visualization::PCLVisualizer& viewer, const std::vector<overlay::Label>& labels,
               const Colour& c, QStringList& ids)
{
    std::vector<FacingLabels::Label> drawn;
    for (const overlay::Label& label : labels) {
        ids << label.id;
        drawn.push_back({label.id.toStdString(),
                         label.text.toStdString(),
                         {label.position[0], label.position[1], label.position[2]},
                         label.scale});
    }
    if (drawn.empty())
        return;
    auto actor = vtkSmartPointer<FacingLabels>::New();
    actor->setLabels(drawn, firstRenderer(viewer)->GetActiveCamera());
    actor->GetProperty()->SetColor(c.r, c.g, c.b);
    addUnder(viewer, actor, ids);
}

}  // namespace

OverlayPainter::OverlayPainter(pcl::visualization::PCLVisualizer& viewer) : m_viewer(viewer) {}

OverlayPainter::~OverlayPainter() = default;

void OverlayPainter::redrawGrid(IGridPolar& state, int count)
{
    removeAll(m_viewer, state.gridLabelIds);
    removeAll(m_viewer, state.gridLineIds);
    if (!state.gridShown)
        return;
    const Colour c = colourOf(state.overlayColour);
    const std::vector<overlay::Line> lines = overlay::gridLines(count, state.gridStep);
    for (const overlay::Line& line : lines)
        state.gridLineIds << line.id;
    if (!lines.empty())
        addUnder(m_viewer, gridLinesActor(lines, c), state.gridLineIds);
    addLabels(m_viewer, overlay::gridLabels(count, state.gridStep), c, state.gridLabelIds);
}

void OverlayPainter::redrawPolar(IGridPolar& state, int count)
{
    removeAll(m_viewer, state.polarLabelIds);
    vtkRenderer* renderer = firstRenderer(m_viewer);
    for (const auto& ring : m_polarRings)
        renderer->RemoveActor(ring);
    m_polarRings.clear();
    if (!state.polarShown)
        return;
    const Colour c = colourOf(state.overlayColour);
    const std::vector<double> radii = overlay::polarRadii(count, state.polarStep);
    if (!radii.empty()) {
        m_polarRings.push_back(ringsActor(radii, c));
        renderer->AddActor(m_polarRings.back());
    }
    addLabels(m_viewer, overlay::polarLabels(count, state.polarStep), c, state.polarLabelIds);
}
