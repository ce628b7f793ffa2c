// The offline player driven through its buttons.
// Frames made here carry their 1-based number in motorSpeed.

#include "IncompleteMarks.h"
#include "LIdarFactory.h"
#include "OffinePlayWidget.h"
#include "PacketBuilders.h"
#include "OfflineParseState.h"
#include "RecordFile.h"
#include "SlowOfflineParser.h"

#include <QAbstractEventDispatcher>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QProcess>
#include <QProgressBar>
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
    QVector<Frame> frames(n);
    for (int i = 0; i < n; ++i) {
        frames[i].motorSpeed = i + 1;
        frames[i].points[0].push_back(lidar::LidarPoint{});
    }
    return frames;
}

QList<int> shown(const QSignalSpy& spy)
{
    QList<int> numbers;
    for (const auto& args : spy)
        numbers.append(args.at(0).value<Frame>().motorSpeed);
    return numbers;
}

bool writeRecording(const QString& path, const QVector<QByteArray>& elements, int cutAt = -1)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || !lidar::writeRecordElements(file, elements))
        return false;
    return cutAt < 0 || file.resize(cutAt);
}

}  // namespace

class PlayerTest : public QObject {
    Q_OBJECT
private slots:
    // Opening a file remembers its folder in ./ini: not in the build's own.
    void initTestCase() { lidar::registerMetaTypes(), QDir::setCurrent(dir.path()); }
    void init();
    void cleanup() { delete spy; delete player; }
    void cleanupTestCase() { LIdarFactory::GetInstance()->Shutdown(), QDir::setCurrent(buildDir); }

    void loadPlayLoopAndRestart();
    void stepsSliderAndStop();
    void frameBox_data();
    void frameBox();
    void openRefused_data();
    void openRefused();
    void playsWhileTheIndexGrows();
    void aRecordingCutShortPlaysWithANote();
    void exportsARangeToABag();
    void healthBesideTheFrame_data();
    void healthBesideTheFrame();
    void jumpsToIncompleteFramesWhileIndexing();

private:
    template <typename T>
    T* child(const char* name) { return player->findChild<T*>(name); }
    void click(const char* button) { QTest::mouseClick(child<QPushButton>(button), Qt::LeftButton); }
    // A playback tick, delivered synchronously so that no real tick slips in.
    void tick() { QTimerEvent event(player->playbackTimerId()); QCoreApplication::sendEvent(player, &event); }

    OffinePlayWidget* player = nullptr;
    QSignalSpy* spy = nullptr;
    QStringList messages;  // "title: text"
    QString pathToOpen;
    QTemporaryDir dir;
    const QString buildDir = QDir::currentPath();
};

void PlayerTest::init()
{
    messages.clear(), pathToOpen.clear();
    player = new OffinePlayWidget;
    player->setMessageHook([this](const QString& t, const QString& m) { messages << t + ": " + m; });
    player->setOpenFileHook([this](const QString&, const QString&, const QString&) { return pathToOpen; });
    spy = new QSignalSpy(player, &OffinePlayWidget::SendLidarDataSignal);
    player->show();
}

void PlayerTest::loadPlayLoopAndRestart()
{
    player->loadFrames("Tern", {});
    QCOMPARE(messages, QStringList{"information: Unable to parse this file"});
    QVERIFY(!player->isLoaded() && spy->isEmpty());

    player->loadFrames("Tern", numberedFrames(3));
    QVERIFY(player->isLoaded() && !child<QPushButton>("btn_open_file")->isEnabled());
    QCOMPARE(shown(*spy), QList<int>{1});
    auto* slider = child<QSlider>("horizontalSlider");
    auto* spin = child<QSpinBox>("spinBox_progress");
    QCOMPARE(QList<int>({slider->minimum(), slider->maximum(), spin->minimum(), spin->maximum(), spin->value()}),
             QList<int>({1, 3, 1, 3, 1}));
    QCOMPARE(child<QLabel>("label_maxNum")->text(), QString("/3"));

    // Speed chosen while paused applies at play, while playing at once.
    auto* speed = child<QComboBox>("comboBox");
    speed->setCurrentIndex(2);
    QCOMPARE(player->playbackTimerId(), -1);
    click("btn_circulation");
    click("btn_play");
    QCOMPARE(player->playbackInterval(), 50);
    speed->setCurrentIndex(0);  // slowest: the ticks below are ours
    const auto timers = QAbstractEventDispatcher::instance()->registeredTimers(player);
    QVERIFY(timers.size() == 1 && timers[0].timerId == player->playbackTimerId() && timers[0].interval == 200);
    // Loop: after the last frame one tick shows nothing, the next shows frame 1.
    for (int i = 0; i < 4; ++i)
        tick();
    QCOMPARE(shown(*spy), (QList<int>{1, 1, 2, 3}));
    QVERIFY(player->isPlaying() && player->currentPosition() == 0);
    tick();
    // Loop off: the end stops playback on the last frame.
    click("btn_circulation");
    for (int i = 0; i < 3; ++i)
        tick();
    QCOMPARE(shown(*spy), (QList<int>{1, 1, 2, 3, 1, 2, 3}));
    QVERIFY(!player->isPlaying() && !child<QPushButton>("btn_play")->isChecked());
    QCOMPARE(player->playbackTimerId(), -1);
    QCOMPARE(slider->value(), 3);

    // Play after the end starts over.
    click("btn_play");
    tick();
    QCOMPARE(shown(*spy).last(), 1);
}

