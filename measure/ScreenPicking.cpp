#include "ScreenPicking.h"

#include <QWidget>

#include <pcl/point_cloud.h>
#include <pcl/point_types.h>
#include <vtkCamera.h>
#include <vtkMatrix4x4.h>
#include <vtkRenderWindow.h>
#include <vtkRenderer.h>
#include <vtkWorldPointPicker.h>

#include <algorithm>
#include <cmath>

namespace measure {

ScreenProjection ScreenProjection::of(vtkRenderer* renderer)
{
    vtkMatrix4x4* matrix =
        renderer->GetActiveCamera()->GetCompositeProjectionTransformMatrix(renderer->GetTiledAspectRatio(), -1, 1);
    const int* origin = renderer->GetOrigin();
    const int* size = renderer->GetSize();
    return ScreenProjection(&matrix->Element[0][0], origin[0], origin[1], size[0], size[1]);
}

ScreenProjection::ScreenProjection(const double worldToDevice[16], double originX, double originY, double width,
                                   double height)
    : m_originX(originX), m_originY(originY), m_width(width), m_height(height)
{
    std::copy(worldToDevice, worldToDevice + 16, m);
}

bool ScreenProjection::toDisplay(float x, float y, float z, DisplayPoint* at, double* depth) const
{
    const double w = m[12] * x + m[13] * y + m[14] * z + m[15];
    if (!(w > 0.0))
        return false;
    const double nx = (m[0] * x + m[1] * y + m[2] * z + m[3]) / w;
    const double ny = (m[4] * x + m[5] * y + m[6] * z + m[7]) / w;
    const double nz = (m[8] * x + m[9] * y + m[10] * z + m[11]) / w;
    if (!(nz >= -1.0 && nz <= 1.0))
        return false;
    at->x = m_originX + (nx + 1.0) * 0.5 * m_width;
    at->y = m_originY + (ny + 1.0) * 0.5 * m_height;
    *depth = nz;
    return true;
}

// Projecting the displayed cloud ourselves, rather than asking a VTK point
// picker, keeps the pick to the frame's points (the picker would also hit
// overlay labels, grid lines and the box cloud), measures the tolerance in
// pixels whatever the zoom, and gives the index in that cloud directly, for
// one matrix product per point.
int nearestDrawnPoint(const pcl::PointCloud<pcl::PointXYZRGB>& cloud, const ScreenProjection& projection,
                      const DisplayPoint& at, double tolerance)
{
    int best = -1;
    double bestDistance2 = tolerance * tolerance;
    double bestDepth = 0.0;
    for (size_t i = 0; i < cloud.points.size(); ++i) {
        const pcl::PointXYZRGB& p = cloud.points[i];
        DisplayPoint drawn;
        double depth = 0.0;
        if (!projection.toDisplay(p.x, p.y, p.z, &drawn, &depth))
            continue;
        const double dx = drawn.x - at.x, dy = drawn.y - at.y;
        const double distance2 = dx * dx + dy * dy;
        if (distance2 > bestDistance2)
            continue;
        if (best >= 0 && distance2 == bestDistance2 && depth >= bestDepth)
            continue;
        best = int(i);
        bestDistance2 = distance2;
        bestDepth = depth;
    }
    return best;
}

DisplayPoint displayFromWidget(const QWidget* view, const QPoint& position)
{
    // The render window counts device pixels from the bottom row up.
    const double ratio = view->devicePixelRatioF();
    const double height = std::round(view->height() * ratio);
    return {position.x() * ratio, height - position.y() * ratio - 1.0};
}

void worldPointAt(vtkWorldPointPicker* picker, vtkRenderer* renderer, const DisplayPoint& at, double world[3])
{
    picker->Pick(at.x, at.y, 0.0, renderer);
    picker->GetPickPosition(world);
}

const lidar::LidarPoint* drawnFramePoint(const lidar::LidarDataPoint_V4& frame, float minAngle, float maxAngle,
                                         int cloudIndex, int* id)
{
    if (cloudIndex < 0)
        return nullptr;
    int drawn = 0;
    for (auto line = frame.points.cbegin(); line != frame.points.cend(); ++line) {
        for (const lidar::LidarPoint& p : line.value()) {
            if (!(minAngle <= p.azimuth && p.azimuth <= maxAngle))
                continue;
            if (drawn++ == cloudIndex) {
                if (id)
                    *id = line.key();
                return &p;
            }
        }
    }
    return nullptr;
}

}  // namespace measure
