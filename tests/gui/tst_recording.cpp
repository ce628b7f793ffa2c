// Recording from the main window under a flood of frames (the simulated
// lidar sending ten times faster than a real one): started and stopped many
// times in a row, each stop gives one "File saved", the button's label comes
// back and the file is a whole recording that plays. And the readout of a
// running recording on a clock the test moves by hand.

#include "RecordFile.h"
#include "RecordingParse.h"
#include "RecordingReadout.h"
#include "tst_scandeck_support.h"

#include <QStatusBar>

using namespace testing;

class RecordingTest : public QObject {
    Q_OBJECT
private slots:
    void cleanup() { quietRegistry(); }

    void stopUnderLoad_data();
    void stopUnderLoad();
    void readoutText_data();
    void readoutText();
    void readoutFollowsTheRecording();
};

void RecordingTest::stopUnderLoad_data()
{
    QTest::addColumn<QString>("ending");  // how each recording is ended, and the flood
    QTest::addColumn<int>("framesBefore");  // revolutions the lidar completes before it ends
    QTest::addColumn<int>("cycles");
    QTest::newRow("stop while frames arrive") << "stop" << 3 << 20;
    // Faster than the session cuts them, if it cannot keep up.
    QTest::newRow("stop in a flood of packets") << "flood" << 3 << 10;
    QTest::newRow("stop right after the start") << "stop" << 0 << 20;
    QTest::newRow("stop while the display is paused") << "pause" << 3 << 10;
    QTest::newRow("disconnect while recording") << "disconnect" << 3 << 6;
}

void RecordingTest::stopUnderLoad()
{
    QFETCH(QString, ending);
    QFETCH(int, framesBefore);
    QFETCH(int, cycles);
    ScratchWorkingDir dir;
    MessageRecorder messages;
    QTemporaryDir files;
    SimulatedLidarRig lidar;
    sim::SimOptions options;
    options.speedUp = 10.0;
    options.fast = ending == "flood";
    QVERIFY(lidar.start(QStringLiteral("Tern"), sim::Transport::Udp, options));
    auto window = openWindow();
    ScanDeck* w = window.get();
    QString path;
    w->setSaveFileHook([&path](QWidget*, const QString&, const QString&, const QString&) { return path; });
    auto* button = control<QAbstractButton>(w, "btn_save_data");
    auto* readout = w->findChild<RecordingReadout*>();
    QVERIFY(readout && readout->isHidden());

    QStringList expected;
    for (int cycle = 0; cycle < cycles; ++cycle) {
        const QString at = QStringLiteral("cycle %1: ").arg(cycle);
        if (!w->isLidarConnected())
            QVERIFY2(connectWindow(*w, QStringLiteral("Tern"), lidar), qPrintable(at + "no connection"));
        if (ending == QLatin1String("pause") && w->isPlaying())
            click(w, "btn_play_pause");
        path = files.filePath(QStringLiteral("rec%1.txt").arg(cycle));

        click(w, "btn_save_data");
        QVERIFY2(button->isChecked() && button->text() == QLatin1String("Recording data"), qPrintable(at + button->text()));
        QVERIFY(!readout->isHidden());
        LidarAnalysis* session = w->session().get();
        const quint64 frames = session->framesCompleted.load();
        QVERIFY2(waitFor([&] { return session->framesCompleted.load() >= frames + framesBefore; }, 10000),
                 qPrintable(at + "no frames"));
        if (framesBefore > 0) {
            readout->refresh();  // the packets cut so far reach the readout
            QVERIFY2(!readout->text().contains(QLatin1String(" 0 pkt")), qPrintable(at + readout->text()));
        }

        if (ending == QLatin1String("disconnect"))
            click(w, "btn_disconnect");
        else
            click(w, "btn_save_data");
        // The file is complete when the click returns; the message follows
        // from the session's thread.
        expected << QStringLiteral("File saved: File save path:") + path;
        waitFor([&] { return messages.texts.size() >= expected.size(); }, 5000);
        QCOMPARE(messages.texts, expected);
        QVERIFY2(!button->isChecked() && button->text() == QLatin1String("Recorded data"), qPrintable(at + button->text()));
        QVERIFY(readout->isHidden());

        const lidar::RecordLayout layout = lidar::scanRecordFile(path);
        QVERIFY2(layout.isWhole(), qPrintable(at + QString("%1 of %2 elements").arg(layout.complete).arg(layout.announced)));
        QCOMPARE(layout.first, QByteArray("Tern"));
        // Every packet the writer counted is in the file, and none more.
        QCOMPARE(quint64(layout.complete - 1), session->recordingCounts().packets);
        QCOMPARE(quint64(layout.size), session->recordingCounts().bytes);
        if (framesBefore > 0) {
            const lidar::ParsedRecording played = lidar::parseRecording(path);
            QCOMPARE(played.model, QStringLiteral("Tern"));
            QVERIFY2(played.frames.size() >= 2, qPrintable(at + QString::number(played.frames.size())));
        }
    }
    // No late or second message for any of them.
    waitFor([] { return false; }, 300);
    QCOMPARE(messages.texts, expected);
}

