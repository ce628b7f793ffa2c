// Decoding speed of every registered model, live and offline, beside a plain
// read of the same packets.

#include "BenchSections.h"
#include "BenchSupport.h"
#include "LIdarFactory.h"
#include "LidarAnalysis.h"

#include <QElapsedTimer>
#include <cstdio>
#include <memory>

namespace bench {
namespace {

constexpr double kTargetPacketsPerSecond = 3000000.0;
constexpr int kRevolutions = 2000;  // 48,000 packets a run
constexpr double kMinimumSeconds = 1.0;

struct Rate {
    double packetsPerSecond = 0;
    double pointsPerSecond = 0;
    qint64 frames = 0;
    qint64 missingPackets = 0;  // the stream is whole: any is a fault of the accounting
};

std::unique_ptr<LidarAnalysis> createSession(const QString& model)
{
    const auto& classes = LIdarFactory::GetInstance()->classMap;
    for (auto it = classes.constBegin(); it != classes.constEnd(); ++it)
        if (QString::fromLatin1(it.key()) == model)
            return std::unique_ptr<LidarAnalysis>(qobject_cast<LidarAnalysis*>(it.value()->newInstance()));
    return nullptr;
}

// Live path: one packet per datagram appended to the receive buffer, the
// decoder called after each, frames counted by a direct connection.
Rate measureLive(const QString& model, const Stream& stream)
{
    std::unique_ptr<LidarAnalysis> session = createSession(model);
    if (!session)
        return {};
    session->versionNumber = uint32_t(stream.versionNumber);
    session->connected = 1;
    Rate rate;
    qint64 points = 0;
    QObject::connect(session.get(), &LidarAnalysis::SendleLidarDataSignal, session.get(),
                     [&](const lidar::LidarDataPoint_V4& frame) {
                         ++rate.frames;
                         points += qint64(frame.pointCount());
                     },
                     Qt::DirectConnection);
    // Each frame's health is taken too, as the window takes it.
    qint64 missing = 0;
    QObject::connect(session.get(), &LidarAnalysis::SendFrameHealthSignal, session.get(),
                     [&](const lidar::FrameHealth& health, const lidar::StreamTotals&) {
                         missing += health.missingPackets;
                     },
                     Qt::DirectConnection);
    qint64 packets = 0;
    QElapsedTimer timer;
    timer.start();
    do {
        for (const QByteArray& datagram : stream.packets) {
            session->receiveBuffer.append(datagram);
            session->ParseLidarData();
        }
        packets += stream.packets.size();
    } while (timer.nsecsElapsed() < qint64(kMinimumSeconds * 1e9));
    const double seconds = timer.nsecsElapsed() / 1e9;
    rate.packetsPerSecond = packets / seconds;
    rate.pointsPerSecond = points / seconds;
    rate.missingPackets = missing;
    return rate;
}

// Offline path: a copy of the model's offline parser over the packet list,
// each frame taken as it is completed and let go, as the player's index and
// 'scandeck-cli convert' take them.
Rate measureOffline(const QString& model, const Stream& stream)
{
    std::unique_ptr<lidar::OfflineParser> parser = LIdarFactory::GetInstance()->CopyOfflineParser(model);
    if (!parser)
        return {};
    parser->setPrefix(stream.recordPrefix);
    Rate rate;
    qint64 packets = 0, points = 0, missing = 0;
    QVector<lidar::LidarDataPoint_V4> completed;
    QElapsedTimer timer;
    timer.start();
    do {
        for (const QByteArray& packet : stream.packets) {
            parser->add(packet, completed);
            // Each frame's health, as the player's index and the CLI take it.
            if (!completed.isEmpty())
                for (const lidar::FrameHealth& health : parser->frameHealth())
                    missing += health.missingPackets;
            for (const auto& frame : completed)
                points += qint64(frame.pointCount());
            rate.frames += completed.size();
            completed.clear();
        }
        packets += stream.packets.size();
    } while (timer.nsecsElapsed() < qint64(kMinimumSeconds * 1e9));
    const double seconds = timer.nsecsElapsed() / 1e9;
    rate.packetsPerSecond = packets / seconds;
    rate.pointsPerSecond = points / seconds;
    rate.missingPackets = missing;
    return rate;
}

void printRate(const QString& model, const char* path, const Rate& rate, double plainRead)
{
    const bool ok = rate.packetsPerSecond >= kTargetPacketsPerSecond;
    std::printf("%-10s %-8s %13s %14s %7lld %6s   %15s %8.2f %%\n", model.toLatin1().constData(), path,
                qPrintable(grouped(rate.packetsPerSecond)), qPrintable(grouped(rate.pointsPerSecond)),
                (long long)rate.frames, ok ? "ok" : "MISSED", qPrintable(grouped(plainRead)),
                100.0 * rate.packetsPerSecond / plainRead);
    if (rate.missingPackets != 0)
        std::printf("%-10s %-8s the accounting found %lld packets missing in a whole stream\n",
                    model.toLatin1().constData(), path, (long long)rate.missingPackets);
}

}  // namespace

bool decodingSection(const QStringList& models)
{
    std::printf("Decoding on one core: target %s packets/s for every model and path; beside it a plain read\n"
                "of the same packets (every byte read once, nothing decoded) and the decoder's share of it.\n\n",
                qPrintable(grouped(kTargetPacketsPerSecond)));
    std::printf("%-10s %-8s %13s %14s %7s %6s   %15s %10s\n", "model", "path", "packets/s", "points/s", "frames",
                "", "plain packets/s", "of plain");
    bool allMet = true;
    for (const QString& model : models) {
        const Stream stream = buildStream(model, kRevolutions);
        if (stream.packets.isEmpty()) {
            std::printf("%-10s (no packet builder for this model, skipped)\n", model.toLatin1().constData());
            continue;
        }
        const double plainRead = plainReadPacketsPerSecond(stream.packets);
        const Rate live = measureLive(model, stream);
        const Rate offline = measureOffline(model, stream);
        printRate(model, "live", live, plainRead);
        printRate(model, "offline", offline, plainRead);
        allMet = allMet && live.packetsPerSecond >= kTargetPacketsPerSecond &&
                 offline.packetsPerSecond >= kTargetPacketsPerSecond;
    }
    std::fflush(stdout);
    return allMet;
}

}  // namespace bench
