#pragma once
// The nearest return in each of S equal sectors around the lidar, for a
// safety check of what comes closest in each direction, and the nearest
// point of the whole frame. Sector k is centred on k * 360/S degrees of
// azimuth, so sector 0 looks straight ahead (+y) and reaches across 0:
// with 12 sectors it runs from 345 to 15 degrees.

#include "LidarRecords.h"

#include <QVector>

namespace display {

struct SectorNearest {
    // The sector's edges in degrees of azimuth, each in 0..360; `from` is
    // above `to` for the sector across 0.
    double fromAzimuth = 0.0;
    double toAzimuth = 0.0;
    bool found = false;  // a return in the sector; the rest holds only then
    double distanceM = 0.0;
    double azimuth = 0.0;
    float x = 0.0f, y = 0.0f, z = 0.0f;  // metres, as the frame has them
    int id = 0;          // the point's ID in the frame
    int pointIndex = 0;  // its place among all the frame's points, in ID and array order
};

struct SectorMinima {
    QVector<SectorNearest> sectors;
    int nearestSector = -1;  // the sector holding the frame's nearest point; -1: no return at all
    const SectorNearest* nearest() const { return nearestSector >= 0 ? &sectors[nearestSector] : nullptr; }
};

constexpr int kDefaultSectors = 12;
constexpr int kFewestSectors = 4;
constexpr int kMostSectors = 36;

// `sectors` is clamped to kFewestSectors..kMostSectors. Only returns (a
// distance above zero) with minAngle <= azimuth <= maxAngle count. Of two
// returns at the same distance the first in the frame stands.
SectorMinima sectorMinima(const lidar::LidarDataPoint_V4& frame, int sectors = kDefaultSectors,
                          float minAngle = 0.0f, float maxAngle = 360.0f);

}  // namespace display
