// The Wren decoders (Wren_Plus, Wren_Kite): packet layouts and azimuth
// spreading, checksum and type tests, replies and resynchronisation, the
// Wren_Kite offline revolution test on whole degrees, and the commands with
// their program-wide retry counters.

#include "DecoderHarness.h"
#include "PacketBuilders.h"
#include "Wren_Kite.h"
#include "Wren_Plus.h"

#include <QtTest>

using namespace testing;
using lidar::decode::DecodedPacket;

namespace {

// A packet of `model` from `start` to `end` (1/100 degree), every distance
// `distance`.
QByteArray wrenPacket(const QString& model, uint16_t start, uint16_t end, uint16_t distance = 1000)
{
    if (model == QLatin1String("Wren_Plus"))
        return wrenPlusPacket(4167, start, end, QVector<WrenPlusGroup>(16, {distance, 10, distance, 20}));
    return wrenKitePacket(4167, start, end, QVector<WrenKiteGroup>(16, {distance, 10}));
}

}  // namespace

class WrenTest : public QObject {
    Q_OBJECT
private slots:
    void plusLayoutAndTheWrapInsideAPacket();
    void plusSkipsEmptyPointsButTheirAzimuthStillEndsATurn();
    void kiteLayoutKeepsEmptyPoints();
    void checksumAndType_data();
    void checksumAndType();
    void repliesAndResynchronisation_data();
    void repliesAndResynchronisation();
    void kiteOfflineComparesWholeDegrees();
    void wrenPlusCommands();
    void wrenKiteCommands();
};

void WrenTest::plusLayoutAndTheWrapInsideAPacket()
{
    QVector<WrenPlusGroup> groups(16);
    for (int k = 0; k < 16; ++k)
        groups[k] = {uint16_t(1000 + k), uint8_t(k), uint16_t(k == 3 ? 0 : 2000 + k), uint8_t(100 + k)};
    const QByteArray packet = wrenPlusPacket(0, 35990, 1000, groups, 1234);

    DecodedPacket decoded;
    Wren_Plus::DecodePacket(packet, decoded);
    QCOMPARE(decoded.motorSpeed, 0);  // period 0
    QCOMPARE(decoded.ambient, 1234);
    QCOMPARE(int(decoded.points.size()), 32);
    const float step = (10.0f + 360.0f - 359.9f) / 15.0f;
    for (int k = 0; k < 16; ++k) {
        const auto& channel0 = decoded.points[size_t(2 * k)];
        const auto& channel1 = decoded.points[size_t(2 * k + 1)];
        QCOMPARE(float(channel0.azimuth), 359.9f + float(k) * step);
        QCOMPARE(channel1.azimuth, channel0.azimuth);
        QCOMPARE(channel0.id, 0);
        QCOMPARE(channel1.id, 1);
        QCOMPARE(channel0.point.distance, 1000 + k);
        QCOMPARE(channel1.point.intensity, 100 + k);
        QCOMPARE(channel1.keep, k != 3);
    }

    // Live: groups above 360 go to the next turn with 360 taken off.
    Wren_Plus::previousAzimuth = -1.0f;
    Wren_Plus session;
    feed(session, packet);
    QCOMPARE(session.currentFrame.ambient, 1234);
    QCOMPARE(int(pointsOf(session.currentFrame, 0).size() + pointsOf(session.lastFrame, 0).size()), 16);
    QCOMPARE(int(pointsOf(session.currentFrame, 1).size() + pointsOf(session.lastFrame, 1).size()), 15);
    QCOMPARE(pointsOf(session.currentFrame, 0).front().azimuth, 359.9f);
    for (const auto& line : session.lastFrame.points)
        for (const auto& p : line)
            QVERIFY(p.azimuth > 0.0f && p.azimuth <= 10.0f + 1e-3f);
    QCOMPARE(pointsOf(session.lastFrame, 0).back().azimuth, 359.9f + 15.0f * step - 360.0f);
}

void WrenTest::plusSkipsEmptyPointsButTheirAzimuthStillEndsATurn()
{
    Wren_Plus::previousAzimuth = -1.0f;
    Wren_Plus session;
    session.connected = 1;
    QSignalSpy frames(&session, &LidarAnalysis::SendleLidarDataSignal);
    feed(session, wrenPacket("Wren_Plus", 34000, 35400));
    feed(session, wrenPacket("Wren_Plus", 0, 1400, 0));  // nothing measured
    QCOMPARE(frames.count(), 1);
    QCOMPARE(int(frames[0][0].value<lidar::LidarDataPoint_V4>().pointCount()), 32);
    QVERIFY(session.currentFrame.points.isEmpty());
    QCOMPARE(session.currentFrame.motorSpeed, -1);
}

