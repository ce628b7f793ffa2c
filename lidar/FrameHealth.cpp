#include "FrameHealth.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

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

    CoverageMeasure m;
    // A whole turn, as nearly every one is, in one span.
    if (count == 1 && spans[0].start <= 0.0f && spans[0].end >= kTurn) {
        m.coverage = 1.0f;
        return m;
    }

    // Sorted and merged, clamped to the turn; on the stack for any turn of
    // the usual few spans.
    constexpr int kOnStack = 64;
    std::array<CoveredSpan, kOnStack> stack;
    std::vector<CoveredSpan> heap;
    CoveredSpan* sorted = stack.data();
    if (count > kOnStack) {
        heap.resize(size_t(count));
        sorted = heap.data();
    }
    int n = 0;
    for (int i = 0; i < count; ++i) {
        const float start = std::max(spans[i].start, 0.0f), end = std::min(spans[i].end, kTurn);
        if (end > start)
            sorted[n++] = {start, end};
    }
    std::sort(sorted, sorted + n, [](const CoveredSpan& a, const CoveredSpan& b) { return a.start < b.start; });
    int kept = 0;
    for (int i = 0; i < n; ++i) {
        if (kept > 0 && sorted[i].start <= sorted[kept - 1].end)
            sorted[kept - 1].end = std::max(sorted[kept - 1].end, sorted[i].end);
        else
            sorted[kept++] = sorted[i];
    }
    const CoveredSpan* const merged = sorted;

    if (kept == 0) {
        m.gaps.append({0.0f, kTurn});
        m.missingPackets = packetsIn(kTurn, 0.0, false);
        return m;
    }
    float uncovered = 0.0f;
    const float head = merged[0].start, tail = kTurn - merged[kept - 1].end;
    const bool headGap = head >= slack, tailGap = tail >= slack;
    if (headGap && !tailGap)
        m.gaps.append({0.0f, head});
    for (size_t i = 0; i + 1 < size_t(kept); ++i) {
        const float width = merged[i + 1].start - merged[i].end;
        if (width < slack)
            continue;
        m.gaps.append({merged[i].end, merged[i + 1].start});
        m.missingPackets += pitch > 0.0 ? int32_t(std::lround(width / pitch)) : 0;
        uncovered += width;
    }
    if (tailGap)
        m.gaps.append({merged[kept - 1].end, headGap ? head : kTurn});
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
