#pragma once
// "Stream health": a dock window beside the view with the current second's
// counters of the live stream and charts of its last minute (packets per
// second; the share of each revolution covered; packets rejected and bytes
// skipped; the revolution's period), drawn with Qt Charts.

#include <QDockWidget>
#include <QVector>

namespace QtCharts {
class QChart;
class QLineSeries;
class QValueAxis;
}  // namespace QtCharts
class QLabel;

// One second of the stream.
struct HealthSecond {
    double packets = 0;          // packets per second that made frames
    double coverage = -1;        // mean share of the circle the second's revolutions covered; -1: no revolution
    double rejected = 0;         // packets cut out but refused
    double skippedBytes = 0;     // bytes passed over while finding packets again
    double replies = 0;
    double displaySkipped = 0;   // revolutions the display had to skip
    double periodMs = -1;        // mean revolution period; -1: unknown
    int frames = 0;
    int incompleteFrames = 0;
    int missingPackets = 0;
};

class StreamHealthDock : public QDockWidget {
    Q_OBJECT
public:
    static constexpr int kSeconds = 60;

    explicit StreamHealthDock(QWidget* parent = nullptr);

    // The next second; the charts keep the last minute.
    void addSecond(const HealthSecond& second);
    void clear();
    // The values charted now, oldest first (for tests).
    QVector<double> charted(const char* series) const;

protected:
    void changeEvent(QEvent* event) override;

private:
    void retranslate();
    void redraw();

    QVector<HealthSecond> m_seconds;
    QLabel* m_counters;
    QtCharts::QLineSeries* m_packets;
    QtCharts::QLineSeries* m_coverage;
    QtCharts::QLineSeries* m_rejected;
    QtCharts::QLineSeries* m_skipped;
    QtCharts::QLineSeries* m_period;
    QVector<QtCharts::QChart*> m_charts;
    QVector<QtCharts::QValueAxis*> m_valueAxes;
};
