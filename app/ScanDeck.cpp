#include "ScanDeck.h"

#include "AnalysisTools.h"
#include "BoxOverlay.h"
#include "ColourLegendOverlay.h"
#include "CsvExportControl.h"
#include "DeviceSettingsPanel.h"
#include "GridPolarOverlays.h"
#include "IniSettings.h"
#include "LiveControls.h"
#include "LiveFrameQueue.h"
#include "MeasureTools.h"
#include "MessageBoxFit.h"
#include "NetworkToolLauncher.h"
#include "OffinePlayWidget.h"
#include "OfflineDrop.h"
#include "OverlayPainter.h"
#include "PointTableRow.h"
#include "ProgramFiles.h"
#include "RangingOverlay.h"
#include "RecentFolder.h"
#include "RenderRateTip.h"
#include "StreamHealthView.h"
#include "TableViewToolBar.h"
#include "UserMessages.h"
#include "ViewExportTools.h"
#include "WindowLanguage.h"
#include "WindowStatusBar.h"
#include "ui_ScanDeck.h"

#include <QApplication>
#include <QPushButton>
#include <QCloseEvent>
#include <QDropEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QStandardItemModel>
#include <QSurfaceFormat>
#include <QTabBar>
#include <thread>

#include <QVTKOpenGLNativeWidget.h>
#include <pcl/point_cloud.h>
#include <pcl/point_types.h>
#include <pcl/visualization/pcl_visualizer.h>
#include <vtkAxesActor.h>
#include <vtkCamera.h>
#include <vtkGenericOpenGLRenderWindow.h>
#include <vtkOrientationMarkerWidget.h>
#include <vtkRenderer.h>

void ScanDeck::prepareGraphics()
{
    QSurfaceFormat::setDefaultFormat(QVTKOpenGLNativeWidget::defaultFormat());
}

ScanDeck::ScanDeck(QWidget* parent)
    : QMainWindow(parent),
      ui(new Ui::ScanDeckClass),
      m_renderWindow(vtkSmartPointer<vtkGenericOpenGLRenderWindow>::New()),
      m_wiredFuture(m_wired.get_future().share())
{
    ui->setupUi(this);
    // Qt's own message boxes (the file dialogs') show their whole text too.
    messagebox::fitAllMessageBoxes();
    initUi();
    // The frame types are registered and the controls connected off the GUI
    // thread. A thread that cannot be started throws std::system_error.
    std::thread([this] {
        lidar::registerMetaTypes();
        wireSignals();
        m_wired.set_value();
    }).detach();
}

ScanDeck::~ScanDeck()
{
    waitUntilWired();
    if (m_orientationMarker)
        m_orientationMarker->SetEnabled(0);
    m_measure.reset();
    m_ranging.reset();
    m_viewer.reset();
    delete ui;
}

void ScanDeck::waitUntilWired()
{
    m_wiredFuture.wait();
}

vtkRenderer* ScanDeck::renderer() const
{
    return m_viewer->getRendererCollection()->GetFirstRenderer();
}

void ScanDeck::initUi()
{
    // The restart is wired but its button starts invisible.
    ui->btn_reboot->hide();
    auto* tableToolBar = new TableViewToolBar(this, ui->widget_table);
    ui->verticalLayout_table->insertWidget(0, tableToolBar);
    ui->verticalLayout_table->setStretch(1, 1);
    setWindowState(Qt::WindowMaximized);
    ui->splitter->setSizes({0, 1});  // the table pane starts collapsed
    qApp->setWindowIcon(QIcon(QStringLiteral(":/images/images/Tern_2.png")));
    const QString sheet = ProgramFiles::styleSheetText();
    if (!sheet.isEmpty())
        qApp->setStyleSheet(sheet);
    m_language = new WindowLanguage(this);

    initViewer();
    ui->openGLWidget->setAcceptDrops(true);
    new RenderRateTip(ui->openGLWidget);
    initTable();
    m_status = std::make_unique<WindowStatusBar>(this, *m_viewer, ui->openGLWidget);
    initParts();

    m_tabBar = ui->tabWidget->findChild<QTabBar*>(QStringLiteral("qt_tabwidget_tabbar"));
    if (m_tabBar)
        m_tabBar->installEventFilter(this);
    ui->openGLWidget->installEventFilter(this);
    ui->offline->setExportAction([this](QPushButton* button, bool checked) { m_export->toggle(button, checked); });
    ui->offline->setMessageHook([this](const QString& title, const QString& text) {
        usermessages::information(this, title, text);
    });
    addAction(ui->act_grid);  // its shortcut works anywhere in the window
    initShortcuts();
    // The form is English; only Chinese needs a switch.
    const bool chinese = WindowLanguage::startsInChinese();
    if (chinese)
        switchLanguage(WindowLanguage::kChinese);
    ui->cob_language->setCurrentIndex(chinese ? 0 : 1);
    // The keyboard starts in the view, where the frame keys are not taken by a spin box.
    ui->openGLWidget->setFocus();
    QApplication::processEvents();
}

