#include "FrameAccounting.h"

#include <algorithm>

namespace lidar {

using packetcover::kTurn;

void FrameAccounting::Turn::cover(int32_t start, int32_t end, int32_t jitter)
{
    if (end <= start)
        return;
    if (spanCount > 0) {
        // Packets come in order: the next one nearly always extends the last span.
        Span& last = spans[size_t(spanCount - 1)];
        if (start >= last.start && start <= last.end + jitter) {
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

void FrameAccounting::Turn::takeOver(const Turn& other)
{
    std::copy(other.spans.begin(), other.spans.begin() + other.spanCount, spans.begin());
    spanCount = other.spanCount;
    packets = other.packets;
    returns = other.returns;
    widths = other.widths;
    firstTimeNs = other.firstTimeNs;
    firstStart = other.firstStart;
}

void FrameAccounting::count(Turn& turn, int32_t start, int32_t width, uint64_t timeNs)
{
    ++turn.packets;
    turn.widths += width;
    if (turn.firstTimeNs == 0 && timeNs != 0) {
        turn.firstTimeNs = timeNs;
        turn.firstStart = start;
    }
}

void FrameAccounting::placeAnyPacket(const PacketCover& cover, int32_t returns, uint64_t timeNs,
                                     int32_t returnsToNext, bool madePoints, double lastAzimuth)
{
    int32_t start = cover.start, end = cover.end;
    Turn* own = &current_;
    if (start >= kTurn) {
        // Starts in the next revolution, as all its points do.
        own = &next_;
        start -= kTurn;
        end -= kTurn;
    } else if (!madePoints && lastAzimuth * 100.0 > start && lastAzimuth * 100.0 - start > 1500.0) {
        // Without points it cannot end the revolution, but a point where it
        // starts would have: its degrees belong to the next one.
        own = &next_;
    }
    if (cover.known()) {
        const int32_t jitter = Turn::jitter(cover);
        own->cover(start, std::min(end, kTurn), jitter);
        if (end > kTurn && own == &current_)
            next_.cover(0, end - kTurn, jitter);
    }
    count(*own, start, cover.known() ? cover.width() : 0, timeNs);
    own->returns += returns - returnsToNext;
    next_.returns += returnsToNext;
}

void FrameAccounting::closeFrame(const LidarDataPoint_V4& frame, const PacketCover& next, uint64_t nextStampNs)
{
    if (current_.packets > 0 && current_.widths > 0)
        pitch_ = double(current_.widths) / 100.0 / current_.packets;
    if (current_.spanCount == 1 && current_.spans[0].start <= 0 && current_.spans[0].end >= kTurn) {
        // Whole, as nearly every revolution is.
        last_.missingPackets = 0;
        last_.coverage = 1.0f;
        last_.gaps.clear();
    } else {
        CoveredSpan spans[kMaxSpans];
        for (int i = 0; i < current_.spanCount; ++i)
            spans[i] = {current_.spans[size_t(i)].start / 100.0f, current_.spans[size_t(i)].end / 100.0f};
        CoverageMeasure measure = measureCoverage(spans, current_.spanCount, pitch_);
        last_.missingPackets = measure.missingPackets;
        last_.coverage = measure.coverage;
        last_.gaps = std::move(measure.gaps);
    }
    last_.packets = current_.packets;
    closedPackets_ += quint64(current_.packets);
    last_.points = int32_t(frame.pointCount());
    last_.returns = current_.returns;
    last_.motorSpeed = frame.motorSpeed;
    // From this revolution's first packet to the next one's, scaled by the
    // degrees between their starts: a lost first packet does not lengthen
    // the period.
    last_.periodMs = -1.0;
    const uint64_t nextNs = timeOf(nextStampNs);
    if (current_.firstTimeNs != 0 && nextNs > current_.firstTimeNs && next.known()) {
        const int32_t degrees = next.start + kTurn - current_.firstStart;
        if (degrees > kTurn / 2 && degrees < kTurn * 3 / 2)
            last_.periodMs = double(nextNs - current_.firstTimeNs) / 1e6 * double(kTurn) / double(degrees);
    }
    current_.takeOver(next_);
    next_.reset();
}

}  // namespace lidar
