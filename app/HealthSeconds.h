#pragma once
// Turns a live session's per-revolution health and its running totals into
// one HealthSecond per second for the "Stream health" dock: the counters
// are differences of the totals from one second to the next, the coverage
// and the period the means of the revolutions completed in that second.

#include "FrameHealth.h"
#include "StreamHealthDock.h"

class HealthSeconds {
public:
    // A revolution completed in the second now running.
    void addFrame(const lidar::FrameHealth& health);
    // Ends the running second at the session's `totals` and the display's
    // count of skipped revolutions, both running totals.
    HealthSecond closeSecond(const lidar::StreamTotals& totals, quint64 displaySkipped);
    // A new session: its totals start from zero again.
    void reset();

private:
    lidar::StreamTotals m_last;
    quint64 m_lastSkipped = 0;
    int m_frames = 0;
    int m_incomplete = 0;
    int m_missing = 0;
    int m_periods = 0;
    double m_coverageSum = 0;
    double m_periodSum = 0;
};
