// The Setting tab's parts without a lidar: the motor switch, the panel set up
// from settings files, each control's command reaching a stand-in session on
// the right thread, the GPS test window's catching rule, the network tool.

#include "DeviceSettingsPanel.h"
#include "GPSTest.h"
#include "GpsTimingCharts.h"
#include "LoopbackLidar.h"
#include "NetworkToolLauncher.h"
#include "SwitchButton.h"

#include <QComboBox>
#include <algorithm>
#include <QDir>
#include <QLineEdit>
#include <QMutex>
#include <QProcess>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QThread>
#include <QToolButton>
#include <QtTest>

using testing::waitFor;

namespace {

// Notes each command as "what argument thread", "worker" being the session's own thread.
struct RecordingSession : LidarAnalysis {
    void ParseLidarData() override {}
    QByteArray ReadParamCommand() override { return QByteArray(); }
    void SetMotorFrequency(quint8 code) override { note("motor", code); }
    void SetDeviceParam(quint8 value) override { note("frequency", value); }
    void SetLidarFilter(int mode) override { note("filter", mode); }
    void note(const char* what, int argument)
    {
        QMutexLocker lock(&mutex);
        calls << QString("%1 %2 %3").arg(what).arg(argument).arg(QThread::currentThread() == thread() ? "worker" : "ui");
        calls.sort();
    }
    QStringList recorded()
    {
        QMutexLocker lock(&mutex);
        return calls;
    }
    QMutex mutex;
    QStringList calls;
};

struct PanelRig {
    SwitchButton motor;
    QComboBox filter, frequency;
    QToolButton gps;
    DeviceSettingsPanel panel{{&motor, &filter, &frequency, &gps}};

    // "gps± motor± filter±[items]@index frequency±[items]@index"
    QString state() const
    {
        const auto sign = [](const QWidget& w) { return QString(w.isEnabled() ? "+" : "-"); };
        const auto box = [&](const QComboBox& b) {
            QStringList items;
            for (int i = 0; i < b.count(); ++i)
                items << b.itemText(i);
            return sign(b) + "[" + items.join('|') + "]@" + QString::number(b.currentIndex());
        };
        return "gps" + sign(gps) + " motor" + sign(motor) + " filter" + box(filter) + " frequency" + box(frequency);
    }
};

bool settled(const SwitchButton& button)
{
    return waitFor([&] { return !button.isAnimating(); }, 3000);
}

// `seen` is `over` painted at `opacity` on `under`, give or take rounding.
bool blended(QRgb seen, const QColor& over, double opacity, QRgb under)
{
    const auto near = [&](int top, int bottom, int pixel) { return std::abs(bottom + (top - bottom) * opacity - pixel) <= 3; };
    return near(over.red(), qRed(under), qRed(seen)) && near(over.green(), qGreen(under), qGreen(seen))
           && near(over.blue(), qBlue(under), qBlue(seen));
}

// Current stamp `differenceNs` after `previousNs`; the calendar fields told apart by `second`.
lidar::GPSTime stamp(uint64_t previousNs, qint64 differenceNs, int second)
{
    lidar::GPSTime t;
    t.year = 2024, t.month = 5, t.day = 20, t.hour = 12, t.minute = 34, t.second = second, t.millisecond = 999;
    for (int i = 0; i < 8; ++i)
        t.previous[i] = second * 10 + i;
    t.previousNs = previousNs;
    t.currentNs = uint64_t(qint64(previousNs) + differenceNs);
    return t;
}

QString shownFields(GPSTest& window)
{
    QStringList texts;
    for (const char* suffix : {"", "_2"})
        for (const char* f : {"yeas", "month", "day", "hour", "minute", "seconde", "millisecond", "microsecond", "timestamp"})
            texts << window.findChild<QLineEdit*>(QString("lineEdit_%1%2").arg(f, suffix))->text();
    return texts.join(' ');
}

}  // namespace

class DevicePanelTest : public QObject {
    Q_OBJECT
private slots:
    void motorSwitch_data();
    void motorSwitch();
    void configure_data();
    void configure();
    void commands_data();
    void commands();
    void gpsTest_data();
    void gpsTest();
    void networkTool();
    void gpsChartsKeepAnOddPacket();
};

