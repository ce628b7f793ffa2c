// scandeck-cli stats end to end on recordings of the simulated lidar: the
// statistics CSV (its exact header, every direction held against the points
// 'convert' writes of the same frames), --start and --frames, captures like
// recordings, the per-frame change against a reference as CSV and JSON
// Lines, and what is refused.

#include "CaptureBuilders.h"
#include "FileScanGeometry.h"
#include "PacketBuilders.h"
#include "RecordFile.h"
#include "ReferenceFile.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include "ProgramRun.h"

#include <QtTest>
#include <cmath>
#include <map>

namespace {

using testing::Run;
using testing::runProgram;

struct Point {
    double azimuth;
    int32_t mm;
};
using Frames = std::vector<std::vector<Point>>;  // frame 1 at [0]

// The frames of a recording as 'convert' writes them.
Frames convertedFrames(const QString& recording, const QString& csv)
{
    Frames frames;
    if (runProgram("scandeck-cli", {"convert", recording, "-o", csv, "-q"}).exitCode != 0)
        return frames;
    QFile file(csv);
    if (!file.open(QIODevice::ReadOnly))
        return frames;
    file.readLine();  // the header
    while (!file.atEnd()) {
        const QList<QByteArray> f = file.readLine().trimmed().split(',');
        const size_t frame = size_t(f[0].toInt());
        frames.resize(std::max(frames.size(), frame));
        // The azimuth as the float the frame held (CSV gives its shortest text).
        frames[frame - 1].push_back({double(float(f[5].toDouble())), int32_t(std::lround(f[6].toDouble() * 1000.0))});
    }
    return frames;
}

int binOf(double azimuth, int bins)
{
    const double turn = std::fmod(azimuth, 360.0);
    return int(std::lround((turn < 0 ? turn + 360.0 : turn) / (360.0 / bins)) % bins);
}

// One line of the statistics CSV worked out from the points: its fields,
// the mean and the deviation as numbers (a tie at their last decimal may
// round either way), the rest as the text it must be.
struct ExpectedLine {
    QList<QByteArray> exact;  // azimuth, frames, returns, return_rate, min_m, max_m
    double mean = 0, std = 0;
    bool returned = false;
};

ExpectedLine expectedLine(const Frames& frames, int first, int count, int bin, int bins)
{
    std::vector<int32_t> ranges;
    qint64 returning = 0;
    for (int f = first; f < first + count; ++f) {
        bool returned = false;
        for (const Point& p : frames[size_t(f - 1)]) {
            if (p.mm > 0 && binOf(p.azimuth, bins) == bin) {
                ranges.push_back(p.mm);
                returned = true;
            }
        }
        returning += returned;
    }
    ExpectedLine e;
    e.exact << QByteArray::number(bin * 360.0 / bins, 'f', 3) << QByteArray::number(count)
            << QByteArray::number(qint64(ranges.size())) << QByteArray::number(double(returning) / count, 'f', 4);
    e.returned = !ranges.empty();
    if (!e.returned) {
        e.exact << "" << "";
        return e;
    }
    double sum = 0;
    for (int32_t r : ranges)
        sum += r;
    e.mean = sum / double(ranges.size());
    double squares = 0;
    for (int32_t r : ranges)
        squares += (r - e.mean) * (r - e.mean);
    e.std = std::sqrt(squares / double(ranges.size())) / 1000.0;
    e.mean /= 1000.0;
    e.exact << QByteArray::number(*std::min_element(ranges.begin(), ranges.end()) / 1000.0, 'f', 3)
            << QByteArray::number(*std::max_element(ranges.begin(), ranges.end()) / 1000.0, 'f', 3);
    return e;
}

bool matches(const QByteArray& line, const ExpectedLine& e)
{
    const QList<QByteArray> f = line.split(',');
    if (f.size() != 8 || QList<QByteArray>{f[0], f[1], f[2], f[3], f[6], f[7]} != e.exact)
        return false;
    if (!e.returned)
        return f[4].isEmpty() && f[5].isEmpty();
    return std::abs(f[4].toDouble() - e.mean) <= 0.00005 + 1e-9 && std::abs(f[5].toDouble() - e.std) <= 0.00005 + 1e-9;
}

lidar::LidarDataPoint_V4 frameOf(const std::vector<Point>& points)
{
    lidar::LidarDataPoint_V4 frame;
    for (const Point& p : points) {
        lidar::LidarPoint point;
        point.azimuth = float(p.azimuth);
        point.distance = p.mm;
        frame.points[0].push_back(point);
    }
    return frame;
}

constexpr int kRevolutions = 12;

}  // namespace

