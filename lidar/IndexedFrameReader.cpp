#include "IndexedFrameReader.h"

namespace lidar {

IndexedFrameReader::IndexedFrameReader(QString fileName, std::shared_ptr<const FrameIndex> index)
    : fileName_(std::move(fileName)), index_(std::move(index))
{
}

const IndexedFrameReader::Decoded* IndexedFrameReader::cached(qint64 number) const
{
    for (const Decoded& entry : cache_)
        if (entry.number == number)
            return &entry;
    return nullptr;
}

void IndexedFrameReader::keep(const Decoded& decoded)
{
    if (cached(decoded.number))
        return;
    cache_.push_back(decoded);  // the points are shared, not copied
    if (cache_.size() > size_t(kCachedFrames))
        cache_.pop_front();
}

bool IndexedFrameReader::frame(qint64 number, LidarDataPoint_V4& out, FrameHealth* health)
{
    Decoded decoded;
    if (const Decoded* hit = cached(number)) {
        decoded = *hit;
    } else {
        if (!decode(number, decoded))
            return false;
        keep(decoded);
    }
    out = std::move(decoded.frame);
    if (health)
        *health = std::move(decoded.health);
    return true;
}

void IndexedFrameReader::readAhead(qint64 number)
{
    if (number < 0 || number >= index_->frames() || cached(number))
        return;
    Decoded decoded;
    if (decode(number, decoded))
        keep(decoded);
}

bool IndexedFrameReader::decode(qint64 number, Decoded& out)
{
    if (number < 0 || number >= index_->frames())
        return false;
    const RecordingCursor::Checkpoint checkpoint = index_->checkpointBefore(number);
    if (!checkpoint.parser)
        return false;
    // Straight on from the frame given last when that is no further than
    // from the checkpoint.
    const bool goOn = cursor_ && cursor_->problem() == RecordingCursor::Problem::None
                      && cursor_->nextFrameNumber() <= number && cursor_->nextFrameNumber() >= checkpoint.frames;
    if (!goOn) {
        if (!cursor_) {
            cursor_ = std::make_unique<RecordingCursor>(fileName_, kPieceSize);
            if (!cursor_->open()) {
                cursor_.reset();
                return false;
            }
        }
        if (!cursor_->resume(checkpoint))
            return false;
    }
    LidarDataPoint_V4 frame;
    while (cursor_->nextFrameNumber() <= number) {
        const qint64 at = cursor_->nextFrameNumber();
        if (!cursor_->next(frame))
            return false;  // fewer frames than the index found: the file changed
        ++decoded_;
        if (at == number) {
            out.number = number;
            out.frame = std::move(frame);
            out.health = cursor_->frameHealth();
            return true;
        }
    }
    return false;
}

}  // namespace lidar
