// Recording and playing back in the main window: a recording of the live
// simulator plays the frames that were shown live; the player's controls as
// the window shows them; files dropped on the 3D view; live and offline
// refusing each other; input that is no usable recording.

#include "FrameCollector.h"
#include "OffinePlayWidget.h"
#include "RecordFile.h"
#include "SimRecording.h"
#include "tst_e2e_support.h"

#include <QBuffer>
#include <QComboBox>
#include <QDropEvent>
#include <QMimeData>
#include <QProgressDialog>
#include <QPushButton>
#include <QSet>
#include <QTabWidget>

#include <QVTKOpenGLNativeWidget.h>

using namespace testing;

namespace {

// Tells frames of one recording apart: the ranges carry noise, so their sum
// differs from revolution to revolution.
qint64 signature(const Frame& frame)
{
    qint64 sum = pointCount(frame);
    for (const auto& line : frame.points)
        for (const lidar::LidarPoint& p : line)
            sum = sum * 31 + p.distance;
    return sum;
}

QPushButton* playerButton(OffinePlayWidget* player, const char* name)
{
    return player->findChild<QPushButton*>(QLatin1String(name));
}

void clickPlayer(OffinePlayWidget* player, const char* name)
{
    QPushButton* button = playerButton(player, name);
    QVERIFY2(button, name);
    button->click();
}

QString writeFile(const QTemporaryDir& dir, const QString& name, const QByteArray& bytes)
{
    const QString path = dir.filePath(name);
    QFile file(path);
    if (file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        file.write(bytes);
    return path;
}

QByteArray recordingBytes(const QVector<QByteArray>& elements)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    lidar::writeRecordElements(buffer, elements);
    return buffer.data();
}

QString simulatedRecording(const QTemporaryDir& dir, const QString& model, int revolutions)
{
    sim::SimOptions options;
    sim::modelFromName(model, &options.model);
    options.seed = 7;
    const QString path = dir.filePath(model + QStringLiteral(".txt"));
    QString error;
    if (!sim::writeRecording(options, revolutions, path, &error))
        qWarning("recording: %s", qPrintable(error));
    return path;
}

// Drops `path` on the 3D view as a file manager would.
void dropOnView(ScanDeck* window, const QString& path)
{
    QWidget* view = control(window, "openGLWidget");
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(path)});
    QDragEnterEvent enter(QPoint(10, 10), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(view, &enter);
    QVERIFY(enter.isAccepted());
    QDropEvent drop(QPointF(10, 10), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(view, &drop);
}

}  // namespace

class PlaybackEndToEndTest : public QObject {
    Q_OBJECT
private slots:
    void cleanup() { quietRegistry(); }

    void recordingPlaysWhatWasShownLive_data();
    void recordingPlaysWhatWasShownLive();
    void playerControlsInTheWindow();
    void liveAndOfflineRefuseEachOther();
    void droppedRecording_data();
    void droppedRecording();
    void unusableInputIsRefused_data();
    void unusableInputIsRefused();

private:
    QTemporaryDir m_files;
};

void PlaybackEndToEndTest::recordingPlaysWhatWasShownLive_data()
{
    QTest::addColumn<QString>("model");
    QTest::newRow("Tern family, with a version element") << QStringLiteral("Tern_P");
    QTest::newRow("Wren family, two channels") << QStringLiteral("Wren_Plus");
}

