#include "RangingBearing.h"

#include <cmath>
#include <limits>

namespace display {

RangingComponents RangingBearing::components(double x0, double y0, double x1, double y1)
{
    RangingComponents c;
    const double dx = x1 - x0, dy = y1 - y0;
    c.deltaXCm = dx * 100.0;
    c.deltaYCm = dy * 100.0;
    if (dx == 0.0 && dy == 0.0) {
        c.bearingDegrees = std::numeric_limits<double>::quiet_NaN();
        return c;
    }
    const double degrees = std::atan2(dy, dx) * 180.0 / M_PI;
    c.bearingDegrees = degrees < 0.0 ? degrees + 360.0 : degrees;
    return c;
}

QString RangingBearing::text(const RangingComponents& c)
{
    QString bearing;
    if (c.hasBearing()) {
        const double shown = std::round(c.bearingDegrees * 100.0) / 100.0;
        bearing = QString::number(shown >= 360.0 ? 0.0 : shown, 'f', kPrecision) + QStringLiteral("°");
    }
    // Rounded first, and a negative zero made positive: a tiny negative
    // offset would otherwise read "-0.00".
    const auto centimetres = [](double value) {
        const double scale = std::pow(10.0, kPrecision);
        return QString::number(std::round(value * scale) / scale + 0.0, 'f', kPrecision);
    };
    return QStringLiteral("  ") + tr("Bearing:") + bearing + QStringLiteral("  ")
        + tr("Δx:%1 CM").arg(centimetres(c.deltaXCm)) + QStringLiteral("  ")
        + tr("Δy:%1 CM").arg(centimetres(c.deltaYCm));
}

}  // namespace display
