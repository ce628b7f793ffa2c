#include "StreamHealthView.h"

#include "LidarAnalysis.h"
#include "LinkStatusReadout.h"
#include "LiveFrameQueue.h"
#include "OffinePlayWidget.h"
#include "StreamHealthDock.h"
#include "ToolIcons.h"

#include <QAction>
#include <QBoxLayout>
#include <QEvent>
#include <QMainWindow>
#include <QToolButton>

namespace {

GapsOverlay::Gaps gapsOf(const lidar::FrameHealth& health)
{
    GapsOverlay::Gaps gaps;
    for (const lidar::AngularGap& gap : health.gaps)
        gaps.append({gap.start, gap.end});
    return gaps;
}

QToolButton* toolButton(QWidget* parent, const char* name, const QIcon& icon)
{
    auto* button = new QToolButton(parent);
    button->setObjectName(QLatin1String(name));
    button->setIcon(icon);
    button->setIconSize(QSize(24, 24));
    button->setAutoRaise(true);
    button->setToolButtonStyle(Qt::ToolButtonIconOnly);
    return button;
}

}  // namespace

StreamHealthView::StreamHealthView(QMainWindow* window, Parts parts, Place place)
    : QObject(window),
      m_window(window),
      m_parts(std::move(parts)),
      m_dock(new StreamHealthDock(window)),
      m_gapsButton(toolButton(window, "btn_show_gaps", toolicons::gaps())),
      m_dockButton(toolButton(window, "btn_stream_health", toolicons::chart())),
      m_gaps(m_parts.viewer, m_parts.render)
{
    lidar::registerHealthMetaTypes();
    // Beside the view, closed until asked for: the main layout stays as it is.
    window->addDockWidget(Qt::RightDockWidgetArea, m_dock);
    m_dock->hide();
    QAction* toggle = m_dock->toggleViewAction();
    toggle->setObjectName(QStringLiteral("act_stream_health"));
    toggle->setIcon(toolicons::chart());
    m_dockButton->setDefaultAction(toggle);
    m_gapsButton->setCheckable(true);
    // The view tools' column is full on a 768-pixel screen: both go into the row.
    const int at = place.toolRow->indexOf(place.after) + 1;
    place.toolRow->insertWidget(at, m_gapsButton);
    place.toolRow->insertWidget(at + 1, m_dockButton);
    connect(m_gapsButton, &QToolButton::toggled, this, [this](bool on) { m_gaps.setOn(on); });
    m_gaps.setGapSource([this] { return m_nextGaps; });
    connect(m_parts.player, &OffinePlayWidget::SendFrameHealthSignal, this, &StreamHealthView::playerFrame);
    m_timer.setInterval(kSecondMs);
    connect(&m_timer, &QTimer::timeout, this, &StreamHealthView::closeSecond);
    window->installEventFilter(this);  // language changes
    retranslate();
}

StreamHealthView::~StreamHealthView() = default;

void StreamHealthView::watch(const std::shared_ptr<LidarAnalysis>& session)
{
    QObject::disconnect(m_sessionConnection);
    m_session = session;
    m_seconds.reset();
    m_recent.reset();
    m_nextGaps.clear();
    m_firstRevolution = true;
    m_parts.link->setHealthWarning(QString());
    if (!session) {
        m_timer.stop();
        return;
    }
    // The session may be an earlier one reused: its totals so far are not this link's.
    m_seconds.closeSecond(session->streamCounters.snapshot(), m_parts.liveFrames->skippedFrames());
    m_dock->clear();
    m_sessionConnection = connect(session.get(), &LidarAnalysis::SendFrameHealthSignal, this,
                                  &StreamHealthView::liveRevolution, Qt::QueuedConnection);
    m_timer.start();
}

void StreamHealthView::closeSecond()
{
    const std::shared_ptr<LidarAnalysis> session = m_session.lock();
    if (!session)
        return;
    const HealthSecond second =
        m_seconds.closeSecond(session->streamCounters.snapshot(), m_parts.liveFrames->skippedFrames());
    m_dock->addSecond(second);
    m_recent.setLastSecond(quint64(second.rejected), quint64(second.skippedBytes));
    showWarning();
}

void StreamHealthView::liveRevolution(const lidar::FrameHealth& health, const lidar::StreamTotals& /*totals*/)
{
    if (m_session.expired())
        return;  // queued before the disconnect
    m_seconds.addFrame(health);
    // A stream's first revolution begins mid-turn: its gap says nothing of the link.
    if (!m_firstRevolution)
        m_recent.addFrame(health);
    m_firstRevolution = false;
    m_nextGaps = gapsOf(health);
    showWarning();
}

void StreamHealthView::playerFrame(const lidar::FrameHealth& health)
{
    m_nextGaps = gapsOf(health);
}

void StreamHealthView::showWarning()
{
    m_parts.link->setHealthWarning(m_recent.reason());
}

void StreamHealthView::retranslate()
{
    m_gapsButton->setText(tr("Show gaps"));
    m_gapsButton->setToolTip(tr("Show gaps – the parts of the circle the frame shown did not cover"));
    m_dock->toggleViewAction()->setToolTip(
        tr("Stream health – packets, coverage, rejected data and revolution period of the live stream"));
}

bool StreamHealthView::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_window && event->type() == QEvent::LanguageChange)
        retranslate();
    return QObject::eventFilter(watched, event);
}
