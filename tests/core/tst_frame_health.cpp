// The stream-health accounting: the gaps that covered spans leave; every
// model's revolutions, live and from a recording, with packets lost at a
// turn's start, at its end, across 0 degrees and in between; what the
// cutters count as rejected pieces, skipped bytes and replies; and the
// health a recording's index and a capture keep for each frame.

#include "CaptureBuilders.h"
#include "CaptureFrames.h"
#include "CaptureIndexer.h"
#include "DecoderHarness.h"
#include "FrameHealth.h"
#include "FrameIndex.h"
#include "HealthIndex.h"
#include "IndexedFrameReader.h"
#include "LIdarFactory.h"
#include "OfflineParser.h"
#include "PacketBuilders.h"
#include "RecordFile.h"
#include "RecordingIndexer.h"
#include "Tern.h"
#include "Tern_GPS.h"
#include "Tern_P.h"
#include "Tern_Plus.h"
#include "Wren_Kite.h"
#include "Wren_Plus.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

using namespace testing;
using Health = lidar::FrameHealth;

namespace {

const QStringList kModels = {"Tern", "Tern_P", "Tern_GPS", "Tern_Plus", "Wren_Plus", "Wren_Kite"};

bool isWren(const QString& model)
{
    return model.startsWith(QLatin1String("Wren"));
}

// "packets missing gap gap ..." of one frame, gaps as start-end degrees.
QString describe(const Health& h)
{
    QStringList parts{QString::number(h.packets), QString::number(h.missingPackets)};
    for (const lidar::AngularGap& gap : h.gaps)
        parts << QStringLiteral("%1-%2").arg(gap.start).arg(gap.end);
    return parts.join(' ');
}

QString describe(const QVector<Health>& frames)
{
    QStringList out;
    for (const Health& h : frames)
        out << describe(h);
    return out.join(QStringLiteral(" | "));
}

// Packet `k` of a hand-made stream: starts at `start` and covers `cover`
// (1/100 degree). Tern words: one of 0 mm (a point, not a return); Tern and
// Tern_GPS drop their 41st. Wren_Plus: channel 1 measures nothing at the
// first group; Wren_Kite: nothing at group 5 (a point all the same).
QByteArray makePacket(const QString& model, int start, int cover, int k)
{
    const uint16_t period = 4167, code = uint16_t(start % 36000);
    QVector<uint16_t> words(42);
    for (int i = 0; i < 42; ++i)
        words[i] = uint16_t(i == 3 ? 0 : 1000 + 10 * i);
    const GpsStamp stamp = GpsStamp().later(qint64(k) * 4167);
    if (model == "Tern")
        return ternPacket(code, period, words);
    if (model == "Tern_GPS")
        return ternGpsPacket(code, period, words, stamp);
    if (model == "Tern_P" || model == "Tern_Plus")
        return ternLengthPacket(code, period, words, stamp);
    const uint16_t end = uint16_t((start + cover * 15 / 16) % 36000);
    if (model == "Wren_Plus") {
        QVector<WrenPlusGroup> groups(16);
        for (int g = 0; g < 16; ++g)
            groups[g] = {uint16_t(1000 + g), 10, uint16_t(g == 0 ? 0 : 2000), 20};
        return wrenPlusPacket(period, code, end, groups);
    }
    QVector<WrenKiteGroup> groups(16);
    for (int g = 0; g < 16; ++g)
        groups[g] = {uint16_t(g == 5 ? 0 : 1500 + g), 30};
    return wrenKitePacket(period, code, end, groups);
}

// Points and returns of one whole packet of each model.
QPair<int, int> pointsOfPacket(const QString& model)
{
    if (model == "Tern" || model == "Tern_GPS")
        return {41, 40};
    if (model == "Tern_P" || model == "Tern_Plus")
        return {42, 41};
    return model == "Wren_Plus" ? QPair<int, int>{31, 31} : QPair<int, int>{16, 15};
}

// Three turns and the first packet of a fourth, which closes the third.
// `layout`: "regular" (24 packets of 15 degrees for the Tern family, 45 of
// 8 for the Wren family, from 0), "crossing" (Tern: from 5 degrees, so each
// turn's last packet reaches 5 degrees into the next) or "variable" (Wren:
// 8 and 16 degrees in turn, 30 a turn). Packets `lost` (by number) are left out.
QVector<QByteArray> stream(const QString& model, const QString& layout, const QVector<int>& lost)
{
    QVector<QPair<int, int>> turn;  // start, cover
    if (layout == "variable") {
        for (int p = 0; p < 15; ++p)
            turn << QPair<int, int>{2400 * p, 800} << QPair<int, int>{2400 * p + 800, 1600};
    } else if (isWren(model)) {
        for (int i = 0; i < 45; ++i)
            turn << QPair<int, int>{800 * i, 800};
    } else {
        const int phase = layout == "crossing" ? 500 : 0;
        for (int i = 0; i < 24; ++i)
            turn << QPair<int, int>{phase + 1500 * i, 1500};
    }
    QVector<QByteArray> packets;
    for (int k = 0; k <= 3 * turn.size(); ++k)
        if (!lost.contains(k))
            packets << makePacket(model, turn[k % turn.size()].first, turn[k % turn.size()].second, k);
    return packets;
}

// The live previous azimuth is the model's, program-wide: each run starts afresh.
void forgetLivePlacement()
{
    Tern::previousAzimuth = Tern_P::previousAzimuth = Tern_GPS::previousAzimuth = Tern_Plus::previousAzimuth = -1.0f;
    Wren_Plus::previousAzimuth = -1.0f;
    Wren_Kite::previousAzimuth = -1.0;
}

// Each packet as a datagram of its own to a session of the model.
QVector<Health> live(const QString& model, const QVector<QByteArray>& packets)
{
    forgetLivePlacement();
    std::unique_ptr<LidarAnalysis> session = makeSession(model);
    session->versionNumber = 215;
    session->connected = 1;
    QVector<Health> health;
    QObject::connect(session.get(), &LidarAnalysis::SendFrameHealthSignal,
                     [&](const Health& h, const lidar::StreamTotals&) { health << h; });
    for (const QByteArray& packet : packets)
        feed(*session, packet);
    return health;
}

std::unique_ptr<lidar::OfflineParser> freshParser(const QString& model)
{
    if (model == "Tern")
        return std::make_unique<lidar::ModelOfflineParser<Tern>>();
    if (model == "Tern_P")
        return std::make_unique<lidar::ModelOfflineParser<Tern_P>>();
    if (model == "Tern_GPS")
        return std::make_unique<lidar::ModelOfflineParser<Tern_GPS>>();
    if (model == "Tern_Plus")
        return std::make_unique<lidar::ModelOfflineParser<Tern_Plus>>();
    if (model == "Wren_Plus")
        return std::make_unique<lidar::ModelOfflineParser<Wren_Plus>>();
    return std::make_unique<lidar::ModelOfflineParser<Wren_Kite>>();
}

// The same packets as a recording's, through a fresh offline parse.
QVector<Health> recorded(const QString& model, const QVector<QByteArray>& packets)
{
    std::unique_ptr<lidar::OfflineParser> parser = freshParser(model);
    parser->setPrefix({"215"});
    QVector<Health> health;
    QVector<lidar::LidarDataPoint_V4> frames;
    for (const QByteArray& packet : packets) {
        parser->add(packet, frames);
        for (const Health& h : parser->frameHealth())
            health << h;
    }
    return health.size() == frames.size() ? health : QVector<Health>();
}

lidar::StreamTotals totalsAfter(const QString& model, const QVector<QByteArray>& chunks)
{
    forgetLivePlacement();
    std::unique_ptr<LidarAnalysis> session = makeSession(model);
    session->versionNumber = 215;
    for (const QByteArray& chunk : chunks)
        feed(*session, chunk);
    return session->streamCounters.snapshot();
}

QByteArray junk(int bytes)
{
    QByteArray out;
    for (int i = 0; i < bytes; ++i)
        out.append(char(0x11 + i));  // no header, no trailer
    return out;
}

}  // namespace

