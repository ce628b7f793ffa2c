// What keeping a recording on the disk costs the session's thread: the live
// decoding rate of a model with no recording, recording (each datagram
// handed to the file as it arrives, as the session does) without any sync
// (the file left to the page cache), and recording as the program does it
// (synced twice a second from a thread of its own), each with the longest
// time one datagram held the session's thread up: flat out, and paced at ten
// times a lidar's rate (2,400 datagrams a second), as in the field.

#include "BenchSections.h"
#include "BenchSupport.h"
#include "FileSync.h"
#include "LIdarFactory.h"
#include "LidarAnalysis.h"
#include "RecordingWriter.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <memory>
#include <thread>

namespace bench {
namespace {

constexpr int kRevolutions = 2000;
constexpr double kSeconds = 3.0;
// Ten times 600 r/min, 24 datagrams a revolution.
constexpr double kTenTimesPerSecond = 2400.0;

std::atomic<int> dataSyncs{0};
int countedDataSync(int fd)
{
    ++dataSyncs;
    return lidar::filesync::systemCalls().data(fd);
}
int skippedSync(int) { return 0; }

enum class Mode { DecodeOnly, Unsynced, Synced };
const char* modeName(Mode mode)
{
    switch (mode) {
    case Mode::DecodeOnly: return "not recording";
    case Mode::Unsynced: return "recording, no sync";
    case Mode::Synced: return "recording, synced";
    }
    return "";
}

struct Run {
    double packetsPerSecond = 0;
    double worstUs = 0;  // the longest one datagram took
    double p999Us = 0;
    int syncs = 0;
    double mib = 0;
};

std::unique_ptr<LidarAnalysis> createSession(const QString& model)
{
    const auto& classes = LIdarFactory::GetInstance()->classMap;
    for (auto it = classes.constBegin(); it != classes.constEnd(); ++it)
        if (QString::fromLatin1(it.key()) == model)
            return std::unique_ptr<LidarAnalysis>(qobject_cast<LidarAnalysis*>(it.value()->newInstance()));
    return nullptr;
}

// What the session's thread does for each datagram that arrives alone:
// decodes it and, when recording, appends it and hands it to the file.
// `perSecond` 0: as fast as that goes; otherwise paced.
Run measure(const QString& model, const Stream& stream, Mode mode, double perSecond, const QString& file)
{
    std::unique_ptr<LidarAnalysis> session = createSession(model);
    Run run;
    if (!session)
        return run;
    session->versionNumber = uint32_t(stream.versionNumber);
    session->connected = 1;
    lidar::filesync::setCalls(mode == Mode::Unsynced ? lidar::filesync::Calls{&skippedSync, &skippedSync}
                                                     : lidar::filesync::Calls{&countedDataSync,
                                                                              lidar::filesync::systemCalls().folder});
    dataSyncs = 0;
    QFile out;
    lidar::RecordingWriter recorder(out);
    const bool recording = mode != Mode::DecodeOnly;
    if (recording && !recorder.start(file, {model.toLatin1()})) {
        std::printf("cannot record to %s\n", qPrintable(file));
        return run;
    }
    using Clock = std::chrono::steady_clock;
    std::vector<float> timesUs;
    timesUs.reserve(8 << 20);
    qint64 packets = 0;
    const qint64 pacedPackets = qint64(perSecond * kSeconds);
    const Clock::time_point start = Clock::now();
    const auto elapsed = [&] { return std::chrono::duration<double>(Clock::now() - start).count(); };
    bool done = false;
    while (!done) {
        for (const QByteArray& datagram : stream.packets) {
            if (perSecond > 0) {
                if ((done = packets >= pacedPackets))
                    break;
                std::this_thread::sleep_until(
                    start + std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(packets / perSecond)));
            }
            const Clock::time_point before = Clock::now();
            session->receiveBuffer.append(datagram);
            session->ParseLidarData();
            if (recording) {
                recorder.append(datagram.constData(), datagram.size());
                recorder.writePending();
            }
            timesUs.push_back(std::chrono::duration<float, std::micro>(Clock::now() - before).count());
            ++packets;
        }
        done = done || (perSecond <= 0 && elapsed() >= kSeconds);
    }
    const double seconds = elapsed();
    if (recording) {
        recorder.finish({model.toLatin1()});
        run.mib = QFileInfo(file).size() / 1048576.0;
        QFile::remove(file);
    }
    lidar::filesync::setCalls(lidar::filesync::systemCalls());
    run.packetsPerSecond = packets / seconds;
    run.syncs = dataSyncs;
    std::sort(timesUs.begin(), timesUs.end());
    run.worstUs = timesUs.back();
    run.p999Us = timesUs[std::min(timesUs.size() - 1, size_t(0.999 * timesUs.size()))];
    return run;
}

}  // namespace

bool recordingSyncSection(const QStringList& models)
{
    std::printf("\nDecoding on one core while recording, %.0f s a run into %s: packets per second, the\n"
                "longest and the 99.9th percentile time of one datagram on the session's thread, the\n"
                "file syncs made (the periodic ones and the last) and what was written.\n\n",
                kSeconds, qPrintable(QDir::currentPath()));
    std::printf("%-10s %-20s %-8s %13s %11s %11s %6s %9s\n", "model", "", "rate", "packets/s", "worst us",
                "p99.9 us", "syncs", "MiB");
    // In the working directory: a temporary folder may be in memory, where a sync costs nothing.
    QTemporaryDir dir(QDir::current().filePath(QStringLiteral("recording-sync-bench-XXXXXX")));
    for (const QString& model : models) {
        const Stream stream = buildStream(model, kRevolutions);
        if (stream.packets.isEmpty())
            continue;
        for (double perSecond : {0.0, kTenTimesPerSecond}) {
            for (Mode mode : {Mode::DecodeOnly, Mode::Unsynced, Mode::Synced}) {
                const Run run = measure(model, stream, mode, perSecond, dir.filePath(model + QStringLiteral(".txt")));
                std::printf("%-10s %-20s %-8s %13s %11.1f %11.1f %6d %9.1f\n", model.toLatin1().constData(),
                            modeName(mode), perSecond > 0 ? "10x" : "flat out",
                            qPrintable(grouped(run.packetsPerSecond)), run.worstUs, run.p999Us, run.syncs, run.mib);
                std::fflush(stdout);
            }
        }
    }
    return true;
}

}  // namespace bench
