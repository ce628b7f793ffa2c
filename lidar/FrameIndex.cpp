#include "FrameIndex.h"

#include <algorithm>

namespace lidar {

void FrameIndex::addCheckpoint(RecordingCursor::Checkpoint checkpoint)
{
    std::lock_guard<std::mutex> lock(mutex_);
    checkpoints_.push_back(std::move(checkpoint));
}

void FrameIndex::update(qint64 frames, qint64 bytesRead, qint64 fileSize)
{
    std::lock_guard<std::mutex> lock(mutex_);
    progress_.frames = frames;
    progress_.bytesRead = bytesRead;
    progress_.fileSize = fileSize;
}

void FrameIndex::finish(Outcome outcome, qint64 frames, qint64 bytesRead)
{
    std::lock_guard<std::mutex> lock(mutex_);
    progress_.frames = frames;
    progress_.bytesRead = bytesRead;
    progress_.outcome = outcome;
}

FrameIndex::Progress FrameIndex::progress() const
{
    std::lock_guard<std::mutex> lock(mutex_);
    return progress_;
}

RecordingCursor::Checkpoint FrameIndex::checkpointBefore(qint64 frame) const
{
    std::lock_guard<std::mutex> lock(mutex_);
    // Checkpoints are in order of their frames.
    const auto after = std::upper_bound(
        checkpoints_.begin(), checkpoints_.end(), frame,
        [](qint64 f, const RecordingCursor::Checkpoint& c) { return f < c.frames; });
    if (after == checkpoints_.begin())
        return {};
    return *(after - 1);
}

size_t FrameIndex::checkpointCount() const
{
    std::lock_guard<std::mutex> lock(mutex_);
    return checkpoints_.size();
}

}  // namespace lidar
