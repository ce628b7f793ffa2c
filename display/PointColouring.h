#pragma once
// Colours of the points in the 3D view.

#include "AngleRange.h"
#include "LidarRecords.h"

#include <cstdint>

namespace display {

// Items of the colour-mode combo box, in their order.
enum ColourMode { IntensityColours = 0, AzimuthColours = 1, SolidColour = 2 };

struct Rgb {
    uint8_t r = 0;
    uint8_t g = 0;
    uint8_t b = 0;
    bool operator==(const Rgb& o) const { return r == o.r && g == o.g && b == o.b; }
};

// Blue through cyan and green to red. Each channel keeps the low 8 bits of
// its value, so the upper two bands wrap around (intensity 80 has red 0,
// 128 has green 254): that is the look operators know and it stays.
Rgb intensityColour(int32_t intensity);
// One colour per quadrant of the head's rotation.
Rgb azimuthColour(float azimuth);
// The colour of a point in a mode; an unknown mode leaves it black.
Rgb modeColour(int mode, const lidar::LidarPoint& point);

}  // namespace display
