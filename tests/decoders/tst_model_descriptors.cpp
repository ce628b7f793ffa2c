// Each registered model's descriptor held against what its decoder does with
// packets, replies and commands written here, and against a revolution of
// the simulator's packets, which are written from the packet layouts
// independently of the decoders: a descriptor that misplaces a field or
// misstates a feature fails here, before the command-line tools, the
// simulator or the stream accounting act on it.

#include "DecoderHarness.h"
#include "PacketBuilders.h"
#include "SimDevice.h"
#include "SimScanGenerator.h"

#include <QSet>
#include <QtTest>
#include <cmath>

using namespace testing;

namespace {

const lidar::ModelDescriptor& described(const QString& model)
{
    return *LIdarFactory::GetInstance()->FindModel(model);
}

void addModelRows()
{
    QTest::addColumn<QString>("model");
    for (const QString& name : LIdarFactory::GetInstance()->ModelNames())
        QTest::newRow(qPrintable(name)) << name;
}

int u8(const QByteArray& b, int at)
{
    return static_cast<uint8_t>(b.at(at));
}
int be16(const QByteArray& b, int at)
{
    return (u8(b, at) << 8) | u8(b, at + 1);
}

// A parameters reply as the descriptor lays it out: its size, the reply
// class, firmware date 2024-05-20 and version 1.2.3 from its version offset,
// FA FB last.
QByteArray describedReply(const lidar::ModelDescriptor& d)
{
    QByteArray reply(d.packets.replySize, '\0');
    reply[0] = '\xA5';
    reply[1] = '\x5A';
    reply[2] = char(d.commands.readParamClass);
    const char fields[] = {24, 5, 20, 1, 2, 3};
    for (int i = 0; i < 6; ++i)
        reply[d.packets.replyVersionAt + i] = fields[i];
    reply[reply.size() - 2] = '\xFA';
    reply[reply.size() - 1] = '\xFB';
    return reply;
}

// The commands with code `code` (byte 184) a session sent.
QList<QByteArray> sentWithCode(const QSignalSpy& sent, int code)
{
    QList<QByteArray> commands;
    for (const QByteArray& command : spied<QByteArray>(sent))
        if (command.size() == 188 && u8(command, 184) == code)
            commands << command;
    return commands;
}

}  // namespace

class ModelDescriptorsTest : public QObject {
    Q_OBJECT
private slots:
    void packetsAndGpsTimesAreWhereDescribed_data() { addModelRows(); }
    void packetsAndGpsTimesAreWhereDescribed();
    void repliesAreWhereDescribed_data() { addModelRows(); }
    void repliesAreWhereDescribed();
    void commandsAreAsDescribed_data() { addModelRows(); }
    void commandsAreAsDescribed();
    void simulatedPacketsTileARevolution_data() { addModelRows(); }
    void simulatedPacketsTileARevolution();
};

// The recorded packets are data packets of the described size and type,
// and every GPS time the session reports is the calendar found where the
// descriptor says a packet keeps it.
void ModelDescriptorsTest::packetsAndGpsTimesAreWhereDescribed()
{
    QFETCH(QString, model);
    const lidar::ModelDescriptor& d = described(model);
    std::unique_ptr<LidarAnalysis> session = makeSession(model);
    QVERIFY(session);
    session->versionNumber = 215;
    QSignalSpy times(session.get(), &LidarAnalysis::SendGPSTimeData);
    const QVector<QByteArray> packets = revolutionPackets(model, 1);
    for (const QByteArray& packet : packets)
        feed(*session, packet);

    QCOMPARE(times.count(), d.gps.stamped ? packets.size() : 0);
    const QList<lidar::GPSTime> stamps = spied<lidar::GPSTime>(times);
    for (int i = 0; i < packets.size(); ++i) {
        const QByteArray& packet = packets[i];
        QVERIFY(lidar::isRecordedDataPacket(d, packet));
        if (d.packets.framing != lidar::PacketFraming::LengthField)
            QCOMPARE(packet.size(), d.packets.dataSize);
        if (d.packets.framing == lidar::PacketFraming::TypedChecksum)
            QCOMPARE(u8(packet, 2), int(d.packets.packetType));
        const int at = lidar::calendarOffset(d, packet);
        if (!d.gps.stamped) {
            QCOMPARE(at, -1);
            continue;
        }
        const lidar::GPSTime& t = stamps[i];
        const QList<int> calendar{2000 + u8(packet, at), u8(packet, at + 1),  u8(packet, at + 2),
                                  u8(packet, at + 3),    u8(packet, at + 4),  u8(packet, at + 5),
                                  be16(packet, at + 6),  be16(packet, at + 8)};
        QCOMPARE(calendar, (QList<int>{t.year, t.month, t.day, t.hour, t.minute, t.second, t.millisecond,
                                       t.microsecond}));
    }
    // A reply is no data packet and has no calendar.
    QCOMPARE(lidar::calendarOffset(d, describedReply(d)), -1);
}