void PlaybackEndToEndTest::recordingPlaysWhatWasShownLive()
{
    QFETCH(QString, model);
    ScratchWorkingDir dir;
    MessageRecorder messages;
    SimulatedLidarRig lidar;
    QVERIFY(lidar.start(model, sim::Transport::Udp));
    auto window = openWindow();
    ScanDeck* w = window.get();
    QVERIFY(connectWindow(*w, model, lidar.network()));

    // Every frame the window is given, as it is given.
    FrameCollector live(w->session().get());
    const QString path = m_files.filePath(model + QStringLiteral("-live.txt"));
    w->setSaveFileHook([path](QWidget*, const QString&, const QString&, const QString&) { return path; });
    QVERIFY(waitFor([&] { return live.frames.size() >= 2; }));
    click(w, "btn_save_data");
    QVERIFY(waitFor([&] { return live.frames.size() >= 25; }, 10000));
    click(w, "btn_save_data");
    click(w, "btn_disconnect");
    QVERIFY(QFile::exists(path));
    QCOMPARE(messages.messages.size(), 1);
    QCOMPARE(messages.messages[0].text, QStringLiteral("File save path:") + path);

    // Play the file back and read every frame the player shows.
    auto* player = control<OffinePlayWidget>(w, "offline");
    QVector<Frame> played;
    connect(player, &OffinePlayWidget::SendLidarDataSignal, w, [&played](const Frame& f) { played.append(f); });
    player->setOpenFileHook([path](const QString&, const QString&, const QString&) { return path; });
    clickPlayer(player, "btn_open_file");
    QVERIFY(player->isLoaded());
    QCOMPARE(w->windowTitle(), model);
    // Loading showed frame 1 at position 0: Next then shows 1, 2, ... count.
    QCOMPARE(played.size(), 1);
    played.clear();
    for (int i = 0; i < player->frameCount(); ++i)
        clickPlayer(player, "btn_next");
    QCOMPARE(played.size(), player->frameCount());

    // The recording starts and ends inside a revolution, so its first and
    // last frames are parts of what was shown live; every frame in between
    // must be one that was shown live, in the same order, none missing.
    QVERIFY2(played.size() >= 15, qPrintable(QString::number(played.size())));
    const QVector<Frame> inner = played.mid(1, played.size() - 2);
    int start = -1;
    for (int i = 0; i < live.frames.size() && start < 0; ++i)
        if (sameFrame(live.frames[i], inner.first()))
            start = i;
    QVERIFY2(start >= 0, "the second recorded frame was never shown live");
    QVERIFY(start + inner.size() <= live.frames.size());
    for (int k = 0; k < inner.size(); ++k) {
        QString why;
        QVERIFY2(sameFrame(live.frames[start + k], inner[k], &why),
                 qPrintable(QStringLiteral("frame %1: %2").arg(k + 2).arg(why)));
    }
    // What the display made of the last one is what the live display made of it.
    QVERIFY(pointCount(w->lastFrame()) == pointCount(played.last()));
}

void PlaybackEndToEndTest::playerControlsInTheWindow()
{
    ScratchWorkingDir dir;
    MessageRecorder messages;
    const QString path = simulatedRecording(m_files, QStringLiteral("Tern_Plus"), 6);
    auto window = openWindow();
    ScanDeck* w = window.get();
    auto* player = control<OffinePlayWidget>(w, "offline");
    player->setOpenFileHook([path](const QString&, const QString&, const QString&) { return path; });
    QList<qint64> shown;  // what reached the window, in order
    connect(player, &OffinePlayWidget::SendLidarDataSignal, w, [&](const Frame&) { shown << signature(w->lastFrame()); });

    clickPlayer(player, "btn_open_file");
    QVERIFY(player->isLoaded());
    QCOMPARE(w->windowTitle(), QStringLiteral("Tern_Plus"));
    const int count = player->frameCount();
    QVERIFY2(count >= 5, qPrintable(QString::number(count)));

    // Next to the end and once beyond it (loading showed frame 1 at
    // position 0, so the first Next shows frame 1 again); previous back to
    // the start and once beyond.
    QCOMPARE(shown.size(), 1);
    shown.clear();
    for (int i = 0; i <= count; ++i)
        clickPlayer(player, "btn_next");
    QCOMPARE(player->currentPosition(), count);
    QCOMPARE(shown.size(), count + 1);
    const QList<qint64> order = shown.mid(0, count);  // frames 1..count
    QCOMPARE(QSet<qint64>(order.begin(), order.end()).size(), count);
    QCOMPARE(shown.last(), order.last());
    shown.clear();
    for (int i = 1; i <= count; ++i)
        clickPlayer(player, "btn_last");
    QCOMPARE(player->currentPosition(), 1);
    QCOMPARE(shown.size(), count);
    for (int i = 0; i < count - 1; ++i)
        QCOMPARE(shown[i], order[count - 2 - i]);
    QCOMPARE(shown.last(), order.first());

    // Playing runs to the end and stops there without loop.
    auto* speed = player->findChild<QComboBox*>(QStringLiteral("comboBox"));
    speed->setCurrentIndex(3);
    QCOMPARE(player->playbackInterval(), 33);
    shown.clear();
    clickPlayer(player, "btn_play");
    QVERIFY(player->isPlaying());
    // The speed changes at once while playing.
    speed->setCurrentIndex(0);
    QCOMPARE(player->playbackInterval(), 200);
    QVERIFY(player->isPlaying());
    speed->setCurrentIndex(3);
    QVERIFY(waitFor([&] { return !player->isPlaying(); }, 5000));
    QCOMPARE(player->currentPosition(), count);
    QVERIFY(!playerButton(player, "btn_play")->isChecked());
    QCOMPARE(shown, order.mid(1));
    QCOMPARE(signature(w->lastFrame()), order.last());

    // Play after the end starts again from the first frame; with loop on,
    // the end goes round to the first frame again.
    clickPlayer(player, "btn_circulation");
    QVERIFY(player->isLooping());
    shown.clear();
    clickPlayer(player, "btn_play");
    QVERIFY(waitFor([&] { return shown.size() > count; }, 5000));
    QCOMPARE(shown.mid(0, count), order);
    QCOMPARE(shown[count], order.first());
    QVERIFY(player->isPlaying());

    // While a file is loaded the window will not connect.
    click(w, "btn_connect");
    click(w, "btn_auto_connect");
    QCOMPARE(messages.messages.size(), 2);
    for (const UserMessage& m : messages.messages) {
        QCOMPARE(m.title, QStringLiteral("information"));
        QCOMPARE(m.text, QStringLiteral("Please stop the offline playback first"));
    }
    QVERIFY(!w->connectDialog());
    QVERIFY(!w->findChild<QProgressDialog*>());

    // Stop unloads and empties the display.
    clickPlayer(player, "btn_stop");
    QVERIFY(!player->isLoaded());
    QVERIFY(!player->isPlaying());
    QCOMPARE(w->frameCloud().size(), size_t(0));
    QCOMPARE(pointCount(w->lastFrame()), 0);
    const int afterStop = shown.size();
    waitFor([] { return false; }, 200);
    QCOMPARE(shown.size(), afterStop);
}