void PlayerTest::stepsSliderAndStop()
{
    player->loadFrames("Tern", numberedFrames(3));
    spy->clear();
    // Frame 1 is shown but not yet played past: a step forward shows it again.
    for (const char* b : {"btn_next", "btn_last", "btn_last", "btn_next", "btn_next", "btn_next", "btn_next"})
        click(b);
    QCOMPARE(shown(*spy), (QList<int>{1, 1, 1, 2, 3, 3, 3}));

    spy->clear();
    auto* slider = child<QSlider>("horizontalSlider");
    auto* spin = child<QSpinBox>("spinBox_progress");
    QTest::keyClick(slider, Qt::Key_Left);
    QCOMPARE(spin->value(), 2);
    player->lastFrame();
    player->firstFrame();
    QCOMPARE(shown(*spy), (QList<int>{2, 3, 1}));
    QCOMPARE(QList<int>({player->currentPosition(), slider->value(), spin->value()}), QList<int>({1, 1, 1}));

    click("btn_stop");
    const Frame empty = spy->last().at(0).value<Frame>();
    QVERIFY(empty.points.isEmpty() && empty.motorSpeed == -1);
    QVERIFY(!player->isLoaded() && !player->isPlaying() && player->playbackTimerId() == -1);
    QCOMPARE(child<QLabel>("label_maxNum")->text(), QString("0"));
    QVERIFY(child<QPushButton>("btn_open_file")->isEnabled() && !child<QPushButton>("btn_next")->isEnabled());
    player->nextFrame();  // nothing to show
    QCOMPARE(spy->last().at(0).value<Frame>().motorSpeed, -1);
}

void PlayerTest::frameBox_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("shownFrame");  // 0: refused, frame 2 stays
    QTest::newRow("in range, Enter") << "12" << int(Qt::Key_Enter) << 12;
    QTest::newRow("in range, Return") << "7" << int(Qt::Key_Return) << 7;
    QTest::newRow("999 is no frame 9") << "999" << int(Qt::Key_Return) << 0;
    QTest::newRow("one past the end") << "13" << int(Qt::Key_Return) << 0;
    QTest::newRow("zero") << "0" << int(Qt::Key_Return) << 0;
    QTest::newRow("nothing") << "" << int(Qt::Key_Return) << 0;
}

// A number typed into the frame box moves only on Return or Enter, and only
// to a frame that exists; anything else is refused where the user sees it.
void PlayerTest::frameBox()
{
    QFETCH(QString, typed);
    QFETCH(int, key);
    QFETCH(int, shownFrame);
    player->loadFrames("Tern", numberedFrames(12));
    player->nextFrame();
    player->nextFrame();
    spy->clear();
    auto* spin = child<QSpinBox>("spinBox_progress");
    auto* edit = spin->findChild<QLineEdit*>();
    edit->clear();
    QTest::keyClicks(edit, typed);
    QCOMPARE(spin->cleanText(), typed);  // kept as typed, not cut to a number in range
    QCOMPARE(spin->property("outOfRange").toBool(), shownFrame == 0 && !typed.isEmpty());
    QVERIFY(spy->isEmpty());
    QTest::keyClick(edit, Qt::Key(key));
    const int position = shownFrame ? shownFrame : 2;
    QCOMPARE(shown(*spy), shownFrame ? QList<int>{shownFrame} : QList<int>{});
    QCOMPARE(messages.size(), shownFrame ? 0 : 1);
    if (!shownFrame)
        QCOMPARE(messages[0], QStringLiteral("information: There is an error in the input. Please enter it again"));
    QCOMPARE(QList<int>({player->currentPosition(), child<QSlider>("horizontalSlider")->value(), spin->text().toInt()}),
             QList<int>({position, position, position}));
    QVERIFY2(!spin->property("outOfRange").toBool(), qPrintable(spin->text()));
}

