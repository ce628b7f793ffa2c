// The simulator against the real decoders: sessions made by the registry
// receive its packets over loopback UDP and a pseudo-terminal, decode frames
// that lie on the simulated room, read its parameters and change what it
// sends; its recordings parse like live decoding; the program itself starts,
// refuses foreign addresses and stops on a signal.

#include "FrameCollector.h"
#include "LIdarFactory.h"
#include "LoopbackLidar.h"
#include "RecordFile.h"
#include "SimRecording.h"
#include "SimulationThread.h"

#include <QNetworkDatagram>
#include <QProcess>
#include <QSerialPort>
#include <QTemporaryDir>
#include <QtTest>

#include <cmath>
#include <memory>

using namespace testing;
using namespace sim;

Q_DECLARE_METATYPE(sim::Model)
Q_DECLARE_METATYPE(sim::Transport)

namespace {

const qint64 kGpsStartMs = QDateTime(QDate(2024, 5, 20), QTime(8, 0), Qt::UTC).toMSecsSinceEpoch();

void addModelRows()
{
    QTest::addColumn<Model>("model");
    for (const QString& name : allModelNames()) {
        Model m;
        modelFromName(name, &m);
        QTest::newRow(qPrintable(name)) << m;
    }
}

// A session of one model connected to a simulator on its own thread.
class Rig {
public:
    ~Rig() { close(); }

    bool open(Model model, Transport transport, SimOptions options = SimOptions())
    {
        options.model = model;
        options.transport = transport;
        options.dataHost = "127.0.0.1";
        options.dataPort = freeUdpPort();
        options.commandPort = 0;
        session = LIdarFactory::GetInstance()->ChangeLidar(modelName(model));
        if (!session)
            return false;
        collector.reset(new FrameCollector(session.get()));
        QString error;
        if (!sim.start(options, &error)) {
            qWarning("simulator: %s", qPrintable(error));
            return false;
        }
        session->dataIp = session->lidarIp = "127.0.0.1";
        if (transport == Transport::Udp) {
            session->dataPort = options.dataPort;
            session->lidarPort = sim.engine()->commandPort();
            session->connectionType = lidar::NetworkConnection;
            emit session->SendConnectSignal(lidar::NetworkConnection);
        } else {
            session->portName = sim.engine()->ptyPath();
            session->connectionType = lidar::SerialPortConnection;
            emit session->SendConnectSignal(lidar::SerialPortConnection);
        }
        return waitFor([this] { return session->connected == 1; }, 3000);
    }

    void close()
    {
        if (session) {
            emit session->SendDisConnectSignal();
            waitFor([this] { return session->connected == 0; }, 2000);
        }
        sim.stop();
        collector.reset();
        session.reset();
    }

    bool waitForFrames(int count, int timeoutMs = 4000)
    {
        return waitFor([&] { return collector->frames.size() >= count; }, timeoutMs);
    }
    SimulatedLidar* engine() const { return sim.engine(); }

    SimulationThread sim;
    std::shared_ptr<LidarAnalysis> session;
    std::unique_ptr<FrameCollector> collector;
};

// How far a decoded azimuth may stray from where the head measured: the Tern
// decoders spread a packet's 15 degrees over its valid words only.
double azimuthWindow(Model model)
{
    return familyOf(model) == Family::Tern ? 2.0 : 0.1;
}

struct RoomCheck {
    int points = 0;    // with a distance
    int offRoom = 0;   // nearer or farther than any surface around its azimuth
    int strong = 0;    // strong echoes
    QString firstOff;
};

// Compares each point with the true range within `window` degrees of its
// azimuth (the range jumps at pillar edges and the door).
RoomCheck checkAgainstRoom(const lidar::LidarDataPoint_V4& frame, double window)
{
    static const Scene scene;
    const double bound = Scene::noiseBoundMm() + 1.0;
    RoomCheck r;
    for (auto it = frame.points.cbegin(); it != frame.points.cend(); ++it) {
        for (const lidar::LidarPoint& p : it.value()) {
            if (p.distance == 0)
                continue;
            ++r.points;
            if (p.intensity >= kStrongEcho)
                ++r.strong;
            double low = 1e9, high = -1e9;
            for (double a = p.azimuth - window; a <= p.azimuth + window + 1e-9; a += 0.05) {
                const double range = scene.trueRangeMm(a);
                low = std::min(low, range);
                high = std::max(high, range);
            }
            const double rad = p.azimuth * M_PI / 180.0;
            const bool xyAgree = std::abs(p.x - std::sin(rad) * p.distance / 1000.0) < 1e-3 &&
                                 std::abs(p.y - std::cos(rad) * p.distance / 1000.0) < 1e-3;
            if (p.distance < low - bound || p.distance > high + bound || !xyAgree) {
                if (r.firstOff.isEmpty())
                    r.firstOff = QString("id %1 azimuth %2 distance %3, room %4..%5")
                                     .arg(it.key())
                                     .arg(p.azimuth)
                                     .arg(p.distance)
                                     .arg(low)
                                     .arg(high);
                ++r.offRoom;
            }
        }
    }
    return r;
}

QList<int> expectedIds(Model model)
{
    return model == Model::Wren_Plus ? QList<int>{0, 1} : QList<int>{0};
}

// Whether the model's packets carry intensity through to the points.
bool carriesIntensity(Model model)
{
    return model == Model::Tern || familyOf(model) == Family::Wren;
}

QString simProgram()
{
    return QStringLiteral(SCANDECK_SIM_PATH);
}

}  // namespace

