// The main window against a simulated lidar: each model over UDP and each
// family over a pseudo-terminal, with the device panel its settings give it,
// the link status, pausing (Space) while recording, the recording played back
// against what was shown live, the automatic connection (failed, cancelled,
// found), and the demo mode in the window (falling silent) and as the program
// itself.

#include "AutoConnector.h"
#include "DemoLidar.h"
#include "LinkStatusReadout.h"
#include "OffinePlayWidget.h"
#include "tst_scandeck_support.h"

#include <QProcess>
#include <QProgressDialog>
#include <QTimer>

using namespace testing;

namespace {

void settle(int ms)
{
    waitFor([] { return false; }, ms);
}

int framesSeen(const FrameCollector& collector)
{
    QCoreApplication::processEvents();
    return collector.frames.size();
}

// Logs each attempt of the automatic connection and refuses it.
struct AttemptLog : IConnectLiDAR {
    QStringList attempts;
    bool ConnectNetworkLidar(const QString& model, const NetworkParam& p) override
    {
        attempts << QStringLiteral("net %1 %2").arg(model).arg(p.lidarPort);
        return false;
    }
    bool ConnectSerialLidar(const QString& model, const SerialPortParam& p) override
    {
        attempts << QStringLiteral("serial %1 %2 %3").arg(model, p.portName).arg(p.baudRate);
        return false;
    }
};

}  // namespace

class LiveEndToEndTest : public QObject {
    Q_OBJECT
private slots:
    void cleanup() { quietRegistry(); }

    void connectRecordDisconnect_data();
    void connectRecordDisconnect();
    void autoConnectTriesEveryModelAndPortTwice();
    void autoConnectFailsIsCancelledAndFinds();
    void demoMode();
};

void LiveEndToEndTest::connectRecordDisconnect_data()
{
    QTest::addColumn<QString>("model");
    QTest::addColumn<bool>("serial");
    QTest::addColumn<QString>("panel");  // the device panel the shipped settings give it
    // The simulator runs with normal filtering at 10 revolutions a second.
    const QString ternFilter = " motor+ filter+[Normal filtering|No filtering|Within three meters]@Normal filtering ";
    const QString fixed = "frequency-[Cannot be set]@Cannot be set";
    const QString speeds = "frequency+[5|6|7|8|9|10|11|12|13|14|15]@10";
    const QString wren = "gps- motor+ filter+[Normal filtering|No filtering]@Normal filtering " + speeds;
    QTest::newRow("Tern") << "Tern" << false << "gps-" + ternFilter + fixed;
    QTest::newRow("Tern_P") << "Tern_P" << false << "gps+" + ternFilter + fixed;
    QTest::newRow("Tern_GPS") << "Tern_GPS" << false << "gps+" + ternFilter + fixed;
    QTest::newRow("Tern_Plus") << "Tern_Plus" << false << "gps+" + ternFilter + speeds;
    QTest::newRow("Wren_Plus") << "Wren_Plus" << false << wren;
    QTest::newRow("Wren_Kite") << "Wren_Kite" << false << wren;
    QTest::newRow("Tern_GPS serial") << "Tern_GPS" << true << "gps+" + ternFilter + fixed;
    QTest::newRow("Wren_Kite serial") << "Wren_Kite" << true << wren;
}