class StatsTest : public QObject {
    Q_OBJECT
private slots:
    void initTestCase();
    void statistics_data();
    void statistics();
    void capturesLikeRecordings_data();
    void capturesLikeRecordings();
    void changeAgainstAReference_data();
    void changeAgainstAReference();
    void refusals_data();
    void refusals();

private:
    QString write(const QString& name, const QByteArray& content)
    {
        QFile file(dir_.filePath(name));
        return file.open(QIODevice::WriteOnly) && file.write(content) == content.size() ? file.fileName() : QString();
    }
    QString recordingOf(const QString& model) const { return dir_.filePath(model + ".txt"); }

    QTemporaryDir dir_;
    std::map<QString, Frames> frames_;
};

void StatsTest::initTestCase()
{
    QVERIFY(dir_.isValid());
    for (const QString model : {"Wren_Plus", "Tern"}) {
        const Run sim = runProgram("scandeck-sim", {"--model", model, "--record", recordingOf(model), "--revolutions",
                                                    QString::number(kRevolutions)});
        QVERIFY2(sim.exitCode == 0, sim.err.constData());
        frames_[model] = convertedFrames(recordingOf(model), dir_.filePath(model + "-points.csv"));
        QVERIFY(frames_[model].size() >= kRevolutions - 1);  // a last revolution may be left open
    }
}

void StatsTest::statistics_data()
{
    QTest::addColumn<QString>("model");
    QTest::addColumn<QStringList>("range");  // --start, --frames
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("count");  // 0: to the end
    QTest::addColumn<int>("bins");
    QTest::addColumn<bool>("toFile");
    QTest::newRow("Wren_Plus, every frame, to standard output") << "Wren_Plus" << QStringList{} << 1 << 0 << 720 << false;
    QTest::newRow("Wren_Plus, frames 3 to 7") << "Wren_Plus" << QStringList{"--start", "3", "--frames", "5"} << 3 << 5
                                              << 720 << true;
    QTest::newRow("Tern, from frame 6 to the end") << "Tern" << QStringList{"--start", "6"} << 6 << 0 << 984 << true;
    QTest::newRow("Tern, more frames than there are") << "Tern" << QStringList{"--frames", "500"} << 1 << 0 << 984
                                                      << false;
    QTest::newRow("Tern, one frame") << "Tern" << QStringList{"--frames", "1"} << 1 << 1 << 984 << true;
}

void StatsTest::statistics()
{
    QFETCH(QString, model);
    QFETCH(QStringList, range);
    QFETCH(int, first);
    QFETCH(int, count);
    QFETCH(int, bins);
    QFETCH(bool, toFile);
    const Frames& frames = frames_[model];
    if (count == 0)
        count = int(frames.size()) - first + 1;
    const QString out = dir_.filePath("stats.csv");
    QFile::remove(out);
    QStringList arguments{"stats", recordingOf(model)};
    arguments << range;
    if (toFile)
        arguments << "-o" << out;
    const Run run = runProgram("scandeck-cli", arguments);
    QVERIFY2(run.exitCode == 0, run.err.constData());
    QByteArray csv = run.out;
    if (toFile) {
        QVERIFY(run.out.contains(QStringLiteral("statistics of %1 frame").arg(count).toUtf8()));
        QFile file(out);
        QVERIFY(file.open(QIODevice::ReadOnly));
        csv = file.readAll();
    }
    QVERIFY(csv.endsWith('\n'));
    const QList<QByteArray> lines = csv.trimmed().split('\n');
    QCOMPARE(lines.first(), QByteArray("azimuth,frames,returns,return_rate,mean_m,std_m,min_m,max_m"));
    QCOMPARE(lines.size(), bins + 1);
    int returning = 0;
    for (int bin = 0; bin < bins; ++bin) {
        const ExpectedLine expected = expectedLine(frames, first, count, bin, bins);
        if (!matches(lines.at(bin + 1), expected))
            QFAIL(qPrintable(QStringLiteral("direction %1: %2, expected %3, mean %4, deviation %5")
                                 .arg(bin)
                                 .arg(QString(lines.at(bin + 1)), QString(expected.exact.join(',')))
                                 .arg(expected.mean)
                                 .arg(expected.std)));
        returning += expected.returned;
    }
    QVERIFY(returning > bins * 9 / 10);  // the simulated room is closed but for its door
}

