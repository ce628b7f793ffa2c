// The stream-health figures against ground truth: scandeck-sim damages its
// stream (--drop, --corrupt, --junk, --split) and logs what became of every
// packet (--log); scandeck-cli listen --json --record receives it, and
// info --json reads the recording back. For one model of each family the
// frames' missing packets, the rejected packets and the skipped bytes must
// agree exactly with the log. Then info's text summary, --frames, and a
// capture.

#include "CaptureBuilders.h"
#include "CaptureFile.h"
#include "LoopbackLidar.h"
#include "RecordFile.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QtEndian>
#include <QtTest>

namespace {

const QString kSim = QStringLiteral(SCANDECK_SIM_PATH);
constexpr int kFrames = 20;

QString cliPath()
{
    return QDir::current().absoluteFilePath("scandeck-cli");
}

struct LogEntry {
    int revolution = 0;
    int startCentidegrees = 0;
    QString fate;  // sent, dropped, corrupted
    int junk = 0;
    bool recorded = false;  // found in the recording
};

QVector<LogEntry> readLog(const QString& path)
{
    QVector<LogEntry> entries;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return entries;
    while (!file.atEnd()) {
        const QList<QByteArray> f = file.readLine().simplified().split(' ');
        if (f.size() != 5 || f[0].startsWith('#'))
            continue;
        entries.append({f[0].toInt(), int(std::lround(f[2].toDouble() * 100)), QString::fromLatin1(f[3]),
                        f[4].toInt(), false});
    }
    return entries;
}

QVector<QJsonObject> jsonLines(const QByteArray& text)
{
    QVector<QJsonObject> objects;
    for (const QByteArray& line : text.trimmed().split('\n'))
        objects.append(QJsonDocument::fromJson(line).object());
    return objects;
}

QByteArray run(const QStringList& arguments, int* exitCode = nullptr)
{
    QProcess process;
    process.start(cliPath(), arguments);
    if (!process.waitForFinished(60000))
        process.kill();
    if (exitCode)
        *exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    return process.readAllStandardOutput();
}

// The gaps a revolution's lost packets leave, as the accounting writes them:
// neighbours merged, a gap through 0 from its start to its end.
QJsonArray expectedGaps(const QVector<LogEntry>& turn, int pitchCentidegrees)
{
    QVector<QPair<int, int>> gaps;
    for (const LogEntry& e : turn) {
        if (e.recorded)
            continue;
        const int end = e.startCentidegrees + pitchCentidegrees;
        if (!gaps.isEmpty() && gaps.last().second == e.startCentidegrees)
            gaps.last().second = end;
        else
            gaps.append({e.startCentidegrees, end});
    }
    if (gaps.size() > 1 && gaps.first().first == 0 && gaps.last().second == 36000) {
        const QPair<int, int> throughZero{gaps.last().first, gaps.first().second};
        gaps.removeFirst();
        gaps.last() = throughZero;  // it starts last
    }
    QJsonArray out;
    for (const auto& gap : gaps)
        out.append(QJsonArray{gap.first / 100.0, gap.second / 100.0});
    return out;
}

}  // namespace

class StreamHealthCliTest : public QObject {
    Q_OBJECT
private slots:
    void figuresAgreeWithTheSimulatorsLog_data();
    void figuresAgreeWithTheSimulatorsLog();
    void infoSummarisesARecording();
    void infoReadsTheHealthOfACapture();
};

void StreamHealthCliTest::figuresAgreeWithTheSimulatorsLog_data()
{
    QTest::addColumn<QString>("model");
    QTest::addColumn<int>("packetsPerTurn");
    QTest::addColumn<int>("packetSize");
    QTest::addColumn<int>("startOffset");  // of the start angle in a data packet
    QTest::addColumn<QString>("seed");
    QTest::newRow("Tern_GPS") << "Tern_GPS" << 24 << 102 << 2 << "11";
    QTest::newRow("Wren_Plus") << "Wren_Plus" << 45 << 108 << 5 << "11";
}

