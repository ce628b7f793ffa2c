#include "FacingLabels.h"

#include <vtkCamera.h>
#include <vtkCellArray.h>
#include <vtkMath.h>
#include <vtkObjectFactory.h>
#include <vtkPoints.h>
#include <vtkPolyData.h>
#include <vtkPolyDataMapper.h>
#include <vtkVectorText.h>

#include <cmath>
#include <unordered_map>

namespace {

// One character as vtkVectorText draws it at the start of a line, and how
// far it moves the next one on.
struct Glyph {
    std::vector<std::array<double, 3>> points;
    std::vector<std::vector<vtkIdType>> cells;
    double advance = 0.0;
};

void readText(const std::string& text, std::vector<std::array<double, 3>>& points,
              std::vector<std::vector<vtkIdType>>* cells)
{
    auto source = vtkSmartPointer<vtkVectorText>::New();
    source->SetText(text.c_str());
    source->Update();
    vtkPolyData* out = source->GetOutput();
    points.resize(size_t(out->GetNumberOfPoints()));
    for (vtkIdType i = 0; i < out->GetNumberOfPoints(); ++i)
        out->GetPoint(i, points[size_t(i)].data());
    if (!cells)
        return;
    vtkIdType count = 0;
    const vtkIdType* ids = nullptr;
    vtkCellArray* polys = out->GetPolys();
    for (polys->InitTraversal(); polys->GetNextCell(count, ids);)
        cells->emplace_back(ids, ids + count);
}

// vtkVectorText parses its font tables anew for every text, which costs far
// more than the rest of a label: each character is made once, and a text is
// put together from its characters as vtkVectorText lays them out, one after
// the other along x.
const Glyph& glyphOf(char c)
{
    static std::unordered_map<char, Glyph> glyphs;
    const auto found = glyphs.find(c);
    if (found != glyphs.end())
        return found->second;
    Glyph glyph;
    readText(std::string(1, c), glyph.points, &glyph.cells);
    std::vector<std::array<double, 3>> pair;
    if (!glyph.points.empty()) {
        // Twice over: the second copy starts one advance on.
        readText(std::string(2, c), pair, nullptr);
        glyph.advance = pair[glyph.points.size()][0] - pair[0][0];
    } else {
        // Nothing drawn (a space): measured between two I.
        const Glyph& i = glyphOf('I');
        readText(std::string("I") + c + "I", pair, nullptr);
        glyph.advance = pair[i.points.size()][0] - pair[0][0] - i.advance;
    }
    return glyphs.emplace(c, std::move(glyph)).first->second;
}

// One line of printable ASCII: what the glyphs can put together.
bool composable(const std::string& text)
{
    for (char c : text)
        if (c < 32 || c > 126)
            return false;
    return true;
}

void compose(const std::string& text, std::vector<std::array<double, 3>>& points, vtkCellArray* polys)
{
    double x = 0.0;
    for (char c : text) {
        const Glyph& glyph = glyphOf(c);
        const vtkIdType base = vtkIdType(points.size());
        for (const auto& p : glyph.points)
            points.push_back({p[0] + x, p[1], p[2]});
        std::vector<vtkIdType> shifted;
        for (const std::vector<vtkIdType>& cell : glyph.cells) {
            shifted.assign(cell.begin(), cell.end());
            for (vtkIdType& id : shifted)
                id += base;
            polys->InsertNextCell(vtkIdType(shifted.size()), shifted.data());
        }
        x += glyph.advance;
    }
}

}  // namespace

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
    auto polys = vtkSmartPointer<vtkCellArray>::New();
    auto text = vtkSmartPointer<vtkVectorText>::New();
    for (const Label& label : m_labels) {
        const vtkIdType first = vtkIdType(m_glyphPoints.size());
        m_firstPoint.push_back(first);
        if (composable(label.text)) {
            compose(label.text, m_glyphPoints, polys);
            continue;
        }
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
        std::vector<vtkIdType> shifted;
        for (cells->InitTraversal(); cells->GetNextCell(count, ids);) {
            shifted.assign(ids, ids + count);
            for (vtkIdType& id : shifted)
                id += first;
            polys->InsertNextCell(count, shifted.data());
        }
    }
    m_firstPoint.push_back(vtkIdType(m_glyphPoints.size()));

    auto points = vtkSmartPointer<vtkPoints>::New();
    points->SetNumberOfPoints(vtkIdType(m_glyphPoints.size()));
    m_geometry->SetPoints(points);
    m_geometry->SetPolys(polys);
    m_faced = false;
    faceCamera();
    Modified();
}

const FacingLabels::Label* FacingLabels::find(const std::string& id) const
{
    for (const Label& label : m_labels)
        if (label.id == id)
            return &label;
    return nullptr;
}

std::vector<std::array<double, 3>> FacingLabels::drawnPoints(const std::string& id)
{
    faceCamera();
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
    faceCamera();
    return vtkOpenGLActor::GetBounds();
}

void FacingLabels::Render(vtkRenderer* renderer, vtkMapper* mapper)
{
    faceCamera();
    vtkOpenGLActor::Render(renderer, mapper);
}

// The follower's turn: its z axis points at the camera (against the view
// direction in parallel projection), its y axis upright in the view.
void FacingLabels::faceCamera()
{
    if (!m_camera || m_labels.empty())
        return;
    std::array<double, 10> camera;
    m_camera->GetPosition(&camera[0]);
    m_camera->GetViewUp(&camera[3]);
    m_camera->GetDirectionOfProjection(&camera[6]);
    camera[9] = m_camera->GetParallelProjection();
    if (m_faced && camera == m_facedCamera)
        return;
    m_facedCamera = camera;
    m_faced = true;

    const double* position = &camera[0];
    double* viewUp = &camera[3];
    double* projection = &camera[6];
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
