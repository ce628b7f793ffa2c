#pragma once
// The display path of the main window: a frame goes through the display
// pipeline with the view's settings, its cloud is drawn under
// "m_pointCloud", its table rows fill the point table, the readouts and the
// overlays hear of it, and the view is rendered once for all of it. It also
// keeps the last frame shown for the measurement tools and the exports.

#include "FramePipeline.h"
#include "LidarRecords.h"
#include "PclForward.h"

#include <QtGlobal>
#include <functional>
#include <memory>
#include <vector>

class QStandardItemModel;
class StatusReadouts;
class ViewOverlay;
class vtkRenderWindow;

class FrameDisplay {
public:
    using Cloud = pcl::PointCloud<pcl::PointXYZRGB>;

    // Where the time of the last frame went: the window's own work (pipeline,
    // table, readouts), the viewer's remove-and-add of the clouds, the render.
    struct Timings {
        qint64 ownNs = 0;
        qint64 viewerNs = 0;
        qint64 renderNs = 0;
    };

    FrameDisplay(pcl::visualization::PCLVisualizer& viewer, vtkRenderWindow* renderWindow, QStandardItemModel* table);

    void setReadouts(StatusReadouts* readouts) { m_readouts = readouts; }
    void setOverlays(std::vector<ViewOverlay*> overlays) { m_overlays = std::move(overlays); }
    void addOverlay(ViewOverlay* overlay) { m_overlays.push_back(overlay); }

    // Shows a frame: every step above, one render. Returns what the pipeline made.
    const display::FrameView& show(lidar::LidarDataPoint_V4 frame, const display::ViewSettings& settings,
                                   int pointSize);
    // The pipeline alone, for a frame that is not drawn (skipped under load).
    static display::FrameView view(lidar::LidarDataPoint_V4 frame, const display::ViewSettings& settings);
    // The frame on screen again with other settings (drawnAgain).
    const display::FrameView& showAgain(const display::ViewSettings& settings, int pointSize);
    // An edited box applied to the frame on screen (drawnAgain).
    const display::FrameView& showBox(const display::ViewSettings& settings);

    // Replaces the cloud `id` in the view with `cloud` at `pointSize`.
    void drawCloud(const std::shared_ptr<Cloud>& cloud, const char* id, int pointSize);
    // Renders now, or once the frame being shown is complete.
    void render();
    void fillTable(const display::FrameView& view);

    const Cloud& cloud() const { return *m_cloud; }
    std::shared_ptr<Cloud> cloudPointer() const { return m_cloud; }
    const lidar::LidarDataPoint_V4& lastFrame() const { return m_last.frame; }
    const display::FrameView& lastView() const { return m_last; }
    // The angle range the drawn cloud was made with.
    float drawnMinAngle() const { return m_last.settings.minAngle; }
    float drawnMaxAngle() const { return m_last.settings.maxAngle; }
    const Timings& timings() const { return m_timings; }

private:
    pcl::visualization::PCLVisualizer& m_viewer;
    vtkRenderWindow* m_renderWindow;
    QStandardItemModel* m_table;
    StatusReadouts* m_readouts = nullptr;
    std::vector<ViewOverlay*> m_overlays;
    std::shared_ptr<Cloud> m_cloud;  // "m_pointCloud"
    display::FrameView m_last;
    bool m_showingAgain = false;
    int m_batchDepth = 0;
    bool m_renderPending = false;
    Timings m_timings;
};
