// What every model decoder must do alike: the live session, fed a stream in
// arbitrary pieces with junk between packets, reports one frame per
// revolution at the azimuth wrap, only while connected, and its recording
// parses offline into the very same frames. Each model's live and offline
// state lasts for the whole process, so each row has a model to itself.

#include "CsvWriter.h"
#include "DecoderHarness.h"
#include "PacketBuilders.h"
#include "RecordFile.h"

#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QtTest>

using namespace testing;

namespace {

// Feeds the packets with 1 to 12 junk bytes (never a header or trailer
// byte) before about half of them, in pieces of 1 to 150 bytes.
void feedWithJunkInPieces(LidarAnalysis& session, const QVector<QByteArray>& packets, QRandomGenerator& random)
{
    QByteArray stream;
    for (const QByteArray& packet : packets) {
        for (int i = random.bounded(2) ? int(random.bounded(1, 13)) : 0; i > 0; --i)
            stream.append("\x00\x11\x37\x42\x99\xC3"[random.bounded(6)]);
        stream.append(packet);
    }
    for (int at = 0, piece = 0; at < stream.size(); at += piece)
        feed(session, stream.mid(at, piece = int(random.bounded(1, 151))));
}

// Frame values, then every point as its CSV line (floats that read back exactly).
QStringList describe(const lidar::LidarDataPoint_V4& frame)
{
    QStringList lines{QStringLiteral("%1 %2 %3").arg(frame.ambient).arg(frame.motorSpeed).arg(frame.dateTime)};
    for (auto it = frame.points.constBegin(); it != frame.points.constEnd(); ++it)
        for (const lidar::LidarPoint& p : it.value())
            lines << QString::fromLatin1(CsvWriter::pointLine(0, it.key(), p));
    return lines;
}

}  // namespace

class DecoderConformanceTest : public QObject {
    Q_OBJECT
private slots:
    void liveAndOfflineAgree_data();
    void liveAndOfflineAgree();
    void cleanupTestCase() { LIdarFactory::GetInstance()->Shutdown(); }
};

void DecoderConformanceTest::liveAndOfflineAgree_data()
{
    QTest::addColumn<int>("pointsPerTurn");
    QTest::addColumn<QList<int>>("ids");
    QTest::addColumn<bool>("gpsStamped");
    // 24 packets a turn: 16 points (Wren_Kite keeps distance 0), 31 of 32
    // (one empty Wren_Plus channel), 41 of 42 words, 48 of 48.
    QTest::newRow("Wren_Kite") << 24 * 16 << QList<int>{0} << false;
    QTest::newRow("Wren_Plus") << 24 * 31 << QList<int>{0, 1} << false;
    QTest::newRow("Tern") << 24 * 41 << QList<int>{0} << false;
    QTest::newRow("Tern_GPS") << 24 * 41 << QList<int>{0} << true;
    QTest::newRow("Tern_P") << 24 * 48 << QList<int>{0} << true;
    QTest::newRow("Tern_Plus") << 24 * 48 << QList<int>{0} << true;
}

void DecoderConformanceTest::liveAndOfflineAgree()
{
    QFETCH(int, pointsPerTurn);
    QFETCH(QList<int>, ids);
    QFETCH(bool, gpsStamped);
    const QString model = QTest::currentDataTag();
    const int turns = 4;
    const QVector<QByteArray> packets = revolutionPackets(model, turns);
    const int closing = packets.size() - 1;  // opens turn 5
    std::unique_ptr<LidarAnalysis> session = makeSession(model);
    QVERIFY(session);
    session->versionNumber = 215;  // Tern_P reads it live and records it

    QTemporaryDir dir;
    const QString file = dir.filePath("stream.txt");
    QVERIFY(session->StartSaveData(file));
    QSignalSpy frames(session.get(), &LidarAnalysis::SendleLidarDataSignal);
    QSignalSpy times(session.get(), &LidarAnalysis::SendGPSTimeData);
    QRandomGenerator random(20240520);  // the same pieces every run

    // A turn and a half while not connected: turn 1 ends but is not reported.
    feedWithJunkInPieces(*session, packets.mid(0, 36), random);
    QCOMPARE(frames.count(), 0);
    QCOMPARE(int(session->frameReceived.load()), 1);
    session->connected = 1;
    feedWithJunkInPieces(*session, packets.mid(36, closing - 36), random);
    QCOMPARE(frames.count(), 2);  // turns 2 and 3
    feed(*session, packets[closing]);
    QCOMPARE(frames.count(), 3);  // turn 4 ends at the wrap
    QVERIFY(session->receiveBuffer.isEmpty());
    QCOMPARE(times.count(), gpsStamped ? packets.size() : 0);
    session->EndSaveData();

    // The recording holds exactly the packets, junk removed.
    QVector<QByteArray> recorded = lidar::readRecordFile(file);
    QCOMPARE(recorded.takeFirst(), model.toLatin1());
    if (model == QLatin1String("Tern_P"))
        QCOMPARE(recorded.takeFirst(), QByteArray("215"));
    QCOMPARE(recorded, packets);

    const auto offline = LIdarFactory::GetInstance()->ParseFile(file);
    QCOMPARE(offline.first, model);
    QCOMPARE(offline.second.size(), turns);
    const auto live = spied<lidar::LidarDataPoint_V4>(frames);
    for (int i = 0; i < live.size(); ++i)
        QCOMPARE(describe(live[i]), describe(offline.second[i + 1]));

    // Every frame but the first (no early points before it) holds a whole
    // turn, by channel, in rising azimuth within 0..360.
    for (int i = 0; i < offline.second.size(); ++i) {
        const lidar::LidarDataPoint_V4& frame = offline.second[i];
        QCOMPARE(frame.points.keys(), ids);
        QVERIFY(i == 0 || int(frame.pointCount()) == pointsPerTurn);
        QCOMPARE(frame.motorSpeed, 599);
        QCOMPARE(frame.dateTime.isEmpty(), !gpsStamped);
        for (const auto& line : frame.points)
            for (size_t k = 0; k < line.size(); ++k)
                QVERIFY(line[k].azimuth >= (k ? line[k - 1].azimuth : 0.0f) && line[k].azimuth <= 360.0f);
    }
}

QTEST_GUILESS_MAIN(DecoderConformanceTest)
#include "tst_decoder_conformance.moc"
