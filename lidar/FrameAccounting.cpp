#include "FrameAccounting.h"

#include <algorithm>

namespace lidar {

void FrameAccounting::Turn::cover(float start, float end)
{
    if (!(end > start))
        return;
    if (spanCount > 0) {
        // Packets come in order: the next one nearly always extends the last span.
        CoveredSpan& last = spans[size_t(spanCount - 1)];
        if (start >= last.start && start <= last.end) {
            last.end = std::max(last.end, end);
            return;
        }
        if (spanCount == kMaxSpans) {  // a turn in shreds: its last gaps blur into one span
            last.start = std::min(last.start, start);
            last.end = std::max(last.end, end);
            return;
        }
    }
    spans[size_t(spanCount++)] = {start, end};
}

void FrameAccounting::count(Turn& turn, float start, float width, uint64_t timeNs)
{
    ++turn.packets;
    turn.widths += double(width);
    if (turn.firstTimeNs == 0 && timeNs != 0) {
        turn.firstTimeNs = timeNs;
        turn.firstStart = start;
    }
}

void FrameAccounting::packetPlaced(int32_t returnsToNext, bool madePoints, double lastAzimuth)
{
    constexpr float kTurn = 360.0f;
    const PacketCover& cover = pending_.cover;
    float start = cover.start, end = cover.end;
    Turn* own = &current_;
    if (start >= kTurn) {
        // Starts in the next revolution, as all its points do.
        own = &next_;
        start -= kTurn;
        end -= kTurn;
    } else if (!madePoints && lastAzimuth > double(start) && lastAzimuth - double(start) > 15.0) {
        // Without points it cannot end the revolution, but a point where it
        // starts would have: its degrees belong to the next one.
        own = &next_;
    }
    if (cover.known()) {
        own->cover(start, std::min(end, kTurn));
        if (end > kTurn && own == &current_)
            next_.cover(0.0f, end - kTurn);
    }
    count(*own, start, cover.known() ? cover.width() : 0.0f, pending_.timeNs);
    own->returns += pending_.returns - returnsToNext;
    next_.returns += returnsToNext;
}

void FrameAccounting::closeFrame(const LidarDataPoint_V4& frame)
{
    if (current_.packets > 0 && current_.widths > 0.0)
        pitch_ = current_.widths / current_.packets;
    CoverageMeasure measure = measureCoverage(current_.spans.data(), current_.spanCount, pitch_);
    last_.packets = current_.packets;
    last_.missingPackets = measure.missingPackets;
    last_.coverage = measure.coverage;
    last_.gaps = std::move(measure.gaps);
    last_.points = int32_t(frame.pointCount());
    last_.returns = current_.returns;
    last_.motorSpeed = frame.motorSpeed;
    // From this revolution's first packet to the next one's (the pending
    // packet), scaled by the degrees between their starts: a lost first
    // packet does not lengthen the period.
    last_.periodMs = -1.0;
    const uint64_t nextNs = pending_.timeNs;
    if (current_.firstTimeNs != 0 && nextNs > current_.firstTimeNs && pending_.cover.known()) {
        const double degrees = double(pending_.cover.start) + 360.0 - double(current_.firstStart);
        if (degrees > 180.0 && degrees < 540.0)
            last_.periodMs = double(nextNs - current_.firstTimeNs) / 1e6 * 360.0 / degrees;
    }
    current_ = next_;
    next_.reset();
}

}  // namespace lidar
