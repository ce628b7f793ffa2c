#include "StatisticsDock.h"

#include "StatisticsRun.h"
#include "UserMessages.h"

#include <QEvent>
#include <QFileDialog>
#include <QGridLayout>
#include <QLabel>
#include <QMouseEvent>
#include <QPushButton>
#include <QSpinBox>
#include <QtCharts/QBarCategoryAxis>
#include <QtCharts/QBarSeries>
#include <QtCharts/QBarSet>
#include <QtCharts/QChart>
#include <QtCharts/QChartView>
#include <QtCharts/QLineSeries>
#include <QtCharts/QValueAxis>

#include <cmath>

using namespace QtCharts;

namespace {

constexpr int kHistogramBuckets = 20;
constexpr int kMostFrames = 100000;

QChart* chartWith(QAbstractSeries* series, QAbstractAxis* x, QAbstractAxis* y)
{
    auto* chart = new QChart;
    chart->addAxis(x, Qt::AlignBottom);
    chart->addAxis(y, Qt::AlignLeft);
    chart->addSeries(series);
    series->attachAxis(x);
    series->attachAxis(y);
    chart->legend()->setVisible(false);
    chart->setMargins(QMargins(2, 2, 2, 2));
    return chart;
}

QValueAxis* azimuthAxis()
{
    auto* axis = new QValueAxis;
    axis->setRange(0, 360);
    axis->setTickCount(9);
    axis->setLabelFormat(QStringLiteral("%d"));
    return axis;
}

}  // namespace

StatisticsDock::StatisticsDock(StatisticsRun& run, QWidget* parent)
    : QDockWidget(parent),
      m_run(run),
      m_framesLabel(new QLabel),
      m_frames(new QSpinBox),
      m_collect(new QPushButton),
      m_export(new QPushButton),
      m_state(new QLabel),
      m_std(new QLineSeries),
      m_rate(new QLineSeries),
      m_histogram(new QBarSet(QString())),
      m_histogramRanges(new QBarCategoryAxis),
      m_histogramCounts(new QValueAxis)
{
    setObjectName(QStringLiteral("dock_statistics"));
    m_frames->setObjectName(QStringLiteral("spin_statistics_frames"));
    m_frames->setRange(1, kMostFrames);
    m_frames->setValue(display::RangeStatistics::kDefaultFrames);
    m_collect->setObjectName(QStringLiteral("btn_collect_statistics"));
    m_export->setObjectName(QStringLiteral("btn_export_statistics"));
    m_export->setEnabled(false);
    m_state->setObjectName(QStringLiteral("label_statistics"));
    m_state->setWordWrap(true);
    m_std->setObjectName(QStringLiteral("std"));
    m_rate->setObjectName(QStringLiteral("rate"));

    auto* body = new QWidget(this);
    auto* grid = new QGridLayout(body);
    grid->addWidget(m_framesLabel, 0, 0);
    grid->addWidget(m_frames, 0, 1);
    grid->addWidget(m_collect, 0, 2);
    grid->addWidget(m_export, 0, 3);
    grid->addWidget(m_state, 1, 0, 1, 4);
    auto* stdValues = new QValueAxis;
    auto* rateValues = new QValueAxis;
    rateValues->setRange(0, 100);
    for (QValueAxis* axis : {stdValues, rateValues, m_histogramCounts})
        axis->setLabelFormat(QStringLiteral("%g"));
    auto* bars = new QBarSeries;
    bars->append(m_histogram);
    m_charts = {chartWith(m_std, azimuthAxis(), stdValues), chartWith(m_rate, azimuthAxis(), rateValues),
                chartWith(bars, m_histogramRanges, m_histogramCounts)};
    m_valueAxes = {stdValues, rateValues};
    int row = 2;
    for (QChart* chart : m_charts) {
        auto* view = new QChartView(chart, body);
        view->setMinimumHeight(140);
        view->setMouseTracking(true);
        grid->addWidget(view, row++, 0, 1, 4);
        grid->setRowStretch(row - 1, 1);
        m_views << view;
    }
    // The cursor over either azimuth chart picks the histogram's direction.
    for (int i = 0; i < 2; ++i)
        m_views[i]->viewport()->installEventFilter(this);
    setWidget(body);

    connect(m_collect, &QPushButton::clicked, this, &StatisticsDock::collect);
    connect(m_export, &QPushButton::clicked, this, &StatisticsDock::exportCsv);
    connect(&m_run, &StatisticsRun::progress, this, &StatisticsDock::showProgress);
    connect(&m_run, &StatisticsRun::finished, this, [this] {
        m_progress.clear();
        redraw();
    });
    retranslate();
}

void StatisticsDock::collect()
{
    QString error;
    if (!m_run.start(m_frames->value(), error))
        usermessages::warning(this, tr("Range statistics"), error);
}

