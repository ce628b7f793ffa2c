// What differs between the model decoders: cutting Tern packets out of the
// stream, distance word encodings, frames at the wrap, the offline parse,
// GPS times, replies, Wren resynchronisation and the commands with their
// program-wide retry counters. Each model keeps its live state, offline
// state and retry counters for the whole process; each test says what it
// assumes of them.

#include "DecoderHarness.h"
#include "PacketBuilders.h"
#include "RecordFile.h"
#include "Tern.h"
#include "Wren_Kite.h"

#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QtTest>

using namespace testing;
using Bytes = QList<QByteArray>;
using Points = QVector<QPoint>;
using Words = QVector<uint16_t>;

namespace {

QByteArray dataPacket(const QString& model, uint16_t start, const QVector<uint16_t>& words,
                      const GpsStamp& stamp = GpsStamp())
{
    if (model == QLatin1String("Tern"))
        return ternPacket(start, 4167, words);
    if (model == QLatin1String("Tern_GPS"))
        return ternGpsPacket(start, 4167, words, stamp);
    return ternLengthPacket(start, 4167, words, stamp);
}

QByteArray wrenPacket(const QString& model, uint16_t start, uint16_t end)
{
    if (model == QLatin1String("Wren_Plus"))
        return wrenPlusPacket(4167, start, end, QVector<WrenPlusGroup>(16, {1000, 10, 1000, 20}));
    return wrenKitePacket(4167, start, end, QVector<WrenKiteGroup>(16, {1000, 10}));
}

// The packets a session's recording holds (after its header elements),
// recording to a file in `dir` while `feedAll` runs.
template <typename Feed>
QVector<QByteArray> recordedWhile(LidarAnalysis& session, const QTemporaryDir& dir, Feed&& feedAll)
{
    const QString file = dir.filePath(QStringLiteral("recorded.txt"));
    if (!session.StartSaveData(file))
        return {QByteArray("cannot record")};
    feedAll();
    session.EndSaveData();
    const QVector<QByteArray> elements = lidar::readRecordFile(file);
    return elements.mid(1 + lidar::recordPrefixElements(QString::fromLatin1(session.metaObject()->className())));
}

const lidar::ModelDescriptor& described(const QString& model)
{
    return *LIdarFactory::GetInstance()->FindModel(model);
}

}  // namespace

class ModelDecodersTest : public QObject {
    Q_OBJECT
private slots:
    void streams_data();
    void streams();
    void hostileStreamsStayBounded_data();
    void hostileStreamsStayBounded();
    void distanceWords_data();
    void distanceWords();
    void ternFramesEndAtTheWrapAndEarlyPointsOpenTheNext();
    void ternOfflineParsePersistsBetweenCalls();
    void gpsTimesRiseThroughThePacket_data();
    void gpsTimesRiseThroughThePacket();
    void wrenKiteOfflineComparesWholeDegrees();
    void commandsAndProgramWideRetries_data();
    void commandsAndProgramWideRetries();
};

