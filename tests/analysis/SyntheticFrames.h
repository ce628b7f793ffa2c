#pragma once
// Frames of known geometry for the measuring tools' tests: one point every
// `step` degrees from 0 (at exactly k * step, as a lidar's packets place
// them), at the range a function of the azimuth gives, coordinates as the
// decoders make them (x = sin, y = cos).

#include "LidarRecords.h"

#include <cmath>
#include <functional>

namespace synthetic {

using RangeOf = std::function<double(double azimuthDegrees)>;  // metres; 0 or less: no point

inline lidar::LidarPoint point(double azimuthDegrees, double metres)
{
    lidar::LidarPoint p;
    p.azimuth = float(azimuthDegrees);
    p.distance = int32_t(std::lround(metres * 1000.0));
    const double rad = azimuthDegrees * M_PI / 180.0;
    p.x = float(std::sin(rad) * p.distance / 1000.0);
    p.y = float(std::cos(rad) * p.distance / 1000.0);
    return p;
}

inline lidar::LidarDataPoint_V4 sweep(double step, const RangeOf& range)
{
    lidar::LidarDataPoint_V4 frame;
    const int count = int(std::lround(360.0 / step));
    for (int k = 0; k < count; ++k) {
        const double azimuth = k * step;
        const double metres = range(azimuth);
        if (metres > 0.0)
            frame.points[0].push_back(point(azimuth, metres));
    }
    return frame;
}

// Whether an azimuth lies in from..to (inclusive), also for a span across 0
// (from above to).
inline bool inSpan(double azimuth, double from, double to)
{
    return from <= to ? from <= azimuth && azimuth <= to : azimuth >= from || azimuth <= to;
}

}  // namespace synthetic