class SimEndToEndTest : public QObject {
    Q_OBJECT
private slots:
    void udpFramesShowTheRoom_data() { addModelRows(); }
    void udpFramesShowTheRoom();
    void parametersAndMotorCommands_data() { addModelRows(); }
    void parametersAndMotorCommands();
    void filterCommandsChangeTheScan_data();
    void filterCommandsChangeTheScan();
    void damagedLinkStillDecodes_data();
    void damagedLinkStillDecodes();
    void serialLinkShowsTheRoom_data() { addModelRows(); }
    void serialLinkShowsTheRoom();
    void recordingParsesLikeLiveDecoding_data() { addModelRows(); }
    void recordingParsesLikeLiveDecoding();
    void programRefusesBadArguments_data();
    void programRefusesBadArguments();
    void programRecordsStreamsAndStops();
    void cleanupTestCase() { LIdarFactory::GetInstance()->Shutdown(); }
};

void SimEndToEndTest::udpFramesShowTheRoom()
{
    QFETCH(Model, model);
    Rig rig;
    QVERIFY(rig.open(model, Transport::Udp));
    QVERIFY(rig.waitForFrames(2));
    const quint64 revolutionsAtStart = rig.engine()->stats().revolutions;
    QVERIFY(rig.waitForFrames(7));
    const quint64 revolutions = rig.engine()->stats().revolutions - revolutionsAtStart;
    const int frames = rig.collector->frames.size() - 2;
    // About one frame per revolution.
    QVERIFY2(std::abs(int(revolutions) - frames) <= 1, qPrintable(QString("%1 revolutions, %2 frames")
                                                                      .arg(revolutions)
                                                                      .arg(frames)));

    const int perRevolution = layoutOf(model).measurementsPerRevolution();
    int strong = 0;
    // The first frame may hold a revolution begun before the connection.
    for (int i = 1; i < rig.collector->frames.size(); ++i) {
        const lidar::LidarDataPoint_V4& f = rig.collector->frames[i];
        QCOMPARE(f.points.keys(), expectedIds(model));
        QCOMPARE(f.motorSpeed, 600);
        QVERIFY2(f.pointCount() >= size_t(perRevolution * 0.93) && f.pointCount() <= size_t(perRevolution),
                 qPrintable(QString::number(f.pointCount())));
        const RoomCheck check = checkAgainstRoom(f, azimuthWindow(model));
        QVERIFY2(check.offRoom == 0, qPrintable(check.firstOff));
        QVERIFY(check.points > perRevolution * 0.9);
        strong += check.strong;
        if (carriesCalendar(model))
            QVERIFY2(f.dateTime.startsWith(QString::number(QDate::currentDate().year())), qPrintable(f.dateTime));
        else
            QVERIFY(f.dateTime.isEmpty());
        if (model == Model::Wren_Plus)
            QVERIFY(f.ambient >= 120 && f.ambient <= 132);
    }
    // The reflective strip stands out wherever intensity reaches the points.
    QCOMPARE(strong > 0, carriesIntensity(model));
}

