// The main window against a simulated lidar of each model: connecting over
// UDP, a pseudo-terminal and through the connection dialog, what the
// controls do while connected (pause, record, disconnect), a connection to
// the wrong model, and the automatic connection finding, missing and being
// cancelled.

#include "FrameCollector.h"
#include "OffinePlayWidget.h"
#include "RecordFile.h"
#include "SelectConnectType.h"
#include "tst_e2e_support.h"

#include <QComboBox>
#include <QLineEdit>
#include <QProgressDialog>
#include <QPushButton>
#include <QRadioButton>
#include <QTimer>

using namespace testing;

namespace {

const QStringList kModels{"Tern", "Tern_P", "Tern_GPS", "Tern_Plus", "Wren_Plus", "Wren_Kite"};

// The frames the session has sent to the window so far.
int framesSeen(const FrameCollector& collector)
{
    QCoreApplication::processEvents();
    return collector.frames.size();
}

// Waits until the queue of frames already sent has been drained.
void settle(int ms = 150)
{
    waitFor([] { return false; }, ms);
}

}  // namespace

class LiveEndToEndTest : public QObject {
    Q_OBJECT
private slots:
    void cleanup() { quietRegistry(); }

    void connectPauseRecordDisconnect_data();
    void connectPauseRecordDisconnect();
    void connectOverSerial_data();
    void connectOverSerial();
    void wrongOrUnknownModelIsRefused();
    void recordingThatCannotStartOrIsLeftRunning();
    void connectionDialogIsMadeOnceAndConnects();
    void autoConnectFindsTheLidar_data();
    void autoConnectFindsTheLidar();
    void autoConnectFailsWithItsMessage();
    void autoConnectCancelEndsSilently();
};

void LiveEndToEndTest::connectPauseRecordDisconnect_data()
{
    QTest::addColumn<QString>("model");
    for (const QString& model : kModels)
        QTest::newRow(qPrintable(model)) << model;
}

