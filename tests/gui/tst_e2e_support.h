#pragma once
// Shared by the end-to-end tests: the main window against a simulated lidar
// that runs in this process on a thread of its own (loopback UDP or a
// pseudo-terminal), and ways to compare what was shown live with what a
// recording plays back.

#include "LIdarFactory.h"
#include "LoopbackLidar.h"
#include "SimulationThread.h"
#include "tst_scandeck_support.h"

#include <QAbstractButton>
#include <QFile>
#include <QTextStream>

#include <pcl/point_cloud.h>
#include <pcl/point_types.h>
#include <pcl/visualization/pcl_visualizer.h>

namespace testing {

using Frame = lidar::LidarDataPoint_V4;

// A simulated lidar and the link records that reach it.
class SimulatedLidarRig {
public:
    ~SimulatedLidarRig() { stop(); }

    bool start(const QString& modelName, sim::Transport transport, sim::SimOptions options = sim::SimOptions())
    {
        if (!sim::modelFromName(modelName, &options.model))
            return false;
        options.transport = transport;
        options.dataHost = QStringLiteral("127.0.0.1");
        options.dataPort = freeUdpPort();
        options.commandPort = 0;
        QString error;
        if (!m_thread.start(options, &error)) {
            qWarning("simulator: %s", qPrintable(error));
            return false;
        }
        m_network.lidarIp = m_network.dataIp = QStringLiteral("127.0.0.1");
        m_network.dataPort = options.dataPort;
        m_network.lidarPort = m_thread.engine()->commandPort();
        m_serial.portName = m_thread.engine()->ptyPath();
        m_serial.baudRate = 460800;
        return true;
    }
    void stop() { m_thread.stop(); }

    NetworkParam network() const { return m_network; }
    SerialPortParam serial() const { return m_serial; }
    sim::SimulatedLidar* engine() const { return m_thread.engine(); }

private:
    sim::SimulationThread m_thread;
    NetworkParam m_network;
    SerialPortParam m_serial;
};

// A connection is confirmed by a frame within 200 ms; on a machine busy
// with other work the first revolution can miss that, so a test tries a
// few times before it calls the link broken.
template <typename Link>
bool connectWindow(ScanDeck& window, const QString& model, const Link& link, int attempts = 4)
{
    for (int i = 0; i < attempts; ++i) {
        if constexpr (std::is_same<Link, NetworkParam>::value) {
            if (window.ConnectNetworkLidar(model, link))
                return true;
        } else {
            if (window.ConnectSerialLidar(model, link))
                return true;
        }
    }
    return false;
}

// The registry outlives every window of a test program: leave its session
// disconnected so the next test starts from a quiet link.
inline void quietRegistry()
{
    if (auto session = LIdarFactory::GetInstance()->GetCurrentLidar())
        session->WaitDisconnect();
    waitFor([] { return false; }, 30);
}

// Replaces the scratch directory's settings file.
inline void writeSettingsFile(const QString& text)
{
    QFile ini(QStringLiteral("ini/connect_type.ini"));
    if (ini.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Text))
        QTextStream(&ini) << text;
}

// Same points, value for value, under the same IDs.
inline bool sameFrame(const Frame& a, const Frame& b, QString* why = nullptr)
{
    const auto fail = [why](const QString& text) {
        if (why)
            *why = text;
        return false;
    };
    if (a.points.keys() != b.points.keys())
        return fail(QStringLiteral("different IDs"));
    for (auto it = a.points.cbegin(); it != a.points.cend(); ++it) {
        const auto& pa = it.value();
        const auto& pb = b.points.value(it.key());
        if (pa.size() != pb.size())
            return fail(QStringLiteral("ID %1: %2 points against %3").arg(it.key()).arg(pa.size()).arg(pb.size()));
        for (int i = 0; i < pa.size(); ++i) {
            const lidar::LidarPoint& p = pa[i];
            const lidar::LidarPoint& q = pb[i];
            if (p.x != q.x || p.y != q.y || p.z != q.z || p.azimuth != q.azimuth || p.distance != q.distance
                || p.intensity != q.intensity || p.timestamp != q.timestamp)
                return fail(QStringLiteral("ID %1 point %2 differs").arg(it.key()).arg(i));
        }
    }
    return true;
}

inline int pointCount(const Frame& frame)
{
    int n = 0;
    for (const auto& line : frame.points)
        n += line.size();
    return n;
}

// The main window's live controls and whether each is enabled. The GPS
// test button is left out: the device panel decides about it.
inline QString liveControlStates(QWidget* window)
{
    QStringList states;
    for (const char* name : {"btn_auto_connect", "btn_connect", "btn_disconnect", "btn_save_data", "btn_play_pause",
                             "btn_export_csv", "btn_motor_state", "comboBox_motor_filter",
                             "comboBox_motor_frequency"}) {
        QWidget* widget = control(window, name);
        states << QString::fromLatin1(name) + (widget && widget->isEnabled() ? "+" : "-");
    }
    return states.join(' ');
}

inline const QString kStartControls = QStringLiteral(
    "btn_auto_connect+ btn_connect+ btn_disconnect- btn_save_data- btn_play_pause- btn_export_csv- "
    "btn_motor_state- comboBox_motor_filter- comboBox_motor_frequency-");
inline const QString kConnectedControls = QStringLiteral(
    "btn_auto_connect- btn_connect- btn_disconnect+ btn_save_data+ btn_play_pause+ btn_export_csv+ "
    "btn_motor_state+ comboBox_motor_filter+ comboBox_motor_frequency+");

inline void click(QWidget* window, const char* name)
{
    auto* button = control<QAbstractButton>(window, name);
    QVERIFY2(button, name);
    button->click();
}

}  // namespace testing
