#include "AngularBins.h"

#include <algorithm>

namespace display {
namespace {

// Finer than 1/100 degree no model measures; the limit keeps a corrupt
// step from asking for millions of bins.
constexpr double kMostBins = 360.0 * 100.0;
constexpr double kSameStepTolerance = 0.01;

}  // namespace

AngularBins::AngularBins(double angularStepDegrees)
{
    if (!(angularStepDegrees > 0.0) || !std::isfinite(angularStepDegrees))
        return;
    step_ = angularStepDegrees;
    count_ = int(std::clamp(std::round(360.0 / angularStepDegrees), 1.0, kMostBins));
    width_ = 360.0 / count_;
}

bool sameAngularStep(double a, double b)
{
    if (!(a > 0.0) || !(b > 0.0))
        return false;
    return std::abs(a - b) <= kSameStepTolerance * std::max(a, b);
}

}  // namespace display
