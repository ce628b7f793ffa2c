#include "CaptureFrames.h"

#include "LiveStreamFrames.h"

#include <QCoreApplication>

namespace capture {

CaptureFramesResult readCaptureFrames(const QString& path, const CaptureOptions& options,
                                      const std::function<bool(lidar::LidarDataPoint_V4& frame)>& sink,
                                      const ReadProgress& progress)
{
    CaptureFramesResult result;
    CaptureFile file;
    bool stopped = false;
    auto stream = lidar::LiveStreamFrames::create(options.model, [&](lidar::LidarDataPoint_V4& frame) {
        if (!stopped && !sink(frame))
            stopped = true;
        if (progress)
            progress(file.bytesRead(), file.fileSize());
    });
    if (!stream) {
        result.error = QCoreApplication::translate("CaptureFile", "Unknown lidar model \"%1\"").arg(options.model);
        return result;
    }
    stream->setVersionNumber(options.versionNumber);

    if (!file.open(path)) {
        result.error = file.errorString();
        return result;
    }
    file.readDatagrams(options.port, [&](const QByteArray& payload) {
        stream->feed(payload);
        return !stopped;
    });
    result.summary = file.summary();
    result.warnings = file.warnings();
    result.frames = stream->frames();
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
