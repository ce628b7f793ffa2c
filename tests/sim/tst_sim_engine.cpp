// The simulator's parts on their own: packet fields byte for byte, the
// scene, command answers, fault injection, the command line and record mode.

#include "SimCommandLine.h"
#include "SimCommandResponder.h"
#include "SimFaultInjector.h"
#include "SimPacketEncoders.h"
#include "SimRecording.h"
#include "SimScanGenerator.h"

#include <QDateTime>
#include <QtTest>

using namespace sim;

Q_DECLARE_METATYPE(sim::Model)
Q_DECLARE_METATYPE(sim::FilterMode)
Q_DECLARE_METATYPE(sim::ParseOutcome)

namespace {

int u8(const QByteArray& b, int offset)
{
    return static_cast<uint8_t>(b[offset]);
}
int be16(const QByteArray& b, int offset)
{
    return (u8(b, offset) << 8) | u8(b, offset + 1);
}

// 2024-05-20 12:34:56.000 UTC
const qint64 kStartMs = QDateTime(QDate(2024, 5, 20), QTime(12, 34, 56), Qt::UTC).toMSecsSinceEpoch();

QByteArray command(int commandClass, int code, int parameter, std::initializer_list<std::pair<int, int>> extra = {})
{
    QByteArray c(kCommandLength, '\0');
    c[0] = char(0xA5);
    c[1] = char(0x5A);
    c[2] = char(commandClass);
    c[184] = char(code);
    c[185] = char(parameter);
    for (const auto& e : extra)
        c[e.first] = char(e.second);
    c[186] = char(0xFA);
    c[187] = char(0xFB);
    return c;
}

void addModelRows()
{
    for (const QString& name : allModelNames()) {
        Model m;
        modelFromName(name, &m);
        QTest::newRow(qPrintable(name)) << m;
    }
}

}  // namespace

class SimEngineTest : public QObject {
    Q_OBJECT
private slots:
    void packetFields_data();
    void packetFields();
    void wordEncodings_data();
    void wordEncodings();
    void sceneMeasurements();
    void parametersReply_data();
    void parametersReply();
    void commandsChangeTheDevice_data();
    void commandsChangeTheDevice();
    void commandsFromAByteStream();
    void faultInjection();
    void commandLine_data();
    void commandLine();
    void recordingElements_data();
    void recordingElements();
};

void SimEngineTest::packetFields_data()
{
    QTest::addColumn<Model>("model");
    QTest::addColumn<int>("length");
    QTest::addColumn<int>("startAt");   // start azimuth offset
    QTest::addColumn<int>("periodAt");  // speed word offset
    QTest::addColumn<int>("calendarAt");  // -1: none
    QTest::newRow("Tern") << Model::Tern << 92 << 2 << 4 << -1;
    QTest::newRow("Tern_P") << Model::Tern_P << 104 << 4 << 6 << 92;
    QTest::newRow("Tern_GPS") << Model::Tern_GPS << 102 << 2 << 4 << 90;
    QTest::newRow("Tern_Plus") << Model::Tern_Plus << 104 << 4 << 6 << 92;
    QTest::newRow("Wren_Plus") << Model::Wren_Plus << 108 << 5 << 3 << -1;
    QTest::newRow("Wren_Kite") << Model::Wren_Kite << 58 << 5 << 3 << -1;
}

