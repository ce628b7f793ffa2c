// Recording a live stream and reading recordings back, including files that
// are damaged, cut short or are not recordings at all.

#include "LIdarFactory.h"
#include "LoopbackLidar.h"
#include "OfflineParseState.h"
#include "PacketBuilders.h"
#include "RecordFile.h"
#include "FrameDescription.h"
#include "RecordingDecoder.h"
#include "RecordingStream.h"
#include "Tern.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include <csignal>
#include <sys/resource.h>

using namespace testing;

namespace {

QByteArray be32(quint32 v)
{
    QByteArray b(4, '\0');
    b[0] = char(v >> 24);
    b[1] = char(v >> 16);
    b[2] = char(v >> 8);
    b[3] = char(v);
    return b;
}

void writeFile(const QString& path, const QByteArray& bytes)
{
    QFile f(path);
    QVERIFY(f.open(QIODevice::WriteOnly));
    f.write(bytes);
}

QByteArray readFile(const QString& path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

QByteArray recordBytes(const QVector<QByteArray>& elements)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    lidar::writeRecordElements(buffer, elements);
    return buffer.data();
}

// A limit on the size of the files this process writes: a disk that fills up.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes)
    {
        std::signal(SIGXFSZ, SIG_IGN);  // a write beyond it fails instead
        getrlimit(RLIMIT_FSIZE, &previous_);
        rlimit limit = previous_;
        limit.rlim_cur = bytes;
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit() { setrlimit(RLIMIT_FSIZE, &previous_); }

private:
    rlimit previous_{};
};

void writeElements(const QString& path, const QVector<QByteArray>& elements)
{
    QFile f(path);
    QVERIFY(f.open(QIODevice::WriteOnly));
    QVERIFY(lidar::writeRecordElements(f, elements));
}

// Each frame's values, then its points byte for byte.
}  // namespace

class RecordFileTest : public QObject {
    Q_OBJECT
private slots:
    void recordingParsesToTheFramesShownLive();
    void recordingsStartEmptyAndDoNotCarryOver();
    void recordingIsWrittenAsItRuns();
    void aFullDiskEndsTheRecordingAndTheNextOneWorks();
    void unwritablePathIsRefused_data();
    void unwritablePathIsRefused();
    void damagedFiles_data();
    void damagedFiles();
    void truncatedFileIsRefusedWhole();
    void cutShortRecordingsAreRepaired_data();
    void cutShortRecordingsAreRepaired();
    void streamGivesTheFramesOfOneParse_data();
    void streamGivesTheFramesOfOneParse();
    void streamStopsAtDamage();

private:
    QTemporaryDir dir_;
};

void RecordFileTest::recordingParsesToTheFramesShownLive()
{
    Tern session;
    session.connected = 1;
    QVector<lidar::LidarDataPoint_V4> live;
    connect(&session, &LidarAnalysis::SendleLidarDataSignal, this,
            [&](const lidar::LidarDataPoint_V4& f) { live.append(f); });
    QSignalSpy saved(&session, &LidarAnalysis::SendEndSaveDataSignal);

    const QString path = dir_.filePath("live.txt");
    QVERIFY(session.StartSaveData(path));
    const QVector<QByteArray> packets = ternRevolutions(3, 1200, 300);
    QByteArray stream = QByteArray("junk");
    for (const QByteArray& p : packets)
        stream += p;
    stream.insert(92 * 5 + 4, ternReply({0x18, 1, 2, 3, 4, 5}, 11));  // replies are not recorded
    for (int at = 0; at < stream.size(); at += 500) {
        session.receiveBuffer.append(stream.mid(at, 500));
        session.ParseLidarData();
    }
    session.EndSaveData();
    QCOMPARE(saved.count(), 1);
    QCOMPARE(saved.at(0).at(0).toString(), path);
    QCOMPARE(live.size(), 2);

    const QVector<QByteArray> elements = lidar::readRecordFile(path);
    QCOMPARE(elements.size(), 1 + packets.size());
    QCOMPARE(elements.first(), QByteArray("Tern"));
    QCOMPARE(elements.mid(1), packets);

    // Point-for-point agreement of live and offline decoding is the decoder
    // conformance test's business; here the file must reach the right parser.
    const auto parsed = LIdarFactory::GetInstance()->ParseFile(path);
    QCOMPARE(parsed.first, QString("Tern"));
    QCOMPARE(parsed.second.size(), live.size());
}

