#pragma once
// How each direction of a lidar behaves over many frames: how often it
// returns and how far, how widely its ranges spread. Fed one frame at a time
// (live, or frames read from a recording), so any number of frames fits in
// the same memory unless the ranges themselves are kept for histograms.
//
// A return is a point with a distance above zero. The return rate of a
// direction is the share of frames in which it returned at least once; the
// returns themselves may be more than the frames where several points share
// a direction (the two channels of a Wren_Plus). Mean and standard deviation
// (of the population, not of a sample) are accumulated in double by
// Welford's method, which stays exact where sums of squares of ranges of
// many metres would cancel.

#include "AngularBins.h"
#include "LidarRecords.h"

#include <QVector>
#include <cstdint>
#include <vector>

namespace display {

struct BinStatistics {
    qint64 frames = 0;   // frames collected
    qint64 returns = 0;  // returns in the direction over them
    qint64 framesWithReturn = 0;
    // framesWithReturn / frames; NaN without frames.
    double returnRate = 0.0;
    // Metres; NaN without a return.
    double meanM = 0.0;
    double stdM = 0.0;
    double minM = 0.0;
    double maxM = 0.0;
};

// Counts of a direction's ranges in buckets of equal width from `fromM`.
struct RangeHistogram {
    double fromM = 0.0;
    double bucketWidthM = 0.0;
    QVector<int> counts;
    bool isEmpty() const { return counts.isEmpty(); }
};

class RangeStatistics {
public:
    static constexpr int kDefaultFrames = 100;  // what the window collects unless told otherwise

    // `keepRanges`: keep every return's range (two bytes each) for
    // histogram(); statistics alone take a fixed few bytes per direction.
    explicit RangeStatistics(const AngularBins& bins, bool keepRanges = false);

    void addFrame(const lidar::LidarDataPoint_V4& frame);
    void clear();  // back to no frame, same bins

    const AngularBins& bins() const { return bins_; }
    qint64 frames() const { return frames_; }
    bool keepsRanges() const { return keepRanges_; }
    BinStatistics bin(int bin) const;
    // The ranges of a direction in at most `buckets` buckets of a whole
    // number of millimetres from its minimum to its maximum; empty without
    // kept ranges or without a return.
    RangeHistogram histogram(int bin, int buckets = 20) const;

private:
    struct Accumulator {
        qint64 returns = 0;
        qint64 framesWithReturn = 0;
        qint64 lastFrame = -1;  // the frame its last return came in
        double mean = 0.0;      // millimetres
        double m2 = 0.0;        // sum of squared deviations from the mean, mm²
        int32_t min = 0;
        int32_t max = 0;
    };

    AngularBins bins_;
    bool keepRanges_;
    qint64 frames_ = 0;
    std::vector<Accumulator> accumulators_;
    // Millimetres; the models' distance words hold at most 16 bits.
    std::vector<std::vector<uint16_t>> ranges_;
};

}  // namespace display
