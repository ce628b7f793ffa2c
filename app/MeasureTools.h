#pragma once
// The measuring the window offers over its 3D view: the cursor readouts
// and the ranging rubber band on mouse moves, clicks that pick a point for
// the table or for a ranging pair, and the box drawn with a rubber band and
// edited in its dialog. The overlays draw; this decides what a gesture does.

#include "IboxSelection.h"
#include "PclForward.h"

#include <QCoreApplication>
#include <QPoint>
#include <functional>
#include <vector>

#include <vtkSmartPointer.h>

class BoxOverlay;
class FrameDisplay;
class QAbstractButton;
class QMouseEvent;
class QStandardItemModel;
class QStatusBar;
class QVTKOpenGLNativeWidget;
class RangingOverlay;
class StatusReadouts;
class vtkWorldPointPicker;

class MeasureTools {
    Q_DECLARE_TR_FUNCTIONS(ScanDeck)
public:
    struct Controls {
        QVTKOpenGLNativeWidget* view;
        QAbstractButton* boxMode;      // btn_point_cloud_select
        QAbstractButton* ranging;      // btn_ranging
        QAbstractButton* resizeRange;  // btn_resize_range
        QStatusBar* statusBar;
        QStandardItemModel* table;
    };
    struct Parts {
        pcl::visualization::PCLVisualizer& viewer;
        FrameDisplay& display;
        BoxOverlay& box;
        RangingOverlay& ranging;
        StatusReadouts& readouts;
    };

    MeasureTools(const Controls& controls, const Parts& parts, std::function<int()> pointSize,
                 std::function<bool()> livePaused);
    ~MeasureTools();

    // Moves, presses and releases over the view; the view still turns the camera.
    void mouse(QMouseEvent* event);
    void hoverAt(const QPoint& position);
    void pickAt(const QPoint& position);
    void singlePick(int index, const pcl::PointXYZRGB& point);
    void rangingStep(int index, const pcl::PointXYZRGB& point);
    // The rubber band picked these points of the drawn cloud.
    void areaPicked(const std::vector<int>& indices);
    // "Point Cloud Box" on or off.
    void toggleBoxSelection(bool on);
    // Range finding off and its marks gone from the view.
    void resetRanging();
    // A new frame: the ranging pair of the last one is forgotten.
    void restartRangingForNewFrame();

private:
    void addPickedRow(int index);

    Controls m_controls;
    Parts m_parts;
    std::function<int()> m_pointSize;
    std::function<bool()> m_livePaused;
    vtkSmartPointer<vtkWorldPointPicker> m_cursorPicker;
    QPoint m_pressPosition{-1, -1};  // where the left button went down
};
