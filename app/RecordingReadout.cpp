#include "RecordingReadout.h"

#include <QElapsedTimer>
#include <QEvent>
#include <memory>

namespace {

// Red like a recorder's lamp; own colours so that it reads without the style sheet too.
const char* const kStyle = "QLabel { color: #C62828; padding: 0px 6px; }";

// "05:09" under an hour, "1:05:09" beyond. To the nearest second: a timer
// that fires a little early still shows the second it stands for.
QString elapsedText(qint64 ms)
{
    const qint64 seconds = (qMax<qint64>(ms, 0) + 500) / 1000;
    const QString minSec =
        QStringLiteral("%1:%2").arg(seconds / 60 % 60, 2, 10, QLatin1Char('0')).arg(seconds % 60, 2, 10, QLatin1Char('0'));
    return seconds < 3600 ? minSec : QStringLiteral("%1:%2").arg(seconds / 3600).arg(minSec);
}

// Few characters however long the recording: 98765, 123k, 4.5M.
QString shortCount(quint64 n)
{
    if (n < 100000)
        return QString::number(n);
    if (n < 1000000)
        return QString::number(n / 1000) + QLatin1Char('k');
    return QString::number(double(n) / 1e6, 'f', 1) + QLatin1Char('M');
}

// Decimal units, as the link status counts kB/s.
QString shortBytes(quint64 n)
{
    if (n < 1000)
        return QStringLiteral("%1 B").arg(n);
    const char* const units[] = {"kB", "MB", "GB", "TB"};
    double value = double(n) / 1000.0;
    int unit = 0;
    while (value >= 1000.0 && unit < 3)
        value /= 1000.0, ++unit;
    return QStringLiteral("%1 %2").arg(QString::number(value, 'f', 1), QLatin1String(units[unit]));
}

}  // namespace

RecordingReadout::RecordingReadout(QWidget* parent, Clock clock) : QLabel(parent), m_clock(std::move(clock))
{
    if (!m_clock) {
        auto timer = std::make_shared<QElapsedTimer>();
        timer->start();
        m_clock = [timer] { return timer->elapsed(); };
    }
    setObjectName(QStringLiteral("label_recording"));
    setStyleSheet(QLatin1String(kStyle));
    // A narrow window clips the text rather than growing wider for it.
    setMinimumWidth(60);
    m_timer.setInterval(kRefreshMs);
    connect(&m_timer, &QTimer::timeout, this, &RecordingReadout::refresh);
    hide();
}

void RecordingReadout::watch(ProgressSource source, const QString& fileName)
{
    m_source = std::move(source);
    m_fileName = fileName;
    m_startedAt = m_clock();
    m_last = lidar::RecordingCounts();
    m_timer.start();
    refresh();
}

void RecordingReadout::unwatch()
{
    m_timer.stop();
    m_source = nullptr;
    m_fileName.clear();
    clear();
    setToolTip(QString());
    hide();
}

void RecordingReadout::refresh()
{
    if (!m_source)
        return;
    const Progress progress = m_source();
    // Ended without the button (a write failed): the session has said why.
    if (!progress.recording) {
        unwatch();
        return;
    }
    showProgress(progress.counts);
    QLabel::show();
}

QString RecordingReadout::describe(qint64 elapsedMs, const lidar::RecordingCounts& counts)
{
    return tr("● %1 · %2 pkt · %3").arg(elapsedText(elapsedMs), shortCount(counts.packets), shortBytes(counts.bytes));
}

QString RecordingReadout::describeInFull(qint64 elapsedMs, const lidar::RecordingCounts& counts,
                                         const QString& fileName)
{
    return tr("Recording into %1 for %2: %3 packets, %4 bytes written")
        .arg(fileName, elapsedText(elapsedMs))
        .arg(counts.packets)
        .arg(counts.bytes);
}

void RecordingReadout::showProgress(const lidar::RecordingCounts& counts)
{
    m_last = counts;
    const qint64 elapsed = m_clock() - m_startedAt;
    setText(describe(elapsed, counts));
    setToolTip(describeInFull(elapsed, counts, m_fileName));
}

void RecordingReadout::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::LanguageChange && m_source)
        showProgress(m_last);
    QLabel::changeEvent(event);
}
