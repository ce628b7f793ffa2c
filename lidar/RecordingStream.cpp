#include "RecordingStream.h"

#include "RecordFile.h"

namespace lidar {

RecordingStream::RecordingStream(const QString& fileName) : file_(fileName), reader_(file_) {}

bool RecordingStream::fail(Problem problem)
{
    problem_ = problem;
    return false;
}

bool RecordingStream::open()
{
    if (!file_.open(QIODevice::ReadOnly))
        return fail(Problem::CannotOpen);
    size_ = file_.size();
    QByteArray name;
    if (!reader_.next(name))
        return fail(reader_.status() == RecordReader::Status::Damaged ? Problem::Damaged : Problem::NoElements);
    model_ = QString::fromUtf8(name);
    QVector<QByteArray> prefix;
    for (int i = recordPrefixElements(model_); i > 0; --i) {
        QByteArray element;
        if (!reader_.next(element))
            break;  // run() reports the damage, if any
        prefix.append(element);
    }
    version_ = prefix.value(0);
    decoder_ = std::make_unique<RecordingDecoder>(model_, prefix);
    return true;
}

bool RecordingStream::deliver(QVector<LidarDataPoint_V4>& frames, const FrameSink& sink)
{
    bool goOn = true;
    for (int i = 0; i < frames.size() && goOn; ++i)
        goOn = sink(frames[i]);
    frames.clear();
    return goOn;
}

bool RecordingStream::run(const FrameSink& sink)
{
    if (!decoder_)
        return false;
    QVector<LidarDataPoint_V4> frames;
    QByteArray packet;
    while (reader_.next(packet)) {
        ++packets_;
        if (observer_)
            observer_(packet);
        decoder_->add(packet, frames);
        if (!frames.isEmpty() && !deliver(frames, sink))
            return false;
    }
    if (reader_.status() == RecordReader::Status::Damaged)
        return fail(Problem::Damaged);
    decoder_->finish(frames);
    return deliver(frames, sink);
}

}  // namespace lidar
