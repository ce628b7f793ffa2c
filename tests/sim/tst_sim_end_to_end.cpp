// The simulator against the real decoders: sessions made by the registry
// receive its packets over loopback UDP (clean or damaged) and a
// pseudo-terminal, decode frames that lie on the simulated room and change
// what it sends by command; the program's recordings parse like live
// decoding; on a pseudo-terminal it names the device and stops on SIGTERM.

#include "FrameCollector.h"
#include "LIdarFactory.h"
#include "LoopbackLidar.h"
#include "RecordFile.h"
#include "SimulationThread.h"

#include <QProcess>
#include <QSerialPort>
#include <QTemporaryDir>
#include <QtTest>

#include <cmath>

using namespace testing;
using namespace sim;
using Frame = lidar::LidarDataPoint_V4;

Q_DECLARE_METATYPE(sim::Model)

namespace {

const QString kProgram = QStringLiteral(SCANDECK_SIM_PATH);
// The registered models the simulator imitates, in the registry's order.
QVector<Model> simulatedModels()
{
    QVector<Model> models;
    for (const QString& name : LIdarFactory::GetInstance()->ModelNames()) {
        Model model;
        if (modelFromName(name, &model))
            models << model;
    }
    return models;
}
// 25 revolutions a second: a whole period in the speed word, and quick tests.
constexpr int kRpm = 1500;

// A session of one model, made by the registry, connected to a simulator on its own thread.
struct Rig {
    ~Rig()
    {
        if (session)
            emit session->SendDisConnectSignal();
        waitFor([this] { return !session || session->connected == 0; }, 2000);
        sim.stop();
    }
    bool open(Model model, Transport transport, SimOptions options = SimOptions())
    {
        options.model = model;
        options.transport = transport;
        options.rpm = kRpm;
        options.dataPort = freeUdpPort();
        options.commandPort = 0;
        return sim.start(options) && connect(model, transport, options.dataPort, sim.engine()->commandPort());
    }
    bool connect(Model model, Transport transport, quint16 dataPort, quint16 commandPort)
    {
        session = LIdarFactory::GetInstance()->ChangeLidar(modelName(model));
        collector.reset(new FrameCollector(session.get()));
        session->dataIp = session->lidarIp = "127.0.0.1";
        session->dataPort = dataPort;
        session->lidarPort = commandPort;
        session->portName = sim.engine() ? sim.engine()->ptyPath() : QString();
        const auto type = transport == Transport::Udp ? lidar::NetworkConnection : lidar::SerialPortConnection;
        session->connectionType = type;
        emit session->SendConnectSignal(type);
        return waitFor([this] { return session->connected == 1; }, 3000);
    }
    bool waitForFrames(int count) { return waitFor([&] { return collector->frames.size() >= count; }); }

    SimulationThread sim;
    std::shared_ptr<LidarAnalysis> session;
    std::unique_ptr<FrameCollector> collector;
};

// Points off the room, beyond three metres and with strong echoes; the fewest in one frame.
struct Survey {
    int offRoom = 0, beyondThreeMetres = 0, strong = 0, thinnest = INT_MAX;
    QString firstOff;  // the first point off the room, or a frame with the wrong channel IDs or calendar
};

// Checks the frames from `first` on against the room: each point within the
// noise of the true range somewhere a little either side of its azimuth (the
// Tern decoders spread a packet's 15 degrees over its valid words only).
Survey survey(const QVector<Frame>& frames, Model model, int first = 1)
{
    static const Scene scene;
    const double window = familyOf(model) == Family::Tern ? 2.0 : 0.1;
    const double bound = Scene::noiseBoundMm() + 1.0;
    Survey s;
    for (int i = first; i < frames.size(); ++i) {
        const Frame& f = frames[i];
        const QList<int> ids = model == Model::Wren_Plus ? QList<int>{0, 1} : QList<int>{0};
        if (f.points.keys() != ids || f.dateTime.isEmpty() == carriesCalendar(model))
            s.firstOff = QString("frame %1: wrong ids or calendar '%2'").arg(i).arg(f.dateTime);
        int points = 0;
        for (auto it = f.points.cbegin(); it != f.points.cend(); ++it) {
            for (const lidar::LidarPoint& p : it.value()) {
                if (p.distance == 0)
                    continue;
                ++points;
                s.strong += p.intensity >= kStrongEcho;
                s.beyondThreeMetres += p.distance > 3000;
                double low = 1e9, high = -1e9;
                for (double a = p.azimuth - window; a <= p.azimuth + window + 1e-9; a += 0.05) {
                    low = std::min(low, scene.trueRangeMm(a));
                    high = std::max(high, scene.trueRangeMm(a));
                }
                const double rad = p.azimuth * M_PI / 180.0;
                if (p.distance >= low - bound && p.distance <= high + bound &&
                    std::abs(p.x - std::sin(rad) * p.distance / 1000.0) < 1e-3 &&
                    std::abs(p.y - std::cos(rad) * p.distance / 1000.0) < 1e-3)
                    continue;
                if (s.offRoom++ == 0 && s.firstOff.isEmpty())
                    s.firstOff = QString::asprintf("%.2f: %d mm, room %.0f..%.0f", p.azimuth, p.distance, low, high);
            }
        }
        s.thinnest = std::min(s.thinnest, points);
    }
    return s;
}

// A frame as text, so that two frames compare field by field with a readable difference.
QStringList describe(const Frame& f)
{
    QStringList out{QString("%1 %2 %3").arg(f.motorSpeed).arg(f.ambient).arg(f.dateTime)};
    for (auto it = f.points.cbegin(); it != f.points.cend(); ++it)
        for (const lidar::LidarPoint& p : it.value())
            out << QString("%1: %2 %3 %4 %5 %6 %7").arg(it.key()).arg(p.azimuth).arg(p.distance).arg(p.intensity)
                       .arg(p.x).arg(p.y).arg(p.timestamp);
    return out;
}

}  // namespace

