#include "ScanDeck.h"

#include "AboutDialog.h"
#include "BoxSelectionDialog.h"
#include "GridPolarDialog.h"
#include "DeviceSettingsPanel.h"
#include "CaptureFile.h"
#include "ColourLegendOverlay.h"
#include "IniSettings.h"
#include "ProgramFiles.h"
#include "KeyboardShortcuts.h"
#include "LIdarFactory.h"
#include "LiveFrameQueue.h"
#include "LidarAnalysis.h"
#include "NetworkToolLauncher.h"
#include "LinkStatusReadout.h"
#include "RecordingReadout.h"
#include "MessageBoxFit.h"
#include "OffinePlayWidget.h"
#include "OfflineDrop.h"
#include "OverlayPainter.h"
#include "PointTableRow.h"
#include "RangingMarks.h"
#include "StatusReadouts.h"
#include "RecentFolder.h"
#include "RenderRateTip.h"
#include "TableViewToolBar.h"
#include "UserMessages.h"
#include "WrappingStatusBar.h"
#include "ui_ScanDeck.h"

#include <QApplication>
#include <QButtonGroup>
#include <QCloseEvent>
#include <QDir>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFile>
#include <QFileInfo>
#include <QLabel>
#include <QLibraryInfo>
#include <QMouseEvent>
#include <QProcess>
#include <QProgressBar>
#include <QPropertyAnimation>
#include <QPushButton>
#include <QStandardItemModel>
#include <QStatusBar>
#include <QSurfaceFormat>
#include <QTabBar>
#include <QTranslator>
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
#include <vtkWorldPointPicker.h>

namespace {

// Qt's own texts (OK, Cancel, Yes, No, the file dialogs) from Qt's translations.
const QString kQtTranslation = QStringLiteral("qtbase_zh_CN");
const QString kChinese = QStringLiteral("中文");
const QString kEnglish = QStringLiteral("English");

// "language" is a top-level key of the settings file.
QString readLanguageSetting()
{
    return IniSettings().value(QString(), QStringLiteral("language"));
}

void storeLanguageSetting(const QString& language)
{
    IniSettings().setValue(QString(), QStringLiteral("language"), language);
}

}  // namespace

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
    m_tableToolBar = new TableViewToolBar(this, ui->widget_table);
    ui->verticalLayout_table->insertWidget(0, m_tableToolBar);
    ui->verticalLayout_table->setStretch(1, 1);

    setWindowState(Qt::WindowMaximized);
    ui->splitter->setSizes({0, 1});  // the table pane starts collapsed
    qApp->setWindowIcon(QIcon(QStringLiteral(":/images/images/Tern_2.png")));
    applyStyleSheet();
    applyStartLanguage();

    initViewer();
    ui->openGLWidget->setAcceptDrops(true);
    m_legend = new ColourLegendOverlay(ui->openGLWidget, ui->comboBox_color_mode);
    new RenderRateTip(ui->openGLWidget);

    m_devicePanel = new DeviceSettingsPanel(
        {ui->btn_motor_state, ui->comboBox_motor_filter, ui->comboBox_motor_frequency, ui->btn_GPS_test}, this);
    m_networkTool = new NetworkToolLauncher(this);

    // Nothing is connected yet: only the connect buttons are live.
    applyLiveState(false);

    m_tableModel = new QStandardItemModel(this);
    m_tableModel->setHorizontalHeaderLabels(pointtable::headers());
    QTableView* table = ui->tableView_point_cloud;
    table->setModel(m_tableModel);
    table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table->horizontalHeader()->setStretchLastSection(true);
    table->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    table->setAlternatingRowColors(true);

    renderer()->GetActiveCamera()->SetPosition(0, 0, 15);
    m_orientationMarker = vtkSmartPointer<vtkOrientationMarkerWidget>::New();
    m_orientationMarker->SetOrientationMarker(vtkSmartPointer<vtkAxesActor>::New());
    m_orientationMarker->SetInteractor(ui->openGLWidget->interactor());
    m_orientationMarker->SetViewport(0.0, 0.0, 0.16, 0.22);
    m_orientationMarker->SetEnabled(1);
    m_orientationMarker->InteractiveOff();

    initStatusBar();

    m_tabBar = ui->tabWidget->findChild<QTabBar*>(QStringLiteral("qt_tabwidget_tabbar"));
    if (m_tabBar)
        m_tabBar->installEventFilter(this);
    ui->openGLWidget->installEventFilter(this);

    ui->offline->setExportAction(
        [this](QPushButton* button, bool checked) { exportCsv(button, checked); });
    initExportTools();
    ui->offline->setMessageHook([this](const QString& title, const QString& text) {
        usermessages::information(this, title, text);
    });
    addAction(ui->act_grid);  // its shortcut works anywhere in the window
    initShortcuts();
    // The keyboard starts in the view, where the frame keys are not taken
    // by a spin box.
    ui->openGLWidget->setFocus();

    QApplication::processEvents();
}

