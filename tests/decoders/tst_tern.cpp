// The Tern decoder: cutting packets out of the stream, its packet layout,
// frames at the azimuth wrap, the offline parse, the reply and commands.
// Tern's live and offline state lasts for the whole process; each test
// states what it assumes of it.

#include "DecoderHarness.h"
#include "PacketBuilders.h"
#include "Tern.h"

#include <QtTest>

using namespace testing;
using lidar::decode::DecodedPacket;

namespace {

QVector<int> distancesOf(const DecodedPacket& packet)
{
    QVector<int> d;
    for (const auto& p : packet.points)
        d.append(p.point.distance);
    return d;
}

// The revolution test compares with the previous azimuth of every Tern
// session in the program; start from "no previous packet".
void forgetPreviousAzimuth()
{
    Tern::previousAzimuth = -1.0f;
}

}  // namespace

class TernTest : public QObject {
    Q_OBJECT
private slots:
    void cuttingAcrossSplits_data();
    void cuttingAcrossSplits();
    void trailerPatternInsideDataDropsThePiece();
    void packetLayout_data();
    void packetLayout();
    void framesEndAtTheWrapAndEarlyPointsOpenTheNext();
    void offlineParsePersistsBetweenCalls();
    void reply_data();
    void reply();
    void commandsAndProgramWideRetries();
};

void TernTest::cuttingAcrossSplits_data()
{
    QTest::addColumn<QByteArray>("stream");
    QTest::addColumn<QList<int>>("cuts");  // piece ends within the stream

    const QByteArray a = ternPacketFilled(0, 4167, 1000);
    const QByteArray b = ternPacketFilled(1500, 4167, 1001);
    const QByteArray c = ternPacketFilled(3000, 4167, 1002);
    const QByteArray all = a + b + c;
    QList<int> bytes;
    for (int i = 1; i < all.size(); ++i)
        bytes << i;
    QTest::newRow("in one go") << all << QList<int>{};
    QTest::newRow("byte by byte") << all << bytes;
    QTest::newRow("inside a header") << all << QList<int>{93};
    QTest::newRow("inside a trailer") << all << QList<int>{91, 183};
    QTest::newRow("short pieces") << all << QList<int>{10, 20, 91, 150, 200};
    const QByteArray junk("\x01\x02\x03\x04\x05", 5);
    QTest::newRow("junk before headers") << junk + a + junk + b + QByteArray(40, '\x11') + c
                                         << QList<int>{3, 60, 101, 240};
}

void TernTest::cuttingAcrossSplits()
{
    QFETCH(QByteArray, stream);
    QFETCH(QList<int>, cuts);

    Tern session;
    session.saving.exchange(1);  // the recording shows each packet as cut
    int from = 0;
    for (int cut : cuts + QList<int>{stream.size()}) {
        feed(session, stream.mid(from, cut - from));
        from = cut;
    }
    const QVector<QByteArray> expected{ternPacketFilled(0, 4167, 1000), ternPacketFilled(1500, 4167, 1001),
                                       ternPacketFilled(3000, 4167, 1002)};
    QCOMPARE(session.savePackets, expected);
    QVERIFY(session.receiveBuffer.isEmpty());
    QCOMPARE(int(session.currentFrame.pointCount() + session.lastFrame.pointCount()), 3 * 41);
}

void TernTest::trailerPatternInsideDataDropsThePiece()
{
    const QByteArray good1 = ternPacketFilled(0, 4167, 1000);
    QVector<uint16_t> words(42, 1000);
    words[10] = 0xFAFB;
    const QByteArray broken = ternPacket(1500, 4167, words);
    const QByteArray good2 = ternPacketFilled(3000, 4167, 1000);

    Tern session;
    session.saving.exchange(1);
    feed(session, good1 + broken + good2);
    // The short piece up to the false trailer is dropped and decoding stops
    // until the next arrival of bytes; the rest of the broken packet is junk.
    QCOMPARE(session.savePackets, QVector<QByteArray>{good1});
    QCOMPARE(session.receiveBuffer, broken.mid(6 + 2 * 10 + 2) + good2);
    feed(session, QByteArray());
    QCOMPARE(session.savePackets, (QVector<QByteArray>{good1, good2}));
    QVERIFY(session.receiveBuffer.isEmpty());
}

