#pragma once
// What the live link is doing, judged from the session's running totals
// (datagrams, bytes, completed revolutions) sampled a few times a second:
// the rates over the last second and how long ago data last arrived. A link
// that has been quiet for a second is silent, and receiving again as soon as
// a datagram arrives. The clock is injected so that tests need not wait.

#include <QtGlobal>
#include <deque>
#include <functional>

struct LinkTotals {
    quint64 datagrams = 0;
    quint64 bytes = 0;
    quint64 frames = 0;
};

class LinkStatus {
public:
    enum class State { Disconnected, Receiving, Silent };
    // Milliseconds on a clock that never goes back.
    using Clock = std::function<qint64()>;

    static constexpr qint64 kSilenceMs = 1000;
    static constexpr qint64 kRateWindowMs = 1000;

    // An empty clock uses a monotonic system clock.
    explicit LinkStatus(Clock clock = Clock());

    // A link was just confirmed (by a frame, so data has just arrived);
    // rates count from these totals on.
    void start(const LinkTotals& totals);
    void stop();
    // Takes the current totals; returns true when the state changed.
    bool sample(const LinkTotals& totals);

    State state() const { return m_state; }
    double datagramsPerSecond() const { return m_datagramRate; }
    double bytesPerSecond() const { return m_byteRate; }
    double framesPerSecond() const { return m_frameRate; }
    // Since the last datagram; 0 while disconnected.
    qint64 msSinceLastData() const;

private:
    struct Sample {
        qint64 at;
        LinkTotals totals;
    };
    void updateRates();

    Clock m_clock;
    State m_state = State::Disconnected;
    std::deque<Sample> m_samples;  // oldest first, reaching back one window
    qint64 m_lastDataAt = 0;
    double m_datagramRate = 0;
    double m_byteRate = 0;
    double m_frameRate = 0;
};