void SimEngineTest::packetFields()
{
    QFETCH(Model, model);
    QFETCH(int, length);
    QFETCH(int, startAt);
    QFETCH(int, periodAt);
    QFETCH(int, calendarAt);

    ScanGenerator gen(model, 7, kStartMs * 1000, 215);
    const PacketLayout layout = gen.layout();
    DeviceState state = initialDeviceState(600.0, FilterMode::Normal);
    const double intervalUs = gen.packetIntervalUs(600.0);
    QCOMPARE(intervalUs * layout.packetsPerRevolution, 100000.0);  // 10 revolutions a second

    for (int i = 0; i <= layout.packetsPerRevolution; ++i) {
        if (i == layout.packetsPerRevolution)
            state.rpm = 720.0;  // a new rate shows in the next packet's speed word
        const QByteArray p = gen.nextPacket(state);
        QCOMPARE(p.size(), length);
        QCOMPARE(u8(p, 0), 0xA5);
        QCOMPARE(u8(p, 1), 0x5A);
        const int start = (i % layout.packetsPerRevolution) * int(layout.packetSpan * 100);
        QCOMPARE(be16(p, startAt), start);
        QCOMPARE(be16(p, periodAt), i == layout.packetsPerRevolution ? 3472 : 4166);
        QCOMPARE(2500000 / be16(p, periodAt), int(state.rpm));

        if (familyOf(model) == Family::Tern) {
            QCOMPARE(u8(p, length - 2), 0xFA);
            QCOMPARE(u8(p, length - 1), 0xFB);
            // No trailer pattern inside, or the host would cut the packet short.
            QCOMPARE(p.indexOf(QByteArray("\xFA\xFB", 2)), length - 2);
            if (length == 104)
                QCOMPARE(be16(p, 2), 104);
        } else {
            QCOMPARE(u8(p, 2), model == Model::Wren_Plus ? 0x6C : 0x3A);
            QCOMPARE(be16(p, length - 3), start + 750);  // end azimuth: 16 samples half a degree apart
            int sum = 0;
            for (int b = 0; b < length - 1; ++b)
                sum += u8(p, b);
            QCOMPARE(u8(p, length - 1), sum % 256);
        }
        if (calendarAt >= 0) {
            // The GPS clock advances by the real packet interval.
            const QDateTime t(QDate(u8(p, calendarAt) + 2000, u8(p, calendarAt + 1), u8(p, calendarAt + 2)),
                              QTime(u8(p, calendarAt + 3), u8(p, calendarAt + 4), u8(p, calendarAt + 5),
                                    be16(p, calendarAt + 6)),
                              Qt::UTC);
            QVERIFY(t.isValid() && be16(p, calendarAt + 8) < 1000);
            const qint64 us = t.toMSecsSinceEpoch() * 1000 + be16(p, calendarAt + 8);
            QVERIFY2(std::abs(us - (kStartMs * 1000 + qint64(i * intervalUs))) <= 1, qPrintable(QString::number(us)));
        }
    }
    QCOMPARE(gen.revolutions(), qint64(1));
}

void SimEngineTest::wordEncodings_data()
{
    QTest::addColumn<Model>("model");
    QTest::addColumn<int>("version");
    QTest::addColumn<int>("distance");
    QTest::addColumn<int>("intensity");
    QTest::addColumn<int>("word");  // Tern family: the first distance word; Wren: distance << 8 | intensity

    QTest::newRow("Tern strong echo") << Model::Tern << 0 << 1234 << 240 << 0x84D2;
    QTest::newRow("Tern weak echo") << Model::Tern << 0 << 1234 << 199 << 0x04D2;
    QTest::newRow("Tern none") << Model::Tern << 0 << 0 << 0 << 0xFFFF;
    QTest::newRow("Tern_P 214 flag") << Model::Tern_P << 214 << 1234 << 240 << 0x84D2;
    QTest::newRow("Tern_P 214 none") << Model::Tern_P << 214 << 0 << 0 << 0xFFFF;
    QTest::newRow("Tern_P 215 whole word") << Model::Tern_P << 215 << 1234 << 240 << 0x04D2;
    QTest::newRow("Tern_P 215 none") << Model::Tern_P << 215 << 0 << 0 << 0x0000;
    QTest::newRow("Tern_GPS flag") << Model::Tern_GPS << 0 << 1234 << 240 << 0x84D2;
    QTest::newRow("Tern_GPS none") << Model::Tern_GPS << 0 << 0 << 0 << 0xFFFF;
    QTest::newRow("Tern_Plus never bit 15") << Model::Tern_Plus << 0 << 1234 << 240 << 0x04D2;
    QTest::newRow("Tern_Plus none") << Model::Tern_Plus << 0 << 0 << 0 << 0x0000;
    QTest::newRow("Wren_Plus") << Model::Wren_Plus << 0 << 1234 << 240 << 0x04D2F0;
    QTest::newRow("Wren_Kite none") << Model::Wren_Kite << 0 << 0 << 0 << 0;
}

