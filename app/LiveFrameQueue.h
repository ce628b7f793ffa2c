#pragma once
// Live frames on their way from the session's thread to the display. They
// are taken in on the session's thread and handed out one at a time on the
// thread this queue lives on, each after the event loop has had its turn,
// so that timers, input and painting never wait behind a pile of frames.
//
// While drawing keeps up (the normal case) every frame is drawn, in order.
// When drawing falls behind, a live view should show the newest revolution:
// once drawing the waiting frames in turn would put off the newest by more
// than kBehindNs (their number times the typical drawing time), every
// waiting frame but the newest is skipped for the display and counted. What
// is drawn is then about one drawing time old, and no more than a drawing
// time's worth of frames waits. A few frames that wait behind one slow
// drawing (the first after connecting) are all drawn. A skipped frame still
// goes out through frameSkipped, for whatever must see every frame (the CSV
// export); the recording is made from the packets and never depends on the
// display.

#include "DrawingTime.h"
#include "LidarAnalysis.h"
#include "LidarRecords.h"

#include <QElapsedTimer>
#include <QObject>
#include <deque>
#include <functional>
#include <mutex>

class LiveFrameQueue : public QObject {
    Q_OBJECT
public:
    // How much later than at once the newest waiting frame may be drawn
    // before the older ones are skipped: well under a revolution at the
    // normal rate.
    static constexpr qint64 kBehindNs = 50000000;
    // Nanoseconds on a clock that never goes back.
    using Clock = std::function<qint64()>;

    // An empty clock uses a monotonic system clock; tests inject their own.
    explicit LiveFrameQueue(QObject* parent = nullptr, Clock clock = Clock());

    // Takes `session`'s frames from now on, on the session's own thread, and
    // starts the skipped count afresh. Disconnect the returned connection to
    // stop.
    QMetaObject::Connection attach(LidarAnalysis* session);

    quint64 skippedFrames() const;
    int waitingFrames() const;
    // How long the frame last handed out had waited since it arrived.
    qint64 lastWaitNs() const;

signals:
    void frameReady(lidar::LidarDataPoint_V4 frame);
    void frameSkipped(const lidar::LidarDataPoint_V4& frame);
    void skippedFramesChanged(quint64 total);

private:
    struct Waiting {
        qint64 arrivedNs;
        lidar::LidarDataPoint_V4 frame;
    };
    void take(const lidar::LidarDataPoint_V4& frame);  // any thread
    void deliverNext();                                // this object's thread
    void postDelivery();

    mutable std::mutex mutex_;
    std::deque<Waiting> waiting_;
    bool deliveryPosted_ = false;
    quint64 skipped_ = 0;
    qint64 lastWaitNs_ = 0;
    DrawingTime drawing_;
    QElapsedTimer elapsed_;
    Clock clock_;
};
