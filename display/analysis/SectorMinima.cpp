#include "SectorMinima.h"

#include "AngleRange.h"

#include <algorithm>
#include <cmath>

namespace display {
namespace {

double normalised(double degrees)
{
    // Within the turn or one above it: no fmod, which costs more than the rest of a point.
    if (degrees >= 0.0 && degrees < 360.0)
        return degrees;
    if (degrees >= 360.0 && degrees < 720.0)
        return degrees - 360.0;
    const double turn = std::fmod(degrees, 360.0);
    return turn < 0.0 ? turn + 360.0 : turn;
}

}  // namespace

SectorMinima sectorMinima(const lidar::LidarDataPoint_V4& frame, int sectors, float minAngle, float maxAngle)
{
    const int count = std::clamp(sectors, kFewestSectors, kMostSectors);
    const double width = 360.0 / count;
    SectorMinima result;
    result.sectors.resize(count);
    for (int k = 0; k < count; ++k) {
        result.sectors[k].fromAzimuth = normalised(k * width - width / 2.0);
        result.sectors[k].toAzimuth = normalised(k * width + width / 2.0);
    }
    std::vector<int32_t> nearestMm(size_t(count), 0);
    int index = -1;
    for (auto line = frame.points.cbegin(); line != frame.points.cend(); ++line) {
        for (const lidar::LidarPoint& p : line.value()) {
            ++index;
            if (p.distance <= 0 || !std::isfinite(p.azimuth) || !inAngleRange(p.azimuth, minAngle, maxAngle))
                continue;
            // Half a sector on, so that sector 0 starts half a sector below 0.
            const int k = std::min(int(normalised(p.azimuth + width / 2.0) / width), count - 1);
            SectorNearest& s = result.sectors[k];
            if (s.found && p.distance >= nearestMm[size_t(k)])
                continue;
            nearestMm[size_t(k)] = p.distance;
            s.found = true;
            s.distanceM = p.distance / 1000.0;
            s.azimuth = p.azimuth;
            s.x = p.x, s.y = p.y, s.z = p.z;
            s.id = line.key();
            s.pointIndex = index;
        }
    }
    for (int k = 0; k < count; ++k) {
        if (!result.sectors[k].found)
            continue;
        const int best = result.nearestSector;
        if (best < 0 || nearestMm[size_t(k)] < nearestMm[size_t(best)]
            || (nearestMm[size_t(k)] == nearestMm[size_t(best)]
                && result.sectors[k].pointIndex < result.sectors[best].pointIndex))
            result.nearestSector = k;
    }
    return result;
}

}  // namespace display