// The whole life of one connection, as a user clicks through it.
void LiveEndToEndTest::connectPauseRecordDisconnect()
{
    QFETCH(QString, model);
    ScratchWorkingDir dir;
    MessageRecorder messages;
    QTemporaryDir files;
    SimulatedLidarRig lidar;
    QVERIFY(lidar.start(model, sim::Transport::Udp));
    auto window = openWindow();
    ScanDeck* w = window.get();
    QCOMPARE(liveControlStates(w), kStartControls);

    QVERIFY(connectWindow(*w, model, lidar.network()));
    QCOMPARE(w->windowTitle(), model);
    QCOMPARE(liveControlStates(w), kConnectedControls);
    auto* play = control<QAbstractButton>(w, "btn_play_pause");
    QVERIFY(play->isChecked());
    QCOMPARE(play->text(), QStringLiteral("pause"));
    QVERIFY(w->isPlaying());
    QCOMPARE(w->session()->GetConnectionType(), int(lidar::NetworkConnection));
    QCOMPARE(QString(w->session()->metaObject()->className()), model);

    // Frames reach the cloud: most of the room's echoes, at most one frame per sweep.
    FrameCollector collector(w->session().get());
    QVERIFY(waitFor([&] { return collector.frames.size() >= 3 && w->frameCloud().size() > 300; }));
    QVERIFY(pointCount(w->lastFrame()) > 300);
    QVERIFY(w->viewer().contains("m_pointCloud"));

    // Record, pause in the middle of it, play again, stop recording.
    const QString path = files.filePath(QStringLiteral("live.txt"));
    QString proposed, caption, filter;
    w->setSaveFileHook([&](QWidget*, const QString& c, const QString& p, const QString& f) {
        caption = c;
        proposed = p;
        filter = f;
        return path;
    });
    click(w, "btn_save_data");
    QCOMPARE(control<QAbstractButton>(w, "btn_save_data")->text(), QStringLiteral("Recording data"));
    QCOMPARE(caption, QStringLiteral("settting a save path"));
    QCOMPARE(filter, QStringLiteral("txt(*.txt)"));
    QVERIFY2(QRegularExpression("^\\./" + model + "_\\d{4}_\\d\\d_\\d\\d \\d\\d\\.\\d\\d\\.\\d\\d\\.txt$")
                 .match(proposed)
                 .hasMatch(),
             qPrintable(proposed));
    settle(300);
    const int beforePause = framesSeen(collector);
    click(w, "btn_play_pause");
    QCOMPARE(play->text(), QStringLiteral("play"));
    QVERIFY(!play->isChecked());
    QVERIFY(!w->isPlaying());
    settle();  // frames sent before the pause may still be queued
    const int atPause = framesSeen(collector);
    const lidar::LidarDataPoint_V4 shownAtPause = w->lastFrame();
    settle(800);  // eight sweeps pass unseen
    QCOMPARE(framesSeen(collector), atPause);
    QVERIFY(sameFrame(w->lastFrame(), shownAtPause));
    click(w, "btn_play_pause");
    QVERIFY(play->isChecked());
    QVERIFY(waitFor([&] { return framesSeen(collector) >= atPause + 2; }));
    click(w, "btn_save_data");
    const int shownWhileRecording = framesSeen(collector) - beforePause;
    QCOMPARE(control<QAbstractButton>(w, "btn_save_data")->text(), QStringLiteral("Recorded data"));
    QCOMPARE(messages.messages.size(), 1);
    QCOMPARE(messages.messages[0].title, QStringLiteral("File saved"));
    QCOMPARE(messages.messages[0].text, QStringLiteral("File save path:") + path);

    // The paused stretch is in the file although nothing was shown of it.
    const auto recorded = LIdarFactory::GetInstance()->ParseFile(path);
    QCOMPARE(recorded.first, model);
    QVERIFY2(recorded.second.size() >= shownWhileRecording + 5,
             qPrintable(QStringLiteral("%1 frames recorded, %2 shown").arg(recorded.second.size()).arg(shownWhileRecording)));

    // Disconnect: the start state again, an empty view, no more frames.
    click(w, "btn_disconnect");
    QCOMPARE(liveControlStates(w), kStartControls);
    QVERIFY(!control(w, "btn_GPS_test")->isEnabled());
    QVERIFY(!play->isChecked());
    QVERIFY(control<QAbstractButton>(w, "btn_motor_state")->isChecked());
    QVERIFY(!w->isPlaying());
    QVERIFY(!w->isLidarConnected());
    QVERIFY(!w->viewer().contains("m_pointCloud"));
    settle();
    const int afterDisconnect = framesSeen(collector);
    settle(300);
    QCOMPARE(framesSeen(collector), afterDisconnect);
    QCOMPARE(messages.messages.size(), 1);
}

void LiveEndToEndTest::connectOverSerial_data()
{
    QTest::addColumn<QString>("model");
    QTest::newRow("Tern family") << QStringLiteral("Tern_GPS");
    QTest::newRow("Wren family") << QStringLiteral("Wren_Kite");
}

void LiveEndToEndTest::connectOverSerial()
{
    QFETCH(QString, model);
    ScratchWorkingDir dir;
    MessageRecorder messages;
    SimulatedLidarRig lidar;
    QVERIFY(lidar.start(model, sim::Transport::PseudoTerminal));
    auto window = openWindow();
    ScanDeck* w = window.get();

    QVERIFY(connectWindow(*w, model, lidar.serial()));
    QCOMPARE(w->windowTitle(), model);
    QCOMPARE(w->session()->GetConnectionType(), int(lidar::SerialPortConnection));
    QCOMPARE(w->session()->portName, lidar.serial().portName);
    QCOMPARE(liveControlStates(w), kConnectedControls);
    QVERIFY(waitFor([&] { return w->frameCloud().size() > 300; }));

    click(w, "btn_disconnect");
    QCOMPARE(liveControlStates(w), kStartControls);
    QVERIFY(messages.messages.isEmpty());
}