void SimEndToEndTest::parametersAndMotorCommands()
{
    QFETCH(Model, model);
    SimOptions options;
    options.firmware.date = QDate(2023, 12, 31);
    Rig rig;
    QVERIFY(rig.open(model, Transport::Udp, options));
    QVERIFY(rig.waitForFrames(1));

    const LidarParam param = rig.session->GetLidarParam();
    QCOMPARE(param.text, QString("2023.12.31-V2.1.5"));
    QCOMPARE(param.value1, 0);  // normal filtering
    if (model == Model::Tern_Plus || familyOf(model) == Family::Wren)
        QCOMPARE(param.value2, 10);  // ten revolutions per second
    if (model == Model::Tern_P)
        QCOMPARE(rig.session->versionNumber, 215u);

    // Motor off: the stream stops.
    QMetaObject::invokeMethod(rig.session.get(), "SetMotorFrequency", Qt::QueuedConnection, Q_ARG(quint8, 0));
    QVERIFY(waitFor([&] { return !rig.engine()->deviceState().motorRunning; }, 2000));
    QTest::qWait(100);  // what was on its way arrives
    const quint64 packets = rig.engine()->stats().packets;
    const int frames = rig.collector->frames.size();
    QTest::qWait(400);
    QCOMPARE(rig.engine()->stats().packets, packets);
    QCOMPARE(rig.collector->frames.size(), frames);

    // Motor on: frames again.
    QMetaObject::invokeMethod(rig.session.get(), "SetMotorFrequency", Qt::QueuedConnection, Q_ARG(quint8, 1));
    QVERIFY(rig.waitForFrames(frames + 3));

    // Tern_Plus and the Wren models set their rotation rate by the device
    // parameter, in revolutions per second.
    if (model == Model::Tern_Plus || familyOf(model) == Family::Wren) {
        QMetaObject::invokeMethod(rig.session.get(), "SetDeviceParam", Qt::QueuedConnection, Q_ARG(quint8, 12));
        QVERIFY(waitFor([&] { return rig.engine()->deviceState().rpm == 720.0; }, 2000));
        const int before = rig.collector->frames.size();
        QVERIFY(rig.waitForFrames(before + 3));
        QCOMPARE(rig.collector->frames.last().motorSpeed, 720);
    }
}

void SimEndToEndTest::filterCommandsChangeTheScan_data()
{
    QTest::addColumn<Model>("model");
    QTest::addColumn<int>("mode");
    QTest::addColumn<int>("engineFilter");
    for (const QString& name : allModelNames()) {
        Model m;
        modelFromName(name, &m);
        QTest::addRow("%s no filtering", qPrintable(name)) << m << 1 << int(FilterMode::None);
        // The Wren models know two modes; "within three meters" turns filtering off there.
        const FilterMode near = familyOf(m) == Family::Tern ? FilterMode::WithinThreeMetres : FilterMode::None;
        QTest::addRow("%s within three meters", qPrintable(name)) << m << 2 << int(near);
    }
}

void SimEndToEndTest::filterCommandsChangeTheScan()
{
    QFETCH(Model, model);
    QFETCH(int, mode);
    QFETCH(int, engineFilter);
    Rig rig;
    QVERIFY(rig.open(model, Transport::Udp));
    QVERIFY(rig.waitForFrames(1));

    QMetaObject::invokeMethod(rig.session.get(), "SetLidarFilter", Qt::QueuedConnection, Q_ARG(int, mode));
    QVERIFY(waitFor([&] { return int(rig.engine()->deviceState().filter) == engineFilter; }, 3000));
    // Frames on their way may hold points from before the change.
    rig.collector->frames.clear();
    QVERIFY(rig.waitForFrames(5));

    int points = 0, beyondThreeMetres = 0, offRoom = 0;
    for (int i = 2; i < rig.collector->frames.size(); ++i) {
        const lidar::LidarDataPoint_V4& f = rig.collector->frames[i];
        for (const auto& line : f.points)
            for (const lidar::LidarPoint& p : line)
                beyondThreeMetres += p.distance > 3000;
        const RoomCheck check = checkAgainstRoom(f, azimuthWindow(model));
        points += check.points;
        offRoom += check.offRoom;
    }
    QVERIFY(points > 0);
    if (engineFilter == int(FilterMode::WithinThreeMetres)) {
        QCOMPARE(beyondThreeMetres, 0);
    } else {
        // Without filtering a few stray echoes from dust lie inside the room.
        QVERIFY(beyondThreeMetres > 0);
        QVERIFY2(offRoom > 0, "no stray points without filtering");
    }
    // The lidar reports the mode it now runs in.
    const LidarParam param = rig.session->GetLidarParam();
    QCOMPARE(param.value1, engineFilter);
}

void SimEndToEndTest::damagedLinkStillDecodes_data()
{
    QTest::addColumn<Model>("model");
    QTest::addColumn<bool>("corrupt");
    for (const QString& name : allModelNames()) {
        Model m;
        modelFromName(name, &m);
        QTest::addRow("%s lossy", qPrintable(name)) << m << false;
        QTest::addRow("%s corrupt", qPrintable(name)) << m << true;
    }
}

