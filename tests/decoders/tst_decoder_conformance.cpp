// What every model decoder must do alike: the live session, fed a stream in
// arbitrary pieces with junk between packets, reports one frame per
// revolution at the azimuth wrap, only while connected, and its recording
// parses offline into the very same frames.
//
// Each model's live and offline state lives for the whole process, so each
// row runs on a model nothing else in this program has touched.

#include "DecoderHarness.h"
#include "LIdarFactory.h"
#include "PacketBuilders.h"
#include "RecordFile.h"

#include <QTemporaryDir>
#include <QtTest>

using namespace testing;

class DecoderConformanceTest : public QObject {
    Q_OBJECT
private slots:
    void liveAndOfflineAgree_data();
    void liveAndOfflineAgree();
    void cleanupTestCase() { LIdarFactory::GetInstance()->Shutdown(); }
};

void DecoderConformanceTest::liveAndOfflineAgree_data()
{
    QTest::addColumn<QString>("model");
    QTest::addColumn<int>("pointsPerTurn");
    QTest::addColumn<QList<int>>("ids");
    QTest::addColumn<bool>("gpsStamped");

    // 24 packets a turn: 16 points each (Wren_Kite keeps distance 0), 31 of
    // 32 (Wren_Plus drops one empty channel), 41 of 42 words (Tern and
    // Tern_GPS drop the 41st), 48 of 48 (length-field packets).
    QTest::newRow("Wren_Kite") << "Wren_Kite" << 24 * 16 << QList<int>{0} << false;
    QTest::newRow("Wren_Plus") << "Wren_Plus" << 24 * 31 << QList<int>{0, 1} << false;
    QTest::newRow("Tern") << "Tern" << 24 * 41 << QList<int>{0} << false;
    QTest::newRow("Tern_GPS") << "Tern_GPS" << 24 * 41 << QList<int>{0} << true;
    QTest::newRow("Tern_P") << "Tern_P" << 24 * 48 << QList<int>{0} << true;
    QTest::newRow("Tern_Plus") << "Tern_Plus" << 24 * 48 << QList<int>{0} << true;
}

void DecoderConformanceTest::liveAndOfflineAgree()
{
    QFETCH(QString, model);
    QFETCH(int, pointsPerTurn);
    QFETCH(QList<int>, ids);
    QFETCH(bool, gpsStamped);

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
    feedInPieces(*session, joinWithJunk(packets.mid(0, 36), random), random);
    QCOMPARE(frames.count(), 0);
    QCOMPARE(int(session->frameReceived.load()), 1);

    session->connected = 1;
    feedInPieces(*session, joinWithJunk(packets.mid(36, closing - 36), random), random);
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
    const QVector<lidar::LidarDataPoint_V4> live = spiedFrames(frames);
    for (int i = 0; i < live.size(); ++i) {
        const QString difference = frameDifference(live[i], offline.second[i + 1]);
        QVERIFY2(difference.isEmpty(), qPrintable(QString("frame %1: %2").arg(i + 1).arg(difference)));
    }

    // A whole turn in each frame after the first (which has no early points
    // from a turn before it), by channel, in rising azimuth within 0..360.
    for (int i = 0; i < offline.second.size(); ++i) {
        const lidar::LidarDataPoint_V4& frame = offline.second[i];
        QCOMPARE(frame.points.keys(), ids);
        if (i > 0)
            QCOMPARE(int(frame.pointCount()), pointsPerTurn);
        QCOMPARE(frame.motorSpeed, 599);
        for (const auto& line : frame.points) {
            for (size_t k = 0; k < line.size(); ++k) {
                QVERIFY(line[k].azimuth >= 0.0f && line[k].azimuth <= 360.0f);
                QVERIFY(k == 0 || line[k].azimuth >= line[k - 1].azimuth);
            }
        }
        QCOMPARE(frame.dateTime.isEmpty(), !gpsStamped);
    }
}

QTEST_GUILESS_MAIN(DecoderConformanceTest)
#include "tst_decoder_conformance.moc"