void WrenTest::kiteLayoutKeepsEmptyPoints()
{
    QVector<WrenKiteGroup> groups(16, {1000, 7});
    groups[4] = {0, 0};
    Wren_Kite::previousAzimuth = -1.0;
    Wren_Kite session;
    feed(session, wrenKitePacket(5000, 100, 1600, groups));
    QCOMPARE(session.currentFrame.motorSpeed, 500);
    QCOMPARE(session.currentFrame.ambient, -1);  // not set by this model
    const auto points = pointsOf(session.currentFrame);
    QCOMPARE(int(points.size()), 16);
    for (int k = 0; k < 16; ++k)
        QCOMPARE(points[size_t(k)].azimuth, float(1 + k));
    QCOMPARE(points[4].distance, 0);
    QCOMPARE(points[4].x, 0.0f);
    QCOMPARE(points[4].y, 0.0f);
    // x along the sine, y along the cosine: 1000 mm at 5 degrees.
    QCOMPARE(points[5].x, float(std::sin(6 * M_PI / 180) * 1000 / 1000.0));
    QCOMPARE(points[5].y, float(std::cos(6 * M_PI / 180) * 1000 / 1000.0));
}

void WrenTest::checksumAndType_data()
{
    QTest::addColumn<QString>("model");
    QTest::addColumn<QByteArray>("packet");
    QTest::addColumn<bool>("isData");

    for (const QString model : {QStringLiteral("Wren_Plus"), QStringLiteral("Wren_Kite")}) {
        const QByteArray good = wrenPacket(model, 1000, 2400);
        QByteArray badSum = good;
        badSum[badSum.size() - 1] = char(badSum[badSum.size() - 1] + 1);
        QByteArray otherType = good;
        otherType[2] = model == QLatin1String("Wren_Plus") ? 0x3A : 0x6C;
        sealChecksum(otherType);
        QTest::newRow(qPrintable(model + " valid")) << model << good << true;
        QTest::newRow(qPrintable(model + " wrong checksum")) << model << badSum << false;
        QTest::newRow(qPrintable(model + " other model's type")) << model << otherType << false;
    }
}

void WrenTest::checksumAndType()
{
    QFETCH(QString, model);
    QFETCH(QByteArray, packet);
    QFETCH(bool, isData);

    std::unique_ptr<LidarAnalysis> session = makeSession(model);
    session->saving.exchange(1);
    const QByteArray junk("\x10\x20\x30", 3);
    feed(*session, junk + packet);
    if (isData) {
        QCOMPARE(session->savePackets, QVector<QByteArray>{packet});
        QVERIFY(session->receiveBuffer.isEmpty());
    } else {
        // Not followed by 188 bytes: kept until more arrive.
        QVERIFY(session->savePackets.isEmpty());
        QCOMPARE(session->receiveBuffer, junk + packet);
    }
}

void WrenTest::repliesAndResynchronisation_data()
{
    QTest::addColumn<QString>("model");
    QTest::addColumn<QByteArray>("stream");
    QTest::addColumn<int>("packets");   // data packets decoded
    QTest::addColumn<QString>("text");  // empty: no reply
    QTest::addColumn<QByteArray>("left");

    for (const QString model : {QStringLiteral("Wren_Plus"), QStringLiteral("Wren_Kite")}) {
        const QByteArray packet = wrenPacket(model, 1000, 2400);
        const QByteArray reply = wrenReply(7, {0x18, 5, 20, 200, 0, 1}, 1);
        QByteArray badSum = packet;
        badSum[badSum.size() - 1] = char(badSum[badSum.size() - 1] + 1);
        const QByteArray fill(200, '\x01');
        QTest::newRow(qPrintable(model + " reply")) << model << reply << 0 << "2024.5.20-V200.0.1" << QByteArray();
        QTest::newRow(qPrintable(model + " reply after a packet, bytes after it lost"))
            << model << QByteArray("\x33") + packet + reply + packet << 1 << "2024.5.20-V200.0.1" << QByteArray();
        QTest::newRow(qPrintable(model + " bad packet, short")) << model << badSum + fill.left(20) << 0 << QString()
                                                                << badSum + fill.left(20);
        QTest::newRow(qPrintable(model + " bad packet, then 188 bytes without trailer"))
            << model << packet + badSum + fill + packet << 1 << QString() << QByteArray();
    }
}

void WrenTest::repliesAndResynchronisation()
{
    QFETCH(QString, model);
    QFETCH(QByteArray, stream);
    QFETCH(int, packets);
    QFETCH(QString, text);
    QFETCH(QByteArray, left);

    std::unique_ptr<LidarAnalysis> session = makeSession(model);
    session->saving.exchange(1);
    QSignalSpy sent(session.get(), &LidarAnalysis::SendDataToLidarSignal);
    feed(*session, stream);
    QCOMPARE(session->savePackets.size(), packets);
    QCOMPARE(session->receiveBuffer, left);
    QCOMPARE(session->replyReceived, uint8_t(!text.isEmpty()));
    if (text.isEmpty())
        return;
    QCOMPARE(session->param.text, text);
    QCOMPARE(session->param.value1, 0);  // state 1: normal filtering
    QCOMPARE(session->param.value2, 7);
    const QByteArray run = commandBytes(0x55, 1, 1);
    QCOMPARE(spiedCommands(sent), (QList<QByteArray>{run, run}));

    QByteArray other = wrenReply(0, {0x18, 5, 20, 1, 2, 3}, 0);
    feed(*session, other);
    QCOMPARE(session->param.value1, 1);
}