void PlayerTest::openRefused_data()
{
    QTest::addColumn<QVector<QByteArray>>("elements");  // empty: no file
    QTest::addColumn<int>("cutAt");
    QTest::addColumn<bool>("cutShort");  // the message says how to repair it
    const auto tern = QVector<QByteArray>{"Tern"} + testing::ternRevolutions(3);
    QTest::newRow("live session connected") << tern << -1 << false;
    QTest::newRow("missing file") << QVector<QByteArray>{} << -1 << false;
    QTest::newRow("zero length") << tern << 0 << false;
    QTest::newRow("truncated in the first packet") << tern << 100 << true;
    QTest::newRow("model name only") << QVector<QByteArray>{"Tern"} << -1 << false;
    QTest::newRow("unregistered model") << QVector<QByteArray>{"Heron"} + testing::ternRevolutions(3) << -1 << false;
    QTest::newRow("unregistered model, truncated") << QVector<QByteArray>{"Heron"} + testing::ternRevolutions(3) << 100
                                                   << false;
}

void PlayerTest::openRefused()
{
    QFETCH(QVector<QByteArray>, elements);
    QFETCH(int, cutAt);
    QFETCH(bool, cutShort);
    const bool live = QTest::currentDataTag() == QByteArray("live session connected");
    auto session = LIdarFactory::GetInstance()->ChangeLidar("Tern");
    session->lidarIp = session->dataIp = "127.0.0.1";
    session->connected = live;
    pathToOpen = dir.filePath(QString("%1.txt").arg(QTest::currentDataTag()));
    QVERIFY(elements.isEmpty() || writeRecording(pathToOpen, elements, cutAt));
    click("btn_open_file");
    session->connected = 0;
    const QString refused = "information: Unable to parse this file";
    QCOMPARE(messages.join(""), live ? "information: Please disconnect first!"
                                : cutShort ? refused + "\nThe recording was cut short. \"scandeck-cli repair " +
                                                 pathToOpen + "\" makes its complete packets readable again."
                                           : refused);
    QVERIFY(!player->isLoaded() && spy->isEmpty());
}

// A long file plays from its first frame while its index grows: the count,
// the slider and the frame box follow it, play waits at the end of what is
// indexed, and Stop ends the indexing at once.
void PlayerTest::playsWhileTheIndexGrows()
{
    pathToOpen = dir.filePath("long.txt");
    QVERIFY(writeRecording(pathToOpen, QVector<QByteArray>{"Tern"} + testing::ternRevolutions(400)));
    testing::settleOfflineParse("Tern");
    auto* slider = child<QSlider>("horizontalSlider");
    auto* spin = child<QSpinBox>("spinBox_progress");
    auto* progress = child<QProgressBar>("progressBar_index");
    {
        testing::SlowParsing slow("Tern", 500);
        click("btn_open_file");
        QVERIFY(player->isLoaded() && player->isIndexing());
        QCOMPARE(spy->size(), 1);
        QVERIFY(progress->isVisible() && !child<QPushButton>("btn_open_file")->isEnabled());
        QTRY_VERIFY_WITH_TIMEOUT(player->frameCount() > 10, 10000);
        QVERIFY(player->frameCount() < 399);
        QCOMPARE(slider->maximum(), player->frameCount());
        QCOMPARE(spin->maximum(), player->frameCount());
        QCOMPARE(child<QLabel>("label_maxNum")->text(), QString("/%1").arg(player->frameCount()));

        // The last frame indexed so far, then playing on from it: a tick
        // with nothing new indexed waits instead of ending playback.
        player->lastFrame();
        const int last = player->currentPosition();
        click("btn_play");
        tick();
        QVERIFY(player->isPlaying());
        QCOMPARE(player->currentPosition() >= last, true);

        // Stop while indexing: nothing loaded, nothing indexing.
        click("btn_stop");
        QVERIFY(!player->isLoaded() && !player->isIndexing() && !progress->isVisible());
        QVERIFY(child<QPushButton>("btn_open_file")->isEnabled());
    }
    // Opened again at full speed, it indexes to the end and says how many.
    const int whole = LIdarFactory::GetInstance()->parseMap.value("Tern")(testing::ternRevolutions(400)).size();
    testing::settleOfflineParse("Tern");
    spy->clear();
    click("btn_open_file");
    QTRY_VERIFY_WITH_TIMEOUT(!player->isIndexing(), 10000);
    QCOMPARE(player->frameCount(), whole);
    QCOMPARE(child<QLabel>("label_maxNum")->text(), QString("/%1").arg(whole));
    QVERIFY(!progress->isVisible() && messages.isEmpty());
    spin->findChild<QLineEdit*>()->setText(QString::number(whole));
    QTest::keyClick(spin->findChild<QLineEdit*>(), Qt::Key_Return);
    QCOMPARE(shown(*spy).size(), 2);
}

