#include "ScanBins.h"

#include <algorithm>
#include <cmath>

namespace {

// A step finer than this, or none, still makes a usable scan.
constexpr int kMostBins = 360 * 100;

}  // namespace

ScanBins::ScanBins(double angularStepDegrees)
{
    const double bins = angularStepDegrees > 0.0 ? std::round(360.0 / angularStepDegrees) : 1.0;
    count_ = int(std::clamp(bins, 1.0, double(kMostBins)));
}

double ScanBins::scanAngle(double azimuthDegrees)
{
    const double angle = std::fmod(90.0 - azimuthDegrees, 360.0);
    return angle < 0.0 ? angle + 360.0 : angle;
}

int ScanBins::binOf(double azimuthDegrees) const
{
    const long bin = std::lround(scanAngle(azimuthDegrees) / incrementDegrees());
    return int(bin % count_);
}
