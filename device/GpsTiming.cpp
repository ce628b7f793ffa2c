#include "GpsTiming.h"

void GpsTiming::add(quint64 packetNs, quint64 previousPacketNs, qint64 computerNs)
{
    // Differences in whole nanoseconds first: as doubles, times since 1970
    // would lose the microseconds.
    const qint64 offsetNs = qint64(packetNs) - computerNs;
    if (!m_started) {
        m_started = true;
        m_firstComputerNs = computerNs;
        m_firstOffsetNs = offsetNs;
    }
    Sample s;
    s.atS = double(computerNs - m_firstComputerNs) / 1e9;
    s.intervalMs = previousPacketNs == 0 ? -1.0 : double(qint64(packetNs - previousPacketNs)) / 1e6;
    s.offsetMs = double(offsetNs - m_firstOffsetNs) / 1e6;
    m_lastOffsetMs = double(offsetNs) / 1e6;
    m_samples.push_back(s);
    while (!m_samples.empty() && m_samples.front().atS < s.atS - kSpanS)
        m_samples.pop_front();
}

void GpsTiming::clear()
{
    *this = GpsTiming();
}

bool GpsTiming::driftPpm(double& ppm) const
{
    const double n = double(m_samples.size());
    if (n < 2)
        return false;
    double meanT = 0, meanO = 0;
    for (const Sample& s : m_samples) {
        meanT += s.atS;
        meanO += s.offsetMs;
    }
    meanT /= n;
    meanO /= n;
    double covariance = 0, variance = 0;
    for (const Sample& s : m_samples) {
        covariance += (s.atS - meanT) * (s.offsetMs - meanO);
        variance += (s.atS - meanT) * (s.atS - meanT);
    }
    if (variance <= 0)
        return false;
    // ms of offset per s of time: one of them is 1000 ppm.
    ppm = covariance / variance * 1000.0;
    return true;
}
