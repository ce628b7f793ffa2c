// CSV writing speed, as scandeck-cli convert writes (coordinates rounded to
// the centimetre, one line per point), beside copying the same CSV bytes.

#include "BenchSections.h"
#include "BenchSupport.h"
#include "CsvWriter.h"
#include "LIdarFactory.h"
#include "PointRounding.h"

#include <QBuffer>
#include <QElapsedTimer>
#include <cstdio>
#include <cstring>

namespace bench {
namespace {

constexpr double kTargetPointsPerSecond = 5000000.0;
constexpr int kRevolutions = 400;

// Takes whatever is written and keeps only its length.
class NullDevice : public QIODevice {
public:
    NullDevice() { open(QIODevice::WriteOnly); }
    qint64 written = 0;

protected:
    qint64 readData(char*, qint64) override { return -1; }
    qint64 writeData(const char*, qint64 length) override
    {
        written += length;
        return length;
    }
};

struct Figures {
    double pointsPerSecond = 0;
    double bytesPerPoint = 0;
    double plainPointsPerSecond = 0;
};

Figures measure(QVector<lidar::LidarDataPoint_V4>& frames)
{
    Figures f;
    NullDevice device;
    qint64 points = 0;
    QElapsedTimer timer;
    timer.start();
    do {
        CsvWriter writer(&device);
        writer.writeHeader();
        for (int i = 0; i < frames.size(); ++i) {
            // Rounding a rounded coordinate gives it again: every pass does the same work.
            display::roundFrameCoordinates(frames[i]);
            points += writer.writeFrame(i + 1, frames[i]);
        }
        writer.flush();
    } while (timer.nsecsElapsed() < 1000000000);
    f.pointsPerSecond = points / (timer.nsecsElapsed() / 1e9);
    f.bytesPerPoint = double(device.written) / double(points);

    // The same text, copied into the device in the writer's 64 KiB pieces.
    QBuffer text;
    text.open(QIODevice::WriteOnly);
    qint64 textPoints = 0;
    {
        CsvWriter writer(&text);
        for (int i = 0; i < frames.size(); ++i)
            textPoints += writer.writeFrame(i + 1, frames[i]);
    }
    const QByteArray& bytes = text.data();
    QByteArray piece(1 << 16, '\0');
    qint64 copied = 0;
    timer.restart();
    do {
        for (int at = 0; at < bytes.size(); at += piece.size()) {
            const int length = std::min(piece.size(), bytes.size() - at);
            std::memcpy(piece.data(), bytes.constData() + at, size_t(length));
            device.write(piece.constData(), length);
        }
        copied += textPoints;
    } while (timer.nsecsElapsed() < 300000000);
    f.plainPointsPerSecond = copied / (timer.nsecsElapsed() / 1e9);
    return f;
}

}  // namespace

bool csvSection()
{
    std::printf("\nCSV writing as convert writes it: target %s points/s; beside it copying the same CSV bytes.\n\n",
                qPrintable(grouped(kTargetPointsPerSecond)));
    std::printf("%-10s %14s %8s %6s   %18s %10s\n", "model", "points/s", "bytes", "", "plain copy points/s",
                "of plain");
    bool allMet = true;
    for (const QString model : {"Tern", "Wren_Plus"}) {
        const Stream stream = buildStream(model, kRevolutions);
        QVector<lidar::LidarDataPoint_V4> frames =
            LIdarFactory::GetInstance()->parseMap.value(model)(stream.recordPrefix + stream.packets);
        const Figures f = measure(frames);
        const bool ok = f.pointsPerSecond >= kTargetPointsPerSecond;
        std::printf("%-10s %14s %6.1f/pt %6s   %18s %8.2f %%\n", model.toLatin1().constData(),
                    qPrintable(grouped(f.pointsPerSecond)), f.bytesPerPoint, ok ? "ok" : "MISSED",
                    qPrintable(grouped(f.plainPointsPerSecond)), 100.0 * f.pointsPerSecond / f.plainPointsPerSecond);
        allMet = allMet && ok;
    }
    std::fflush(stdout);
    return allMet;
}

}  // namespace bench