void StreamHealthCliTest::figuresAgreeWithTheSimulatorsLog()
{
    QFETCH(QString, model);
    QFETCH(int, packetsPerTurn);
    QFETCH(int, packetSize);
    QFETCH(int, startOffset);
    QFETCH(QString, seed);
    QTemporaryDir dir;
    const QString recording = dir.filePath("recording.txt"), log = dir.filePath("packets.log");
    const QString port = QString::number(testing::freeUdpPort());

    // The listener first, so that it hears the simulator's first packet.
    QProcess listen;
    listen.start(cliPath(), {"listen", "--model", model, "--udp", "127.0.0.1:" + port, "--frames",
                             QString::number(kFrames), "--timeout", "60", "--json", "--record", recording});
    QByteArray said;
    QVERIFY(testing::waitFor([&] { return (said += listen.readAllStandardError()).contains("listening on"); }, 10000));
    QProcess sim;
    sim.start(kSim, {"--model", model, "--udp", "127.0.0.1:" + port, "--command-port", "0", "--drop", "0.03",
                     "--corrupt", "0.03", "--junk", "0.05", "--split", "--seed", seed, "--log", log,
                     "--seconds", "60"});
    QVERIFY(sim.waitForStarted(5000));
    QVERIFY(listen.waitForFinished(60000));
    sim.terminate();
    QVERIFY(sim.waitForFinished(10000));
    QCOMPARE(listen.exitCode(), 0);
    const QVector<QJsonObject> live = jsonLines(listen.readAllStandardOutput());
    QCOMPARE(live.size(), kFrames + 1);

    // Which logged packets reached the recording: those sent whole, in
    // order, less any the stream lost while finding its way again.
    QVector<QByteArray> packets = lidar::readRecordFile(recording);
    QVERIFY(!packets.isEmpty());
    packets.removeFirst();  // the model's name
    QVector<LogEntry> entries = readLog(log);
    int next = 0;
    for (LogEntry& e : entries) {
        if (next < packets.size() && e.fate == "sent"
            && qFromBigEndian<quint16>(packets[next].constData() + startOffset) == e.startCentidegrees) {
            e.recorded = true;
            ++next;
        }
    }
    QCOMPARE(next, packets.size());

    // Frame k is revolution k - 1.
    const int pitch = 36000 / packetsPerTurn;
    qint64 lostToResync = 0;
    for (int k = 1; k <= kFrames; ++k) {
        QVector<LogEntry> turn;
        for (const LogEntry& e : entries)
            if (e.revolution == k - 1)
                turn.append(e);
        QCOMPARE(turn.size(), packetsPerTurn);
        const int missing = int(std::count_if(turn.begin(), turn.end(), [](const LogEntry& e) { return !e.recorded; }));
        const QJsonObject& frame = live[k - 1];
        QCOMPARE(frame["frame"].toInt(), k);
        QCOMPARE(frame["missing_packets"].toInt(), missing);
        QCOMPARE(frame["packets"].toInt(), packetsPerTurn - missing);
        QCOMPARE(frame["gaps"].toArray(), expectedGaps(turn, pitch));
        QCOMPARE(frame["coverage"].toDouble() == 1.0, missing == 0);
        for (const LogEntry& e : turn)
            lostToResync += e.fate == "sent" && !e.recorded ? 1 : 0;
    }

    // The stream's totals when the last frame was completed, by the first
    // packet of the next revolution the listener took.
    const auto cut = std::find_if(entries.begin(), entries.end(),
                                  [](const LogEntry& e) { return e.revolution == kFrames && e.recorded; });
    QVERIFY(cut != entries.end());
    qint64 junk = 0, corrupted = 0, dropped = 0, absent = 0;
    for (auto e = entries.begin(); e != cut + 1; ++e) {
        junk += e->junk;
        corrupted += e->fate == "corrupted" ? 1 : 0;
        dropped += e->fate == "dropped" ? 1 : 0;
        absent += e->recorded ? 0 : 1;
    }
    QVERIFY2(dropped > 0 && corrupted > 0 && junk > 0, "the seed damages too little");
    const QJsonObject summary = live.last()["summary"].toObject();
    QCOMPARE(summary["frames"].toInt(), kFrames);
    if (model.startsWith("Tern")) {
        // A Tern packet a byte short is refused on its own.
        QCOMPARE(lostToResync, 0);
        QCOMPARE(summary["rejected_packets"].toInt(), corrupted);
        QCOMPARE(summary["skipped_bytes"].toInt(), junk);
    } else {
        // A Wren packet that fails its checksum waits for a reply's length of
        // bytes, then the stream is taken up afresh past all of them: the
        // packets lost with it are bytes skipped, to the byte.
        const qint64 skipped = summary["skipped_bytes"].toInt(), rejected = summary["rejected_packets"].toInt();
        QVERIFY(rejected > 0 && rejected <= corrupted);
        QCOMPARE(skipped + packetSize * rejected, junk + packetSize * (absent - dropped));
    }
    int missing = 0, incomplete = 0;
    for (int k = 0; k < kFrames; ++k) {
        missing += live[k]["missing_packets"].toInt();
        incomplete += live[k]["gaps"].toArray().isEmpty() ? 0 : 1;
    }
    QCOMPARE(summary["missing_packets"].toInt(), missing);
    QCOMPARE(summary["incomplete_frames"].toInt(), incomplete);

    // The recording tells the same of every frame; it holds only the packets
    // taken, so nothing rejected or skipped, and without GPS time no period.
    int exitCode = -1;
    const QVector<QJsonObject> recorded = jsonLines(run({"info", "--json", recording}, &exitCode));
    QCOMPARE(exitCode, 0);
    QVERIFY(recorded.size() > kFrames);
    for (int k = 0; k < kFrames; ++k) {
        QJsonObject fromLive = live[k];
        QJsonObject fromFile = recorded[k];
        if (model.startsWith("Wren")) {
            QVERIFY(fromLive["period_ms"].toDouble() > 50.0);  // by arrival
            QVERIFY(fromFile["period_ms"].isNull());
            fromLive.remove("period_ms");
            fromFile.remove("period_ms");
        }
        QCOMPARE(fromFile, fromLive);
    }
    const QJsonObject fileSummary = recorded.last()["summary"].toObject();
    QCOMPARE(fileSummary["rejected_packets"].toInt(), 0);
    QCOMPARE(fileSummary["skipped_bytes"].toInt(), 0);
}

