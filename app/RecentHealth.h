#pragma once
// Whether the live stream is sound enough for a green link readout: the
// last 100 revolutions whole and nothing rejected in the last second. When
// it is not, the reason in a line ("12 of the last 100 revolutions
// incomplete, worst gap 30° at 120–150°"; "7 packets rejected in the last
// second"), which the readout shows in amber.

#include "FrameHealth.h"

#include <QCoreApplication>
#include <QString>
#include <deque>

class RecentHealth {
    Q_DECLARE_TR_FUNCTIONS(LinkStatusReadout)
public:
    static constexpr int kRevolutions = 100;

    void addFrame(const lidar::FrameHealth& health);
    // The last whole second's rejected packets and skipped bytes.
    void setLastSecond(quint64 rejectedPackets, quint64 skippedBytes);
    void reset();

    bool isSound() const { return m_incomplete == 0 && m_rejected == 0 && m_skipped == 0; }
    // Empty while sound.
    QString reason() const;
    // "30° at 120–150°"
    static QString gapText(const lidar::AngularGap& gap);

private:
    std::deque<lidar::AngularGap> m_worst;  // each revolution's widest gap, newest last; width 0: whole
    int m_incomplete = 0;
    quint64 m_rejected = 0;
    quint64 m_skipped = 0;
};