void WrenTest::kiteOfflineComparesWholeDegrees()
{
    // A: 344.7 .. 359.7, B: 344.5 .. 359.5 (one degree a group). Live,
    // 359.7 - 344.5 = 15.2 ends a turn; offline the previous azimuth is
    // remembered as 359 and 359 - 344.5 = 14.5 does not.
    const QByteArray opening = wrenPacket("Wren_Kite", 0, 1400);
    const QByteArray a = wrenPacket("Wren_Kite", 34470, 35970);
    const QByteArray b = wrenPacket("Wren_Kite", 34450, 35950);
    const QByteArray wrap = wrenPacket("Wren_Kite", 0, 1400);

    Wren_Kite session;
    session.connected = 1;
    feed(session, opening);
    QSignalSpy frames(&session, &LidarAnalysis::SendleLidarDataSignal);
    feed(session, a + b + wrap);
    QCOMPARE(frames.count(), 2);
    QCOMPARE(int(frames[0][0].value<lidar::LidarDataPoint_V4>().pointCount()), 32);
    QCOMPARE(int(frames[1][0].value<lidar::LidarDataPoint_V4>().pointCount()), 16);

    Wren_Kite::ParseRecordedPackets({opening});
    const auto offline = Wren_Kite::ParseRecordedPackets({a, b, wrap});
    QCOMPARE(offline.size(), 1);
    QCOMPARE(int(offline[0].pointCount()), 48);

    // Elements too short to hold a packet are passed over.
    QVERIFY(Wren_Kite::ParseRecordedPackets({QByteArray("short")}).isEmpty());
}

namespace {

// Checks a Wren session's commands byte for byte, and that each retried
// command tries three times in its first call and once in a later one.
void checkWrenCommands(LidarAnalysis& session)
{
    QSignalSpy sent(&session, &LidarAnalysis::SendDataToLidarSignal);
    QCOMPARE(session.ReadParamCommand(), commandBytes(0x55, 3, 1));
    session.SetMotorFrequency(0);
    const QByteArray stop = commandBytes(0x55, 1, 0);
    QCOMPARE(spiedCommands(sent), (QList<QByteArray>{stop, stop}));
    QCOMPARE(session.ReadParamCommand(), commandBytes(0x55, 3, 0));

    sent.clear();
    session.SetDeviceParam(0x2A);
    const QByteArray device = commandBytes(0x55, 10, 0, {{172, 0x2A}});
    QCOMPARE(spiedCommands(sent), (QList<QByteArray>{device, device, device, stop, stop}));
    sent.clear();
    session.SetDeviceParam(0x2A);
    QCOMPARE(spiedCommands(sent), (QList<QByteArray>{device, stop, stop}));
}

}  // namespace

void WrenTest::wrenPlusCommands()
{
    Wren_Plus session;
    checkWrenCommands(session);

    // The filter counter is separate from the device-parameter one.
    QSignalSpy sent(&session, &LidarAnalysis::SendDataToLidarSignal);
    const QByteArray stop = commandBytes(0x55, 1, 0);
    const QByteArray noFiltering = commandBytes(0x01, 6, 0);
    session.SetLidarFilter(1);
    QCOMPARE(spiedCommands(sent), (QList<QByteArray>{noFiltering, noFiltering, noFiltering, stop, stop}));
    sent.clear();
    session.SetLidarFilter(0);
    QCOMPARE(spiedCommands(sent), (QList<QByteArray>{commandBytes(0x01, 6, 0, {{181, 1}}), stop, stop}));
}

void WrenTest::wrenKiteCommands()
{
    Wren_Kite session;
    checkWrenCommands(session);

    // A reply that arrives during a try ends the tries; the tries it saved
    // remain for later calls.
    QSignalSpy sent(&session, &LidarAnalysis::SendDataToLidarSignal);
    const QByteArray stop = commandBytes(0x55, 1, 0);
    const QByteArray normal = commandBytes(0x01, 6, 0, {{181, 1}});
    auto answer = connect(&session, &LidarAnalysis::SendDataToLidarSignal, &session,
                          [&session] { session.replyReceived = 1; });
    session.SetLidarFilter(0);
    disconnect(answer);
    QCOMPARE(spiedCommands(sent), (QList<QByteArray>{normal, stop, stop}));
    sent.clear();
    session.SetLidarFilter(2);  // any mode but 0 leaves byte 181 at 0
    const QByteArray other = commandBytes(0x01, 6, 0);
    QCOMPARE(spiedCommands(sent), (QList<QByteArray>{other, other, stop, stop}));
    sent.clear();
    session.SetLidarFilter(0);
    QCOMPARE(spiedCommands(sent), (QList<QByteArray>{normal, stop, stop}));
}

QTEST_GUILESS_MAIN(WrenTest)
#include "tst_wren.moc"
