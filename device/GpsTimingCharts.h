#pragma once
// The GPS test window's charts of the last minute: the interval from packet
// to packet, and the offset of the packets' time from the computer's (as a
// change since the first packet), with the offset and the drift in ppm as
// text, so that a jump or a drift shows at a glance.

#include "GpsTiming.h"

#include <QTimer>
#include <QWidget>
#include <functional>

namespace QtCharts {
class QChart;
class QLineSeries;
class QValueAxis;
}  // namespace QtCharts
class QLabel;

class GpsTimingCharts : public QWidget {
    Q_OBJECT
public:
    // ns since 1970 on the computer's clock; tests give their own.
    using Clock = std::function<qint64()>;
    static constexpr int kRedrawMs = 500;
    // Points a chart draws at most: a minimum and a maximum per column of
    // time, so that a single odd packet is never thinned away.
    static constexpr int kColumns = 300;

    explicit GpsTimingCharts(QWidget* parent = nullptr, Clock clock = Clock());

    // A packet's stamp and the one before it, timed now.
    void add(quint64 packetNs, quint64 previousPacketNs);
    void clear();
    // Draws what came since the last drawing (the timer does it twice a second).
    void redraw();

    const GpsTiming& timing() const { return m_timing; }
    QString summary() const;
    // The points drawn now (for tests).
    QVector<QPointF> intervalPoints() const;
    QVector<QPointF> offsetPoints() const;

protected:
    void changeEvent(QEvent* event) override;

private:
    void retranslate();

    Clock m_clock;
    GpsTiming m_timing;
    bool m_dirty = false;
    QTimer m_timer;
    QLabel* m_summary;
    QtCharts::QLineSeries* m_interval;
    QtCharts::QLineSeries* m_offset;
    QtCharts::QChart* m_intervalChart;
    QtCharts::QChart* m_offsetChart;
};