// A recording that ends inside a packet (cut short, or still being
// written) plays the frames before the cut and says why there are no more.
void PlayerTest::aRecordingCutShortPlaysWithANote()
{
    pathToOpen = dir.filePath("cut.txt");
    const QVector<QByteArray> packets = testing::ternRevolutions(10);
    QVERIFY(writeRecording(pathToOpen, QVector<QByteArray>{"Tern"} + packets, 4 + 8 + 200 * 96 + 30));
    testing::settleOfflineParse("Tern");
    const int whole = LIdarFactory::GetInstance()->parseMap.value("Tern")(packets.mid(0, 200)).size();
    testing::settleOfflineParse("Tern");
    click("btn_open_file");
    QTRY_VERIFY_WITH_TIMEOUT(!player->isIndexing(), 10000);
    QVERIFY(player->isLoaded());
    QCOMPARE(player->frameCount(), whole);
    QCOMPARE(messages.size(), 1);
    QVERIFY2(messages[0].startsWith("information: The recording ends early") && messages[0].contains(pathToOpen),
             qPrintable(messages[0]));
}

// "Export bag" writes the frames of the range asked for, numbered as the
// player numbers them, and only a whole bag under its name; a bag that
// cannot be written is reported.
void PlayerTest::exportsARangeToABag()
{
    pathToOpen = dir.filePath("bag.txt");
    QVERIFY(writeRecording(pathToOpen, QVector<QByteArray>{"Tern"} + testing::ternRevolutions(12)));
    click("btn_open_file");
    QTRY_VERIFY_WITH_TIMEOUT(!player->isIndexing(), 10000);
    QString target = dir.filePath("range.bag");
    int proposedLast = 0;
    player->setBagExportHook([&](BagExportDialog& dialog) {
        proposedLast = dialog.findChild<QSpinBox*>("spinBox_last_frame")->value();
        dialog.findChild<QSpinBox*>("spinBox_first_frame")->setValue(2);
        dialog.findChild<QSpinBox*>("spinBox_last_frame")->setValue(5);
        dialog.findChild<QLineEdit*>("lineEdit_path")->setText(target);
        return true;
    });
    click("btn_export_bag");
    QCOMPARE(proposedLast, player->frameCount());  // every frame unless told otherwise
    QCOMPARE(messages, QStringList{"File saved: File save path:" + target});
    QProcess python;
    python.start("/usr/bin/python3", {QStringLiteral(SCANDECK_SOURCE_DIR "/tests/cli/read_bag.py"), target});
    QVERIFY(python.waitForFinished(60000) && python.exitCode() == 0);
    QStringList seqs;
    for (const QByteArray& line : python.readAllStandardOutput().split('\n')) {
        if (line.startsWith("topic "))
            QVERIFY2(line.endsWith(" 4"), line.constData());
        if (line.startsWith("scan "))
            seqs << QString::fromLatin1(line.split(' ').value(1));
    }
    QCOMPARE(seqs, QStringList({"2", "3", "4", "5"}));

    messages.clear();
    target = dir.filePath("no such folder/range.bag");
    click("btn_export_bag");
    QCOMPARE(messages.size(), 1);
    QVERIFY2(messages[0].startsWith("warning: File save failed!"), qPrintable(messages[0]));
    QVERIFY(!QFile::exists(target));
}

