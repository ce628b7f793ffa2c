// ROS bags from 'scandeck-cli convert --format bag', read back by Debian's
// python3-rosbag (read_bag.py, which knows nothing of ScanDeck) and compared
// with the CSV of the same frames: topics and counts, headers and stamps,
// the cloud's fields and every value, the scan's bins. Then the geometry the
// scans are binned on, and what convert refuses for bags.

#include "CaptureBuilders.h"
#include "ModelGeometry.h"
#include "PacketBuilders.h"
#include "RecordFile.h"

#include <QDateTime>
#include <QProcess>
#include <QTemporaryDir>
#include "ProgramRun.h"

#include <QtTest>
#include <cmath>
#include <cstdlib>

namespace {

struct Header {
    quint32 seq = 0;
    qint64 stampNs = 0;
    QString frameId;
    qint64 recordNs = 0;  // when the bag files the message
};

struct Scan {
    Header header;
    double angleMin = 0, angleMax = 0, angleIncrement = 0, timeIncrement = 0, scanTime = 0, rangeMin = 0, rangeMax = 0;
    QVector<double> ranges, intensities;
};

struct Cloud {
    Header header;
    QByteArray layout;  // height width point_step row_step is_bigendian is_dense
    QByteArray fields;
    QVector<QVector<double>> points;
};

struct Bag {
    QStringList topics;
    QVector<Scan> scans;
    QVector<Cloud> clouds;
    QByteArray problem;
};

QVector<double> numbers(const QList<QByteArray>& words)
{
    QVector<double> values;
    for (const QByteArray& w : words)
        values << std::strtod(w.constData(), nullptr);  // also "inf"
    return values;
}

Header headerOf(const QList<QByteArray>& w)
{
    return {w[1].toUInt(), w[2].toLongLong() * 1000000000LL + w[3].toLongLong(), QString::fromUtf8(w[4]),
            w[5].toLongLong() * 1000000000LL + w[6].toLongLong()};
}

Bag readBag(const QString& path)
{
    QProcess python;
    python.start("/usr/bin/python3", {QStringLiteral(SCANDECK_SOURCE_DIR "/tests/cli/read_bag.py"), path});
    Bag bag;
    if (!python.waitForFinished(60000) || python.exitCode() != 0) {
        python.kill();
        bag.problem = "read_bag.py failed: " + python.readAllStandardError();
        return bag;
    }
    for (const QByteArray& line : python.readAllStandardOutput().split('\n')) {
        const QList<QByteArray> w = line.split(' ');
        if (w[0] == "topic") {
            bag.topics << QString::fromUtf8(line.mid(6));
        } else if (w[0] == "scan") {
            Scan s;
            s.header = headerOf(w);
            const QVector<double> v = numbers(w.mid(7));
            s.angleMin = v[0], s.angleMax = v[1], s.angleIncrement = v[2], s.timeIncrement = v[3];
            s.scanTime = v[4], s.rangeMin = v[5], s.rangeMax = v[6];
            bag.scans << s;
        } else if (w[0] == "ranges") {
            bag.scans.last().ranges = numbers(w.mid(1));
        } else if (w[0] == "intensities") {
            bag.scans.last().intensities = numbers(w.mid(1));
        } else if (w[0] == "cloud") {
            bag.clouds << Cloud{headerOf(w), w.mid(7).join(' '), {}, {}};
        } else if (w[0] == "fields") {
            bag.clouds.last().fields = line.mid(7);
        } else if (w[0] == "point") {
            bag.clouds.last().points << numbers(w.mid(1));
        }
    }
    return bag;
}

// One CSV line: frame, ID, x, y, z, azimuth, distance, intensity, timestamp.
struct CsvPoint {
    float x, y, z, azimuth;
    double distance;
    float intensity;
    double timestamp;
};

QMap<int, QVector<CsvPoint>> csvFrames(const QString& path)
{
    QFile file(path);
    QMap<int, QVector<CsvPoint>> frames;
    if (!file.open(QIODevice::ReadOnly))
        return frames;
    file.readLine();  // header
    while (!file.atEnd()) {
        const QList<QByteArray> f = file.readLine().trimmed().split(',');
        const auto real = [&](int i) { return std::strtof(f[i].constData(), nullptr); };
        frames[f[0].toInt()] << CsvPoint{real(2),
                                         real(3),
                                         real(4),
                                         real(5),
                                         std::strtod(f[6].constData(), nullptr),
                                         float(f[7].toInt()),
                                         double(f[8].toLongLong())};
    }
    return frames;
}

// The GPS times (ms since 1970, the calendar read as UTC) of a recording's
// data packets: Tern_GPS's at 90, the length-field packets' 12 bytes before
// their end.
QSet<qint64> packetTimesMs(const QString& recordingPath, const QString& model)
{
    QSet<qint64> times;
    const QVector<QByteArray> elements = lidar::readRecordFile(recordingPath);
    for (const QByteArray& p : elements.mid(1 + lidar::recordPrefixElements(model))) {
        const int at = model == "Tern_GPS" ? 90 : p.size() - 12;
        const auto byte = [&](int i) { return int(uint8_t(p[at + i])); };
        const QDate date(2000 + byte(0), byte(1), byte(2));
        const QTime time(byte(3), byte(4), byte(5), byte(6) * 256 + byte(7));
        times << QDateTime(date, time, Qt::UTC).toMSecsSinceEpoch();
    }
    return times;
}

using testing::Run;
using testing::runProgram;

QByteArray recording(const QString& model, const QVector<QByteArray>& packets)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    QVector<QByteArray> elements{model.toLatin1()};
    if (model == "Tern_P")
        elements << "215";
    lidar::writeRecordElements(buffer, elements + packets);
    return buffer.data();
}

