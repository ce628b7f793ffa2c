#include "PointColouring.h"

namespace display {
namespace {

// Truncate toward zero, keep the low 8 bits (wider than 32 bits first, so that
// the extremes of a 32-bit intensity do not overflow the conversion).
uint8_t lowByte(double value)
{
    return static_cast<uint8_t>(static_cast<int64_t>(value) & 0xFF);
}

}  // namespace

Rgb intensityColour(int32_t intensity)
{
    const double i = intensity;
    Rgb c;
    if (i < 32) {
        c.b = 255;
        c.g = lowByte(i * 8);
    } else if (i < 64) {
        c.g = 255;
        c.b = lowByte(255 - (i - 32) * 4);
    } else if (i < 128) {
        c.g = 255;
        c.r = lowByte(i * 4 - 64);
    } else {
        c.r = 255;
        c.g = lowByte(((255 - i) - 128) * 2);
    }
    return c;
}

Rgb azimuthColour(float azimuth)
{
    if (azimuth < 90)
        return {0, 255, 255};
    if (azimuth < 180)
        return {0, 125, 192};
    if (azimuth < 270)
        return {0, 255, 0};
    return {255, 255, 0};
}

Rgb modeColour(int mode, const lidar::LidarPoint& point)
{
    switch (mode) {
    case IntensityColours:
        return intensityColour(point.intensity);
    case AzimuthColours:
        return azimuthColour(point.azimuth);
    case SolidColour:
        return {255, 255, 255};
    default:
        return {};
    }
}

}  // namespace display
