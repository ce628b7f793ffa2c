// Recording from the main window under a flood of frames (the simulated
// lidar sending ten times faster than a real one): started and stopped many
// times in a row, each stop gives one "File saved", the button's label comes
// back and the file is a whole recording that plays.

#include "RecordFile.h"
#include "RecordingParse.h"
#include "tst_scandeck_support.h"

#include <QStatusBar>

using namespace testing;

class RecordingTest : public QObject {
    Q_OBJECT
private slots:
    void cleanup() { quietRegistry(); }

    void stopUnderLoad_data();
    void stopUnderLoad();
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
        LidarAnalysis* session = w->session().get();
        const quint64 frames = session->framesCompleted.load();
        QVERIFY2(waitFor([&] { return session->framesCompleted.load() >= frames + framesBefore; }, 10000),
                 qPrintable(at + "no frames"));

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

        const lidar::RecordLayout layout = lidar::scanRecordFile(path);
        QVERIFY2(layout.isWhole(), qPrintable(at + QString("%1 of %2 elements").arg(layout.complete).arg(layout.announced)));
        QCOMPARE(layout.first, QByteArray("Tern"));
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

SCANDECK_TEST_MAIN(RecordingTest)
#include "tst_recording.moc"
