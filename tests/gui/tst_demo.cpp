// The demo mode: which model the command line asks for, the window
// connected to the built-in simulated lidar through its ordinary network
// connection (loopback only), and the program itself starting on it and
// ending cleanly when told to stop.

#include "DemoLidar.h"
#include "FrameCollector.h"
#include "tst_e2e_support.h"

#include <QProcess>

using namespace testing;

class DemoTest : public QObject {
    Q_OBJECT
private slots:
    void cleanup() { quietRegistry(); }

    void commandLine_data();
    void commandLine();
    void windowShowsTheSimulatedRoom_data();
    void windowShowsTheSimulatedRoom();
    void programRunsAndStopsCleanly();
    void programRefusesAnUnknownModel();
};

void DemoTest::commandLine_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<bool>("wanted");
    QTest::addColumn<QString>("model");
    QTest::addColumn<bool>("error");
    QTest::newRow("no demo") << QStringList{"scandeck"} << false << "" << false;
    QTest::newRow("default model") << QStringList{"scandeck", "--demo"} << true << "Wren_Plus" << false;
    QTest::newRow("named model") << QStringList{"scandeck", "--demo", "Tern_GPS"} << true << "Tern_GPS" << false;
    QTest::newRow("an option follows") << QStringList{"scandeck", "--demo", "-style=fusion"} << true << "Wren_Plus"
                                       << false;
    QTest::newRow("names are exact") << QStringList{"scandeck", "--demo", "tern"} << true << "tern" << true;
    QTest::newRow("unknown model") << QStringList{"scandeck", "--demo", "Kestrel"} << true << "Kestrel" << true;
    QTest::newRow("program name is not an option") << QStringList{"--demo"} << false << "" << false;
}

void DemoTest::commandLine()
{
    QFETCH(QStringList, arguments);
    QFETCH(bool, wanted);
    QFETCH(QString, model);
    QFETCH(bool, error);
    const DemoLidar::Request request = DemoLidar::fromArguments(arguments);
    QCOMPARE(request.wanted, wanted);
    QCOMPARE(request.model, model);
    QCOMPARE(!request.error.isEmpty(), error);
}

void DemoTest::windowShowsTheSimulatedRoom_data()
{
    QTest::addColumn<QString>("model");
    QTest::newRow("Wren family") << QStringLiteral("Wren_Plus");
    QTest::newRow("Tern family") << QStringLiteral("Tern");
}

void DemoTest::windowShowsTheSimulatedRoom()
{
    QFETCH(QString, model);
    ScratchWorkingDir dir;
    MessageRecorder messages;
    auto window = openWindow();
    ScanDeck* w = window.get();
    DemoLidar demo;
    QString error;
    QVERIFY2(demo.start(model, *w, &error), qPrintable(error));
    QVERIFY(demo.isRunning());
    QCOMPARE(w->windowTitle(), model);
    QVERIFY(w->isLidarConnected());

    // Loopback only, on a pair of free ports of its own.
    const NetworkParam link = demo.link();
    QCOMPARE(link.lidarIp, QStringLiteral("127.0.0.1"));
    QCOMPARE(link.dataIp, QStringLiteral("127.0.0.1"));
    QCOMPARE(w->session()->lidarIp, QStringLiteral("127.0.0.1"));
    QCOMPARE(w->session()->dataIp, QStringLiteral("127.0.0.1"));
    QVERIFY(link.lidarPort != 0 && link.dataPort != 0 && link.lidarPort != link.dataPort);
    QCOMPARE(link.lidarPort, demo.engine()->commandPort());

    // The room, turning: frame after frame of several hundred points.
    FrameCollector frames(w->session().get());
    QVERIFY(waitFor([&] { return frames.frames.size() >= 5; }));
    QVERIFY(w->frameCloud().size() > 300);

    // Stopped, the simulator is gone and nothing more arrives.
    demo.stop();
    QVERIFY(!demo.isRunning());
    waitFor([] { return false; }, 150);
    const int afterStop = frames.frames.size();
    waitFor([] { return false; }, 400);
    QCOMPARE(frames.frames.size(), afterStop);
    QVERIFY(messages.messages.isEmpty());
}

// The program as a user starts it; SIGTERM (as from a terminal or a
// session manager) closes the window, which stops the simulator and the
// session's thread before the process ends.
void DemoTest::programRunsAndStopsCleanly()
{
    QProcess viewer;
    viewer.setProcessChannelMode(QProcess::MergedChannels);
    viewer.start(QStringLiteral("./scandeck"), {QStringLiteral("--demo"), QStringLiteral("Tern")});
    QVERIFY2(viewer.waitForStarted(10000), qPrintable(viewer.errorString()));
    // Long enough to build the window, start the simulator and draw frames.
    QVERIFY(!viewer.waitForFinished(4000));
    viewer.terminate();
    QVERIFY2(viewer.waitForFinished(15000), "the viewer did not end after SIGTERM");
    QCOMPARE(viewer.exitStatus(), QProcess::NormalExit);
    QCOMPARE(viewer.exitCode(), 0);
}

void DemoTest::programRefusesAnUnknownModel()
{
    QProcess viewer;
    viewer.start(QStringLiteral("./scandeck"), {QStringLiteral("--demo"), QStringLiteral("Kestrel")});
    QVERIFY(viewer.waitForFinished(15000));
    QCOMPARE(viewer.exitCode(), 2);
    const QString message = QString::fromLocal8Bit(viewer.readAllStandardError());
    QVERIFY2(message.contains(QStringLiteral("Kestrel")) && message.contains(QStringLiteral("Wren_Plus")),
             qPrintable(message));
}

SCANDECK_TEST_MAIN(DemoTest)
#include "tst_demo.moc"