void ModelDecodersTest::streams_data()
{
    QTest::addColumn<QString>("model");
    QTest::addColumn<QByteArray>("stream");
    QTest::addColumn<int>("piece");  // bytes fed at a time, 0: all
    QTest::addColumn<QVector<QByteArray>>("saved");
    QTest::addColumn<QByteArray>("left");
    QTest::addColumn<QString>("text");  // empty: no reply
    QTest::addColumn<int>("mode");
    QTest::addColumn<int>("value2");
    QTest::addColumn<uint>("version");  // versionNumber afterwards

    const QVector<QByteArray> three = ternRevolutions(1).mid(0, 3);
    const QByteArray all = three.toList().join();
    const QByteArray junk("\x01\x02\x03\x04\x05", 5);
    QVector<uint16_t> words(42, 1000);
    words[10] = 0xFAFB;
    const QByteArray broken = ternPacket(1500, 4167, words);
    const auto row = [](const QString& name, const QByteArray& stream) -> QTestData& {
        return QTest::newRow(qPrintable(name)) << name.section(' ', 0, 0) << stream;  // the model, then its bytes
    };
    row("Tern byte by byte", all) << 1 << three << QByteArray() << QString() << -1 << 0 << 0u;
    row("Tern cut inside a trailer", all) << 91 << three << QByteArray() << QString() << -1 << 0 << 0u;
    row("Tern cut inside a header", all) << 93 << three << QByteArray() << QString() << -1 << 0 << 0u;
    // Junk without a header after the last packet is not kept.
    row("Tern junk before headers", junk + three[0] + junk + three[1] + QByteArray(40, '\x11') + three[2] + junk)
        << 50 << three << QByteArray() << QString() << -1 << 0 << 0u;
    // The short piece up to a false trailer is dropped, the rest is junk.
    row("Tern trailer pattern inside data", three[0] + broken + three[0])
        << 0 << QVector<QByteArray>{three[0], three[0]} << QByteArray() << QString() << -1 << 0 << 0u;
    row("Tern reply", ternReply({0x18, 5, 20, 1, 2, 3}, 12))
        << 100 << QVector<QByteArray>{} << QByteArray() << "2024.5.20-V1.2.3" << 2 << 0 << 0u;
    QByteArray bare = ternReply({0x80, 0xFF, 5, 0x90, 0, 1}, 10);
    bare[184] = bare[185] = 0;
    row("Tern reply, signed, no trailer: 186 bytes taken", bare)
        << 100 << QVector<QByteArray>{} << QByteArray() << "1872.-1.5-V-112.0.1" << 1 << 0 << 0u;
    row("Tern_GPS reply", ternLongReply(175, {0x18, 5, 20, 1, 2, 3}, 11))
        << 100 << QVector<QByteArray>{} << QByteArray() << "2024.5.20-V1.2.3" << 0 << 0 << 0u;
    row("Tern_P reply", ternLongReply(173, {0x18, 0x81, 1, 1, 4, 0xFF}, 11))
        << 100 << QVector<QByteArray>{} << QByteArray() << "2024.-127.1-V1.4.-1" << 0 << 0 << 139u;
    QByteArray plus = ternLongReply(173, {0x18, 5, 20, 3, 0, 1}, 12);
    putBe16(plus, 141, 0x0258);
    row("Tern_Plus reply", plus) << 100 << QVector<QByteArray>{} << QByteArray() << "2024.5.20-V3.0.1" << 2 << 10 << 0u;

    for (const QString model : {QStringLiteral("Wren_Plus"), QStringLiteral("Wren_Kite")}) {
        const QByteArray packet = wrenPacket(model, 1000, 2400);
        QByteArray badSum = packet;
        badSum[badSum.size() - 1] = char(badSum[badSum.size() - 1] + 1);
        QByteArray otherType = packet;
        otherType[2] = model == QLatin1String("Wren_Plus") ? 0x3A : 0x6C;
        sealChecksum(otherType);
        const QByteArray fill(200, '\x01');
        const QByteArray reply = wrenReply(7, {0x18, 5, 20, 200, 0, 1}, 1);
        row(model + " reply after a packet, bytes after it lost", "\x33" + packet + reply + packet)
            << 0 << QVector<QByteArray>{packet} << QByteArray() << "2024.5.20-V200.0.1" << 0 << 7 << 0u;
        row(model + " reply, filter state 0", wrenReply(0, {0x18, 5, 20, 1, 2, 3}, 0))
            << 100 << QVector<QByteArray>{} << QByteArray() << "2024.5.20-V1.2.3" << 1 << 0 << 0u;
        // Without 188 bytes after it, a packet that fails its tests waits.
        row(model + " bad checksum, short", badSum + fill.left(20))
            << 0 << QVector<QByteArray>{} << badSum + fill.left(20) << QString() << -1 << 0 << 0u;
        row(model + " other model's type, short", otherType)
            << 0 << QVector<QByteArray>{} << otherType << QString() << -1 << 0 << 0u;
        row(model + " bad packet, then 188 bytes without trailer", packet + badSum + fill + packet)
            << 0 << QVector<QByteArray>{packet} << QByteArray() << QString() << -1 << 0 << 0u;
    }
}

