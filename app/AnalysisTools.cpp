#include "AnalysisTools.h"

#include "ChangeColouring.h"
#include "ColourLegendOverlay.h"
#include "FileScanGeometry.h"
#include "FrameDisplay.h"
#include "LidarAnalysis.h"
#include "OffinePlayWidget.h"
#include "ReferenceDock.h"
#include "ReferenceTool.h"
#include "ScanDeck.h"
#include "SectorDock.h"
#include "SectorOverlay.h"
#include "StatisticsDock.h"
#include "StatisticsRun.h"
#include "ToolIcons.h"

#include <QBoxLayout>
#include <QEvent>
#include <QMenu>
#include <QSpinBox>
#include <QToolButton>

AnalysisTools::AnalysisTools(ScanDeck& window, FrameDisplay& display, display::ViewSettings& settings,
                             ColourLegendOverlay* legend)
    : QObject(&window),
      m_window(window),
      m_display(display),
      m_settings(settings),
      m_legend(legend),
      m_reference(new ReferenceTool(settings, [this] { return source(); }, [this] { redraw(); }, this)),
      m_statistics(new StatisticsRun([this] { return source(); }, this)),
      m_sectors(std::make_unique<SectorOverlay>(window.viewer(), [this] { m_display.render(); })),
      m_referenceDock(new ReferenceDock(*m_reference, [this]() -> const lidar::LidarDataPoint_V4& {
          return m_display.lastFrame();
      }, &window)),
      m_statisticsDock(new StatisticsDock(*m_statistics, &window)),
      m_sectorDock(new SectorDock(*m_sectors, &window))
{
    setObjectName(QStringLiteral("analysis_tools"));
    for (QDockWidget* dock : {static_cast<QDockWidget*>(m_referenceDock), static_cast<QDockWidget*>(m_statisticsDock),
                              static_cast<QDockWidget*>(m_sectorDock)}) {
        window.addDockWidget(Qt::RightDockWidgetArea, dock);
        dock->hide();
    }
    display.addOverlay(m_reference);
    display.addOverlay(m_statistics);
    display.addOverlay(m_sectors.get());
    connect(m_reference, &ReferenceTool::stateChanged, this, &AnalysisTools::followReference);
    // Another number of sectors shows on the frame on screen at once (a paused player's too).
    connect(m_sectorDock->findChild<QSpinBox*>(QStringLiteral("spin_sectors")),
            QOverload<int>::of(&QSpinBox::valueChanged), this, [this] {
                if (m_sectors->isOn() && !m_display.lastFrame().points.isEmpty()) {
                    m_sectors->frameShown(m_display.lastView());
                    m_display.render();
                }
            });
    addButtons();
    window.installEventFilter(this);  // language changes
}

AnalysisTools::~AnalysisTools() = default;

void AnalysisTools::setFileHook(std::function<QString(bool, const QString&, const QString&)> hook)
{
    m_referenceDock->setFileHook(hook);
    if (hook)
        m_statisticsDock->setFileHook(
            [hook](const QString& caption, const QString& filter) { return hook(true, caption, filter); });
    else
        m_statisticsDock->setFileHook(nullptr);
}

