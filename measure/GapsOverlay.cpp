#include "GapsOverlay.h"

#include <pcl/visualization/pcl_visualizer.h>
#include <vtkCellArray.h>
#include <vtkPoints.h>
#include <vtkPolyData.h>
#include <vtkSmartPointer.h>

#include <cmath>

namespace {

constexpr double kDegreesPerSlice = 2.0;  // the sectors' round edge

// A point of the ground plane at `azimuth` degrees and `radius` metres.
void ground(vtkPoints* points, double azimuth, double radius)
{
    const double a = azimuth * M_PI / 180.0;
    points->InsertNextPoint(std::sin(a) * radius, std::cos(a) * radius, 0.0);
}

}  // namespace

GapsOverlay::GapsOverlay(pcl::visualization::PCLVisualizer& viewer, std::function<void()> render)
    : m_viewer(viewer), m_render(std::move(render))
{
}

void GapsOverlay::setOn(bool on)
{
    m_on = on;
    redraw();
    m_render();
}

void GapsOverlay::frameShown(const display::FrameView& /*view*/)
{
    if (m_source)
        showGaps(m_source());
}

void GapsOverlay::viewCleared()
{
    m_gaps.clear();
}

void GapsOverlay::showGaps(const QVector<QPair<double, double>>& gaps)
{
    if (gaps == m_gaps && (m_gaps.isEmpty() || m_viewer.contains(kShapeId)) == m_on)
        return;
    m_gaps = gaps;
    redraw();
}

void GapsOverlay::redraw()
{
    if (m_viewer.contains(kShapeId))
        m_viewer.removeShape(kShapeId);
    if (!m_on || m_gaps.isEmpty())
        return;
    auto points = vtkSmartPointer<vtkPoints>::New();
    auto triangles = vtkSmartPointer<vtkCellArray>::New();
    for (const auto& gap : m_gaps) {
        // A span that crosses 0 goes on past 360.
        const double start = gap.first, end = gap.second < gap.first ? gap.second + 360.0 : gap.second;
        const int slices = std::max(1, int(std::ceil((end - start) / kDegreesPerSlice)));
        const vtkIdType centre = points->GetNumberOfPoints();
        points->InsertNextPoint(0.0, 0.0, 0.0);
        for (int i = 0; i <= slices; ++i)
            ground(points, start + (end - start) * i / slices, m_radius);
        for (int i = 0; i < slices; ++i) {
            const vtkIdType triangle[3] = {centre, centre + 1 + i, centre + 2 + i};
            triangles->InsertNextCell(3, triangle);
        }
    }
    auto sectors = vtkSmartPointer<vtkPolyData>::New();
    sectors->SetPoints(points);
    sectors->SetPolys(triangles);
    m_viewer.addModelFromPolyData(sectors, kShapeId);
    m_viewer.setShapeRenderingProperties(pcl::visualization::PCL_VISUALIZER_COLOR, 1.0, 0.6, 0.0, kShapeId);
    m_viewer.setShapeRenderingProperties(pcl::visualization::PCL_VISUALIZER_OPACITY, 0.35, kShapeId);
}