void ModelDescriptorsTest::repliesAreWhereDescribed()
{
    QFETCH(QString, model);
    std::unique_ptr<LidarAnalysis> session = makeSession(model);
    QVERIFY(session);
    feed(*session, describedReply(described(model)));
    QCOMPARE(int(session->replyReceived.load()), 1);
    QCOMPARE(session->param.text, QString("2024.5.20-V1.2.3"));
}

// The class bytes, the filter modes the filter command tells apart and
// what SetDeviceParam sends. Nothing answers: each filter call sends its
// packet up to three times, then the frequency twice.
void ModelDescriptorsTest::commandsAreAsDescribed()
{
    QFETCH(QString, model);
    const lidar::CommandSet& commands = described(model).commands;
    std::unique_ptr<LidarAnalysis> session = makeSession(model);
    QVERIFY(session);
    QSignalSpy sent(session.get(), &LidarAnalysis::SendDataToLidarSignal);
    QCOMPARE(u8(session->ReadParamCommand(), 2), int(commands.readParamClass));

    QSet<int> filterCodes;
    for (int mode = 0; mode < 3; ++mode)
        session->SetLidarFilter(mode);
    for (const QByteArray& filter : sentWithCode(sent, 6)) {
        QCOMPARE(u8(filter, 2), int(commands.setFilterClass));
        filterCodes << u8(filter, 181);
    }
    QCOMPARE(filterCodes.size(), commands.filterModes);

    sent.clear();
    session->SetDeviceParam(10);
    const QList<QByteArray> deviceParams = sentWithCode(sent, 10);
    QCOMPARE(deviceParams.isEmpty(), commands.deviceParam == lidar::DeviceParam::None);
    for (const QByteArray& command : deviceParams) {
        QCOMPARE(u8(command, 2), 0x55);
        if (commands.deviceParam == lidar::DeviceParam::MotorRpm)
            QCOMPARE(be16(command, 141), 600);
        else
            QCOMPARE(u8(command, 172), 10);
    }
}

// One revolution of simulated packets: each starts where the one before it
// ended by the descriptor's start angle and span, the spans add up to the
// whole circle, and each span says how many packets a revolution holds.
void ModelDescriptorsTest::simulatedPacketsTileARevolution()
{
    QFETCH(QString, model);
    const lidar::ModelDescriptor& d = described(model);
    sim::Model simulated;
    if (!sim::modelFromName(model, &simulated))
        QSKIP("the simulator does not imitate this model");
    sim::ScanGenerator generator(simulated, 7, 0, 215);
    const sim::DeviceState state = sim::initialDeviceState(600, sim::FilterMode::Normal);
    const int perRevolution = generator.layout().packetsPerRevolution;

    double covered = 0.0, expectedStart = 0.0;
    for (int k = 0; k < perRevolution; ++k) {
        const QByteArray packet = generator.nextPacket(state);
        QVERIFY(lidar::isRecordedDataPacket(d, packet));
        const double start = lidar::packetStartAngle(d, packet);
        const double span = lidar::packetSpanAngle(d, packet);
        // Angles travel in hundredths of a degree.
        QVERIFY2(std::abs(start - expectedStart) < 0.011,
                 qPrintable(QStringLiteral("packet %1 at %2").arg(k).arg(start)));
        QCOMPARE(qRound(360.0 / span), perRevolution);
        covered += span;
        expectedStart = start + span;
    }
    QVERIFY2(std::abs(covered - 360.0) < 0.05, qPrintable(QString::number(covered)));
}

QTEST_GUILESS_MAIN(ModelDescriptorsTest)
#include "tst_model_descriptors.moc"
