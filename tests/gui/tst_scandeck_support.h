#pragma once
// Shared by the main-window tests: a scratch working directory with its own
// settings file (loopback only), message boxes answered without a click,
// hand-made frames, a simulated lidar on a thread of its own, and a main()
// that prepares OpenGL for VTK.

#include "FrameCollector.h"
#include "LIdarFactory.h"
#include "LoopbackLidar.h"
#include "ScanDeck.h"
#include "SimulationThread.h"
#include "UserMessages.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTextStream>
#include <QtTest>
#include <algorithm>
#include <cmath>
#include <memory>
#include <tuple>
#include <pcl/point_cloud.h>
#include <pcl/point_types.h>
#include <pcl/visualization/pcl_visualizer.h>
#include <vtkObject.h>

namespace testing {

using Frame = lidar::LidarDataPoint_V4;

inline void writeSettingsFile(const QString& text)
{
    QFile ini(QStringLiteral("ini/connect_type.ini"));
    if (ini.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Text))
        QTextStream(&ini) << text;
}

// Enters a fresh temporary directory laid out like the build directory.
class ScratchWorkingDir {
public:
    explicit ScratchWorkingDir(const QString& language = QString()) : m_previous(QDir::currentPath())
    {
        QDir(m_dir.path()).mkpath(QStringLiteral("ini"));
        QFile::copy(m_previous + "/scandeck_zh.qm", m_dir.filePath(QStringLiteral("scandeck_zh.qm")));
        QDir::setCurrent(m_dir.path());
        writeSettingsFile("LiDAR IP=127.0.0.1\nData IP=127.0.0.1\nLiDAR Port=2369\nData Port=2368\n"
                          + (language.isNull() ? QString() : "language=" + language + "\n")
                          + "\n[connect_type]\nmodel1=Tern\n\n[Tern]\ndefault baud rate=230400\n");
    }
    ~ScratchWorkingDir() { QDir::setCurrent(m_previous); }

    QString settingsText() const
    {
        QFile ini(m_dir.filePath(QStringLiteral("ini/connect_type.ini")));
        ini.open(QIODevice::ReadOnly | QIODevice::Text);
        return QString::fromUtf8(ini.readAll());
    }

private:
    QString m_previous;
    QTemporaryDir m_dir;
};

// Records every message box as "title: text" and answers it (No to questions).
class MessageRecorder {
public:
    MessageRecorder()
    {
        m_previous = usermessages::setHandler([this](QWidget*, const UserMessage& m) {
            texts << m.title + ": " + m.text;
            return m.kind == UserMessage::Question ? QMessageBox::No : QMessageBox::Ok;
        });
    }
    ~MessageRecorder() { usermessages::setHandler(m_previous); }
    QStringList texts;

private:
    usermessages::Handler m_previous;
};

struct PointSpec {
    int id;
    float x, y, azimuth;
    int32_t intensity;
};

inline Frame makeFrame(std::initializer_list<PointSpec> points)
{
    Frame frame;
    for (const PointSpec& s : points) {
        lidar::LidarPoint p;
        p.x = s.x, p.y = s.y, p.azimuth = s.azimuth, p.intensity = s.intensity;
        p.distance = int32_t(std::sqrt(s.x * s.x + s.y * s.y) * 1000);
        frame.points[s.id].push_back(p);
    }
    return frame;
}

// n points on a circle of 5 m, one per 360/n degrees, all under ID 0.
inline Frame ringFrame(int n)
{
    Frame frame;
    for (int i = 0; i < n; ++i) {
        const float azimuth = 360.0f * i / n, rad = azimuth * float(M_PI / 180.0);
        lidar::LidarPoint p;
        p.azimuth = azimuth, p.x = std::sin(rad) * 5.0f, p.y = std::cos(rad) * 5.0f;
        p.distance = 5000, p.intensity = i % 256;
        frame.points[0].push_back(p);
    }
    return frame;
}

// Same points, value for value, under the same IDs.
inline bool sameFrame(const Frame& a, const Frame& b)
{
    const auto same = [](const lidar::LidarPoint& p, const lidar::LidarPoint& q) {
        return std::tie(p.x, p.y, p.z, p.azimuth, p.distance, p.intensity, p.timestamp)
               == std::tie(q.x, q.y, q.z, q.azimuth, q.distance, q.intensity, q.timestamp);
    };
    if (a.points.keys() != b.points.keys())
        return false;
    for (auto it = a.points.cbegin(); it != a.points.cend(); ++it) {
        const auto& other = b.points[it.key()];
        if (!std::equal(it.value().begin(), it.value().end(), other.begin(), other.end(), same))
            return false;
    }
    return true;
}

inline std::unique_ptr<ScanDeck> openWindow()
{
    auto window = std::make_unique<ScanDeck>();
    window->waitUntilWired();
    window->resize(1400, 850);
    window->show();
    if (!QTest::qWaitForWindowExposed(window.get()))
        qWarning("main window not exposed");
    return window;
}

// A control of the main window itself, not the offline player's namesake.
template <typename T = QWidget>
T* control(QWidget* window, const char* name)
{
    const QWidget* player = window->findChild<QWidget*>(QStringLiteral("offline"));
    for (T* candidate : window->findChildren<T*>(QLatin1String(name)))
        if (!player || candidate == player || !player->isAncestorOf(candidate))
            return candidate;
    return nullptr;
}

