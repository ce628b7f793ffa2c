#pragma once
// "Range statistics": a dock window that starts a collection over N frames
// (StatisticsRun), charts the standard deviation and the return rate of
// every direction against azimuth, shows the histogram of the ranges of the
// direction under the cursor in either chart, and exports the table as CSV.

#include <QDockWidget>
#include <functional>

namespace QtCharts {
class QBarCategoryAxis;
class QBarSet;
class QChart;
class QChartView;
class QLineSeries;
class QValueAxis;
}  // namespace QtCharts
class QLabel;
class QPushButton;
class QSpinBox;
class StatisticsRun;

class StatisticsDock : public QDockWidget {
    Q_OBJECT
public:
    using FileHook = std::function<QString(const QString& caption, const QString& filter)>;

    explicit StatisticsDock(StatisticsRun& run, QWidget* parent = nullptr);

    void setFileHook(FileHook hook) { m_fileHook = std::move(hook); }
    void collect();
    void exportCsv();
    // The histogram of the direction at `azimuth` degrees.
    void showHistogramAt(double azimuth);
    int histogramBin() const { return m_histogramBin; }
    // What a chart shows now (for tests): "std", "rate", "histogram".
    QVector<QPointF> charted(const char* series) const;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void retranslate();
    void redraw();
    void showProgress(qint64 added, int wanted);

    StatisticsRun& m_run;
    FileHook m_fileHook;
    QLabel* m_framesLabel;
    QSpinBox* m_frames;
    QPushButton* m_collect;
    QPushButton* m_export;
    QLabel* m_state;
    QtCharts::QLineSeries* m_std;
    QtCharts::QLineSeries* m_rate;
    QtCharts::QBarSet* m_histogram;
    QtCharts::QBarCategoryAxis* m_histogramRanges;
    QtCharts::QValueAxis* m_histogramCounts;
    QVector<QtCharts::QChart*> m_charts;  // deviation, return rate, histogram
    QVector<QtCharts::QChartView*> m_views;
    QVector<QtCharts::QValueAxis*> m_valueAxes;  // deviation, return rate
    int m_histogramBin = -1;
    QString m_progress;
};
