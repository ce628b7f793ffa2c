#pragma once
// A model's offline parser that can be told to take its time over each
// packet, so that a test finds a recording's index still growing; and a
// guard that puts it in the registry's place for the model for a while.

#include "LIdarFactory.h"
#include "OfflineParser.h"

#include <QThread>
#include <atomic>
#include <memory>

namespace testing {

class SlowOfflineParser : public lidar::OfflineParser {
public:
    SlowOfflineParser(std::unique_ptr<lidar::OfflineParser> inner, std::shared_ptr<std::atomic<int>> microseconds)
        : inner_(std::move(inner)), microseconds_(std::move(microseconds))
    {
    }
    std::unique_ptr<lidar::OfflineParser> clone() const override
    {
        return std::make_unique<SlowOfflineParser>(inner_->clone(), microseconds_);
    }
    void assign(const lidar::OfflineParser& other) override
    {
        inner_->assign(*static_cast<const SlowOfflineParser&>(other).inner_);
    }
    void setPrefix(const QVector<QByteArray>& prefix) override { inner_->setPrefix(prefix); }
    bool add(const QByteArray& packet, QVector<lidar::LidarDataPoint_V4>& frames) override
    {
        if (const int us = microseconds_->load())
            QThread::usleep(us);
        return inner_->add(packet, frames);
    }
    const std::vector<lidar::FrameHealth>& frameHealth() const override { return inner_->frameHealth(); }
    lidar::StreamTotals totals() const override { return inner_->totals(); }

private:
    std::unique_ptr<lidar::OfflineParser> inner_;
    std::shared_ptr<std::atomic<int>> microseconds_;
};

// While it lives, `model`'s recordings are read on demand through a slow
// copy of its parser (as it stands when the guard is made).
class SlowParsing {
public:
    SlowParsing(const QString& model, int microsecondsPerPacket)
        : model_(model),
          original_(LIdarFactory::GetInstance()->offlineParsers.value(model)),
          delay_(std::make_shared<std::atomic<int>>(microsecondsPerPacket)),
          slow_(LIdarFactory::GetInstance()->CopyOfflineParser(model), delay_)
    {
        LIdarFactory::GetInstance()->RegisterOfflineParser(model_, &slow_);
    }
    ~SlowParsing() { LIdarFactory::GetInstance()->RegisterOfflineParser(model_, original_); }
    void setDelay(int microseconds) { *delay_ = microseconds; }

private:
    QString model_;
    lidar::OfflineParser* original_;
    std::shared_ptr<std::atomic<int>> delay_;
    SlowOfflineParser slow_;
};

}  // namespace testing