void StatsTest::capturesLikeRecordings_data()
{
    QTest::addColumn<QString>("model");
    for (const char* model : {"Tern", "Tern_P", "Tern_GPS", "Tern_Plus", "Wren_Plus", "Wren_Kite"})
        QTest::newRow(model) << model;
}

void StatsTest::capturesLikeRecordings()
{
    QFETCH(QString, model);
    const QVector<QByteArray> packets = testing::revolutionPackets(model, 4);
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    QVector<QByteArray> elements{model.toLatin1()};
    if (model == "Tern_P")
        elements << "215";
    lidar::writeRecordElements(buffer, elements + packets);
    const QString recording = write(model + "-packets.txt", buffer.data());
    QVector<QByteArray> datagrams;
    for (const QByteArray& packet : packets)
        datagrams << testing::ethernet(testing::udp4(2368, packet));
    const QString capture = write(model + ".pcapng", testing::captureFile(testing::CaptureFormat::PcapNg, false,
                                                                          testing::kLinkEthernet, datagrams));
    const Run fromRecording = runProgram("scandeck-cli", {"stats", recording});
    QStringList captureArguments{"stats", capture, "--model", model};
    if (model == "Tern_P")
        captureArguments << "--firmware" << "215";
    const Run fromCapture = runProgram("scandeck-cli", captureArguments);
    QVERIFY2(fromRecording.exitCode == 0, fromRecording.err.constData());
    QVERIFY2(fromCapture.exitCode == 0, fromCapture.err.constData());
    QCOMPARE(fromCapture.out, fromRecording.out);
    QVERIFY(fromRecording.out.count('\n') > 360);
}

void StatsTest::changeAgainstAReference_data()
{
    QTest::addColumn<double>("shiftMm");  // added to frame 1's ranges to make the reference
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("count");  // 0: to the end
    QTest::addColumn<double>("toleranceMm");
    QTest::addColumn<bool>("json");
    QTest::newRow("frame 1 as the reference, JSON Lines") << 0.0 << QStringList{"--json"} << 1 << 0 << 50.0 << true;
    QTest::newRow("a reference 1 m farther: all nearer") << 1000.0 << QStringList{"--json", "--frames", "3"} << 1 << 3
                                                         << 50.0 << true;
    QTest::newRow("1 cm tolerance, CSV, from frame 5")
        << 0.0 << QStringList{"--tolerance", "1", "--start", "5", "--frames", "4"} << 5 << 4 << 10.0 << false;
    QTest::newRow("no tolerance at all") << 0.0 << QStringList{"--tolerance", "0", "--frames", "2"} << 1 << 2 << 0.0
                                         << false;
}

