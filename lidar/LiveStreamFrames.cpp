#include "LiveStreamFrames.h"

#include "LIdarFactory.h"
#include "LidarAnalysis.h"

namespace lidar {

std::unique_ptr<LiveStreamFrames> LiveStreamFrames::create(const QString& model, FrameSink sink)
{
    const LIdarFactory* registry = LIdarFactory::GetInstance();
    for (auto entry = registry->classMap.cbegin(); entry != registry->classMap.cend(); ++entry) {
        if (QString::fromLatin1(entry.key()) != model)
            continue;
        std::unique_ptr<LidarAnalysis> session(qobject_cast<LidarAnalysis*>(entry.value()->newInstance()));
        if (!session)
            return nullptr;
        return std::unique_ptr<LiveStreamFrames>(new LiveStreamFrames(std::move(session), std::move(sink)));
    }
    return nullptr;
}

LiveStreamFrames::LiveStreamFrames(std::unique_ptr<LidarAnalysis> session, FrameSink sink)
    : session_(std::move(session)), sink_(std::move(sink))
{
    // A session reports frames only while it counts as connected; it has no
    // link, so whatever it would send back to the lidar goes nowhere.
    session_->connected = 1;
    QObject::connect(session_.get(), &LidarAnalysis::SendleLidarDataSignal, session_.get(),
                     [this](lidar::LidarDataPoint_V4 frame) {
                         ++frames_;
                         sink_(frame);
                     },
                     Qt::DirectConnection);
    QObject::connect(session_.get(), &LidarAnalysis::SendFrameHealthSignal, session_.get(),
                     [this](const lidar::FrameHealth& health, const lidar::StreamTotals& totals) {
                         if (healthSink_)
                             healthSink_(health, totals);
                     },
                     Qt::DirectConnection);
}

LiveStreamFrames::~LiveStreamFrames() = default;

void LiveStreamFrames::setVersionNumber(uint32_t version)
{
    session_->versionNumber = version;
}

StreamTotals LiveStreamFrames::totals() const
{
    return session_->streamCounters.snapshot();
}

void LiveStreamFrames::feed(const QByteArray& bytes, qint64 arrivalNs)
{
    session_->setArrivalTime(arrivalNs > 0 ? quint64(arrivalNs) : 0);
    session_->receiveBuffer.append(bytes);
    session_->ParseLidarData();
}

}  // namespace lidar
