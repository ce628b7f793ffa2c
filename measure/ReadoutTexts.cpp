#include "ReadoutTexts.h"

#include <QtMath>
#include <cmath>

double ReadoutTexts::cursorAzimuth(double x, double y)
{
    // Converted with the full 180/pi, so that the y axis reads exactly 0.
    const double a0 = qRadiansToDegrees(std::asin(std::abs(y) / std::sqrt(x * x + y * y)));
    if (x > 0 && y > 0)
        return 180.0 - a0 - 90.0;
    if (x > 0 && y < 0)
        return a0 + 180.0 - 90.0;
    if (x < 0 && y < 0)
        return 360.0 - a0 - 90.0;
    if (x < 0 && y > 0)
        return a0 + 360.0 - 90.0;
    return a0 - 90.0;
}

QString ReadoutTexts::azimuth(double degrees)
{
    if (std::isnan(degrees))
        return noAzimuth();
    return tr("Azimuth:%1").arg(degrees, 0, 'g', 6);
}

QString ReadoutTexts::distance(double metres)
{
    return tr("Distance:%1").arg(metres, 0, 'g', 6);
}

QString ReadoutTexts::noAzimuth()
{
    return tr("Azimuth:");
}

QString ReadoutTexts::noDistance()
{
    return tr("Distance:");
}

QString ReadoutTexts::motorSpeed(int32_t speed)
{
    if (speed == -1)
        return tr("motor speed:");
    // The words are as operators know them, although the second figure is
    // in revolutions per minute.
    return tr("motor speed: %1 hz,%2 r/s").arg(qRound(speed / 60.0)).arg(speed);
}

QString ReadoutTexts::deltaX(double metres)
{
    return tr("Δx:%1 CM").arg(metres * 100.0, 0, 'f', kPrecision);
}

QString ReadoutTexts::deltaY(double metres)
{
    return tr("Δy:%1 CM").arg(metres * 100.0, 0, 'f', kPrecision);
}

QString ReadoutTexts::deltaDistance(double millimetres)
{
    return tr("Δdistance:%1 CM").arg(millimetres / 10.0, 0, 'f', kPrecision);
}

QString ReadoutTexts::noDeltaX()
{
    return tr("Δx:");
}

QString ReadoutTexts::noDeltaY()
{
    return tr("Δy:");
}

QString ReadoutTexts::noDeltaDistance()
{
    return tr("Δdistance:");
}

QString ReadoutTexts::ambient(int32_t value)
{
    return tr("Ambient:%1").arg(value);
}
