#pragma once
// A capture played as a recording: the UDP payloads to the data port go, in
// capture order, through the chosen model's live stream cutting and become
// frames one at a time, exactly as the viewer would have shown them live.

#include "CaptureFile.h"
#include "FrameHealth.h"
#include "LidarRecords.h"

#include <QString>
#include <QStringList>
#include <QVector>
#include <functional>

namespace capture {

struct CaptureOptions {
    QString model;                     // class name of the lidar that sent the stream
    quint16 port = kDefaultDataPort;   // its data port
    uint32_t versionNumber = 0;        // firmware version number, until a reply in the stream gives it
};

struct CaptureFramesResult {
    bool ok = false;
    QString error;          // set when !ok: no capture, no such model, no datagram to the port
    QStringList warnings;   // what was skipped on the way
    CaptureSummary summary;
    qint64 frames = 0;
    lidar::StreamTotals stream;  // the stream's health totals at the end
};

// Hears each frame's health just before the sink gets the frame.
using HealthObserver = std::function<void(const lidar::FrameHealth& health, const lidar::StreamTotals& totals)>;

// `sink` gets each complete frame as it is decoded and returns false to stop.
// `progress`, if given, hears the bytes of the capture read so far now and
// then; `health`, if given, each frame's health. The packets are timed by
// their capture times.
CaptureFramesResult readCaptureFrames(const QString& path, const CaptureOptions& options,
                                      const std::function<bool(lidar::LidarDataPoint_V4& frame)>& sink,
                                      const std::function<void(qint64 bytesRead)>& progress = {},
                                      const HealthObserver& health = {});

// All frames at once, for the player.
QVector<lidar::LidarDataPoint_V4> parseCaptureFile(const QString& path, const CaptureOptions& options,
                                                   CaptureFramesResult* result);

}  // namespace capture
