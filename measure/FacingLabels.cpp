#include "FacingLabels.h"

#include <vtkCamera.h>
#include <vtkCellArray.h>
#include <vtkMath.h>
#include <vtkMatrix4x4.h>
#include <vtkObjectFactory.h>
#include <vtkPoints.h>
#include <vtkPolyData.h>
#include <vtkPolyDataMapper.h>
#include <vtkRenderer.h>
#include <vtkVectorText.h>

#include <algorithm>
#include <cmath>

vtkStandardNewMacro(FacingLabels);

FacingLabels::FacingLabels() : m_geometry(vtkSmartPointer<vtkPolyData>::New())
{
    auto mapper = vtkSmartPointer<vtkPolyDataMapper>::New();
    mapper->SetInputData(m_geometry);
    SetMapper(mapper);
}

FacingLabels::~FacingLabels() = default;

void FacingLabels::setLabels(const std::vector<Label>& labels, vtkCamera* camera)
{
    m_labels = labels;
    m_camera = camera;
    m_firstPoint.clear();
    m_glyphPoints.clear();
    m_cells.assign(m_labels.size(), {});
    m_inView.assign(m_labels.size(), false);
    auto text = vtkSmartPointer<vtkVectorText>::New();
    for (size_t l = 0; l < m_labels.size(); ++l) {
        const Label& label = m_labels[l];
        const vtkIdType first = vtkIdType(m_glyphPoints.size());
        m_firstPoint.push_back(first);
        text->SetText(label.text.c_str());
        text->Update();
        vtkPolyData* glyphs = text->GetOutput();
        for (vtkIdType i = 0; i < glyphs->GetNumberOfPoints(); ++i) {
            std::array<double, 3> p;
            glyphs->GetPoint(i, p.data());
            m_glyphPoints.push_back(p);
        }
        vtkCellArray* cells = glyphs->GetPolys();
        vtkIdType count = 0;
        const vtkIdType* ids = nullptr;
        for (cells->InitTraversal(); cells->GetNextCell(count, ids);) {
            m_cells[l].push_back(count);
            for (vtkIdType i = 0; i < count; ++i)
                m_cells[l].push_back(ids[i] + first);
        }
    }
    m_firstPoint.push_back(vtkIdType(m_glyphPoints.size()));

    auto points = vtkSmartPointer<vtkPoints>::New();
    points->SetNumberOfPoints(vtkIdType(m_glyphPoints.size()));
    m_geometry->SetPoints(points);
    m_geometry->SetPolys(vtkSmartPointer<vtkCellArray>::New());
    m_faced = m_culled = false;
    faceCamera(m_aspect);
    Modified();
}

const FacingLabels::Label* FacingLabels::find(const std::string& id) const
{
    for (const Label& label : m_labels)
        if (label.id == id)
            return &label;
    return nullptr;
}

bool FacingLabels::inView(const std::string& id, double aspect)
{
    faceCamera(aspect);
    for (size_t i = 0; i < m_labels.size(); ++i)
        if (m_labels[i].id == id)
            return m_inView[i];
    return false;
}

std::vector<std::array<double, 3>> FacingLabels::drawnPoints(const std::string& id)
{
    faceCamera(m_aspect);
    std::vector<std::array<double, 3>> drawn;
    for (size_t i = 0; i < m_labels.size(); ++i) {
        if (m_labels[i].id != id)
            continue;
        for (vtkIdType p = m_firstPoint[i]; p < m_firstPoint[i + 1]; ++p) {
            std::array<double, 3> at;
            m_geometry->GetPoint(p, at.data());
            drawn.push_back(at);
        }
    }
    return drawn;
}

double* FacingLabels::GetBounds()
{
    faceCamera(m_aspect);
    return vtkOpenGLActor::GetBounds();
}

void FacingLabels::Render(vtkRenderer* renderer, vtkMapper* mapper)
{
    faceCamera(renderer->GetTiledAspectRatio());
    vtkOpenGLActor::Render(renderer, mapper);
}

