// Which control drives which part, and the window's own small operations.
// wireSignals runs once, on the start-up thread.

#include "ScanDeck.h"

#include "AboutDialog.h"
#include "BoxOverlay.h"
#include "BoxSelectionDialog.h"
#include "ColourLegendOverlay.h"
#include "CsvExportControl.h"
#include "DeviceSettingsPanel.h"
#include "GridPolarDialog.h"
#include "KeyboardShortcuts.h"
#include "LIdarFactory.h"
#include "LidarAnalysis.h"
#include "LiveControls.h"
#include "LiveFrameQueue.h"
#include "MeasureTools.h"
#include "NetworkToolLauncher.h"
#include "OffinePlayWidget.h"
#include "PlayerKeys.h"
#include "RangingOverlay.h"
#include "UserMessages.h"
#include "ViewMotions.h"
#include "WindowStatusBar.h"
#include "ui_ScanDeck.h"

#include <QApplication>
#include <QDir>
#include <QProcess>
#include <QProgressBar>
#include <QTabBar>

#include <pcl/visualization/pcl_visualizer.h>
#include <vtkRenderer.h>

void ScanDeck::wireSignals()
{
    Ui::ScanDeckClass* u = ui;
    using Button = QAbstractButton;
    connect(u->btn_ranging, &Button::clicked, this, [this](bool on) { m_ranging->setOn(on); });
    connect(u->spinBox_point_size, QOverload<int>::of(&QSpinBox::valueChanged), this, &ScanDeck::setPointSize);
    connect(u->btn_tabWidget_hide, &Button::clicked, this, &ScanDeck::toggleTabPanel);
    connect(u->cob_language, &QComboBox::currentTextChanged, this, &ScanDeck::switchLanguage);
    connect(u->btn_auto_connect, &Button::clicked, this, [this] { m_live->autoConnect(); });
    connect(u->btn_connect, &Button::clicked, this, [this] { m_live->showConnectDialog(); });
    connect(u->btn_disconnect, &Button::clicked, this, [this] { m_live->disconnect(); });
    connect(this, &ScanDeck::SendMessageSignal, this, &ScanDeck::showWarning);
    connect(u->spinbox_min_angle, &QDoubleSpinBox::textChanged, this, &ScanDeck::setMinAngle);
    connect(u->spinbox_max_angle, &QDoubleSpinBox::textChanged, this, &ScanDeck::setMaxAngle);
    connect(u->btn_grid, &Button::clicked, this, &ScanDeck::showGrid);
    connect(u->btn_polar, &Button::clicked, this, &ScanDeck::showPolar);
    connect(u->btn_set_grid_polar, &Button::clicked, this, &ScanDeck::showGridPolarDialog);
    connect(u->btn_table, &Button::clicked, this, [this](bool open) { viewmotions::slideTablePane(ui->splitter, open); });
    connect(u->btn_axis, &Button::clicked, this, &ScanDeck::showAxes);
    for (Button* view : {static_cast<Button*>(u->btn_front_view), static_cast<Button*>(u->btn_left_view),
                         static_cast<Button*>(u->btn_right_view), static_cast<Button*>(u->btn_top_view)})
        connect(view, &Button::clicked, this, &ScanDeck::setCameraView);
    connect(u->btn_play_pause, &Button::clicked, this, [this](bool play) { m_live->playPause(play); });
    if (m_tabBar)
        connect(m_tabBar, &QTabBar::currentChanged, this, [this](int page) { viewmotions::slideInPage(ui->tabWidget, page); });
    connect(u->btn_reboot, &Button::clicked, this, &ScanDeck::restartProgram);
    connect(u->btn_about, &Button::clicked, this, &ScanDeck::showAbout);
    connect(u->btn_clear, &Button::clicked, this, &ScanDeck::clearView);
    connect(u->btn_save_data, &Button::clicked, this, [this](bool record) { m_live->record(record); });
    connect(u->btn_export_csv, &Button::clicked, this, [this](bool checked) { m_export->toggle(ui->btn_export_csv, checked); });
    connect(this, &ScanDeck::SendDataSavingProgressSianal, this,
            [this](float progress) { m_status->progress->setValue(static_cast<int>(progress * 100)); });
    connect(this, &ScanDeck::SendEndSaveDataSignal, this, [this](const QString& fileName) {
        usermessages::information(this, tr("File saved"), tr("File save path:%1").arg(fileName));
        m_export->restButton(ui->btn_export_csv);
    });
    connect(u->btn_point_cloud_select, &Button::clicked, this, [this](bool on) { m_measure->toggleBoxSelection(on); });
    wireOfflinePlayer();
    connect(u->btn_GPS_test, &Button::clicked, m_devicePanel, &DeviceSettingsPanel::toggleGpsTest);
    connect(u->btn_network_interface_setting, &Button::clicked, m_networkTool, &NetworkToolLauncher::start);
    connect(u->btn_resize_range, &Button::clicked, this, &ScanDeck::showBoxRangeDialog);
    // The Grid action (Ctrl+G) is another way to the grid button.
    connect(u->act_grid, &QAction::triggered, u->btn_grid, &Button::click);
    connect(u->btn_grid, &Button::toggled, u->act_grid, &QAction::setChecked);
    connect(u->btn_legend, &Button::toggled, m_legend, &ColourLegendOverlay::setShown);
    // Live frames reach the display through the queue; the label shows only
    // once it has had to skip some.
    connect(m_liveFrames, &LiveFrameQueue::frameReady, this, &ScanDeck::showFrame);
    connect(m_liveFrames, &LiveFrameQueue::frameSkipped, this, &ScanDeck::exportSkippedFrame);
    connect(m_liveFrames, &LiveFrameQueue::skippedFramesChanged, this,
            [this](quint64 skipped) { m_status->showSkipped(skipped); });
}