inline void click(QWidget* window, const char* name)
{
    auto* button = control<QAbstractButton>(window, name);
    QVERIFY2(button, name);
    button->click();
}

inline void clickPlayer(QWidget* player, const char* name)
{
    player->findChild<QAbstractButton*>(QLatin1String(name))->click();
}

// The live controls and whether each is enabled ("+") or not ("-").
inline QString liveControlStates(QWidget* window)
{
    QStringList states;
    for (const char* name : {"btn_auto_connect", "btn_connect", "btn_disconnect", "btn_save_data", "btn_play_pause",
                             "btn_export_csv", "btn_motor_state", "comboBox_motor_filter", "comboBox_motor_frequency"}) {
        QWidget* widget = control(window, name);
        states << QString::fromLatin1(name) + (widget && widget->isEnabled() ? "+" : "-");
    }
    return states.join(' ');
}
inline const QString kStartControls = QStringLiteral(
    "btn_auto_connect+ btn_connect+ btn_disconnect- btn_save_data- btn_play_pause- btn_export_csv- "
    "btn_motor_state- comboBox_motor_filter- comboBox_motor_frequency-");
// Connected to a model that has no group in the settings file: every device
// key reads as empty, which leaves only the frequency box enabled.
inline const QString kConnectedControls = QStringLiteral(
    "btn_auto_connect- btn_connect- btn_disconnect+ btn_save_data+ btn_play_pause+ btn_export_csv+ "
    "btn_motor_state- comboBox_motor_filter- comboBox_motor_frequency+");

// The settings file the program ships, in place of the scratch one.
inline void useShippedSettings()
{
    QFile::remove(QStringLiteral("ini/connect_type.ini"));
    QFile::copy(QStringLiteral(SCANDECK_SHIPPED_INI), QStringLiteral("ini/connect_type.ini"));
    QFile(QStringLiteral("ini/connect_type.ini")).setPermissions(QFile::ReadOwner | QFile::WriteOwner);
}

// The device panel as "gps± motor± filter±[items]@index frequency±[items]@text".
inline QString devicePanelState(QWidget* window)
{
    const auto sign = [](const QWidget* w) { return QString(w && w->isEnabled() ? "+" : "-"); };
    const auto box = [&](const char* name) {
        auto* combo = control<QComboBox>(window, name);
        QStringList items;
        for (int i = 0; combo && i < combo->count(); ++i)
            items << combo->itemText(i);
        return sign(combo) + "[" + items.join('|') + "]@" + (combo ? combo->currentText() : QString());
    };
    return "gps" + sign(control(window, "btn_GPS_test")) + " motor" + sign(control(window, "btn_motor_state"))
           + " filter" + box("comboBox_motor_filter") + " frequency" + box("comboBox_motor_frequency");
}

// A simulated lidar over loopback UDP or a pseudo-terminal.
class SimulatedLidarRig {
public:
    ~SimulatedLidarRig() { m_thread.stop(); }
    // `options` gives everything but the model and the link.
    bool start(const QString& modelName, sim::Transport transport, sim::SimOptions options = sim::SimOptions())
    {
        if (!sim::modelFromName(modelName, &options.model))
            return false;
        options.transport = transport;
        options.dataHost = QStringLiteral("127.0.0.1");
        options.dataPort = freeUdpPort();
        options.commandPort = 0;
        QString error;
        if (!m_thread.start(options, &error))
            return false;
        network.lidarIp = network.dataIp = QStringLiteral("127.0.0.1");
        network.dataPort = options.dataPort;
        network.lidarPort = m_thread.engine()->commandPort();
        serial.portName = m_thread.engine()->ptyPath();
        serial.baudRate = 460800;
        return true;
    }
    NetworkParam network;
    SerialPortParam serial;
    // What the simulated device is set to (motor, filter, rotation rate).
    sim::DeviceState deviceState() const { return m_thread.engine()->deviceState(); }

private:
    sim::SimulationThread m_thread;
};

// A connection is confirmed by a frame within 200 ms, which a busy machine
// can miss: a few tries before the link counts as broken.
inline bool connectWindow(ScanDeck& window, const QString& model, const SimulatedLidarRig& rig, bool serial = false)
{
    for (int i = 0; i < 4; ++i)
        if (serial ? window.ConnectSerialLidar(model, rig.serial) : window.ConnectNetworkLidar(model, rig.network))
            return true;
    return false;
}

// The registry outlives every window: leave its session disconnected.
inline void quietRegistry()
{
    if (auto session = LIdarFactory::GetInstance()->GetCurrentLidar())
        session->WaitDisconnect();
    waitFor([] { return false; }, 30);
}

}  // namespace testing

#define SCANDECK_TEST_MAIN(TestClass)           \
    int main(int argc, char** argv)             \
    {                                           \
        vtkObject::SetGlobalWarningDisplay(0);  \
        ScanDeck::prepareGraphics();            \
        QApplication app(argc, argv);           \
        TestClass test;                         \
        return QTest::qExec(&test, argc, argv); \
    }