void DevicePanelTest::motorSwitch_data()
{
    QTest::addColumn<bool>("startOn");
    QTest::addColumn<bool>("enabled");
    QTest::addColumn<QString>("action");  // a "left" or "right" click, or "code": setChecked(!startOn)
    QTest::addColumn<QString>("emitted");
    QTest::addColumn<bool>("endsOn");
    QTest::addColumn<QColor>("track");
    QTest::addColumn<double>("opacity");
    QTest::addColumn<QColor>("knob");
    const QColor grey(60, 60, 60), white(Qt::white), green(Qt::green);
    QTest::newRow("left click: off") << true << true << "left" << "false" << false << grey << 0.8 << white;
    QTest::newRow("left click: on") << false << true << "left" << "true" << true << green << 0.6 << white;
    QTest::newRow("right click") << false << true << "right" << "" << false << grey << 0.8 << white;
    QTest::newRow("disabled") << true << false << "left" << "" << true << grey << 0.26 << grey;
    QTest::newRow("from code") << true << true << "code" << "" << false << grey << 0.8 << white;
}

void DevicePanelTest::motorSwitch()
{
    QFETCH(bool, startOn);
    QFETCH(bool, enabled);
    QFETCH(QString, action);
    QFETCH(QString, emitted);
    QFETCH(bool, endsOn);
    QFETCH(QColor, track);
    QFETCH(double, opacity);
    QFETCH(QColor, knob);
    const int width = 120, height = 30;
    SwitchButton sw;
    QSignalSpy toggled(&sw, &SwitchButton::toggled);
    QVERIFY(sw.isChecked() && sw.isAnimating());  // on from the start, the knob on its way right
    sw.resize(width, height);
    sw.show();
    QVERIFY(QTest::qWaitForWindowExposed(&sw) && settled(sw));
    sw.setChecked(startOn);
    sw.setEnabled(enabled);
    QVERIFY(settled(sw));
    sw.setChecked(startOn);  // the state it has: nothing moves
    QVERIFY(!sw.isAnimating());

    if (action == "code")
        sw.setChecked(!startOn);
    else
        QTest::mouseClick(&sw, action == "left" ? Qt::LeftButton : Qt::RightButton);
    QCOMPARE(toggled.isEmpty() ? QString() : toggled.takeFirst().at(0).toString(), emitted);
    QVERIFY(toggled.isEmpty() && sw.isChecked() == endsOn && settled(sw));
    const double end = endsOn ? width - height + 1 : -1;  // one pixel past the end of the travel
    QCOMPARE(sw.knobX(), end);
    const QImage image = sw.grab().toImage();
    QVERIFY(blended(image.pixel(width / 2, 4), track, opacity, image.pixel(0, 0)));  // (0, 0) lies off the track
    QCOMPARE(QColor(image.pixel(int(end) + height / 2, height / 2)), knob);
}

void DevicePanelTest::configure_data()
{
    QTest::addColumn<QString>("group");  // the lines of group [M]; "-": no such group
    QTest::addColumn<int>("filterMode");
    QTest::addColumn<int>("frequency");
    QTest::addColumn<QString>("expected");
    const QString three = "filter+[Normal filtering|No filtering|Within three meters]@";
    const QString on = "GPS test function=true\nmotor on-off switch function=true\n";
    QTest::newRow("three filters") << on + "lidar filter function=a/b/c\nmotor frequenc function=10_12_15" << 2 << 12
                                   << "gps+ motor+ " + three + "2 frequency+[10|12|15]@1";
    QTest::newRow("two filters") << on + "lidar filter function=a/b\nmotor frequenc function=5" << 1 << 7
                                 << "gps+ motor+ filter+[Normal filtering|No filtering]@1 frequency+[5]@0";
    QTest::newRow("one part") << "lidar filter function=x\nmotor frequenc function=false" << 0 << 0
                              << "gps- motor- filter+[Cannot be set]@0 frequency-[Cannot be set]@0";
    QTest::newRow("a//b") << "lidar filter function=a//b\nmotor frequenc function=" << 0 << 0
                          << "gps- motor- " + three + "0 frequency+[]@0";
    QTest::newRow("exact comparisons")
        << "GPS test function=TRUE\nmotor on-off switch function=True\nmotor frequenc function=False" << 0 << 0
        << "gps- motor- filter-[]@-1 frequency+[False]@0";
    QTest::newRow("false, empty") << "GPS test function=false\nmotor on-off switch function=false\nlidar filter function="
                                  << 0 << 0 << "gps- motor- filter-[]@-1 frequency+[]@0";
    QTest::newRow("missing group") << "-" << 0 << 0 << "gps- motor- filter-[]@-1 frequency+[]@0";
}

