// The GPS-stamped Tern models (Tern_P, Tern_GPS, Tern_Plus): what differs
// from Tern. Distance word encodings, the 41st-word rule where it applies,
// point time stamps and GPS time records, length-field and reply rules, the
// Tern_P offline version element, and each model's commands.

#include "DecoderHarness.h"
#include "PacketBuilders.h"
#include "Tern_GPS.h"
#include "Tern_P.h"
#include "Tern_Plus.h"

#include <QtTest>

using namespace testing;
using lidar::decode::DecodedPacket;

namespace {

// A data packet of `model` at `start` (1/100 degree) carrying `words`.
QByteArray dataPacket(const QString& model, uint16_t start, const QVector<uint16_t>& words,
                      const GpsStamp& stamp = GpsStamp())
{
    if (model == QLatin1String("Tern_GPS"))
        return ternGpsPacket(start, 4167, words, stamp);
    return ternLengthPacket(start, 4167, words, stamp);
}

// The model's own pure decoding of one packet (`version` for Tern_P only).
DecodedPacket decode(const QString& model, const QByteArray& packet, uint32_t version = 0)
{
    DecodedPacket out;
    if (model == QLatin1String("Tern_GPS"))
        Tern_GPS::DecodePacket(packet, out);
    else if (model == QLatin1String("Tern_P"))
        Tern_P::DecodePacket(packet, version, out);
    else
        Tern_Plus::DecodePacket(packet, out);
    return out;
}

QVector<int> distancesOf(const std::vector<lidar::LidarPoint>& points)
{
    QVector<int> d;
    for (const auto& p : points)
        d.append(p.distance);
    return d;
}

// Checks the first call of an unanswered filter command tries three times and
// a later one once, each followed by the frequency sent twice.
void checkFilterRetries(LidarAnalysis& session)
{
    QSignalSpy sent(&session, &LidarAnalysis::SendDataToLidarSignal);
    const QByteArray run = commandBytes(0x55, 0x01, 1);
    const QByteArray normal = commandBytes(0x01, 0x06, 1, {{181, 11}});
    session.SetLidarFilter(0);
    QCOMPARE(spiedCommands(sent), (QList<QByteArray>{normal, normal, normal, run, run}));
    sent.clear();
    session.SetLidarFilter(1);
    QCOMPARE(spiedCommands(sent), (QList<QByteArray>{commandBytes(0x01, 0x06, 1, {{181, 10}}), run, run}));
}

// Read-parameters and motor commands, the same for the three models.
void checkReadAndMotorCommands(LidarAnalysis& session)
{
    QSignalSpy sent(&session, &LidarAnalysis::SendDataToLidarSignal);
    QCOMPARE(session.ReadParamCommand(), commandBytes(0x55, 0x03, 1));
    session.SetMotorFrequency(0);
    const QByteArray stop = commandBytes(0x55, 0x01, 0);
    QCOMPARE(spiedCommands(sent), (QList<QByteArray>{stop, stop}));
    QCOMPARE(session.ReadParamCommand(), commandBytes(0x55, 0x03, 0));
    session.SetMotorFrequency(1);
}

}  // namespace

class TernGpsModelsTest : public QObject {
    Q_OBJECT
private slots:
    void wordEncodings_data();
    void wordEncodings();
    void wordCount_data();
    void wordCount();
    void ternPReadsTheSessionsVersionLive();
    void timeStampsRiseThroughThePacket_data();
    void timeStampsRiseThroughThePacket();
    void replies_data();
    void replies();
    void aPieceOfWrongLengthWaitsForMoreBytes_data();
    void aPieceOfWrongLengthWaitsForMoreBytes();
    void ternPOfflineReadsTheVersionElement();
    void ternPCommands();
    void ternGpsCommands();
    void ternPlusCommands();
};