void SimEngineTest::wordEncodings()
{
    QFETCH(Model, model);
    QFETCH(int, version);
    QFETCH(int, distance);
    QFETCH(int, intensity);
    QFETCH(int, word);

    const PacketLayout layout = layoutOf(model);
    PacketContent c;
    c.measurements.assign(size_t(layout.measurementsPerPacket()), Measurement{500, 10});
    c.measurements[0] = Measurement{uint16_t(distance), uint8_t(intensity)};
    const QByteArray p = encodePacket(model, c, version);
    switch (model) {
    case Model::Tern:
    case Model::Tern_GPS:
        QCOMPARE(be16(p, 6), word);
        QCOMPARE(be16(p, 8), 500);
        break;
    case Model::Tern_P:
    case Model::Tern_Plus:
        QCOMPARE(be16(p, 8), word);
        QCOMPARE(be16(p, 10), 500);
        break;
    default:
        QCOMPARE((be16(p, 7) << 8) | u8(p, 9), word);
        QCOMPARE(be16(p, 10), 500);  // the next measurement follows at once
        QCOMPARE(u8(p, 12), 10);
        break;
    }
}

void SimEngineTest::sceneMeasurements()
{
    const Scene scene;
    Random random(3);
    const double bound = Scene::noiseBoundMm();
    int measured = 0, missing = 0, strong = 0, unfilteredStrays = 0;
    for (int i = 0; i < 3600; ++i) {
        const double az = i / 10.0;
        const double truth = scene.trueRangeMm(az);
        QVERIFY2(truth > 1000.0 && truth < Scene::kMaxRangeM * 1000.0, qPrintable(QString::number(az)));

        const Measurement normal = scene.measure(az, FilterMode::Normal, random);
        if (normal.distance == 0) {
            ++missing;
        } else {
            ++measured;
            QVERIFY2(std::abs(normal.distance - truth) <= bound + 0.5, qPrintable(QString::number(az)));
            if (normal.intensity >= kStrongEcho)
                ++strong;
            Hit hit;
            scene.cast(az, &hit);
            QCOMPARE(normal.intensity >= kStrongEcho, hit.surface == Surface::Reflector);
        }
        const Measurement near = scene.measure(az, FilterMode::WithinThreeMetres, random);
        QVERIFY(near.distance <= Scene::kNearFilterMm);
        const Measurement none = scene.measure(az, FilterMode::None, random);
        if (none.distance != 0 && none.distance < truth - bound - 1)
            ++unfilteredStrays;
    }
    QVERIFY2(missing > 0 && missing < 3600 / 25, qPrintable(QString::number(missing)));
    QVERIFY(strong > 20);  // the reflective tape spans about 13 degrees
    QVERIFY(unfilteredStrays > 5);

    // The same seed gives the same measurements.
    Random a(11), b(11);
    for (int i = 0; i < 100; ++i) {
        const Measurement ma = scene.measure(i * 3.6, FilterMode::Normal, a);
        const Measurement mb = scene.measure(i * 3.6, FilterMode::Normal, b);
        QCOMPARE(ma.distance, mb.distance);
        QCOMPARE(ma.intensity, mb.intensity);
    }
}

void SimEngineTest::parametersReply_data()
{
    QTest::addColumn<Model>("model");
    QTest::addColumn<int>("readClass");
    QTest::addColumn<int>("length");
    QTest::addColumn<int>("versionAt");
    QTest::addColumn<int>("filterByte");
    QTest::newRow("Tern") << Model::Tern << 0x01 << 186 << 175 << 11;
    QTest::newRow("Tern_P") << Model::Tern_P << 0x55 << 188 << 173 << 11;
    QTest::newRow("Tern_GPS") << Model::Tern_GPS << 0x55 << 188 << 175 << 11;
    QTest::newRow("Tern_Plus") << Model::Tern_Plus << 0x55 << 188 << 173 << 11;
    QTest::newRow("Wren_Plus") << Model::Wren_Plus << 0x55 << 188 << 173 << 1;
    QTest::newRow("Wren_Kite") << Model::Wren_Kite << 0x55 << 188 << 173 << 1;
}