void LiveEndToEndTest::wrongOrUnknownModelIsRefused()
{
    ScratchWorkingDir dir;
    MessageRecorder messages;
    SimulatedLidarRig lidar;
    QVERIFY(lidar.start(QStringLiteral("Tern"), sim::Transport::Udp));
    auto window = openWindow();
    ScanDeck* w = window.get();

    // A Wren decoder finds no frame in a Tern stream: the link is dropped.
    QVERIFY(!w->ConnectNetworkLidar(QStringLiteral("Wren_Plus"), lidar.network()));
    QCOMPARE(liveControlStates(w), kStartControls);
    QVERIFY(w->session());
    QVERIFY(waitFor([&] { return w->session()->connected == 0; }, 1000));
    QCOMPARE(w->session()->GetConnectionType(), -1);
    QVERIFY(w->windowTitle() != QStringLiteral("Wren_Plus"));

    QVERIFY(!w->ConnectNetworkLidar(QStringLiteral("Kestrel"), lidar.network()));
    QVERIFY(!w->session());
    QCOMPARE(liveControlStates(w), kStartControls);

    // Nothing connected: play and record only warn.
    auto* play = control<QAbstractButton>(w, "btn_play_pause");
    emit play->clicked(true);
    QVERIFY(!play->isChecked());
    auto* record = control<QAbstractButton>(w, "btn_save_data");
    record->setChecked(true);
    emit record->clicked(true);
    QVERIFY(record->isChecked());  // left as it is
    QCOMPARE(messages.messages.size(), 2);
    for (const UserMessage& m : messages.messages) {
        QCOMPARE(m.title, QStringLiteral("warning"));
        QCOMPARE(m.text, QStringLiteral("Please connect the radar first"));
    }

    // The right model on the same link still connects afterwards.
    QVERIFY(connectWindow(*w, QStringLiteral("Tern"), lidar.network()));
    QCOMPARE(w->windowTitle(), QStringLiteral("Tern"));
}

void LiveEndToEndTest::recordingThatCannotStartOrIsLeftRunning()
{
    ScratchWorkingDir dir;
    MessageRecorder messages;
    QTemporaryDir files;
    SimulatedLidarRig lidar;
    QVERIFY(lidar.start(QStringLiteral("Wren_Kite"), sim::Transport::Udp));
    auto window = openWindow();
    ScanDeck* w = window.get();
    QVERIFY(connectWindow(*w, QStringLiteral("Wren_Kite"), lidar.network()));
    auto* record = control<QAbstractButton>(w, "btn_save_data");
    QString answer;
    w->setSaveFileHook([&answer](QWidget*, const QString&, const QString&, const QString&) { return answer; });

    // The save dialog cancelled: not recording, nothing said.
    record->click();
    QVERIFY(!record->isChecked());
    QVERIFY(messages.messages.isEmpty());
    QVERIFY(!w->session()->saving.load());

    // A place that cannot be written: said so, not recording.
    answer = files.filePath(QStringLiteral("no/such/folder/rec.txt"));
    record->click();
    QVERIFY(!record->isChecked());
    QVERIFY(!w->session()->saving.load());
    QCOMPARE(messages.messages.size(), 1);
    QCOMPARE(messages.messages[0].title, QStringLiteral("warning"));
    QCOMPARE(messages.messages[0].text, QStringLiteral("Unable to create the file ") + answer);

    // Disconnecting while recording writes the file rather than losing it.
    messages.messages.clear();
    answer = files.filePath(QStringLiteral("left-running.txt"));
    record->click();
    QVERIFY(record->isChecked());
    settle(400);
    click(w, "btn_disconnect");
    QVERIFY(!record->isChecked());
    QCOMPARE(messages.messages.size(), 1);
    QCOMPARE(messages.messages[0].title, QStringLiteral("File saved"));
    const auto recorded = LIdarFactory::GetInstance()->ParseFile(answer);
    QCOMPARE(recorded.first, QStringLiteral("Wren_Kite"));
    QVERIFY(!recorded.second.isEmpty());
}

