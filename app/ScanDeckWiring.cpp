// Which control drives which operation. wireSignals runs once, on the
// start-up thread; wireSessionSignals each time a session is connected.

#include "ScanDeck.h"

#include "DeviceSettingsPanel.h"
#include "ColourLegendOverlay.h"
#include "KeyboardShortcuts.h"
#include "LidarAnalysis.h"
#include "LiveFrameQueue.h"
#include "OffinePlayWidget.h"
#include "ui_ScanDeck.h"

#include <QTabBar>

void ScanDeck::wireSignals()
{
    Ui::ScanDeckClass* u = ui;
    using Button = QAbstractButton;

    connect(u->btn_ranging, &Button::clicked, this, &ScanDeck::setRangingMode);
    connect(u->spinBox_point_size, QOverload<int>::of(&QSpinBox::valueChanged), this, &ScanDeck::setPointSize);
    connect(u->btn_tabWidget_hide, &Button::clicked, this, &ScanDeck::toggleTabPanel);
    connect(u->cob_language, &QComboBox::currentTextChanged, this, &ScanDeck::switchLanguage);
    connect(u->btn_auto_connect, &Button::clicked, this, &ScanDeck::autoConnect);
    connect(u->btn_connect, &Button::clicked, this, &ScanDeck::showConnectDialog);
    connect(u->btn_disconnect, &Button::clicked, this, &ScanDeck::disconnectLidar);
    connect(this, &ScanDeck::SendMessageSignal, this, &ScanDeck::showWarning);
    connect(u->spinbox_min_angle, &QDoubleSpinBox::textChanged, this, &ScanDeck::setMinAngle);
    connect(u->spinbox_max_angle, &QDoubleSpinBox::textChanged, this, &ScanDeck::setMaxAngle);
    connect(u->btn_grid, &Button::clicked, this, &ScanDeck::showGrid);
    connect(u->btn_polar, &Button::clicked, this, &ScanDeck::showPolar);
    connect(u->btn_set_grid_polar, &Button::clicked, this, &ScanDeck::showGridPolarDialog);
    connect(u->btn_table, &Button::clicked, this, &ScanDeck::toggleTablePane);
    connect(u->btn_axis, &Button::clicked, this, &ScanDeck::showAxes);
    for (Button* view : {static_cast<Button*>(u->btn_front_view), static_cast<Button*>(u->btn_left_view),
                         static_cast<Button*>(u->btn_right_view), static_cast<Button*>(u->btn_top_view)})
        connect(view, &Button::clicked, this, &ScanDeck::setCameraView);
    connect(u->btn_play_pause, &Button::clicked, this, &ScanDeck::playPause);
    if (m_tabBar)
        connect(m_tabBar, &QTabBar::currentChanged, this, &ScanDeck::slideInTab);
    connect(u->btn_reboot, &Button::clicked, this, &ScanDeck::restartProgram);
    connect(u->btn_about, &Button::clicked, this, &ScanDeck::showAbout);
    connect(u->btn_clear, &Button::clicked, this, &ScanDeck::clearView);
    connect(u->btn_save_data, &Button::clicked, this, &ScanDeck::recordData);
    connect(u->btn_export_csv, &Button::clicked, this,
            [this](bool checked) { exportCsv(ui->btn_export_csv, checked); });
    connect(this, &ScanDeck::SendDataSavingProgressSianal, this, &ScanDeck::showSavingProgress);
    connect(this, &ScanDeck::SendEndSaveDataSignal, this, &ScanDeck::showExportSaved);
    connect(u->btn_point_cloud_select, &Button::clicked, this, &ScanDeck::toggleBoxSelection);
    wireOfflinePlayer();
    connect(u->btn_GPS_test, &Button::clicked, this, &ScanDeck::toggleGpsTest);
    connect(u->btn_network_interface_setting, &Button::clicked, this, &ScanDeck::startNetworkTool);
    connect(u->btn_resize_range, &Button::clicked, this, &ScanDeck::showBoxRangeDialog);

    // The Grid action (Ctrl+G) is another way to the grid button.
    connect(u->act_grid, &QAction::triggered, u->btn_grid, &Button::click);
    connect(u->btn_grid, &Button::toggled, u->act_grid, &QAction::setChecked);
    connect(u->btn_legend, &Button::toggled, m_legend, &ColourLegendOverlay::setShown);
}

// Space, the arrows, Home and End act on the recording when one is loaded,
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
    keys.add(Qt::Key_Left, QT_TRANSLATE_NOOP("KeyboardShortcuts", "Previous frame"), [player] { player->previousFrame(); });
    keys.add(Qt::Key_Right, QT_TRANSLATE_NOOP("KeyboardShortcuts", "Next frame"), [player] { player->nextFrame(); });
    keys.add(Qt::Key_Home, QT_TRANSLATE_NOOP("KeyboardShortcuts", "First frame"), [player] { player->firstFrame(); });
    keys.add(Qt::Key_End, QT_TRANSLATE_NOOP("KeyboardShortcuts", "Last frame"), [player] { player->lastFrame(); });
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
    connect(player, &OffinePlayWidget::SendPlaybackFileSignal, this, &ScanDeck::showPlaybackTitle);
    connect(player, &OffinePlayWidget::SendShowTableWidgetSignal, this, [this](bool bShow) {
        if (bShow != ui->btn_table->isChecked())
            ui->btn_table->click();
    });
    connect(player, &OffinePlayWidget::SendExportCsvDataSianal, this, [this](bool checked) {
        ui->btn_export_csv->setChecked(checked);
        emit ui->btn_export_csv->clicked(checked);
    });
}

void ScanDeck::wireSessionSignals()
{
    // A session reused for the same model keeps its old connections: they
    // are replaced, so that nothing is shown or sent twice.
    for (const QMetaObject::Connection& connection : m_sessionConnections)
        disconnect(connection);
    m_sessionConnections.clear();

    LidarAnalysis* session = m_live.session().get();
    if (!session)
        return;
    auto& c = m_sessionConnections;
    // The session lives on its worker thread: its frames reach the display
    // through the queue, every one of them drawn while drawing keeps up.
    c << m_liveFrames->attach(session);
    c << connect(session, &LidarAnalysis::SendMessageSignal, this, &ScanDeck::showWarning);
    c << connect(session, &LidarAnalysis::SendEndSaveDataSignal, this, &ScanDeck::showFileSaved);
    // Motor switch, filter and frequency boxes, and the GPS test window.
    m_devicePanel->bindSession(m_live.session());
}
