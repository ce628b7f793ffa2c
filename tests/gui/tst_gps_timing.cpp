// The GPS test window's timing figures without a window: the interval from
// stamp to stamp, the offset from the computer's clock relative to the first
// packet, a jump in it, the drift as a fitted slope in ppm, and the minute
// the figures cover.

#include "GpsTiming.h"

#include <QtTest>
#include <cmath>

class GpsTimingTest : public QObject {
    Q_OBJECT
private slots:
    void drift_data();
    void drift();
    void jumpShowsAsAStep();
    void keepsTheLastMinute();
};

void GpsTimingTest::drift_data()
{
    QTest::addColumn<double>("ppm");        // how much faster the lidar's clock runs
    QTest::addColumn<qint64>("startOffsetNs");  // packet time minus computer time at the start
    QTest::addColumn<qint64>("jitterNs");   // arrival jitter, alternating sign
    QTest::newRow("in step") << 0.0 << qint64(0) << qint64(0);
    QTest::newRow("lidar fast") << 50.0 << qint64(0) << qint64(0);
    QTest::newRow("lidar slow, far off") << -20.0 << qint64(-3600) * 1000000000 << qint64(0);
    // Arrival jitter of 0.2 ms averages out of the fitted slope.
    QTest::newRow("fast with jitter") << 100.0 << qint64(250000) << qint64(200000);
}

void GpsTimingTest::drift()
{
    QFETCH(double, ppm);
    QFETCH(qint64, startOffsetNs);
    QFETCH(qint64, jitterNs);
    GpsTiming timing;
    const qint64 computerStart = qint64(1700000000) * 1000000000;
    const qint64 stepNs = 4167000;  // a packet every 4.167 ms on the computer's clock
    quint64 previous = 0;
    for (int i = 0; i < 10000; ++i) {  // 41.67 s
        const qint64 elapsed = i * stepNs;
        const quint64 packet = quint64(computerStart + startOffsetNs + elapsed + qint64(std::llround(elapsed * ppm * 1e-6)));
        const qint64 arrival = computerStart + elapsed + (i % 2 ? jitterNs : -jitterNs);
        timing.add(packet, previous, arrival);
        previous = packet;
    }
    double fitted = 0;
    QVERIFY(timing.driftPpm(fitted));
    QVERIFY2(std::abs(fitted - ppm) < 0.5, qPrintable(QString::number(fitted)));
    QCOMPARE(timing.samples().front().intervalMs, -1.0);  // no stamp before the first
    QVERIFY(std::abs(timing.samples()[5].intervalMs - 4.167 * (1 + ppm * 1e-6)) < 1e-5);
    // The absolute offset, as it is, of the last packet.
    const double expectedLast = (startOffsetNs + 9999 * stepNs * ppm * 1e-6 - (9999 % 2 ? jitterNs : -jitterNs)) / 1e6;
    QVERIFY2(std::abs(timing.lastOffsetMs() - expectedLast) < 1e-3, qPrintable(QString::number(timing.lastOffsetMs())));
}

// The lidar's clock jumps 5 ms ahead half-way: the offset steps, the
// interval shows one long gap, and the clocks do not drift apart.
void GpsTimingTest::jumpShowsAsAStep()
{
    GpsTiming timing;
    const qint64 start = qint64(1700000000) * 1000000000;
    quint64 previous = 0;
    for (int i = 0; i < 200; ++i) {
        const qint64 at = start + i * qint64(10000000);
        const quint64 packet = quint64(at + (i >= 100 ? 5000000 : 0));
        timing.add(packet, previous, at);
        previous = packet;
    }
    const auto& s = timing.samples();
    QCOMPARE(s[99].offsetMs, 0.0);
    QCOMPARE(s[100].offsetMs, 5.0);
    QCOMPARE(s[100].intervalMs, 15.0);
    QCOMPARE(s[101].intervalMs, 10.0);
    QCOMPARE(s[100].atS, 1.0);
    // A step fitted as a line: a slope, but the step is plainly visible in the samples.
    double ppm = 0;
    QVERIFY(timing.driftPpm(ppm) && ppm > 0);
}

void GpsTimingTest::keepsTheLastMinute()
{
    GpsTiming timing;
    double ppm = 0;
    QVERIFY(!timing.driftPpm(ppm));
    const qint64 start = qint64(1700000000) * 1000000000;
    timing.add(quint64(start), 0, start);
    QVERIFY(!timing.driftPpm(ppm));  // one sample: no slope
    for (int s = 1; s <= 90; ++s)
        timing.add(quint64(start + s * qint64(1000000000)), quint64(start + (s - 1) * qint64(1000000000)),
                   start + s * qint64(1000000000));
    QCOMPARE(timing.samples().front().atS, 30.0);
    QCOMPARE(timing.samples().back().atS, 90.0);
    QVERIFY(timing.driftPpm(ppm) && ppm == 0.0);
    timing.clear();
    QVERIFY(timing.samples().empty());
}

QTEST_GUILESS_MAIN(GpsTimingTest)
#include "tst_gps_timing.moc"