class FrameHealthTest : public QObject {
    Q_OBJECT
private slots:
    void gapsOfCoveredSpans_data();
    void gapsOfCoveredSpans();
    void revolutionsLiveAndRecorded_data();
    void revolutionsLiveAndRecorded();
    void cuttersCountWhatTheyPassOver_data();
    void cuttersCountWhatTheyPassOver();
    void healthIndexFindsIncompleteFrames();
    void recordingIndexKeepsEachFramesHealth();
    void captureFramesKeepTheirHealth();
    void cleanupTestCase() { LIdarFactory::GetInstance()->Shutdown(); }
};

void FrameHealthTest::gapsOfCoveredSpans_data()
{
    QTest::addColumn<QVector<float>>("spans");  // start, end, start, end...
    QTest::addColumn<double>("pitch");
    QTest::addColumn<QString>("expected");  // missing, coverage, gaps
    QTest::addColumn<float>("coverage");
    using V = QVector<float>;
    QTest::newRow("whole") << V{0, 360} << 15.0 << "0 0" << 1.0f;
    QTest::newRow("nothing covered") << V{} << 15.0 << "0 24 0-360" << 0.0f;
    QTest::newRow("jitter between packets") << V{0, 100, 100.5f, 360} << 15.0 << "0 0" << 1.0f;
    QTest::newRow("out of order, overlapping") << V{200, 360, 0, 120, 100, 150} << 15.0 << "0 3 150-200"
                                               << float(1 - 50 / 360.0);
    QTest::newRow("first packet lost") << V{8, 360} << 8.0 << "0 1 0-8" << float(1 - 8 / 360.0);
    QTest::newRow("last packet lost") << V{0, 352} << 8.0 << "0 1 352-360" << float(1 - 8 / 360.0);
    // A packet lost across 0 counts where it starts: in the turn before.
    QTest::newRow("end of a packet lost across 0") << V{4, 360} << 8.0 << "0 0 0-4" << float(1 - 4 / 360.0);
    QTest::newRow("start of a packet lost across 0") << V{0, 356} << 8.0 << "0 1 356-360" << float(1 - 4 / 360.0);
    QTest::newRow("through 0") << V{15, 345} << 15.0 << "0 2 345-15" << float(1 - 30 / 360.0);
    QTest::newRow("unknown pitch") << V{0, 100} << 0.0 << "0 0 100-360" << float(100 / 360.0);
}

