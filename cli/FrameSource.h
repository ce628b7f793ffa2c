#pragma once
// Where the frames of 'convert' and 'info' come from: a recording made by
// the viewer or by 'listen --record', or a tcpdump/Wireshark capture played
// through a model's live stream cutting. Frames come out one at a time.

#include "FrameHealth.h"
#include "LidarRecords.h"
#include "ModelGeometry.h"

#include <QString>
#include <QStringList>
#include <functional>
#include <memory>

namespace cli {

struct SourceOptions {
    QString model;             // required for captures, checked for recordings
    quint16 port = 2368;       // a capture's data port
    uint32_t versionNumber = 0;  // firmware version number for a capture's Tern_P packets
};

class FrameSource {
public:
    using FrameSink = std::function<bool(lidar::LidarDataPoint_V4& frame)>;  // false stops

    virtual ~FrameSource() = default;
    virtual QString model() const = 0;
    // Every complete frame in order. false with `error` when the input turns
    // out unusable (the sink may already have had frames then).
    virtual bool run(const FrameSink& sink, QString& error) = 0;
    // "name: value" lines about the input for 'info', once run() has run:
    // what it holds, then the time it spans.
    virtual QStringList details() const = 0;
    virtual QStringList times() const = 0;
    // The health of the frame being handed to the sink (valid in the sink).
    virtual lidar::FrameHealth frameHealth() const = 0;
    // The input's stream totals, once run() has run: data packets, rejected
    // packets and skipped bytes. A recording holds only the packets its
    // decoder took: its rejected packets are elements the parse refused,
    // and it skips no bytes.
    virtual lidar::StreamTotals totals() const = 0;
    // What was skipped on the way, once run() has run.
    virtual QStringList warnings() const { return {}; }
    // How much of the input run() has read so far, 0 to 1.
    virtual double fractionRead() const = 0;
    // The model's scan geometry from the first whole data packet of the
    // input, read ahead from its start without disturbing run(); invalid
    // when no packet gives it.
    virtual lidar::ScanGeometry scanGeometry() const = 0;
};

// Null with `error` set when the file cannot be used. `usage` tells whether
// the fault lies with the arguments (a capture without --model).
std::unique_ptr<FrameSource> openFrameSource(const QString& path, const SourceOptions& options, QString& error,
                                             bool& usage);

}  // namespace cli

class QCommandLineParser;

namespace cli {

// The capture options 'info' and 'convert' share: --model, --port, --firmware.
void addSourceOptions(QCommandLineParser& parser);
// Opens `input` with those options. On failure prints why and returns the
// exit status; on success returns Success with `source` set.
int openSourceFromArguments(const QCommandLineParser& parser, const QString& command, const QString& input,
                            std::unique_ptr<FrameSource>& source);

}  // namespace cli