void PlaybackEndToEndTest::liveAndOfflineRefuseEachOther()
{
    ScratchWorkingDir dir;
    MessageRecorder messages;
    const QString path = simulatedRecording(m_files, QStringLiteral("Wren_Kite"), 4);
    SimulatedLidarRig lidar;
    QVERIFY(lidar.start(QStringLiteral("Tern"), sim::Transport::Udp));
    auto window = openWindow();
    ScanDeck* w = window.get();
    auto* player = control<OffinePlayWidget>(w, "offline");
    int openDialogs = 0;
    player->setOpenFileHook([&](const QString&, const QString&, const QString&) {
        ++openDialogs;
        return path;
    });
    QVERIFY(connectWindow(*w, QStringLiteral("Tern"), lidar.network()));

    // Playing, then paused: the link is up either way.
    clickPlayer(player, "btn_open_file");
    click(w, "btn_play_pause");
    QVERIFY(!w->isPlaying());
    clickPlayer(player, "btn_open_file");
    QCOMPARE(openDialogs, 0);
    QVERIFY(!player->isLoaded());
    QCOMPARE(messages.messages.size(), 2);
    for (const UserMessage& m : messages.messages) {
        QCOMPARE(m.title, QStringLiteral("information"));
        QCOMPARE(m.text, QStringLiteral("Please disconnect first!"));
    }

    click(w, "btn_disconnect");
    clickPlayer(player, "btn_open_file");
    QCOMPARE(openDialogs, 1);
    QVERIFY(player->isLoaded());
    QCOMPARE(w->windowTitle(), QStringLiteral("Wren_Kite"));
}

void PlaybackEndToEndTest::droppedRecording_data()
{
    QTest::addColumn<bool>("yes");
    QTest::addColumn<bool>("live");  // a lidar is shown live when the file arrives
    QTest::newRow("accepted") << true << false;
    QTest::newRow("declined") << false << false;
    QTest::newRow("accepted while live") << true << true;
}

