#pragma once
// How whole a revolution came in, and what the stream around it passed over.
// One accounting serves live sessions, recordings, captures and the CLI: it
// watches the packets the decoders cut and place, and never alters a frame.
//
// Degrees are azimuths as the frames give them, 0 to 360. A gap runs from
// `start` to `end` in the direction of rising azimuth; one whose end lies
// below its start runs through 0 degrees.

#include <QMetaType>
#include <QVector>
#include <cstdint>

namespace lidar {

struct AngularGap {
    float start = 0.0f;
    float end = 0.0f;

    float width() const { return end >= start ? end - start : end + 360.0f - start; }
};

struct FrameHealth {
    // Data packets that start in this revolution. A packet whose degrees
    // reach past 360 counts here; its last degrees cover the start of the
    // next revolution, where its points go too.
    int32_t packets = 0;
    // Packets the lidar would have sent for the uncovered degrees, counted
    // where they would have started, so that a packet lost across 0 degrees
    // counts once, in the revolution it starts in.
    int32_t missingPackets = 0;
    float coverage = 0.0f;     // covered share of the 360 degrees, 0 to 1
    QVector<AngularGap> gaps;  // uncovered stretches, by their start from 0 degrees
    int32_t points = 0;        // points of the frame
    int32_t returns = 0;       // of them, points with a distance above 0
    // One revolution's time, from the first packets of this revolution and
    // the next: their GPS stamps where the model has them, otherwise their
    // arrival (live). Negative when unknown (a recording of a model without
    // GPS time).
    double periodMs = -1.0;
    int32_t motorSpeed = -1;  // r/min as the frame reports it, -1 when it does not

    // Whole: nothing of the circle is missing.
    bool isWhole() const { return gaps.isEmpty(); }
    bool hasPeriod() const { return periodMs >= 0.0; }
    // The widest gap, or an empty one at 0 when whole.
    AngularGap worstGap() const;
};

// Running totals of a stream: a live session's since it was made, a
// recording's or a capture's from its start.
struct StreamTotals {
    quint64 packets = 0;          // data packets decoded
    quint64 rejectedPackets = 0;  // pieces cut out but refused: length, trailer or checksum
    quint64 skippedBytes = 0;     // bytes passed over while finding the next packet
    quint64 replies = 0;          // parameter replies
    quint64 frames = 0;           // revolutions completed
    quint64 incompleteFrames = 0;
    quint64 missingPackets = 0;

    void addFrame(const FrameHealth& health)
    {
        ++frames;
        incompleteFrames += health.isWhole() ? 0 : 1;
        missingPackets += quint64(health.missingPackets);
    }
};

// A stretch of degrees covered by received packets, within 0 to 360.
struct CoveredSpan {
    float start = 0.0f;
    float end = 0.0f;
};

struct CoverageMeasure {
    float coverage = 0.0f;
    QVector<AngularGap> gaps;
    int32_t missingPackets = 0;
};

// The gaps a revolution's covered spans (any order, overlaps allowed) leave
// in the circle, given `pitch`, the degrees one packet covers (0: unknown).
// A space narrower than an eighth of a packet is the jitter of start angles,
// not a gap. Packets missing from a gap between two packets: its width in
// packets, rounded. At the ends of the turn they are counted by where they
// would start: those that would start before 360 degrees count in this
// turn, those that would start before the first packet received count only
// from 0 degrees on (a quarter packet of slack each way).
CoverageMeasure measureCoverage(const CoveredSpan* spans, int count, double pitch);

// Registers "lidar::FrameHealth" and "lidar::StreamTotals" for queued
// connections. Safe to call more than once.
void registerHealthMetaTypes();

}  // namespace lidar

Q_DECLARE_METATYPE(lidar::FrameHealth)
Q_DECLARE_METATYPE(lidar::StreamTotals)