bool hasGpsTime(const QString& model)
{
    return model == "Tern_P" || model == "Tern_GPS" || model == "Tern_Plus";
}

// Where a bin's angle and an azimuth's scan angle (90 - azimuth, ROS's
// counter-clockwise angles) meet: how many bins apart they are, around the turn.
double binsApart(int bin, float azimuth, int bins)
{
    double angle = std::fmod(90.0 - double(azimuth), 360.0);
    if (angle < 0)
        angle += 360.0;
    const double apart = std::fabs(angle / (360.0 / bins) - bin);
    return std::min(apart, bins - apart);
}

const QDateTime kModified(QDate(2023, 1, 2), QTime(3, 4, 5, 678), Qt::UTC);

}  // namespace

class BagTest : public QObject {
    Q_OBJECT
private slots:
    void bagMatchesCsv_data();
    void bagMatchesCsv();
    void scanGeometry_data();
    void scanGeometry();
    void refusals_data();
    void refusals();

private:
    QString write(const QString& name, const QByteArray& content)
    {
        QFile file(dir_.filePath(name));
        return file.open(QIODevice::WriteOnly) && file.write(content) == content.size() ? file.fileName() : QString();
    }
    QTemporaryDir dir_;
};

void BagTest::bagMatchesCsv_data()
{
    QTest::addColumn<QString>("model");
    QTest::addColumn<QString>("source");        // "recording", "capture" (of the same packets), "simulator"
    QTest::addColumn<QStringList>("range");     // given to both conversions
    QTest::addColumn<QStringList>("bagOptions");
    QTest::addColumn<int>("bins");              // 360 degrees over the model's step
    QTest::addColumn<double>("rangeMax");
    QTest::addColumn<int>("rpm");  // from the packets' period word
    const QStringList noRange, startTime{"--start-time", "2024-05-20T12:00:00.250Z"};
    // The hand-made packets: 42 words (Tern, Tern_GPS: 41 points over 15
    // degrees), 48 words (Tern_P, Tern_Plus), 16 groups over 14 degrees (Wren).
    QTest::newRow("Tern recording") << "Tern" << "recording" << noRange << startTime << 984 << 32.767 << 599;
    QTest::newRow("Tern_GPS recording") << "Tern_GPS" << "recording" << noRange << QStringList() << 984 << 32.767 << 599;
    QTest::newRow("Tern_P recording") << "Tern_P" << "recording" << noRange << QStringList() << 1152 << 65.535 << 599;
    QTest::newRow("Tern_Plus recording, 90 to 270 degrees")
        << "Tern_Plus" << "recording" << QStringList{"--start-angle", "90", "--end-angle", "270"}
        << QStringList{"--frame-id", "base_laser"} << 1152 << 65.535 << 599;
    QTest::newRow("Wren_Plus recording") << "Wren_Plus" << "recording" << noRange << QStringList() << 386 << 65.535 << 599;
    QTest::newRow("Wren_Kite recording") << "Wren_Kite" << "recording" << noRange << startTime << 386 << 65.535 << 599;
    QTest::newRow("Tern_P capture") << "Tern_P" << "capture" << noRange << QStringList() << 1152 << 65.535 << 599;
    QTest::newRow("Wren_Plus capture") << "Wren_Plus" << "capture" << noRange << startTime << 386 << 65.535 << 599;
    // The simulated room: 42 words, or 16 groups half a degree apart.
    QTest::newRow("Tern_GPS from the simulator") << "Tern_GPS" << "simulator" << noRange << QStringList() << 984
                                                 << 32.767 << 600;
    QTest::newRow("Wren_Plus from the simulator, 0 to 45 degrees")
        << "Wren_Plus" << "simulator" << QStringList{"--end-angle", "45"} << startTime << 720 << 65.535 << 600;
}

