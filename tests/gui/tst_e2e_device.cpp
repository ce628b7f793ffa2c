// The "Setting" tab against a simulated lidar over loopback, one model of
// each family: the GPS test window catching a late time stamp, the motor
// speed chosen in the frequency box showing in the frames, the filter
// changing what the lidar measures, the motor switch stopping and restarting
// the stream, and the panel set up again in the other language.
//
// With SCANDECK_SCREENSHOT_DIR set, the Tern_Plus row also saves the Setting
// tab and the GPS test window there (for the README).

#include "DeviceSettingsPanel.h"
#include "GPSTest.h"
#include "SwitchButton.h"
#include "tst_scandeck_support.h"

#include <QLineEdit>
#include <QTabWidget>

using namespace testing;

namespace {

void settle(int ms)
{
    waitFor([] { return false; }, ms);
}

// The newest frame the window has shown.
const Frame& newest(ScanDeck* w)
{
    QCoreApplication::processEvents();
    return w->lastFrame();
}

int beyondThreeMetres(const Frame& frame)
{
    int n = 0;
    for (const auto& line : frame.points)
        for (const lidar::LidarPoint& p : line)
            n += p.distance > 3000;
    return n;
}

QString field(GPSTest* gps, const QString& name)
{
    return gps->findChild<QLineEdit*>("lineEdit_" + name)->text();
}

void saveScreenshots(ScanDeck* w, GPSTest* gps)
{
    const QString dir = qEnvironmentVariable("SCANDECK_SCREENSHOT_DIR");
    if (dir.isEmpty())
        return;
    auto* tabs = control<QTabWidget>(w, "tabWidget");
    tabs->setCurrentWidget(control(w, "tab_setting"));
    settle(500);  // the page slides in
    const int bottom = tabs->mapTo(w, QPoint(0, tabs->height())).y();
    w->grab(QRect(0, 0, w->width(), bottom + 220)).save(dir + "/setting-tab.png");
    gps->grab().save(dir + "/gps-test.png");
}

}  // namespace

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
    QTest::addColumn<int>("gapMs");  // a late GPS time stamp every half second; 0: none
    QTest::newRow("Tern_Plus") << "Tern_Plus" << 40;
    QTest::newRow("Wren_Kite") << "Wren_Kite" << 0;
}

void DeviceEndToEndTest::panelDrivesTheLidar()
{
    QFETCH(QString, model);
    QFETCH(int, gapMs);
    const bool tern = model.startsWith("Tern");
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
    QVERIFY(waitFor([&] { return frames.frames.size() >= 2; }));

    // The GPS test window catches the late stamp and shows both of the pair.
    auto* gpsButton = control<QAbstractButton>(w, "btn_GPS_test");
    QCOMPARE(gpsButton->isEnabled(), gapMs > 0);
    GPSTest* gps = w->devicePanel()->gpsTest();
    if (gapMs > 0) {
        gpsButton->click();
        QVERIFY(QTest::qWaitForWindowExposed(gps));
        const auto caughtGap = [&] {
            const qint64 apart = field(gps, "timestamp").toLongLong() - field(gps, "timestamp_2").toLongLong();
            return apart >= gapMs && apart <= gapMs + 6;
        };
        QVERIFY(waitFor(caughtGap, 5000));
        for (const QString column : {"", "_2"}) {
            QCOMPARE(field(gps, "yeas" + column).toInt(), QDate::currentDate().year());
            QCOMPARE(field(gps, "millisecond" + column).toLongLong(), field(gps, "timestamp" + column).toLongLong() % 1000);
        }
        saveScreenshots(w, gps);
        gpsButton->click();
        QVERIFY(!gps->isVisible());
    }

    // The frequency box sets the rotation rate, in revolutions per second.
    auto* frequency = control<QComboBox>(w, "comboBox_motor_frequency");
    QCOMPARE(frequency->currentText(), QStringLiteral("10"));
    frequency->setCurrentText("15");
    emit frequency->textActivated("15");
    QVERIFY(waitFor([&] { return newest(w).motorSpeed == 900; }));

    // Tern lidars keep only what lies within three metres; the Wren models stop filtering.
    auto* filter = control<QComboBox>(w, "comboBox_motor_filter");
    if (tern) {
        QCOMPARE(filter->itemText(2), QStringLiteral("Within three meters"));
        emit filter->activated(2);
        const auto nearOnly = [&] { return newest(w).pointCount() > 100 && beyondThreeMetres(newest(w)) == 0; };
        QVERIFY(waitFor(nearOnly));
        emit filter->activated(0);
        QVERIFY(waitFor([&] { return beyondThreeMetres(newest(w)) > 100; }));
    } else {
        emit filter->activated(1);
        QVERIFY(waitFor([&] { return lidar.deviceState().filter == sim::FilterMode::None; }));
    }

    // Motor off: the stream stops once what was on its way has arrived; on: frames again.
    auto* motor = control<SwitchButton>(w, "btn_motor_state");
    QVERIFY(motor->isEnabled() && motor->isChecked());
    QTest::mouseClick(motor, Qt::LeftButton);
    QVERIFY(waitFor([&] { return !lidar.deviceState().motorRunning; }, 3000));
    settle(300);
    const int stopped = frames.frames.size();
    settle(500);
    QCOMPARE(frames.frames.size(), stopped);
    QTest::mouseClick(motor, Qt::LeftButton);
    QVERIFY(waitFor([&] { return frames.frames.size() >= stopped + 3; }));

    // A language change sets the panel up again, in the new language, for the model in the title.
    auto* language = control<QComboBox>(w, "cob_language");
    language->setCurrentIndex(0);
    QCOMPARE(filter->itemText(0), QString::fromUtf8("正常滤波"));
    QCOMPARE(frequency->currentText(), QStringLiteral("15"));  // as the lidar now reports it
    QTRY_COMPARE_WITH_TIMEOUT(gps->windowTitle(), QString::fromUtf8("GPS 测试"), 2000);  // told by a posted event
    language->setCurrentIndex(1);
    QCOMPARE(filter->itemText(0), QStringLiteral("Normal filtering"));
    QCOMPARE(filter->currentIndex(), tern ? 0 : 1);
    QVERIFY2(messages.texts.isEmpty(), qPrintable(messages.texts.join('\n')));
}

SCANDECK_TEST_MAIN(DeviceEndToEndTest)
#include "tst_e2e_device.moc"