void StatisticsDock::exportCsv()
{
    const QString filter = tr("CSV (*.csv)");
    const QString path = m_fileHook ? m_fileHook(tr("Export statistics"), filter)
                                    : QFileDialog::getSaveFileName(this, tr("Export statistics"),
                                                                   QStringLiteral("statistics.csv"), filter);
    QString error;
    if (!path.isEmpty() && !m_run.exportCsv(path, error))
        usermessages::warning(this, tr("Export statistics"), error);
}

void StatisticsDock::showProgress(qint64 added, int wanted)
{
    m_progress = added < wanted ? tr("Collecting %1 of %2 frames…").arg(added).arg(wanted) : QString();
    if (!m_progress.isEmpty())
        m_state->setText(m_progress);
}

void StatisticsDock::redraw()
{
    const display::RangeStatistics* statistics = m_run.statistics();
    QVector<QPointF> deviations, rates;
    double largest = 0.0;
    if (statistics) {
        const display::AngularBins& bins = statistics->bins();
        deviations.reserve(bins.count());
        rates.reserve(bins.count());
        for (int bin = 0; bin < bins.count(); ++bin) {
            const display::BinStatistics s = statistics->bin(bin);
            // A direction that never returned has no spread to chart.
            if (std::isfinite(s.stdM)) {
                deviations << QPointF(bins.centre(bin), s.stdM * 100.0);
                largest = std::max(largest, s.stdM * 100.0);
            }
            if (std::isfinite(s.returnRate))
                rates << QPointF(bins.centre(bin), s.returnRate * 100.0);
        }
        m_state->setText(tr("%1 frames, %2 directions of %3°")
                             .arg(statistics->frames())
                             .arg(bins.count())
                             .arg(bins.width(), 0, 'f', 3));
    }
    m_std->replace(deviations);
    m_rate->replace(rates);
    m_valueAxes[0]->setRange(0, largest > 0.0 ? largest * 1.1 : 1.0);
    m_valueAxes[0]->applyNiceNumbers();  // round steps, not 0.587367
    m_export->setEnabled(statistics && statistics->frames() > 0);
    showHistogramAt(m_histogramBin >= 0 && statistics ? statistics->bins().centre(m_histogramBin) : 0.0);
}

void StatisticsDock::showHistogramAt(double azimuth)
{
    const display::RangeStatistics* statistics = m_run.statistics();
    m_histogram->remove(0, m_histogram->count());
    m_histogramRanges->clear();
    if (!statistics || statistics->frames() == 0) {
        m_histogramBin = -1;
        return;
    }
    m_histogramBin = statistics->bins().binOf(azimuth);
    const display::RangeHistogram histogram = statistics->histogram(m_histogramBin, kHistogramBuckets);
    QStringList ranges;
    int most = 0;
    for (int i = 0; i < histogram.counts.size(); ++i) {
        *m_histogram << histogram.counts[i];
        ranges << QString::number(histogram.fromM + i * histogram.bucketWidthM, 'f', 3);
        most = std::max(most, histogram.counts[i]);
    }
    m_histogramRanges->append(ranges);
    m_histogramRanges->setLabelsAngle(-90);  // sixteen ranges side by side fit only upright
    m_histogramCounts->setRange(0, std::max(1, most));
    m_charts[2]->setTitle(tr("Ranges at %1° (m)").arg(statistics->bins().centre(m_histogramBin), 0, 'f', 2));
}

QVector<QPointF> StatisticsDock::charted(const char* series) const
{
    const QString name = QLatin1String(series);
    if (name == QLatin1String("std"))
        return m_std->pointsVector();
    if (name == QLatin1String("rate"))
        return m_rate->pointsVector();
    QVector<QPointF> counts;
    for (int i = 0; i < m_histogram->count(); ++i)
        counts << QPointF(i, m_histogram->at(i));
    return counts;
}

bool StatisticsDock::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::MouseMove)
        for (int i = 0; i < 2; ++i)
            if (watched == m_views[i]->viewport()) {
                const QPoint at = static_cast<QMouseEvent*>(event)->pos();
                const QPointF value = m_charts[i]->mapToValue(m_charts[i]->mapFromScene(m_views[i]->mapToScene(at)));
                if (value.x() >= 0.0 && value.x() <= 360.0)
                    showHistogramAt(value.x());
            }
    return QDockWidget::eventFilter(watched, event);
}

void StatisticsDock::retranslate()
{
    setWindowTitle(tr("Range statistics"));
    m_framesLabel->setText(tr("Statistics over frames"));
    m_collect->setText(tr("Collect"));
    m_export->setText(tr("Export CSV…"));
    m_charts[0]->setTitle(tr("Standard deviation (cm) against azimuth (°)"));
    m_charts[1]->setTitle(tr("Return rate (%) against azimuth (°)"));
    if (m_histogramBin < 0)
        m_charts[2]->setTitle(tr("Ranges of the direction under the cursor (m)"));
    if (!m_run.statistics())
        m_state->setText(tr("No statistics yet"));
}

void StatisticsDock::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::LanguageChange)
        retranslate();
    QDockWidget::changeEvent(event);
}
