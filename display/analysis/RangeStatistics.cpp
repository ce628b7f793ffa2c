#include "RangeStatistics.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace display {

RangeStatistics::RangeStatistics(const AngularBins& bins, bool keepRanges) : bins_(bins), keepRanges_(keepRanges)
{
    clear();
}

void RangeStatistics::clear()
{
    frames_ = 0;
    accumulators_.assign(size_t(bins_.count()), Accumulator());
    ranges_.clear();
    if (keepRanges_)
        ranges_.resize(size_t(bins_.count()));
}

void RangeStatistics::addFrame(const lidar::LidarDataPoint_V4& frame)
{
    const qint64 thisFrame = frames_++;
    for (const auto& line : frame.points) {
        for (const lidar::LidarPoint& p : line) {
            if (p.distance <= 0)
                continue;
            const int bin = bins_.binOf(p.azimuth);
            if (bin < 0)
                continue;
            Accumulator& a = accumulators_[size_t(bin)];
            if (a.returns == 0) {
                a.min = a.max = p.distance;
            } else {
                a.min = std::min(a.min, p.distance);
                a.max = std::max(a.max, p.distance);
            }
            ++a.returns;
            if (a.lastFrame != thisFrame) {
                a.lastFrame = thisFrame;
                ++a.framesWithReturn;
            }
            const double delta = p.distance - a.mean;
            a.mean += delta / double(a.returns);
            a.m2 += delta * (p.distance - a.mean);
            if (keepRanges_)
                ranges_[size_t(bin)].push_back(uint16_t(std::min<int32_t>(p.distance, 0xFFFF)));
        }
    }
}

BinStatistics RangeStatistics::bin(int bin) const
{
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    BinStatistics s;
    s.frames = frames_;
    s.returnRate = nan;
    s.meanM = s.stdM = s.minM = s.maxM = nan;
    if (bin < 0 || bin >= bins_.count())
        return s;
    const Accumulator& a = accumulators_[size_t(bin)];
    s.returns = a.returns;
    s.framesWithReturn = a.framesWithReturn;
    if (frames_ > 0)
        s.returnRate = double(a.framesWithReturn) / double(frames_);
    if (a.returns > 0) {
        s.meanM = a.mean / 1000.0;
        s.stdM = std::sqrt(std::max(a.m2, 0.0) / double(a.returns)) / 1000.0;
        s.minM = a.min / 1000.0;
        s.maxM = a.max / 1000.0;
    }
    return s;
}

RangeHistogram RangeStatistics::histogram(int bin, int buckets) const
{
    RangeHistogram h;
    if (!keepRanges_ || bin < 0 || bin >= bins_.count() || ranges_[size_t(bin)].empty())
        return h;
    const std::vector<uint16_t>& ranges = ranges_[size_t(bin)];
    const auto [lowest, highest] = std::minmax_element(ranges.begin(), ranges.end());
    const int span = int(*highest) - int(*lowest) + 1;  // millimetres covered
    const int width = std::max(1, (span + std::max(buckets, 1) - 1) / std::max(buckets, 1));
    h.fromM = *lowest / 1000.0;
    h.bucketWidthM = width / 1000.0;
    h.counts.fill(0, (span + width - 1) / width);
    for (uint16_t range : ranges)
        ++h.counts[(int(range) - int(*lowest)) / width];
    return h;
}

}  // namespace display