void FrameHealthTest::gapsOfCoveredSpans()
{
    QFETCH(QVector<float>, spans);
    QFETCH(double, pitch);
    QFETCH(QString, expected);
    QFETCH(float, coverage);
    QVector<lidar::CoveredSpan> covered;
    for (int i = 0; i + 1 < spans.size(); i += 2)
        covered.append({spans[i], spans[i + 1]});
    const lidar::CoverageMeasure m = lidar::measureCoverage(covered.constData(), covered.size(), pitch);
    Health h;
    h.missingPackets = m.missingPackets;
    h.gaps = m.gaps;
    QCOMPARE(describe(h), expected);
    QVERIFY2(std::abs(m.coverage - coverage) < 1e-5f, qPrintable(QString::number(m.coverage)));
}

void FrameHealthTest::revolutionsLiveAndRecorded_data()
{
    QTest::addColumn<QString>("model");
    QTest::addColumn<QString>("layout");
    QTest::addColumn<QVector<int>>("lost");
    QTest::addColumn<QString>("expected");  // frame | frame | frame
    using L = QVector<int>;
    for (const QString& model : kModels) {
        const QByteArray name = model.toLatin1();
        const char* m = name.constData();
        if (isWren(model)) {
            QTest::addRow("%s no packet missing", m) << model << "regular" << L{} << "45 0 | 45 0 | 45 0";
            QTest::addRow("%s lost first", m) << model << "regular" << L{45} << "45 0 | 44 1 0-8 | 45 0";
            QTest::addRow("%s lost last", m) << model << "regular" << L{89} << "45 0 | 44 1 352-360 | 45 0";
            QTest::addRow("%s gap through 0", m) << model << "regular" << L{45, 89} << "45 0 | 43 2 352-8 | 45 0";
            QTest::addRow("%s two gaps", m) << model << "regular" << L{51, 52, 61}
                                            << "45 0 | 42 3 48-64 128-136 | 45 0";
            // Missing packets in packets of the turn's mean width.
            QTest::addRow("%s variable spans", m) << model << "variable" << L{33, 40}
                                                  << "30 0 | 28 2 32-48 120-128 | 30 0";
        } else {
            QTest::addRow("%s no packet missing", m) << model << "regular" << L{} << "24 0 | 24 0 | 24 0";
            QTest::addRow("%s lost first", m) << model << "regular" << L{24} << "24 0 | 23 1 0-15 | 24 0";
            QTest::addRow("%s lost last", m) << model << "regular" << L{47} << "24 0 | 23 1 345-360 | 24 0";
            QTest::addRow("%s gap through 0", m) << model << "regular" << L{24, 47} << "24 0 | 22 2 345-15 | 24 0";
            QTest::addRow("%s two gaps", m) << model << "regular" << L{30, 31, 40}
                                            << "24 0 | 21 3 90-120 240-255 | 24 0";
            // The first turn begins at 5 degrees; a packet from 350 to 5
            // counts in its own turn and leaves the next turn's first 5
            // degrees bare too.
            QTest::addRow("%s lost across 0", m) << model << "crossing" << L{23}
                                                 << "23 1 350-5 | 24 0 0-5 | 24 0";
        }
    }
}