void StreamHealthCliTest::infoSummarisesARecording()
{
    QTemporaryDir dir;
    const QString path = dir.filePath("recording.txt");
    QProcess sim;
    sim.start(kSim, {"--model", "Tern_GPS", "--record", path, "--revolutions", "4"});
    QVERIFY(sim.waitForFinished(10000) && sim.exitCode() == 0);
    // Packets 5 and 30 lost: frames 1 and 2 lack one each.
    QVector<QByteArray> elements = lidar::readRecordFile(path);
    elements.remove(1 + 30);
    elements.remove(1 + 5);
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly) && lidar::writeRecordElements(file, elements));
    file.close();

    const QString text = QString::fromLocal8Bit(run({"info", path}));
    for (const char* line : {"complete frames:   4", "whole frames:      2", "incomplete frames: 2",
                             "missing packets:   2", "worst gap:         15 deg at 75-90 deg (frame 1)",
                             "rejected packets:  0", "skipped bytes:     0", "revolution period: 100.0"})
        QVERIFY2(text.contains(line), qPrintable(line + QString(" in:\n") + text));
    const QStringList frames = QString::fromLocal8Bit(run({"info", "--frames", path})).split('\n');
    QVERIFY(frames.first().startsWith("frame 1: 23 packets, 1 missing, coverage 95.8 %, gaps 75-90 deg; "));
    QVERIFY(frames[2].startsWith("frame 3: whole, 24 packets; "));
    int exitCode = -1;
    run({"info", "--frames", "--json", path}, &exitCode);
    QCOMPARE(exitCode, 2);
}

void StreamHealthCliTest::infoReadsTheHealthOfACapture()
{
    // A simulated Wren_Kite's packets captured on their way, one lost and
    // three bytes of junk in front of every datagram.
    QTemporaryDir dir;
    const QString recording = dir.filePath("recording.txt"), path = dir.filePath("capture.pcap");
    QProcess sim;
    sim.start(kSim, {"--model", "Wren_Kite", "--record", recording, "--revolutions", "3"});
    QVERIFY(sim.waitForFinished(10000) && sim.exitCode() == 0);
    QVector<QByteArray> packets = lidar::readRecordFile(recording);
    packets.removeFirst();
    packets.remove(45 + 44);  // the second turn's last
    QVector<QByteArray> frames;
    for (const QByteArray& packet : packets)
        frames.append(testing::ethernet(testing::udp4(capture::kDefaultDataPort, "\x01\x02\x03" + packet)));
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(testing::captureFile(testing::CaptureFormat::PcapMicroseconds, false, testing::kLinkEthernet, frames));
    file.close();

    const QVector<QJsonObject> lines = jsonLines(run({"info", "--json", "--model", "Wren_Kite", path}));
    QCOMPARE(lines.size(), 4);
    QCOMPARE(lines[1]["missing_packets"].toInt(), 1);
    QCOMPARE(QJsonDocument(lines[1]["gaps"].toArray()).toJson(QJsonDocument::Compact), QByteArray("[[352,360]]"));
    QCOMPARE(lines[0]["period_ms"].toDouble(), 45.0);  // datagrams 1 ms apart
    const QJsonObject summary = lines[3]["summary"].toObject();
    QCOMPARE(summary["incomplete_frames"].toInt(), 1);
    QCOMPARE(summary["skipped_bytes"].toInt(), 3 * packets.size());
    QCOMPARE(summary["rejected_packets"].toInt(), 0);
}

QTEST_GUILESS_MAIN(StreamHealthCliTest)
#include "tst_stream_health_cli.moc"