// Tern recordings of whole turns, 24 packets of 15 degrees each, with turn
// 3's packet at 75 degrees and turn 7's at 120 and 135 left out. The parse
// settled before each opening has the next turn's first packet open: it
// comes out as the first frame, one packet wide (incomplete), so turn r is
// frame r + 1, at position r + 2.
static QVector<QByteArray> recordingWithDrops(int revolutions)
{
    QVector<QByteArray> packets = testing::ternRevolutions(revolutions);
    packets.remove(7 * 24 + 8, 2);
    packets.remove(3 * 24 + 5);
    return QVector<QByteArray>{"Tern"} + packets;
}

void PlayerTest::healthBesideTheFrame_data()
{
    QTest::addColumn<int>("position");  // 1-based, as the frame box shows it
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("gaps");  // of the health sent with the frame
    QTest::newRow("whole") << 2 << "whole · 24 packets" << "";
    QTest::newRow("one missing") << 5 << "1 packet missing · gap 75–90°" << "75-90";
    QTest::newRow("two missing") << 9 << "2 packets missing · gap 120–150°" << "120-150";
    QTest::newRow("whole after") << 10 << "whole · 24 packets" << "";
}

// The frame box has the shown frame's health beside it, and the same
// health goes out with the frame; the slider marks the incomplete frames.
void PlayerTest::healthBesideTheFrame()
{
    QFETCH(int, position);
    QFETCH(QString, text);
    QFETCH(QString, gaps);
    lidar::registerHealthMetaTypes();
    pathToOpen = dir.filePath("drops.txt");
    QVERIFY(writeRecording(pathToOpen, recordingWithDrops(12)));
    testing::settleOfflineParse("Tern");
    QSignalSpy health(player, &OffinePlayWidget::SendFrameHealthSignal);
    click("btn_open_file");
    QTRY_VERIFY_WITH_TIMEOUT(!player->isIndexing(), 10000);
    auto* spin = child<QSpinBox>("spinBox_progress");
    spin->findChild<QLineEdit*>()->setText(QString::number(position));
    QTest::keyClick(spin->findChild<QLineEdit*>(), Qt::Key_Return);
    QCOMPARE(player->currentPosition(), position);
    QCOMPARE(child<QLabel>("label_frame_health")->text(), text);
    QStringList sent;
    for (const lidar::AngularGap& gap : health.last().at(0).value<lidar::FrameHealth>().gaps)
        sent << QString("%1-%2").arg(std::lround(gap.start)).arg(std::lround(gap.end));
    QCOMPARE(sent.join(' '), gaps);
    QCOMPARE(health.size(), spy->size());  // one health for every frame

    auto* marks = child<IncompleteMarks>("incomplete_marks");
    QCOMPARE(marks->frames(), (std::vector<qint64>{0, 4, 8}));
    QVERIFY(marks->isVisible());
    QVERIFY(marks->xOf(0) < marks->xOf(4) && marks->xOf(4) < marks->xOf(8));
    // Stop empties the display: no gaps for the empty frame, no marks.
    click("btn_stop");
    QVERIFY(health.last().at(0).value<lidar::FrameHealth>().isWhole());
    QVERIFY(marks->frames().empty());
}

// N and Shift+N go to the next and previous incomplete frame among those
// indexed so far, and nowhere when there is none.
void PlayerTest::jumpsToIncompleteFramesWhileIndexing()
{
    pathToOpen = dir.filePath("long drops.txt");
    QVERIFY(writeRecording(pathToOpen, recordingWithDrops(400)));
    testing::settleOfflineParse("Tern");
    testing::SlowParsing slow("Tern", 500);
    click("btn_open_file");
    QTRY_VERIFY_WITH_TIMEOUT(player->frameCount() > 10, 10000);
    QVERIFY(player->isIndexing());
    player->nextFrame();
    player->nextFrame();
    QCOMPARE(player->currentPosition(), 2);
    player->nextIncompleteFrame();
    QCOMPARE(player->currentPosition(), 5);
    player->nextIncompleteFrame();
    QCOMPARE(player->currentPosition(), 9);
    player->nextIncompleteFrame();
    QCOMPARE(player->currentPosition(), 9);
    player->previousIncompleteFrame();
    QCOMPARE(player->currentPosition(), 5);
    player->previousIncompleteFrame();
    QCOMPARE(player->currentPosition(), 1);
    player->previousIncompleteFrame();
    QCOMPARE(player->currentPosition(), 1);
    // The first frame, two steps and four jumps; none where there was nowhere to go.
    QCOMPARE(spy->size(), 7);
    click("btn_stop");
}

QTEST_MAIN(PlayerTest)
#include "tst_player.moc"
