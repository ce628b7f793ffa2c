// The decoders look a packet's azimuths, sines and cosines up in a table
// of the packets they have met instead of computing them. For every start
// code a packet can carry (and, for the Wren family, a spread of end
// codes), every point each model decodes is checked bit for bit against the
// azimuth and coordinates computed here from the packet layouts, with
// std::sin and std::cos: met first in one order, then in another, so that
// codes sharing a place in the table take it from each other. Packets the
// placement takes as one run are placed again point by point: the frames
// must be the same.

#include "FrameDescription.h"
#include "PacketBuilders.h"
#include "TernProtocol.h"
#include "Tern.h"
#include "Tern_GPS.h"
#include "Tern_P.h"
#include "Tern_Plus.h"
#include "Wren_Kite.h"
#include "Wren_Plus.h"

#include <QtTest>
#include <cmath>
#include <cstring>

using namespace testing;
using lidar::decode::DecodedPacket;

namespace {

constexpr double kPi = 3.141592653589793;

bool sameBits(float a, float b)
{
    return std::memcmp(&a, &b, sizeof a) == 0;
}
bool sameBits(double a, double b)
{
    return std::memcmp(&a, &b, sizeof a) == 0;
}

// Checks point i of `packet` against azimuth `azimuth` (the precision the
// model computes in) and distance `distance`; empty when it matches.
template <typename Azimuth>
QString mismatch(const DecodedPacket& packet, size_t i, Azimuth azimuth, int distance)
{
    const double angle = double(azimuth) * kPi / 180.0;
    const float x = static_cast<float>(std::sin(angle) * distance / 1000.0);
    const float y = static_cast<float>(std::cos(angle) * distance / 1000.0);
    const lidar::LidarPoint& p = packet.points[i];
    if (sameBits(double(azimuth), packet.azimuths[i]) && sameBits(x, p.x) && sameBits(y, p.y) && p.distance == distance)
        return {};
    return QStringLiteral("point %1: azimuth %2 / %3, x %4 / %5, y %6 / %7")
        .arg(i)
        .arg(packet.azimuths[i], 0, 'g', 17)
        .arg(double(azimuth), 0, 'g', 17)
        .arg(double(p.x), 0, 'g', 9)
        .arg(double(x), 0, 'g', 9)
        .arg(double(p.y), 0, 'g', 9)
        .arg(double(y), 0, 'g', 9);
}

QVector<uint16_t> wordsFor(int code, int n)
{
    QVector<uint16_t> words(n);
    for (int w = 0; w < n; ++w)
        words[w] = uint16_t(1 + (code * 7 + w * 131) % 30000);
    return words;
}

// A packet may be placed as one run only when its azimuths rise from 0 or
// more and none passes 360 degrees; empty when the decoder says so rightly.
template <typename Azimuth>
QString oneRunMismatch(const DecodedPacket& packet, const QVector<Azimuth>& azimuths)
{
    bool oneRun = !azimuths.isEmpty() && azimuths.front() >= Azimuth(0);
    for (int i = 0; i < azimuths.size(); ++i)
        oneRun = oneRun && azimuths[i] <= Azimuth(360) && (i == 0 || azimuths[i] >= azimuths[i - 1]);
    if (packet.risingBelow360 == oneRun)
        return {};
    return QStringLiteral("placed as one run: %1, should be %2").arg(packet.risingBelow360).arg(oneRun);
}

// A Tern-family packet's points: 15 degrees spread over its points from
// the start angle, in single precision.
QString checkTern(const QString& model, int code, int words)
{
    const QVector<uint16_t> distances = wordsFor(code, words);
    DecodedPacket packet;
    if (model == "Tern")
        Tern::DecodePacket(ternPacket(uint16_t(code), 4167, distances), packet);
    else if (model == "Tern_GPS")
        Tern_GPS::DecodePacket(ternGpsPacket(uint16_t(code), 4167, distances, GpsStamp()), packet);
    else if (model == "Tern_P")
        Tern_P::DecodePacket(ternLengthPacket(uint16_t(code), 4167, distances, GpsStamp()), 215, packet);
    else
        Tern_Plus::DecodePacket(ternLengthPacket(uint16_t(code), 4167, distances, GpsStamp()), packet);
    // Tern and Tern_GPS drop the 41st word: the 40th is never zero here.
    QVector<int> kept;
    for (int w = 0; w < words; ++w)
        if (!(w == 40 && (model == "Tern" || model == "Tern_GPS")))
            kept << (model == "Tern_Plus" ? distances[w] : distances[w] & 0x7FFF);
    if (packet.size() != size_t(kept.size()))
        return QStringLiteral("%1 points, not %2").arg(packet.size()).arg(kept.size());
    const float start = static_cast<float>(code / 100.0);
    const float step = static_cast<float>(15.0 / kept.size());
    QVector<float> azimuths;
    for (int i = 0; i < kept.size(); ++i) {
        azimuths << static_cast<float>(i) * step + start;
        const QString wrong = mismatch(packet, size_t(i), azimuths.back(), kept[i]);
        if (!wrong.isEmpty())
            return wrong;
    }
    return oneRunMismatch(packet, azimuths);
}

// A Wren-family packet's points: sixteen groups from the start to the end
// azimuth, each reduced below 360, stepping over 0 when start > end.
template <typename Azimuth>
QString checkWren(const QString& model, int start, int end)
{
    DecodedPacket packet;
    if (model == "Wren_Plus") {
        QVector<WrenPlusGroup> groups;
        for (int k = 0; k < 16; ++k)
            groups << WrenPlusGroup{uint16_t(100 + k * 97 + start % 1000), 3, uint16_t(200 + k), 4};
        Wren_Plus::DecodePacket(wrenPlusPacket(4167, uint16_t(start), uint16_t(end), groups), packet);
    } else {
        QVector<WrenKiteGroup> groups;
        for (int k = 0; k < 16; ++k)
            groups << WrenKiteGroup{uint16_t(100 + k * 97 + start % 1000), 3};
        Wren_Kite::DecodePacket(wrenKitePacket(4167, uint16_t(start), uint16_t(end), groups), packet);
    }
    Azimuth first = Azimuth(start) / Azimuth(100), last = Azimuth(end) / Azimuth(100);
    if (first > Azimuth(360))
        first -= Azimuth(360);
    if (last > Azimuth(360))
        last -= Azimuth(360);
    const Azimuth step = (first > last ? last + Azimuth(360) - first : last - first) / Azimuth(15);
    const int channels = model == "Wren_Plus" ? 2 : 1;
    QVector<Azimuth> azimuths;
    for (int k = 0; k < 16; ++k) {
        azimuths << first + Azimuth(k) * step;
        for (int c = 0; c < channels; ++c) {
            const int distance = c == 0 ? 100 + k * 97 + start % 1000 : 200 + k;
            const QString wrong = mismatch(packet, size_t(k * channels + c), azimuths.back(), distance);
            if (!wrong.isEmpty())
                return wrong;
        }
    }
    return oneRunMismatch(packet, azimuths);
}

// Where the placement leaves its frames: the revolutions it handed on, the
// one being built, the next and its remembered azimuth. `Azimuth` is the
// precision it compares in, `Previous` how it remembers the last azimuth.
template <typename Azimuth, typename Previous>
struct Placement {
    QVector<lidar::LidarDataPoint_V4> ended;
    lidar::LidarDataPoint_V4 current, next;
    Previous previous = Previous(-1);