void RecordFileTest::recordingsStartEmptyAndDoNotCarryOver()
{
    Tern session;
    const QString first = dir_.filePath("first.txt");
    QVERIFY(session.StartSaveData(first));
    session.EndSaveData();
    QCOMPARE(lidar::readRecordFile(first), QVector<QByteArray>{"Tern"});

    const QVector<QByteArray> packets = ternRevolutions(1);
    QVERIFY(session.StartSaveData(dir_.filePath("a.txt")));
    session.receiveBuffer = packets[0];
    session.ParseLidarData();
    session.EndSaveData();
    QVERIFY(session.StartSaveData(dir_.filePath("b.txt")));
    session.receiveBuffer = packets[1];
    session.ParseLidarData();
    session.EndSaveData();
    QCOMPARE(lidar::readRecordFile(dir_.filePath("b.txt")), (QVector<QByteArray>{"Tern", packets[1]}));
}

// A crash in the middle of a recording leaves what was written so far: an
// unfinished file that the reader refuses and repair makes readable.
void RecordFileTest::recordingIsWrittenAsItRuns()
{
    Tern session;
    const QString path = dir_.filePath("running.txt");
    QVERIFY(session.StartSaveData(path));
    QCOMPARE(readFile(path), QByteArray("\xFF\xFF\xFF\xFF\x00\x00\x00\x04Tern", 12));
    const QVector<QByteArray> packets = ternRevolutions(40);  // over 64 KiB, so some are written
    for (const QByteArray& packet : packets) {
        session.receiveBuffer.append(packet);
        session.ParseLidarData();
    }
    const QString crashed = dir_.filePath("crashed.txt");
    QVERIFY(QFile::copy(path, crashed));
    QVERIFY(LIdarFactory::GetInstance()->ParseFile(crashed).second.isEmpty());
    QVERIFY(lidar::scanRecordFile(crashed).isCutShort());
    const qint64 kept = lidar::repairRecordFile(crashed, nullptr);
    QVERIFY(kept > 1 && kept < packets.size());
    QCOMPARE(lidar::readRecordFile(crashed), QVector<QByteArray>{"Tern"} + packets.mid(0, int(kept) - 1));

    session.EndSaveData();
    QCOMPARE(lidar::readRecordFile(path), QVector<QByteArray>{"Tern"} + packets);
}

// The disk fills up while a live recording runs: it stops with a message,
// keeps the packets written whole before, says "File saved" for nothing,
// and the next recording works again.
void RecordFileTest::aFullDiskEndsTheRecordingAndTheNextOneWorks()
{
    Tern session;
    session.dataIp = session.lidarIp = "127.0.0.1";
    session.dataPort = freeUdpPort();
    session.ConnectLidar(lidar::NetworkConnection);
    QSignalSpy messages(&session, &LidarAnalysis::SendMessageSignal);
    QSignalSpy saved(&session, &LidarAnalysis::SendEndSaveDataSignal);
    LoopbackLidar lidar;
    const QVector<QByteArray> packets = ternRevolutions(10);
    const QString full = dir_.filePath("full.txt");
    {
        FileSizeLimit disk(12 * 1024);
        QVERIFY(session.StartSaveData(full));
        for (const QByteArray& packet : packets) {
            lidar.send(packet, session.dataPort);
            waitFor([&] { return !messages.isEmpty(); }, 2);
        }
        QVERIFY(waitFor([&] { return !messages.isEmpty(); }));
    }
    QCOMPARE(int(session.saving), 0);
    QVERIFY(!session.saveError.isEmpty());
    QVERIFY2(messages.first().first().toString().startsWith("Recording stopped: " + full), qPrintable(messages.first().first().toString()));
    session.EndSaveData();  // what the window does when the button is pressed again
    QCOMPARE(saved.count(), 0);
    const QVector<QByteArray> kept = lidar::readRecordFile(full);
    QVERIFY(kept.size() > 50 && QFileInfo(full).size() <= 12 * 1024);
    QCOMPARE(kept.mid(1), packets.mid(0, kept.size() - 1));

    waitFor([] { return false; }, 300);  // the rest of the first packets arrives unrecorded
    const QString next = dir_.filePath("next.txt");
    QVERIFY(session.StartSaveData(next));
    QVERIFY(session.saveError.isEmpty());
    for (const QByteArray& packet : packets.mid(0, 24))
        lidar.send(packet, session.dataPort);
    QVERIFY(waitFor([&] { return lidar::scanRecordFile(next).complete == 25; }));
    session.EndSaveData();
    QCOMPARE(saved.count(), 1);
    QCOMPARE(lidar::readRecordFile(next), QVector<QByteArray>{"Tern"} + packets.mid(0, 24));
    QCOMPARE(messages.count(), 1);
    session.DisconnectLidar();
}