void ModelDecodersTest::streams()
{
    QFETCH(QString, model);
    QFETCH(QByteArray, stream);
    QFETCH(int, piece);
    QFETCH(QVector<QByteArray>, saved);
    QFETCH(QByteArray, left);
    QFETCH(QString, text);
    QFETCH(int, mode);
    QFETCH(int, value2);
    QFETCH(uint, version);
    std::unique_ptr<LidarAnalysis> session = makeSession(model);
    QSignalSpy sent(session.get(), &LidarAnalysis::SendDataToLidarSignal);
    QTemporaryDir dir;
    // The recording shows each packet as cut.
    const QVector<QByteArray> recorded = recordedWhile(*session, dir, [&] {
        for (int at = 0; at < stream.size(); at += piece ? piece : stream.size()) {
            QVERIFY(!session->replyReceived);  // not before the whole reply
            feed(*session, stream.mid(at, piece ? piece : -1));
        }
    });
    QCOMPARE(recorded, saved);
    QCOMPARE(session->receiveBuffer, left);
    QCOMPARE(int(session->replyReceived), int(!text.isEmpty()));
    QCOMPARE(session->param.text, text);
    QCOMPARE(session->param.value1, mode);
    QCOMPARE(session->param.value2, value2);
    QCOMPARE(session->versionNumber.load(), version);
    const QByteArray run = commandBytes(0x55, 0x01, 1);  // a reply has the frequency sent again, twice
    QCOMPARE(spied<QByteArray>(sent), text.isEmpty() ? Bytes() : (Bytes{run, run}));
}

void ModelDecodersTest::hostileStreamsStayBounded_data()
{
    QTest::addColumn<QString>("model");
    QTest::addColumn<QByteArray>("junk");
    QTest::addColumn<int>("repeats");  // 0: the junk goes before every packet instead
    const QByteArray fakeReply = QByteArray("\xA5\x5A", 2) + QByteArray(90, '\0');
    const QByteArray noTrailer = QByteArray("\xA5\x5A", 2) + QByteArray(1022, '\x01');
    for (const QString& model : LIdarFactory::GetInstance()->ModelNames()) {
        const auto row = [&](const char* what) -> QTestData& {
            return QTest::newRow(qPrintable(model + ' ' + what)) << model;
        };
        row("no header") << QByteArray(1024, '\x11') << 200;
        row("header and 90 zero bytes") << fakeReply << 2000;
        row("header without trailer") << noTrailer << 200;
        if (described(model).family == lidar::ModelFamily::Tern)
            row("short pieces before every packet") << QByteArray("\xA5\x5A\x00\xFA\xFB\xA5\x5A\x00\xFA\xFB", 10) << 0;
    }
}

// Junk keeps no more than a few packets' worth in the buffer, does not stop
// the cutting, and bytes shaped like replies make the session send no more
// than a burst of frequency commands and then two a second; the stream is
// found again afterwards.
void ModelDecodersTest::hostileStreamsStayBounded()
{
    QFETCH(QString, model);
    QFETCH(QByteArray, junk);
    QFETCH(int, repeats);
    std::unique_ptr<LidarAnalysis> session = makeSession(model);
    session->versionNumber = 215;
    QSignalSpy sent(session.get(), &LidarAnalysis::SendDataToLidarSignal);
    const QVector<QByteArray> packets = revolutionPackets(model, 2);
    QTemporaryDir dir;
    QElapsedTimer clock;
    clock.start();
    int largest = 0;
    const QVector<QByteArray> recorded = recordedWhile(*session, dir, [&] {
        const QByteArray block = junk.repeated(repeats);
        for (int at = 0; at < block.size(); at += 1000) {
            feed(*session, block.mid(at, 1000));
            largest = qMax(largest, session->receiveBuffer.size());
        }
        for (const QByteArray& packet : packets) {
            feed(*session, (repeats ? QByteArray() : junk) + packet);
            if (!repeats)  // every packet is cut in its own arrival
                QCOMPARE(session->receiveBuffer.size(), 0);
        }
    });
    QVERIFY2(largest <= 2048, qPrintable(QString::number(largest)));
    const qint64 allowed = 2 * (3 + clock.elapsed() / 500 + 1);
    QVERIFY2(sent.count() <= allowed, qPrintable(QString::number(sent.count())));
    // The first packet may be lost in the junk's last piece.
    QVERIFY(recorded == packets || recorded == packets.mid(1));
}