void FrameHealthTest::revolutionsLiveAndRecorded()
{
    QFETCH(QString, model);
    QFETCH(QString, layout);
    QFETCH(QVector<int>, lost);
    QFETCH(QString, expected);
    const QVector<QByteArray> packets = stream(model, layout, lost);
    const QVector<Health> liveHealth = live(model, packets);
    QCOMPARE(describe(liveHealth), expected);
    QCOMPARE(describe(recorded(model, packets)), expected);

    const bool gps = model == "Tern_P" || model == "Tern_GPS" || model == "Tern_Plus";
    const QPair<int, int> perPacket = pointsOfPacket(model);
    for (const Health& h : liveHealth) {
        QCOMPARE(h.motorSpeed, 2500000 / 4167);
        QCOMPARE(h.coverage == 1.0f, h.isWhole());
        if (layout == "regular") {  // no packet's points reach into the next turn
            QCOMPARE(h.points, h.packets * perPacket.first);
            QCOMPARE(h.returns, h.packets * perPacket.second);
        }
        // Stamps 4167 us apart, 24 a turn; without them (and without
        // arrival times) the period is unknown.
        QCOMPARE(h.hasPeriod(), gps);
        if (gps)
            QVERIFY2(std::abs(h.periodMs - 24 * 4.167) < 0.01, qPrintable(QString::number(h.periodMs)));
    }
}

void FrameHealthTest::cuttersCountWhatTheyPassOver_data()
{
    QTest::addColumn<QString>("model");
    QTest::addColumn<QVector<QByteArray>>("chunks");  // as the link delivers them
    QTest::addColumn<QVector<quint64>>("expected");   // packets, rejected, skipped, replies
    using C = QVector<QByteArray>;
    using E = QVector<quint64>;
    const QByteArray tern = makePacket("Tern", 0, 1500, 0), ternP = makePacket("Tern_P", 0, 1500, 0);
    const QByteArray plus = makePacket("Wren_Plus", 0, 800, 0), kite = makePacket("Wren_Kite", 0, 800, 0);
    QByteArray badPlus = plus, badKite = kite, shortTern = tern;
    badPlus[50] = char(badPlus[50] ^ 0x40);  // its checksum fails
    badKite[50] = char(badKite[50] ^ 0x40);
    shortTern.remove(40, 1);

    QTest::newRow("Tern junk before a packet") << "Tern" << C{junk(7) + tern} << E{1, 0, 7, 0};
    QTest::newRow("Tern junk on its own") << "Tern" << C{junk(10), tern} << E{1, 0, 10, 0};
    QTest::newRow("Tern packet split across reads") << "Tern" << C{junk(3) + tern.left(50), tern.mid(50)}
                                                    << E{1, 0, 3, 0};
    QTest::newRow("Tern a byte short") << "Tern" << C{shortTern, tern} << E{1, 1, 0, 0};
    QTest::newRow("Tern reply") << "Tern" << C{ternReply({24, 5, 20, 1, 2, 3}, 11), tern} << E{1, 0, 0, 1};
    QByteArray wrongLength = ternP;
    wrongLength[3] = char(wrongLength[3] + 2);
    QTest::newRow("Tern_P length field wrong") << "Tern_P" << C{wrongLength, ternP} << E{1, 1, 0, 0};
    QTest::newRow("Wren_Plus junk before a packet") << "Wren_Plus" << C{junk(5) + plus} << E{1, 0, 5, 0};
    // A refused Wren packet waits for a reply's length of bytes behind its
    // header; then the stream is taken up afresh past all of them.
    QTest::newRow("Wren_Plus checksum fails") << "Wren_Plus" << C{badPlus, plus, plus} << E{1, 1, 108, 0};
    QTest::newRow("Wren_Kite checksum fails") << "Wren_Kite" << C{badKite, kite, kite, kite, kite}
                                              << E{1, 1, 3 * 58, 0};
    QTest::newRow("Wren_Plus reply") << "Wren_Plus" << C{wrenReply(3, {24, 5, 20, 1, 2, 3}, 1), plus}
                                     << E{1, 0, 0, 1};
}

void FrameHealthTest::cuttersCountWhatTheyPassOver()
{
    QFETCH(QString, model);
    QFETCH(QVector<QByteArray>, chunks);
    QFETCH(QVector<quint64>, expected);
    const lidar::StreamTotals t = totalsAfter(model, chunks);
    QCOMPARE((QVector<quint64>{t.packets, t.rejectedPackets, t.skippedBytes, t.replies}), expected);
}

