// ScanDeck's live link: connecting (from the dialog, automatically, or for
// the demo), disconnecting, pausing the live display and recording the raw
// stream. The connect-and-wait itself is LiveConnection's, the search over
// models and ports AutoConnector's; this file decides what the window shows.

#include "ScanDeck.h"

#include "IniSettings.h"
#include "LidarAnalysis.h"
#include "LinkStatusReadout.h"
#include "OffinePlayWidget.h"
#include "RangingMarks.h"
#include "RecentFolder.h"
#include "RecordingReadout.h"
#include "SelectConnectType.h"
#include "UserMessages.h"
#include "ui_ScanDeck.h"

#include <QDateTime>
#include <QFileDialog>

#include <pcl/point_cloud.h>
#include <pcl/point_types.h>
#include <pcl/visualization/pcl_visualizer.h>

bool ScanDeck::ConnectNetworkLidar(const QString& model, const NetworkParam& param)
{
    if (!m_live.connectNetwork(model, param))
        return false;
    enterConnectedState();
    return true;
}

bool ScanDeck::ConnectSerialLidar(const QString& model, const SerialPortParam& param)
{
    if (!m_live.connectSerial(model, param))
        return false;
    enterConnectedState();
    return true;
}

void ScanDeck::enterConnectedState()
{
    m_playing = true;
    applyLiveState(true);
    // The click starts the display: checked, "pause", frames flowing.
    ui->btn_play_pause->setChecked(false);
    ui->btn_play_pause->click();
    const QString model = m_live.modelName();
    setWindowTitle(model);
    wireSessionSignals();
    configureDevicePanel(model);
    watchLink();
}

// The session's running totals are atomics: read here while its thread counts.
void ScanDeck::watchLink()
{
    const std::weak_ptr<LidarAnalysis> weak = m_live.session();
    const bool network = m_live.session()->GetConnectionType() == lidar::NetworkConnection;
    m_linkStatus->watch(
        [weak]() -> LinkTotals {
            const auto session = weak.lock();
            if (!session)
                return {};
            return {session->datagramsReceived.load(), session->bytesReceived.load(), session->framesCompleted.load()};
        },
        network);
}

// The recording writer's counts are atomics: read here while the session's thread writes.
void ScanDeck::watchRecording(const QString& fileName)
{
    const std::weak_ptr<LidarAnalysis> weak = m_live.session();
    m_recordingReadout->watch(
        [weak]() -> RecordingReadout::Progress {
            const auto session = weak.lock();
            if (!session || !session->saving.load())
                return {};
            return {true, session->recordingCounts()};
        },
        fileName);
}

void ScanDeck::applyLiveState(bool connected)
{
    ui->btn_export_csv->setEnabled(connected);
    ui->btn_auto_connect->setEnabled(!connected);
    ui->btn_connect->setEnabled(!connected);
    ui->btn_disconnect->setEnabled(connected);
    ui->btn_save_data->setEnabled(connected);
    ui->btn_play_pause->setEnabled(connected);
    ui->btn_motor_state->setEnabled(connected);
    ui->comboBox_motor_filter->setEnabled(connected);
    ui->comboBox_motor_frequency->setEnabled(connected);
    if (!connected) {
        // The GPS test is enabled by the device panel, never here.
        ui->btn_GPS_test->setEnabled(false);
        ui->btn_play_pause->setChecked(false);
        ui->btn_motor_state->setChecked(true);  // on, and disabled until a lidar is there
        ui->btn_disconnect->setChecked(false);
    }
}

void ScanDeck::showConnectDialog()
{
    if (ui->offline->isLoaded()) {
        usermessages::information(this, tr("information"), tr("Please stop the offline playback first"));
        return;
    }
    // Made once and kept: it remembers nothing itself, but its port list and
    // form are ready the next time.
    if (!m_connectDialog)
        m_connectDialog = new SelectConnectType(this, this);
    m_connectDialog->exec();
}

void ScanDeck::autoConnect()
{
    if (ui->offline->isLoaded()) {
        usermessages::information(this, tr("information"), tr("Please stop the offline playback first"));
        return;
    }
    const AutoConnectPlan plan = AutoConnectPlan::fromSettings(IniSettings());
    AutoConnector connector(*this, m_serialPorts);
    if (connector.run(plan, this) == AutoConnector::Outcome::Failed)
        usermessages::information(this, tr("information"),
                                  tr("Automatic connection failed, please connect the radar manually!"));
}

void ScanDeck::disconnectLidar()
{
    // A recording still running is written out rather than lost with the link.
    if (ui->btn_save_data->isChecked())
        ui->btn_save_data->click();
    if (ui->btn_play_pause->isChecked()) {
        emit ui->btn_play_pause->clicked(false);
        ui->btn_play_pause->setChecked(false);
    }
    m_playing = false;
    m_live.disconnect();
    m_linkStatus->unwatch();
    applyLiveState(false);
    LiveConnection::processEventsFor(LiveConnection::kDisconnectSettleMs);
    clearView();
}

void ScanDeck::playPause(bool play)
{
    if (!m_live.isConnected()) {
        ui->btn_play_pause->setChecked(false);
        emit SendMessageSignal(tr("Please connect the radar first"));
        return;
    }
    m_playing = play;
    ui->btn_play_pause->setText(play ? tr("pause") : tr("play"));
    // Paused, the session keeps decoding and recording but sends no frames.
    m_live.session()->SetConnected(play);
    // The ranging marks belong to the frame they were picked on.
    m_ranging->removeMarks();
}

void ScanDeck::recordData(bool record)
{
    LidarAnalysis* session = m_live.session().get();
    if (!record) {
        // Only a recording that really started has a file to write.
        if (session && session->saving.load())
            session->EndSaveData();
        m_recordingReadout->unwatch();
        ui->btn_save_data->setText(tr("Recorded data"));
        return;
    }
    if (!m_live.isConnected()) {
        emit SendMessageSignal(tr("Please connect the radar first"));
        return;
    }
    // In the folder of the last file opened or saved; "./" before the first.
    IniSettings settings;
    const QString name = m_live.modelName() + QLatin1Char('_')
                         + QDateTime::currentDateTime().toString(QStringLiteral("yyyy_MM_dd hh.mm.ss"))
                         + QStringLiteral(".txt");
    const QString path = askSavePath(recentfolder::proposedPath(settings, name, QStringLiteral("./")));
    if (path.isEmpty()) {
        ui->btn_save_data->setChecked(false);
        return;
    }
    recentfolder::remember(settings, path);
    if (!session->StartSaveData(path)) {
        ui->btn_save_data->setChecked(false);
        usermessages::warning(this, tr("warning"), tr("Unable to create the file %1").arg(path));
        return;
    }
    ui->btn_save_data->setText(tr("Recording data"));
    watchRecording(path);
}

QString ScanDeck::askSavePath(const QString& proposed)
{
    const QString caption = tr("settting a save path");
    const QString filter = QStringLiteral("txt(*.txt)");
    if (m_saveFileHook)
        return m_saveFileHook(this, caption, proposed, filter);
    return QFileDialog::getSaveFileName(this, caption, proposed, filter);
}
