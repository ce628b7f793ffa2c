#include "RecordingStream.h"

#include "LIdarFactory.h"

namespace lidar {

RecordingStream::RecordingStream(const QString& fileName) : cursor_(fileName) {}

bool RecordingStream::open()
{
    if (!cursor_.open())
        return false;
    known_ = cursor_.startFromRegistry();
    return true;
}

RecordingStream::Problem RecordingStream::problem() const
{
    switch (cursor_.problem()) {
    case RecordingCursor::Problem::CannotOpen: return Problem::CannotOpen;
    case RecordingCursor::Problem::Damaged: return Problem::Damaged;
    case RecordingCursor::Problem::NoElements: return Problem::NoElements;
    case RecordingCursor::Problem::None:
    case RecordingCursor::Problem::UnknownModel: break;
    }
    return Problem::None;
}

bool RecordingStream::run(const FrameSink& sink)
{
    if (!known_)
        return false;
    LidarDataPoint_V4 frame;
    bool stopped = false;
    while (cursor_.next(frame)) {
        if (!sink(frame)) {
            stopped = true;
            break;
        }
    }
    // The parse's state goes back as the registry's own parse would leave it.
    if (cursor_.parser())
        LIdarFactory::GetInstance()->KeepOfflineParserState(model(), *cursor_.parser());
    return !stopped && problem() == Problem::None;
}

}  // namespace lidar