void ScanDeck::initViewer()
{
    // The viewer draws into the widget's render window and uses the
    // widget's interactor instead of making its own.
    auto firstRenderer = vtkSmartPointer<vtkRenderer>::New();
    m_viewer = std::make_shared<pcl::visualization::PCLVisualizer>(firstRenderer, m_renderWindow,
                                                                   "m_viewer", false);
    // Multisampling costs two thirds of the frame time on software OpenGL
    // (virtual machines, Xvfb) for slightly smoother overlay lines.
    m_renderWindow->SetMultiSamples(0);
    ui->openGLWidget->setRenderWindow(m_renderWindow);
    m_viewer->setupInteractor(ui->openGLWidget->interactor(), ui->openGLWidget->renderWindow());

    m_cloud = std::make_shared<Cloud>();
    m_boxCloud = std::make_shared<Cloud>();
    m_clickCloud = std::make_shared<Cloud>();
    m_overlays = std::make_unique<OverlayPainter>(*m_viewer);
    m_ranging = std::make_unique<RangingMarks>(*m_viewer, m_clickCloud, m_boxCloud);
    m_cursorPicker = vtkSmartPointer<vtkWorldPointPicker>::New();

    // "+" and "-" change the size of the next frame's points; the spin box
    // is deliberately left as it is.
    m_viewer->registerKeyboardCallback([this](const pcl::visualization::KeyboardEvent& event) {
        if (!event.keyDown())
            return;
        if (event.getKeyCode() == '+')
            m_pointSize = std::min(m_pointSize + 1, 10);
        else if (event.getKeyCode() == '-')
            m_pointSize = std::max(m_pointSize - 1, 1);
    });
    m_viewer->registerAreaPickingCallback([this](const pcl::visualization::AreaPickingEvent& event) {
        // Only the frame cloud's points count; the box and click clouds
        // overlap them and would add indices of their own.
        const pcl::Indices indices = event.getPointsIndices("m_pointCloud");
        areaPicked(std::vector<int>(indices.begin(), indices.end()));
    });
}

