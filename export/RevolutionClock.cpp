#include "RevolutionClock.h"

#include <QDateTime>

namespace {

// The latest second a bag's unsigned 32-bit seconds can hold.
constexpr qint64 kLastStampSecond = 0xFFFFFFFFLL;

}  // namespace

qint64 RevolutionClock::stamp(const lidar::LidarDataPoint_V4& frame)
{
    if (const qint64 period = periodFromMotorSpeed(frame.motorSpeed))
        period_ = period;
    qint64 gps = 0;
    const qint64 stamp = gpsTimeNs(frame.dateTime, gps) ? gps : next_;
    next_ = stamp + period_;
    return stamp;
}

qint64 RevolutionClock::periodFromMotorSpeed(int32_t revolutionsPerMinute)
{
    if (revolutionsPerMinute <= 0)
        return 0;
    return (60LL * 1000000000LL + revolutionsPerMinute / 2) / revolutionsPerMinute;
}

bool RevolutionClock::gpsTimeNs(const QString& dateTime, qint64& ns)
{
    if (dateTime.isEmpty())
        return false;
    // Seven decimal numbers with these separators between them.
    static const char kSeparators[] = "-- :::";
    int field[7] = {0, 0, 0, 0, 0, 0, 0};
    int index = 0, digits = 0;
    for (const QChar c : dateTime) {
        if (c.isDigit() && c.unicode() < 128) {
            if (++digits > 9)
                return false;
            field[index] = field[index] * 10 + (c.unicode() - '0');
        } else if (index < 6 && digits > 0 && c == QLatin1Char(kSeparators[index])) {
            ++index;
            digits = 0;
        } else {
            return false;
        }
    }
    if (index != 6 || digits == 0)
        return false;
    const QDate date(field[0], field[1], field[2]);
    const QTime time(field[3], field[4], field[5], field[6]);
    if (!date.isValid() || !time.isValid())
        return false;
    const qint64 ms = QDateTime(date, time, Qt::UTC).toMSecsSinceEpoch();
    if (ms < 0 || ms / 1000 > kLastStampSecond)
        return false;
    ns = ms * 1000000LL;
    return true;
}
