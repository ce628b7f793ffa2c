#include "FrameRelay.h"

#include "LidarAnalysis.h"

QMetaObject::Connection FrameRelay::attach(LidarAnalysis* session)
{
    return connect(session, &LidarAnalysis::SendleLidarDataSignal, this, &FrameRelay::offer,
                   Qt::ConnectionType(Qt::DirectConnection | Qt::UniqueConnection));
}

void FrameRelay::offer(const lidar::LidarDataPoint_V4& frame)
{
    if (m_queued.fetch_add(1) >= kMaxQueued) {
        m_queued.fetch_sub(1);
        m_dropped.fetch_add(1);
        return;
    }
    QMetaObject::invokeMethod(
        this,
        [this, frame]() mutable {
            // Counted out before drawing, so the next frame can queue meanwhile.
            m_queued.fetch_sub(1);
            emit frameReady(std::move(frame));
        },
        Qt::QueuedConnection);
}