void TernTest::packetLayout_data()
{
    QTest::addColumn<uint16_t>("start");
    QTest::addColumn<uint16_t>("period");
    QTest::addColumn<QVector<uint16_t>>("words");
    QTest::addColumn<int>("speed");
    QTest::addColumn<QVector<int>>("distances");
    QTest::addColumn<QVector<int>>("intensities");
    QTest::addColumn<QVector<float>>("azimuths");  // checked when given

    QVector<uint16_t> all(42, 1000);
    all[40] = 777;
    QTest::newRow("40th non-zero: 41st dropped") << uint16_t(0) << uint16_t(4167) << all << 599
                                                 << QVector<int>(41, 1000) << QVector<int>(41, 0) << QVector<float>{};

    QVector<uint16_t> zero40 = all;
    zero40[39] = 0;
    QVector<int> kept(39, 1000);
    kept << 0 << 777 << 1000;
    QTest::newRow("40th zero: 41st kept") << uint16_t(0) << uint16_t(4167) << zero40 << 599 << kept
                                         << QVector<int>(42, 0) << QVector<float>{};

    QVector<uint16_t> none40 = all;
    none40[39] = 0xFFFF;
    QTest::newRow("40th missing still drops the 41st") << uint16_t(0) << uint16_t(4167) << none40 << 599
                                                       << QVector<int>(40, 1000) << QVector<int>(40, 0)
                                                       << QVector<float>{};

    QTest::newRow("flag bit is intensity") << uint16_t(1000) << uint16_t(0) << QVector<uint16_t>{0x8123, 0x0123}
                                           << 0 << QVector<int>{291, 291} << QVector<int>{255, 0}
                                           << QVector<float>{10.0f, 17.5f};
    QTest::newRow("15 degrees over the valid points only")
        << uint16_t(35500) << uint16_t(5000) << QVector<uint16_t>{0xFFFF, 10, 0xFFFF, 20, 30} << 500
        << QVector<int>{10, 20, 30} << QVector<int>{0, 0, 0} << QVector<float>{355.0f, 360.0f, 365.0f};
}

void TernTest::packetLayout()
{
    QFETCH(uint16_t, start);
    QFETCH(uint16_t, period);
    QFETCH(QVector<uint16_t>, words);
    QFETCH(int, speed);
    QFETCH(QVector<int>, distances);
    QFETCH(QVector<int>, intensities);
    QFETCH(QVector<float>, azimuths);

    DecodedPacket packet;
    Tern::DecodePacket(ternPacket(start, period, words), packet);
    QCOMPARE(packet.motorSpeed, speed);
    QCOMPARE(distancesOf(packet), distances);
    for (int i = 0; i < intensities.size(); ++i)
        QCOMPARE(packet.points[size_t(i)].point.intensity, intensities[i]);
    for (int i = 0; i < azimuths.size(); ++i)
        QCOMPARE(float(packet.points[size_t(i)].azimuth), azimuths[i]);
    // x along the sine, y along the cosine, in metres.
    const auto& first = packet.points.front();
    const double angle = first.azimuth * M_PI / 180.0;
    QCOMPARE(first.point.x, float(std::sin(angle) * first.point.distance / 1000.0));
    QCOMPARE(first.point.y, float(std::cos(angle) * first.point.distance / 1000.0));
    QCOMPARE(first.point.timestamp, qint64(-1));
}

void TernTest::framesEndAtTheWrapAndEarlyPointsOpenTheNext()
{
    forgetPreviousAzimuth();
    Tern session;
    session.connected = 1;
    QSignalSpy frames(&session, &LidarAnalysis::SendleLidarDataSignal);

    feed(session, ternPacketFilled(33000, 5000, 1000) + ternPacketFilled(34500, 5000, 1000));
    // 355.00 to about 369.63: the points past 360 wait for the next turn,
    // and nothing ends yet.
    feed(session, ternPacketFilled(35500, 5000, 2000));
    QCOMPARE(frames.count(), 0);
    const auto early = pointsOf(session.lastFrame);
    QVERIFY(!early.empty());
    QCOMPARE(int(early.size() + pointsOf(session.currentFrame).size()), 3 * 41);
    for (const auto& p : early)
        QVERIFY(p.azimuth > 0.0f && p.azimuth < 9.7f && p.distance == 2000);
    QVERIFY(pointsOf(session.currentFrame).back().azimuth <= 360.0f);

    // An azimuth more than 15 degrees below its predecessor ends the turn.
    feed(session, ternPacketFilled(1000, 4167, 3000));
    QCOMPARE(frames.count(), 1);
    const lidar::LidarDataPoint_V4 ended = frames[0][0].value<lidar::LidarDataPoint_V4>();
    QCOMPARE(int(ended.pointCount()), 3 * 41 - int(early.size()));
    QCOMPARE(ended.motorSpeed, 599);  // the speed of the packet during which it ended
    QCOMPARE(session.currentFrame.motorSpeed, -1);
    const auto next = pointsOf(session.currentFrame);
    QCOMPARE(int(next.size()), int(early.size()) + 41);
    QCOMPARE(next.front().azimuth, early.front().azimuth);
    QCOMPARE(next[early.size()].azimuth, 10.0f);
    QVERIFY(session.lastFrame.points.isEmpty());
}

