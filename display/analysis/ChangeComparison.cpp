#include "ChangeComparison.h"

#include "AngleRange.h"

#include <cmath>

namespace display {

ChangeComparison compareWithReference(const ReferenceSweep& reference, const lidar::LidarDataPoint_V4& frame,
                                      const ChangeOptions& options)
{
    ChangeComparison result;
    ChangeSummary& s = result.summary;
    result.classes.reserve(frame.pointCount());
    const AngularBins& bins = reference.bins();
    // In millimetres, as the points measure: no rounding of a metre value
    // moves a point across the tolerance.
    const double toleranceMm = options.toleranceM * 1000.0;
    double largestMm = -1.0;
    for (const auto& line : frame.points) {
        for (const lidar::LidarPoint& p : line) {
            const int bin = bins.binOf(p.azimuth);
            if (bin < 0 || p.distance <= 0 || !inAngleRange(p.azimuth, options.minAngle, options.maxAngle)) {
                result.classes.push_back(ChangeClass::NotCompared);
                continue;
            }
            ++s.compared;
            const double referenceMm = reference.rangeMm(bin);
            if (std::isnan(referenceMm)) {
                ++s.nearer;
                result.classes.push_back(ChangeClass::Nearer);
                continue;
            }
            const double differenceMm = p.distance - referenceMm;
            if (std::abs(differenceMm) > largestMm) {
                largestMm = std::abs(differenceMm);
                s.largestChangeM = differenceMm / 1000.0;
                s.largestChangeAzimuth = p.azimuth;
            }
            if (differenceMm < -toleranceMm) {
                ++s.nearer;
                result.classes.push_back(ChangeClass::Nearer);
            } else if (differenceMm > toleranceMm) {
                ++s.farther;
                result.classes.push_back(ChangeClass::Farther);
            } else {
                result.classes.push_back(ChangeClass::Within);
            }
        }
    }
    s.changed = s.nearer + s.farther;
    return result;
}

}  // namespace display
