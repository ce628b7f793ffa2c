// The offline player driven through its buttons, and which drops it accepts.
// Frames made here carry their 1-based number in motorSpeed.

#include "LIdarFactory.h"
#include "OffinePlayWidget.h"
#include "OfflineDrop.h"
#include "PacketBuilders.h"
#include "RecordFile.h"

#include <QAbstractEventDispatcher>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
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
    void initTestCase() { lidar::registerMetaTypes(); }
    void init();
    void cleanup() { delete spy; delete player; }
    void cleanupTestCase() { LIdarFactory::GetInstance()->Shutdown(); }

    void loadPlayLoopAndRestart();
    void speedWhilePausedAndPlaying();
    void stepsSliderAndStop();
    void spinBoxReturn_data();
    void spinBoxReturn();
    void openRefused_data();
    void openRefused();
    void drops_data();
    void drops();

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

    // Loop: after the last frame one tick shows nothing, the next shows frame 1.
    child<QComboBox>("comboBox")->setCurrentIndex(0);  // slowest: ticks below are ours
    click("btn_circulation");
    click("btn_play");
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

void PlayerTest::speedWhilePausedAndPlaying()
{
    auto timerInterval = [this] {
        for (const auto& t : QAbstractEventDispatcher::instance()->registeredTimers(player))
            if (t.timerId == player->playbackTimerId())
                return t.interval;
        return -1;
    };
    auto* combo = child<QComboBox>("comboBox");
    player->loadFrames("Tern", numberedFrames(50));
    combo->setCurrentIndex(2);  // X2, paused: applies at the next play
    QCOMPARE(player->playbackTimerId(), -1);
    click("btn_play");
    QCOMPARE(timerInterval(), 50);
    combo->setCurrentIndex(0);  // X0.5 while playing: a new timer at once
    QCOMPARE(timerInterval(), 200);
    combo->setCurrentIndex(3);
    QCOMPARE(timerInterval(), 33);
    QCOMPARE(QAbstractEventDispatcher::instance()->registeredTimers(player).size(), 1);
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
    QTest::keyClick(child<QSlider>("horizontalSlider"), Qt::Key_Left);
    QCOMPARE(shown(*spy), QList<int>{2});
    QCOMPARE(child<QSpinBox>("spinBox_progress")->value(), 2);

    click("btn_stop");
    const Frame empty = spy->last().at(0).value<Frame>();
    QVERIFY(empty.points.isEmpty() && empty.motorSpeed == -1);
    QVERIFY(!player->isLoaded() && !player->isPlaying() && player->playbackTimerId() == -1);
    QCOMPARE(child<QLabel>("label_maxNum")->text(), QString("0"));
    QVERIFY(child<QPushButton>("btn_open_file")->isEnabled() && !child<QPushButton>("btn_next")->isEnabled());
    player->nextFrame();  // nothing to show
    QCOMPARE(spy->last().at(0).value<Frame>().motorSpeed, -1);
}

void PlayerTest::spinBoxReturn_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("expected");  // frame shown, 0 = refused
    QTest::newRow("return") << "3" << int(Qt::Key_Return) << 3;
    QTest::newRow("enter") << "5" << int(Qt::Key_Enter) << 5;
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
    spy->clear();
    auto* spin = child<QSpinBox>("spinBox_progress");
    auto* edit = spin->findChild<QLineEdit*>();
    edit->clear();
    QTest::keyClicks(edit, typed);
    QTest::keyClick(edit, Qt::Key(key));

    const int now = expected ? expected : 2;
    QCOMPARE(shown(*spy), expected ? QList<int>{expected} : QList<int>{});
    QCOMPARE(messages, expected ? QStringList{}
                                : QStringList{"information: There is an error in the input. Please enter it again"});
    QCOMPARE(QList<int>({player->currentPosition(), child<QSlider>("horizontalSlider")->value(), spin->text().toInt()}),
             QList<int>({now, now, now}));
}

void PlayerTest::openRefused_data()
{
    QTest::addColumn<QVector<QByteArray>>("elements");  // empty: no file
    QTest::addColumn<int>("cutAt");
    const auto tern = QVector<QByteArray>{"Tern"} + testing::ternRevolutions(3);
    QTest::newRow("live session connected") << tern << -1;
    QTest::newRow("missing file") << QVector<QByteArray>{} << -1;
    QTest::newRow("zero length") << tern << 0;
    QTest::newRow("truncated in the first packet") << tern << 100;
    QTest::newRow("model name only") << QVector<QByteArray>{"Tern"} << -1;
    QTest::newRow("unregistered model") << QVector<QByteArray>{"Heron"} + testing::ternRevolutions(3) << -1;
}

void PlayerTest::openRefused()
{
    QFETCH(QVector<QByteArray>, elements);
    QFETCH(int, cutAt);
    const bool live = QTest::currentDataTag() == QByteArray("live session connected");
    auto session = LIdarFactory::GetInstance()->ChangeLidar("Tern");
    session->lidarIp = session->dataIp = "127.0.0.1";
    session->connected = live;
    pathToOpen = dir.filePath(QString("%1.txt").arg(QTest::currentDataTag()));
    QVERIFY(elements.isEmpty() || writeRecording(pathToOpen, elements, cutAt));
    click("btn_open_file");
    session->connected = 0;
    QCOMPARE(messages.join(""), live ? "information: Please disconnect first!" : "information: Unable to parse this file");
    QVERIFY(!player->isLoaded() && spy->isEmpty());

    // Still usable: a good recording opens afterwards (the registry may add a
    // turn left over from an earlier file).
    messages.clear();
    pathToOpen = dir.filePath("good.txt");
    QVERIFY(writeRecording(pathToOpen, QVector<QByteArray>{"Tern"} + testing::ternRevolutions(4)));
    click("btn_open_file");
    QVERIFY2(messages.isEmpty() && player->isLoaded() && spy->size() == 1, qPrintable(messages.join('\n')));
    QVERIFY(player->frameCount() == 3 || player->frameCount() == 4);
}

void PlayerTest::drops_data()
{
    QTest::addColumn<QString>("urls");  // space-separated
    QTest::addColumn<bool>("accepted");
    QTest::addColumn<QString>("path");
    QTest::newRow("recording") << "file:///tmp/my%20rec.txt" << true << "/tmp/my rec.txt";
    QTest::newRow("first counts") << "file:///tmp/a.txt file:///tmp/b.csv" << true << "/tmp/a.txt";
    QTest::newRow("first not txt") << "file:///tmp/a.csv file:///tmp/b.txt" << false << "/tmp/a.csv";
    QTest::newRow("upper case") << "file:///tmp/REC.TXT" << false << "/tmp/REC.TXT";
    QTest::newRow("nothing") << "" << false << "";
}

void PlayerTest::drops()
{
    QFETCH(QString, urls);
    QFETCH(bool, accepted);
    QFETCH(QString, path);
    QMimeData data;
    data.setUrls(QUrl::fromStringList(urls.split(' ', Qt::SkipEmptyParts)));
    QCOMPARE(offline::isAcceptableDrag(&data), accepted);
    QCOMPARE(offline::droppedFilePath(&data), path);
}

QTEST_MAIN(PlayerTest)
#include "tst_player.moc"
