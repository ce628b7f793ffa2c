#include "RecordingCursor.h"

#include "LIdarFactory.h"
#include "RecordFile.h"

namespace lidar {

RecordingCursor::RecordingCursor(const QString& fileName, int pieceSize)
    : file_(fileName), reader_(file_, pieceSize)
{
}

bool RecordingCursor::fail(Problem problem)
{
    problem_ = problem;
    return false;
}

bool RecordingCursor::open()
{
    if (!file_.open(QIODevice::ReadOnly))
        return fail(Problem::CannotOpen);
    size_ = file_.size();
    QByteArray name;
    if (!reader_.next(name))
        return fail(reader_.status() == RecordReader::Status::Damaged ? Problem::Damaged : Problem::NoElements);
    model_ = QString::fromUtf8(name);
    for (int i = recordPrefixElements(model_); i > 0; --i) {
        QByteArray element;
        if (!reader_.next(element))
            break;  // next() reports the damage, if any
        prefix_.append(element);
    }
    return true;
}

void RecordingCursor::start(std::unique_ptr<OfflineParser> parser)
{
    parser_ = std::move(parser);
    if (parser_)
        parser_->setPrefix(prefix_);
}

bool RecordingCursor::startFromRegistry()
{
    std::unique_ptr<OfflineParser> parser = LIdarFactory::GetInstance()->CopyOfflineParser(model_);
    if (!parser)
        return fail(Problem::UnknownModel);
    start(std::move(parser));
    return true;
}

bool RecordingCursor::resume(const Checkpoint& checkpoint)
{
    if (!checkpoint.parser)
        return false;
    parser_ = checkpoint.parser->clone();
    waiting_.clear();
    taken_ = 0;
    completed_ = checkpoint.frames;
    ended_ = false;
    problem_ = Problem::None;
    if (!file_.isOpen() && !file_.open(QIODevice::ReadOnly))
        return fail(Problem::CannotOpen);
    return reader_.resumeAt(checkpoint.offset, checkpoint.element, checkpoint.announcedCount);
}

RecordingCursor::Checkpoint RecordingCursor::checkpoint() const
{
    Checkpoint at;
    at.offset = reader_.position();
    at.element = reader_.elementsRead();
    at.announcedCount = reader_.announcedCount();
    at.frames = completed_;
    if (parser_)
        at.parser = std::shared_ptr<const OfflineParser>(parser_->clone());
    return at;
}

bool RecordingCursor::readPacket()
{
    if (!parser_ || problem_ != Problem::None)
        return false;
    waiting_.clear();
    taken_ = 0;
    // Once a packet has ended the parse, the rest is still read, not
    // decoded: it is counted and looked at, and damage behind it is found.
    do {
        if (!reader_.next(packet_)) {
            if (reader_.status() == RecordReader::Status::Damaged)
                problem_ = Problem::Damaged;
            return false;
        }
        ++packets_;
        if (observer_)
            observer_(packet_);
    } while (ended_);
    ended_ = !parser_->add(packet_, waiting_);
    if (waiting_.isEmpty())
        waitingHealth_.clear();
    else
        waitingHealth_ = parser_->frameHealth();
    completed_ += waiting_.size();
    return true;
}

bool RecordingCursor::next(LidarDataPoint_V4& frame)
{
    while (taken_ == waiting_.size()) {
        if (!readPacket())
            return false;
    }
    // A parser that keeps no health leaves the record empty.
    health_ = size_t(taken_) < waitingHealth_.size() ? waitingHealth_[size_t(taken_)] : FrameHealth();
    frame = std::move(waiting_[taken_++]);
    return true;
}

}  // namespace lidar