void ModelDecodersTest::distanceWords_data()
{
    QTest::addColumn<QString>("model");
    QTest::addColumn<uint>("version");
    QTest::addColumn<QVector<uint16_t>>("words");
    QTest::addColumn<QVector<QPoint>>("points");  // (distance, intensity)

    QVector<uint16_t> full(42, 1000);
    full[40] = 777;
    QVector<uint16_t> zero40 = full;
    zero40[39] = 0;
    const Points plain41(41, {1000, 0});
    // Tern and Tern_GPS drop the 41st word unless the 40th is zero.
    QTest::newRow("Tern 41st dropped") << "Tern" << 0u << full << plain41;
    QTest::newRow("Tern 41st kept") << "Tern" << 0u << zero40
                                    << Points(39, {1000, 0}) + Points{{0, 0}, {777, 0}, {1000, 0}};
    QTest::newRow("Tern_GPS 41st dropped") << "Tern_GPS" << 0u << full << plain41;
    // Missing words (FFFF) take no share of the 15 degrees.
    QTest::newRow("Tern flag and missing")
        << "Tern" << 0u << Words{0xFFFF, 0x8123, 0xFFFF, 0x0123} << Points{{291, 255}, {291, 0}};
    const Words words{0x8123, 0xFFFF, 500};
    QTest::newRow("Tern_P 214 masks") << "Tern_P" << 214u << words << Points{{291, 255}, {500, 0}};
    QTest::newRow("Tern_P 215 whole word") << "Tern_P" << 215u << words << Points{{33059, 0}, {65535, 0}, {500, 0}};
    QTest::newRow("Tern_GPS intensity 0") << "Tern_GPS" << 0u << words << Points{{291, 0}, {500, 0}};
    QTest::newRow("Tern_Plus unmasked") << "Tern_Plus" << 0u << words << Points{{33059, 255}, {65535, 255}, {500, 0}};
}

void ModelDecodersTest::distanceWords()
{
    QFETCH(QString, model);
    QFETCH(uint, version);
    QFETCH(QVector<uint16_t>, words);
    QFETCH(QVector<QPoint>, points);
    std::unique_ptr<LidarAnalysis> session = makeSession(model);
    session->versionNumber = version;
    feed(*session, dataPacket(model, 1000, words) + QByteArray(92, 0));  // live parsing waits for 92 bytes
    QCOMPARE(session->currentFrame.motorSpeed, 599);
    const auto made = session->currentFrame.points.value(0);
    QVector<QPoint> got;
    for (const lidar::LidarPoint& p : made) {
        // 15 degrees spread over the points made, x along the sine, y the cosine.
        QCOMPARE(p.azimuth, float(10.0 + 15.0 * got.size() / made.size()));
        QCOMPARE(p.x, float(std::sin(p.azimuth * M_PI / 180.0) * p.distance / 1000.0));
        QCOMPARE(p.y, float(std::cos(p.azimuth * M_PI / 180.0) * p.distance / 1000.0));
        got.append({p.distance, p.intensity});
    }
    QCOMPARE(got, points);
}

void ModelDecodersTest::ternFramesEndAtTheWrapAndEarlyPointsOpenTheNext()
{
    Tern::previousAzimuth = -1.0f;  // no previous packet
    Tern session;
    session.connected = 1;
    QSignalSpy frames(&session, &LidarAnalysis::SendleLidarDataSignal);
    // The last packet reaches 355.00 to about 369.63: the points past 360
    // wait for the next turn and nothing ends yet.
    feed(session, ternPacketFilled(33000, 5000, 1000) + ternPacketFilled(34500, 5000, 1000) +
                      ternPacketFilled(35500, 5000, 2000));
    QCOMPARE(frames.count(), 0);
    const auto early = session.lastFrame.points.value(0);
    QCOMPARE(int(early.size()), 27);  // 360.12 .. 369.63, less 360
    QCOMPARE(int(session.currentFrame.points.value(0).size()), 3 * 41 - 27);
    QVERIFY(early.front().azimuth > 0.0f && early.back().azimuth < 9.7f && early.back().distance == 2000);

    // An azimuth more than 15 degrees below its predecessor ends the turn.
    feed(session, ternPacketFilled(1000, 4167, 3000));
    QCOMPARE(frames.count(), 1);
    const auto ended = frames[0][0].value<lidar::LidarDataPoint_V4>();
    QCOMPARE(int(ended.pointCount()), 3 * 41 - 27);
    QVERIFY(ended.points.value(0).back().azimuth <= 360.0f);
    QCOMPARE(ended.motorSpeed, 599);  // of the packet during which it ended
    const auto next = session.currentFrame.points.value(0);
    QCOMPARE(int(next.size()), int(early.size()) + 41);
    QCOMPARE(next.front().azimuth, early.front().azimuth);
    QCOMPARE(next[early.size()].azimuth, 10.0f);
    QVERIFY(session.lastFrame.points.isEmpty());
}

