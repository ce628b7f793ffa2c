#include "ReferenceSweep.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace display {
namespace {

constexpr int32_t kNoReturn = std::numeric_limits<int32_t>::max();

// The median of the values (reordered); the mean of the middle two for an
// even count.
double median(std::vector<int32_t>& values)
{
    const size_t middle = values.size() / 2;
    std::nth_element(values.begin(), values.begin() + long(middle), values.end());
    const double upper = values[middle];
    if (values.size() % 2 == 1)
        return upper;
    const double lower = *std::max_element(values.begin(), values.begin() + long(middle));
    return (lower + upper) / 2.0;
}

}  // namespace

ReferenceSweep::ReferenceSweep(QString model, double angularStepDegrees)
    : model_(std::move(model)), bins_(angularStepDegrees)
{
    rangesMm_.assign(size_t(bins_.count()), std::numeric_limits<double>::quiet_NaN());
}

bool ReferenceSweep::hasRange(int bin) const
{
    return bin >= 0 && bin < bins_.count() && !std::isnan(rangesMm_[size_t(bin)]);
}

void ReferenceSweep::setRangeMm(int bin, double millimetres)
{
    if (bin >= 0 && bin < bins_.count())
        rangesMm_[size_t(bin)] = millimetres;
}

int ReferenceSweep::directionsWithRange() const
{
    return int(std::count_if(rangesMm_.begin(), rangesMm_.end(), [](double r) { return !std::isnan(r); }));
}

ReferenceCollector::ReferenceCollector(QString model, double angularStepDegrees, int frames)
    : empty_(std::move(model), angularStepDegrees), wanted_(std::clamp(frames, kFewestFrames, kMostFrames))
{
    nearest_.assign(size_t(empty_.bins().count()), kNoReturn);
    ranges_.resize(size_t(empty_.bins().count()));
}

bool ReferenceCollector::addFrame(const lidar::LidarDataPoint_V4& frame)
{
    if (isComplete() || !empty_.isValid())
        return isComplete();
    const AngularBins& bins = empty_.bins();
    for (const auto& line : frame.points) {
        for (const lidar::LidarPoint& p : line) {
            if (p.distance <= 0)
                continue;
            const int bin = bins.binOf(p.azimuth);
            if (bin >= 0)
                nearest_[size_t(bin)] = std::min(nearest_[size_t(bin)], p.distance);
        }
    }
    for (size_t bin = 0; bin < nearest_.size(); ++bin) {
        if (nearest_[bin] == kNoReturn)
            continue;
        ranges_[bin].push_back(nearest_[bin]);
        nearest_[bin] = kNoReturn;
    }
    ++added_;
    return isComplete();
}

ReferenceSweep ReferenceCollector::reference() const
{
    ReferenceSweep sweep = empty_;
    std::vector<int32_t> values;
    for (size_t bin = 0; bin < ranges_.size(); ++bin) {
        if (ranges_[bin].empty())
            continue;
        values = ranges_[bin];
        sweep.setRangeMm(int(bin), median(values));
    }
    return sweep;
}

ReferenceSweep referenceFromFrame(const QString& model, double angularStepDegrees,
                                  const lidar::LidarDataPoint_V4& frame)
{
    ReferenceCollector collector(model, angularStepDegrees, 1);
    collector.addFrame(frame);
    return collector.reference();
}

}  // namespace display
