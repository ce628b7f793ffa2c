#pragma once
// A live session's stream totals (FrameHealth.h) as atomics: the session's
// thread alone writes them, any thread reads them. The window samples them
// once a second and shows the differences as the second's figures, as it
// does with the session's datagramsReceived.

#include "FrameHealth.h"

#include <atomic>

namespace lidar {

class StreamCounters {
public:
    StreamTotals snapshot() const
    {
        StreamTotals t;
        t.packets = packets_.load(std::memory_order_relaxed);
        t.rejectedPackets = rejected_.load(std::memory_order_relaxed);
        t.skippedBytes = skipped_.load(std::memory_order_relaxed);
        t.replies = replies_.load(std::memory_order_relaxed);
        t.frames = frames_.load(std::memory_order_relaxed);
        t.incompleteFrames = incomplete_.load(std::memory_order_relaxed);
        t.missingPackets = missing_.load(std::memory_order_relaxed);
        return t;
    }

    // Written on the session's thread only.
    // Data packets and replies taken so far: a cutter compares it before and
    // after handing on a piece to see whether the piece was refused.
    quint64 taken() const { return taken_; }
    void addPacket()
    {
        add(packets_, 1);
        ++taken_;
    }
    void addReply()
    {
        add(replies_, 1);
        ++taken_;
    }
    void addRejected(quint64 pieces) { add(rejected_, pieces); }
    void addSkipped(quint64 bytes) { add(skipped_, bytes); }
    void addFrame(const FrameHealth& health)
    {
        add(frames_, 1);
        add(incomplete_, health.isWhole() ? 0 : 1);
        add(missing_, quint64(health.missingPackets));
    }

private:
    // One writer: a plain load and store, no locked instruction per packet.
    static void add(std::atomic<quint64>& counter, quint64 n)
    {
        if (n != 0)
            counter.store(counter.load(std::memory_order_relaxed) + n, std::memory_order_relaxed);
    }

    std::atomic<quint64> packets_{0}, rejected_{0}, skipped_{0}, replies_{0};
    std::atomic<quint64> frames_{0}, incomplete_{0}, missing_{0};
    quint64 taken_ = 0;  // packets and replies, the session's thread only
};

}  // namespace lidar