// Space, the arrows, Home, End and N act on the recording when one is loaded,
// Space on the live display otherwise (a loaded recording and a live link
// exclude each other).
void ScanDeck::initShortcuts()
{
    m_shortcuts = new KeyboardShortcuts(this);
    OffinePlayWidget* player = ui->offline;
    auto& keys = *m_shortcuts;
    keys.add(Qt::Key_Space, QT_TRANSLATE_NOOP("KeyboardShortcuts", "Play or pause (recording or live display)"),
             [this, player] {
                 if (player->isLoaded())
                     player->playPause();
                 else if (ui->btn_play_pause->isEnabled())
                     ui->btn_play_pause->click();
             });
    addPlayerKeys(keys, player);
    keys.add(QKeySequence::Open, QT_TRANSLATE_NOOP("KeyboardShortcuts", "Open a recording"), [this, player] {
        ui->tabWidget->setCurrentWidget(ui->tab_offline);
        player->openIfAllowed();
    });
    keys.add(Qt::CTRL | Qt::Key_E, QT_TRANSLATE_NOOP("KeyboardShortcuts", "Export frames to CSV (start or stop)"),
             [this, player] {
                 if (player->isLoaded())
                     player->toggleExportIfAllowed();
                 else if (ui->btn_export_csv->isEnabled())
                     ui->btn_export_csv->click();
             });
    keys.add(Qt::Key_F1, QT_TRANSLATE_NOOP("KeyboardShortcuts", "This list and the version (About)"),
             [this] { showAbout(); });
    // Listed only: the grid action and the view's own keys.
    keys.add(Qt::CTRL | Qt::Key_G, QT_TRANSLATE_NOOP("KeyboardShortcuts", "Grid on or off"), nullptr);
    keys.add(Qt::Key_Plus, QT_TRANSLATE_NOOP("KeyboardShortcuts", "Larger points (in the view)"), nullptr);
    keys.add(Qt::Key_Minus, QT_TRANSLATE_NOOP("KeyboardShortcuts", "Smaller points (in the view)"), nullptr);
}

void ScanDeck::wireOfflinePlayer()
{
    OffinePlayWidget* player = ui->offline;
    // Direct: each tick of the player draws before it returns.
    connect(player, &OffinePlayWidget::SendLidarDataSignal, this, &ScanDeck::showFrame, Qt::DirectConnection);
    connect(player, &OffinePlayWidget::SendLidarTypeSignal, this, [this](const QString& model) {
        m_playbackModel = model;
        setWindowTitle(model);
    });
    connect(player, &OffinePlayWidget::SendPlaybackFileSignal, this, [this](const QString& path) {
        // Stop ends a running export as a disconnect does, keeping what was written.
        if (path.isEmpty())
            m_export->endKeeping();
        showPlaybackTitle(path);
    });
    connect(player, &OffinePlayWidget::SendShowTableWidgetSignal, this, [this](bool bShow) {
        if (bShow != ui->btn_table->isChecked())
            ui->btn_table->click();
    });
    connect(player, &OffinePlayWidget::SendExportCsvDataSianal, this, [this](bool checked) {
        ui->btn_export_csv->setChecked(checked);
        emit ui->btn_export_csv->clicked(checked);
    });
}

bool ScanDeck::ConnectNetworkLidar(const QString& model, const NetworkParam& param)
{
    return m_live->connectNetwork(model, param);
}

