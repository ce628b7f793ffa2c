#include "FrameSource.h"

#include "CaptureFrames.h"
#include "CliSupport.h"
#include "FileScanGeometry.h"
#include "LIdarFactory.h"
#include "RecordingCheck.h"
#include "RecordingHeader.h"
#include "RecordingStream.h"
#include "TernProtocol.h"

#include <QCommandLineParser>
#include <QDateTime>
#include <QFileInfo>

namespace cli {
namespace {

QString knownModels()
{
    return LIdarFactory::GetInstance()->ModelNames().join(QStringLiteral(", "));
}

// A recording is read once, front to back in pieces, and decoded frame by
// frame; what 'info' tells about its packets is gathered on the same pass.
class RecordingSource : public FrameSource {
public:
    RecordingSource(QString path, std::unique_ptr<lidar::RecordingStream> stream)
        : path_(std::move(path)),
          stream_(std::move(stream)),
          described_(LIdarFactory::GetInstance()->FindModel(stream_->model()))
    {
    }

    QString model() const override { return stream_->model(); }

    bool run(const FrameSink& sink, QString& error) override
    {
        if (hasGpsTime()) {
            stream_->setPacketObserver([this](const QByteArray& packet) {
                if (lidar::calendarOffset(*described_, packet) < 0)
                    return;
                if (first_.isNull())
                    first_ = packet;
                last_ = packet;
            });
        }
        if (stream_->run(sink) || stream_->problem() != lidar::RecordingStream::Problem::Damaged)
            return true;  // complete, or the sink stopped it
        error = damageText(*stream_);
        return false;
    }

    QStringList details() const override
    {
        QStringList lines;
        if (described_ && described_->recording.firmwareVersion)
            lines << QStringLiteral("version number:    %1").arg(QString::fromLatin1(stream_->versionElement()));
        lines << QStringLiteral("packets:           %1").arg(stream_->packets());
        return lines;
    }

    double fractionRead() const override
    {
        return stream_->fileSize() > 0 ? double(stream_->position()) / double(stream_->fileSize()) : 1.0;
    }

    lidar::ScanGeometry scanGeometry() const override { return lidar::recordingScanGeometry(path_); }

    lidar::FrameHealth frameHealth() const override { return stream_->frameHealth(); }
    lidar::StreamTotals totals() const override { return stream_->totals(); }

    QStringList times() const override
    {
        if (!hasGpsTime())
            return {};
        return {QStringLiteral("first packet time: %1").arg(packetTime(first_)),
                QStringLiteral("last packet time:  %1").arg(packetTime(last_))};
    }

private:
    bool hasGpsTime() const { return described_ && described_->gps.stamped; }

    QString packetTime(const QByteArray& packet) const
    {
        if (packet.isNull())
            return QStringLiteral("none (no data packet)");
        return lidar::tern::dateTimeText(lidar::tern::readCalendar(packet, lidar::calendarOffset(*described_, packet)));
    }

    QString path_;
    std::unique_ptr<lidar::RecordingStream> stream_;
    const lidar::ModelDescriptor* described_;  // null for a model the registry does not know
    QByteArray first_, last_;  // the first and last data packets with a calendar time
};

class CaptureSource : public FrameSource {
public:
    CaptureSource(QString path, const SourceOptions& options) : path_(std::move(path))
    {
        options_.model = options.model;
        options_.port = options.port;
        options_.versionNumber = options.versionNumber;
    }

    QString model() const override { return options_.model; }

    bool run(const FrameSink& sink, QString& error) override
    {
        const qint64 size = QFileInfo(path_).size();
        result_ = capture::readCaptureFrames(
            path_, options_, sink,
            [this, size](qint64 read) {
                if (read >= 0 && size > 0)
                    fraction_ = double(read) / double(size);
            },
            [this](const lidar::FrameHealth& health, const lidar::StreamTotals&) { health_ = health; });
        if (!result_.ok)
            error = result_.error;
        return result_.ok;
    }