void BagTest::bagMatchesCsv()
{
    QFETCH(QString, model);
    QFETCH(QString, source);
    QFETCH(QStringList, range);
    QFETCH(QStringList, bagOptions);
    QFETCH(int, bins);
    QFETCH(double, rangeMax);
    QFETCH(int, rpm);

    QString recorded = dir_.filePath(model + ".txt");
    if (source == "simulator") {
        QCOMPARE(runProgram("scandeck-sim", {"--model", model, "--record", recorded, "--revolutions", "4"}).exitCode, 0);
    } else {
        recorded = write(model + ".txt", recording(model, testing::revolutionPackets(model, 4)));
    }
    QString input = recorded;
    QStringList captureOptions;
    if (source == "capture") {
        QVector<QByteArray> frames;
        for (const QByteArray& packet : testing::revolutionPackets(model, 4))
            frames << testing::ethernet(testing::udp4(2368, packet));
        input = write("capture.pcapng",
                      testing::captureFile(testing::CaptureFormat::PcapNg, false, testing::kLinkEthernet, frames));
        captureOptions << "--model" << model;
        if (model == "Tern_P")
            captureOptions << "--firmware" << "215";
    }
    QFile touched(input);
    QVERIFY(touched.open(QIODevice::ReadWrite) && touched.setFileTime(kModified, QFileDevice::FileModificationTime));
    touched.close();

    const QString csvPath = dir_.filePath("frames.csv"), bagPath = dir_.filePath("frames.bag");
    QCOMPARE(runProgram("scandeck-cli", QStringList{"convert", input, "-o", csvPath} + captureOptions + range).exitCode,
             0);
    const Run run = runProgram("scandeck-cli", QStringList{"convert", input, "-o", bagPath, "--format", "bag"}
                                                   + captureOptions + range + bagOptions);
    QVERIFY2(run.exitCode == 0 && run.err.isEmpty(), run.err.constData());
    const QMap<int, QVector<CsvPoint>> csv = csvFrames(csvPath);
    qint64 csvPoints = 0;
    for (const auto& points : csv)
        csvPoints += points.size();
    QVERIFY2(run.out.contains(QStringLiteral("%1 frames, %2 points of model %3 written to %4")
                                  .arg(csv.size())
                                  .arg(csvPoints)
                                  .arg(model, bagPath)
                                  .toUtf8()),
             run.out.constData());

    const Bag bag = readBag(bagPath);
    QVERIFY2(bag.problem.isEmpty(), bag.problem.constData());
    const int frames = csv.size();
    QVERIFY(frames >= 3);
    QCOMPARE(bag.topics, QStringList({QStringLiteral("/scandeck/points sensor_msgs/PointCloud2 %1").arg(frames),
                                      QStringLiteral("/scandeck/scan sensor_msgs/LaserScan %1").arg(frames)}));
    QCOMPARE(bag.scans.size(), frames);
    QCOMPARE(bag.clouds.size(), frames);

    const QString frameId = bagOptions.contains("--frame-id") ? bagOptions.last() : QStringLiteral("laser");
    const QSet<qint64> gpsTimes = hasGpsTime(model) ? packetTimesMs(recorded, model) : QSet<qint64>();
    const double period = 60.0 / rpm;
    const qint64 start = bagOptions.contains("--start-time")
                             ? QDateTime::fromString(bagOptions.last(), Qt::ISODateWithMs).toMSecsSinceEpoch() * 1000000
                             : kModified.toMSecsSinceEpoch() * 1000000;
    int k = 0;
    for (auto frame = csv.cbegin(); frame != csv.cend(); ++frame, ++k) {
        const Scan& scan = bag.scans[k];
        const Cloud& cloud = bag.clouds[k];
        // Headers: both messages alike, filed at their stamp.
        for (const Header& h : {scan.header, cloud.header}) {
            QCOMPARE(h.seq, quint32(frame.key()));
            QCOMPARE(h.frameId, frameId);
            QCOMPARE(h.recordNs, h.stampNs);
            QCOMPARE(h.stampNs, scan.header.stampNs);
        }
        QVERIFY(std::fabs(scan.scanTime - period) < 1e-6);
        // GPS time: that of a packet, one revolution (give or take a packet)
        // after the stamp before. Otherwise the start, then exactly one period on.
        const qint64 step = k ? scan.header.stampNs - bag.scans[k - 1].header.stampNs : 0;
        if (hasGpsTime(model)) {
            QCOMPARE(scan.header.stampNs % 1000000, 0);
            QVERIFY(gpsTimes.contains(scan.header.stampNs / 1000000));
            QVERIFY2(k == 0 || std::fabs(step / 1e9 - period) < 0.006, qPrintable(QString::number(step)));
        } else if (k == 0) {
            QCOMPARE(scan.header.stampNs, start);
        } else {
            QVERIFY2(std::llabs(step - std::llround(period * 1e9)) <= 1, qPrintable(QString::number(step)));
        }

        // The cloud: its layout, then every point as in the CSV.
        const QVector<CsvPoint>& points = frame.value();
        QCOMPARE(cloud.layout, QStringLiteral("1 %1 32 %2 0 1").arg(points.size()).arg(points.size() * 32).toUtf8());
        QCOMPARE(cloud.fields, QByteArray("x:0:7:1 y:4:7:1 z:8:7:1 intensity:12:7:1 azimuth:16:7:1 distance:20:7:1 "
                                          "timestamp:24:8:1"));
        QCOMPARE(cloud.points.size(), points.size());
        for (int i = 0; i < points.size(); ++i) {
            const QVector<double>& b = cloud.points[i];
            const CsvPoint& c = points[i];
            QCOMPARE(b.size(), 7);
            QCOMPARE(float(b[0]), c.x);
            QCOMPARE(float(b[1]), c.y);
            QCOMPARE(float(b[2]), c.z);
            QCOMPARE(float(b[3]), c.intensity);
            QCOMPARE(float(b[4]), c.azimuth);
            QCOMPARE(float(b[5]), float(c.distance));
            QCOMPARE(b[6], c.timestamp);
        }

        // The scan: its geometry, then its bins against the same points.
        const float increment = float(2 * M_PI / bins);
        QCOMPARE(scan.angleMin, 0.0);
        QCOMPARE(float(scan.angleIncrement), increment);
        QCOMPARE(float(scan.angleMax), float((bins - 1) * (2 * M_PI / bins)));
        QCOMPARE(float(scan.timeIncrement), float(period / bins));
        QCOMPARE(float(scan.rangeMin), 0.001f);
        QCOMPARE(float(scan.rangeMax), float(rangeMax));
        QCOMPARE(scan.ranges.size(), bins);
        QCOMPARE(scan.intensities.size(), bins);
        const double half = 0.5 + 1e-6;
        // Each bin holds the nearest point within half a bin, or inf when none lies there.
        for (int bin = 0; bin < bins; ++bin) {
            double nearest = INFINITY;
            for (const CsvPoint& p : points)
                if (p.distance > 0 && binsApart(bin, p.azimuth, bins) < 0.5 - 1e-6)
                    nearest = std::min(nearest, double(float(p.distance)));
            if (std::isinf(scan.ranges[bin])) {
                QVERIFY2(std::isinf(nearest), qPrintable(QStringLiteral("bin %1 empty, point at %2").arg(bin).arg(nearest)));
                QCOMPARE(scan.intensities[bin], 0.0);
                continue;
            }
            QVERIFY(float(scan.ranges[bin]) <= float(nearest));
            bool found = false;
            for (const CsvPoint& p : points)
                found = found
                        || (float(p.distance) == float(scan.ranges[bin]) && p.intensity == float(scan.intensities[bin])
                            && binsApart(bin, p.azimuth, bins) < half);
            QVERIFY2(found, qPrintable(QStringLiteral("bin %1: %2 m").arg(bin).arg(scan.ranges[bin])));
        }
    }
}

