// The offline player driven through its buttons: loading, stepping, playing
// with and without loop, speed, seeking, stopping and opening files, good and
// bad. Frames made here carry their 1-based number in motorSpeed so that the
// emitted sequence can be read back.

#include "LIdarFactory.h"
#include "LoopbackLidar.h"
#include "OffinePlayWidget.h"
#include "PacketBuilders.h"
#include "RecordFile.h"

#include <QAbstractEventDispatcher>
#include <QBuffer>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QSlider>
#include <QSpinBox>
#include <QTemporaryDir>
#include <QtTest>

using Frame = lidar::LidarDataPoint_V4;

namespace {

QVector<Frame> numberedFrames(int n)
{
    QVector<Frame> frames;
    for (int i = 1; i <= n; ++i) {
        Frame f;
        f.motorSpeed = i;
        f.points[0].push_back(lidar::LidarPoint{});
        frames.append(f);
    }
    return frames;
}

// The frame numbers the spy has seen; an empty frame shows as -1.
QList<int> shown(const QSignalSpy& spy)
{
    QList<int> numbers;
    for (const auto& args : spy)
        numbers.append(args.at(0).value<Frame>().motorSpeed);
    return numbers;
}

struct Message {
    QString title;
    QString text;
};

void writeFile(const QString& path, const QByteArray& bytes)
{
    QFile f(path);
    QVERIFY(f.open(QIODevice::WriteOnly));
    f.write(bytes);
}

QByteArray recordingBytes(const QVector<QByteArray>& elements)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    lidar::writeRecordElements(buffer, elements);
    return buffer.data();
}

}  // namespace

class PlayerTest : public QObject {
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void cleanup();
    void cleanupTestCase() { LIdarFactory::GetInstance()->Shutdown(); }

    void loadingShowsTheFirstFrame();
    void playingToTheEndStopsOnTheLastFrame();
    void loopShowsOneEmptyTickThenTheFirstFrame();
    void speed_data();
    void speed();
    void stepsAndSliderSeek();
    void spinBoxReturn_data();
    void spinBoxReturn();
    void stopEmptiesTheDisplay();
    void tableAndExportButtons();
    void openIsRefusedWhileConnected();
    void badFilesAreRefused_data();
    void badFilesAreRefused();
    void recordedRevolutionsPlay();

private:
    template <typename T>
    T* child(const char* name)
    {
        T* w = player->findChild<T*>(name);
        if (!w)
            qFatal("no child %s", name);
        return w;
    }
    void click(const char* button) { QTest::mouseClick(child<QPushButton>(button), Qt::LeftButton); }
    // One playback tick, delivered synchronously so that no real tick can
    // slip in between the checks.
    void tick(int timerId)
    {
        QTimerEvent event(timerId);
        QCoreApplication::sendEvent(player, &event);
    }
    void checkEnabling(bool loaded);

    OffinePlayWidget* player = nullptr;
    QSignalSpy* frameSpy = nullptr;
    QList<Message> messages;
    QStringList openRequests;
    QString pathToOpen;
    QTemporaryDir dir;
};

void PlayerTest::initTestCase()
{
    lidar::registerMetaTypes();
    QVERIFY(dir.isValid());
}

void PlayerTest::init()
{
    messages.clear();
    openRequests.clear();
    pathToOpen.clear();
    player = new OffinePlayWidget;
    player->setMessageHook([this](const QString& t, const QString& m) { messages.append({t, m}); });
    player->setOpenFileHook([this](const QString& caption, const QString& directory, const QString& filter) {
        openRequests << caption << directory << filter;
        return pathToOpen;
    });
    frameSpy = new QSignalSpy(player, &OffinePlayWidget::SendLidarDataSignal);
    player->show();
    QVERIFY(QTest::qWaitForWindowExposed(player));
}

void PlayerTest::cleanup()
{
    delete frameSpy;
    delete player;
    player = nullptr;
}

void PlayerTest::checkEnabling(bool loaded)
{
    QCOMPARE(child<QPushButton>("btn_open_file")->isEnabled(), !loaded);
    for (const char* name : {"btn_export_csv", "comboBox", "btn_stop", "btn_last", "btn_next", "btn_play",
                             "spinBox_progress", "horizontalSlider"})
        QVERIFY2(child<QWidget>(name)->isEnabled() == loaded, name);
    QVERIFY(child<QPushButton>("btn_circulation")->isEnabled());
    QVERIFY(child<QPushButton>("btn_table")->isEnabled());
}

