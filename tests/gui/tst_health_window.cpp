// The stream's health in the main window: the "Stream health" dock and the
// amber link readout fed by a simulated lidar that loses packets, "Show
// gaps" drawing the gaps of the frame shown (live and in the player), and
// N / Shift+N in the window.

#include "LinkStatusReadout.h"
#include "OffinePlayWidget.h"
#include "PacketBuilders.h"
#include "OfflineParseState.h"
#include "RecordFile.h"
#include "StreamHealthDock.h"
#include "tst_scandeck_support.h"

#include <QTabWidget>
#include <QToolButton>

using namespace testing;

class HealthWindowTest : public QObject {
    Q_OBJECT
private slots:
    void cleanupTestCase() { quietRegistry(); }
    void liveHealth_data();
    void liveHealth();
    void showGapsInThePlayer();
};

void HealthWindowTest::liveHealth_data()
{
    QTest::addColumn<double>("drop");
    QTest::addColumn<int>("look");
    QTest::newRow("whole stream") << 0.0 << int(LinkStatusReadout::Look::Green);
    QTest::newRow("a tenth of the packets lost") << 0.1 << int(LinkStatusReadout::Look::Amber);
}

// Once a second the dock gets the stream's figures; lost packets turn the
// link readout amber with the reason and "Show gaps" draws them.
void HealthWindowTest::liveHealth()
{
    QFETCH(double, drop);
    QFETCH(int, look);
    ScratchWorkingDir dir;
    MessageRecorder messages;
    SimulatedLidarRig lidar;
    sim::SimOptions options;
    options.faults.drop = drop;
    QVERIFY(lidar.start("Tern", sim::Transport::Udp, options));
    auto window = openWindow();
    ScanDeck* w = window.get();
    auto* dock = w->findChild<StreamHealthDock*>();
    QVERIFY(dock && !dock->isVisible());
    click(w, "btn_stream_health");
    QVERIFY(dock->isVisible());
    QCOMPARE(w->findChild<QTabWidget*>("tabWidget")->count(), 3);

    QVERIFY(connectWindow(*w, "Tern", lidar));
    QVERIFY2(waitFor([&] { return dock->charted("coverage").size() >= 2; }, 10000),
             qPrintable(QString::number(dock->charted("packets").size())));
    // 24 packets a revolution, 10 revolutions a second.
    const double packets = dock->charted("packets").last();
    QVERIFY2(packets > 120 * (1 - drop) && packets < 360, qPrintable(QString::number(packets)));
    const double period = dock->charted("period").last();
    QVERIFY2(period > 80 && period < 120, qPrintable(QString::number(period)));
    auto* link = w->findChild<LinkStatusReadout*>();
    const double coverage = dock->charted("coverage").last();
    if (drop > 0) {
        QVERIFY2(coverage < 100.0, qPrintable(QString::number(coverage)));
        QVERIFY2(waitFor([&] { return int(link->look()) == look; }), qPrintable(link->text()));
        QVERIFY2(link->text().contains(" revolutions incomplete, worst gap "), qPrintable(link->text()));
        click(w, "btn_show_gaps");
        QVERIFY(waitFor([&] { return w->viewer().contains("m_gaps"); }));
    } else {
        QCOMPARE(coverage, 100.0);
        QCOMPARE(int(link->look()), look);
        QVERIFY2(!link->text().contains("incomplete"), qPrintable(link->text()));
        click(w, "btn_show_gaps");
        waitFor([] { return false; }, 300);
        QVERIFY(!w->viewer().contains("m_gaps"));
    }
    click(w, "btn_disconnect");
    QCOMPARE(int(link->look()), int(LinkStatusReadout::Look::Hidden));
    QVERIFY(messages.texts.isEmpty());
}

// A recording with a packet lost in its fourth turn: the gap is drawn while
// that frame is shown and "Show gaps" is on, and nowhere else. The settled
// parse makes its first frame a one-packet turn of its own (tst_player), so
// turn r is at position r + 2.
void HealthWindowTest::showGapsInThePlayer()
{
    ScratchWorkingDir dir;
    MessageRecorder messages;
    QTemporaryDir files;
    QVector<QByteArray> packets = ternRevolutions(10);
    packets.remove(3 * 24 + 5);  // 75 to 90 degrees of frame 4
    const QString path = files.filePath("drop.txt");
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly) && lidar::writeRecordElements(file, QVector<QByteArray>{"Tern"} + packets));
    file.close();
    settleOfflineParse("Tern");

    auto window = openWindow();
    ScanDeck* w = window.get();
    auto* player = control<OffinePlayWidget>(w, "offline");
    player->setOpenFileHook([path](const QString&, const QString&, const QString&) { return path; });
    clickPlayer(player, "btn_open_file");
    QVERIFY(waitFor([&] { return player->isLoaded() && !player->isIndexing(); }, 10000));
    auto* gaps = control<QToolButton>(w, "btn_show_gaps");
    QVERIFY(gaps && gaps->isCheckable() && !gaps->isChecked());

    player->nextFrame();
    player->nextFrame();
    QCOMPARE(player->currentPosition(), 2);
    gaps->click();
    QVERIFY(!w->viewer().contains("m_gaps"));  // a whole turn
    // N in the window goes to the incomplete frame.
    w->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(w));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_N);
    QCOMPARE(player->currentPosition(), 5);
    QVERIFY(w->viewer().contains("m_gaps"));
    gaps->click();
    QVERIFY(!w->viewer().contains("m_gaps"));
    gaps->click();
    QVERIFY(w->viewer().contains("m_gaps"));
    player->nextFrame();
    QVERIFY(!w->viewer().contains("m_gaps"));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_N, Qt::ShiftModifier);
    QCOMPARE(player->currentPosition(), 5);
    QVERIFY(w->viewer().contains("m_gaps"));
    clickPlayer(player, "btn_stop");
    QVERIFY(!w->viewer().contains("m_gaps"));
    QVERIFY(messages.texts.isEmpty());
}

SCANDECK_TEST_MAIN(HealthWindowTest)
#include "tst_health_window.moc"