    void place(const DecodedPacket& packet)
    {
        lidar::decode::placeUncounted<Azimuth>(packet, current, next, previous, [this] {
            ended << current;
            current = next;
            next.clear();
        });
    }
};

// Places `packets` as the decoder marked them and again with every packet
// taken point by point; the frames and the remembered azimuth must agree.
template <typename Azimuth, typename Previous>
void comparePlacements(const QVector<DecodedPacket>& packets)
{
    Placement<Azimuth, Previous> asRuns, pointByPoint;
    for (DecodedPacket packet : packets) {
        asRuns.place(packet);
        packet.risingBelow360 = false;
        pointByPoint.place(packet);
    }
    QCOMPARE(describe(asRuns.ended), describe(pointByPoint.ended));
    QCOMPARE(describe(asRuns.current), describe(pointByPoint.current));
    QCOMPARE(describe(asRuns.next), describe(pointByPoint.next));
    QVERIFY2(std::memcmp(&asRuns.previous, &pointByPoint.previous, sizeof(Previous)) == 0,
             "the remembered azimuth differs");
}

// Two and a half turns of packets starting every `pitch` 1/100 degree from
// `first`, among them packets that cross 0 and packets past 360 degrees.
QVector<int> startCodes(int first, int pitch)
{
    QVector<int> codes;
    for (int turn = 0; turn < 3; ++turn)
        for (int code = first; code < (turn == 2 ? 18000 : 36000); code += pitch)
            codes << code;
    codes << 36500 << 37000;  // start codes above 360 degrees
    return codes;
}

}  // namespace

class PacketAnglesTest : public QObject {
    Q_OBJECT
private slots:
    void everyStartCode_data();
    void everyStartCode();
    void placedAsOneRun_data();
    void placedAsOneRun();
};