void SimEngineTest::parametersReply()
{
    QFETCH(Model, model);
    QFETCH(int, readClass);
    QFETCH(int, length);
    QFETCH(int, versionAt);
    QFETCH(int, filterByte);

    FirmwareInfo firmware;
    firmware.date = QDate(2023, 11, 7);
    firmware.major = 3;
    firmware.minor = 0;
    firmware.patch = 9;
    QCOMPARE(firmware.versionText(), QString("2023.11.7-V3.0.9"));
    DeviceState state = initialDeviceState(600.0, FilterMode::Normal);

    const CommandResult r = handleCommand(model, command(readClass, 0x03, 1), state, firmware);
    QVERIFY(r.accepted);
    QCOMPARE(r.kind, CommandKind::ReadParameters);
    const QByteArray& p = r.reply;
    QCOMPARE(p.size(), length);
    QCOMPARE(be16(p, 0), 0xA55A);
    QCOMPARE(p.indexOf(QByteArray("\xFA\xFB", 2)), length - 2);
    const int expected[6] = {23, 11, 7, 3, 0, 9};
    for (int i = 0; i < 6; ++i)
        QCOMPARE(u8(p, versionAt + i), expected[i]);
    QCOMPARE(u8(p, 181), filterByte);
    if (model == Model::Tern_Plus)
        QCOMPARE(be16(p, 141), 600);  // motor speed setting in rpm
    if (familyOf(model) == Family::Wren)
        QCOMPARE(u8(p, 172), 10);  // revolutions per second
    if (model == Model::Tern_P || model == Model::Tern_Plus)
        QVERIFY(be16(p, 2) != length);  // must not pass for a data packet

    // The other family's class byte is not this model's command: no answer.
    const int otherClass = readClass == 0x01 ? 0x55 : 0x01;
    const CommandResult wrong = handleCommand(model, command(otherClass, 0x03, 1), state, firmware);
    QVERIFY(!wrong.accepted);
    QVERIFY(wrong.reply.isEmpty());
}

void SimEngineTest::commandsChangeTheDevice_data()
{
    QTest::addColumn<Model>("model");
    addModelRows();
}

void SimEngineTest::commandsChangeTheDevice()
{
    QFETCH(Model, model);
    const FirmwareInfo firmware;
    DeviceState state = initialDeviceState(600.0, FilterMode::Normal);
    const bool tern = familyOf(model) == Family::Tern;

    // Motor off and on again; never answered.
    CommandResult r = handleCommand(model, command(0x55, 0x01, 0), state, firmware);
    QVERIFY(r.accepted && r.reply.isEmpty() && !state.motorRunning);
    r = handleCommand(model, command(0x55, 0x01, 1), state, firmware);
    QVERIFY(r.accepted && r.reply.isEmpty() && state.motorRunning);

    // Filter: the reply reports the new state.
    const int filterClass = model == Model::Tern ? 0x55 : 0x01;
    r = handleCommand(model, command(filterClass, 0x06, 1, {{181, tern ? 10 : 0}}), state, firmware);
    QCOMPARE(state.filter, FilterMode::None);
    QCOMPARE(u8(r.reply, 181), tern ? 10 : 0);
    if (tern) {
        handleCommand(model, command(filterClass, 0x06, 1, {{181, 12}}), state, firmware);
        QCOMPARE(state.filter, FilterMode::WithinThreeMetres);
    }
    r = handleCommand(model, command(filterClass, 0x06, 1, {{181, 0x7F}}), state, firmware);
    QVERIFY(r.accepted);  // an unknown code is answered but changes nothing
    QVERIFY(state.filter != FilterMode::Normal);

    // The device parameter: Tern_Plus rpm at 141-142, Wren revolutions per second at 172.
    const QByteArray setParam = model == Model::Tern_Plus ? command(0x55, 0x0A, 0, {{141, 0x02}, {142, 0xD0}})
                                                          : command(0x55, 0x0A, 0, {{172, 12}});
    r = handleCommand(model, setParam, state, firmware);
    if (model == Model::Tern_Plus || !tern) {
        QVERIFY(r.accepted);
        QCOMPARE(state.rpm, 720.0);
        if (model == Model::Tern_Plus)
            QCOMPARE(be16(r.reply, 141), 720);
        else
            QCOMPARE(u8(r.reply, 172), 12);
        // Out of the motor's range: kept (Wren echoes it) but the rate stays.
        const QByteArray tooFast = model == Model::Tern_Plus ? command(0x55, 0x0A, 0, {{141, 0xFF}, {142, 0xC4}})
                                                             : command(0x55, 0x0A, 0, {{172, 200}});
        r = handleCommand(model, tooFast, state, firmware);
        QCOMPARE(state.rpm, 720.0);
        if (!tern)
            QCOMPARE(u8(r.reply, 172), 200);
    } else {
        QVERIFY(!r.accepted);
        QCOMPARE(state.rpm, 600.0);
    }
}

