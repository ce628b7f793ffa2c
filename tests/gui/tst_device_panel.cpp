// The device panel without a lidar: its controls set up from settings files
// (the keys' exact rules), each control's command reaching a stand-in
// session on the right thread with the right argument, the GPS test window's
// catching rule, and the network module tool's launcher.

#include "DeviceSettingsPanel.h"
#include "GPSTest.h"
#include "NetworkToolLauncher.h"
#include "SwitchButton.h"

#include "LoopbackLidar.h"

#include <QComboBox>
#include <QDir>
#include <QLineEdit>
#include <QMutex>
#include <QProcess>
#include <QPushButton>
#include <QTemporaryDir>
#include <QThread>
#include <QToolButton>
#include <QtTest>

using testing::waitFor;

namespace {

// Records each command with its argument and whether it ran on the
// session's own thread ("worker") or elsewhere ("ui").
class RecordingSession : public LidarAnalysis {
public:
    void ParseLidarData() override {}
    QByteArray ReadParamCommand() override { return QByteArray(); }
    void SetMotorFrequency(quint8 code) override { note("motor", code); }
    void SetDeviceParam(quint8 value) override { note("frequency", value); }
    void SetLidarFilter(int mode) override { note("filter", mode); }

    QStringList calls()
    {
        QMutexLocker lock(&m_mutex);
        return m_calls;
    }

private:
    void note(const char* what, int argument)
    {
        QMutexLocker lock(&m_mutex);
        m_calls << QStringLiteral("%1 %2 %3")
                       .arg(what)
                       .arg(argument)
                       .arg(QThread::currentThread() == thread() ? "worker" : "ui");
    }
    QMutex m_mutex;
    QStringList m_calls;
};

// The four controls of the "Setting" tab and a panel driving them.
struct PanelRig {
    SwitchButton motor;
    QComboBox filter, frequency;
    QToolButton gps;
    DeviceSettingsPanel panel{{&motor, &filter, &frequency, &gps}};

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

lidar::GPSTime stamp(uint64_t currentNs, uint64_t previousNs, int seed)
{
    lidar::GPSTime t;
    t.year = 2024, t.month = 5, t.day = 20, t.hour = 12, t.minute = 34, t.second = seed;
    t.millisecond = 999, t.microsecond = 1;
    for (int i = 0; i < 8; ++i)
        t.previous[i] = seed * 10 + i;
    t.currentNs = currentNs;
    t.previousNs = previousNs;
    return t;
}

// All eighteen fields of the GPS test window, current column then last.
QString shownFields(GPSTest& window)
{
    QStringList texts;
    for (const char* suffix : {"", "_2"})
        for (const char* field : {"yeas", "month", "day", "hour", "minute", "seconde", "millisecond", "microsecond",
                                  "timestamp"})
            texts << window.findChild<QLineEdit*>(QString("lineEdit_%1%2").arg(field, suffix))->text();
    return texts.join(' ');
}

}  // namespace

class DevicePanelTest : public QObject {
    Q_OBJECT
private slots:
    void configure_data();
    void configure();
    void commandsReachTheSession_data();
    void commandsReachTheSession();
    void gpsTestCatchesAbnormalIntervals_data();
    void gpsTestCatchesAbnormalIntervals();
    void networkTool();
};

void DevicePanelTest::configure_data()
{
    QTest::addColumn<QString>("group");  // the lines of group [M]; "-" for no group at all
    QTest::addColumn<int>("filterMode");
    QTest::addColumn<int>("frequency");
    QTest::addColumn<QString>("expected");
    const QString three = "filter+[Normal filtering|No filtering|Within three meters]";
    const QString full = "GPS test function=true\nmotor on-off switch function=true\n";
    QTest::newRow("three filters, frequencies")
        << full + "lidar filter function=a/b/c\nmotor frequenc function=10_12_15" << 2 << 12
        << "gps+ motor+ " + three + "@2 frequency+[10|12|15]@1";
    QTest::newRow("two filters") << full + "lidar filter function=a/b\nmotor frequenc function=5" << 1 << 5
                                 << "gps+ motor+ filter+[Normal filtering|No filtering]@1 frequency+[5]@0";
    QTest::newRow("one part: enabled, cannot be set")
        << "lidar filter function=x\nmotor frequenc function=false" << 0 << 0
        << "gps- motor- filter+[Cannot be set]@0 frequency-[Cannot be set]@0";
    QTest::newRow("a//b: three parts, one empty") << "lidar filter function=a//b" << 0 << 0
                                                  << "gps- motor- " + three + "@0 frequency+[]@0";
    QTest::newRow("four parts") << "lidar filter function=a/b/c/d" << 0 << 0
                                << "gps- motor- filter+[Cannot be set]@0 frequency+[]@0";
    QTest::newRow("empty filter, frequency not listed")
        << "lidar filter function=\nmotor frequenc function=10_12" << 0 << 11
        << "gps- motor- filter-[]@-1 frequency+[10|12]@0";
    QTest::newRow("filter mode out of range") << "lidar filter function=a/b" << 2 << 0
                                              << "gps- motor- filter+[Normal filtering|No filtering]@-1 frequency+[]@0";
    QTest::newRow("comparisons are exact")
        << "GPS test function=TRUE\nmotor on-off switch function=True\nmotor frequenc function=False" << 0 << 0
        << "gps- motor- filter-[]@-1 frequency+[False]@0";
    QTest::newRow("false switches off") << "GPS test function=false\nmotor on-off switch function=false" << 0 << 0
                                        << "gps- motor- filter-[]@-1 frequency+[]@0";
    QTest::newRow("keys in any case") << "gps TEST function=true\nMOTOR FREQUENC FUNCTION=7_8" << 0 << 8
                                      << "gps+ motor- filter-[]@-1 frequency+[7|8]@1";
    QTest::newRow("misspelling corrected is not the key") << "motor frequency function=false" << 0 << 0
                                                          << "gps- motor- filter-[]@-1 frequency+[]@0";
    QTest::newRow("missing group") << "-" << 0 << 0 << "gps- motor- filter-[]@-1 frequency+[]@0";
}

void DevicePanelTest::configure()
{
    QFETCH(QString, group);
    QFETCH(int, filterMode);
    QFETCH(int, frequency);
    QFETCH(QString, expected);
    QTemporaryDir dir;
    const QString path = dir.filePath("connect_type.ini");
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("[Full]\nGPS test function=true\nmotor on-off switch function=true\n"
               "lidar filter function=a/b/c\nmotor frequenc function=1_2_3_4\n");
    if (group != "-")
        file.write("[M]\n" + group.toUtf8() + "\n");
    file.close();

    PanelRig rig;
    LidarParam param;
    param.value1 = filterMode;
    param.value2 = frequency;
    // A panel set up for another model before: nothing of it may remain.
    rig.panel.configure("Full", LidarParam(), IniSettings(path));
    rig.panel.configure("M", param, IniSettings(path));
    QCOMPARE(rig.state(), expected);
}

void DevicePanelTest::commandsReachTheSession_data()
{
    QTest::addColumn<QString>("session");  // connected, disconnected, none, replaced
    QTest::addColumn<QString>("action");
    QTest::addColumn<QStringList>("calls");
    QTest::newRow("switch off") << "connected" << "click" << QStringList{"motor 0 worker"};
    QTest::newRow("switch on") << "connected" << "off, click" << QStringList{"motor 1 worker"};
    QTest::newRow("filter") << "connected" << "filter 2" << QStringList{"filter 2 worker"};
    QTest::newRow("frequency") << "connected" << "frequency 12" << QStringList{"frequency 12 ui"};
    QTest::newRow("frequency low 8 bits") << "connected" << "frequency 300" << QStringList{"frequency 44 ui"};
    QTest::newRow("frequency negative") << "connected" << "frequency -1" << QStringList{"frequency 255 ui"};
    QTest::newRow("frequency not a number") << "connected" << "frequency 1O" << QStringList{"frequency 0 ui"};
    QTest::newRow("frequency empty") << "connected" << "frequency " << QStringList{"frequency 0 ui"};
    QTest::newRow("replaced session") << "replaced" << "click" << QStringList{"motor 0 worker"};
    for (const char* session : {"disconnected", "none"})
        for (const char* action : {"click", "filter 1", "frequency 10"})
            QTest::addRow("%s: %s", session, action) << session << action << QStringList();
}

void DevicePanelTest::commandsReachTheSession()
{
    QFETCH(QString, session);
    QFETCH(QString, action);
    QFETCH(QStringList, calls);
    PanelRig rig;
    rig.panel.configure("none", LidarParam(), IniSettings(QStringLiteral("/nonexistent/connect_type.ini")));
    rig.motor.setEnabled(true);
    rig.motor.resize(64, 26);

    QThread worker;
    worker.start();
    auto recorder = std::make_shared<RecordingSession>();
    recorder->moveToThread(&worker);
    recorder->connectionType = session == "disconnected" ? -1 : lidar::NetworkConnection;
    auto earlier = std::make_shared<RecordingSession>();
    earlier->connectionType = lidar::NetworkConnection;
    if (session == "replaced")
        rig.panel.bindSession(earlier);
    if (session != "none")
        rig.panel.bindSession(recorder);

    if (action.startsWith("off"))
        rig.motor.setChecked(false);  // from code: no command
    if (action.endsWith("click"))
        QTest::mouseClick(&rig.motor, Qt::LeftButton, Qt::NoModifier, QPoint(32, 13));
    if (action.startsWith("filter"))
        emit rig.filter.activated(action.section(' ', 1).toInt());
    if (action.startsWith("frequency"))
        emit rig.frequency.textActivated(action.section(' ', 1));

    waitFor([&] { return recorder->calls().size() >= calls.size() && !calls.isEmpty(); }, calls.isEmpty() ? 100 : 3000);
    QCOMPARE(recorder->calls(), calls);
    QVERIFY(earlier->calls().isEmpty());
    // Back to this thread before the worker ends, to be released here.
    QThread* here = thread();
    QMetaObject::invokeMethod(recorder.get(), [&] { recorder->moveToThread(here); }, Qt::BlockingQueuedConnection);
    worker.quit();
    QVERIFY(worker.wait(3000));
}

void DevicePanelTest::gpsTestCatchesAbnormalIntervals_data()
{
    QTest::addColumn<QString>("minimum");  // texts typed into the bounds
    QTest::addColumn<QString>("maximum");
    QTest::addColumn<QString>("window");  // shown, hidden, paused
    QTest::addColumn<qint64>("differenceNs");  // current minus previous stamp
    QTest::addColumn<bool>("caught");
    const qint64 ms = 1000000;
    QTest::newRow("2 ms is normal") << "2" << "10" << "shown" << 2 * ms << false;
    QTest::newRow("10 ms is normal") << "2" << "10" << "shown" << 10 * ms << false;
    QTest::newRow("10.999 ms counts as 10") << "2" << "10" << "shown" << 11 * ms - 1 << false;
    QTest::newRow("1.999 ms counts as 1") << "2" << "10" << "shown" << 2 * ms - 1 << true;
    QTest::newRow("11 ms") << "2" << "10" << "shown" << 11 * ms << true;
    QTest::newRow("backwards by 11 ms") << "2" << "10" << "shown" << -11 * ms << true;
    QTest::newRow("backwards by 5 ms") << "2" << "10" << "shown" << -5 * ms << false;
    QTest::newRow("hidden: dropped") << "2" << "10" << "hidden" << 50 * ms << false;
    QTest::newRow("paused: dropped") << "2" << "10" << "paused" << 50 * ms << false;
    QTest::newRow("minimum above maximum") << "20" << "5" << "shown" << 12 * ms << true;
    QTest::newRow("bound not a number is 0") << "x" << "0" << "shown" << qint64(0) << false;
    QTest::newRow("negative bound is 0") << "-3" << "-3" << "shown" << 1 * ms << true;
}

void DevicePanelTest::gpsTestCatchesAbnormalIntervals()
{
    QFETCH(QString, minimum);
    QFETCH(QString, maximum);
    QFETCH(QString, window);
    QFETCH(qint64, differenceNs);
    QFETCH(bool, caught);
    GPSTest gps;
    QCOMPARE(gps.minimum(), uint64_t(2));
    QCOMPARE(gps.maximum(), uint64_t(10));
    gps.show();
    QVERIFY(QTest::qWaitForWindowExposed(&gps));
    // An abnormal pair first: what a later pair changes, or leaves, is visible.
    const uint64_t base = 1716208496000000000ull;
    gps.SetData(stamp(base + 100000000, base, 1));
    const QString first = shownFields(gps);
    QCOMPARE(first, QString("2024 5 20 12 34 1 999 1 1716208496100 10 11 12 13 14 15 16 17 1716208496000"));

    gps.findChild<QLineEdit*>("lineEdit_minimum")->setText(minimum);
    gps.findChild<QLineEdit*>("lineEdit_maxmum")->setText(maximum);
    if (window == "hidden")
        gps.hide();
    if (window == "paused")
        gps.findChild<QPushButton*>("pushButton_pause")->click();
    const uint64_t previous = base + 200000000;
    gps.SetData(stamp(uint64_t(qint64(previous) + differenceNs), previous, 2));
    const QString second = QString("2024 5 20 12 34 2 999 1 %1 20 21 22 23 24 25 26 27 %2")
                               .arg((qint64(previous) + differenceNs) / 1000000)
                               .arg(previous / 1000000);
    QCOMPARE(shownFields(gps), caught ? second : first);
}

void DevicePanelTest::networkTool()
{
    QTemporaryDir dir;
    const QString previous = QDir::currentPath();
    QDir::setCurrent(dir.path());
    NetworkToolLauncher launcher;

    // Not there: nothing happens, nothing is reported.
    launcher.start();
    QProcess* process = launcher.process();
    QVERIFY(process && waitFor([&] { return process->state() == QProcess::NotRunning; }, 3000));
    QCOMPARE(process->error(), QProcess::FailedToStart);

    // Installed: started from its folder; a click while it runs starts no second one.
    QDir().mkpath("NetworkModuleTool");
    QFile tool("NetworkModuleTool/NetworkModuleTool");
    QVERIFY(tool.open(QIODevice::WriteOnly));
    tool.write("#!/bin/sh\necho started >> started.txt\nsleep 0.3\n");
    tool.close();
    tool.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    launcher.start();
    launcher.start();
    QCOMPARE(launcher.process(), process);
    QVERIFY(process->waitForFinished(5000));
    launcher.start();
    QVERIFY(process->waitForFinished(5000));
    QFile log("started.txt");
    QVERIFY(log.open(QIODevice::ReadOnly));
    QCOMPARE(log.readAll(), QByteArray("started\nstarted\n"));
    QDir::setCurrent(previous);
}

QTEST_MAIN(DevicePanelTest)
#include "tst_device_panel.moc"