void RecordingTest::readoutText_data()
{
    QTest::addColumn<qint64>("elapsedMs");
    QTest::addColumn<quint64>("packets");
    QTest::addColumn<quint64>("bytes");
    QTest::addColumn<QString>("text");
    // A fresh file holds the count and the model name.
    QTest::newRow("just started") << qint64(0) << quint64(0) << quint64(12) << "● 00:00 · 0 pkt · 12 B";
    // The timer may fire a little early: the second still counts.
    QTest::newRow("tick a little early") << qint64(996) << quint64(750) << quint64(72012) << "● 00:01 · 750 pkt · 72.0 kB";
    QTest::newRow("minutes") << qint64(65000) << quint64(48750) << quint64(4680012) << "● 01:05 · 48750 pkt · 4.7 MB";
    QTest::newRow("past an hour") << qint64(3725000) << quint64(2793750) << quint64(268200012)
                                  << "● 1:02:05 · 2.8M pkt · 268.2 MB";
    QTest::newRow("hundreds of thousands") << qint64(600000) << quint64(450000) << quint64(43200012)
                                           << "● 10:00 · 450k pkt · 43.2 MB";
    QTest::newRow("a day") << qint64(86400000) << quint64(64800000) << quint64(6220800012)
                           << "● 24:00:00 · 64.8M pkt · 6.2 GB";
}

void RecordingTest::readoutText()
{
    QFETCH(qint64, elapsedMs);
    QFETCH(quint64, packets);
    QFETCH(quint64, bytes);
    QFETCH(QString, text);
    QCOMPARE(RecordingReadout::describe(elapsedMs, {packets, bytes}), text);
    // The tooltip has the exact numbers.
    const QString full = RecordingReadout::describeInFull(elapsedMs, {packets, bytes}, QStringLiteral("/data/a.txt"));
    QVERIFY2(full.contains(QStringLiteral("/data/a.txt")) && full.contains(QString::number(packets) + " packets")
                 && full.contains(QString::number(bytes) + " bytes"),
             qPrintable(full));
}

// Shown from the start, counting from it, until the recording ends by
// itself (a write failed); the window's own stop is in stopUnderLoad.
void RecordingTest::readoutFollowsTheRecording()
{
    qint64 now = 5000;
    RecordingReadout::Progress progress{true, {0, 12}};
    RecordingReadout readout(nullptr, [&now] { return now; });
    QVERIFY(readout.isHidden());
    readout.refresh();  // nothing watched: nothing shown
    QVERIFY(readout.isHidden());

    readout.watch([&progress] { return progress; }, QStringLiteral("rec.txt"));
    QVERIFY(!readout.isHidden());
    QCOMPARE(readout.text(), QStringLiteral("● 00:00 · 0 pkt · 12 B"));
    now += 1000;
    progress.counts = {750, 72012};
    readout.refresh();
    QCOMPARE(readout.text(), QStringLiteral("● 00:01 · 750 pkt · 72.0 kB"));
    QVERIFY(readout.toolTip().contains(QStringLiteral("rec.txt")));

    progress.recording = false;  // the session ended it
    now += 1000;
    readout.refresh();
    QVERIFY(readout.isHidden() && !readout.isWatching());
}

SCANDECK_TEST_MAIN(RecordingTest)
#include "tst_recording.moc"