void ScanDeck::initViewer()
{
    // The viewer draws into the widget's window, with the widget's interactor.
    auto firstRenderer = vtkSmartPointer<vtkRenderer>::New();
    m_viewer = std::make_shared<pcl::visualization::PCLVisualizer>(firstRenderer, m_renderWindow, "m_viewer", false);
    // Multisampling costs two thirds of the frame time on software OpenGL
    // (virtual machines, Xvfb) for slightly smoother overlay lines.
    m_renderWindow->SetMultiSamples(0);
    ui->openGLWidget->setRenderWindow(m_renderWindow);
    m_viewer->setupInteractor(ui->openGLWidget->interactor(), ui->openGLWidget->renderWindow());
    // "+" and "-" change the size of the points; the point size box follows.
    m_viewer->registerKeyboardCallback([this](const pcl::visualization::KeyboardEvent& event) {
        if (event.keyDown() && (event.getKeyCode() == '+' || event.getKeyCode() == '-'))
            ui->spinBox_point_size->setValue(std::clamp(m_pointSize + (event.getKeyCode() == '+' ? 1 : -1), 1, 10));
    });
    m_viewer->registerAreaPickingCallback([this](const pcl::visualization::AreaPickingEvent& event) {
        // Only the frame cloud's points count; the box and click clouds
        // overlap them and would add indices of their own.
        const pcl::Indices indices = event.getPointsIndices("m_pointCloud");
        areaPicked(std::vector<int>(indices.begin(), indices.end()));
    });
    renderer()->GetActiveCamera()->SetPosition(0, 0, 15);
    m_orientationMarker = vtkSmartPointer<vtkOrientationMarkerWidget>::New();
    m_orientationMarker->SetOrientationMarker(vtkSmartPointer<vtkAxesActor>::New());
    m_orientationMarker->SetInteractor(ui->openGLWidget->interactor());
    m_orientationMarker->SetViewport(0.0, 0.0, 0.16, 0.22);
    m_orientationMarker->SetEnabled(1);
    m_orientationMarker->InteractiveOff();
}

void ScanDeck::initTable()
{
    m_tableModel = new QStandardItemModel(this);
    m_tableModel->setHorizontalHeaderLabels(pointtable::headers());
    QTableView* table = ui->tableView_point_cloud;
    table->setModel(m_tableModel);
    table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    // Columns as wide as their contents: the table scrolls rather than cut a cell.
    table->horizontalHeader()->setStretchLastSection(false);
    table->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    table->setAlternatingRowColors(true);
}

