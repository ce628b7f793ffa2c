#pragma once
// Where the frames of a recording begin, found by one pass over it on a
// thread of its own while the window goes on: a checkpoint every few frames
// (a place in the file and the parse's state there) and the number of
// frames found so far. The indexing thread writes it, any thread reads it.

#include "HealthIndex.h"
#include "RecordingCursor.h"

#include <QString>
#include <mutex>
#include <vector>

namespace lidar {

class FrameIndex {
public:
    // A checkpoint is kept every this many frames: a frame is then never
    // more than this many frames' decoding away.
    static constexpr int kCheckpointEvery = 32;

    enum class Outcome {
        Indexing,  // the pass goes on
        Complete,  // every packet was read
        Ended,     // a packet ended the parse: nothing after it is decoded
        CutShort,  // the file ends inside an element (unfinished or damaged)
        Stopped,   // stopped before the end
    };

    struct Progress {
        qint64 frames = 0;
        qint64 bytesRead = 0;
        qint64 fileSize = 0;
        Outcome outcome = Outcome::Indexing;
    };

    // Written by the indexing pass.
    void addCheckpoint(RecordingCursor::Checkpoint checkpoint);
    void update(qint64 frames, qint64 bytesRead, qint64 fileSize);
    void finish(Outcome outcome, qint64 frames, qint64 bytesRead);

    Progress progress() const;
    qint64 frames() const { return progress().frames; }
    bool isFinished() const { return progress().outcome != Outcome::Indexing; }
    // The last checkpoint at or before frame `frame` (0-based); one without
    // a parser when there is none yet.
    RecordingCursor::Checkpoint checkpointBefore(qint64 frame) const;
    size_t checkpointCount() const;

    // The health of each frame found so far (the indexing pass appends):
    // health().summary(k), health().nextIncomplete(k) and so on.
    HealthIndex& health() { return health_; }
    const HealthIndex& health() const { return health_; }

private:
    mutable std::mutex mutex_;
    std::vector<RecordingCursor::Checkpoint> checkpoints_;
    Progress progress_;
    HealthIndex health_;
};

}  // namespace lidar