class SimEndToEndTest : public QObject {
    Q_OBJECT
private slots:
    void sessionFollowsTheSimulator_data();
    void sessionFollowsTheSimulator();
    void recordingParsesLikeLiveDecoding_data();
    void recordingParsesLikeLiveDecoding();
    void programOnAPseudoTerminal();
    void cleanupTestCase() { LIdarFactory::GetInstance()->Shutdown(); }
};

void SimEndToEndTest::sessionFollowsTheSimulator_data()
{
    QTest::addColumn<Model>("model");
    QTest::addColumn<QString>("link");
    for (Model m : simulatedModels())
        for (const char* link : {"udp", "lossy", "corrupt"})
            QTest::addRow("%s %s", qPrintable(modelName(m)), link) << m << QString(link);
    QTest::newRow("Tern pty") << Model::Tern << "pty";
    QTest::newRow("Wren_Plus pty") << Model::Wren_Plus << "pty";
}

void SimEndToEndTest::sessionFollowsTheSimulator()
{
    QFETCH(Model, model);
    QFETCH(QString, link);
    SimOptions options;
    options.faults.drop = options.faults.junk = link == "lossy" ? 0.05 : 0.0;
    options.faults.split = link == "lossy";
    options.faults.corrupt = link == "corrupt" ? 0.05 : 0.0;
    Rig rig;
    QVERIFY(rig.open(model, link == "pty" ? Transport::PseudoTerminal : Transport::Udp, options));
    LidarAnalysis* session = rig.session.get();
    QVector<Frame>& frames = rig.collector->frames;
    QVERIFY(rig.waitForFrames(2));
    const quint64 revolutionsAtStart = rig.sim.engine()->stats().revolutions;
    QVERIFY(rig.waitForFrames(link == "udp" || link == "pty" ? 8 : 5));
    const SimStats stats = rig.sim.engine()->stats();
    const int revolutions = int(stats.revolutions - revolutionsAtStart);
    if (link == "corrupt") {  // flipped distance bits are believed where there is no checksum
        QVERIFY(stats.corrupted > 0);
        return;
    }

    // The first frame may hold a revolution begun before the connection. Lost
    // packets thin the frames; cut packets and junk lose nothing else.
    const Survey room = survey(frames, model);
    QVERIFY2(room.firstOff.isEmpty(), qPrintable(room.firstOff));
    const int perRevolution = layoutOf(model).measurementsPerRevolution();
    QVERIFY2(room.thinnest > perRevolution * (link == "lossy" ? 0.6 : 0.9), qPrintable(QString::number(room.thinnest)));
    if (link == "lossy") {
        QVERIFY(stats.dropped > 0 && stats.junk > 0);
        return;
    }
    QVERIFY2(std::abs(revolutions - (frames.size() - 2)) <= 2, qPrintable(QString::number(revolutions)));
    // The reflective strip stands out wherever intensity reaches the points.
    QCOMPARE(room.strong > 0, model == Model::Tern || familyOf(model) == Family::Wren);
    QCOMPARE(frames.last().motorSpeed, kRpm);

    // "Within three meters" (2) is a Tern mode; the Wren models know only on and off and stop filtering.
    // Frames on their way may predate a change: wait until the newest shows it.
    const auto newestShows = [&](const std::function<bool(const Survey&)>& test) {
        return waitFor([&] { return !frames.isEmpty() && test(survey(frames, model, frames.size() - 1)); });
    };
    for (int mode : {2, 1}) {
        const bool near = mode == 2 && familyOf(model) == Family::Tern;
        QMetaObject::invokeMethod(session, "SetLidarFilter", Qt::QueuedConnection, Q_ARG(int, mode));
        if (near) {
            QVERIFY(newestShows([](const Survey& s) { return s.thinnest > 0 && s.beyondThreeMetres == 0; }));
            frames.clear();
            QVERIFY(rig.waitForFrames(3));
            QCOMPARE(survey(frames, model, 0).beyondThreeMetres, 0);
        } else {  // unfiltered, stray echoes from dust lie inside the room
            QVERIFY(newestShows([](const Survey& s) { return s.offRoom > 0 && s.beyondThreeMetres > 0; }));
        }
    }
    // The lidar reports its firmware and the mode it now runs in.
    const LidarParam param = session->GetLidarParam();
    QCOMPARE(param.text, QString("2024.5.20-V2.1.5"));
    QCOMPARE(param.value1, int(FilterMode::None));

    // Motor off: the stream stops (once what was on its way has arrived); on: frames again.
    QMetaObject::invokeMethod(session, "SetMotorFrequency", Qt::QueuedConnection, Q_ARG(quint8, 0));
    QVERIFY(waitFor([&] { return !rig.sim.engine()->deviceState().motorRunning; }, 2000));
    const quint64 packets = rig.sim.engine()->stats().packets;
    int before = -1;
    for (int tries = 0; before != frames.size() && tries < 20; ++tries, QTest::qWait(100))
        before = frames.size();
    QCOMPARE(frames.size(), before);
    QCOMPARE(rig.sim.engine()->stats().packets, packets);
    QMetaObject::invokeMethod(session, "SetMotorFrequency", Qt::QueuedConnection, Q_ARG(quint8, 1));
    QVERIFY(rig.waitForFrames(before + 3));

    // Tern_Plus and the Wren models set their rotation rate in revolutions per second.
    if (model == Model::Tern_Plus || familyOf(model) == Family::Wren) {
        QMetaObject::invokeMethod(session, "SetDeviceParam", Qt::QueuedConnection, Q_ARG(quint8, 20));
        QVERIFY(waitFor([&] { return frames.last().motorSpeed == 1200; }));
    }
}

