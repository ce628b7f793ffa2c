#include "CaptureFrames.h"

#include "LiveStreamFrames.h"

#include <QCoreApplication>

namespace capture {

CaptureFramesResult readCaptureFrames(const QString& path, const CaptureOptions& options,
                                      const std::function<bool(lidar::LidarDataPoint_V4& frame)>& sink,
                                      const std::function<void(qint64 bytesRead)>& progress,
                                      const HealthObserver& health)
{
    CaptureFramesResult result;
    bool stopped = false;
    auto stream = lidar::LiveStreamFrames::create(options.model, [&](lidar::LidarDataPoint_V4& frame) {
        if (!stopped && !sink(frame))
            stopped = true;
    });
    if (!stream) {
        result.error = QCoreApplication::translate("CaptureFile", "Unknown lidar model \"%1\"").arg(options.model);
        return result;
    }
    stream->setVersionNumber(options.versionNumber);
    if (health)
        stream->setHealthSink([&](const lidar::FrameHealth& h, const lidar::StreamTotals& totals) {
            if (!stopped)
                health(h, totals);
        });

    CaptureFile file;
    if (!file.open(path)) {
        result.error = file.errorString();
        return result;
    }
    qint64 datagrams = 0;
    file.readDatagrams(options.port, [&](const QByteArray& payload) {
        stream->feed(payload, file.summary().lastDatagramNs);
        if (progress && ++datagrams % 256 == 0)
            progress(file.position());
        return !stopped;
    });
    result.summary = file.summary();
    result.warnings = file.warnings();
    result.frames = stream->frames();
    result.stream = stream->totals();
    if (result.summary.counts.datagrams == 0) {
        result.error = file.noDatagramMessage(options.port);
        return result;
    }
    result.ok = true;
    return result;
}

QVector<lidar::LidarDataPoint_V4> parseCaptureFile(const QString& path, const CaptureOptions& options,
                                                   CaptureFramesResult* result)
{
    QVector<lidar::LidarDataPoint_V4> frames;
    CaptureFramesResult outcome = readCaptureFrames(path, options, [&frames](lidar::LidarDataPoint_V4& frame) {
        frames.append(std::move(frame));
        return true;
    });
    if (result)
        *result = std::move(outcome);
    return frames;
}

}  // namespace capture
