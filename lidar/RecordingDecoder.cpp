#include "RecordingDecoder.h"

#include "LIdarFactory.h"

namespace lidar {

RecordingDecoder::RecordingDecoder(const QString& model, const QVector<QByteArray>& prefix)
    : prefixSize_(prefix.size()), waiting_(prefix)
{
    const LIdarFactory* registry = LIdarFactory::GetInstance();
    batch_ = registry->batchParseMap.value(model);
    if (!batch_)
        whole_ = registry->parseMap.value(model);
    if (batch_)
        waiting_.reserve(prefixSize_ + kBatchPackets);
}

void RecordingDecoder::add(const QByteArray& packet, QVector<LidarDataPoint_V4>& frames)
{
    ++added_;
    if (ended_ || !isKnownModel())
        return;
    waiting_.append(packet);
    if (batch_ && waiting_.size() - prefixSize_ >= kBatchPackets)
        decodeWaiting(frames);
}

void RecordingDecoder::finish(QVector<LidarDataPoint_V4>& frames)
{
    if (whole_) {
        // One call with everything, as a recording has always been parsed.
        frames += whole_(waiting_);
        waiting_.resize(prefixSize_);
        return;
    }
    decodeWaiting(frames);
}

void RecordingDecoder::decodeWaiting(QVector<LidarDataPoint_V4>& frames)
{
    if (!batch_ || ended_ || waiting_.size() == prefixSize_)
        return;
    ended_ = !batch_(waiting_, frames);
    waiting_.resize(prefixSize_);
}

}  // namespace lidar