void TernGpsModelsTest::wordEncodings_data()
{
    QTest::addColumn<QString>("model");
    QTest::addColumn<uint>("version");
    QTest::addColumn<uint16_t>("word");
    QTest::addColumn<bool>("isPoint");
    QTest::addColumn<int>("distance");
    QTest::addColumn<int>("intensity");

    QTest::newRow("Tern_P 214: flag is intensity") << "Tern_P" << 214u << uint16_t(0x8123) << true << 291 << 255;
    QTest::newRow("Tern_P 214: FFFF is none") << "Tern_P" << 214u << uint16_t(0xFFFF) << false << 0 << 0;
    QTest::newRow("Tern_P 215: whole word") << "Tern_P" << 215u << uint16_t(0x8123) << true << 33059 << 0;
    QTest::newRow("Tern_P 215: FFFF is a distance") << "Tern_P" << 215u << uint16_t(0xFFFF) << true << 65535 << 0;
    QTest::newRow("Tern_GPS: flag ignored") << "Tern_GPS" << 0u << uint16_t(0x8123) << true << 291 << 0;
    QTest::newRow("Tern_GPS: FFFF is none") << "Tern_GPS" << 0u << uint16_t(0xFFFF) << false << 0 << 0;
    QTest::newRow("Tern_Plus: unmasked and flagged") << "Tern_Plus" << 0u << uint16_t(0x8123) << true << 33059 << 255;
    QTest::newRow("Tern_Plus: FFFF kept") << "Tern_Plus" << 0u << uint16_t(0xFFFF) << true << 65535 << 255;
    QTest::newRow("Tern_Plus: no flag") << "Tern_Plus" << 0u << uint16_t(0x0123) << true << 291 << 0;
}

void TernGpsModelsTest::wordEncodings()
{
    QFETCH(QString, model);
    QFETCH(uint, version);
    QFETCH(uint16_t, word);
    QFETCH(bool, isPoint);
    QFETCH(int, distance);
    QFETCH(int, intensity);

    const DecodedPacket packet = decode(model, dataPacket(model, 1000, {word, 500}), version);
    QCOMPARE(int(packet.points.size()), isPoint ? 2 : 1);
    QCOMPARE(packet.points.back().point.distance, 500);
    if (isPoint) {
        QCOMPARE(packet.points.front().point.distance, distance);
        QCOMPARE(packet.points.front().point.intensity, intensity);
    }
    QCOMPARE(packet.motorSpeed, 599);
}

void TernGpsModelsTest::wordCount_data()
{
    QTest::addColumn<QString>("model");
    QTest::addColumn<QByteArray>("packet");
    QTest::addColumn<int>("points");

    QVector<uint16_t> words(42, 1000);  // the 40th word is not zero
    QTest::newRow("Tern_GPS drops the 41st") << "Tern_GPS" << dataPacket("Tern_GPS", 0, words) << 41;
    QTest::newRow("Tern_P keeps all 42") << "Tern_P" << dataPacket("Tern_P", 0, words) << 42;
    QTest::newRow("Tern_Plus keeps all 42") << "Tern_Plus" << dataPacket("Tern_Plus", 0, words) << 42;
    QTest::newRow("Tern_P long packet") << "Tern_P" << dataPacket("Tern_P", 0, QVector<uint16_t>(300, 900)) << 300;
    // An odd byte count still makes a last word, ending in the year byte.
    QByteArray odd = dataPacket("Tern_Plus", 0, {1000, 1000, 1000});
    odd.remove(13, 1);
    putBe16(odd, 2, uint16_t(odd.size()));
    QTest::newRow("odd length rounds up") << "Tern_Plus" << odd << 3;
}

void TernGpsModelsTest::wordCount()
{
    QFETCH(QString, model);
    QFETCH(QByteArray, packet);
    QFETCH(int, points);

    const DecodedPacket decoded = decode(model, packet, 215);
    QCOMPARE(int(decoded.points.size()), points);
    // The 15 degrees are spread over the points the packet makes.
    const float step = float(15.0 / points);
    QCOMPARE(float(decoded.points.back().azimuth), float(points - 1) * step);
}

void TernGpsModelsTest::ternPReadsTheSessionsVersionLive()
{
    Tern_P session;
    QVector<uint16_t> words(42, 1000);
    words[0] = 0x8123;
    const QByteArray packet = dataPacket("Tern_P", 2000, words);
    session.versionNumber = 214;
    feed(session, packet);
    session.versionNumber = 215;
    feed(session, packet);
    const auto points = pointsOf(session.currentFrame);
    QCOMPARE(int(points.size()), 2 * 42);
    QCOMPARE(points[0].distance, 291);
    QCOMPARE(points[42].distance, 33059);
}