// One connection as a user clicks through it; over UDP it records, and the
// recording then plays in the window what was shown live.
void LiveEndToEndTest::connectRecordDisconnect()
{
    QFETCH(QString, model);
    QFETCH(bool, serial);
    QFETCH(QString, panel);
    const bool pause = model == QStringLiteral("Tern");
    ScratchWorkingDir dir;
    useShippedSettings();
    MessageRecorder messages;
    QTemporaryDir files;
    SimulatedLidarRig lidar;
    QVERIFY(lidar.start(model, serial ? sim::Transport::PseudoTerminal : sim::Transport::Udp));
    auto window = openWindow();
    ScanDeck* w = window.get();
    auto* player = control<OffinePlayWidget>(w, "offline");
    const QString path = files.filePath(QStringLiteral("live.txt"));
    player->setOpenFileHook([path](const QString&, const QString&, const QString&) { return path; });
    w->setSaveFileHook([path](QWidget*, const QString&, const QString&, const QString&) { return path; });

    QVERIFY(connectWindow(*w, model, lidar, serial));
    QCOMPARE(w->windowTitle(), model);
    QCOMPARE(liveControlStates(w).section(' ', 0, 5), kConnectedControls.section(' ', 0, 5));
    QCOMPARE(devicePanelState(w), panel);
    QCOMPARE(w->session()->GetConnectionType(), int(serial ? lidar::SerialPortConnection : lidar::NetworkConnection));
    FrameCollector live(w->session().get());
    QVERIFY(waitFor([&] { return live.frames.size() >= 2 && w->frameCloud().size() > 300; }));
    auto* link = w->findChild<LinkStatusReadout*>();
    QVERIFY(link->isVisible());
    QVERIFY2(waitFor([&] { return link->status().framesPerSecond() > 0; }), qPrintable(link->text()));
    QVERIFY2(link->text().contains(serial ? " kB/s, " : " packets/s, "), qPrintable(link->text()));

    if (!serial) {
        click(w, "btn_save_data");
        const int atStart = framesSeen(live);
        QVERIFY(waitFor([&] { return framesSeen(live) >= atStart + 12; }, 10000));
        if (pause) {
            // Paused (Space), nothing more is shown, but the recording goes on.
            w->activateWindow();
            QVERIFY(QTest::qWaitForWindowActive(w));
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
            QVERIFY(!w->isPlaying());
            settle(150);  // frames sent before the pause may still be queued
            const int atPause = framesSeen(live);
            settle(800);
            QCOMPARE(framesSeen(live), atPause);
            click(w, "btn_play_pause");
            QVERIFY(waitFor([&] { return framesSeen(live) >= atPause + 12; }, 10000));
        }
        click(w, "btn_save_data");  // the file is complete; the message comes from the session's thread
        QVERIFY(waitFor([&] { return !messages.texts.isEmpty(); }));
        QCOMPARE(messages.texts, QStringList{"File saved: File save path:" + path});
        // While connected the player does not open files.
        clickPlayer(player, "btn_open_file");
        QVERIFY(!player->isLoaded());
        QCOMPARE(messages.texts.value(1), QStringLiteral("information: Please disconnect first!"));
    }

    // Disconnect: the start state again, and no more frames.
    click(w, "btn_disconnect");
    QCOMPARE(liveControlStates(w), kStartControls);
    QVERIFY(!link->isVisible());
    QVERIFY(!w->isLidarConnected() && !w->viewer().contains("m_pointCloud"));
    settle(150);
    const int afterDisconnect = framesSeen(live);
    settle(300);
    QCOMPARE(framesSeen(live), afterDisconnect);
    if (serial)
        return;

    // Play the recording back and read every frame the player shows.
    QVector<Frame> played;
    connect(player, &OffinePlayWidget::SendLidarDataSignal, w, [&played](const Frame& f) { played.append(f); });
    clickPlayer(player, "btn_open_file");
    QVERIFY(player->isLoaded());
    played.clear();  // loading showed frame 1 at position 0: Next then shows 1, 2, ... count
    for (int i = 0; i < player->frameCount(); ++i)
        clickPlayer(player, "btn_next");
    QCOMPARE(played.size(), player->frameCount());

    // The first and last recorded frames are parts of a revolution; every
    // frame in between was shown live in the same order, none missing,
    // except those recorded while paused.
    const QVector<Frame> inner = played.mid(1, played.size() - 2);
    int k = 0;
    while (k < live.frames.size() && !sameFrame(live.frames[k], inner.value(0)))
        ++k;
    QVERIFY2(k < live.frames.size(), "the second recorded frame was never shown live");
    int unseen = 0;
    for (const Frame& frame : inner) {
        if (k < live.frames.size() && sameFrame(live.frames[k], frame))
            ++k;
        else
            ++unseen;
    }
    QVERIFY2(pause ? unseen >= 5 : unseen == 0, qPrintable(QString::number(unseen)));
    QVERIFY(sameFrame(live.frames[k - 1], inner.last()));
}