void ScanDeck::initStatusBar()
{
    // The readouts wrap into a second row rather than being cut on a narrow window.
    auto* readouts = new WrappingStatusBar(statusBar());
    m_recordingReadout = new RecordingReadout(this);
    readouts->addReadout(m_recordingReadout);
    m_linkStatus = new LinkStatusReadout(this);
    readouts->addReadout(m_linkStatus);
    m_progressBar = new QProgressBar(this);
    m_progressBar->setRange(1, 100);
    // The value is the percentage: over the range 1..100 Qt's own text would be one off.
    m_progressBar->setFormat(QStringLiteral("%v%"));
    m_progressBar->setFixedHeight(20);
    m_progressBar->setMaximumWidth(240);
    m_progressBar->hide();
    readouts->addReadout(m_progressBar);

    // Live frames reach the display through the queue; the label shows only
    // once it has had to skip some.
    m_liveFrames = new LiveFrameQueue(this);
    connect(m_liveFrames, &LiveFrameQueue::frameReady, this, &ScanDeck::showFrame);
    connect(m_liveFrames, &LiveFrameQueue::frameSkipped, this, &ScanDeck::exportSkippedFrame);
    m_displayBehindLabel = new QLabel(this);
    m_displayBehindLabel->setObjectName(QStringLiteral("label_display_behind"));
    m_displayBehindLabel->hide();
    readouts->addReadout(m_displayBehindLabel);
    connect(m_liveFrames, &LiveFrameQueue::skippedFramesChanged, this, [this](quint64 skipped) {
        m_displayBehindLabel->setText(tr("display behind: %1 frames skipped").arg(skipped));
        m_displayBehindLabel->setVisible(skipped > 0);
    });

    auto* link = new QLabel(this);
    link->setObjectName(QStringLiteral("label_link"));
    link->setTextFormat(Qt::RichText);
    link->setOpenExternalLinks(true);
    readouts->addReadout(link);
    retranslateOwnTexts();

    auto* views = new QButtonGroup(this);
    views->setExclusive(true);
    for (QAbstractButton* b : {static_cast<QAbstractButton*>(ui->btn_top_view), static_cast<QAbstractButton*>(ui->btn_left_view),
                               static_cast<QAbstractButton*>(ui->btn_right_view), static_cast<QAbstractButton*>(ui->btn_front_view)})
        views->addButton(b);

    const QFont font(QStringLiteral("微软雅黑"), -1, 75);
    auto makeLabel = [&](const char* name, int width) {
        auto* label = new QLabel(this);
        label->setObjectName(QLatin1String(name));
        label->setFont(font);
        label->setFixedWidth(width);
        readouts->addReadout(label);
        return label;
    };
    m_motorSpeedLabel = makeLabel("label_motor_speed", 220);
    m_deltaXLabel = makeLabel("label_delta_x", 175);
    m_deltaYLabel = makeLabel("label_delta_y", 175);
    m_deltaDistanceLabel = makeLabel("label_delta_distance", 175);
    m_azimuthLabel = makeLabel("label_azimuth", 175);
    m_distanceLabel = makeLabel("label_distance", 175);
    m_readouts = std::make_unique<StatusReadouts>(
        StatusReadouts::Labels{m_motorSpeedLabel, m_deltaXLabel, m_deltaYLabel, m_deltaDistanceLabel, m_azimuthLabel,
                               m_distanceLabel},
        *m_viewer, ui->openGLWidget);
    resetReadouts();
}

void ScanDeck::resetReadouts()
{
    if (m_readouts)  // the start-up language switch comes before the status bar
        m_readouts->reset();
}

void ScanDeck::applyStyleSheet()
{
    QFile file(ProgramFiles::styleSheet());
    if (!file.open(QIODevice::ReadOnly))
        return;
    QByteArray sheet = file.readAll();
    const int end = sheet.indexOf('\0');
    if (end >= 0)
        sheet.truncate(end);
    qApp->setStyleSheet(QString::fromUtf8(sheet));
}

void ScanDeck::applyStartLanguage()
{
    // The form is English; only Chinese needs a switch.
    if (readLanguageSetting() == QLatin1String("Chinese")) {
        switchLanguage(kChinese);
        ui->cob_language->setCurrentIndex(0);
    } else {
        ui->cob_language->setCurrentIndex(1);
    }
}

void ScanDeck::switchLanguage(const QString& text)
{
    const QString title = windowTitle();
    if (!m_translator)
        m_translator = new QTranslator(this);
    m_translator->load(ProgramFiles::translation());
    if (!m_qtTranslator) {
        m_qtTranslator = new QTranslator(this);
        m_qtTranslator->load(kQtTranslation, QLibraryInfo::location(QLibraryInfo::TranslationsPath));
    }
    if (text == kChinese) {
        storeLanguageSetting(QStringLiteral("Chinese"));
        for (QTranslator* translator : {m_qtTranslator, m_translator}) {
            QApplication::removeTranslator(translator);  // installed once only
            QApplication::installTranslator(translator);
        }
    } else if (text == kEnglish) {
        storeLanguageSetting(QStringLiteral("English"));
        QApplication::removeTranslator(m_translator);
        QApplication::removeTranslator(m_qtTranslator);
    }
    ui->retranslateUi(this);
    retranslateOwnTexts();
    resetReadouts();
    setWindowTitle(title);  // keeps a model name in the title
    if (m_live.isConnected())
        configureDevicePanel(title);
}