// The parts the window hands its work to, and the overlays they draw.
void ScanDeck::initParts()
{
    m_display = std::make_unique<FrameDisplay>(*m_viewer, m_renderWindow, m_tableModel);
    m_display->setReadouts(m_status->readouts.get());
    const auto render = [this] { m_display->render(); };
    m_painter = std::make_unique<OverlayPainter>(*m_viewer);
    m_grid = std::make_unique<GridOverlay>(*m_painter, *this, m_overlayCount, render);
    m_polar = std::make_unique<PolarOverlay>(*m_painter, *this, m_overlayCount, render);
    m_box = std::make_unique<BoxOverlay>(
        [this](const std::shared_ptr<Cloud>& cloud, const char* id, int size) { m_display->drawCloud(cloud, id, size); },
        [this] { return m_pointSize; });
    m_ranging = std::make_unique<RangingOverlay>(*m_viewer, m_box->cloud());
    m_legend = new ColourLegendOverlay(ui->openGLWidget, ui->comboBox_color_mode);

    m_measure = std::make_unique<MeasureTools>(
        MeasureTools::Controls{ui->openGLWidget, ui->btn_point_cloud_select, ui->btn_ranging, ui->btn_resize_range,
                               statusBar(), m_tableModel},
        MeasureTools::Parts{*m_viewer, *m_display, *m_box, *m_ranging, *m_status->readouts},
        [this] { return m_pointSize; }, [this] { return isLidarConnected() && !isPlaying(); });

    m_devicePanel = new DeviceSettingsPanel(
        {ui->btn_motor_state, ui->comboBox_motor_filter, ui->comboBox_motor_frequency, ui->btn_GPS_test}, this);
    m_networkTool = new NetworkToolLauncher(this);
    m_liveFrames = new LiveFrameQueue(this);
    auto* health = new StreamHealthView(this, {*m_viewer, render, m_status->link, m_liveFrames, ui->offline},
                                        {ui->horizontalLayout_tools, ui->btn_legend});
    m_display->setOverlays({m_grid.get(), m_polar.get(), m_box.get(), m_ranging.get(), m_legend, health->gaps()});
    new AnalysisTools(*this, *m_display, m_settings, m_legend);  // a child, with its buttons and docks
    LiveControls::Window around;
    around.window = this;
    around.connector = this;
    around.offlineLoaded = [this] { return ui->offline->isLoaded(); };
    around.clearView = [this] { clearView(); };
    around.endExport = [this] { m_export->endKeeping(); };
    around.removeRangingMarks = [this] { m_ranging->removeMarks(); };
    around.savePath = [this](const QString& proposed) {
        return askSavePath(this, tr("settting a save path"), proposed, QStringLiteral("txt(*.txt)"));
    };
    around.warn = [this](const QString& message) { showWarning(message); };
    around.fileSaved = [this](const QString& file) { showFileSaved(file); };
    around.watchSession = [health](const std::shared_ptr<LidarAnalysis>& session) { health->watch(session); };
    m_live = std::make_unique<LiveControls>(*ui, around, *m_status, *m_devicePanel, *m_liveFrames);
    // Nothing is connected yet: only the connect buttons are live.
    m_live->applyState(false);

    CsvExportControl::Hooks hooks;
    hooks.modelName = [this] {
        const QString model = ui->offline->isLoaded() ? m_playbackModel : m_live->connection().modelName();
        return model.isEmpty() ? QStringLiteral("ScanDeck") : model;
    };
    hooks.progress = [this](float progress) { emit SendDataSavingProgressSianal(progress); };
    hooks.saved = [this](const QString& path) {
        if (ui->offline->isLoaded())
            emit ui->offline->SendEndSaveDataSignal(path);
        else
            emit SendEndSaveDataSignal(path);
    };
    hooks.savePath = [this](QWidget* parent, const QString& caption, const QString& proposed, const QString& filter) {
        return askSavePath(parent, caption, proposed, filter);
    };
    m_export = std::make_unique<CsvExportControl>(this, m_status->progress, hooks);

    m_viewExport = new ViewExportTools(
        this, ui->openGLWidget,
        [this] { return m_box->isOn() ? m_display->lastView().boxFrame : m_display->lastFrame(); },
        [model = hooks.modelName] { return model(); });
    QBoxLayout* column = ui->verticalLayout_view_tools;
    m_viewExport->addButtons(column, column->indexOf(ui->btn_table) + 1);
    m_viewExport->setSaveFileHook(hooks.savePath);
}

void ScanDeck::switchLanguage(const QString& text)
{
    const QString title = windowTitle();
    m_language->switchTo(text);
    ui->retranslateUi(this);
    // The form's texts are those of the start state: each control shows its own again.
    m_live->applyStateTexts();
    if (m_export->isActive())
        ui->btn_export_csv->setText(ui->btn_export_csv->isChecked() ? tr("Exporting data") : tr("Export CSV"));
    m_tableModel->setHorizontalHeaderLabels(pointtable::headers());
    m_status->retranslate();
    setWindowTitle(title);  // keeps a model name in the title
    if (isLidarConnected())
        m_live->configureDevicePanel(title);
}

display::ViewSettings ScanDeck::viewSettings() const
{
    display::ViewSettings settings = m_settings;
    settings.boxActive = m_box->isOn();
    settings.box = m_box->range();
    settings.colourMode = ui->comboBox_color_mode->currentIndex();
    return settings;
}

