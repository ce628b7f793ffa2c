#include "HealthIndex.h"

#include <algorithm>
#include <cmath>

namespace lidar {

FrameHealthSummary FrameHealthSummary::of(const FrameHealth& health)
{
    const auto clamp16 = [](double value) { return uint16_t(std::min(65535.0, std::max(0.0, std::round(value)))); };
    FrameHealthSummary s;
    s.packets = clamp16(health.packets);
    s.missingPackets = clamp16(health.missingPackets);
    s.coverage = clamp16(double(health.coverage) * 65535.0);
    if (!health.isWhole())
        s.worstGap = std::max<uint16_t>(1, clamp16(double(health.worstGap().width()) * 100.0));
    return s;
}

void HealthIndex::append(const FrameHealth& health)
{
    const FrameHealthSummary s = FrameHealthSummary::of(health);
    std::lock_guard<std::mutex> lock(mutex_);
    if (!s.isWhole())
        incomplete_.push_back(qint64(frames_.size()));
    frames_.push_back(s);
}

qint64 HealthIndex::size() const
{
    std::lock_guard<std::mutex> lock(mutex_);
    return qint64(frames_.size());
}

bool HealthIndex::summary(qint64 frame, FrameHealthSummary& out) const
{
    std::lock_guard<std::mutex> lock(mutex_);
    if (frame < 0 || frame >= qint64(frames_.size()))
        return false;
    out = frames_[size_t(frame)];
    return true;
}

qint64 HealthIndex::incompleteCount() const
{
    std::lock_guard<std::mutex> lock(mutex_);
    return qint64(incomplete_.size());
}

qint64 HealthIndex::nextIncomplete(qint64 frame) const
{
    std::lock_guard<std::mutex> lock(mutex_);
    const auto after = std::upper_bound(incomplete_.begin(), incomplete_.end(), frame);
    return after == incomplete_.end() ? kNone : *after;
}

qint64 HealthIndex::previousIncomplete(qint64 frame) const
{
    std::lock_guard<std::mutex> lock(mutex_);
    const auto at = std::lower_bound(incomplete_.begin(), incomplete_.end(), frame);
    return at == incomplete_.begin() ? kNone : *(at - 1);
}

std::vector<qint64> HealthIndex::incompleteFrames(qint64 first, qint64 last) const
{
    std::lock_guard<std::mutex> lock(mutex_);
    const auto from = std::lower_bound(incomplete_.begin(), incomplete_.end(), first);
    const auto to = std::upper_bound(from, incomplete_.end(), last);
    return std::vector<qint64>(from, to);
}

}  // namespace lidar