void SimEngineTest::commandsFromAByteStream()
{
    const QByteArray a = command(0x55, 0x03, 1);
    const QByteArray b = command(0x01, 0x06, 1, {{181, 1}});
    QByteArray broken = command(0x55, 0x01, 0);
    broken[187] = 0;  // no trailer: not a command
    QByteArray stream = QByteArray("\x00\x13\xA5", 3) + broken + a + QByteArray("junk") + b;

    QByteArray buffer;
    QVector<QByteArray> found;
    // Arriving a few bytes at a time, as a serial line delivers them.
    for (int i = 0; i < stream.size(); i += 7) {
        buffer.append(stream.mid(i, 7));
        found += takeCommands(buffer);
        QVERIFY(buffer.size() < 2 * kCommandLength);
    }
    QCOMPARE(found.size(), 2);
    QCOMPARE(found[0], a);
    QCOMPARE(found[1], b);
    QVERIFY(buffer.isEmpty());
}

void SimEngineTest::faultInjection()
{
    ScanGenerator gen(Model::Wren_Kite, 1, kStartMs * 1000, 215);
    const DeviceState state;
    QVector<QByteArray> packets;
    for (int i = 0; i < 400; ++i)
        packets.append(gen.nextPacket(state));
    QByteArray original;
    for (const QByteArray& p : packets)
        original += p;

    // Splitting keeps the byte stream, but no chunk is a whole packet.
    FaultOptions split;
    split.split = true;
    FaultInjector splitter(split, 5);
    QByteArray joined;
    int aligned = 0;
    for (const QByteArray& p : packets) {
        for (const QByteArray& chunk : splitter.apply(p)) {
            joined += chunk;
            aligned += chunk == p;
        }
    }
    joined += splitter.flush();
    QCOMPARE(joined, original);
    QCOMPARE(aligned, 0);

    // Dropping, corrupting and junk at the rates asked for.
    FaultOptions faults;
    faults.drop = 0.25;
    faults.corrupt = 0.25;
    faults.junk = 0.25;
    FaultInjector injector(faults, 9);
    int sent = 0, damaged = 0, extra = 0;
    for (const QByteArray& p : packets) {
        const QVector<QByteArray> chunks = injector.apply(p);
        if (chunks.isEmpty())
            continue;
        ++sent;
        const QByteArray& body = chunks.last();
        QCOMPARE(body.size(), p.size());
        int differing = 0;
        for (int i = 0; i < p.size(); ++i)
            differing += body[i] != p[i];
        QVERIFY(differing <= 3);
        damaged += differing > 0;
        if (chunks.size() == 2) {
            ++extra;
            QVERIFY(chunks[0].size() >= 1 && chunks[0].size() <= 24);
        }
    }
    const FaultCounters& c = injector.counters();
    QCOMPARE(int(c.dropped), packets.size() - sent);
    QCOMPARE(int(c.corrupted), damaged);
    QCOMPARE(int(c.junk), extra);
    for (uint64_t n : {c.dropped, c.corrupted, c.junk})
        QVERIFY2(n > 60 && n < 140, qPrintable(QString::number(n)));
}

void SimEngineTest::commandLine_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<ParseOutcome>("outcome");
    QTest::addColumn<QString>("messagePart");

    QTest::newRow("defaults") << QStringList{} << ParseOutcome::Run << "";
    QTest::newRow("help") << QStringList{"--help"} << ParseOutcome::Help << "--corrupt";
    QTest::newRow("loopback range") << QStringList{"--udp", "127.3.4.5:4000"} << ParseOutcome::Run << "";
    QTest::newRow("localhost") << QStringList{"--udp", "localhost:4000"} << ParseOutcome::Run << "";
    QTest::newRow("ipv6 loopback") << QStringList{"--udp", "[::1]:4000"} << ParseOutcome::Run << "";
    QTest::newRow("lidar default address") << QStringList{"--udp", "192.168.1.200:2368"} << ParseOutcome::Error
                                           << "loopback";
    QTest::newRow("any address") << QStringList{"--udp", "0.0.0.0:2368"} << ParseOutcome::Error << "loopback";
    QTest::newRow("broadcast") << QStringList{"--udp", "255.255.255.255:2368"} << ParseOutcome::Error << "loopback";
    QTest::newRow("host name") << QStringList{"--udp", "example.com:2368"} << ParseOutcome::Error << "loopback";
    QTest::newRow("no port") << QStringList{"--udp", "127.0.0.1"} << ParseOutcome::Error << "host:port";
    QTest::newRow("model case") << QStringList{"--model", "tern"} << ParseOutcome::Error << "unknown model";
    QTest::newRow("probability") << QStringList{"--drop", "1.5"} << ParseOutcome::Error << "--drop";
    QTest::newRow("rpm") << QStringList{"--rpm", "5"} << ParseOutcome::Error << "--rpm";
    QTest::newRow("version") << QStringList{"--firmware-version", "2.1"} << ParseOutcome::Error << "a.b.c";
    QTest::newRow("revolutions") << QStringList{"--record", "x", "--revolutions", "0"} << ParseOutcome::Error
                                 << "--revolutions";
    QTest::newRow("stray argument") << QStringList{"Tern"} << ParseOutcome::Error << "unexpected";
    QTest::newRow("everything") << QStringList{"--model",   "Wren_Kite", "--udp",   "127.0.0.1:5000",
                                               "--command-port", "0",    "--rpm",   "900",
                                               "--seed",    "42",        "--filter", "near",
                                               "--firmware-version", "2.1.4", "--firmware-date", "2022-01-02",
                                               "--drop",    "0.1",       "--corrupt", "0.2",
                                               "--junk",    "0.3",       "--split", "--fast",
                                               "--seconds", "2.5",       "--gps-start", "2024-05-20T01:02:03"}
                                << ParseOutcome::Run << "";
}