    QStringList details() const override
    {
        const capture::CaptureSummary& s = result_.summary;
        return {QStringLiteral("capture format:    %1").arg(s.format),
                QStringLiteral("link type:         %1").arg(s.linkName),
                QStringLiteral("capture packets:   %1").arg(s.packets),
                QStringLiteral("datagrams:         %1 to port %2").arg(s.counts.datagrams).arg(options_.port),
                QStringLiteral("from fragments:    %1").arg(s.counts.reassembled),
                QStringLiteral("other traffic:     %1").arg(s.counts.otherTraffic)};
    }

    QStringList times() const override
    {
        const auto time = [](qint64 ns) {
            if (ns < 0)
                return QStringLiteral("none");
            return QDateTime::fromMSecsSinceEpoch(ns / 1000000, Qt::UTC)
                .toString(QStringLiteral("yyyy-MM-dd hh:mm:ss.zzz 'UTC'"));
        };
        return {QStringLiteral("first datagram:    %1").arg(time(result_.summary.firstDatagramNs)),
                QStringLiteral("last datagram:     %1").arg(time(result_.summary.lastDatagramNs))};
    }

    QStringList warnings() const override { return result_.warnings; }

    lidar::FrameHealth frameHealth() const override { return health_; }
    lidar::StreamTotals totals() const override { return result_.stream; }

    double fractionRead() const override { return fraction_; }

    lidar::ScanGeometry scanGeometry() const override
    {
        return lidar::captureScanGeometry(path_, options_.model, options_.port);
    }

private:
    QString path_;
    capture::CaptureOptions options_;
    capture::CaptureFramesResult result_;
    lidar::FrameHealth health_;  // of the frame the sink is given
    double fraction_ = 0.0;
};

}  // namespace

std::unique_ptr<FrameSource> openFrameSource(const QString& path, const SourceOptions& options, QString& error,
                                             bool& usage)
{
    usage = false;
    const bool knownModel = LIdarFactory::GetInstance()->parseMap.contains(options.model);
    if (capture::looksLikeCaptureFile(path)) {
        if (options.model.isEmpty()) {
            usage = true;
            error = QStringLiteral("%1 is a capture, which does not name its lidar: give --model <Name> (%2)")
                        .arg(path, knownModels());
            return nullptr;
        }
        if (!knownModel) {
            usage = true;
            error = QStringLiteral("unknown model '%1' (known: %2)").arg(options.model, knownModels());
            return nullptr;
        }
        return std::make_unique<CaptureSource>(path, options);
    }
    auto stream = std::make_unique<lidar::RecordingStream>(path);
    QString problem;
    if (!openRecording(*stream, problem)) {
        // The details stay: they show where the bytes stop making sense.
        error = beginsLikeRecording(path) ? QStringLiteral("%1: %2").arg(path, problem)
                                          : QStringLiteral("%1: not a ScanDeck recording: %2").arg(path, problem);
        return nullptr;
    }
    if (!options.model.isEmpty() && options.model != stream->model()) {
        error = QStringLiteral("%1: the recording is of model %2, not %3").arg(path, stream->model(), options.model);
        return nullptr;
    }
    return std::make_unique<RecordingSource>(path, std::move(stream));
}

}  // namespace cli

namespace cli {

void addSourceOptions(QCommandLineParser& parser)
{
    parser.addOptions({{"model", "Model of a capture.", "name"},
                       {"port", "Data port of a capture.", "port", "2368"},
                       {"firmware", "Tern_P firmware version number.", "number", "0"}});
}

int openSourceFromArguments(const QCommandLineParser& parser, const QString& command, const QString& input,
                            std::unique_ptr<FrameSource>& source)
{
    SourceOptions options;
    options.model = parser.value("model");
    const QString port = parser.value("port"), firmware = parser.value("firmware");
    if (!toPort(port, options.port))
        return usageError(command, QStringLiteral("port '%1' is not a port number").arg(port));
    bool versionOk = false;
    options.versionNumber = firmware.toUInt(&versionOk, 10);
    if (!versionOk)
        return usageError(command, QStringLiteral("firmware '%1' is not a version number").arg(firmware));
    QString error;
    bool usage = false;
    source = openFrameSource(input, options, error, usage);
    if (!source)
        return usage ? usageError(command, error) : (printError(error), int(Failure));
    return Success;
}

}  // namespace cli
