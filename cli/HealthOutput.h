#pragma once
// The stream health of 'info' and 'listen' as people and programs read it:
// one line per frame as text (--frames) or as a JSON object (--json, JSON
// Lines), and the summary of all frames as text or as a last JSON object.

#include "FrameHealth.h"

#include <QString>
#include <QStringList>

namespace cli {

// {"frame": 1, "packets": 24, "missing_packets": 0, "coverage": 1, "gaps": [],
//  "points": 984, "returns": 984, "period_ms": null, "motor_speed": 600}
// `number` counts from 1, as 'convert' numbers frames. Unknown period and
// motor speed are null; gaps are [start, end] in degrees, an end below its
// start running through 0.
QString frameJson(qint64 number, const lidar::FrameHealth& health);
// "frame 12: 22 of 24 packets, 2 missing, coverage 91.7 %, gaps 120-150 deg, ..."
QString frameText(qint64 number, const lidar::FrameHealth& health);

// What every frame of an input adds up to.
class HealthSummary {
public:
    void add(qint64 number, const lidar::FrameHealth& health);

    // {"summary": {"frames": 120, "incomplete_frames": 3, "missing_packets": 5,
    //  "rejected_packets": 2, "skipped_bytes": 130}}; the frame counts are
    // those added, the rest from `totals`.
    QString json(const lidar::StreamTotals& totals) const;
    // "name: value" lines for 'info'.
    QStringList lines(const lidar::StreamTotals& totals) const;

private:
    qint64 frames_ = 0, incomplete_ = 0, missing_ = 0;
    lidar::AngularGap worst_;
    qint64 worstFrame_ = 0;
    qint64 periods_ = 0;
    double periodSum_ = 0.0, periodSquares_ = 0.0;
};

}  // namespace cli