// The texts the window sets up itself rather than through its form.
void ScanDeck::retranslateOwnTexts()
{
    if (m_tableModel)  // the start-up language switch comes first
        m_tableModel->setHorizontalHeaderLabels(pointtable::headers());
    if (auto* link = findChild<QLabel*>(QStringLiteral("label_link")))
        link->setText(QStringLiteral("<a href=\"https://pointclouds.org\">%1</a>").arg(tr("Point Cloud Library")));
}

void ScanDeck::toggleTabPanel()
{
    const bool show = !ui->tabWidget->isVisible();
    ui->tabWidget->setVisible(show);
    ui->btn_tabWidget_hide->setIcon(QIcon(show ? QStringLiteral(":/images/images/up2.png")
                                                : QStringLiteral(":/images/images/down2.png")));
}

// The new page drops in from above and settles with a small overshoot.
void ScanDeck::slideInTab(int index)
{
    QWidget* page = ui->tabWidget->widget(index);
    if (!page)
        return;
    const QRect end = page->geometry();
    auto* animation = new QPropertyAnimation(page, "geometry", page);
    animation->setDuration(300);
    animation->setEasingCurve(QEasingCurve::OutBack);
    animation->setStartValue(QRect(end.x(), -70, end.width(), end.height()));
    animation->setEndValue(end);
    // The page may have changed its height meanwhile (its controls wrap on
    // a narrow window): the stack places it anew once it has landed.
    connect(animation, &QPropertyAnimation::finished, page, [page] {
        if (QWidget* stack = page->parentWidget(); stack && stack->layout())
            stack->layout()->invalidate();
    });
    animation->start(QAbstractAnimation::DeleteWhenStopped);
}

void ScanDeck::restartProgram()
{
    if (!usermessages::question(this, tr("restart"), tr("Confirm restarting the software?")))
        return;
    QProcess::startDetached(QApplication::applicationFilePath(), QApplication::arguments().mid(1),
                            QDir::currentPath());
    QApplication::exit(0);
}

void ScanDeck::showAbout()
{
    if (!m_about)
        m_about = new AboutDialog(this);
    QString firmware;
    if (m_live.isConnected())
        firmware = m_live.session()->GetLidarParam().text;
    m_about->setTexts(LIdarFactory::VersionText(), firmware);
    m_about->setShortcuts(m_shortcuts->list());
    m_about->show();
    m_about->raise();
    m_about->activateWindow();
}

void ScanDeck::showWarning(const QString& message)
{
    usermessages::warning(this, tr("warning"), message);
}

void ScanDeck::showSavingProgress(float progress)
{
    m_progressBar->setValue(static_cast<int>(progress * 100));
}

void ScanDeck::showFileSaved(const QString& fileName)
{
    usermessages::information(this, tr("File saved"), tr("File save path:%1").arg(fileName));
    if (!m_csvExport.isActive())  // the bar may be showing a running export's progress
        m_progressBar->hide();
}

void ScanDeck::closeEvent(QCloseEvent* event)
{
    if (ui->btn_save_data->isChecked()
        && usermessages::question(this, tr("question"),
                                  tr("Data is being recorded. Do you want to save the data before "
                                     "exiting the program?"))
        && m_live.session())
        m_live.session()->EndSaveData();
    if (ui->btn_export_csv->isChecked()
        && usermessages::question(this, tr("question"),
                                  tr("Exporting csv data, do you want to save the data before exiting "
                                     "the program?"))) {
        m_csvExport.finish();
        m_progressBar->hide();
    }
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
            handleViewMouse(static_cast<QMouseEvent*>(event));  // the view still turns the camera
    }
    return QMainWindow::eventFilter(watched, event);
}

// A recording or a capture dropped on the view is played offline, if the
// user agrees.
void ScanDeck::playDroppedFile(const QString& path)
{
    QString model;
    std::unique_ptr<PlayerFrames> source = ui->offline->openSource(path, model);
    if (!source)
        return;  // cancelled, or the player has said why
    if (!usermessages::question(this, tr("question"), tr("Whether to play offline file ?")))
        return;
    if (m_playing)
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
