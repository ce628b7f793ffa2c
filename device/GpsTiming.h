#pragma once
// The timing of the GPS stamps in the lidar's packets against the
// computer's clock, over the last minute: the interval from packet to
// packet, and the offset (packet time minus the computer's time). A steady
// offset is harmless; a step in it is a jump of either clock, a slope a
// drift between them, given as the least-squares slope in parts per million.

#include <QtGlobal>
#include <deque>

class GpsTiming {
public:
    static constexpr double kSpanS = 60.0;

    struct Sample {
        double atS;         // computer time since the first sample
        double intervalMs;  // since the previous packet's stamp; < 0: none
        double offsetMs;    // packet minus computer, relative to the first sample's
    };

    // A stamp `packetNs` (ns since 1970 as the packet tells) that arrived
    // at `computerNs` on the computer's clock (ns since 1970);
    // `previousPacketNs` is the stamp before it (0: none).
    void add(quint64 packetNs, quint64 previousPacketNs, qint64 computerNs);
    void clear();

    const std::deque<Sample>& samples() const { return m_samples; }
    // The offset of the last packet as it is, in ms (not relative).
    double lastOffsetMs() const { return m_lastOffsetMs; }
    // The fitted slope of the offset over the kept samples; false with
    // fewer than two samples or no time between them.
    bool driftPpm(double& ppm) const;

private:
    std::deque<Sample> m_samples;
    bool m_started = false;
    qint64 m_firstComputerNs = 0;
    qint64 m_firstOffsetNs = 0;
    double m_lastOffsetMs = 0;
};