void RecordFileTest::unwritablePathIsRefused_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("no such directory") << dir_.filePath("no/such/dir/x.txt");
    if (QFile::exists("/dev/full"))  // opens, but every write fails
        QTest::newRow("a full device") << QStringLiteral("/dev/full");
}

void RecordFileTest::unwritablePathIsRefused()
{
    QFETCH(QString, path);
    Tern session;
    QVERIFY(!session.StartSaveData(path));
    QCOMPARE(int(session.saving), 0);
    QVERIFY(!session.saveError.isEmpty());
    QVERIFY(session.StartSaveData(dir_.filePath("after-refusal.txt")));
    session.EndSaveData();
    QCOMPARE(lidar::readRecordFile(dir_.filePath("after-refusal.txt")), QVector<QByteArray>{"Tern"});
}

void RecordFileTest::damagedFiles_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("frames");

    QTest::newRow("zero-length") << QByteArray() << QString() << 0;
    QTest::newRow("text file") << QByteArray("hello, this is not a recording\n") << QString() << 0;
    // A count of 0x7FFFFFF0 in a 20-byte file must not allocate gigabytes.
    QTest::newRow("huge count") << be32(0x7FFFFFF0) + be32(4) + "Tern" + be32(0x00100000) + "abcd"
                                << QString() << 0;
    QTest::newRow("huge element") << be32(2) + be32(0xFFFFFFF0) + "Tern" << QString() << 0;
    QTest::newRow("unregistered model") << be32(2) + be32(4) + "Nope" + be32(92) + ternPacketFilled(0, 0, 5)
                                        << QString("Nope") << 0;
}

void RecordFileTest::damagedFiles()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, name);
    QFETCH(int, frames);
    const QString path = dir_.filePath(QString("damaged-%1.txt").arg(QTest::currentDataTag()));
    writeFile(path, bytes);
    const auto parsed = LIdarFactory::GetInstance()->ParseFile(path);
    QCOMPARE(parsed.first, name);
    QCOMPARE(parsed.second.size(), frames);
}

void RecordFileTest::truncatedFileIsRefusedWhole()
{
    const QVector<QByteArray> packets = ternRevolutions(2);
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    QVector<QByteArray> elements{"Tern"};
    elements += packets;
    QVERIFY(lidar::writeRecordElements(buffer, elements));
    const QByteArray whole = buffer.data();
    // Cut in the middle of the eleventh packet.
    QByteArray cut = whole.left(4 + 8 + 10 * 96 + 50);
    QBuffer in(&cut);
    in.open(QIODevice::ReadOnly);
    QVERIFY(lidar::readRecordElements(in).isEmpty());
    QBuffer complete;
    complete.setData(whole);
    complete.open(QIODevice::ReadOnly);
    QCOMPARE(lidar::readRecordElements(complete), elements);

    QCOMPARE(lidar::readRecordFile(dir_.filePath("missing.txt")).size(), 0);
}

void RecordFileTest::cutShortRecordingsAreRepaired_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<int>("kept");  // whole elements after the repair, -1: refused
    QTest::addColumn<bool>("changed");
    const QVector<QByteArray> elements = QVector<QByteArray>{"Tern"} + ternRevolutions(1);
    const QByteArray whole = recordBytes(elements);
    QByteArray unfinished = whole;
    unfinished.replace(0, 4, QByteArray(4, '\xFF'));
    const int fivePackets = 4 + 8 + 5 * 96;

    QTest::newRow("unfinished count") << unfinished << elements.size() << true;
    QTest::newRow("unfinished, cut inside a packet") << unfinished.left(fivePackets + 50) << 6 << true;
    QTest::newRow("whole count, cut between packets") << whole.left(fivePackets) << 6 << true;
    QTest::newRow("model name only, unfinished") << unfinished.left(12) << 1 << true;
    QTest::newRow("whole") << whole << elements.size() << false;
    QTest::newRow("count only") << unfinished.left(4) << -1 << false;
    QTest::newRow("empty") << QByteArray() << -1 << false;
}

