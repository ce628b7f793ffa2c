#include "FrameSource.h"

#include "CaptureFrames.h"
#include "LIdarFactory.h"
#include "RecordFile.h"
#include "RecordingCheck.h"
#include "TernProtocol.h"

#include <QDateTime>

namespace cli {
namespace {

QString knownModels()
{
    return LIdarFactory::GetInstance()->ModelNames().join(QStringLiteral(", "));
}

class RecordingSource : public FrameSource {
public:
    RecordingSource(QString path, RecordingCheck check) : path_(std::move(path)), check_(std::move(check)) {}

    QString model() const override { return check_.model; }

    bool run(const FrameSink& sink, QString& error) override
    {
        auto parsed = LIdarFactory::GetInstance()->ParseFile(path_);
        QVector<lidar::LidarDataPoint_V4>& frames = parsed.second;
        for (int i = 0; i < frames.size(); ++i) {
            lidar::LidarDataPoint_V4 frame = std::move(frames[i]);
            frames[i] = lidar::LidarDataPoint_V4();  // done with it: give the memory back early
            if (!sink(frame))
                break;
        }
        Q_UNUSED(error);
        return true;
    }

    QStringList details() const override
    {
        const QVector<QByteArray> packets = recordedPackets();
        QStringList lines;
        if (check_.model == QLatin1String("Tern_P"))
            lines << QStringLiteral("version number:    %1").arg(QString::fromLatin1(version_));
        lines << QStringLiteral("packets:           %1").arg(packets.size());
        return lines;
    }

    QStringList times() const override
    {
        if (!hasGpsTime())
            return {};
        const QVector<QByteArray> packets = recordedPackets();
        return {QStringLiteral("first packet time: %1").arg(packetTime(packets, true)),
                QStringLiteral("last packet time:  %1").arg(packetTime(packets, false))};
    }

private:
    // The packets after the model name (and Tern_P's version number).
    QVector<QByteArray> recordedPackets() const
    {
        QVector<QByteArray> packets = lidar::readRecordFile(path_);
        if (!packets.isEmpty())
            packets.removeFirst();
        if (check_.model == QLatin1String("Tern_P") && !packets.isEmpty())
            version_ = packets.takeFirst();
        return packets;
    }

    bool hasGpsTime() const
    {
        return check_.model == QLatin1String("Tern_GPS") || check_.model == QLatin1String("Tern_P")
               || check_.model == QLatin1String("Tern_Plus");
    }

    // Where a data packet carries its calendar time: Tern_GPS packets at 90,
    // length-field packets 12 bytes before their end; -1: not a data packet.
    int calendarOffset(const QByteArray& packet) const
    {
        if (check_.model == QLatin1String("Tern_GPS"))
            return packet.size() == 102 ? 90 : -1;
        if (packet.size() >= 20 && lidar::tern::lengthFieldMatches(packet))
            return packet.size() - 12;
        return -1;
    }

    QString packetTime(const QVector<QByteArray>& packets, bool first) const
    {
        for (int k = 0; k < packets.size(); ++k) {
            const QByteArray& packet = packets[first ? k : packets.size() - 1 - k];
            const int offset = calendarOffset(packet);
            if (offset >= 0)
                return lidar::tern::dateTimeText(lidar::tern::readCalendar(packet, offset));
        }
        return QStringLiteral("none (no data packet)");
    }

    QString path_;
    RecordingCheck check_;
    mutable QByteArray version_;
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
        result_ = capture::readCaptureFrames(path_, options_, sink);
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

private:
    QString path_;
    capture::CaptureOptions options_;
    capture::CaptureFramesResult result_;
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
    RecordingCheck check = checkRecording(path);
    if (!check.ok) {
        error = QStringLiteral("%1: %2").arg(path, check.problem);
        return nullptr;
    }
    if (!options.model.isEmpty() && options.model != check.model) {
        error = QStringLiteral("%1: the recording is of model %2, not %3").arg(path, check.model, options.model);
        return nullptr;
    }
    return std::make_unique<RecordingSource>(path, std::move(check));
}

}  // namespace cli
