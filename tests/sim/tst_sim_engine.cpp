// The simulator's parts on their own: packet fields byte for byte, and a
// command line that sends nowhere but loopback.

#include "SimCommandLine.h"
#include "SimPacketEncoders.h"
#include "SimScanGenerator.h"

#include <QDateTime>
#include <QtTest>
#include <numeric>

using namespace sim;

namespace {

int u8(const QByteArray& b, int at) { return static_cast<uint8_t>(b[at]); }
int be16(const QByteArray& b, int at) { return (u8(b, at) << 8) | u8(b, at + 1); }

// Where a model's packet keeps its fields (byte offsets) and how it writes distances.
struct Fields {
    int version;  // firmware version number (Tern_P's words change at 215)
    int length, startAt, periodAt, calendarAt /* -1: none */, wordAt /* the first measurement */;
    int strongWord, noneWord;  // 1234 mm at intensity 240 (Wren: distance << 8 | intensity); no echo
};

const qint64 kStartUs = QDateTime(QDate(2024, 5, 20), QTime(12, 34, 56), Qt::UTC).toMSecsSinceEpoch() * 1000;

}  // namespace

Q_DECLARE_METATYPE(sim::Model)
Q_DECLARE_METATYPE(Fields)

class SimEngineTest : public QObject {
    Q_OBJECT
private slots:
    void packetFields_data();
    void packetFields();
    void commandLineSendsOnlyToLoopback_data();
    void commandLineSendsOnlyToLoopback();
};

void SimEngineTest::packetFields_data()
{
    QTest::addColumn<Model>("model");
    QTest::addColumn<Fields>("f");
    QTest::newRow("Tern") << Model::Tern << Fields{0, 92, 2, 4, -1, 6, 0x84D2, 0xFFFF};
    QTest::newRow("Tern_P 214") << Model::Tern_P << Fields{214, 104, 4, 6, 92, 8, 0x84D2, 0xFFFF};
    QTest::newRow("Tern_P 215") << Model::Tern_P << Fields{215, 104, 4, 6, 92, 8, 0x04D2, 0x0000};
    QTest::newRow("Tern_GPS") << Model::Tern_GPS << Fields{0, 102, 2, 4, 90, 6, 0x84D2, 0xFFFF};
    QTest::newRow("Tern_Plus") << Model::Tern_Plus << Fields{0, 104, 4, 6, 92, 8, 0x04D2, 0x0000};
    QTest::newRow("Wren_Plus") << Model::Wren_Plus << Fields{0, 108, 5, 3, -1, 7, 0x04D2F0, 0};
    QTest::newRow("Wren_Kite") << Model::Wren_Kite << Fields{0, 58, 5, 3, -1, 7, 0x04D2F0, 0};
}

void SimEngineTest::packetFields()
{
    QFETCH(Model, model);
    QFETCH(Fields, f);
    const bool tern = familyOf(model) == Family::Tern;

    // One revolution and the first packet of the next, at 600 rpm and then 720.
    ScanGenerator gen(model, 7, kStartUs, f.version);
    const PacketLayout layout = gen.layout();
    DeviceState state = initialDeviceState(600.0, FilterMode::Normal);
    const double intervalUs = gen.packetIntervalUs(600.0);
    QCOMPARE(intervalUs * layout.packetsPerRevolution, 100000.0);
    for (int i = 0; i <= layout.packetsPerRevolution; ++i) {
        if (i == layout.packetsPerRevolution)
            state.rpm = 720.0;
        const QByteArray p = gen.nextPacket(state);
        QCOMPARE(p.size(), f.length);
        QCOMPARE(be16(p, 0), 0xA55A);
        const int start = (i % layout.packetsPerRevolution) * int(layout.packetSpan * 100);
        QCOMPARE(be16(p, f.startAt), start);
        QCOMPARE(be16(p, f.periodAt), i == layout.packetsPerRevolution ? 3472 : 4166);  // 2500000 / rpm
        if (tern) {
            // The trailer and nowhere else, or the host would cut the packet short.
            QCOMPARE(p.indexOf(QByteArray("\xFA\xFB", 2)), f.length - 2);
            if (f.length == 104)
                QCOMPARE(be16(p, 2), 104);
        } else {
            QCOMPARE(u8(p, 2), f.length == 108 ? 0x6C : 0x3A);
            QCOMPARE(be16(p, f.length - 3), start + 750);  // end azimuth: 16 samples half a degree apart
            const int sum = std::accumulate(p.begin(), p.end() - 1, 0, [](int a, char c) { return a + uint8_t(c); });
            QCOMPARE(u8(p, f.length - 1), sum % 256);  // checksum
        }
        if (f.calendarAt >= 0) {
            // The GPS clock advances by the real packet interval.
            const int c = f.calendarAt;
            const QDateTime t(QDate(u8(p, c) + 2000, u8(p, c + 1), u8(p, c + 2)),
                              QTime(u8(p, c + 3), u8(p, c + 4), u8(p, c + 5), be16(p, c + 6)), Qt::UTC);
            QVERIFY(t.isValid() && be16(p, c + 8) < 1000);
            const qint64 us = t.toMSecsSinceEpoch() * 1000 + be16(p, c + 8);
            QVERIFY2(std::abs(us - (kStartUs + qint64(i * intervalUs))) <= 1, qPrintable(QString::number(us)));
        }
    }

    // Distance words: a strong echo, none, a weak one (below the flag's threshold), then the rest.
    PacketContent content;
    content.measurements = {{1234, 240}, {0, 0}, {1234, 199}};
    content.measurements.resize(size_t(layout.measurementsPerPacket()), Measurement{500, 10});
    const QByteArray p = encodePacket(model, content, f.version);
    auto word = [&](int k) {
        return tern ? be16(p, f.wordAt + 2 * k) : (be16(p, f.wordAt + 3 * k) << 8) | u8(p, f.wordAt + 3 * k + 2);
    };
    QCOMPARE(word(0), f.strongWord);
    QCOMPARE(word(1), f.noneWord);
    QCOMPARE(word(2), tern ? 0x04D2 : 0x04D2C7);
    QCOMPARE(word(3), tern ? 500 : 500 << 8 | 10);
}

void SimEngineTest::commandLineSendsOnlyToLoopback_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<bool>("accepted");
    QTest::newRow("loopback range") << "127.3.4.5:4000" << true;
    QTest::newRow("localhost") << "localhost:4000" << true;
    QTest::newRow("lidar default address") << "192.168.1.200:2368" << false;
    QTest::newRow("any address") << "0.0.0.0:2368" << false;
    QTest::newRow("broadcast") << "255.255.255.255:2368" << false;
    QTest::newRow("host name") << "example.com:2368" << false;
}

void SimEngineTest::commandLineSendsOnlyToLoopback()
{
    QFETCH(QString, address);
    QFETCH(bool, accepted);
    SimCommandLine line;
    QString message;
    const ParseOutcome outcome = parseCommandLine({"scandeck-sim", "--udp", address}, &line, &message);
    QCOMPARE(outcome == ParseOutcome::Run, accepted);
    QVERIFY2(accepted ? message.isEmpty() : message.contains("loopback"), qPrintable(message));
    // The engine refuses a foreign address even when the command line is bypassed.
    line.options.dataHost = "10.1.2.3";
    QVERIFY(validateOptions(line.options).contains("loopback"));
}

QTEST_GUILESS_MAIN(SimEngineTest)
#include "tst_sim_engine.moc"