void SimEndToEndTest::damagedLinkStillDecodes()
{
    QFETCH(Model, model);
    QFETCH(bool, corrupt);
    SimOptions options;
    if (corrupt) {
        options.faults.corrupt = 0.05;
    } else {
        options.faults.drop = 0.05;
        options.faults.junk = 0.05;
        options.faults.split = true;
    }
    Rig rig;
    QVERIFY(rig.open(model, Transport::Udp, options));
    QVERIFY(rig.waitForFrames(5, 6000));
    const SimStats stats = rig.engine()->stats();
    QVERIFY(corrupt ? stats.corrupted > 0 : (stats.dropped > 0 && stats.junk > 0));
    if (corrupt)
        return;  // flipped distance bits are believed where there is no checksum
    // Lost packets thin the frames; cut packets and junk lose nothing else.
    const int perRevolution = layoutOf(model).measurementsPerRevolution();
    for (int i = 1; i < rig.collector->frames.size(); ++i) {
        const RoomCheck check = checkAgainstRoom(rig.collector->frames[i], azimuthWindow(model));
        QVERIFY2(check.offRoom == 0, qPrintable(check.firstOff));
        QVERIFY2(check.points > perRevolution * 0.6, qPrintable(QString::number(check.points)));
    }
}

void SimEndToEndTest::serialLinkShowsTheRoom()
{
    QFETCH(Model, model);
    Rig rig;
    QVERIFY(rig.open(model, Transport::PseudoTerminal));
    QVERIFY(rig.engine()->ptyPath().startsWith("/dev/"));
    QVERIFY(rig.waitForFrames(4));
    for (int i = 1; i < rig.collector->frames.size(); ++i) {
        const lidar::LidarDataPoint_V4& f = rig.collector->frames[i];
        QCOMPARE(f.points.keys(), expectedIds(model));
        const RoomCheck check = checkAgainstRoom(f, azimuthWindow(model));
        QVERIFY2(check.offRoom == 0, qPrintable(check.firstOff));
        QVERIFY(check.points > layoutOf(model).measurementsPerRevolution() * 0.9);
    }
    // Commands and replies over the same line.
    QCOMPARE(rig.session->GetLidarParam().text, FirmwareInfo().versionText());
}

void SimEndToEndTest::recordingParsesLikeLiveDecoding()
{
    QFETCH(Model, model);
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    const QString file = dir.filePath("recording.txt");
    SimOptions options;
    options.model = model;
    options.gpsStartMs = kGpsStartMs;
    options.seed = 17;
    const int revolutions = 4;
    QString error;
    QVERIFY2(writeRecording(options, revolutions, file, &error), qPrintable(error));

    const auto parsed = LIdarFactory::GetInstance()->ParseFile(file);
    QCOMPARE(parsed.first, modelName(model));
    QCOMPARE(parsed.second.size(), revolutions);

    // The same packets, live, through a session of the model.
    QVector<QByteArray> packets = lidar::readRecordFile(file);
    packets.remove(0, model == Model::Tern_P ? 2 : 1);
    auto session = LIdarFactory::GetInstance()->ChangeLidar(modelName(model));
    QVERIFY(session);
    FrameCollector collector(session.get());
    LoopbackLidar sender;
    session->dataIp = session->lidarIp = "127.0.0.1";
    session->dataPort = freeUdpPort();
    session->lidarPort = sender.commandPort();
    emit session->SendConnectSignal(lidar::NetworkConnection);
    QVERIFY(waitFor([&] { return session->connected == 1; }));
    for (int i = 0; i < packets.size(); ++i) {
        sender.send(packets[i], session->dataPort);
        if (i % 8 == 7)
            waitFor([] { return false; }, 2);  // let the session keep up
    }
    QVERIFY(waitFor([&] { return collector.frames.size() >= revolutions; }, 5000));
    waitFor([] { return false; }, 100);
    emit session->SendDisConnectSignal();

    // The first revolution may meet what an earlier session left behind;
    // the later ones must match point for point.
    const QVector<lidar::LidarDataPoint_V4>& live = collector.frames;
    const QVector<lidar::LidarDataPoint_V4>& offline = parsed.second;
    for (int back = 1; back <= revolutions - 1; ++back) {
        const lidar::LidarDataPoint_V4& a = live[live.size() - back];
        const lidar::LidarDataPoint_V4& b = offline[offline.size() - back];
        QCOMPARE(a.motorSpeed, b.motorSpeed);
        QCOMPARE(a.ambient, b.ambient);
        QCOMPARE(a.dateTime, b.dateTime);
        QCOMPARE(a.points.keys(), b.points.keys());
        QCOMPARE(a.points.keys(), expectedIds(model));
        for (int id : a.points.keys()) {
            const auto& pa = a.points[id];
            const auto& pb = b.points[id];
            QCOMPARE(pa.size(), pb.size());
            for (size_t i = 0; i < pa.size(); ++i) {
                QCOMPARE(pa[i].azimuth, pb[i].azimuth);
                QCOMPARE(pa[i].distance, pb[i].distance);
                QCOMPARE(pa[i].intensity, pb[i].intensity);
                QCOMPARE(pa[i].x, pb[i].x);
                QCOMPARE(pa[i].y, pb[i].y);
                QCOMPARE(pa[i].timestamp, pb[i].timestamp);
            }
        }
        const RoomCheck check = checkAgainstRoom(b, azimuthWindow(model));
        QVERIFY2(check.offRoom == 0, qPrintable(check.firstOff));
    }
}

