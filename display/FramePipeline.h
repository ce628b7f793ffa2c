#pragma once
// What a frame becomes on the screen, worked out in one place and without
// widgets: the frame and the view's settings go in; out come the rounded
// frame, the points inside the box, the two coloured clouds the view draws,
// the rows of the point table, the values of the readouts (the change
// against a reference among them) and the frame a running CSV export
// writes. The window only hands these on.

#include "ChangeComparison.h"
#include "FrameCloud.h"
#include "LidarRecords.h"
#include "PclForward.h"
#include "measure/IboxSelection.h"

#include <QStringList>
#include <QVector>
#include <memory>

namespace display {

struct ViewSettings {
    float minAngle = 0.0f;  // degrees, inclusive; the drawn points
    float maxAngle = 360.0f;
    bool boxActive = false;  // the selection box is in force
    BoxRange box;
    int colourMode = IntensityColours;
    int tableRows = 30;  // rows listed from the frame
    int precision = 2;   // decimals of the table's z, azimuth and distance
    // The Change colouring: while a reference is set, the drawn points are
    // coloured by their change against it (ChangeColouring.h) instead of by
    // the colour mode, and FrameView::change sums the changes up.
    std::shared_ptr<const ReferenceSweep> changeReference;
    double changeToleranceM = ChangeOptions::kDefaultToleranceM;
};

// The extent of the box's drawn points, for the Δx, Δy and Δdistance readouts.
struct SelectionReadout {
    bool any = false;  // no point: the readouts show no value
    float deltaX = 0.0f;
    float deltaY = 0.0f;
    double deltaDistance = 0.0;  // mm
};

struct FrameView {
    lidar::LidarDataPoint_V4 frame;     // coordinates rounded to the centimetre
    lidar::LidarDataPoint_V4 boxFrame;  // its points inside the box; none without one
    std::shared_ptr<pcl::PointCloud<pcl::PointXYZRGB>> cloud;     // the drawn points, coloured by the mode
    std::shared_ptr<pcl::PointCloud<pcl::PointXYZRGB>> boxCloud;  // the box's drawn points, white
    // The point table: every point of a box that has some, otherwise the
    // first rows of the frame. A frame without points leaves the table as
    // it was (tableChanges false).
    bool tableChanges = false;
    QVector<QStringList> tableRows;
    SelectionReadout selection;  // meaningful while the box is in force
    // The change readout over the drawn points (the angle range applies);
    // nothing compared without a reference.
    ChangeSummary change;
    bool boxActive = false;
    ViewSettings settings;  // what it was made with
    // The frame on screen drawn again (new settings, an edited box), not a
    // new revolution: tools that collect frames pass it over.
    bool drawnAgain = false;

    // What a running CSV export writes of this frame: the box's points
    // while the box is in force, else the whole rounded frame.
    const lidar::LidarDataPoint_V4& csvFrame() const { return boxActive ? boxFrame : frame; }
};

// Colour of the box's points.
constexpr Rgb kBoxColour{255, 255, 255};

FrameView frameView(lidar::LidarDataPoint_V4 frame, const ViewSettings& settings);

// Only the box's part for a frame already rounded (an edited box applied to
// the frame on screen): boxFrame, boxCloud, the table and the selection.
FrameView boxView(const lidar::LidarDataPoint_V4& roundedFrame, const ViewSettings& settings);

}  // namespace display