void PlayerTest::loadingShowsTheFirstFrame()
{
    checkEnabling(false);
    QSignalSpy typeSpy(player, &OffinePlayWidget::SendLidarTypeSignal);

    // Nothing to load: refused, nothing shown, still unloaded.
    player->loadFrames("Tern", {});
    QCOMPARE(messages.size(), 1);
    QCOMPARE(messages[0].title, QString("information"));
    QCOMPARE(messages[0].text, QString("Unable to parse this file"));
    QVERIFY(!player->isLoaded());
    QCOMPARE(frameSpy->size(), 0);
    QCOMPARE(typeSpy.size(), 0);

    player->loadFrames("Tern", numberedFrames(5));
    QVERIFY(player->isLoaded());
    checkEnabling(true);
    QCOMPARE(shown(*frameSpy), QList<int>{1});
    QCOMPARE(typeSpy.size(), 1);
    QCOMPARE(typeSpy[0][0].toString(), QString("Tern"));
    QCOMPARE(player->currentPosition(), 0);
    QCOMPARE(player->frameCount(), 5);

    auto* slider = child<QSlider>("horizontalSlider");
    auto* spin = child<QSpinBox>("spinBox_progress");
    QCOMPARE(slider->minimum(), 1);
    QCOMPARE(slider->maximum(), 5);
    QCOMPARE(spin->minimum(), 1);
    QCOMPARE(spin->maximum(), 5);
    QCOMPARE(spin->value(), 1);
    QCOMPARE(child<QLabel>("label_maxNum")->text(), QString("/5"));

    // Showing the page again re-applies the texts but keeps the frame count.
    player->hide();
    player->show();
    QCOMPARE(child<QLabel>("label_maxNum")->text(), QString("/5"));
    QCOMPARE(child<QPushButton>("btn_circulation")->text(), QString("Loop Playback"));
}

void PlayerTest::playingToTheEndStopsOnTheLastFrame()
{
    player->loadFrames("Tern", numberedFrames(4));
    child<QComboBox>("comboBox")->setCurrentIndex(3);  // fastest
    auto* play = child<QPushButton>("btn_play");

    click("btn_play");
    QVERIFY(player->isPlaying());
    QVERIFY(play->isChecked());
    // Real timer: wait for the whole file and for playback to end by itself.
    QTRY_VERIFY_WITH_TIMEOUT(!player->isPlaying(), 10000);
    QCOMPARE(shown(*frameSpy), (QList<int>{1, 1, 2, 3, 4}));
    QVERIFY(!play->isChecked());
    QCOMPARE(player->playbackTimerId(), -1);
    QCOMPARE(player->currentPosition(), 4);
    QCOMPARE(child<QSlider>("horizontalSlider")->value(), 4);
    QCOMPARE(child<QSpinBox>("spinBox_progress")->value(), 4);

    // Play after the end starts again at the first frame.
    frameSpy->clear();
    click("btn_play");
    QVERIFY(player->isPlaying());
    QTRY_VERIFY_WITH_TIMEOUT(frameSpy->size() >= 1, 5000);
    QCOMPARE(shown(*frameSpy).first(), 1);
    click("btn_play");  // pause
    QVERIFY(!player->isPlaying());
    QVERIFY(!play->isChecked());
    QCOMPARE(player->playbackTimerId(), -1);
}

void PlayerTest::loopShowsOneEmptyTickThenTheFirstFrame()
{
    player->loadFrames("Tern", numberedFrames(3));
    child<QComboBox>("comboBox")->setCurrentIndex(0);  // slowest
    click("btn_circulation");
    QVERIFY(player->isLooping());
    click("btn_play");
    const int id = player->playbackTimerId();
    QVERIFY(id != -1);
    frameSpy->clear();
    tick(id + 1000);  // someone else's timer
    QCOMPARE(frameSpy->size(), 0);

    for (int i = 0; i < 3; ++i)
        tick(id);
    QCOMPARE(shown(*frameSpy), (QList<int>{1, 2, 3}));
    tick(id);  // the end: nothing shown, back to the start
    QCOMPARE(frameSpy->size(), 3);
    QCOMPARE(player->currentPosition(), 0);
    QVERIFY(player->isPlaying());
    tick(id);
    QCOMPARE(shown(*frameSpy), (QList<int>{1, 2, 3, 1}));

    // Loop off again: the end stops playback on the last frame.
    click("btn_circulation");
    QVERIFY(!player->isLooping());
    tick(id);
    tick(id);
    tick(id);
    QCOMPARE(shown(*frameSpy), (QList<int>{1, 2, 3, 1, 2, 3}));
    QVERIFY(!player->isPlaying());
    QCOMPARE(player->playbackTimerId(), -1);
    tick(id);  // a stale tick of the killed timer plays nothing
    QCOMPARE(frameSpy->size(), 6);
}

