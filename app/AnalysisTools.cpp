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
    QBoxLayout* column = m_window.findChild<QBoxLayout*>(QStringLiteral("verticalLayout_view_tools"));
    QWidget* after = m_window.findChild<QWidget*>(QStringLiteral("btn_resize_range"));
    auto makeButton = [&](const char* name, const QIcon& icon, bool checkable) {
        auto* button = new QToolButton(&m_window);
        button->setObjectName(QLatin1String(name));
        button->setIcon(icon);
        button->setIconSize(QSize(24, 24));
        button->setAutoRaise(true);
        button->setCheckable(checkable);
        button->setToolButtonStyle(Qt::ToolButtonIconOnly);
        return button;
    };
    m_referenceButton = makeButton("btn_set_reference", toolicons::reference(), false);
    m_statisticsButton = makeButton("btn_statistics", toolicons::statistics(), false);
    m_sectorsButton = makeButton("btn_sectors", toolicons::sectors(), true);
    const int at = column && after ? column->indexOf(after) + 1 : 0;
    if (column) {
        column->insertWidget(at, m_referenceButton);
        column->insertWidget(at + 1, m_statisticsButton);
        column->insertWidget(at + 2, m_sectorsButton);
    }
    // Set reference takes it at once with the dock's frame count; the dock
    // stays open for the colouring, the tolerance and the file.
    connect(m_referenceButton, &QToolButton::clicked, this, [this] {
        m_referenceDock->show();
        m_referenceDock->raise();
        m_referenceDock->takeReference();
    });
    connect(m_statisticsButton, &QToolButton::clicked, this, [this] {
        m_statisticsDock->show();
        m_statisticsDock->raise();
    });
    connect(m_sectorsButton, &QToolButton::toggled, this, [this](bool on) {
        m_sectors->setOn(on);
        m_sectorDock->setVisible(on);
        // The frame on screen gets its sectors now, not only the next one.
        if (on && !m_display.lastFrame().points.isEmpty())
            m_sectors->frameShown(m_display.lastView());
    });
    // Closing the dock ends the overlay too.
    connect(m_sectorDock, &QDockWidget::visibilityChanged, this, [this](bool visible) {
        if (!visible && m_sectorDock->isHidden() && m_sectorsButton->isChecked())
            m_sectorsButton->setChecked(false);
    });
    retranslate();
}

void AnalysisTools::retranslate()
{
    m_referenceButton->setToolTip(tr("Set reference – the frame on screen or the median over the next frames; "
                                     "then points are coloured by their change"));
    m_referenceButton->setText(tr("Set reference"));
    m_statisticsButton->setToolTip(tr("Statistics over N frames – return rate and spread of every direction"));
    m_statisticsButton->setText(tr("Range statistics"));
    m_sectorsButton->setToolTip(tr("Closest per sector – the nearest return in each sector around the lidar"));
    m_sectorsButton->setText(tr("Closest per sector"));
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
    m_display.show(m_display.lastFrame(), settings, m_window.pointSize());
}