void ModelDecodersTest::ternOfflineParsePersistsBetweenCalls()
{
    // The only offline Tern parse in this program: its state starts fresh.
    QVector<QByteArray> packets = ternRevolutions(2, 1000, 500);
    packets.append(ternPacketFilled(500, 4167, 1000));
    const float livePrevious = Tern::previousAzimuth;
    // Turn 2 is split over two calls and still completes whole.
    QCOMPARE(Tern::ParseRecordedPackets(packets.mid(0, 30)).size(), 1);
    const auto second = Tern::ParseRecordedPackets(packets.mid(30));
    QCOMPARE(second.size(), 1);
    QCOMPARE(int(second[0].pointCount()), 24 * 41);
    QCOMPARE(Tern::previousAzimuth, livePrevious);  // live and offline are apart
}

void ModelDecodersTest::gpsTimesRiseThroughThePacket_data()
{
    QTest::addColumn<int>("words");  // 41 points each
    QTest::newRow("Tern_GPS") << 42;
    QTest::newRow("Tern_P") << 41;
    QTest::newRow("Tern_Plus") << 41;
}

void ModelDecodersTest::gpsTimesRiseThroughThePacket()
{
    QFETCH(int, words);
    const QString model = QTest::currentDataTag();
    std::unique_ptr<LidarAnalysis> session = makeSession(model);
    session->versionNumber = 215;
    QSignalSpy times(session.get(), &LidarAnalysis::SendGPSTimeData);
    GpsStamp first;
    first.microsecond = 500;
    const GpsStamp second = first.later(10000);
    feed(*session, dataPacket(model, 10000, QVector<uint16_t>(words, 1000), first) +
                       dataPacket(model, 11500, QVector<uint16_t>(words, 1000), second));

    const auto records = spied<lidar::GPSTime>(times);
    QCOMPARE(records.size(), 2);
    const lidar::GPSTime& t = records[1];
    QCOMPARE(QVector<int>({t.year, t.month, t.day, t.hour, t.minute, t.second, t.millisecond, t.microsecond}),
             QVector<int>({2024, 5, 20, 12, 0, 0, 10, 500}));
    QCOMPARE((QVector<quint64>{records[0].currentNs, t.previousNs, t.currentNs}),
             (QVector<quint64>{first.packetTimeNs(), first.packetTimeNs(), second.packetTimeNs()}));
    QCOMPARE(session->currentFrame.dateTime, QString("2024-5-20 12:0:0:10"));

    // The second packet's points end at its own time (ms), 10 ms / 41 apart.
    const auto points = session->currentFrame.points.value(0);
    QCOMPARE(int(points.size()), 2 * 41);
    const quint64 dt = (second.packetTimeNs() - first.packetTimeNs()) / 41u;
    for (int i = 0; i < 41; ++i)
        QCOMPARE(points[size_t(41 + i)].timestamp, qint64((second.packetTimeNs() - quint64(40 - i) * dt) / 1000000u));
}

void ModelDecodersTest::wrenKiteOfflineComparesWholeDegrees()
{
    // A: 344.7 .. 359.7, B: 344.5 .. 359.5. Live, 359.7 - 344.5 = 15.2 ends
    // a turn; offline the previous azimuth is kept as 359, and 14.5 does not.
    const QByteArray wrap = wrenPacket("Wren_Kite", 0, 1400);
    const QByteArray a = wrenPacket("Wren_Kite", 34470, 35970);
    const QByteArray b = wrenPacket("Wren_Kite", 34450, 35950);
    Wren_Kite session;
    session.connected = 1;
    feed(session, wrap);
    QSignalSpy frames(&session, &LidarAnalysis::SendleLidarDataSignal);
    feed(session, a + b + wrap);
    const auto live = spied<lidar::LidarDataPoint_V4>(frames);
    QCOMPARE(live.size(), 2);
    QCOMPARE(QVector<size_t>({live[0].pointCount(), live[1].pointCount()}), QVector<size_t>({32, 16}));

    Wren_Kite::ParseRecordedPackets({wrap});
    const auto offline = Wren_Kite::ParseRecordedPackets({a, b, wrap});
    QCOMPARE(offline.size(), 1);
    QCOMPARE(int(offline[0].pointCount()), 48);
}