void TernGpsModelsTest::timeStampsRiseThroughThePacket_data()
{
    QTest::addColumn<QString>("model");
    QTest::addColumn<int>("words");  // 41 points each
    QTest::newRow("Tern_GPS") << "Tern_GPS" << 42;
    QTest::newRow("Tern_P") << "Tern_P" << 41;
    QTest::newRow("Tern_Plus") << "Tern_Plus" << 41;
}

void TernGpsModelsTest::timeStampsRiseThroughThePacket()
{
    QFETCH(QString, model);
    QFETCH(int, words);

    std::unique_ptr<LidarAnalysis> session = makeSession(model);
    session->versionNumber = 215;
    QSignalSpy times(session.get(), &LidarAnalysis::SendGPSTimeData);
    GpsStamp first;
    first.microsecond = 500;
    const GpsStamp second = first.later(10000);  // 10 ms later
    feed(*session, dataPacket(model, 10000, QVector<uint16_t>(words, 1000), first) +
                       dataPacket(model, 11500, QVector<uint16_t>(words, 1000), second));

    const QVector<lidar::GPSTime> records = spiedTimes(times);
    QCOMPARE(records.size(), 2);
    const lidar::GPSTime& t = records[1];
    QCOMPARE(QVector<int>({t.year, t.month, t.day, t.hour, t.minute, t.second, t.millisecond, t.microsecond}),
             QVector<int>({2024, 5, 20, 12, 0, 0, 10, 500}));
    QCOMPARE(t.currentNs, second.packetTimeNs());
    QCOMPARE(t.previousNs, records[0].currentNs);
    QCOMPARE(records[0].currentNs, first.packetTimeNs());
    QCOMPARE(session->currentFrame.dateTime, QString("2024-5-20 12:0:0:10"));

    // The second packet's 41 points end at its own time (ms) and step by
    // 10 ms / 41 in whole nanoseconds.
    const auto points = pointsOf(session->currentFrame);
    QVERIFY(points.size() >= 41);
    const quint64 now = second.packetTimeNs();
    const quint64 dt = (now - first.packetTimeNs()) / 41u;
    for (int i = 0; i < 41; ++i) {
        const auto& p = points[points.size() - 41 + size_t(i)];
        QCOMPARE(p.timestamp, qint64((now - quint64(40 - i) * dt) / 1000000u));
    }
}

void TernGpsModelsTest::replies_data()
{
    QTest::addColumn<QString>("model");
    QTest::addColumn<QByteArray>("reply");
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("mode");
    QTest::addColumn<int>("value2");
    QTest::addColumn<uint>("version");  // versionNumber afterwards

    QTest::newRow("Tern_GPS") << "Tern_GPS" << ternLongReply(175, {0x18, 5, 20, 1, 2, 3}, 12) << "2024.5.20-V1.2.3"
                              << 2 << 0 << 0u;
    QByteArray bare = ternLongReply(175, {0x18, 5, 20, 1, 2, 3}, 10);
    bare[186] = bare[187] = 0;
    QTest::newRow("Tern_GPS without trailer") << "Tern_GPS" << bare << "2024.5.20-V1.2.3" << 1 << 0 << 0u;
    QTest::newRow("Tern_P") << "Tern_P" << ternLongReply(173, {0x18, 5, 20, 2, 1, 5}, 11) << "2024.5.20-V2.1.5"
                            << 0 << 0 << 215u;
    QTest::newRow("Tern_P signed") << "Tern_P" << ternLongReply(173, {0x18, 0x81, 1, 1, 4, 0xFF}, 11)
                                   << "2024.-127.1-V1.4.-1" << 0 << 0 << 139u;
    QByteArray plus = ternLongReply(173, {0x18, 5, 20, 3, 0, 1}, 12);
    putBe16(plus, 141, 0x0258);
    QTest::newRow("Tern_Plus") << "Tern_Plus" << plus << "2024.5.20-V3.0.1" << 2 << 10 << 0u;
}

