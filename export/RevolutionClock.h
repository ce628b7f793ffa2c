#pragma once
// The time stamp of each revolution written to a bag, in nanoseconds since
// the epoch (UTC): the GPS date and time a frame carries (the one the viewer
// shows with it, read as UTC), or, for models without GPS time, a start time
// plus the periods of the revolutions before it. A frame whose GPS text
// cannot be read is stamped as one without.

#include "LidarRecords.h"

#include <QString>
#include <QtGlobal>

class RevolutionClock {
public:
    explicit RevolutionClock(qint64 startNs) : next_(startNs) {}

    // The stamp of `frame`, the next revolution in order.
    qint64 stamp(const lidar::LidarDataPoint_V4& frame);
    // The period of the revolution last stamped: from its motor speed, or
    // the one before it when it reports none; 0 while none did.
    qint64 periodNs() const { return period_; }

    // 60 s over the revolutions per minute; 0 when the speed is unknown (0 or -1).
    static qint64 periodFromMotorSpeed(int32_t revolutionsPerMinute);
    // "2024-5-20 12:0:0:250" (year, month, day, hour, minute, second,
    // millisecond) read as UTC; false when it is no such date and time or
    // lies outside what a bag can stamp (1970 to 2106).
    static bool gpsTimeNs(const QString& dateTime, qint64& ns);

private:
    qint64 next_;
    qint64 period_ = 0;
};
