#include "FrameHealth.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace lidar {

AngularGap FrameHealth::worstGap() const
{
    AngularGap worst;
    for (const AngularGap& gap : gaps)
        if (gap.width() > worst.width())
            worst = gap;
    return worst;
}

CoverageMeasure measureCoverage(const CoveredSpan* spans, int count, double pitch)
{
    constexpr float kTurn = 360.0f;
    const float slack = pitch > 0.0 ? float(pitch / 8.0) : 0.01f;
    const auto packetsIn = [pitch](double degrees, double bias, bool roundUp) {
        if (!(pitch > 0.0))
            return 0;
        const double packets = degrees / pitch + bias;
        return std::max(0, int(roundUp ? std::ceil(packets) : std::floor(packets)));
    };

    // Sorted and merged, clamped to the turn.
    std::vector<CoveredSpan> merged;
    merged.reserve(size_t(std::max(count, 0)));
    for (int i = 0; i < count; ++i) {
        const float start = std::max(spans[i].start, 0.0f), end = std::min(spans[i].end, kTurn);
        if (end > start)
            merged.push_back({start, end});
    }
    std::sort(merged.begin(), merged.end(),
              [](const CoveredSpan& a, const CoveredSpan& b) { return a.start < b.start; });
    size_t kept = 0;
    for (size_t i = 0; i < merged.size(); ++i) {
        if (kept > 0 && merged[i].start <= merged[kept - 1].end)
            merged[kept - 1].end = std::max(merged[kept - 1].end, merged[i].end);
        else
            merged[kept++] = merged[i];
    }
    merged.resize(kept);

    CoverageMeasure m;
    if (merged.empty()) {
        m.gaps.append({0.0f, kTurn});
        m.missingPackets = packetsIn(kTurn, 0.0, false);
        return m;
    }
    float uncovered = 0.0f;
    const float head = merged.front().start, tail = kTurn - merged.back().end;
    const bool headGap = head >= slack, tailGap = tail >= slack;
    if (headGap && !tailGap)
        m.gaps.append({0.0f, head});
    for (size_t i = 0; i + 1 < merged.size(); ++i) {
        const float width = merged[i + 1].start - merged[i].end;
        if (width < slack)
            continue;
        m.gaps.append({merged[i].end, merged[i + 1].start});
        m.missingPackets += pitch > 0.0 ? int32_t(std::lround(width / pitch)) : 0;
        uncovered += width;
    }
    if (tailGap)
        m.gaps.append({merged.back().end, headGap ? head : kTurn});
    if (headGap) {
        uncovered += head;
        m.missingPackets += packetsIn(head, 0.25, false);
    }
    if (tailGap) {
        uncovered += tail;
        m.missingPackets += packetsIn(tail, -0.25, true);
    }
    m.coverage = std::min(1.0f, std::max(0.0f, 1.0f - uncovered / kTurn));
    return m;
}

void registerHealthMetaTypes()
{
    qRegisterMetaType<lidar::FrameHealth>("lidar::FrameHealth");
    qRegisterMetaType<lidar::StreamTotals>("lidar::StreamTotals");
}

}  // namespace lidar