void SimEngineTest::commandLine()
{
    QFETCH(QStringList, arguments);
    QFETCH(ParseOutcome, outcome);
    QFETCH(QString, messagePart);

    SimCommandLine line;
    QString message;
    QCOMPARE(parseCommandLine(QStringList{"scandeck-sim"} + arguments, &line, &message), outcome);
    QVERIFY2(message.contains(messagePart), qPrintable(message));
    if (outcome != ParseOutcome::Run)
        return;
    QVERIFY(validateOptions(line.options).isEmpty());
    if (arguments.isEmpty()) {
        QCOMPARE(line.options.model, Model::Tern);
        QCOMPARE(line.options.dataHost, QString("127.0.0.1"));
        QCOMPARE(line.options.dataPort, quint16(2368));
        QCOMPARE(line.options.commandPort, quint16(2369));
        QCOMPARE(line.options.rpm, 600.0);
        QCOMPARE(line.options.firmware.versionNumber(), 215);
        QVERIFY(!line.options.faults.any());
    }
    if (arguments.contains("--split")) {
        const SimOptions& o = line.options;
        QCOMPARE(o.model, Model::Wren_Kite);
        QCOMPARE(o.dataPort, quint16(5000));
        QCOMPARE(o.commandPort, quint16(0));
        QCOMPARE(o.rpm, 900.0);
        QCOMPARE(o.seed, uint64_t(42));
        QCOMPARE(o.filter, FilterMode::WithinThreeMetres);
        QCOMPARE(o.firmware.versionText(), QString("2022.1.2-V2.1.4"));
        QCOMPARE(o.faults.drop, 0.1);
        QCOMPARE(o.faults.corrupt, 0.2);
        QCOMPARE(o.faults.junk, 0.3);
        QVERIFY(o.faults.split && o.fast);
        QCOMPARE(line.seconds, 2.5);
        QCOMPARE(QDateTime::fromMSecsSinceEpoch(o.gpsStartMs, Qt::UTC).toString(Qt::ISODate),
                 QString("2024-05-20T01:02:03Z"));
    }
    // The engine refuses a non-loopback address even when the command line is bypassed.
    SimOptions direct = line.options;
    direct.dataHost = "10.1.2.3";
    QVERIFY(validateOptions(direct).contains("loopback"));
}

void SimEngineTest::recordingElements_data()
{
    QTest::addColumn<Model>("model");
    addModelRows();
}

void SimEngineTest::recordingElements()
{
    QFETCH(Model, model);
    SimOptions options;
    options.model = model;
    options.gpsStartMs = kStartMs;
    const QVector<QByteArray> elements = sim::recordingElements(options, 3);
    const int header = model == Model::Tern_P ? 2 : 1;
    QCOMPARE(elements.size(), header + 3 * layoutOf(model).packetsPerRevolution + 1);
    QCOMPARE(QString::fromLatin1(elements[0]), modelName(model));
    if (model == Model::Tern_P)
        QCOMPARE(elements[1], QByteArray("215"));
    // The same options give the same packets: the recording is reproducible.
    QCOMPARE(sim::recordingElements(options, 3), elements);
    options.seed = 2;
    QVERIFY(sim::recordingElements(options, 3) != elements);
}

QTEST_GUILESS_MAIN(SimEngineTest)
#include "tst_sim_engine.moc"
