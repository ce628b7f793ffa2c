// The offline player in the main window: its controls as the window shows
// them, connecting refused while a file is loaded, and input that is no
// usable recording.

#include "OffinePlayWidget.h"
#include "RecordFile.h"
#include "SimRecording.h"
#include "tst_scandeck_support.h"

#include <QBuffer>
#include <QComboBox>
#include <QPushButton>
#include <QSet>

using namespace testing;

namespace {

// Tells frames of one recording apart: the ranges carry noise.
qint64 signature(const Frame& frame)
{
    qint64 sum = pointCount(frame);
    for (const auto& line : frame.points)
        for (const lidar::LidarPoint& p : line)
            sum = sum * 31 + p.distance;
    return sum;
}

void clickPlayer(OffinePlayWidget* player, const char* name)
{
    player->findChild<QPushButton*>(QLatin1String(name))->click();
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

QByteArray recordingBytes(const QVector<QByteArray>& elements)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    lidar::writeRecordElements(buffer, elements);
    return buffer.data();
}

}  // namespace

class PlaybackEndToEndTest : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() { m_dir = std::make_unique<ScratchWorkingDir>(); }
    void cleanupTestCase() { m_dir.reset(); }
    void playerControlsInTheWindow();
    void unusableInputIsRefused_data();
    void unusableInputIsRefused();

private:
    std::unique_ptr<ScratchWorkingDir> m_dir;
    QTemporaryDir m_files;
};

void PlaybackEndToEndTest::playerControlsInTheWindow()
{
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
    QVERIFY(count >= 5);

    // Next to the end and once beyond (loading showed frame 1 at position 0,
    // so the first Next shows it again), then previous back and once beyond.
    shown.clear();
    for (int i = 0; i <= count; ++i)
        clickPlayer(player, "btn_next");
    QCOMPARE(player->currentPosition(), count);
    const QList<qint64> order = shown.mid(0, count);  // frames 1..count
    QCOMPARE(QSet<qint64>(order.begin(), order.end()).size(), count);
    QCOMPARE(shown.mid(count), QList<qint64>{order.last()});
    shown.clear();
    for (int i = 1; i <= count; ++i)
        clickPlayer(player, "btn_last");
    QCOMPARE(player->currentPosition(), 1);
    QList<qint64> backwards = order.mid(0, count - 1);
    std::reverse(backwards.begin(), backwards.end());
    QCOMPARE(shown, backwards << order.first());

    // Playing runs to the end and stops there; the speed changes at once.
    auto* speed = player->findChild<QComboBox*>(QStringLiteral("comboBox"));
    shown.clear();
    clickPlayer(player, "btn_play");
    speed->setCurrentIndex(0);
    QCOMPARE(player->playbackInterval(), 200);
    speed->setCurrentIndex(3);
    QCOMPARE(player->playbackInterval(), 33);
    QVERIFY(player->isPlaying());
    QVERIFY(waitFor([&] { return !player->isPlaying(); }, 5000));
    QCOMPARE(player->currentPosition(), count);
    QCOMPARE(shown, order.mid(1));

    // Play after the end starts from the first frame; with loop on, the end
    // goes round to the first frame again.
    clickPlayer(player, "btn_circulation");
    shown.clear();
    clickPlayer(player, "btn_play");
    QVERIFY(waitFor([&] { return shown.size() > count; }, 5000));
    QCOMPARE(shown.mid(0, count + 1), order + QList<qint64>{order.first()});

    // While a file is loaded the window will not connect.
    click(w, "btn_connect");
    click(w, "btn_auto_connect");
    const QString refusal = QStringLiteral("information: Please stop the offline playback first");
    QCOMPARE(messages.texts(), (QStringList{refusal, refusal}));
    QVERIFY(!w->connectDialog() && !w->isLidarConnected());

    // Stop unloads and empties the display.
    clickPlayer(player, "btn_stop");
    QVERIFY(!player->isLoaded() && !player->isPlaying());
    QCOMPARE(w->frameCloud().size(), size_t(0));
    const int afterStop = shown.size();
    waitFor([] { return false; }, 200);
    QCOMPARE(shown.size(), afterStop);
}

void PlaybackEndToEndTest::unusableInputIsRefused_data()
{
    QTest::addColumn<QByteArray>("bytes");
    const QByteArray good = recordingBytes(lidar::readRecordFile(simulatedRecording(m_files, "Tern", 3)));
    QVector<QByteArray> foreign = lidar::readRecordFile(simulatedRecording(m_files, "Wren_Plus", 3));
    foreign[0] = "Kestrel";
    QTest::newRow("not a recording") << QByteArray("time,x,y,z\n0,1.5,2.5,0\n");
    // Cut inside the first packet: the model name survives, no packet does.
    QTest::newRow("truncated recording") << good.left(4 + 8 + 4 + 50);
    QTest::newRow("unregistered model") << recordingBytes(foreign);
}

void PlaybackEndToEndTest::unusableInputIsRefused()
{
    QFETCH(QByteArray, bytes);
    MessageRecorder messages;
    QString toOpen = m_files.filePath(QStringLiteral("bad.txt"));
    QFile bad(toOpen);
    QVERIFY(bad.open(QIODevice::WriteOnly | QIODevice::Truncate) && bad.write(bytes) == bytes.size());
    bad.close();
    auto window = openWindow();
    auto* player = control<OffinePlayWidget>(window.get(), "offline");
    const QString titleBefore = window->windowTitle();
    player->setOpenFileHook([&toOpen](const QString&, const QString&, const QString&) { return toOpen; });
    clickPlayer(player, "btn_open_file");
    QCOMPARE(messages.texts(), QStringList{"information: Unable to parse this file"});
    QVERIFY(!player->isLoaded());
    QCOMPARE(window->windowTitle(), titleBefore);

    // The viewer still works: a good recording loads after the bad one.
    toOpen = simulatedRecording(m_files, QStringLiteral("Wren_Kite"), 3);
    clickPlayer(player, "btn_open_file");
    QVERIFY(player->isLoaded());
    QCOMPARE(window->windowTitle(), QStringLiteral("Wren_Kite"));
    QVERIFY(window->frameCloud().size() > 100);
}

SCANDECK_TEST_MAIN(PlaybackEndToEndTest)
#include "tst_e2e_playback.moc"
