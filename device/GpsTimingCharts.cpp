#include "GpsTimingCharts.h"

#include <QEvent>
#include <QLabel>
#include <QVBoxLayout>
#include <QtCharts/QChart>
#include <QtCharts/QChartView>
#include <QtCharts/QLineSeries>
#include <QtCharts/QValueAxis>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <vector>

using namespace QtCharts;

namespace {

qint64 systemNs()
{
    return std::chrono::duration_cast<std::chrono::nanoseconds>(std::chrono::system_clock::now().time_since_epoch())
        .count();
}

// The lowest and highest value of each column of time, in time order.
template <typename Value>
QVector<QPointF> columns(const std::deque<GpsTiming::Sample>& samples, Value value, int count)
{
    QVector<QPointF> points;
    if (samples.empty())
        return points;
    const double first = samples.front().atS, last = samples.back().atS;
    const double width = std::max(1e-9, (last - first) / count);
    int column = -1;
    QPointF low, high;
    const auto flush = [&] {
        if (column < 0)
            return;
        if (low.x() <= high.x())
            points << low << high;
        else
            points << high << low;
    };
    for (const GpsTiming::Sample& s : samples) {
        const double v = value(s);
        if (std::isnan(v))
            continue;
        const int c = std::min(count - 1, int((s.atS - first) / width));
        if (c != column) {
            flush();
            column = c;
            low = high = QPointF(s.atS, v);
        } else if (v < low.y()) {
            low = QPointF(s.atS, v);
        } else if (v > high.y()) {
            high = QPointF(s.atS, v);
        }
    }
    flush();
    return points;
}

QChart* chart(QLineSeries* line, QWidget* parent, QVBoxLayout* column)
{
    auto* c = new QChart;
    c->addSeries(line);
    c->createDefaultAxes();
    // Few, short labels: a chart this low elides anything longer.
    if (auto* values = qobject_cast<QValueAxis*>(c->axes(Qt::Vertical).value(0))) {
        values->setTickCount(4);
        values->setLabelFormat(QStringLiteral("%.1f"));
    }
    if (auto* seconds = qobject_cast<QValueAxis*>(c->axes(Qt::Horizontal).value(0)))
        seconds->setLabelFormat(QStringLiteral("%.0f"));
    c->legend()->hide();
    c->setMargins(QMargins(2, 2, 2, 2));
    auto* view = new QChartView(c, parent);
    view->setMinimumHeight(160);
    column->addWidget(view, 1);
    return c;
}

void fitAxes(QChart* chart, const QVector<QPointF>& points)
{
    if (points.isEmpty())
        return;
    double x0 = points.front().x(), x1 = points.back().x(), y0 = points.front().y(), y1 = y0;
    for (const QPointF& p : points) {
        y0 = std::min(y0, p.y());
        y1 = std::max(y1, p.y());
    }
    const double margin = std::max(1e-3, (y1 - y0) * 0.1);
    chart->axes(Qt::Horizontal).value(0)->setRange(x0, std::max(x1, x0 + 1.0));
    chart->axes(Qt::Vertical).value(0)->setRange(y0 - margin, y1 + margin);
}

}  // namespace

GpsTimingCharts::GpsTimingCharts(QWidget* parent, Clock clock)
    : QWidget(parent),
      m_clock(clock ? std::move(clock) : Clock(systemNs)),
      m_summary(new QLabel(this)),
      m_interval(new QLineSeries),
      m_offset(new QLineSeries)
{
    setObjectName(QStringLiteral("gps_timing_charts"));
    m_summary->setObjectName(QStringLiteral("label_gps_timing"));
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(m_summary);
    m_intervalChart = chart(m_interval, this, column);
    m_offsetChart = chart(m_offset, this, column);
    m_timer.setInterval(kRedrawMs);
    connect(&m_timer, &QTimer::timeout, this, [this] {
        if (m_dirty && isVisible())
            redraw();
    });
    m_timer.start();
    retranslate();
}

void GpsTimingCharts::add(quint64 packetNs, quint64 previousPacketNs)
{
    m_timing.add(packetNs, previousPacketNs, m_clock());
    m_dirty = true;
}

void GpsTimingCharts::clear()
{
    m_timing.clear();
    m_dirty = true;
    redraw();
}

QString GpsTimingCharts::summary() const
{
    if (m_timing.samples().empty())
        return tr("No GPS time stamps yet");
    double ppm = 0;
    const QString drift = m_timing.driftPpm(ppm) ? tr("%1 ppm").arg(ppm, 0, 'f', 1) : tr("not known yet");
    return tr("Packet time minus computer time: %1 ms; drift over the last minute: %2")
        .arg(m_timing.lastOffsetMs(), 0, 'f', 3)
        .arg(drift);
}

QVector<QPointF> GpsTimingCharts::intervalPoints() const
{
    return m_interval->pointsVector();
}

QVector<QPointF> GpsTimingCharts::offsetPoints() const
{
    return m_offset->pointsVector();
}

void GpsTimingCharts::redraw()
{
    m_dirty = false;
    const auto& samples = m_timing.samples();
    const QVector<QPointF> intervals =
        columns(samples, [](const GpsTiming::Sample& s) { return s.intervalMs < 0 ? NAN : s.intervalMs; }, kColumns);
    const QVector<QPointF> offsets =
        columns(samples, [](const GpsTiming::Sample& s) { return s.offsetMs; }, kColumns);
    m_interval->replace(intervals);
    m_offset->replace(offsets);
    fitAxes(m_intervalChart, intervals);
    fitAxes(m_offsetChart, offsets);
    m_summary->setText(summary());
}

void GpsTimingCharts::retranslate()
{
    m_intervalChart->setTitle(tr("Interval from packet to packet (ms) over time (s)"));
    m_offsetChart->setTitle(tr("Packet time minus computer time, change since the first packet (ms)"));
    m_summary->setText(summary());
}

void GpsTimingCharts::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::LanguageChange)
        retranslate();
    QWidget::changeEvent(event);
}