void SimEndToEndTest::recordingParsesLikeLiveDecoding_data()
{
    QTest::addColumn<Model>("model");
    for (Model m : simulatedModels())
        QTest::newRow(qPrintable(modelName(m))) << m;
}

void SimEndToEndTest::recordingParsesLikeLiveDecoding()
{
    QFETCH(Model, model);
    QTemporaryDir dir;
    const QString file = dir.filePath("recording.txt");
    const int revolutions = 4;
    QProcess record;
    record.start(kProgram, {"--model", modelName(model), "--record", file, "--revolutions", "4"});
    QVERIFY(record.waitForFinished(10000) && record.exitCode() == 0);
    const auto parsed = LIdarFactory::GetInstance()->ParseFile(file);
    QCOMPARE(parsed.first, modelName(model));
    QCOMPARE(parsed.second.size(), revolutions);

    // The same packets, live, through a session of the model.
    QVector<QByteArray> packets = lidar::readRecordFile(file);
    packets.remove(0, 1 + lidar::recordPrefixElements(modelName(model)));  // the header elements
    LoopbackLidar sender;
    Rig rig;
    QVERIFY(rig.connect(model, Transport::Udp, freeUdpPort(), sender.commandPort()));
    for (int i = 0; i < packets.size(); ++i) {
        sender.send(packets[i], rig.session->dataPort);
        if (i % 8 == 7)
            QTest::qWait(2);  // let the session keep up
    }
    QVERIFY(rig.waitForFrames(revolutions));
    QTest::qWait(100);  // a frame left over from an earlier session comes first, not last
    // The first revolution may meet what an earlier session left behind; the later ones must match.
    const QVector<Frame>& live = rig.collector->frames;
    for (int back = 1; back < revolutions; ++back)
        QCOMPARE(describe(live[live.size() - back]), describe(parsed.second[revolutions - back]));
}

void SimEndToEndTest::programOnAPseudoTerminal()
{
    // Its path first on stdout, packets on it, SIGTERM ends it cleanly.
    QProcess pty;
    pty.start(kProgram, {"--model", "Wren_Plus", "--pty", "--seconds", "30"});
    QVERIFY(waitFor([&] { return pty.canReadLine(); }));
    QSerialPort port(QString::fromLocal8Bit(pty.readLine()).trimmed());
    QVERIFY2(port.open(QIODevice::ReadWrite), qPrintable(port.portName()));
    QByteArray bytes;
    QVERIFY(waitFor([&] { return (bytes += port.readAll()).contains(QByteArray("\xA5\x5A\x6C", 3)); }));
    pty.terminate();
    QVERIFY(pty.waitForFinished(5000));
    QVERIFY2(pty.exitStatus() == QProcess::NormalExit && pty.exitCode() == 0, qPrintable(pty.readAllStandardError()));
}

QTEST_GUILESS_MAIN(SimEndToEndTest)
#include "tst_sim_end_to_end.moc"