void LiveEndToEndTest::connectionDialogIsMadeOnceAndConnects()
{
    ScratchWorkingDir dir;  // its settings offer Tern
    MessageRecorder messages;
    SimulatedLidarRig lidar;
    QVERIFY(lidar.start(QStringLiteral("Tern"), sim::Transport::Udp));
    auto window = openWindow();
    ScanDeck* w = window.get();
    QVERIFY(!w->connectDialog());
    const QString titleBefore = w->windowTitle();

    // The dialog is modal: it is answered from a timer while it runs.
    SelectConnectType* seen = nullptr;
    QTimer::singleShot(300, w, [&] {
        seen = w->connectDialog();
        if (seen)
            seen->findChild<QPushButton*>(QStringLiteral("btn_cancel"))->click();
    });
    click(w, "btn_connect");
    QVERIFY(seen);
    QVERIFY(!seen->isVisible());
    QCOMPARE(w->windowTitle(), titleBefore);

    int shown = 0;
    std::function<void()> answer = [&] {
        SelectConnectType* dialog = w->connectDialog();
        ++shown;
        QCOMPARE(dialog, seen);  // the same dialog again
        QCOMPARE(dialog->findChild<QComboBox*>(QStringLiteral("cob_lidar_type"))->currentText(), QStringLiteral("Tern"));
        dialog->findChild<QRadioButton*>(QStringLiteral("rad_network"))->click();
        const NetworkParam link = lidar.network();
        dialog->findChild<QLineEdit*>(QStringLiteral("led_lidar_ip"))->setText(link.lidarIp);
        dialog->findChild<QLineEdit*>(QStringLiteral("led_data_ip"))->setText(link.dataIp);
        dialog->findChild<QLineEdit*>(QStringLiteral("led_lidar_port"))->setText(QString::number(link.lidarPort));
        dialog->findChild<QLineEdit*>(QStringLiteral("led_data_port"))->setText(QString::number(link.dataPort));
        // A busy machine can miss the first confirmation: the dialog then
        // stays open with its message, and OK is pressed again.
        for (int attempt = 0; attempt < 4 && dialog->isVisible(); ++attempt)
            dialog->findChild<QPushButton*>(QStringLiteral("btn_ok"))->click();
        if (dialog->isVisible())
            dialog->reject();
    };
    QTimer::singleShot(300, w, [&] { answer(); });
    click(w, "btn_connect");
    QCOMPARE(shown, 1);
    QVERIFY(w->isLidarConnected());
    QCOMPARE(w->windowTitle(), QStringLiteral("Tern"));
    QCOMPARE(liveControlStates(w), kConnectedControls);
    QVERIFY(waitFor([&] { return w->frameCloud().size() > 300; }));
}

void LiveEndToEndTest::autoConnectFindsTheLidar_data()
{
    QTest::addColumn<QString>("model");
    QTest::addColumn<bool>("serial");
    QTest::addColumn<QString>("listed");  // connect_type values
    // Tried in name order: the others come first and find nothing.
    QTest::newRow("network") << "Wren_Plus" << false << "Tern_P Wren_Plus Tern Wren_Kite";
    QTest::newRow("serial, after an idle port") << "Tern" << true << "Wren_Kite Tern";
}

void LiveEndToEndTest::autoConnectFindsTheLidar()
{
    QFETCH(QString, model);
    QFETCH(bool, serial);
    QFETCH(QString, listed);
    ScratchWorkingDir dir;
    MessageRecorder messages;
    SimulatedLidarRig lidar;
    QVERIFY(lidar.start(model, serial ? sim::Transport::PseudoTerminal : sim::Transport::Udp));
    // Over serial the network record points at a port where nothing is sent.
    const NetworkParam link = serial ? NetworkParam{"127.0.0.1", "127.0.0.1", freeUdpPort(), freeUdpPort()}
                                     : lidar.network();
    QString settings = QStringLiteral("LiDAR IP=127.0.0.1\nData IP=127.0.0.1\nLiDAR Port=%1\nData Port=%2\n[connect_type]\n")
                           .arg(link.lidarPort)
                           .arg(link.dataPort);
    int key = 0;
    for (const QString& name : listed.split(' '))
        settings += QStringLiteral("model%1=%2\n").arg(++key).arg(name);
    for (const QString& name : listed.split(' '))
        settings += QStringLiteral("[%1]\ndefault baud rate=460800\n").arg(name);
    writeSettingsFile(settings);

    PseudoTerminal idle;  // a port that never says anything
    QStringList ports{idle.slaveName()};
    if (serial)
        ports << lidar.serial().portName;
    auto window = openWindow();
    ScanDeck* w = window.get();
    w->setSerialPortLister([ports] { return ports; });

    // The decision rests on 200 ms waits: a loaded machine gets a few goes.
    for (int attempt = 0; attempt < 3 && !w->isLidarConnected(); ++attempt) {
        messages.messages.clear();
        click(w, "btn_auto_connect");
    }
    QVERIFY(w->isLidarConnected());
    QVERIFY(messages.messages.isEmpty());
    QCOMPARE(w->windowTitle(), model);
    QCOMPARE(w->session()->GetConnectionType(), int(serial ? lidar::SerialPortConnection : lidar::NetworkConnection));
    QCOMPARE(liveControlStates(w), kConnectedControls);
    QVERIFY(!w->findChild<QProgressDialog*>());
    QVERIFY(waitFor([&] { return w->frameCloud().size() > 300; }));
}

