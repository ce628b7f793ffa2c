#include "StreamHealthDock.h"

#include <QEvent>
#include <QLabel>
#include <QVBoxLayout>
#include <QtCharts/QChart>
#include <QtCharts/QChartView>
#include <QtCharts/QLineSeries>
#include <QtCharts/QValueAxis>

#include <algorithm>

using namespace QtCharts;

namespace {

QLineSeries* series(const char* name)
{
    auto* s = new QLineSeries;
    s->setObjectName(QLatin1String(name));
    return s;
}

}  // namespace

StreamHealthDock::StreamHealthDock(QWidget* parent)
    : QDockWidget(parent),
      m_counters(new QLabel(this)),
      m_packets(series("packets")),
      m_coverage(series("coverage")),
      m_rejected(series("rejected")),
      m_skipped(series("skipped")),
      m_period(series("period"))
{
    setObjectName(QStringLiteral("dock_stream_health"));
    auto* body = new QWidget(this);
    auto* column = new QVBoxLayout(body);
    m_counters->setObjectName(QStringLiteral("label_health_counters"));
    m_counters->setWordWrap(true);
    column->addWidget(m_counters);
    const QList<QList<QLineSeries*>> charts{{m_packets}, {m_coverage}, {m_rejected, m_skipped}, {m_period}};
    for (const QList<QLineSeries*>& lines : charts) {
        auto* chart = new QChart;
        auto* seconds = new QValueAxis;
        seconds->setRange(-kSeconds, 0);
        seconds->setLabelFormat(QStringLiteral("%d"));
        auto* values = new QValueAxis;
        values->setLabelFormat(QStringLiteral("%g"));
        chart->addAxis(seconds, Qt::AlignBottom);
        chart->addAxis(values, Qt::AlignLeft);
        for (QLineSeries* line : lines) {
            chart->addSeries(line);
            line->attachAxis(seconds);
            line->attachAxis(values);
        }
        chart->legend()->setVisible(lines.size() > 1);
        chart->setMargins(QMargins(2, 2, 2, 2));
        auto* view = new QChartView(chart, body);
        view->setRenderHint(QPainter::Antialiasing);
        view->setMinimumHeight(130);
        column->addWidget(view, 1);
        m_charts << chart;
        m_valueAxes << values;
    }
    setWidget(body);
    retranslate();
    redraw();
}

void StreamHealthDock::addSecond(const HealthSecond& second)
{
    m_seconds.append(second);
    if (m_seconds.size() > kSeconds)
        m_seconds.remove(0, m_seconds.size() - kSeconds);
    redraw();
}

void StreamHealthDock::clear()
{
    m_seconds.clear();
    redraw();
}

QVector<double> StreamHealthDock::charted(const char* name) const
{
    QVector<double> values;
    for (QLineSeries* line : {m_packets, m_coverage, m_rejected, m_skipped, m_period})
        if (line->objectName() == QLatin1String(name))
            for (const QPointF& p : line->points())
                values << p.y();
    return values;
}

void StreamHealthDock::redraw()
{
    const int n = m_seconds.size();
    const auto fill = [&](QLineSeries* line, auto value) {
        QVector<QPointF> points;
        for (int i = 0; i < n; ++i) {
            const double v = value(m_seconds[i]);
            if (v >= 0)
                points << QPointF(i - n + 1, v);
        }
        line->replace(points);
    };
    fill(m_packets, [](const HealthSecond& s) { return s.packets; });
    fill(m_coverage, [](const HealthSecond& s) { return s.coverage < 0 ? -1.0 : s.coverage * 100.0; });
    fill(m_rejected, [](const HealthSecond& s) { return s.rejected; });
    fill(m_skipped, [](const HealthSecond& s) { return s.skippedBytes; });
    fill(m_period, [](const HealthSecond& s) { return s.periodMs; });
    // Each chart's values from 0 to a little above its largest.
    const QList<QList<QLineSeries*>> charts{{m_packets}, {m_coverage}, {m_rejected, m_skipped}, {m_period}};
    for (int c = 0; c < charts.size(); ++c) {
        double top = c == 1 ? 100.0 : 1.0;
        for (QLineSeries* line : charts[c])
            for (const QPointF& p : line->points())
                top = std::max(top, p.y());
        m_valueAxes[c]->setRange(0, c == 1 ? 100.0 : top * 1.1);
        m_valueAxes[c]->applyNiceNumbers();  // round steps, not 199.65
    }
    if (n == 0) {
        m_counters->setText(tr("No data yet"));
        return;
    }
    const HealthSecond& s = m_seconds.last();
    m_counters->setText(
        tr("Last second: %1 packets, %2 revolutions (%3 incomplete, %4 packets missing), %5 rejected packets, "
           "%6 bytes skipped, %7 replies, %8 revolutions not drawn")
            .arg(s.packets)
            .arg(s.frames)
            .arg(s.incompleteFrames)
            .arg(s.missingPackets)
            .arg(s.rejected)
            .arg(s.skippedBytes)
            .arg(s.replies)
            .arg(s.displaySkipped));
}

void StreamHealthDock::retranslate()
{
    setWindowTitle(tr("Stream health"));
    m_charts[0]->setTitle(tr("Packets per second"));
    m_charts[1]->setTitle(tr("Coverage of each revolution (%)"));
    m_charts[2]->setTitle(tr("Rejected packets and skipped bytes per second"));
    m_charts[3]->setTitle(tr("Revolution period (ms)"));
    m_rejected->setName(tr("rejected packets"));
    m_skipped->setName(tr("skipped bytes"));
    redraw();
}

void StreamHealthDock::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::LanguageChange)
        retranslate();
    QDockWidget::changeEvent(event);
}
