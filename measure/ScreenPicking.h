#pragma once
// Finding what the operator points at in the 3D view. Clicks pick a point of
// the displayed frame cloud by its drawn position on the screen; the cursor
// readouts take the world point under the mouse from the depth buffer.
// Positions are in the view's display pixels, origin bottom left (VTK's
// convention); displayFromWidget converts a Qt widget position.

#include "LidarRecords.h"
#include "PclForward.h"

#include <QPoint>

class QWidget;
class vtkRenderer;
class vtkWorldPointPicker;

namespace measure {

// How far, in display pixels, a click may land from a drawn point and still
// pick it. Points are drawn as squares 1 to 10 pixels wide; 7 pixels covers
// half the widest square plus the couple of pixels a hand-aimed click is
// off, while a click on empty floor between walls picks nothing.
constexpr double kPickTolerancePixels = 7.0;

struct DisplayPoint {
    double x = 0.0;
    double y = 0.0;
};

// World coordinates to display pixels for one renderer, fixed at the moment
// it is taken (camera, aspect ratio, viewport).
class ScreenProjection {
public:
    static ScreenProjection of(vtkRenderer* renderer);
    // A projection from a world-to-normalised-device matrix (row-major,
    // applied to column vectors) and a viewport in display pixels.
    ScreenProjection(const double worldToDevice[16], double originX, double originY, double width, double height);

    // False for a point behind the camera or outside the depth range.
    bool toDisplay(float x, float y, float z, DisplayPoint* at, double* depth) const;

private:
    double m[16];
    double m_originX, m_originY, m_width, m_height;
};

// The index of the cloud point drawn nearest to `at`, no farther than
// `tolerance` pixels, or -1. Of points drawn equally near, the one nearest
// the camera wins, then the first.
int nearestDrawnPoint(const pcl::PointCloud<pcl::PointXYZRGB>& cloud, const ScreenProjection& projection,
                      const DisplayPoint& at, double tolerance = kPickTolerancePixels);

// The widget position (Qt, origin top left, device-independent pixels) in
// the display pixels of the widget's render window.
DisplayPoint displayFromWidget(const QWidget* view, const QPoint& position);

// The world point under a display position, read from the depth buffer of
// the last render (where nothing was drawn, the depth of the camera's focal
// point). No render is made.
void worldPointAt(vtkWorldPointPicker* picker, vtkRenderer* renderer, const DisplayPoint& at, double world[3]);

// The frame point drawn as the cloud point `cloudIndex` when the frame was
// shown with the angle range [minAngle, maxAngle], or null; `id` (if given)
// receives its ID.
const lidar::LidarPoint* drawnFramePoint(const lidar::LidarDataPoint_V4& frame, float minAngle, float maxAngle,
                                         int cloudIndex, int* id);

}  // namespace measure