void LiveEndToEndTest::autoConnectFailsWithItsMessage()
{
    ScratchWorkingDir dir;
    MessageRecorder messages;
    writeSettingsFile(QStringLiteral("LiDAR IP=127.0.0.1\nData IP=127.0.0.1\nLiDAR Port=%1\nData Port=%2\n"
                                     "[connect_type]\na=Tern\nb=Wren_Kite\n[Tern]\ndefault baud rate=230400\n")
                          .arg(freeUdpPort())
                          .arg(freeUdpPort()));
    PseudoTerminal idle;
    auto window = openWindow();
    ScanDeck* w = window.get();
    w->setSerialPortLister([port = idle.slaveName()] { return QStringList{port}; });

    click(w, "btn_auto_connect");  // 2 passes x 2 models x (network + 1 port)
    QCOMPARE(messages.messages.size(), 1);
    QCOMPARE(messages.messages[0].title, QStringLiteral("information"));
    QCOMPARE(messages.messages[0].text, QStringLiteral("Automatic connection failed, please connect the radar manually!"));
    QCOMPARE(liveControlStates(w), kStartControls);
    QVERIFY(!w->isLidarConnected());

    // No model listed at all: the same message at once.
    messages.messages.clear();
    writeSettingsFile(QStringLiteral("LiDAR IP=127.0.0.1\nData IP=127.0.0.1\n"));
    click(w, "btn_auto_connect");
    QCOMPARE(messages.messages.size(), 1);
    QCOMPARE(messages.messages[0].text, QStringLiteral("Automatic connection failed, please connect the radar manually!"));
}

void LiveEndToEndTest::autoConnectCancelEndsSilently()
{
    ScratchWorkingDir dir;
    MessageRecorder messages;
    QString settings = QStringLiteral("LiDAR IP=127.0.0.1\nData IP=127.0.0.1\nLiDAR Port=%1\nData Port=%2\n[connect_type]\n")
                           .arg(freeUdpPort())
                           .arg(freeUdpPort());
    for (const QString& model : kModels)
        settings += QStringLiteral("%1=%1\n").arg(model);
    writeSettingsFile(settings);  // twelve attempts of 200 ms unless cancelled
    auto window = openWindow();
    ScanDeck* w = window.get();
    w->setSerialPortLister([] { return QStringList(); });

    bool cancelled = false;
    QTimer::singleShot(500, w, [&] {
        if (auto* progress = w->findChild<QProgressDialog*>()) {
            QCOMPARE(progress->windowTitle(), QStringLiteral("Trying to connect the radar"));
            QCOMPARE(progress->labelText(), QStringLiteral("wait..."));
            QCOMPARE(progress->width(), w->width() / 5);
            progress->cancel();
            cancelled = true;
        }
    });
    click(w, "btn_auto_connect");
    QVERIFY(cancelled);
    QVERIFY(messages.messages.isEmpty());
    QCOMPARE(liveControlStates(w), kStartControls);
    QVERIFY(!w->findChild<QProgressDialog*>());
}

SCANDECK_TEST_MAIN(LiveEndToEndTest)
#include "tst_e2e_live.moc"
