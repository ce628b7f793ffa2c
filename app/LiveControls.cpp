#include "LiveControls.h"

#include "DeviceSettingsPanel.h"
#include "IniSettings.h"
#include "LidarAnalysis.h"
#include "LinkStatusReadout.h"
#include "LiveFrameQueue.h"
#include "RecentFolder.h"
#include "RecordingReadout.h"
#include "SelectConnectType.h"
#include "UserMessages.h"
#include "WindowStatusBar.h"
#include "ui_ScanDeck.h"

#include <QDateTime>

LiveControls::LiveControls(Ui::ScanDeckClass& ui, Window window, WindowStatusBar& status,
                           DeviceSettingsPanel& device, LiveFrameQueue& frames)
    : ui(ui), m_window(std::move(window)), m_status(status), m_device(device), m_frames(frames)
{
}

bool LiveControls::connectNetwork(const QString& model, const NetworkParam& param)
{
    if (!m_live.connectNetwork(model, param))
        return false;
    enterConnectedState();
    return true;
}

bool LiveControls::connectSerial(const QString& model, const SerialPortParam& param)
{
    if (!m_live.connectSerial(model, param))
        return false;
    enterConnectedState();
    return true;
}

void LiveControls::enterConnectedState()
{
    m_playing = true;
    applyState(true);
    // The click starts the display: checked, "pause", frames flowing.
    ui.btn_play_pause->setChecked(false);
    ui.btn_play_pause->click();
    const QString model = m_live.modelName();
    m_window.window->setWindowTitle(model);
    wireSession();
    configureDevicePanel(model);
    watchLink();
}

void LiveControls::wireSession()
{
    // A session reused for the same model keeps its old connections: they
    // are replaced, so that nothing is shown or sent twice.
    for (const QMetaObject::Connection& connection : m_sessionConnections)
        QObject::disconnect(connection);
    m_sessionConnections.clear();
    LidarAnalysis* session = m_live.session().get();
    if (!session)
        return;
    // The session lives on its worker thread: its frames reach the display
    // through the queue.
    m_sessionConnections << m_frames.attach(session);
    m_sessionConnections << QObject::connect(session, &LidarAnalysis::SendMessageSignal, m_window.window,
                                             [this](const QString& message) { m_window.warn(message); });
    m_sessionConnections << QObject::connect(session, &LidarAnalysis::SendEndSaveDataSignal, m_window.window,
                                             [this](const QString& file) { m_window.fileSaved(file); });
    // Motor switch, filter and frequency boxes, and the GPS test window.
    m_device.bindSession(m_live.session());
    if (m_window.watchSession)
        m_window.watchSession(m_live.session());
}

// The session's running totals are atomics: read here while its thread counts.
void LiveControls::watchLink()
{
    const std::weak_ptr<LidarAnalysis> weak = m_live.session();
    const bool network = m_live.session()->GetConnectionType() == lidar::NetworkConnection;
    m_status.link->watch(
        [weak]() -> LinkTotals {
            const auto session = weak.lock();
            if (!session)
                return {};
            return {session->datagramsReceived.load(), session->bytesReceived.load(), session->framesCompleted.load()};
        },
        network);
}

// The recording writer's counts are atomics: read here while the session's thread writes.
void LiveControls::watchRecording(const QString& fileName)
{
    const std::weak_ptr<LidarAnalysis> weak = m_live.session();
    m_status.recording->watch(
        [weak]() -> RecordingReadout::Progress {
            const auto session = weak.lock();
            if (!session || !session->saving.load())
                return {};
            return {true, session->recordingCounts()};
        },
        fileName);
}

void LiveControls::applyState(bool connected)
{
    ui.btn_export_csv->setEnabled(connected);
    ui.btn_auto_connect->setEnabled(!connected);
    ui.btn_connect->setEnabled(!connected);
    ui.btn_disconnect->setEnabled(connected);
    ui.btn_save_data->setEnabled(connected);
    ui.btn_play_pause->setEnabled(connected);
    ui.btn_motor_state->setEnabled(connected);
    ui.comboBox_motor_filter->setEnabled(connected);
    ui.comboBox_motor_frequency->setEnabled(connected);
    if (!connected) {
        // The GPS test is enabled by the device panel, never here.
        ui.btn_GPS_test->setEnabled(false);
        ui.btn_play_pause->setChecked(false);
        ui.btn_motor_state->setChecked(true);  // on, and disabled until a lidar is there
        ui.btn_disconnect->setChecked(false);
    }
}

