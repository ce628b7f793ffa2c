// The Setting tab against a simulated lidar over loopback, one model of each
// family: the GPS test window catching a late time stamp, the frequency box
// setting the motor speed the frames report, the filter, the motor switch
// stopping and restarting the stream, the panel set up again in Chinese.
// With SCANDECK_SCREENSHOT_DIR set, the Tern_Plus row saves the Setting tab
// and the GPS test window there (for the README).

#include "DeviceSettingsPanel.h"
#include "GPSTest.h"
#include "SwitchButton.h"
#include "tst_scandeck_support.h"

#include <QLineEdit>
#include <QTabWidget>

using namespace testing;

class DeviceEndToEndTest : public QObject {
    Q_OBJECT
private slots:
    void cleanup() { quietRegistry(); }
    void panelDrivesTheLidar_data();
    void panelDrivesTheLidar();
};

void DeviceEndToEndTest::panelDrivesTheLidar_data()
{
    QTest::addColumn<QString>("model");
    QTest::addColumn<int>("gapMs");  // a GPS time stamp this late every half second
    QTest::newRow("Tern_Plus") << "Tern_Plus" << 40;
    QTest::newRow("Wren_Kite") << "Wren_Kite" << 0;
}

void DeviceEndToEndTest::panelDrivesTheLidar()
{
    QFETCH(QString, model);
    QFETCH(int, gapMs);
    ScratchWorkingDir dir;
    useShippedSettings();
    MessageRecorder messages;
    SimulatedLidarRig lidar;
    sim::SimOptions options;
    options.gpsGapMs = gapMs;
    options.gpsGapEverySeconds = 0.5;
    QVERIFY(lidar.start(model, sim::Transport::Udp, options));
    auto window = openWindow();
    ScanDeck* w = window.get();
    QVERIFY(connectWindow(*w, model, lidar));
    FrameCollector frames(w->session().get());
    const auto newest = [w] { return QCoreApplication::processEvents(), w->lastFrame(); };
    const auto beyondThreeMetres = [&] {
        int n = 0;
        for (const auto& line : newest().points)
            n += int(std::count_if(line.begin(), line.end(), [](const lidar::LidarPoint& p) { return p.distance > 3000; }));
        return n;
    };

    GPSTest* gps = w->devicePanel()->gpsTest();
    QCOMPARE(control(w, "btn_GPS_test")->isEnabled(), gapMs > 0);
    if (gapMs > 0) {
        click(w, "btn_GPS_test");
        const auto field = [gps](const QString& name) { return gps->findChild<QLineEdit*>("lineEdit_" + name)->text(); };
        QVERIFY(waitFor([&] {
            const qint64 apart = field("timestamp").toLongLong() - field("timestamp_2").toLongLong();
            return apart >= gapMs && apart <= gapMs + 6;
        }));
        // Each column shows its own stamp (whose nanoseconds, made in double, may fall just short of the millisecond).
        for (const QString column : {"", "_2"})
            QVERIFY((field("millisecond" + column).toLongLong() - field("timestamp" + column).toLongLong() + 1000) % 1000 <= 1);
        if (!qEnvironmentVariable("SCANDECK_SCREENSHOT_DIR").isEmpty()) {
            const QString shots = qEnvironmentVariable("SCANDECK_SCREENSHOT_DIR");
            auto* tabs = control<QTabWidget>(w, "tabWidget");
            tabs->setCurrentWidget(control(w, "tab_setting"));
            waitFor([] { return false; }, 500);  // the page slides in
            w->grab(QRect(0, 0, w->width(), tabs->mapTo(w, QPoint(0, tabs->height())).y() + 220))
                .save(shots + "/setting-tab.png");
            gps->grab().save(shots + "/gps-test.png");
        }
        click(w, "btn_GPS_test");
        QVERIFY(!gps->isVisible());
    }

    // Revolutions per second: the frames report 15 x 60 rpm.
    auto* frequency = control<QComboBox>(w, "comboBox_motor_frequency");
    QCOMPARE(frequency->currentText(), QStringLiteral("10"));
    emit frequency->textActivated("15");
    QVERIFY(waitFor([&] { return newest().motorSpeed == 900; }));

    // "Within three meters" is a Tern mode; the Wren models know normal and none.
    auto* filter = control<QComboBox>(w, "comboBox_motor_filter");
    const bool tern = filter->count() == 3;
    emit filter->activated(tern ? 2 : 1);
    if (tern)
        QVERIFY(waitFor([&] { return newest().pointCount() > 100 && beyondThreeMetres() == 0; }));
    QVERIFY(waitFor([&] { return int(lidar.deviceState().filter) == (tern ? 2 : 1); }));

    // Motor off: the stream stops once what was on its way has arrived; on: frames again.
    auto* motor = control<SwitchButton>(w, "btn_motor_state");
    QVERIFY(motor->isEnabled() && motor->isChecked());
    QTest::mouseClick(motor, Qt::LeftButton);
    QVERIFY(waitFor([&] { return !lidar.deviceState().motorRunning; }, 3000));
    waitFor([] { return false; }, 300);
    const int stopped = frames.frames.size();
    waitFor([] { return false; }, 500);
    QCOMPARE(frames.frames.size(), stopped);
    QTest::mouseClick(motor, Qt::LeftButton);
    QVERIFY(waitFor([&] { return frames.frames.size() >= stopped + 3; }));

    // A language change sets the panel up again from what the lidar now reports.
    control<QComboBox>(w, "cob_language")->setCurrentIndex(0);
    QCOMPARE(filter->itemText(0) + " " + frequency->currentText(), QString::fromUtf8("正常滤波 15"));
    QCOMPARE(filter->currentIndex(), tern ? 2 : 1);
    QTRY_COMPARE_WITH_TIMEOUT(gps->windowTitle(), QString::fromUtf8("GPS 测试"), 2000);  // a posted event
    QVERIFY2(messages.texts.isEmpty(), qPrintable(messages.texts.join('\n')));
}

SCANDECK_TEST_MAIN(DeviceEndToEndTest)
#include "tst_e2e_device.moc"
