#pragma once
// The live page of the main window: connecting (from the dialog,
// automatically, for the demo), what a connection and a disconnect change,
// pausing the display and recording the raw stream, with the texts each
// control shows for its state. The connect-and-wait is LiveConnection's, the
// search over models and ports AutoConnector's.

#include "AutoConnector.h"
#include "LiveConnection.h"

#include <QCoreApplication>
#include <QList>
#include <QMetaObject>
#include <functional>

class DeviceSettingsPanel;
class IConnectLiDAR;
class LiveFrameQueue;
class QMainWindow;
class SelectConnectType;
class WindowStatusBar;
struct NetworkParam;
struct SerialPortParam;

namespace Ui {
class ScanDeckClass;
}

class LiveControls {
    Q_DECLARE_TR_FUNCTIONS(ScanDeck)
public:
    // What the window does around the live link.
    struct Window {
        QMainWindow* window;
        IConnectLiDAR* connector;
        std::function<bool()> offlineLoaded;
        std::function<void()> clearView;          // after a disconnect
        std::function<void()> endExport;          // a running CSV export ends, kept
        std::function<void()> removeRangingMarks; // they belong to the frame they were picked on
        std::function<QString(const QString& proposed)> savePath;  // the recording's file
        std::function<void(const QString&)> warn;
        std::function<void(const QString&)> fileSaved;
        // The session now live, and null after a disconnect (its health is watched).
        std::function<void(const std::shared_ptr<LidarAnalysis>&)> watchSession;
    };

    LiveControls(Ui::ScanDeckClass& ui, Window window, WindowStatusBar& status, DeviceSettingsPanel& device,
                 LiveFrameQueue& frames);

    bool connectNetwork(const QString& model, const NetworkParam& param);
    bool connectSerial(const QString& model, const SerialPortParam& param);
    void showConnectDialog();
    void autoConnect();
    void disconnect();
    void playPause(bool play);
    void record(bool record);
    // The window closes while recording: keep the recording, or leave its
    // file empty.
    void endRecordingOnClose(bool keep);
    // Enables the live controls for the connected or the start state.
    void applyState(bool connected);
    // The texts of the pause and record buttons for their state (after a
    // language switch the form's own would say otherwise).
    void applyStateTexts();
    // The session is asked for its parameters; they choose the panel's items.
    void configureDevicePanel(const QString& group);

    LiveConnection& connection() { return m_live; }
    const LiveConnection& connection() const { return m_live; }
    bool isPlaying() const { return m_playing; }
    SelectConnectType* connectDialog() const { return m_dialog; }
    void setSerialPortLister(AutoConnector::PortLister lister) { m_serialPorts = std::move(lister); }

private:
    void enterConnectedState();
    void wireSession();
    void watchLink();
    void watchRecording(const QString& fileName);

    Ui::ScanDeckClass& ui;
    Window m_window;
    WindowStatusBar& m_status;
    DeviceSettingsPanel& m_device;
    LiveFrameQueue& m_frames;
    LiveConnection m_live;
    bool m_playing = false;
    SelectConnectType* m_dialog = nullptr;
    AutoConnector::PortLister m_serialPorts;
    QList<QMetaObject::Connection> m_sessionConnections;
};
