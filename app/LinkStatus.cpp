#include "LinkStatus.h"

#include <QElapsedTimer>
#include <memory>

LinkStatus::LinkStatus(Clock clock) : m_clock(std::move(clock))
{
    if (!m_clock) {
        auto timer = std::make_shared<QElapsedTimer>();
        timer->start();
        m_clock = [timer] { return timer->elapsed(); };
    }
}

void LinkStatus::start(const LinkTotals& totals)
{
    const qint64 now = m_clock();
    m_samples.assign(1, Sample{now, totals});
    m_lastDataAt = now;
    m_state = State::Receiving;
    updateRates();
}

void LinkStatus::stop()
{
    m_samples.clear();
    m_state = State::Disconnected;
    updateRates();
}

bool LinkStatus::sample(const LinkTotals& totals)
{
    if (m_state == State::Disconnected)
        return false;
    const qint64 now = m_clock();
    const LinkTotals& previous = m_samples.back().totals;
    // A fresh session counts from zero again: start over from its totals.
    const bool restarted =
        totals.datagrams < previous.datagrams || totals.bytes < previous.bytes || totals.frames < previous.frames;
    if (restarted)
        m_samples.clear();
    if (restarted ? totals.datagrams > 0 : totals.datagrams > previous.datagrams)
        m_lastDataAt = now;
    m_samples.push_back(Sample{now, totals});
    // Keep one sample at or before the start of the window as the base.
    while (m_samples.size() > 2 && m_samples[1].at <= now - kRateWindowMs)
        m_samples.pop_front();
    updateRates();

    const State before = m_state;
    m_state = now - m_lastDataAt >= kSilenceMs ? State::Silent : State::Receiving;
    return m_state != before;
}

qint64 LinkStatus::msSinceLastData() const
{
    return m_state == State::Disconnected ? 0 : m_clock() - m_lastDataAt;
}

void LinkStatus::updateRates()
{
    m_datagramRate = m_byteRate = m_frameRate = 0;
    if (m_samples.size() < 2)
        return;
    const Sample& first = m_samples.front();
    const Sample& last = m_samples.back();
    const double seconds = (last.at - first.at) / 1000.0;
    if (seconds <= 0)
        return;
    m_datagramRate = (last.totals.datagrams - first.totals.datagrams) / seconds;
    m_byteRate = (last.totals.bytes - first.totals.bytes) / seconds;
    m_frameRate = (last.totals.frames - first.totals.frames) / seconds;
}