void TernTest::offlineParsePersistsBetweenCalls()
{
    // The only offline Tern parse in this program: its state starts fresh.
    const float livePrevious = Tern::previousAzimuth;
    QVector<QByteArray> packets = ternRevolutions(2, 1000, 500);
    packets.append(ternPacketFilled(500, 4167, 1000));

    // Turn 2 is split over two calls and still completes whole.
    const auto first = Tern::ParseRecordedPackets(packets.mid(0, 30));
    QCOMPARE(first.size(), 1);
    const auto second = Tern::ParseRecordedPackets(packets.mid(30));
    QCOMPARE(second.size(), 1);
    QCOMPARE(int(second[0].pointCount()), 24 * 41);

    // A piece of another length is skipped; one without a trailer ends the
    // parse, so the wrap after it is not seen in this call.
    QByteArray noTrailer = ternPacketFilled(4500, 4167, 1000);
    noTrailer[90] = 0;
    const auto third = Tern::ParseRecordedPackets(
        {ternReply({0x18, 5, 20, 1, 2, 3}, 11), ternPacketFilled(3000, 4167, 1000), noTrailer,
         ternPacketFilled(0, 4167, 1000)});
    QVERIFY(third.isEmpty());
    const auto fourth = Tern::ParseRecordedPackets({ternPacketFilled(0, 4167, 1000)});
    QCOMPARE(fourth.size(), 1);
    // The closing packet of the first calls (with the early points before
    // it) and the packet at 30 degrees.
    const int early = 24 * 41 - int(first[0].pointCount());
    QCOMPARE(int(fourth[0].pointCount()), early + 41 + 41);

    QCOMPARE(Tern::previousAzimuth, livePrevious);  // live and offline are apart
}

void TernTest::reply_data()
{
    QTest::addColumn<QByteArray>("reply");
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("mode");

    QTest::newRow("normal filtering") << ternReply({0x18, 5, 20, 1, 2, 3}, 11) << "2024.5.20-V1.2.3" << 0;
    QTest::newRow("no filtering") << ternReply({0x18, 12, 1, 0, 0, 9}, 10) << "2024.12.1-V0.0.9" << 1;
    QTest::newRow("within three meters") << ternReply({0x19, 1, 31, 2, 0, 0}, 12) << "2025.1.31-V2.0.0" << 2;
    QTest::newRow("unknown code") << ternReply({0x18, 5, 20, 1, 2, 3}, 99) << "2024.5.20-V1.2.3" << 1;
    QTest::newRow("signed bytes") << ternReply({0x80, 0xFF, 5, 0x90, 0, 1}, 11) << "1872.-1.5-V-112.0.1" << 0;
    QByteArray bare = ternReply({0x18, 5, 20, 1, 2, 3}, 11);
    bare[184] = bare[185] = 0;
    QTest::newRow("no trailer: 186 bytes taken") << bare << "2024.5.20-V1.2.3" << 0;
}

void TernTest::reply()
{
    QFETCH(QByteArray, reply);
    QFETCH(QString, text);
    QFETCH(int, mode);

    Tern session;
    session.param.frequency = 0;
    QSignalSpy commands(&session, &LidarAnalysis::SendDataToLidarSignal);
    feed(session, reply.left(100));
    QCOMPARE(session.replyReceived, uint8_t(0));
    feed(session, reply.mid(100));
    QCOMPARE(session.replyReceived, uint8_t(1));
    QCOMPARE(session.param.text, text);
    QCOMPARE(session.param.value1, mode);
    QVERIFY(session.receiveBuffer.isEmpty());
    // Each reply tells the lidar the frequency again, twice.
    const QByteArray frequency = commandBytes(0x55, 0x01, 0);
    QCOMPARE(spiedCommands(commands), (QList<QByteArray>{frequency, frequency}));
}

void TernTest::commandsAndProgramWideRetries()
{
    // The only filter commands of this program: the counter starts at 0.
    Tern session;
    QSignalSpy sent(&session, &LidarAnalysis::SendDataToLidarSignal);
    QCOMPARE(session.ReadParamCommand(), commandBytes(0x01, 0x03, 1));

    session.SetMotorFrequency(0);
    QCOMPARE(session.param.frequency, uint8_t(0));
    const QByteArray stop = commandBytes(0x55, 0x01, 0);
    QCOMPARE(spiedCommands(sent), (QList<QByteArray>{stop, stop}));
    QCOMPARE(session.ReadParamCommand(), commandBytes(0x01, 0x03, 0));

    // Unanswered, the first call tries three times; every later call once.
    sent.clear();
    session.SetLidarFilter(2);
    const QByteArray threeMeters = commandBytes(0x55, 0x06, 0, {{181, 12}});
    QCOMPARE(spiedCommands(sent), (QList<QByteArray>{threeMeters, threeMeters, threeMeters, stop, stop}));
    sent.clear();
    session.SetLidarFilter(7);  // unknown mode: code 0, still sent
    QCOMPARE(spiedCommands(sent), (QList<QByteArray>{commandBytes(0x55, 0x06, 0), stop, stop}));

    Tern other;  // the counter is shared by every Tern
    QSignalSpy otherSent(&other, &LidarAnalysis::SendDataToLidarSignal);
    other.SetLidarFilter(0);
    const QByteArray run = commandBytes(0x55, 0x01, 1);
    QCOMPARE(spiedCommands(otherSent), (QList<QByteArray>{commandBytes(0x55, 0x06, 1, {{181, 11}}), run, run}));
}

QTEST_GUILESS_MAIN(TernTest)
#include "tst_tern.moc"
