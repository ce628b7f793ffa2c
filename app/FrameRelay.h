#pragma once
// Carries the session's frames from its worker thread to the window. While
// the window keeps up, every frame is shown, in order. When drawing is slower
// than the lidar sends (a software renderer, a faster motor), at most
// kMaxQueued frames wait: newer ones are counted and dropped until the
// window has caught up, so memory stays bounded and the view stays current
// instead of falling further and further behind.

#include "LidarRecords.h"

#include <QObject>
#include <atomic>

class LidarAnalysis;

class FrameRelay : public QObject {
    Q_OBJECT
public:
    static constexpr int kMaxQueued = 3;

    using QObject::QObject;

    // Takes `session`'s frames from now on (at most one connection per session).
    QMetaObject::Connection attach(LidarAnalysis* session);

    // Frames that arrived while kMaxQueued were already waiting.
    quint64 droppedFrames() const { return m_dropped.load(); }

signals:
    // On this object's thread, once per frame that was not dropped.
    void frameReady(lidar::LidarDataPoint_V4 frame);

public slots:
    // Runs on the session's thread (direct connection).
    void offer(const lidar::LidarDataPoint_V4& frame);

private:
    std::atomic<int> m_queued{0};
    std::atomic<quint64> m_dropped{0};
};
