#include "OverlayPainter.h"

#include "OverlayGeometry.h"

#include <pcl/point_types.h>
#include <pcl/visualization/pcl_visualizer.h>
#include <vtkActor.h>
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

// Translucent actors would send every frame's render through the
// order-independent transparency passes, which on software OpenGL cost more
// than the whole frame cloud. The overlays are drawn before the clouds (the
// clouds are re-added every frame), so in the opaque pass their opacity
// still blends them over the background as intended.
void forceOpaque(pcl::visualization::PCLVisualizer& viewer, const std::string& id)
{
    if (auto* actor = vtkActor::SafeDownCast(viewer.getShapeActorMap()->at(id)))
        actor->ForceOpaqueOn();
}

void addLabels(pcl::visualization::PCLVisualizer& viewer, const std::vector<overlay::Label>& labels,
               const Colour& c, QStringList& ids)
{
    for (const overlay::Label& label : labels) {
        ids << label.id;
        const pcl::PointXYZ at(label.position[0], label.position[1], label.position[2]);
        viewer.addText3D(label.text.toStdString(), at, label.scale, c.r, c.g, c.b, label.id.toStdString(), 0);
    }
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
    for (const overlay::Line& line : overlay::gridLines(count, state.gridStep)) {
        const std::string id = line.id.toStdString();
        const pcl::PointXYZ from(line.from[0], line.from[1], line.from[2]);
        const pcl::PointXYZ to(line.to[0], line.to[1], line.to[2]);
        m_viewer.addLine(from, to, c.r, c.g, c.b, id, 0);
        m_viewer.setShapeRenderingProperties(pcl::visualization::PCL_VISUALIZER_OPACITY, 0.5, id, 0);
        forceOpaque(m_viewer, id);
        if (auto* actor = vtkActor::SafeDownCast(m_viewer.getShapeActorMap()->at(id)))
            actor->ForceOpaqueOn();
        state.gridLineIds << line.id;
    }
    addLabels(m_viewer, overlay::gridLabels(count, state.gridStep), c, state.gridLabelIds);
}

void OverlayPainter::redrawPolar(IGridPolar& state, int count)
{
    removeAll(m_viewer, state.polarLabelIds);
    vtkRenderer* renderer = m_viewer.getRendererCollection()->GetFirstRenderer();
    for (const auto& ring : m_polarRings)
        renderer->RemoveActor(ring);
    m_polarRings.clear();
    if (!state.polarShown)
        return;
    const Colour c = colourOf(state.overlayColour);
    for (double radius : overlay::polarRadii(count, state.polarStep)) {
        auto source = vtkSmartPointer<vtkRegularPolygonSource>::New();
        source->SetNumberOfSides(50);
        source->SetRadius(radius);
        source->SetCenter(0, 0, 0);
        auto mapper = vtkSmartPointer<vtkPolyDataMapper>::New();
        mapper->SetInputConnection(source->GetOutputPort());
        auto ring = vtkSmartPointer<vtkActor>::New();
        ring->SetMapper(mapper);
        ring->GetProperty()->SetLineWidth(0.2f);
        ring->GetProperty()->SetColor(c.r, c.g, c.b);
        ring->GetProperty()->SetOpacity(0.25);
        ring->GetProperty()->SetRepresentationToWireframe();
        ring->ForceOpaqueOn();
        ring->ForceOpaqueOn();
        renderer->AddActor(ring);
        m_polarRings.push_back(ring);
    }
    addLabels(m_viewer, overlay::polarLabels(count, state.polarStep), c, state.polarLabelIds);
}
