// scandeck-capture-bench: reading a capture against reading the same
// packets from a recording, in packets per second, for every model; and a
// helper that turns a recording into a capture for the export benchmark.
//
//   scandeck-capture-bench                             the table
//   scandeck-capture-bench --capture-of <rec> <pcap>   write a pcap of a recording's packets
//
// Figures only: no goal is asserted.

#include "CaptureBuilders.h"
#include "CaptureFrames.h"
#include "LIdarFactory.h"
#include "PacketBuilders.h"
#include "RecordFile.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>

namespace {

constexpr int kRevolutions = 2000;
constexpr double kMinimumSeconds = 1.0;

bool writeFile(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

// One Ethernet/IPv4/UDP frame a packet, to port 2368, as tcpdump on the
// lidar's network would keep them.
QByteArray captureOf(const QVector<QByteArray>& packets)
{
    QVector<QByteArray> frames;
    frames.reserve(packets.size());
    for (int i = 0; i < packets.size(); ++i)
        frames << testing::ethernet(testing::udp4(capture::kDefaultDataPort, packets[i], uint16_t(i)));
    return testing::captureFile(testing::CaptureFormat::PcapMicroseconds, false, testing::kLinkEthernet, frames);
}

struct Rate {
    double packetsPerSecond = 0;
    qint64 frames = 0;
};

template <typename Read>
Rate measure(qint64 packetsPerRun, Read&& read)
{
    Rate rate;
    qint64 packets = 0;
    QElapsedTimer timer;
    timer.start();
    do {
        rate.frames = read();
        packets += packetsPerRun;
    } while (timer.nsecsElapsed() < qint64(kMinimumSeconds * 1e9));
    rate.packetsPerSecond = packets / (timer.nsecsElapsed() / 1e9);
    return rate;
}

int convertRecording(const QString& recording, const QString& out)
{
    QVector<QByteArray> elements = lidar::readRecordFile(recording);
    if (elements.isEmpty()) {
        std::fprintf(stderr, "cannot read %s\n", qPrintable(recording));
        return 1;
    }
    // The model's name and what its recordings put before their packets.
    elements.remove(0, std::min(elements.size(), 1 + lidar::recordPrefixElements(QString::fromUtf8(elements.first()))));
    if (!writeFile(out, captureOf(elements))) {
        std::fprintf(stderr, "cannot write %s\n", qPrintable(out));
        return 1;
    }
    std::printf("%d packets written to %s\n", elements.size(), qPrintable(out));
    return 0;
}

}  // namespace

int main(int argc, char* argv[])
{
    QCoreApplication app(argc, argv);
    const QStringList args = QCoreApplication::arguments();
    if (args.size() == 4 && args[1] == QLatin1String("--capture-of")) {
        const int code = convertRecording(args[2], args[3]);
        LIdarFactory::GetInstance()->Shutdown();
        return code;
    }

    QTemporaryDir dir;
    std::printf("Reading the same %d revolutions from a recording and from a pcap capture (one core)\n\n",
                kRevolutions);
    std::printf("%-10s %16s %16s %8s %8s\n", "model", "recording pkt/s", "capture pkt/s", "ratio", "frames");
    for (const QString& model : LIdarFactory::GetInstance()->ModelNames()) {
        const QVector<QByteArray> packets = testing::revolutionPackets(model, kRevolutions);
        QVector<QByteArray> elements = lidar::recordHeaderElements(model, 215);
        elements += packets;
        const QString recording = dir.filePath(model + ".txt"), captured = dir.filePath(model + ".pcap");
        QFile file(recording);
        if (!file.open(QIODevice::WriteOnly) || !lidar::writeRecordElements(file, elements)
            || !writeFile(captured, captureOf(packets))) {
            std::printf("cannot write the files of %s\n", qPrintable(model));
            return 1;
        }
        file.close();

        const Rate fromRecording = measure(
            packets.size(), [&] { return qint64(LIdarFactory::GetInstance()->ParseFile(recording).second.size()); });
        capture::CaptureOptions options;
        options.model = model;
        options.versionNumber = 215;  // read by the models whose words depend on the firmware
        const Rate fromCapture = measure(packets.size(), [&] {
            return capture::readCaptureFrames(captured, options, [](lidar::LidarDataPoint_V4&) { return true; }).frames;
        });
        std::printf("%-10s %16.0f %16.0f %8.2f %8lld\n", model.toLatin1().constData(), fromRecording.packetsPerSecond,
                    fromCapture.packetsPerSecond, fromCapture.packetsPerSecond / fromRecording.packetsPerSecond,
                    (long long)fromCapture.frames);
    }
    LIdarFactory::GetInstance()->Shutdown();
    return 0;
}
