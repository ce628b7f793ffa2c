#include "PlayerFrames.h"

#include "CaptureIndexer.h"
#include "FrameIndex.h"
#include "IndexedFrameReader.h"
#include "LIdarFactory.h"
#include "RecordingIndexer.h"
#include "RecordingParse.h"
#include "RecordingRefusal.h"

#include <QCoreApplication>
#include <algorithm>

namespace {

QString tr(const char* text)
{
    return QCoreApplication::translate("OffinePlayWidget", text);
}

int permille(qint64 done, qint64 total)
{
    return total <= 0 ? 0 : int(std::min<qint64>(1000, done * 1000 / total));
}

class RecordingFrames : public PlayerFrames {
public:
    RecordingFrames(QString path, std::unique_ptr<lidar::RecordingCursor> cursor)
        : path_(std::move(path)),
          index_(std::make_shared<lidar::FrameIndex>()),
          reader_(path_, index_),
          fileSize_(cursor->fileSize())
    {
        index_->update(0, cursor->position(), fileSize_);
        indexer_ = std::make_unique<lidar::RecordingIndexer>(std::move(cursor), index_);
        indexer_->start();
    }

    int count() const override { return int(std::min<qint64>(index_->frames(), INT_MAX)); }
    bool isFinal() const override { return index_->isFinished(); }
    int progressPermille() const override
    {
        const lidar::FrameIndex::Progress p = index_->progress();
        return p.outcome == lidar::FrameIndex::Outcome::Indexing ? permille(p.bytesRead, fileSize_) : 1000;
    }
    bool frame(int index, lidar::LidarDataPoint_V4& out) override { return reader_.frame(index, out, &health_); }
    void readAhead(int index) override { reader_.readAhead(index); }
    bool lastHealth(lidar::FrameHealth& out) const override
    {
        out = health_;
        return true;
    }
    const lidar::HealthIndex* healthIndex() const override { return &index_->health(); }
    QString note() const override
    {
        if (index_->progress().outcome != lidar::FrameIndex::Outcome::CutShort || count() == 0)
            return {};
        return tr("The recording ends early (it was cut short, or it is still being written): the %1 frames "
                  "before that point play. \"scandeck-cli repair %2\" makes its complete packets readable again.")
            .arg(count())
            .arg(path_);
    }
    QString refusal() const override { return offline::refusalText(path_); }

private:
    QString path_;
    std::shared_ptr<lidar::FrameIndex> index_;
    lidar::IndexedFrameReader reader_;
    lidar::FrameHealth health_;
    qint64 fileSize_;
    std::unique_ptr<lidar::RecordingIndexer> indexer_;  // stopped first when destroyed
};

class CaptureSpillFrames : public PlayerFrames {
public:
    explicit CaptureSpillFrames(std::unique_ptr<lidar::CaptureIndexer> indexer) : indexer_(std::move(indexer)) {}

    int count() const override { return int(std::min<qint64>(indexer_->frames().count(), INT_MAX)); }
    bool isFinal() const override { return indexer_->isFinished(); }
    int progressPermille() const override
    {
        return isFinal() ? 1000 : permille(indexer_->bytesRead(), indexer_->fileSize());
    }
    bool frame(int index, lidar::LidarDataPoint_V4& out) override
    {
        return indexer_->frames().read(index, out, &health_);
    }
    bool lastHealth(lidar::FrameHealth& out) const override
    {
        out = health_;
        return true;
    }
    const lidar::HealthIndex* healthIndex() const override { return &indexer_->health(); }
    QString note() const override
    {
        if (!isFinal() || count() == 0)
            return {};
        return indexer_->result().warnings.join(QLatin1Char('\n'));
    }
    QString refusal() const override
    {
        const capture::CaptureFramesResult result = indexer_->result();
        return result.ok ? tr("Unable to parse this file") : result.error;
    }

private:
    std::unique_ptr<lidar::CaptureIndexer> indexer_;
    lidar::FrameHealth health_;
};

}  // namespace

QString MemoryFrames::refusal() const
{
    return tr("Unable to parse this file");
}

std::unique_ptr<PlayerFrames> openRecordingFrames(const QString& path, QString& modelName, QString& refusal)
{
    auto cursor = std::make_unique<lidar::RecordingCursor>(path);
    if (!cursor->open()) {
        refusal = offline::refusalText(path);
        return nullptr;
    }
    modelName = cursor->model();
    if (!cursor->startFromRegistry()) {
        // A parse registered without a parser object is run whole, as it
        // always has been; an unknown model has nothing to play.
        if (!LIdarFactory::GetInstance()->parseMap.contains(modelName)) {
            refusal = offline::refusalText(path);
            return nullptr;
        }
        return std::make_unique<MemoryFrames>(lidar::parseRecording(path).frames);
    }
    return std::make_unique<RecordingFrames>(path, std::move(cursor));
}

std::unique_ptr<PlayerFrames> openCaptureFrames(const QString& path, const capture::CaptureOptions& options,
                                                QString& refusal)
{
    auto indexer = std::make_unique<lidar::CaptureIndexer>(path, options);
    if (!indexer->start()) {
        refusal = tr("The frames of the capture cannot be kept: %1").arg(indexer->error());
        return nullptr;
    }
    return std::make_unique<CaptureSpillFrames>(std::move(indexer));
}