// The follower's turn: its z axis points at the camera (against the view
// direction in parallel projection), its y axis upright in the view.
void FacingLabels::faceCamera(double aspect)
{
    if (!m_camera || m_labels.empty())
        return;
    // What the turn and the cull depend on; the clipping range, which the
    // renderer resets for every frame, is not part of it.
    std::array<double, 16> camera;
    m_camera->GetPosition(&camera[0]);
    m_camera->GetViewUp(&camera[3]);
    m_camera->GetDirectionOfProjection(&camera[6]);
    camera[9] = m_camera->GetParallelProjection();
    camera[10] = m_camera->GetParallelScale();
    camera[11] = m_camera->GetViewAngle();
    m_camera->GetWindowCenter(&camera[12]);
    camera[14] = m_camera->GetUseHorizontalViewAngle();
    camera[15] = aspect;
    if (m_faced && camera == m_facedCamera)
        return;
    const bool turned = !m_faced || !std::equal(camera.begin(), camera.begin() + 10, m_facedCamera.begin());
    m_facedCamera = camera;
    m_faced = true;
    m_aspect = aspect;
    if (turned)
        turn();
    cull(aspect);
}

void FacingLabels::cull(double aspect)
{
    vtkMatrix4x4* toScreen = m_camera->GetCompositeProjectionTransformMatrix(aspect, -1, 1);
    vtkPoints* points = m_geometry->GetPoints();
    std::vector<bool> inView(m_labels.size(), false);
    for (size_t i = 0; i < m_labels.size(); ++i) {
        // The label's screen box; a label partly behind the camera counts
        // as in view, one wholly behind it as out.
        double low[2] = {HUGE_VAL, HUGE_VAL}, high[2] = {-HUGE_VAL, -HUGE_VAL};
        vtkIdType behind = 0;
        for (vtkIdType p = m_firstPoint[i]; p < m_firstPoint[i + 1]; ++p) {
            double world[4] = {0, 0, 0, 1}, screen[4];
            points->GetPoint(p, world);
            toScreen->MultiplyPoint(world, screen);
            if (screen[3] <= 0) {
                ++behind;
                continue;
            }
            for (int k = 0; k < 2; ++k) {
                low[k] = std::min(low[k], screen[k] / screen[3]);
                high[k] = std::max(high[k], screen[k] / screen[3]);
            }
        }
        const bool allBehind = behind == m_firstPoint[i + 1] - m_firstPoint[i];
        inView[i] = !allBehind && (behind > 0 || (low[0] <= 1 && high[0] >= -1 && low[1] <= 1 && high[1] >= -1));
    }
    if (m_culled && inView == m_inView)
        return;
    m_culled = true;
    m_inView = inView;
    auto polys = vtkSmartPointer<vtkCellArray>::New();
    for (size_t i = 0; i < m_labels.size(); ++i) {
        if (!m_inView[i])
            continue;
        const std::vector<vtkIdType>& cells = m_cells[i];
        for (size_t c = 0; c < cells.size(); c += size_t(cells[c]) + 1)
            polys->InsertNextCell(cells[c], &cells[c + 1]);
    }
    m_geometry->SetPolys(polys);
    m_geometry->Modified();
}

void FacingLabels::turn()
{
    const double* position = &m_facedCamera[0];
    const double* viewUp = &m_facedCamera[3];
    const double* projection = &m_facedCamera[6];
    double viewRight[3];
    vtkMath::Cross(projection, viewUp, viewRight);
    vtkMath::Normalize(viewRight);

    vtkPoints* points = m_geometry->GetPoints();
    for (size_t i = 0; i < m_labels.size(); ++i) {
        const Label& label = m_labels[i];
        const double* at = label.position;
        double rx[3], ry[3], rz[3];
        if (m_camera->GetParallelProjection()) {
            for (int k = 0; k < 3; ++k)
                rz[k] = -projection[k];
        } else {
            const double distance = std::sqrt(vtkMath::Distance2BetweenPoints(position, at));
            for (int k = 0; k < 3; ++k)
                rz[k] = (position[k] - at[k]) / distance;
        }
        vtkMath::Cross(rz, viewRight, ry);
        vtkMath::Normalize(ry);
        vtkMath::Cross(ry, rz, rx);
        for (vtkIdType p = m_firstPoint[i]; p < m_firstPoint[i + 1]; ++p) {
            const std::array<double, 3>& g = m_glyphPoints[size_t(p)];
            double world[3];
            for (int k = 0; k < 3; ++k)
                world[k] = at[k] + label.scale * (g[0] * rx[k] + g[1] * ry[k] + g[2] * rz[k]);
            points->SetPoint(p, world);
        }
    }
    points->Modified();
    m_geometry->Modified();
}