void SimEndToEndTest::programRefusesBadArguments_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("message");
    QTest::newRow("lidar address") << QStringList{"--udp", "192.168.1.200:2368"} << "loopback";
    QTest::newRow("public address") << QStringList{"--udp", "8.8.8.8:53"} << "loopback";
    QTest::newRow("unknown model") << QStringList{"--model", "Kestrel"} << "unknown model";
    QTest::newRow("bad option") << QStringList{"--loud"} << "loud";
}

void SimEndToEndTest::programRefusesBadArguments()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, message);
    QProcess p;
    p.start(simProgram(), arguments + QStringList{"--seconds", "3"});
    QVERIFY(p.waitForFinished(5000));
    QCOMPARE(p.exitStatus(), QProcess::NormalExit);
    QVERIFY(p.exitCode() != 0);
    const QString err = QString::fromLocal8Bit(p.readAllStandardError());
    QVERIFY2(err.contains(message), qPrintable(err));
}

void SimEndToEndTest::programRecordsStreamsAndStops()
{
    QTemporaryDir dir;
    QVERIFY(dir.isValid());

    // Record mode: a file and nothing else.
    const QString file = dir.filePath("kite.txt");
    QProcess record;
    record.start(simProgram(), {"--model", "Wren_Kite", "--record", file, "--revolutions", "2"});
    QVERIFY(record.waitForFinished(10000));
    QCOMPARE(record.exitCode(), 0);
    const QVector<QByteArray> elements = lidar::readRecordFile(file);
    QCOMPARE(elements.size(), 1 + 2 * 45 + 1);
    QCOMPARE(elements[0], QByteArray("Wren_Kite"));

    // UDP for a set time: datagrams arrive, status lines go to stderr, it ends by itself.
    QUdpSocket receiver;
    QVERIFY(receiver.bind(QHostAddress(QHostAddress::LocalHost), 0));
    QProcess udp;
    udp.start(simProgram(), {"--model", "Tern_GPS", "--udp", QString("127.0.0.1:%1").arg(receiver.localPort()),
                             "--command-port", "0", "--seconds", "1.5"});
    QVERIFY(waitFor([&] { return receiver.hasPendingDatagrams(); }, 5000));
    QCOMPARE(receiver.receiveDatagram().data().size(), 102);
    QVERIFY(udp.waitForFinished(10000));
    QCOMPARE(udp.exitCode(), 0);
    QVERIFY(QString::fromLocal8Bit(udp.readAllStandardError()).contains("revolutions"));

    // A pseudo-terminal: its path first on stdout, packets on it, SIGTERM ends it cleanly.
    QProcess pty;
    pty.start(simProgram(), {"--model", "Wren_Plus", "--pty", "--seconds", "30"});
    QVERIFY(waitFor([&] { return pty.canReadLine(); }, 5000));
    const QString path = QString::fromLocal8Bit(pty.readLine()).trimmed();
    QVERIFY2(path.startsWith("/dev/"), qPrintable(path));
    QSerialPort port(path);
    QVERIFY(port.open(QIODevice::ReadWrite));
    QByteArray bytes;
    QVERIFY(waitFor([&] {
        bytes += port.readAll();
        return bytes.size() > 3 * 108;
    }, 5000));
    QVERIFY(bytes.contains(QByteArray("\xA5\x5A\x6C", 3)));
    port.close();
    pty.terminate();
    QVERIFY(pty.waitForFinished(5000));
    QCOMPARE(pty.exitStatus(), QProcess::NormalExit);
    QCOMPARE(pty.exitCode(), 0);
}

QTEST_GUILESS_MAIN(SimEndToEndTest)
#include "tst_sim_end_to_end.moc"