void LiveControls::applyStateTexts()
{
    if (ui.btn_play_pause->isChecked())
        ui.btn_play_pause->setText(tr("pause"));
    if (ui.btn_save_data->isChecked())
        ui.btn_save_data->setText(tr("Recording data"));
}

void LiveControls::showConnectDialog()
{
    if (m_window.offlineLoaded()) {
        usermessages::information(m_window.window, tr("information"), tr("Please stop the offline playback first"));
        return;
    }
    // Made once and kept: its port list and form are ready the next time.
    if (!m_dialog)
        m_dialog = new SelectConnectType(m_window.connector, m_window.window);
    m_dialog->exec();
}

void LiveControls::autoConnect()
{
    if (m_window.offlineLoaded()) {
        usermessages::information(m_window.window, tr("information"), tr("Please stop the offline playback first"));
        return;
    }
    const AutoConnectPlan plan = AutoConnectPlan::fromSettings(IniSettings());
    AutoConnector connector(*m_window.connector, m_serialPorts);
    if (connector.run(plan, m_window.window) == AutoConnector::Outcome::Failed)
        usermessages::information(m_window.window, tr("information"),
                                  tr("Automatic connection failed, please connect the radar manually!"));
}

void LiveControls::disconnect()
{
    // A recording or an export still running is finished rather than lost with the link.
    if (ui.btn_save_data->isChecked())
        ui.btn_save_data->click();
    m_window.endExport();
    if (ui.btn_play_pause->isChecked()) {
        emit ui.btn_play_pause->clicked(false);
        ui.btn_play_pause->setChecked(false);
    }
    m_playing = false;
    m_live.disconnect();
    m_status.link->unwatch();
    if (m_window.watchSession)
        m_window.watchSession(nullptr);
    applyState(false);
    LiveConnection::processEventsFor(LiveConnection::kDisconnectSettleMs);
    m_window.clearView();
}

void LiveControls::playPause(bool play)
{
    if (!m_live.isConnected()) {
        ui.btn_play_pause->setChecked(false);
        m_window.warn(tr("Please connect the radar first"));
        return;
    }
    m_playing = play;
    ui.btn_play_pause->setText(play ? tr("pause") : tr("play"));
    // Paused, the session keeps decoding and recording but sends no frames.
    m_live.session()->SetConnected(play);
    m_window.removeRangingMarks();
}

void LiveControls::record(bool record)
{
    LidarAnalysis* session = m_live.session().get();
    if (!record) {
        // Only a recording that really started has a file to write.
        if (session && session->saving.load())
            session->EndSaveData();
        m_status.recording->unwatch();
        ui.btn_save_data->setText(tr("Recorded data"));
        return;
    }
    if (!m_live.isConnected()) {
        m_window.warn(tr("Please connect the radar first"));
        return;
    }
    // In the folder of the last file opened or saved; "./" before the first.
    IniSettings settings;
    const QString name = m_live.modelName() + QLatin1Char('_')
                         + QDateTime::currentDateTime().toString(QStringLiteral("yyyy_MM_dd hh.mm.ss"))
                         + QStringLiteral(".txt");
    const QString path = m_window.savePath(recentfolder::proposedPath(settings, name, QStringLiteral("./")));
    if (path.isEmpty()) {
        ui.btn_save_data->setChecked(false);
        return;
    }
    recentfolder::remember(settings, path);
    if (!session->StartSaveData(path)) {
        ui.btn_save_data->setChecked(false);
        usermessages::warning(m_window.window, tr("warning"), tr("Unable to create the file %1").arg(path));
        return;
    }
    ui.btn_save_data->setText(tr("Recording data"));
    watchRecording(path);
}

void LiveControls::endRecordingOnClose(bool keep)
{
    const std::shared_ptr<LidarAnalysis> session = m_live.session();
    if (!session)
        return;
    if (keep)
        session->EndSaveData();
    else
        session->AbandonSaveData();
    m_status.recording->unwatch();
}

void LiveControls::configureDevicePanel(const QString& group)
{
    const std::shared_ptr<LidarAnalysis> session = m_live.session();
    m_device.configure(group, session ? session->GetLidarParam() : LidarParam());
}