bool ScanDeck::ConnectSerialLidar(const QString& model, const SerialPortParam& param)
{
    return m_live->connectSerial(model, param);
}

void ScanDeck::areaPicked(const std::vector<int>& indices)
{
    m_measure->areaPicked(indices);
}

void ScanDeck::singlePick(int index, const pcl::PointXYZRGB& point)
{
    m_measure->singlePick(index, point);
}

void ScanDeck::rangingStep(int index, const pcl::PointXYZRGB& point)
{
    m_measure->rangingStep(index, point);
}

void ScanDeck::setSerialPortLister(AutoConnector::PortLister lister)
{
    m_live->setSerialPortLister(std::move(lister));
}

void ScanDeck::setExportDialogHook(ExportDialogHook hook)
{
    m_export->setDialogHook(std::move(hook));
}

std::shared_ptr<LidarAnalysis> ScanDeck::session() const { return m_live->connection().session(); }
bool ScanDeck::isLidarConnected() const { return m_live->connection().isConnected(); }
bool ScanDeck::isPlaying() const { return m_live->isPlaying(); }
SelectConnectType* ScanDeck::connectDialog() const { return m_live->connectDialog(); }
bool ScanDeck::isBoxActive() const { return m_box->isOn(); }
const ScanDeck::Cloud& ScanDeck::boxCloud() const { return *m_box->cloud(); }
bool ScanDeck::isRangingActive() const { return m_ranging->isOn(); }
const ScanDeck::Cloud& ScanDeck::clickCloud() const { return m_ranging->clickCloud(); }
const CsvExport& ScanDeck::csvExport() const { return m_export->csvExport(); }

void ScanDeck::setPointSize(int size)
{
    m_pointSize = size;
}

// C-locale conversion; a text that is no number gives 0. A reversed range shows nothing.
void ScanDeck::setMinAngle(const QString& text)
{
    m_settings.minAngle = text.toFloat();
}

void ScanDeck::setMaxAngle(const QString& text)
{
    m_settings.maxAngle = text.toFloat();
}

void ScanDeck::setCameraView()
{
    const QObject* b = sender();
    using viewmotions::CameraView;
    viewmotions::setCameraView(renderer(), b == ui->btn_top_view    ? CameraView::Top
                                           : b == ui->btn_left_view ? CameraView::Left
                                           : b == ui->btn_right_view ? CameraView::Right
                                                                     : CameraView::Front);
    m_display->render();
}

void ScanDeck::showAxes(bool on)
{
    if (on)
        m_viewer->addCoordinateSystem(1.5, "coordinate", 0);
    else
        m_viewer->removeCoordinateSystem("coordinate", 0);
    m_display->render();
}

void ScanDeck::toggleTabPanel()
{
    const bool show = !ui->tabWidget->isVisible();
    ui->tabWidget->setVisible(show);
    ui->btn_tabWidget_hide->setIcon(QIcon(show ? QStringLiteral(":/images/images/up2.png")
                                               : QStringLiteral(":/images/images/down2.png")));
}

void ScanDeck::restartProgram()
{
    if (!usermessages::question(this, tr("restart"), tr("Confirm restarting the software?")))
        return;
    QProcess::startDetached(QApplication::applicationFilePath(), QApplication::arguments().mid(1), QDir::currentPath());
    QApplication::exit(0);
}

void ScanDeck::showAbout()
{
    if (!m_about)
        m_about = new AboutDialog(this);
    m_about->setTexts(LIdarFactory::VersionText(), isLidarConnected() ? session()->GetLidarParam().text : QString());
    m_about->setShortcuts(m_shortcuts->list());
    m_about->show();
    m_about->raise();
    m_about->activateWindow();
}

void ScanDeck::showWarning(const QString& message)
{
    usermessages::warning(this, tr("warning"), message);
}

void ScanDeck::showFileSaved(const QString& fileName)
{
    usermessages::information(this, tr("File saved"), tr("File save path:%1").arg(fileName));
    if (!m_export->isActive())  // the bar may be showing a running export's progress
        m_status->progress->hide();
}

// Made on first use and kept, so that they open as they were left.
void ScanDeck::showBoxRangeDialog()
{
    if (!m_boxDialog)
        m_boxDialog = new BoxSelectionDialog(this, this);
    m_boxDialog->exec();
}

void ScanDeck::showGridPolarDialog()
{
    if (!m_gridPolarDialog)
        m_gridPolarDialog = new GridPolarDialog(this, this);
    m_gridPolarDialog->exec();
}
