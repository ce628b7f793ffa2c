#include "LinkStatusReadout.h"

#include <QEvent>

namespace {

QString oneDecimal(double value)
{
    return QString::number(value, 'f', 1);
}

// Own colours, so that the state stays clear without the style sheet too.
const char* const kReceivingStyle = "QLabel { color: #1E7D32; padding: 0px 6px; }";
const char* const kWarningStyle =
    "QLabel { color: #000000; background-color: #F9A825; border-radius: 3px; padding: 0px 6px; }";
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
    m_warning.clear();
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

void LinkStatusReadout::setHealthWarning(const QString& reason)
{
    if (reason == m_warning)
        return;
    m_warning = reason;
    if (m_status.state() != LinkStatus::State::Disconnected)
        showStatus();
}

LinkStatusReadout::Look LinkStatusReadout::look() const
{
    switch (m_status.state()) {
    case LinkStatus::State::Disconnected:
        return Look::Hidden;
    case LinkStatus::State::Silent:
        return Look::Red;
    case LinkStatus::State::Receiving:
        break;
    }
    return m_warning.isEmpty() ? Look::Green : Look::Amber;
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
    const Look shown = look();
    const char* style = shown == Look::Red ? kSilentStyle : shown == Look::Amber ? kWarningStyle : kReceivingStyle;
    if (styleSheet() != QLatin1String(style))
        setStyleSheet(QLatin1String(style));
    const QString text = describe(m_status, m_network);
    setText(shown == Look::Amber ? tr("%1 — %2").arg(text, m_warning) : text);
    QString tip = tr("Link to the lidar: packets (over a serial port, kilobytes) and frames per second, and how long "
                     "ago the last data arrived. frames/s counts the revolutions the lidar completes; the FPS figure "
                     "in the view counts how often the view is drawn.");
    if (shown == Look::Amber)
        tip += QLatin1Char('\n') + tr("Amber: revolutions arrive incomplete or data is rejected. The Stream health "
                                      "window shows the last minute.");
    setToolTip(tip);
}

void LinkStatusReadout::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::LanguageChange && m_status.state() != LinkStatus::State::Disconnected)
        showStatus();
    QLabel::changeEvent(event);
}
