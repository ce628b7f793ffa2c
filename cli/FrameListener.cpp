#include "FrameListener.h"

#include "PointRounding.h"

FrameListener::FrameListener(std::shared_ptr<LidarAnalysis> session, int frameLimit, cli::CsvOutput* csv,
                             int confirmedType, QObject* parent)
    : QObject(parent), session_(std::move(session)), frameLimit_(frameLimit), csv_(csv),
      confirmedType_(confirmedType)
{
    timeout_.setSingleShot(true);
    connect(&timeout_, &QTimer::timeout, this, &FrameListener::onTimeout);
    // Queued: the session lives on the worker thread, frames are copied over.
    // A frame's health is emitted just before the frame and arrives before it.
    connect(session_.get(), &LidarAnalysis::SendFrameHealthSignal, this, &FrameListener::onHealth,
            Qt::QueuedConnection);
    connect(session_.get(), &LidarAnalysis::SendleLidarDataSignal, this, &FrameListener::onFrame,
            Qt::QueuedConnection);
    connect(session_.get(), &LidarAnalysis::SendMessageSignal, this,
            [](const QString& message) { cli::printError(message); }, Qt::QueuedConnection);
}

void FrameListener::start(int timeoutMs)
{
    timeout_.start(timeoutMs);
}

void FrameListener::onHealth(const lidar::FrameHealth& health, const lidar::StreamTotals& totals)
{
    health_ = health;
    pendingTotals_ = totals;
}

void FrameListener::onFrame(lidar::LidarDataPoint_V4 frame)
{
    if (exitCode_ >= 0)
        return;  // frames still queued after the last one we wanted
    ++frames_;
    summary_.add(frames_, health_);
    totals_ = pendingTotals_;
    if (frames_ == 1 && confirmedType_ >= 0)
        session_->connectionType = confirmedType_;
    display::roundFrameCoordinates(frame);
    const QString speed = frame.motorSpeed < 0
                              ? QStringLiteral("motor speed unknown")
                              : QStringLiteral("motor speed %1 r/min").arg(frame.motorSpeed);
    const QString line = QStringLiteral("frame %1: %2, %3")
                             .arg(frames_)
                             .arg(cli::counted(qint64(frame.pointCount()), QStringLiteral("point")), speed);
    if (json_)
        cli::printOut(cli::frameJson(frames_, health_));
    else if (csv_ && csv_->path() == QLatin1String("-"))
        cli::printError(line);  // standard output carries the CSV
    else
        cli::printOut(line);
    if (csv_)
        csv_->writer().writeFrame(frames_, frame);
    if (frames_ >= frameLimit_)
        finish(cli::Success);
}

void FrameListener::onTimeout()
{
    finish(cli::Failure);
}

void FrameListener::interrupt()
{
    finish(cli::Interrupted);
}

void FrameListener::finish(int exitCode)
{
    if (exitCode_ >= 0)
        return;
    exitCode_ = exitCode;
    timeout_.stop();
    disconnect(session_.get(), nullptr, this, nullptr);
    emit finished(exitCode);
}