void PlayerTest::speed_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("interval");
    QTest::newRow("X0.5") << 0 << "X0.5" << 200;
    QTest::newRow("X1") << 1 << "X1" << 100;
    QTest::newRow("X2") << 2 << "X2" << 50;
    QTest::newRow("X3") << 3 << "X3" << 33;
}

void PlayerTest::speed()
{
    QFETCH(int, index);
    QFETCH(QString, text);
    QFETCH(int, interval);
    auto* combo = child<QComboBox>("comboBox");
    QCOMPARE(combo->count(), 4);
    QCOMPARE(combo->itemText(index), text);
    QCOMPARE(player->playbackInterval(), 100);
    player->loadFrames("Tern", numberedFrames(50));

    // The timer the player registered with the event dispatcher.
    auto playbackTimer = [this] {
        const auto timers = QAbstractEventDispatcher::instance()->registeredTimers(player);
        for (const auto& t : timers)
            if (t.timerId == player->playbackTimerId())
                return t;
        return QAbstractEventDispatcher::TimerInfo(-1, -1, Qt::CoarseTimer);
    };

    // Paused: the choice waits for the next play.
    combo->setCurrentIndex(index == 0 ? 3 : 0);
    combo->setCurrentIndex(index);
    QCOMPARE(player->playbackInterval(), interval);
    QCOMPARE(player->playbackTimerId(), -1);
    click("btn_play");
    QCOMPARE(playbackTimer().interval, interval);
    QCOMPARE(playbackTimer().timerType, Qt::PreciseTimer);

    // Playing: a new timer with the new interval at once.
    const int other = index == 0 ? 3 : 0;
    combo->setCurrentIndex(other);
    QVERIFY(player->isPlaying());
    QCOMPARE(player->playbackInterval(), other == 0 ? 200 : 33);
    QCOMPARE(playbackTimer().interval, player->playbackInterval());
    QCOMPARE(QAbstractEventDispatcher::instance()->registeredTimers(player).size(), 1);
    click("btn_play");
}

void PlayerTest::stepsAndSliderSeek()
{
    // Loaded, the first frame is on screen but not yet played past, so the
    // first step forward shows it again.
    player->loadFrames("Tern", numberedFrames(3));
    frameSpy->clear();
    click("btn_next");
    click("btn_last");
    click("btn_last");
    for (int i = 0; i < 4; ++i)
        click("btn_next");
    click("btn_last");
    QCOMPARE(shown(*frameSpy), (QList<int>{1, 1, 1, 2, 3, 3, 3, 2}));
    QCOMPARE(player->currentPosition(), 2);
    QCOMPARE(child<QSlider>("horizontalSlider")->value(), 2);
    QCOMPARE(child<QSpinBox>("spinBox_progress")->value(), 2);

    // The slider, dragged or moved by key, shows its frame.
    auto* slider = child<QSlider>("horizontalSlider");
    frameSpy->clear();
    slider->setSliderDown(true);
    slider->setSliderPosition(3);
    slider->setSliderDown(false);
    slider->setFocus();
    QTest::keyClick(slider, Qt::Key_Left);
    QCOMPARE(shown(*frameSpy), (QList<int>{3, 2}));
    QCOMPARE(player->currentPosition(), 2);
    QCOMPARE(child<QSpinBox>("spinBox_progress")->value(), 2);

    // Playback continues from there.
    child<QComboBox>("comboBox")->setCurrentIndex(0);
    click("btn_play");
    tick(player->playbackTimerId());
    QCOMPARE(shown(*frameSpy).last(), 3);
}

void PlayerTest::spinBoxReturn_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("expected");  // frame shown, 0 = refused
    QTest::newRow("return") << "3" << int(Qt::Key_Return) << 3;
    QTest::newRow("enter") << "5" << int(Qt::Key_Enter) << 5;
    QTest::newRow("first") << "1" << int(Qt::Key_Return) << 1;
    QTest::newRow("zero") << "0" << int(Qt::Key_Return) << 0;
    QTest::newRow("empty") << "" << int(Qt::Key_Enter) << 0;
}