void BagTest::scanGeometry_data()
{
    QTest::addColumn<QString>("model");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<double>("step");  // 0: no geometry
    QTest::addColumn<double>("rangeMax");
    QVector<uint16_t> words(42, 1000);
    QTest::newRow("Tern: the 41st word dropped") << "Tern" << testing::ternPacket(0, 4167, words) << 15.0 / 41
                                                 << 32.767;
    words[39] = 0;
    QTest::newRow("Tern: the 40th word zero keeps the 41st")
        << "Tern" << testing::ternPacket(0, 4167, words) << 15.0 / 42 << 32.767;
    QVector<uint16_t> missing(42, 0xFFFF);
    missing[0] = 1000;
    QTest::newRow("Tern: missing echoes leave the step") << "Tern" << testing::ternPacket(0, 4167, missing)
                                                         << 15.0 / 41 << 32.767;
    const testing::GpsStamp stamp;
    QTest::newRow("Tern_GPS") << "Tern_GPS" << testing::ternGpsPacket(100, 4167, words, stamp) << 15.0 / 42 << 32.767;
    QTest::newRow("Tern_P, 42 words") << "Tern_P" << testing::ternLengthPacket(0, 4167, QVector<uint16_t>(42, 1), stamp)
                                      << 15.0 / 42 << 65.535;
    QTest::newRow("Tern_Plus, 30 words and junk behind")
        << "Tern_Plus" << testing::ternLengthPacket(0, 4167, QVector<uint16_t>(30, 1), stamp) + "\xA5\x5A\x00"
        << 15.0 / 30 << 65.535;
    QTest::newRow("Wren_Plus across 0 degrees")
        << "Wren_Plus" << testing::wrenPlusPacket(4167, 35990, 1000, {}) << (10 + 360 - 359.9) / 15 << 65.535;
    QTest::newRow("Wren_Kite, 1 to 16 degrees") << "Wren_Kite" << testing::wrenKitePacket(4167, 100, 1600, {}) << 1.0
                                                << 65.535;
    QByteArray damaged = testing::wrenKitePacket(4167, 100, 1600, {});
    damaged[20] = char(damaged[20] + 1);
    QTest::newRow("Wren_Kite, wrong checksum") << "Wren_Kite" << damaged << 0.0 << 0.0;
    QTest::newRow("Wren_Plus bytes for Wren_Kite") << "Wren_Kite" << testing::wrenPlusPacket(4167, 100, 1600, {})
                                                   << 0.0 << 0.0;
    QTest::newRow("Tern packet behind junk") << "Tern" << "junk" + testing::ternPacket(0, 4167, words) << 0.0 << 0.0;
    QTest::newRow("Tern_P length field too long")
        << "Tern_P" << testing::ternLengthPacket(0, 4167, QVector<uint16_t>(42, 1), stamp).left(100) << 0.0 << 0.0;
    QTest::newRow("a parameters reply") << "Tern_GPS" << testing::ternLongReply(175, {24, 5, 20, 2, 1, 5}, 11) << 0.0
                                        << 0.0;
    QTest::newRow("unknown model") << "Falcon" << testing::ternPacket(0, 4167, words) << 0.0 << 0.0;
}