void LiveEndToEndTest::autoConnectFailsIsCancelledAndFinds()
{
    ScratchWorkingDir dir;
    MessageRecorder messages;
    writeSettingsFile(QStringLiteral("LiDAR IP=127.0.0.1\nData IP=127.0.0.1\nLiDAR Port=%1\nData Port=%2\n"
                                     "[connect_type]\na=Tern\nb=Wren_Kite\n[Tern]\ndefault baud rate=230400\n")
                          .arg(freeUdpPort())
                          .arg(freeUdpPort()));
    PseudoTerminal idle;  // a port that never says anything
    auto w = openWindow();
    w->setSerialPortLister([port = idle.slaveName()] { return QStringList{port}; });

    click(w.get(), "btn_auto_connect");  // 2 passes x 2 models x (network + 1 port)
    QCOMPARE(messages.texts,
             QStringList{"information: Automatic connection failed, please connect the radar manually!"});
    QCOMPARE(liveControlStates(w.get()), kStartControls);

    // Cancel while an attempt waits: it ends without a word.
    messages.texts.clear();
    bool cancelled = false;
    QTimer::singleShot(300, w.get(), [&] {
        if (auto* progress = w->findChild<QProgressDialog*>())
            progress->cancel(), cancelled = true;
    });
    click(w.get(), "btn_auto_connect");
    QVERIFY(cancelled);
    QVERIFY(messages.texts.isEmpty());
    QCOMPARE(liveControlStates(w.get()), kStartControls);

    // Tried in name order: Tern and Tern_P come first and find nothing.
    SimulatedLidarRig lidar;
    QVERIFY(lidar.start(QStringLiteral("Wren_Plus"), sim::Transport::Udp));
    writeSettingsFile(QStringLiteral("LiDAR IP=127.0.0.1\nData IP=127.0.0.1\nLiDAR Port=%1\nData Port=%2\n"
                                     "[connect_type]\na=Wren_Plus\nb=Tern_P\nc=Tern\n")
                          .arg(lidar.network.lidarPort)
                          .arg(lidar.network.dataPort));
    w->setSerialPortLister([] { return QStringList(); });
    // The decision rests on 200 ms waits: a loaded machine gets a few goes.
    for (int attempt = 0; attempt < 3 && !w->isLidarConnected(); ++attempt) {
        messages.texts.clear();
        click(w.get(), "btn_auto_connect");
    }
    QVERIFY(w->isLidarConnected() && messages.texts.isEmpty());
    QCOMPARE(w->windowTitle(), QStringLiteral("Wren_Plus"));
    QCOMPARE(liveControlStates(w.get()), kConnectedControls);
    QVERIFY(!w->findChild<QProgressDialog*>());
}

void LiveEndToEndTest::demoMode()
{
    {
        ScratchWorkingDir dir;
        MessageRecorder messages;
        auto w = openWindow();
        DemoLidar demo;
        QString error;
        QVERIFY2(demo.start(QStringLiteral("Wren_Plus"), *w, &error), qPrintable(error));
        QCOMPARE(w->windowTitle(), QStringLiteral("Wren_Plus"));
        QCOMPARE(w->session()->lidarIp + w->session()->dataIp, QStringLiteral("127.0.0.1127.0.0.1"));
        QVERIFY(waitFor([&] { return w->frameCloud().size() > 300; }));
        QVERIFY(messages.texts.isEmpty());
        // The lidar falls silent: the link status says so within about a second.
        auto* link = w->findChild<LinkStatusReadout*>();
        demo.stop();
        QVERIFY2(waitFor([&] { return link->status().state() == LinkStatus::State::Silent; }, 3000),
                 qPrintable(link->text()));
        QVERIFY(link->text().startsWith(QStringLiteral("No data from the lidar for ")));
    }
    quietRegistry();

    // The program itself: SIGTERM closes the window, which stops the
    // simulator and the session's thread before the process ends.
    QProcess viewer;
    viewer.setProcessChannelMode(QProcess::MergedChannels);
    viewer.start(QStringLiteral("./scandeck"), {QStringLiteral("--demo"), QStringLiteral("Tern")});
    QVERIFY2(viewer.waitForStarted(10000), qPrintable(viewer.errorString()));
    QVERIFY(!viewer.waitForFinished(4000));
    viewer.terminate();
    QVERIFY2(viewer.waitForFinished(15000), "the viewer did not end after SIGTERM");
    QCOMPARE(viewer.exitStatus(), QProcess::NormalExit);
    QCOMPARE(viewer.exitCode(), 0);
}

void LiveEndToEndTest::autoConnectTriesEveryModelAndPortTwice()
{
    QWidget parent;
    AutoConnectPlan plan;
    plan.network.lidarIp = plan.network.dataIp = QStringLiteral("127.0.0.1");
    plan.baudRates = {{QStringLiteral("Wren_Plus"), 460800}, {QStringLiteral("Tern"), 230400}};
    AttemptLog log;
    int listings = 0;
    AutoConnector connector(log, [&listings] { return ++listings, QStringList{"ttyA", "ttyB"}; });
    QCOMPARE(connector.run(plan, &parent), AutoConnector::Outcome::Failed);
    // Models in name order, the network first, then each port; two passes.
    const QStringList onePass{"net Tern 2369", "serial Tern ttyA 230400", "serial Tern ttyB 230400",
                              "net Wren_Plus 2369", "serial Wren_Plus ttyA 460800", "serial Wren_Plus ttyB 460800"};
    QCOMPARE(log.attempts, onePass + onePass);
    QVERIFY(listings >= 2);  // the ports are listed afresh on each pass
}


SCANDECK_TEST_MAIN(LiveEndToEndTest)
#include "tst_e2e_live.moc"