void PlayerTest::spinBoxReturn()
{
    QFETCH(QString, typed);
    QFETCH(int, key);
    QFETCH(int, expected);
    player->loadFrames("Tern", numberedFrames(5));
    click("btn_next");
    click("btn_next");  // at frame 2
    frameSpy->clear();

    auto* spin = child<QSpinBox>("spinBox_progress");
    auto* edit = spin->findChild<QLineEdit*>();
    QVERIFY(edit);
    spin->setFocus();
    spin->selectAll();
    QTest::keyClick(edit, Qt::Key_Delete);
    QTest::keyClicks(edit, typed);
    QTest::keyClick(edit, Qt::Key(key));

    if (expected > 0) {
        QVERIFY(messages.isEmpty());
        QCOMPARE(shown(*frameSpy), QList<int>{expected});
        QCOMPARE(player->currentPosition(), expected);
        QCOMPARE(child<QSlider>("horizontalSlider")->value(), expected);
    } else {
        QCOMPARE(messages.size(), 1);
        QCOMPARE(messages[0].title, QString("information"));
        QCOMPARE(messages[0].text, QString("There is an error in the input. Please enter it again"));
        QCOMPARE(frameSpy->size(), 0);
        QCOMPARE(player->currentPosition(), 2);
        QCOMPARE(spin->value(), 2);
        QCOMPARE(spin->text(), QString("2"));
        click("btn_next");
        QCOMPARE(shown(*frameSpy), QList<int>{3});
    }
}

void PlayerTest::stopEmptiesTheDisplay()
{
    player->loadFrames("Tern", numberedFrames(5));
    child<QComboBox>("comboBox")->setCurrentIndex(3);
    click("btn_play");
    QTRY_VERIFY_WITH_TIMEOUT(frameSpy->size() >= 3, 5000);
    click("btn_stop");

    const Frame last = frameSpy->last().at(0).value<Frame>();
    QCOMPARE(last.ambient, -1);
    QCOMPARE(last.motorSpeed, -1);
    QVERIFY(last.dateTime.isEmpty());
    QVERIFY(last.points.isEmpty());
    QVERIFY(!player->isLoaded());
    QVERIFY(!player->isPlaying());
    QCOMPARE(player->playbackTimerId(), -1);
    QVERIFY(!child<QPushButton>("btn_play")->isChecked());
    QCOMPARE(child<QLabel>("label_maxNum")->text(), QString("0"));
    QVERIFY(child<QSpinBox>("spinBox_progress")->text().isEmpty());
    checkEnabling(false);

    // Stepping does nothing now, and the next file loads from the start.
    const int before = frameSpy->size();
    player->nextFrame();
    player->previousFrame();
    QCOMPARE(frameSpy->size(), before);
    player->loadFrames("Tern", numberedFrames(2));
    QCOMPARE(shown(*frameSpy).last(), 1);
    QCOMPARE(child<QLabel>("label_maxNum")->text(), QString("/2"));
}

void PlayerTest::tableAndExportButtons()
{
    QSignalSpy tableSpy(player, &OffinePlayWidget::SendShowTableWidgetSignal);
    click("btn_table");
    click("btn_table");
    QCOMPARE(tableSpy.size(), 2);
    QCOMPARE(tableSpy[0][0].toBool(), true);
    QCOMPARE(tableSpy[1][0].toBool(), false);

    QList<QPair<QPushButton*, bool>> exports;
    player->setExportAction([&](QPushButton* b, bool checked) { exports.append({b, checked}); });
    player->loadFrames("Tern", numberedFrames(2));
    auto* exportButton = child<QPushButton>("btn_export_csv");
    click("btn_export_csv");
    QCOMPARE(exports.size(), 1);
    QCOMPARE(exports[0].first, exportButton);
    QCOMPARE(exports[0].second, true);

    // The end of the export is reported on the player's own signal.
    exportButton->setText("Exporting data");
    player->hide();
    player->show();
    QCOMPARE(exportButton->text(), QString("Exporting data"));
    emit player->SendEndSaveDataSignal("/tmp/out.csv");
    QCOMPARE(messages.size(), 1);
    QCOMPARE(messages[0].title, QString("File saved"));
    QCOMPARE(messages[0].text, QString("File save path:/tmp/out.csv"));
    QVERIFY(!exportButton->isChecked());
    QCOMPARE(exportButton->text(), QString("Export CSV"));
}