void ModelDecodersTest::commandsAndProgramWideRetries_data()
{
    QTest::addColumn<int>("readClass");
    QTest::addColumn<int>("filterClass");
    QTest::addColumn<QList<int>>("filterCodes");  // byte 181 for modes 0 and 1
    QTest::newRow("Tern") << 0x01 << 0x55 << QList<int>{11, 10};
    QTest::newRow("Tern_P") << 0x55 << 0x01 << QList<int>{11, 10};
    QTest::newRow("Tern_GPS") << 0x55 << 0x01 << QList<int>{11, 10};
    QTest::newRow("Tern_Plus") << 0x55 << 0x01 << QList<int>{11, 10};
    QTest::newRow("Wren_Plus") << 0x55 << 0x01 << QList<int>{1, 0};
    QTest::newRow("Wren_Kite") << 0x55 << 0x01 << QList<int>{1, 0};
}

void ModelDecodersTest::commandsAndProgramWideRetries()
{
    QFETCH(int, readClass);
    QFETCH(int, filterClass);
    QFETCH(QList<int>, filterCodes);
    const QString model = QTest::currentDataTag();
    // The only commands of this program: every retry counter starts at 0.
    std::unique_ptr<LidarAnalysis> first = makeSession(model), second = makeSession(model);
    QSignalSpy firstSent(first.get(), &LidarAnalysis::SendDataToLidarSignal);
    QSignalSpy secondSent(second.get(), &LidarAnalysis::SendDataToLidarSignal);
    const QByteArray stop = commandBytes(0x55, 1, 0), run = commandBytes(0x55, 1, 1);

    QCOMPARE(first->ReadParamCommand(), commandBytes(readClass, 3, 1));
    first->SetMotorFrequency(0);
    QCOMPARE(spied<QByteArray>(firstSent), (Bytes{stop, stop}));
    QCOMPARE(first->ReadParamCommand(), commandBytes(readClass, 3, 0));

    // Unanswered, the program's first call tries three times, every later
    // call once, in whichever session; the frequency follows twice.
    firstSent.clear();
    first->SetLidarFilter(0);
    const QByteArray filter0 = commandBytes(filterClass, 6, 0, {{181, uint8_t(filterCodes[0])}});
    QCOMPARE(spied<QByteArray>(firstSent), (Bytes{filter0, filter0, filter0, stop, stop}));
    second->SetLidarFilter(1);
    const QByteArray filter1 = commandBytes(filterClass, 6, 1, {{181, uint8_t(filterCodes[1])}});
    QCOMPARE(spied<QByteArray>(secondSent), (Bytes{filter1, run, run}));

    secondSent.clear();
    if (model.startsWith("Wren")) {  // a counter of its own
        const QByteArray device = commandBytes(0x55, 10, 0, {{172, 0x2A}});
        second->SetDeviceParam(0x2A);
        first->SetDeviceParam(0x2A);
        QCOMPARE(spied<QByteArray>(secondSent), (Bytes{device, device, device, run, run}));
        QCOMPARE(spied<QByteArray>(firstSent).mid(5), (Bytes{device, stop, stop}));
    } else if (model == QLatin1String("Tern_Plus")) {  // value * 60, sign-extended, sent once
        second->SetDeviceParam(10);
        second->SetDeviceParam(quint8(-1));
        QCOMPARE(spied<QByteArray>(secondSent),
                 (Bytes{commandBytes(0x55, 0x0A, 0, {{141, 0x02}, {142, 0x58}}), run, run,
                        commandBytes(0x55, 0x0A, 0, {{141, 0xFF}, {142, 0xC4}}), run, run}));
    }
}

QTEST_GUILESS_MAIN(ModelDecodersTest)
#include "tst_model_decoders.moc"
