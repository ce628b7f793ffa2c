#include "RecordingIndexer.h"

#include "LIdarFactory.h"

namespace lidar {

RecordingIndexer::RecordingIndexer(std::unique_ptr<RecordingCursor> cursor, std::shared_ptr<FrameIndex> index)
    : cursor_(std::move(cursor)), index_(std::move(index))
{
}

RecordingIndexer::~RecordingIndexer()
{
    stop();
}

void RecordingIndexer::start()
{
    if (!thread_.joinable())
        thread_ = std::thread([this] { run(); });
}

void RecordingIndexer::stop()
{
    stopRequested_ = true;
    if (thread_.joinable())
        thread_.join();
}

void RecordingIndexer::run()
{
    RecordingCursor& cursor = *cursor_;
    index_->addCheckpoint(cursor.checkpoint());
    qint64 lastCheckpoint = 0;
    qint64 frames = 0;
    LidarDataPoint_V4 frame;
    while (!stopRequested_.load(std::memory_order_relaxed) && cursor.next(frame)) {
        index_->health().append(cursor.frameHealth());
        if (observer_)
            observer_(frames, frame);
        ++frames;
        if (frames - lastCheckpoint >= FrameIndex::kCheckpointEvery && cursor.atPacketBoundary()) {
            index_->addCheckpoint(cursor.checkpoint());
            lastCheckpoint = frames;
        }
        index_->update(frames, cursor.position(), cursor.fileSize());
    }
    FrameIndex::Outcome outcome = FrameIndex::Outcome::Complete;
    if (stopRequested_)
        outcome = FrameIndex::Outcome::Stopped;
    else if (cursor.problem() == RecordingCursor::Problem::Damaged)
        outcome = FrameIndex::Outcome::CutShort;
    else if (cursor.ended())
        outcome = FrameIndex::Outcome::Ended;
    // A pass that read to the end leaves the parse where the registry's
    // parse of the same file would have.
    if (outcome != FrameIndex::Outcome::Stopped && cursor.parser())
        LIdarFactory::GetInstance()->KeepOfflineParserState(cursor.model(), *cursor.parser());
    index_->finish(outcome, frames, cursor.position());
}

}  // namespace lidar
