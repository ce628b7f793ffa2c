#pragma once
// What an installation looked like when it was set up: one range per
// direction of the model's angular step. It is taken from one frame or as
// the per-direction median over several (ReferenceCollector), compared with
// later frames (ChangeComparison.h) and kept in a small file across days
// (ReferenceFile.h).

#include "AngularBins.h"
#include "LidarRecords.h"

#include <QString>
#include <vector>

namespace display {

class ReferenceSweep {
public:
    ReferenceSweep() = default;  // isValid() false
    // Every direction without a range until one is set.
    ReferenceSweep(QString model, double angularStepDegrees);

    bool isValid() const { return bins_.isValid(); }
    const QString& model() const { return model_; }
    double angularStep() const { return bins_.angularStep(); }
    const AngularBins& bins() const { return bins_; }

    // The range of a direction in millimetres (a median may end in .5), or
    // NaN where nothing returned while the reference was taken.
    double rangeMm(int bin) const { return rangesMm_[size_t(bin)]; }
    bool hasRange(int bin) const;
    void setRangeMm(int bin, double millimetres);  // NaN: no range
    int directionsWithRange() const;

private:
    QString model_;
    AngularBins bins_;
    std::vector<double> rangesMm_;
};

// Gathers the frames a reference is taken from and makes it: per direction
// the median of the nearest return of each frame in which the direction
// returned. The nearest, because several points can share a direction (the
// two channels of a Wren_Plus) and an object in front is what counts; the
// median, because it ignores the odd stray return a mean would follow.
class ReferenceCollector {
public:
    static constexpr int kDefaultFrames = 20;
    static constexpr int kFewestFrames = 1;
    static constexpr int kMostFrames = 1000;

    // `frames` is clamped to kFewestFrames..kMostFrames.
    ReferenceCollector(QString model, double angularStepDegrees, int frames = kDefaultFrames);

    // Takes the frame while more are wanted (a frame beyond them is
    // ignored); true once the reference is complete.
    bool addFrame(const lidar::LidarDataPoint_V4& frame);
    int framesWanted() const { return wanted_; }
    int framesAdded() const { return added_; }
    bool isComplete() const { return added_ >= wanted_; }

    // The median over the frames added so far (all wanted ones once complete).
    ReferenceSweep reference() const;

private:
    ReferenceSweep empty_;
    int wanted_;
    int added_ = 0;
    std::vector<int32_t> nearest_;              // this frame's nearest return per direction, scratch
    std::vector<std::vector<int32_t>> ranges_;  // per direction, one nearest return per frame that had one
};

// The reference of a single frame.
ReferenceSweep referenceFromFrame(const QString& model, double angularStepDegrees,
                                  const lidar::LidarDataPoint_V4& frame);

}  // namespace display