void FrameHealthTest::healthIndexFindsIncompleteFrames()
{
    lidar::HealthIndex index;
    Health whole;
    whole.packets = 24;
    whole.coverage = 1.0f;
    Health broken = whole;
    broken.packets = 22;
    broken.missingPackets = 2;
    broken.coverage = 0.9f;
    broken.gaps = {{10.0f, 20.0f}, {350.0f, 5.5f}};
    for (int k = 0; k < 10; ++k)
        index.append(k == 3 || k == 7 ? broken : whole);

    QCOMPARE(index.size(), 10);
    QCOMPARE(index.incompleteCount(), 2);
    QCOMPARE(index.nextIncomplete(-1), 3);
    QCOMPARE(index.nextIncomplete(3), 7);
    QCOMPARE(index.nextIncomplete(7), lidar::HealthIndex::kNone);
    QCOMPARE(index.previousIncomplete(7), 3);
    QCOMPARE(index.previousIncomplete(3), lidar::HealthIndex::kNone);
    QCOMPARE(index.incompleteFrames(4, 9), (std::vector<qint64>{7}));
    lidar::FrameHealthSummary s;
    QVERIFY(index.summary(3, s) && !s.isWhole());
    QCOMPARE(s.missingPackets, 2);
    QCOMPARE(s.worstGapDegrees(), 15.5);  // the gap through 0
    QVERIFY(index.summary(4, s) && s.isWhole() && s.coverage == 65535);
    QVERIFY(!index.summary(10, s));
}

void FrameHealthTest::recordingIndexKeepsEachFramesHealth()
{
    QTemporaryDir dir;
    const QString path = dir.filePath("recording.txt");
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QVERIFY(lidar::writeRecordElements(file, QVector<QByteArray>{"Tern"} + stream("Tern", "regular", {30, 31, 40})));
    file.close();

    auto index = std::make_shared<lidar::FrameIndex>();
    auto cursor = std::make_unique<lidar::RecordingCursor>(path);
    QVERIFY(cursor->open());
    cursor->start(freshParser("Tern"));
    lidar::RecordingIndexer indexer(std::move(cursor), index);
    indexer.start();
    QTRY_VERIFY_WITH_TIMEOUT(index->isFinished(), 20000);
    QCOMPARE(index->health().size(), 3);
    QCOMPARE(index->health().incompleteFrames(), (std::vector<qint64>{1}));

    lidar::IndexedFrameReader reader(path, index);
    lidar::LidarDataPoint_V4 frame;
    Health health;
    QVERIFY(reader.frame(1, frame, &health));
    QCOMPARE(describe(health), QString("21 3 90-120 240-255"));
    QCOMPARE(health.points, int(frame.pointCount()));
    QVERIFY(reader.frame(1, frame, &health));  // from the cache
    QCOMPARE(describe(health), QString("21 3 90-120 240-255"));
}

void FrameHealthTest::captureFramesKeepTheirHealth()
{
    QVector<CapturedPacket> records;
    for (const QByteArray& packet : stream("Wren_Kite", "regular", {45, 89}))
        records.append({ethernet(udp4(capture::kDefaultDataPort, junk(4) + packet)), -1});
    QTemporaryDir dir;
    const QString path = dir.filePath("capture.pcap");
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(captureFile(CaptureFormat::PcapMicroseconds, false, kLinkEthernet, records));
    file.close();

    forgetLivePlacement();
    capture::CaptureOptions options;
    options.model = "Wren_Kite";
    lidar::CaptureIndexer indexer(path, options);
    QVERIFY(indexer.start());
    QTRY_VERIFY_WITH_TIMEOUT(indexer.isFinished(), 20000);
    QCOMPARE(indexer.frames().count(), 3);
    QCOMPARE(indexer.health().incompleteFrames(), (std::vector<qint64>{1}));
    QCOMPARE(indexer.result().stream.skippedBytes, quint64(4 * records.size()));
    lidar::LidarDataPoint_V4 frame;
    Health health;
    QVERIFY(indexer.frames().read(1, frame, &health));
    QCOMPARE(describe(health), QString("43 2 352-8"));
    QCOMPARE(health.points, int(frame.pointCount()));
    // Timed by the capture: a whole turn of 45 datagrams 1 ms apart.
    QVERIFY(indexer.frames().read(2, frame, &health));
    QVERIFY2(std::abs(health.periodMs - 45.0) < 0.01, qPrintable(QString::number(health.periodMs)));
}

QTEST_GUILESS_MAIN(FrameHealthTest)
#include "tst_frame_health.moc"
