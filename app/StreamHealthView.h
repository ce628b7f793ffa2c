#pragma once
// The window's view of the stream's health: the "Stream health" dock and
// its toggle, fed once a second from the live session's revolutions and
// counters; the link readout's amber state; and "Show gaps", which draws the
// gaps of the frame shown, live or from the player. The window makes it,
// adds its overlay to the others and tells it which session is live.

#include "FrameHealth.h"
#include "GapsOverlay.h"
#include "HealthSeconds.h"
#include "PclForward.h"
#include "RecentHealth.h"

#include <QObject>
#include <QTimer>
#include <functional>
#include <memory>

class LidarAnalysis;
class LinkStatusReadout;
class LiveFrameQueue;
class OffinePlayWidget;
class QBoxLayout;
class QMainWindow;
class QToolButton;
class StreamHealthDock;

class StreamHealthView : public QObject {
    Q_OBJECT
public:
    static constexpr int kSecondMs = 1000;

    struct Parts {
        pcl::visualization::PCLVisualizer& viewer;
        std::function<void()> render;
        LinkStatusReadout* link;
        LiveFrameQueue* liveFrames;
        OffinePlayWidget* player;
    };
    // Where the two toggles go: into the view's tool row after `after`.
    struct Place {
        QBoxLayout* toolRow;
        QWidget* after;
    };

    StreamHealthView(QMainWindow* window, Parts parts, Place place);
    ~StreamHealthView() override;

    // The live session to follow from now on; null after a disconnect.
    void watch(const std::shared_ptr<LidarAnalysis>& session);
    // Ends the running second now (the timer does it once a second).
    void closeSecond();

    ViewOverlay* gaps() { return &m_gaps; }
    StreamHealthDock* dock() const { return m_dock; }
    QToolButton* gapsButton() const { return m_gapsButton; }
    QToolButton* dockButton() const { return m_dockButton; }

public slots:
    // A live revolution's health (queued from the session's thread).
    void liveRevolution(const lidar::FrameHealth& health, const lidar::StreamTotals& totals);
    // The health of the frame the player shows next.
    void playerFrame(const lidar::FrameHealth& health);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void retranslate();
    void showWarning();

    QMainWindow* m_window;
    Parts m_parts;
    StreamHealthDock* m_dock;
    QToolButton* m_gapsButton;
    QToolButton* m_dockButton;
    GapsOverlay m_gaps;
    GapsOverlay::Gaps m_nextGaps;  // of the frame about to be shown
    HealthSeconds m_seconds;
    RecentHealth m_recent;
    QTimer m_timer;
    std::weak_ptr<LidarAnalysis> m_session;
    bool m_firstRevolution = true;
    QMetaObject::Connection m_sessionConnection;
};
