#include "PointRounding.h"

#include <cmath>

namespace display {

float roundCoordinate(float value)
{
    const float hundredths = value * 100.0f;
    const double n = std::floor(double(hundredths) + 0.5);
    return static_cast<float>(n * 0.01);
}

void roundFrameCoordinates(lidar::LidarDataPoint_V4& frame)
{
    for (auto line = frame.points.begin(); line != frame.points.end(); ++line) {
        for (lidar::LidarPoint& p : line.value()) {
            p.x = roundCoordinate(p.x);
            p.y = roundCoordinate(p.y);
            p.z = roundCoordinate(p.z);
        }
    }
}

}  // namespace display