void PlaybackEndToEndTest::droppedRecording()
{
    QFETCH(bool, yes);
    QFETCH(bool, live);
    ScratchWorkingDir dir;
    MessageRecorder messages;
    messages.answer = yes ? QMessageBox::Yes : QMessageBox::No;
    const QString path = simulatedRecording(m_files, QStringLiteral("Tern_GPS"), 4);
    SimulatedLidarRig lidar;
    auto window = openWindow();
    ScanDeck* w = window.get();
    auto* player = control<OffinePlayWidget>(w, "offline");
    auto* tabs = control<QTabWidget>(w, "tabWidget");
    if (live) {
        QVERIFY(lidar.start(QStringLiteral("Wren_Plus"), sim::Transport::Udp));
        QVERIFY(connectWindow(*w, QStringLiteral("Wren_Plus"), lidar.network()));
    }
    const QString titleBefore = w->windowTitle();

    dropOnView(w, path);
    QCOMPARE(messages.messages.size(), 1);
    QCOMPARE(messages.messages[0].title, QStringLiteral("question"));
    QCOMPARE(messages.messages[0].text, QStringLiteral("Whether to play offline file ?"));
    QCOMPARE(player->isLoaded(), yes);
    QCOMPARE(tabs->currentWidget() == control(w, "tab_offline"), yes);
    QCOMPARE(w->windowTitle(), yes ? QStringLiteral("Tern_GPS") : titleBefore);
    if (yes)
        QCOMPARE(player->currentPosition(), 0);
    if (live) {
        // The live display is paused so that the two do not mix.
        QVERIFY(!w->isPlaying());
        QVERIFY(!control<QAbstractButton>(w, "btn_play_pause")->isChecked());
    }
}

void PlaybackEndToEndTest::unusableInputIsRefused_data()
{
    QTest::addColumn<QByteArray>("bytes");
    const QByteArray good = recordingBytes(lidar::readRecordFile(simulatedRecording(m_files, "Tern", 3)));
    QVERIFY(good.mid(8, 4) == "Tern" && good.size() > 4 + 8 + 4 + 92);
    QVector<QByteArray> foreign = lidar::readRecordFile(simulatedRecording(m_files, "Wren_Plus", 3));
    foreign[0] = "Kestrel";
    QTest::newRow("not a recording") << QByteArray("time,x,y,z\n0,1.5,2.5,0\n");
    QTest::newRow("empty file") << QByteArray();
    // Cut inside the first packet: the model name survives, no packet does.
    // (A cut further on keeps the packets before it, which then play.)
    QTest::newRow("truncated recording") << good.left(4 + 8 + 4 + 50);
    QTest::newRow("count larger than the file") << QByteArray("\x7f\xff\xff\xff\x00\x00\x00\x04Tern", 12);
    QTest::newRow("unregistered model") << recordingBytes(foreign);
    QTest::newRow("model name only") << recordingBytes({"Tern"});
}

void PlaybackEndToEndTest::unusableInputIsRefused()
{
    QFETCH(QByteArray, bytes);
    ScratchWorkingDir dir;
    MessageRecorder messages;
    messages.answer = QMessageBox::Yes;
    const QString bad = writeFile(m_files, QStringLiteral("bad.txt"), bytes);
    auto window = openWindow();
    ScanDeck* w = window.get();
    auto* player = control<OffinePlayWidget>(w, "offline");
    const QString titleBefore = w->windowTitle();
    QString toOpen = bad;
    player->setOpenFileHook([&toOpen](const QString&, const QString&, const QString&) { return toOpen; });

    // Through the player's Open and dropped on the view: the same refusal,
    // and no question first.
    clickPlayer(player, "btn_open_file");
    dropOnView(w, bad);
    QCOMPARE(messages.messages.size(), 2);
    for (const UserMessage& m : messages.messages) {
        QCOMPARE(m.title, QStringLiteral("information"));
        QCOMPARE(m.text, QStringLiteral("Unable to parse this file"));
    }
    QVERIFY(!player->isLoaded());
    QCOMPARE(w->windowTitle(), titleBefore);

    // The viewer still works: a good recording loads after the bad one.
    toOpen = simulatedRecording(m_files, QStringLiteral("Wren_Kite"), 3);
    clickPlayer(player, "btn_open_file");
    QVERIFY(player->isLoaded());
    QCOMPARE(w->windowTitle(), QStringLiteral("Wren_Kite"));
    QVERIFY(w->frameCloud().size() > 100);
}

SCANDECK_TEST_MAIN(PlaybackEndToEndTest)
#include "tst_e2e_playback.moc"