void RecordFileTest::cutShortRecordingsAreRepaired()
{
    QFETCH(QByteArray, bytes);
    QFETCH(int, kept);
    QFETCH(bool, changed);
    const QString path = dir_.filePath(QString("repair-%1.txt").arg(QTest::currentDataTag()));
    writeFile(path, bytes);
    QCOMPARE(lidar::scanRecordFile(path).isCutShort(), changed);
    QString error;
    QCOMPARE(lidar::repairRecordFile(path, &error), qint64(kept));
    QCOMPARE(error.isEmpty(), kept >= 0);
    if (!changed) {
        QCOMPARE(readFile(path), bytes);
        return;
    }
    // The complete elements in order, nothing after them: a whole recording.
    const QVector<QByteArray> read = lidar::readRecordFile(path);
    QCOMPARE(read.size(), kept);
    QVERIFY(lidar::scanRecordFile(path).isWhole());
    QCOMPARE(recordBytes(read).mid(4), bytes.mid(4, recordBytes(read).size() - 4));
}

void RecordFileTest::streamGivesTheFramesOfOneParse_data()
{
    QTest::addColumn<QString>("model");
    QTest::addColumn<QVector<QByteArray>>("packets");  // after the name and version
    const int batch = lidar::RecordingDecoder::kBatchPackets;
    QTest::newRow("Tern, batches cut mid-turn") << "Tern" << revolutionPackets("Tern", 2 * batch / 24 + 7);
    // Element 1 is the version: it must lead every batch, not be decoded once.
    QTest::newRow("Tern_P, its version in every batch") << "Tern_P" << revolutionPackets("Tern_P", batch / 24 + 3);
    // Offline, Wren_Kite compares whole degrees of the previous azimuth.
    QTest::newRow("Wren_Kite") << "Wren_Kite" << revolutionPackets("Wren_Kite", batch / 24 + 3);
    // A Tern packet without trailer ends the parse: nothing after it, in
    // whichever later batch it lies.
    QVector<QByteArray> cut = revolutionPackets("Tern", 3 * batch / 24);
    cut[batch + 100].chop(2);
    QTest::newRow("Tern packet without trailer in the second batch") << "Tern" << cut;
}

void RecordFileTest::streamGivesTheFramesOfOneParse()
{
    QFETCH(QString, model);
    QFETCH(QVector<QByteArray>, packets);
    const QVector<QByteArray> prefix = lidar::recordPrefixElements(model) ? QVector<QByteArray>{"215"}
                                                                         : QVector<QByteArray>{};
    const QString path = dir_.filePath("stream.txt");
    writeElements(path, QVector<QByteArray>{model.toLatin1()} + prefix + packets);

    settleOfflineParse(model);
    const QVector<lidar::LidarDataPoint_V4> whole = LIdarFactory::GetInstance()->parseMap.value(model)(prefix + packets);
    settleOfflineParse(model);
    lidar::RecordingStream stream(path);
    QVERIFY(stream.open());
    QCOMPARE(stream.model(), model);
    QVector<lidar::LidarDataPoint_V4> streamed;
    QVERIFY(stream.run([&](lidar::LidarDataPoint_V4& frame) { return streamed.append(frame), true; }));
    settleOfflineParse(model);
    QVERIFY(whole.size() > 2);
    QCOMPARE(describe(streamed), describe(whole));
    QCOMPARE(stream.packets(), qint64(packets.size()));
}

void RecordFileTest::streamStopsAtDamage()
{
    const QVector<QByteArray> elements = QVector<QByteArray>{"Tern"} + ternRevolutions(120);
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    QVERIFY(lidar::writeRecordElements(buffer, elements));
    // Cut in the length of element 2501, then in its bytes.
    const qint64 element2501 = 4 + 8 + 2500 * 96;
    for (const qint64 cut : {element2501 + 2, element2501 + 4 + 50}) {
        const QString path = dir_.filePath("cut.txt");
        writeFile(path, buffer.data().left(int(cut)));
        settleOfflineParse("Tern");
        lidar::RecordingStream stream(path);
        QVERIFY(stream.open());
        int frames = 0;
        QVERIFY(!stream.run([&](lidar::LidarDataPoint_V4&) { return ++frames, true; }));
        QCOMPARE(stream.problem(), lidar::RecordingStream::Problem::Damaged);
        QCOMPARE(stream.damage().element, qint64(2501));
        QCOMPARE(stream.damage().length, cut == element2501 + 2 ? qint64(-1) : qint64(92));
        QCOMPARE(stream.damage().remaining, cut == element2501 + 2 ? qint64(2) : qint64(50));
        // Every frame completed before the damage was handed on.
        settleOfflineParse("Tern");
        QCOMPARE(frames, LIdarFactory::GetInstance()->parseMap.value("Tern")(elements.mid(1, 2500)).size());
    }
}

QTEST_MAIN(RecordFileTest)
#include "tst_record_file.moc"
