#include "LiveFrameQueue.h"

#include <vector>

LiveFrameQueue::LiveFrameQueue(QObject* parent, Clock clock) : QObject(parent), clock_(std::move(clock))
{
    if (!clock_) {
        elapsed_.start();
        clock_ = [this] { return elapsed_.nsecsElapsed(); };
    }
}

QMetaObject::Connection LiveFrameQueue::attach(LidarAnalysis* session)
{
    {
        std::lock_guard<std::mutex> lock(mutex_);
        skipped_ = 0;
        drawing_.clear();  // another lidar, perhaps another size of frame
    }
    emit skippedFramesChanged(0);
    return connect(
        session, &LidarAnalysis::SendleLidarDataSignal, this,
        [this](const lidar::LidarDataPoint_V4& frame) { take(frame); }, Qt::DirectConnection);
}

quint64 LiveFrameQueue::skippedFrames() const
{
    std::lock_guard<std::mutex> lock(mutex_);
    return skipped_;
}

int LiveFrameQueue::waitingFrames() const
{
    std::lock_guard<std::mutex> lock(mutex_);
    return int(waiting_.size());
}

qint64 LiveFrameQueue::lastWaitNs() const
{
    std::lock_guard<std::mutex> lock(mutex_);
    return lastWaitNs_;
}

void LiveFrameQueue::take(const lidar::LidarDataPoint_V4& frame)
{
    std::lock_guard<std::mutex> lock(mutex_);
    waiting_.push_back({clock_(), frame});
    if (!deliveryPosted_) {
        deliveryPosted_ = true;
        postDelivery();
    }
}

void LiveFrameQueue::postDelivery()
{
    QMetaObject::invokeMethod(this, &LiveFrameQueue::deliverNext, Qt::QueuedConnection);
}

void LiveFrameQueue::deliverNext()
{
    std::vector<lidar::LidarDataPoint_V4> skipped;
    lidar::LidarDataPoint_V4 next;
    bool more = false;
    quint64 skippedTotal = 0;
    {
        std::lock_guard<std::mutex> lock(mutex_);
        if (waiting_.empty()) {
            deliveryPosted_ = false;
            return;
        }
        const qint64 now = clock_();
        const qint64 putOffNs = qint64(waiting_.size() - 1) * drawing_.typicalNs();
        if (drawing_.known() && putOffNs > kBehindNs) {
            while (waiting_.size() > 1) {
                skipped.push_back(std::move(waiting_.front().frame));
                waiting_.pop_front();
            }
        }
        skipped_ += skipped.size();
        skippedTotal = skipped_;
        next = std::move(waiting_.front().frame);
        lastWaitNs_ = now - waiting_.front().arrivedNs;
        waiting_.pop_front();
        more = !waiting_.empty();
        deliveryPosted_ = more;
    }
    for (const lidar::LidarDataPoint_V4& frame : skipped)
        emit frameSkipped(frame);
    if (!skipped.empty())
        emit skippedFramesChanged(skippedTotal);
    const qint64 drawingFrom = clock_();
    emit frameReady(std::move(next));
    {
        std::lock_guard<std::mutex> lock(mutex_);
        drawing_.add(clock_() - drawingFrom);
    }
    // After the drawing: whatever else waits in the event loop goes first.
    if (more)
        postDelivery();
}