void TernGpsModelsTest::replies()
{
    QFETCH(QString, model);
    QFETCH(QByteArray, reply);
    QFETCH(QString, text);
    QFETCH(int, mode);
    QFETCH(int, value2);
    QFETCH(uint, version);

    std::unique_ptr<LidarAnalysis> session = makeSession(model);
    QSignalSpy sent(session.get(), &LidarAnalysis::SendDataToLidarSignal);
    feed(*session, reply.left(120));
    QCOMPARE(session->replyReceived, uint8_t(0));
    feed(*session, reply.mid(120));
    QCOMPARE(session->replyReceived, uint8_t(1));
    QCOMPARE(session->param.text, text);
    QCOMPARE(session->param.value1, mode);
    QCOMPARE(session->param.value2, value2);
    QCOMPARE(session->versionNumber, version);
    QVERIFY(session->receiveBuffer.isEmpty());
    const QByteArray run = commandBytes(0x55, 0x01, 1);
    QCOMPARE(spiedCommands(sent), (QList<QByteArray>{run, run}));
}

void TernGpsModelsTest::aPieceOfWrongLengthWaitsForMoreBytes_data()
{
    QTest::addColumn<QString>("model");
    QTest::addColumn<QByteArray>("bad");

    QByteArray lying = dataPacket("Tern_P", 0, QVector<uint16_t>(42, 1000));
    putBe16(lying, 2, 90);
    QTest::newRow("Tern_P length field disagrees") << "Tern_P" << lying;
    QTest::newRow("Tern_Plus length field disagrees") << "Tern_Plus" << lying;
    QTest::newRow("Tern_GPS 92 bytes") << "Tern_GPS" << ternPacketFilled(0, 4167, 1000);
}

void TernGpsModelsTest::aPieceOfWrongLengthWaitsForMoreBytes()
{
    QFETCH(QString, model);
    QFETCH(QByteArray, bad);

    std::unique_ptr<LidarAnalysis> session = makeSession(model);
    session->saving.exchange(1);
    const QByteArray good = dataPacket(model, 3000, QVector<uint16_t>(42, 1000));
    feed(*session, bad + good);
    QVERIFY(session->savePackets.isEmpty());
    QCOMPARE(session->receiveBuffer, good);
    feed(*session, QByteArray());
    QCOMPARE(session->savePackets, QVector<QByteArray>{good});
}

void TernGpsModelsTest::ternPOfflineReadsTheVersionElement()
{
    // The only offline Tern_P parse in this program: its state starts fresh.
    const QByteArray flagged = dataPacket("Tern_P", 10000, {0x8123});
    const QByteArray wrap = dataPacket("Tern_P", 0, {0x8123});

    const auto first = Tern_P::ParseRecordedPackets({"215", flagged, dataPacket("Tern_P", 20000, {0x8123}), wrap});
    QCOMPARE(first.size(), 1);
    QCOMPARE(distancesOf(pointsOf(first[0])), (QVector<int>{33059, 33059}));

    // The version is read per call; the unfinished turn carries over.
    const auto second = Tern_P::ParseRecordedPackets({"214", flagged, wrap});
    QCOMPARE(second.size(), 1);
    QCOMPARE(distancesOf(pointsOf(second[0])), (QVector<int>{33059, 291}));
    QCOMPARE(pointsOf(second[0])[1].intensity, 255);

    QVERIFY(Tern_P::ParseRecordedPackets({}).isEmpty());
}

void TernGpsModelsTest::ternPCommands()
{
    Tern_P session;
    checkReadAndMotorCommands(session);
    checkFilterRetries(session);
}

void TernGpsModelsTest::ternGpsCommands()
{
    Tern_GPS session;
    checkReadAndMotorCommands(session);
    checkFilterRetries(session);
}

void TernGpsModelsTest::ternPlusCommands()
{
    Tern_Plus session;
    checkReadAndMotorCommands(session);
    checkFilterRetries(session);

    // The motor speed setting: value * 60 at 141..142, sign-extended, sent
    // once, then the frequency twice.
    QSignalSpy sent(&session, &LidarAnalysis::SendDataToLidarSignal);
    const QByteArray run = commandBytes(0x55, 0x01, 1);
    session.SetDeviceParam(10);
    session.SetDeviceParam(quint8(-1));
    QCOMPARE(spiedCommands(sent), (QList<QByteArray>{commandBytes(0x55, 0x0A, 0, {{141, 0x02}, {142, 0x58}}), run,
                                                      run, commandBytes(0x55, 0x0A, 0, {{141, 0xFF}, {142, 0xC4}}),
                                                      run, run}));
}

QTEST_GUILESS_MAIN(TernGpsModelsTest)
#include "tst_tern_gps_models.moc"