void StatsTest::changeAgainstAReference()
{
    QFETCH(double, shiftMm);
    QFETCH(QStringList, options);
    QFETCH(int, first);
    QFETCH(int, count);
    QFETCH(double, toleranceMm);
    QFETCH(bool, json);
    const QString model = "Wren_Plus";
    const Frames& frames = frames_[model];
    if (count == 0)
        count = int(frames.size()) - first + 1;
    const double step = lidar::recordingScanGeometry(recordingOf(model)).angularStep;
    display::ReferenceSweep reference = display::referenceFromFrame(model, step, frameOf(frames[0]));
    for (int bin = 0; bin < reference.bins().count(); ++bin)
        reference.setRangeMm(bin, reference.rangeMm(bin) + shiftMm);
    const QString referencePath = dir_.filePath("reference.csv");
    QString error;
    QVERIFY2(display::ReferenceFile::save(reference, referencePath, error), qPrintable(error));

    const QString statistics = dir_.filePath("with-reference.csv");
    const Run run = runProgram("scandeck-cli", QStringList{"stats", recordingOf(model), "--reference", referencePath,
                                                           "-o", statistics} + options);
    QVERIFY2(run.exitCode == 0, run.err.constData());
    QVERIFY(QFile::exists(statistics));
    QList<QByteArray> lines = run.out.trimmed().split('\n');
    if (!json)
        QCOMPARE(lines.takeFirst(), QByteArray("frame,changed,largest_change_m,azimuth"));
    QCOMPARE(lines.size(), count);
    for (int i = 0; i < count; ++i) {
        const int frame = first + i;
        // The change worked out here from the points and the reference.
        int changed = 0;
        double largest = -1.0, largestSigned = 0.0, at = 0.0;
        for (const Point& p : frames[size_t(frame - 1)]) {
            if (p.mm <= 0)
                continue;
            const double referenceMm = reference.rangeMm(binOf(p.azimuth, reference.bins().count()));
            if (std::isnan(referenceMm)) {
                ++changed;
                continue;
            }
            const double difference = p.mm - referenceMm;
            changed += std::abs(difference) > toleranceMm;
            if (std::abs(difference) > largest)
                largest = std::abs(difference), largestSigned = difference / 1000.0, at = p.azimuth;
        }
        if (shiftMm > 0)
            QVERIFY(largestSigned < -0.95 && changed > 1000);
        if (json) {
            const QByteArray expected = QStringLiteral("{\"frame\":%1,\"changed\":%2,\"largest_change_m\":%3,"
                                                       "\"azimuth\":%4}")
                                            .arg(frame)
                                            .arg(changed)
                                            .arg(largestSigned, 0, 'f', 4)
                                            .arg(at, 0, 'f', 3)
                                            .toUtf8();
            QCOMPARE(lines.at(i), expected);
            const QJsonObject object = QJsonDocument::fromJson(lines.at(i)).object();
            QCOMPARE(object.keys(), (QStringList{"azimuth", "changed", "frame", "largest_change_m"}));
        } else {
            QCOMPARE(lines.at(i), QStringLiteral("%1,%2,%3,%4")
                                      .arg(frame)
                                      .arg(changed)
                                      .arg(largestSigned, 0, 'f', 4)
                                      .arg(at, 0, 'f', 3)
                                      .toUtf8());
        }
    }
}

void StatsTest::refusals_data()
{
    QTest::addColumn<QString>("reference");  // written to a file and given with --reference; empty: none
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("message");
    const QByteArray tern = display::ReferenceFile::text(display::ReferenceSweep("Tern", 15.0 / 41.0));
    const QByteArray fast = display::ReferenceFile::text(display::ReferenceSweep("Wren_Plus", 0.75));
    QTest::newRow("a reference of another model")
        << QString(tern) << QStringList{} << 1 << "taken with a Tern, not with a Wren_Plus";
    QTest::newRow("a reference of another motor speed")
        << QString(fast) << QStringList{} << 1 << "angular step of 0.7500°, but the lidar measures every 0.5000°";
    QTest::newRow("a reference that is none") << "azimuth,range\n0,1\n" << QStringList{} << 1
                                              << "is not a reference file";
    QTest::newRow("--json without a reference") << "" << QStringList{"--json"} << 2 << "are for --reference";
    QTest::newRow("--tolerance without a reference") << "" << QStringList{"--tolerance", "3"} << 2
                                                     << "are for --reference";
    QTest::newRow("both on standard output") << QString(fast) << QStringList{"-o", "-"} << 2
                                             << "give the statistics a file";
    QTest::newRow("frame 0") << "" << QStringList{"--start", "0"} << 2 << "start '0' is no frame number";
    QTest::newRow("no number of frames") << "" << QStringList{"--frames", "all"} << 2 << "frames 'all'";
    QTest::newRow("a negative tolerance") << QString(fast) << QStringList{"--tolerance", "-1"} << 2
                                          << "tolerance '-1'";
    QTest::newRow("beyond the last frame") << "" << QStringList{"--start", "50"} << 1 << "none from frame 50 on";
}

void StatsTest::refusals()
{
    QFETCH(QString, reference);
    QFETCH(QStringList, options);
    QFETCH(int, exitCode);
    QFETCH(QString, message);
    QStringList arguments{"stats", recordingOf("Wren_Plus")};
    if (!reference.isEmpty())
        arguments << "--reference" << write("refused.csv", reference.toUtf8());
    const Run run = runProgram("scandeck-cli", arguments + options);
    QCOMPARE(run.exitCode, exitCode);
    QVERIFY2(run.err.contains(message.toUtf8()), run.err.constData());
    QCOMPARE(run.err.count('\n'), 1);
    // The general help names the command.
    QVERIFY(runProgram("scandeck-cli", {"--help"}).out.contains("stats <recording|capture> [--start K] [--frames N]"));
}

QTEST_GUILESS_MAIN(StatsTest)
#include "tst_stats.moc"
