#pragma once
// The health of every frame of a recording or a capture, kept small for the
// player (a recording can hold 288,000 frames): eight bytes a frame, and the
// numbers of the incomplete frames in order, so that the slider can mark
// them and N / Shift+N can jump to the next or previous one. The decoding
// pass appends, any thread reads. The full record of a frame, gaps and all,
// comes with the frame when it is read (IndexedFrameReader, SpilledFrames).

#include "FrameHealth.h"

#include <QtGlobal>
#include <cstdint>
#include <limits>
#include <mutex>
#include <vector>

namespace lidar {

struct FrameHealthSummary {
    uint16_t packets = 0;
    uint16_t missingPackets = 0;
    uint16_t coverage = 0;  // 0 to 65535 for 0 to 1
    uint16_t worstGap = 0;  // the widest gap in 1/100 degree; 0: whole

    static FrameHealthSummary of(const FrameHealth& health);
    bool isWhole() const { return worstGap == 0; }
    double coverageShare() const { return coverage / 65535.0; }
    double worstGapDegrees() const { return worstGap / 100.0; }
};

class HealthIndex {
public:
    static constexpr qint64 kNone = -1;

    void append(const FrameHealth& health);

    qint64 size() const;
    // Frame `frame` (0-based), false beyond the frames appended so far.
    bool summary(qint64 frame, FrameHealthSummary& out) const;
    qint64 incompleteCount() const;
    // The first incomplete frame after `frame`, or the last one before it;
    // kNone when there is none (yet).
    qint64 nextIncomplete(qint64 frame) const;
    qint64 previousIncomplete(qint64 frame) const;
    // The incomplete frames from `first` to `last` inclusive, in order.
    std::vector<qint64> incompleteFrames(qint64 first = 0,
                                         qint64 last = std::numeric_limits<qint64>::max()) const;

private:
    mutable std::mutex mutex_;
    std::vector<FrameHealthSummary> frames_;
    std::vector<qint64> incomplete_;  // ascending
};

}  // namespace lidar