void ScanDeck::showFrame(lidar::LidarDataPoint_V4 frame)
{
    // Drop the previous frame's picked points while ranging stays on.
    m_measure->restartRangingForNewFrame();
    const display::FrameView& view = m_display->show(std::move(frame), viewSettings(), m_pointSize);
    m_export->frameShown(view.csvFrame());
}

void ScanDeck::exportSkippedFrame(lidar::LidarDataPoint_V4 frame)
{
    // Rounded and cut to the box exactly as a drawn frame would be.
    if (m_export->isActive())
        m_export->frameShown(FrameDisplay::view(std::move(frame), viewSettings()).csvFrame());
}

// The edited box applies to the frame on screen at once, like a new frame.
void ScanDeck::setBoxRange(const BoxCorner& min, const BoxCorner& max)
{
    m_box->setRange({min, max});
    m_measure->restartRangingForNewFrame();
    m_display->showBox(viewSettings());
}

BoxRange ScanDeck::getBoxRange() const
{
    return m_box->range();
}

void ScanDeck::showGrid(bool on)
{
    if (on)
        ui->btn_grid->setChecked(true);
    m_grid->setOn(on);
}

void ScanDeck::showPolar(bool on)
{
    if (on)
        ui->btn_polar->setChecked(true);
    m_polar->setOn(on);
}

void ScanDeck::clearView()
{
    // The grid button is deliberately left as it is, although its lines go too.
    if (ui->btn_polar->isChecked())
        ui->btn_polar->click();
    if (ui->btn_axis->isChecked())
        ui->btn_axis->click();
    m_tableModel->removeRows(0, m_tableModel->rowCount());
    m_viewer->removeAllShapes();
    m_viewer->removeAllPointClouds();
    m_box->viewCleared();
    m_display->render();
    ui->btn_resize_range->setEnabled(false);
}

void ScanDeck::closeEvent(QCloseEvent* event)
{
    if (ui->btn_save_data->isChecked())
        m_live->endRecordingOnClose(usermessages::question(
            this, tr("question"),
            tr("Data is being recorded. Do you want to save the data before exiting the program?")));
    if (ui->btn_export_csv->isChecked()
        && usermessages::question(this, tr("question"),
                                  tr("Exporting csv data, do you want to save the data before exiting the program?")))
        m_export->finishQuietly();
    event->accept();
    QApplication::exit(0);
}

bool ScanDeck::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == ui->openGLWidget) {
        if (event->type() == QEvent::DragEnter) {
            auto* drag = static_cast<QDragEnterEvent*>(event);
            if (offline::isAcceptableDrag(drag->mimeData()))
                drag->acceptProposedAction();
            return true;
        }
        if (event->type() == QEvent::Drop) {
            playDroppedFile(offline::droppedFilePath(static_cast<QDropEvent*>(event)->mimeData()));
            return true;
        }
        if (event->type() == QEvent::MouseMove || event->type() == QEvent::MouseButtonPress
            || event->type() == QEvent::MouseButtonRelease)
            m_measure->mouse(static_cast<QMouseEvent*>(event));  // the view still turns the camera
    }
    return QMainWindow::eventFilter(watched, event);
}

// A recording or a capture dropped on the view is played offline, if the user agrees.
void ScanDeck::playDroppedFile(const QString& path)
{
    QString model;
    std::unique_ptr<PlayerFrames> source = ui->offline->openSource(path, model);
    if (!source || !usermessages::question(this, tr("question"), tr("Whether to play offline file ?")))
        return;  // cancelled, refused (the player has said why) or not wanted
    if (isPlaying())
        ui->btn_play_pause->click();  // pause the live display first
    ui->offline->stop();
    IniSettings settings;
    recentfolder::remember(settings, path);
    ui->offline->loadSource(model, std::move(source), path);
    ui->tabWidget->setCurrentWidget(ui->tab_offline);
}

void ScanDeck::showPlaybackTitle(const QString& path)
{
    if (!ui->offline->isLoaded())
        setWindowTitle(QStringLiteral("ScanDeck"));
    else if (path.isEmpty())
        setWindowTitle(m_playbackModel);
    else
        setWindowTitle(QStringLiteral("%1 — %2").arg(m_playbackModel, QFileInfo(path).fileName()));
}

QString ScanDeck::askSavePath(QWidget* parent, const QString& caption, const QString& proposed, const QString& filter)
{
    if (m_saveFileHook)
        return m_saveFileHook(parent, caption, proposed, filter);
    return QFileDialog::getSaveFileName(parent, caption, proposed, filter);
}
