#include "HealthSeconds.h"

namespace {

// A counter that went back belongs to a fresh session: it counts from zero.
double since(quint64 now, quint64 before)
{
    return double(now >= before ? now - before : now);
}

}  // namespace

void HealthSeconds::addFrame(const lidar::FrameHealth& health)
{
    ++m_frames;
    m_incomplete += health.isWhole() ? 0 : 1;
    m_missing += health.missingPackets;
    m_coverageSum += health.coverage;
    if (health.hasPeriod()) {
        ++m_periods;
        m_periodSum += health.periodMs;
    }
}

HealthSecond HealthSeconds::closeSecond(const lidar::StreamTotals& totals, quint64 displaySkipped)
{
    HealthSecond s;
    s.packets = since(totals.packets, m_last.packets);
    s.rejected = since(totals.rejectedPackets, m_last.rejectedPackets);
    s.skippedBytes = since(totals.skippedBytes, m_last.skippedBytes);
    s.replies = since(totals.replies, m_last.replies);
    s.displaySkipped = since(displaySkipped, m_lastSkipped);
    s.frames = m_frames;
    s.incompleteFrames = m_incomplete;
    s.missingPackets = m_missing;
    s.coverage = m_frames > 0 ? m_coverageSum / m_frames : -1.0;
    s.periodMs = m_periods > 0 ? m_periodSum / m_periods : -1.0;
    m_last = totals;
    m_lastSkipped = displaySkipped;
    m_frames = m_incomplete = m_missing = m_periods = 0;
    m_coverageSum = m_periodSum = 0;
    return s;
}

void HealthSeconds::reset()
{
    *this = HealthSeconds();
}