void BagTest::scanGeometry()
{
    QFETCH(QString, model);
    QFETCH(QByteArray, bytes);
    QFETCH(double, step);
    QFETCH(double, rangeMax);
    const lidar::ScanGeometry geometry = lidar::scanGeometry(model, bytes);
    QCOMPARE(geometry.isValid(), step > 0);
    if (step > 0) {
        QVERIFY(std::fabs(geometry.angularStep - step) < 1e-9);
        QCOMPARE(geometry.rangeMin, 0.001);
        QCOMPARE(geometry.rangeMax, rangeMax);
    }
}

void BagTest::refusals_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QString>("output");  // relative to the test folder
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QByteArray>("says");
    QTest::addColumn<bool>("cutShort");  // the recording ends inside a packet, after frames were written
    const QStringList bag{"--format", "bag"};
    QTest::newRow("to standard output") << bag << "-" << 2 << QByteArray("cannot go to standard output") << false;
    QTest::newRow("frame id for CSV") << QStringList{"--frame-id", "laser"} << "x.csv" << 2
                                      << QByteArray("--frame-id and --start-time are for --format bag") << false;
    QTest::newRow("empty frame id") << bag + QStringList{"--frame-id", ""} << "x.bag" << 2
                                    << QByteArray("the frame id is empty") << false;
    QTest::newRow("merged bag") << bag + QStringList{"--merge"} << "x.bag" << 2
                                << QByteArray("--ascii and --merge are for PCD and PLY") << false;
    QTest::newRow("start time in words") << bag + QStringList{"--start-time", "yesterday"} << "x.bag" << 2
                                         << QByteArray("start time 'yesterday' is neither") << false;
    QTest::newRow("start time before 1970") << bag + QStringList{"--start-time", "1969-12-31T23:00:00Z"} << "x.bag"
                                            << 2 << QByteArray("start time '1969-12-31T23:00:00Z'") << false;
    QTest::newRow("start time beyond 2106") << bag + QStringList{"--start-time", "5000000000"} << "x.bag" << 2
                                            << QByteArray("start time '5000000000'") << false;
    QTest::newRow("into a missing folder") << bag << "missing/x.bag" << 1 << QByteArray("cannot write") << false;
    QTest::newRow("onto a folder") << bag << "." << 1 << QByteArray("is a folder") << false;
    QTest::newRow("a damaged recording") << bag << "x.bag" << 1 << QByteArray("truncated or damaged") << true;
}

void BagTest::refusals()
{
    QFETCH(QStringList, options);
    QFETCH(QString, output);
    QFETCH(int, exitCode);
    QFETCH(QByteArray, says);
    QFETCH(bool, cutShort);
    QTemporaryDir work;
    const QString input = work.filePath("rec.txt");
    QFile file(input);
    QByteArray content = recording("Tern", testing::revolutionPackets("Tern", 200));
    if (cutShort)
        content.chop(50);
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
    file.close();
    const QString target = output == "-" ? output : work.filePath(output);
    const Run run = runProgram("scandeck-cli", QStringList{"convert", input, "-o", target} + options);
    QCOMPARE(run.exitCode, exitCode);
    QVERIFY2(run.err.contains(says) && run.err.count('\n') == 1, run.err.constData());
    QCOMPARE(QDir(work.path()).entryList(QDir::Files), QStringList{"rec.txt"});  // nothing half-written stays
}

QTEST_MAIN(BagTest)
#include "tst_bag.moc"
