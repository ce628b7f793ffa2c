#pragma once
// A catcher of abnormal GPS time stamp intervals. For each pair of
// consecutive packet time stamps the session reports, the interval in
// milliseconds is checked against the window [minimum, maximum]; only a pair
// outside it is shown, field by field, so the last abnormal pair stays in
// view while normal ones pass unseen. Hidden or paused, abnormal pairs are
// dropped, not queued. Below, charts of every stamp's interval and offset
// from the computer's clock over the last minute (GpsTimingCharts).

#include "LidarRecords.h"

#include <QWidget>
#include <cstdint>
#include <memory>

class GpsTimingCharts;

namespace Ui {
class GPSTest;
}

class GPSTest : public QWidget {
    Q_OBJECT
public:
    explicit GPSTest(QWidget* parent = nullptr);
    ~GPSTest() override;

    uint64_t minimum() const { return m_minimum; }
    uint64_t maximum() const { return m_maximum; }
    bool isPaused() const { return m_paused; }
    GpsTimingCharts* charts() const { return m_charts; }

    // Interval between two stamps (in 1/1,000,000 ms), in whole milliseconds.
    static uint64_t intervalMs(uint64_t current, uint64_t previous);

public slots:
    void SetData(lidar::GPSTime time);

protected:
    void changeEvent(QEvent* event) override;

private:
    void togglePause();

    uint64_t m_minimum = 2;
    uint64_t m_maximum = 10;
    bool m_paused = false;
    GpsTimingCharts* m_charts;
    std::unique_ptr<Ui::GPSTest> ui;
};