void PacketAnglesTest::everyStartCode_data()
{
    QTest::addColumn<QString>("model");
    QTest::addColumn<int>("words");  // Tern family: distance words a packet carries
    QTest::newRow("Tern") << "Tern" << 42;
    QTest::newRow("Tern_GPS") << "Tern_GPS" << 42;
    QTest::newRow("Tern_P, 42 words") << "Tern_P" << 42;
    QTest::newRow("Tern_P, 7 words") << "Tern_P" << 7;
    QTest::newRow("Tern_Plus, 42 words") << "Tern_Plus" << 42;
    QTest::newRow("Tern_Plus, 120 words") << "Tern_Plus" << 120;
    QTest::newRow("Wren_Plus") << "Wren_Plus" << 0;
    QTest::newRow("Wren_Kite") << "Wren_Kite" << 0;
}

void PacketAnglesTest::everyStartCode()
{
    QFETCH(QString, model);
    QFETCH(int, words);
    const bool wren = model.startsWith("Wren");
    // Up, then down with a stride: every code meets others in its place.
    for (int pass = 0; pass < 2; ++pass) {
        for (int n = 0; n < 65536; ++n) {
            const int code = pass == 0 ? n : (65535 - n * 4099 % 65536 + 65536) % 65536;
            QString wrong;
            if (!wren) {
                wrong = checkTern(model, code, words);
            } else {
                // A packet's usual span, one that crosses 0, and an end code
                // of its own for every start code.
                for (const int end : {(code + 800) % 65536, (code + 36000 - 50) % 65536, (code * 31 + 7) % 65536}) {
                    wrong = model == "Wren_Plus" ? checkWren<float>(model, code, end)
                                                 : checkWren<double>(model, code, end);
                    if (!wrong.isEmpty())
                        break;
                }
            }
            if (!wrong.isEmpty())
                QFAIL(qPrintable(QStringLiteral("start code %1: %2").arg(code).arg(wrong)));
        }
    }
}

void PacketAnglesTest::placedAsOneRun_data()
{
    QTest::addColumn<QString>("model");
    QTest::addColumn<int>("pitch");  // 1/100 degree from one packet's start to the next
    QTest::newRow("Tern, 15 degrees") << "Tern" << 1500;
    QTest::newRow("Tern, overlapping starts") << "Tern" << 1337;
    QTest::newRow("Tern_Plus, 120 words") << "Tern_Plus" << 1500;
    QTest::newRow("Wren_Kite") << "Wren_Kite" << 1450;
    QTest::newRow("Wren_Plus") << "Wren_Plus" << 1450;
}

void PacketAnglesTest::placedAsOneRun()
{
    QFETCH(QString, model);
    QFETCH(int, pitch);
    QVector<DecodedPacket> packets;
    for (const int code : startCodes(pitch / 3, pitch)) {
        DecodedPacket packet;
        const QVector<uint16_t> distances = wordsFor(code, model == "Tern_Plus" ? 120 : 42);
        QVector<WrenKiteGroup> kite;
        QVector<WrenPlusGroup> plus;
        for (int k = 0; k < 16; ++k) {
            // Every fifth group without a return: Wren_Plus keeps only returns.
            kite << WrenKiteGroup{uint16_t(k % 5 == 0 ? 0 : distances[k]), 3};
            plus << WrenPlusGroup{uint16_t(k % 5 == 0 ? 0 : distances[k]), 3, uint16_t(200 + k), 4};
        }
        const uint16_t end = uint16_t((code + pitch - 40) % 36000);  // a packet near 360 crosses 0
        if (model == "Tern")
            Tern::DecodePacket(ternPacket(uint16_t(code), 4167, distances), packet);
        else if (model == "Tern_Plus")
            Tern_Plus::DecodePacket(ternLengthPacket(uint16_t(code), 4167, distances, GpsStamp()), packet);
        else if (model == "Wren_Kite")
            Wren_Kite::DecodePacket(wrenKitePacket(4167, uint16_t(code), end, kite), packet);
        else
            Wren_Plus::DecodePacket(wrenPlusPacket(4167, uint16_t(code), end, plus), packet);
        packets << packet;
    }
    int runs = 0;
    for (const DecodedPacket& packet : packets)
        runs += packet.risingBelow360 ? 1 : 0;
    // Both ways of placing are met.
    QVERIFY(runs > packets.size() / 2);
    QVERIFY(runs < packets.size());
    if (model == "Wren_Kite") {
        comparePlacements<double, double>(packets);  // live
        if (!QTest::currentTestFailed())
            comparePlacements<double, int32_t>(packets);  // recorded: whole degrees remembered
    } else {
        comparePlacements<float, float>(packets);
    }
}

QTEST_GUILESS_MAIN(PacketAnglesTest)
#include "tst_packet_angles.moc"