void AnalysisTools::addButtons()
{
    // In the bar above the view, after the legend: the tools column left of
    // the view has no room left on a short screen.
    QWidget* legend = m_window.findChild<QWidget*>(QStringLiteral("btn_legend"));
    QBoxLayout* bar = nullptr;
    for (QBoxLayout* layout : m_window.findChildren<QBoxLayout*>())
        if (legend && layout->indexOf(legend) >= 0)
            bar = layout;
    m_button = new QToolButton(&m_window);
    m_button->setObjectName(QStringLiteral("btn_analysis"));
    m_button->setIcon(toolicons::statistics());
    m_button->setIconSize(QSize(20, 20));
    m_button->setAutoRaise(true);
    m_button->setToolButtonStyle(Qt::ToolButtonIconOnly);  // the row is full on a 1024-pixel screen
    m_button->setPopupMode(QToolButton::InstantPopup);
    auto* menu = new QMenu(m_button);
    auto makeAction = [&](const char* name, const QIcon& icon, bool checkable) {
        QAction* action = menu->addAction(icon, QString());
        action->setObjectName(QLatin1String(name));
        action->setCheckable(checkable);
        return action;
    };
    m_referenceAction = makeAction("act_set_reference", toolicons::reference(), false);
    m_statisticsAction = makeAction("act_statistics", toolicons::statistics(), false);
    m_sectorsAction = makeAction("act_sectors", toolicons::sectors(), true);
    m_button->setMenu(menu);
    if (bar)
        bar->insertWidget(bar->indexOf(legend) + 1, m_button);
    // Set reference takes it at once with the dock's frame count; the dock
    // stays open for the colouring, the tolerance and the file.
    connect(m_referenceAction, &QAction::triggered, this, [this] {
        m_referenceDock->show();
        m_referenceDock->raise();
        m_referenceDock->takeReference();
    });
    connect(m_statisticsAction, &QAction::triggered, this, [this] {
        m_statisticsDock->show();
        m_statisticsDock->raise();
    });
    connect(m_sectorsAction, &QAction::toggled, this, [this](bool on) {
        m_sectors->setOn(on);
        m_sectorDock->setVisible(on);
        // The frame on screen gets its sectors now, not only the next one.
        if (on && !m_display.lastFrame().points.isEmpty())
            m_sectors->frameShown(m_display.lastView());
    });
    // Closing the dock ends the overlay too.
    connect(m_sectorDock, &QDockWidget::visibilityChanged, this, [this](bool visible) {
        if (!visible && m_sectorDock->isHidden() && m_sectorsAction->isChecked())
            m_sectorsAction->setChecked(false);
    });
    retranslate();
}

void AnalysisTools::retranslate()
{
    m_button->setText(tr("Analysis"));
    m_button->setToolTip(tr("Analysis – reference and change, range statistics, closest per sector"));
    m_referenceAction->setText(tr("Set reference"));
    m_referenceAction->setToolTip(tr("The frame on screen or the median over the next frames; then points are "
                                     "coloured by their change"));
    m_statisticsAction->setText(tr("Range statistics"));
    m_statisticsAction->setToolTip(tr("Statistics over N frames – return rate and spread of every direction"));
    m_sectorsAction->setText(tr("Closest per sector"));
    m_sectorsAction->setToolTip(tr("The nearest return in each sector around the lidar"));
    followReference();
}

bool AnalysisTools::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == &m_window && event->type() == QEvent::LanguageChange)
        retranslate();
    return QObject::eventFilter(watched, event);
}

ScanSource AnalysisTools::source() const
{
    ScanSource source;
    const auto* player = m_window.findChild<OffinePlayWidget*>(QStringLiteral("offline"));
    if (player && player->isLoaded()) {
        source.model = player->modelName();
        source.recording = player->frameSource();
        source.position = std::max(0, player->currentPosition() - 1);
        // Read from the file once; the reference tool asks every few frames.
        if (!player->currentFile().isEmpty() && player->currentFile() != m_geometryFile) {
            m_geometryFile = player->currentFile();
            m_fileStep = lidar::recordingScanGeometry(m_geometryFile).angularStep;
        }
        source.angularStep = player->currentFile().isEmpty() ? 0.0 : m_fileStep;
    } else if (m_window.isLidarConnected()) {
        const std::shared_ptr<LidarAnalysis> session = m_window.session();
        source.model = QString::fromLatin1(session->metaObject()->className());
        source.angularStep = session->streamScanGeometry().angularStep;
    }
    // A capture, or a stream whose first packet has not been looked at yet.
    if (source.angularStep <= 0.0)
        source.angularStep = scansource::stepOfFrame(m_display.lastFrame());
    return source;
}

void AnalysisTools::followReference()
{
    if (!m_legend)
        return;
    if (m_reference->isOn())
        m_legend->setOverride(display::changeLegend(m_reference->toleranceM()), tr("Change"));
    else
        m_legend->clearOverride();
}

// The frame on screen again with the settings as they are now, as the
// last frame was made with them otherwise (box, colour mode, angles).
void AnalysisTools::redraw()
{
    if (m_display.lastFrame().points.isEmpty())
        return;
    display::ViewSettings settings = m_display.lastView().settings;
    settings.changeReference = m_settings.changeReference;
    settings.changeToleranceM = m_settings.changeToleranceM;
    m_display.showAgain(settings, m_window.pointSize());
}
