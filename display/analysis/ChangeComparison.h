#pragma once
// What has changed since the reference was taken: each point of a frame
// against the reference range of its direction. A point nearer than the
// reference by more than the tolerance is "nearer" (something came in, the
// mount turned), one farther by more is "farther" (something went away),
// anything else is "within". A point in a direction where nothing returned
// while the reference was taken is nearer too: it stands where there was
// open space, by an amount that has no number.

#include "ReferenceSweep.h"

#include <cstdint>
#include <limits>
#include <vector>

namespace display {

enum class ChangeClass : uint8_t {
    Within,
    Nearer,
    Farther,
    NotCompared,  // outside the angle range asked for, or without an echo
};

struct ChangeOptions {
    static constexpr double kDefaultToleranceM = 0.05;
    double toleranceM = kDefaultToleranceM;
    // Only points in this azimuth range (inclusive, as the view's) count.
    float minAngle = 0.0f;
    float maxAngle = 360.0f;
};

struct ChangeSummary {
    int compared = 0;  // points held against the reference
    int changed = 0;   // nearer + farther
    int nearer = 0;
    int farther = 0;
    // The largest difference from a reference range (signed, metres:
    // negative is nearer) and the azimuth of its point, whether beyond the
    // tolerance or not. NaN when no point had a reference range to differ
    // from.
    double largestChangeM = std::numeric_limits<double>::quiet_NaN();
    double largestChangeAzimuth = std::numeric_limits<double>::quiet_NaN();
    bool hasLargestChange() const { return largestChangeM == largestChangeM; }
};

struct ChangeComparison {
    // One class per point of the frame, in the order the frame holds them:
    // IDs in increasing order, each ID's points in array order.
    std::vector<ChangeClass> classes;
    ChangeSummary summary;
};

// An invalid reference compares nothing: every point is NotCompared.
ChangeComparison compareWithReference(const ReferenceSweep& reference, const lidar::LidarDataPoint_V4& frame,
                                      const ChangeOptions& options = ChangeOptions());

}  // namespace display
