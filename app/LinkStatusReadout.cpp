#include "LinkStatusReadout.h"

#include <QEvent>

namespace {

QString oneDecimal(double value)
{
    return QString::number(value, 'f', 1);
}

// Own colours, so that the state stays clear without the style sheet too.
const char* const kReceivingStyle = "QLabel { color: #1E7D32; padding: 0px 6px; }";
const char* const kSilentStyle =
    "QLabel { color: #FFFFFF; background-color: #D93025; border-radius: 3px; padding: 0px 6px; }";

}  // namespace

LinkStatusReadout::LinkStatusReadout(QWidget* parent, LinkStatus::Clock clock)
    : QLabel(parent), m_status(std::move(clock))
{
    setObjectName(QStringLiteral("label_link_status"));
    // A narrow window clips the text rather than growing wider for it.
    setMinimumWidth(60);
    m_timer.setInterval(kRefreshMs);
    connect(&m_timer, &QTimer::timeout, this, &LinkStatusReadout::refresh);
    hide();
}

void LinkStatusReadout::watch(TotalsSource source, bool network)
{
    m_source = std::move(source);
    m_network = network;
    m_status.start(m_source ? m_source() : LinkTotals());
    m_timer.start();
    showStatus();
    show();
}

void LinkStatusReadout::unwatch()
{
    m_timer.stop();
    m_source = nullptr;
    m_status.stop();
    clear();
    hide();
}

void LinkStatusReadout::refresh()
{
    if (!m_source)
        return;
    m_status.sample(m_source());
    showStatus();
}

QString LinkStatusReadout::describe(const LinkStatus& status, bool network)
{
    const QString seconds = oneDecimal(status.msSinceLastData() / 1000.0);
    switch (status.state()) {
    case LinkStatus::State::Disconnected:
        return QString();
    case LinkStatus::State::Silent:
        return tr("No data from the lidar for %1 s").arg(seconds);
    case LinkStatus::State::Receiving:
        break;
    }
    const QString frames = oneDecimal(status.framesPerSecond());
    if (network)
        return tr("%1 packets/s, %2 frames/s, %3 s ago")
            .arg(QString::number(qRound(status.datagramsPerSecond())), frames, seconds);
    return tr("%1 kB/s, %2 frames/s, %3 s ago")
        .arg(oneDecimal(status.bytesPerSecond() / 1000.0), frames, seconds);
}

void LinkStatusReadout::showStatus()
{
    const bool silent = m_status.state() == LinkStatus::State::Silent;
    const char* style = silent ? kSilentStyle : kReceivingStyle;
    if (styleSheet() != QLatin1String(style))
        setStyleSheet(QLatin1String(style));
    setText(describe(m_status, m_network));
    setToolTip(tr("Link to the lidar: packets (over a serial port, kilobytes) and frames per second, and how long "
                  "ago the last data arrived. frames/s counts the revolutions the lidar completes; the FPS figure "
                  "in the view counts how often the view is drawn."));
}

void LinkStatusReadout::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::LanguageChange && m_status.state() != LinkStatus::State::Disconnected)
        showStatus();
    QLabel::changeEvent(event);
}
