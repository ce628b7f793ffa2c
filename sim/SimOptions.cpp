#include "SimOptions.h"

#include <QHostAddress>

namespace sim {

bool isLoopbackHost(const QString& host)
{
    if (host.compare(QLatin1String("localhost"), Qt::CaseInsensitive) == 0)
        return true;
    QHostAddress address;
    return address.setAddress(host) && address.isLoopback();
}

QString resolvedLoopbackHost(const QString& host)
{
    if (host.compare(QLatin1String("localhost"), Qt::CaseInsensitive) == 0)
        return QStringLiteral("127.0.0.1");
    return host;
}

QString validateOptions(const SimOptions& o)
{
    if (o.transport == Transport::Udp && !isLoopbackHost(o.dataHost))
        return QStringLiteral("refusing to send to %1: the simulator only sends to a loopback address "
                              "(127.0.0.0/8, ::1 or localhost)")
            .arg(o.dataHost);
    if (o.transport == Transport::Udp && o.dataPort == 0)
        return QStringLiteral("the data port must not be 0");
    if (!(o.rpm >= kMinRpm && o.rpm <= kMaxRpm))
        return QStringLiteral("the rotation rate must lie between %1 and %2 rpm").arg(kMinRpm).arg(kMaxRpm);
    if (!(o.speedUp >= 1.0 && o.speedUp <= kMaxSpeedUp))
        return QStringLiteral("the speed-up must lie between 1 and %1").arg(kMaxSpeedUp);
    const double probabilities[] = {o.faults.drop, o.faults.corrupt, o.faults.junk};
    for (double p : probabilities)
        if (!(p >= 0.0 && p <= 1.0))
            return QStringLiteral("fault probabilities must lie between 0 and 1");
    if (!o.firmware.date.isValid() || o.firmware.date.year() < 2000 || o.firmware.date.year() > 2127)
        return QStringLiteral("the firmware date must be a valid date from 2000 to 2127");
    if (!(o.gpsGapMs >= 0.0 && o.gpsGapMs <= kMaxGpsGapMs))
        return QStringLiteral("the GPS gap must lie between 0 and %1 ms").arg(kMaxGpsGapMs);
    if (!(o.gpsGapEverySeconds > 0.0))
        return QStringLiteral("GPS gaps need a period above 0 seconds");
    const int parts[] = {o.firmware.major, o.firmware.minor, o.firmware.patch};
    for (int v : parts)
        if (v < 0 || v > 127)
            return QStringLiteral("firmware version numbers must lie between 0 and 127");
    return QString();
}

}  // namespace sim
