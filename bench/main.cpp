// scandeck-bench: decoding speed of every registered model, live and
// offline, and the memory of parsing a 10-minute recording.
//
//   scandeck-bench                 the whole table
//   scandeck-bench --model <name>  one model's speed only (for profiling)
//   scandeck-bench --parse <file>  (internal) parse one recording and report
//                                  the process's peak memory

#include "LIdarFactory.h"
#include "LidarAnalysis.h"
#include "PacketBuilders.h"
#include "RecordFile.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <cstdio>
#include <memory>

namespace {

constexpr double kTargetPacketsPerSecond = 1000000.0;
constexpr double kTargetMemoryRatio = 2.0;
constexpr int kRevolutions = 2000;  // 48,000 packets a run
constexpr double kMinimumSeconds = 1.0;

// A model's packets, one datagram each: whole turns of 24 packets of 15
// degrees with GPS times 1/240 s apart, as the decoder tests use them.
struct Stream {
    QVector<QByteArray> packets;
    QVector<QByteArray> recordPrefix;  // elements before the packets (Tern_P: its version)
    int versionNumber = 0;             // for a live Tern_P session
};

Stream buildStream(const QString& model, int revolutions)
{
    Stream s;
    s.packets = testing::revolutionPackets(model, revolutions);
    if (model == QLatin1String("Tern_P")) {
        s.versionNumber = 215;  // the packets carry whole-word distances
        s.recordPrefix.append(QByteArray::number(s.versionNumber));
    }
    return s;
}

struct Rate {
    double packetsPerSecond = 0;
    double pointsPerSecond = 0;
    qint64 frames = 0;
};

qint64 statusKilobytes(const char* field)
{
    QFile status("/proc/self/status");
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    for (const QByteArray& line : status.readAll().split('\n'))
        if (line.startsWith(field))
            return line.mid(int(qstrlen(field))).trimmed().split(' ').first().toLongLong();
    return -1;
}

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
    return rate;
}

// Offline path: the registered parse function over the packet list.
Rate measureOffline(const QString& model, const Stream& stream)
{
    const ParseFunction parse = LIdarFactory::GetInstance()->parseMap.value(model);
    if (!parse)
        return {};
    const QVector<QByteArray> input = stream.recordPrefix + stream.packets;
    Rate rate;
    qint64 packets = 0, points = 0;
    QElapsedTimer timer;
    timer.start();
    do {
        const QVector<lidar::LidarDataPoint_V4> frames = parse(input);
        rate.frames += frames.size();
        for (const auto& frame : frames)
            points += qint64(frame.pointCount());
        packets += stream.packets.size();
    } while (timer.nsecsElapsed() < qint64(kMinimumSeconds * 1e9));
    const double seconds = timer.nsecsElapsed() / 1e9;
    rate.packetsPerSecond = packets / seconds;
    rate.pointsPerSecond = points / seconds;
    return rate;
}

// What the returned frames occupy themselves: their points, the frame
// records, one map node per ID and the map header.
qint64 framesOwnBytes(const QVector<lidar::LidarDataPoint_V4>& frames)
{
    using Node = QMapNode<int32_t, std::vector<lidar::LidarPoint>>;
    qint64 bytes = qint64(frames.size()) * qint64(sizeof(lidar::LidarDataPoint_V4));
    for (const auto& frame : frames) {
        bytes += qint64(sizeof(QMapData<int32_t, std::vector<lidar::LidarPoint>>));
        bytes += qint64(frame.points.size()) * qint64(sizeof(Node));
        bytes += qint64(frame.pointCount()) * qint64(sizeof(lidar::LidarPoint));
    }
    return bytes;
}

// Child process: parse one recording through the registry, as the player
// does, and report the peak resident memory against the frames' own size.
int parseAndReport(const QString& fileName)
{
    const qint64 baselineKb = statusKilobytes("VmHWM:");
    QElapsedTimer timer;
    timer.start();
    const auto parsed = LIdarFactory::GetInstance()->ParseFile(fileName);
    const qint64 ms = timer.elapsed();
    const qint64 peakKb = statusKilobytes("VmHWM:");
    qint64 points = 0;
    for (const auto& frame : parsed.second)
        points += qint64(frame.pointCount());
    std::printf("%lld %lld %lld %lld %lld %lld\n", (long long)baselineKb, (long long)peakKb,
                (long long)framesOwnBytes(parsed.second), (long long)parsed.second.size(), (long long)points,
                (long long)ms);
    return 0;
}