void PlayerTest::openIsRefusedWhileConnected()
{
    auto session = LIdarFactory::GetInstance()->ChangeLidar("Tern");
    QVERIFY(session);
    session->lidarIp = session->dataIp = "127.0.0.1";
    session->connected = 1;
    pathToOpen = dir.filePath("never-opened.txt");
    click("btn_open_file");
    session->connected = 0;

    QCOMPARE(messages.size(), 1);
    QCOMPARE(messages[0].title, QString("information"));
    QCOMPARE(messages[0].text, QString("Please disconnect first!"));
    QVERIFY(openRequests.isEmpty());
    QVERIFY(!player->isLoaded());

    // Disconnected, the dialog opens in the home directory with the filter;
    // cancelling it changes nothing.
    messages.clear();
    pathToOpen.clear();
    click("btn_open_file");
    QCOMPARE(openRequests, (QStringList{"Open File", QDir::homePath() + "/", "*.txt"}));
    QVERIFY(messages.isEmpty());
    QVERIFY(!player->isLoaded());
    QCOMPARE(frameSpy->size(), 0);
}

void PlayerTest::badFilesAreRefused_data()
{
    QTest::addColumn<QByteArray>("bytes");  // empty: the file does not exist
    const QByteArray revolutions = recordingBytes(QVector<QByteArray>{"Tern"} + testing::ternRevolutions(3));
    // Cut inside the first packet: the model name survives, no packet does.
    const int firstPacketEnds = 4 + (4 + 4) + 4 + 92;
    QTest::newRow("missing file") << QByteArray();
    QTest::newRow("zero length") << QByteArray("", 0);
    QTest::newRow("plain text") << QByteArray("distance,azimuth\n1.0,2.0\n");
    QTest::newRow("count only") << QByteArray::fromHex("00000002");
    QTest::newRow("truncated") << revolutions.left(firstPacketEnds - 10);
    QTest::newRow("model name only") << recordingBytes({"Tern"});
    QTest::newRow("unregistered model")
        << recordingBytes(QVector<QByteArray>{"Heron"} + testing::ternRevolutions(3));
}

void PlayerTest::badFilesAreRefused()
{
    QFETCH(QByteArray, bytes);
    pathToOpen = dir.filePath(QString("bad-%1.txt").arg(QTest::currentDataTag()));
    if (!bytes.isNull())
        writeFile(pathToOpen, bytes);
    QSignalSpy typeSpy(player, &OffinePlayWidget::SendLidarTypeSignal);

    click("btn_open_file");
    QCOMPARE(messages.size(), 1);
    QCOMPARE(messages[0].title, QString("information"));
    QCOMPARE(messages[0].text, QString("Unable to parse this file"));
    QVERIFY(!player->isLoaded());
    QCOMPARE(frameSpy->size(), 0);
    QCOMPARE(typeSpy.size(), 0);
    checkEnabling(false);

    // Still usable: a good set of frames loads afterwards.
    player->loadFrames("Tern", numberedFrames(2));
    QVERIFY(player->isLoaded());
    QCOMPARE(shown(*frameSpy), QList<int>{1});
}

void PlayerTest::recordedRevolutionsPlay()
{
    // Four turns of a Tern whose every distance is 1234 mm. The parse
    // function keeps the unfinished last turn of a file for the next one, so
    // a parse yields the three turns this file completes, plus at most one
    // left over from an earlier file.
    const uint16_t distance = 1234;
    const QString path = dir.filePath("four-turns.txt");
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QVERIFY(lidar::writeRecordElements(file, QVector<QByteArray>{"Tern"} + testing::ternRevolutions(4, distance)));
    file.close();

    QSignalSpy typeSpy(player, &OffinePlayWidget::SendLidarTypeSignal);
    pathToOpen = path;
    click("btn_open_file");
    QVERIFY2(messages.isEmpty(), qPrintable(messages.value(0).text));
    QVERIFY(player->isLoaded());
    QCOMPARE(typeSpy.size(), 1);
    QCOMPARE(typeSpy[0][0].toString(), QString("Tern"));
    const int count = player->frameCount();
    QVERIFY2(count == 3 || count == 4, qPrintable(QString::number(count)));
    QCOMPARE(child<QLabel>("label_maxNum")->text(), QString("/%1").arg(count));

    child<QComboBox>("comboBox")->setCurrentIndex(3);
    click("btn_play");
    QTRY_VERIFY_WITH_TIMEOUT(!player->isPlaying(), 10000);
    QCOMPARE(frameSpy->size(), 1 + count);
    // The three turns of this file are the last three frames.
    for (int i = frameSpy->size() - 3; i < frameSpy->size(); ++i) {
        const Frame frame = frameSpy->at(i).at(0).value<Frame>();
        QVERIFY(frame.pointCount() > 0);
        for (const auto& line : frame.points)
            for (const auto& point : line)
                QCOMPARE(point.distance, int32_t(distance));
    }
}

QTEST_MAIN(PlayerTest)
#include "tst_player.moc"