void DevicePanelTest::configure()
{
    QFETCH(QString, group);
    QFETCH(int, filterMode);
    QFETCH(int, frequency);
    QFETCH(QString, expected);
    QTemporaryDir dir;
    QFile file(dir.filePath("connect_type.ini"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("[Full]\nGPS test function=true\nmotor on-off switch function=true\nlidar filter function=a/b/c\n"
               "motor frequenc function=1_2\n" + (group == "-" ? QByteArray() : "[M]\n" + group.toUtf8() + "\n"));
    file.close();
    PanelRig rig;
    LidarParam param;
    param.value1 = filterMode;
    param.value2 = frequency;
    rig.panel.configure("Full", LidarParam(), IniSettings(file.fileName()));  // nothing of it may remain
    rig.panel.configure("M", param, IniSettings(file.fileName()));
    QCOMPARE(rig.state(), expected);
}

void DevicePanelTest::commands_data()
{
    QTest::addColumn<QString>("session");  // connected, disconnected, none, replaced (another bound before)
    QTest::addColumn<QString>("actions");
    QTest::addColumn<QStringList>("calls");  // sorted
    QTest::newRow("each control") << "connected" << "click, filter 2, frequency 12"
                                  << QStringList{"filter 2 worker", "frequency 12 ui", "motor 0 worker"};
    QTest::newRow("switch back on") << "connected" << "off, click" << QStringList{"motor 1 worker"};
    QTest::newRow("frequency texts") << "connected" << "frequency 300, frequency -1, frequency 1O, frequency "
                                     << QStringList{"frequency 0 ui", "frequency 0 ui", "frequency 255 ui", "frequency 44 ui"};
    QTest::newRow("replaced") << "replaced" << "click" << QStringList{"motor 0 worker"};
    QTest::newRow("disconnected") << "disconnected" << "click, filter 1, frequency 10" << QStringList();
    QTest::newRow("none") << "none" << "click, filter 1, frequency 10" << QStringList();
}

void DevicePanelTest::commands()
{
    QFETCH(QString, session);
    QFETCH(QString, actions);
    QFETCH(QStringList, calls);
    PanelRig rig;
    rig.motor.resize(64, 26);
    QThread worker;
    worker.start();
    auto recorder = std::make_shared<RecordingSession>(), earlier = std::make_shared<RecordingSession>();
    recorder->moveToThread(&worker);
    recorder->connectionType = session == "disconnected" ? -1 : lidar::NetworkConnection;
    earlier->connectionType = lidar::NetworkConnection;
    if (session == "replaced")
        rig.panel.bindSession(earlier);
    if (session != "none")
        rig.panel.bindSession(recorder);

    for (const QString& action : actions.split(", ")) {
        if (action == "off")
            rig.motor.setChecked(false);  // from code: no command
        else if (action == "click")
            QTest::mouseClick(&rig.motor, Qt::LeftButton);
        else if (action.startsWith("filter"))
            emit rig.filter.activated(action.section(' ', 1).toInt());
        else
            emit rig.frequency.textActivated(action.section(' ', 1));
    }
    waitFor([&] { return !calls.isEmpty() && recorder->recorded().size() >= calls.size(); }, calls.isEmpty() ? 100 : 3000);
    QCOMPARE(recorder->recorded(), calls);
    QVERIFY(earlier->recorded().isEmpty());
    QThread* here = thread();  // released here, so back before the worker ends
    QMetaObject::invokeMethod(recorder.get(), [&] { recorder->moveToThread(here); }, Qt::BlockingQueuedConnection);
    worker.quit();
    QVERIFY(worker.wait(3000));
}

void DevicePanelTest::gpsTest_data()
{
    QTest::addColumn<QString>("bounds");  // texts of minimum and maximum
    QTest::addColumn<QString>("window");  // shown, hidden, paused
    QTest::addColumn<qint64>("differenceNs");
    QTest::addColumn<bool>("caught");
    const qint64 ms = 1000000;
    QTest::newRow("2 ms") << "2 10" << "shown" << 2 * ms << false;
    QTest::newRow("1.999 ms counts as 1") << "2 10" << "shown" << 2 * ms - 1 << true;
    QTest::newRow("10.999 ms counts as 10") << "2 10" << "shown" << 11 * ms - 1 << false;
    QTest::newRow("11 ms backwards") << "2 10" << "shown" << -11 * ms << true;
    QTest::newRow("hidden") << "2 10" << "hidden" << 50 * ms << false;
    QTest::newRow("paused") << "2 10" << "paused" << 50 * ms << false;
    QTest::newRow("minimum above maximum") << "20 5" << "shown" << 12 * ms << true;
    QTest::newRow("bounds not numbers are 0") << "x -3" << "shown" << 1 * ms << true;
}

void DevicePanelTest::gpsTest()
{
    QFETCH(QString, bounds);
    QFETCH(QString, window);
    QFETCH(qint64, differenceNs);
    QFETCH(bool, caught);
    GPSTest gps;
    QCOMPARE(gps.minimum() * 100 + gps.maximum(), uint64_t(210));
    gps.show();
    QVERIFY(QTest::qWaitForWindowExposed(&gps));
    // An abnormal pair first, so that what the next one leaves in place shows.
    const uint64_t base = 1716208496000000000ull;
    gps.SetData(stamp(base, 100 * 1000000, 1));
    const QString first = shownFields(gps);
    QCOMPARE(first, QString("2024 5 20 12 34 1 999 0 1716208496100 10 11 12 13 14 15 16 17 1716208496000"));

    gps.findChild<QLineEdit*>("lineEdit_minimum")->setText(bounds.section(' ', 0, 0));
    gps.findChild<QLineEdit*>("lineEdit_maxmum")->setText(bounds.section(' ', 1));
    if (window == "hidden")
        gps.hide();
    if (window == "paused")
        gps.findChild<QPushButton*>("pushButton_pause")->click();
    gps.SetData(stamp(base + 200000000, differenceNs, 2));
    const QString second = QString("2024 5 20 12 34 2 999 0 %1 20 21 22 23 24 25 26 27 1716208496200")
                               .arg((qint64(base) + 200000000 + differenceNs) / 1000000);
    QCOMPARE(shownFields(gps), caught ? second : first);
}

// Thousands of stamps are drawn as a few hundred columns, each with its
// lowest and highest value: one late packet still shows, and a steady
// offset with its drift is told in text. The window charts normal pairs too.
void DevicePanelTest::gpsChartsKeepAnOddPacket()
{
    qint64 now = qint64(1700000000) * 1000000000;
    GpsTimingCharts charts(nullptr, [&now] { return now; });
    QCOMPARE(charts.summary(), QString("No GPS time stamps yet"));
    const qint64 offset = 2500000;  // the lidar 2.5 ms ahead
    quint64 previous = 0;
    for (int i = 0; i < 6000; ++i) {
        now += i == 3000 ? 30000000 : 4167000;
        const quint64 packet = quint64(now + offset);
        charts.add(packet, previous);
        previous = packet;
    }
    charts.redraw();
    const QVector<QPointF> intervals = charts.intervalPoints();
    QVERIFY(intervals.size() <= 2 * GpsTimingCharts::kColumns && intervals.size() > 100);
    const auto highest = std::max_element(intervals.begin(), intervals.end(),
                                          [](const QPointF& a, const QPointF& b) { return a.y() < b.y(); });
    QCOMPARE(highest->y(), 30.0);
    QCOMPARE(std::min_element(intervals.begin(), intervals.end(),
                              [](const QPointF& a, const QPointF& b) { return a.y() < b.y(); })->y(), 4.167);
    for (const QPointF& p : charts.offsetPoints())
        QCOMPARE(p.y(), 0.0);
    QCOMPARE(charts.summary(),
             QString("Packet time minus computer time: 2.500 ms; drift over the last minute: 0.0 ppm"));

    GPSTest gps;
    const uint64_t base = 1716208496000000000ull;
    gps.SetData(stamp(base, 5 * 1000000, 1));  // within the window: not shown in the fields, but charted
    gps.SetData(stamp(base + 5000000, 5 * 1000000, 2));
    QCOMPARE(gps.charts()->timing().samples().size(), size_t(2));
    QCOMPARE(gps.charts()->timing().samples().back().intervalMs, 5.0);
}

void DevicePanelTest::networkTool()
{
    QTemporaryDir dir;
    const QString previous = QDir::currentPath();
    QDir::setCurrent(dir.path());
    NetworkToolLauncher launcher;
    launcher.start();  // not installed: nothing happens, nothing is said
    QProcess* process = launcher.process();
    QVERIFY(process && waitFor([&] { return process->state() == QProcess::NotRunning; }, 3000));
    QDir().mkpath("NetworkModuleTool");
    QFile tool("NetworkModuleTool/NetworkModuleTool");
    QVERIFY(tool.open(QIODevice::WriteOnly) && tool.write("#!/bin/sh\necho run >> log\nsleep 0.3\n") > 0);
    tool.close();
    tool.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    for (int click = 0; click < 3; ++click) {  // the second click comes while it runs: no second tool
        launcher.start();
        QVERIFY(launcher.process() == process && (click == 0 || process->waitForFinished(5000)));
    }
    QFile log("log");
    QVERIFY(log.open(QIODevice::ReadOnly) && log.readAll() == "run\nrun\n");
    QDir::setCurrent(previous);
}

QTEST_MAIN(DevicePanelTest)
#include "tst_device_panel.moc"