void printRate(const QString& model, const char* path, const Rate& rate)
{
    const bool ok = rate.packetsPerSecond >= kTargetPacketsPerSecond;
    std::printf("%-10s %-8s %12.0f %14.0f %9lld   %s\n", model.toLatin1().constData(), path, rate.packetsPerSecond,
                rate.pointsPerSecond, (long long)rate.frames, ok ? "ok" : "MISSED");
}

bool measureMemory(const QString& program)
{
    // Ten minutes of a Tern, sized generously: 216,000 packets of 24 a
    // revolution (15 revolutions a second; at 10 it would be 144,000).
    constexpr int kRevolutionsIn10Minutes = 216000 / 24;
    QTemporaryDir dir;
    const QString file = dir.filePath("tern-10min.txt");
    {
        const Stream stream = buildStream("Tern", kRevolutionsIn10Minutes);
        QFile out(file);
        if (!out.open(QIODevice::WriteOnly) ||
            !lidar::writeRecordElements(out, QVector<QByteArray>{"Tern"} + stream.packets)) {
            std::printf("cannot write %s\n", qPrintable(file));
            return false;
        }
        std::printf("\nParse memory of a 10-minute Tern recording (%d packets, %.1f MB on disk):\n",
                    stream.packets.size(), out.size() / 1048576.0);
    }
    QProcess child;
    child.start(program, {"--parse", file});
    if (!child.waitForFinished(600000) || child.exitCode() != 0) {
        std::printf("the parse child failed: %s\n", child.readAllStandardError().constData());
        return false;
    }
    const QList<QByteArray> f = child.readAllStandardOutput().trimmed().split(' ');
    if (f.size() < 6)
        return false;
    const double baseline = f[0].toDouble() / 1024.0, peak = f[1].toDouble() / 1024.0;
    const double own = f[2].toDouble() / 1048576.0;
    const double used = peak - baseline;
    const double ratio = used / own;
    std::printf("  frames %s, points %s, parse time %s ms\n", f[3].constData(), f[4].constData(), f[5].constData());
    std::printf("  frames' own size          %8.1f MB\n", own);
    std::printf("  peak memory of the parse  %8.1f MB  (VmHWM %.1f MB, %.1f MB before the parse)\n", used, peak,
                baseline);
    std::printf("  ratio                     %8.2f     target <= %.1f  %s\n", ratio, kTargetMemoryRatio,
                ratio <= kTargetMemoryRatio ? "ok" : "MISSED");
    return ratio <= kTargetMemoryRatio;
}

}  // namespace

int main(int argc, char* argv[])
{
    QCoreApplication app(argc, argv);
    const QStringList args = QCoreApplication::arguments();
    if (args.size() == 3 && args[1] == QLatin1String("--parse")) {
        const int code = parseAndReport(args[2]);
        LIdarFactory::GetInstance()->Shutdown();
        return code;
    }

    QStringList models = LIdarFactory::GetInstance()->ModelNames();
    const bool oneModel = args.size() == 3 && args[1] == QLatin1String("--model");
    if (oneModel)
        models = QStringList{args[2]};

    std::printf("Decoding speed on one core (target %.0f packets/s for every model and path)\n\n",
                kTargetPacketsPerSecond);
    std::printf("%-10s %-8s %12s %14s %9s\n", "model", "path", "packets/s", "points/s", "frames");
    bool allMet = true;
    for (const QString& model : models) {
        const Stream stream = buildStream(model, kRevolutions);
        if (stream.packets.isEmpty()) {
            std::printf("%-10s (no packet builder for this model, skipped)\n", model.toLatin1().constData());
            continue;
        }
        const Rate live = measureLive(model, stream);
        const Rate offline = measureOffline(model, stream);
        printRate(model, "live", live);
        printRate(model, "offline", offline);
        allMet = allMet && live.packetsPerSecond >= kTargetPacketsPerSecond &&
                 offline.packetsPerSecond >= kTargetPacketsPerSecond;
    }
    if (!oneModel)
        allMet = measureMemory(QCoreApplication::applicationFilePath()) && allMet;
    std::printf("\n%s\n", allMet ? "All targets met." : "Some targets MISSED.");
    LIdarFactory::GetInstance()->Shutdown();
    return 0;
}
