// The live stream's health as the window sums it up, without a window: one
// HealthSecond per second from the revolutions and the running totals, and
// the reason the link readout turns amber.

#include "HealthSeconds.h"
#include "RecentHealth.h"

#include <QtTest>

using Health = lidar::FrameHealth;

namespace {

Health whole(double periodMs = 100.0)
{
    Health h;
    h.packets = 24;
    h.coverage = 1.0f;
    h.periodMs = periodMs;
    return h;
}

// A revolution missing the packets of [start, end] degrees, 15 degrees each.
Health broken(float start, float end, double periodMs = 100.0)
{
    Health h = whole(periodMs);
    h.gaps = {{start, end}};
    h.missingPackets = int(std::lround(h.gaps[0].width() / 15.0f));
    h.packets = 24 - h.missingPackets;
    h.coverage = 1.0f - h.gaps[0].width() / 360.0f;
    return h;
}

lidar::StreamTotals totals(quint64 packets, quint64 rejected = 0, quint64 skipped = 0, quint64 replies = 0)
{
    lidar::StreamTotals t;
    t.packets = packets;
    t.rejectedPackets = rejected;
    t.skippedBytes = skipped;
    t.replies = replies;
    return t;
}

// A second as "packets rejected skipped replies displaySkipped | frames incomplete missing | coverage% period".
QString describe(const HealthSecond& s)
{
    return QString("%1 %2 %3 %4 %5 | %6 %7 %8 | %9 %10")
        .arg(s.packets)
        .arg(s.rejected)
        .arg(s.skippedBytes)
        .arg(s.replies)
        .arg(s.displaySkipped)
        .arg(s.frames)
        .arg(s.incompleteFrames)
        .arg(s.missingPackets)
        .arg(s.coverage < 0 ? QString("-") : QString::number(s.coverage * 100.0, 'f', 1))
        .arg(s.periodMs < 0 ? QString("-") : QString::number(s.periodMs, 'f', 1));
}

struct Second {
    QVector<Health> frames;
    lidar::StreamTotals totals;
    quint64 displaySkipped;
};

}  // namespace

Q_DECLARE_METATYPE(QVector<Second>)

class StreamHealthTest : public QObject {
    Q_OBJECT
private slots:
    void seconds_data();
    void seconds();
    void reason_data();
    void reason();
    void oldRevolutionsLeaveTheWindow();
};

void StreamHealthTest::seconds_data()
{
    QTest::addColumn<QVector<Second>>("seconds");  // the first only sets the base
    QTest::addColumn<QString>("last");

    const QVector<Health> ten(10, whole());
    QTest::newRow("steady") << QVector<Second>{{{}, totals(1000), 0}, {ten, totals(1240), 0}}
                            << "240 0 0 0 0 | 10 0 0 | 100.0 100.0";
    QVector<Health> two = ten;
    two[3] = broken(120, 150);
    two[7] = broken(350, 5);  // through 0 degrees
    QTest::newRow("two incomplete") << QVector<Second>{{{}, totals(0), 0}, {two, totals(237, 3, 40, 1), 2}}
                                    << "237 3 40 1 2 | 10 2 3 | 98.8 100.0";
    // Only the change within the second counts, not the totals so far.
    QTest::newRow("differences") << QVector<Second>{{{}, totals(500, 10, 100, 5), 4},
                                                    {ten, totals(740, 10, 100, 5), 4},
                                                    {ten, totals(980, 17, 150, 5), 9}}
                                 << "240 7 50 0 5 | 10 0 0 | 100.0 100.0";
    QTest::newRow("no revolution") << QVector<Second>{{{}, totals(10), 0}, {{}, totals(10, 2), 0}}
                                   << "0 2 0 0 0 | 0 0 0 | - -";
    QVector<Health> noPeriod = {whole(-1), whole(-1)};
    QTest::newRow("period unknown") << QVector<Second>{{{}, totals(0), 0}, {noPeriod, totals(48), 0}}
                                    << "48 0 0 0 0 | 2 0 0 | 100.0 -";
    QVector<Health> periods = {whole(98), whole(-1), whole(104)};
    QTest::newRow("mean of known periods") << QVector<Second>{{{}, totals(0), 0}, {periods, totals(72), 0}}
                                           << "72 0 0 0 0 | 3 0 0 | 100.0 101.0";
    // A fresh session counts from zero: its totals are the second's.
    QTest::newRow("session restarted") << QVector<Second>{{{}, totals(9000, 50), 30}, {ten, totals(240), 0}}
                                       << "240 0 0 0 0 | 10 0 0 | 100.0 100.0";
}

void StreamHealthTest::seconds()
{
    QFETCH(QVector<Second>, seconds);
    QFETCH(QString, last);
    HealthSeconds sum;
    HealthSecond second;
    for (const Second& s : seconds) {
        for (const Health& h : s.frames)
            sum.addFrame(h);
        second = sum.closeSecond(s.totals, s.displaySkipped);
    }
    QCOMPARE(describe(second), last);
    // The next second starts empty.
    QCOMPARE(describe(sum.closeSecond(seconds.last().totals, seconds.last().displaySkipped)),
             QString("0 0 0 0 0 | 0 0 0 | - -"));
}

void StreamHealthTest::reason_data()
{
    QTest::addColumn<QVector<Health>>("revolutions");
    QTest::addColumn<quint64>("rejected");
    QTest::addColumn<quint64>("skipped");
    QTest::addColumn<QString>("reason");

    QVector<Health> hundred(100, whole());
    QTest::newRow("whole") << hundred << quint64(0) << quint64(0) << "";
    QVector<Health> twelve = hundred;
    for (int i = 0; i < 12; ++i)
        twelve[i * 8] = broken(200, 215);
    twelve[48] = broken(120, 150);
    QTest::newRow("twelve incomplete") << twelve << quint64(0) << quint64(0)
                                       << "12 of the last 100 revolutions incomplete, worst gap 30° at 120–150°";
    QVector<Health> early(40, whole());
    early[39] = broken(350, 12.5f);
    QTest::newRow("fewer than 100 so far, through 0") << early << quint64(0) << quint64(0)
                                                      << "1 of the last 40 revolutions incomplete, worst gap 22.5° at "
                                                         "350–12.5°";
    QTest::newRow("rejected") << hundred << quint64(7) << quint64(300) << "7 packets rejected in the last second";
    QTest::newRow("one rejected") << hundred << quint64(1) << quint64(0) << "1 packet rejected in the last second";
    QTest::newRow("skipped only") << hundred << quint64(0) << quint64(48) << "48 bytes skipped in the last second";
    QTest::newRow("both") << twelve << quint64(2) << quint64(0)
                          << "12 of the last 100 revolutions incomplete, worst gap 30° at 120–150°; "
                             "2 packets rejected in the last second";
}

void StreamHealthTest::reason()
{
    QFETCH(QVector<Health>, revolutions);
    QFETCH(quint64, rejected);
    QFETCH(quint64, skipped);
    QFETCH(QString, reason);
    RecentHealth recent;
    for (const Health& h : revolutions)
        recent.addFrame(h);
    recent.setLastSecond(rejected, skipped);
    QCOMPARE(recent.reason(), reason);
    QCOMPARE(recent.isSound(), reason.isEmpty());
}

// An incomplete revolution counts for 100 revolutions, then the readout is green again.
void StreamHealthTest::oldRevolutionsLeaveTheWindow()
{
    RecentHealth recent;
    recent.addFrame(broken(0, 90));
    recent.addFrame(broken(100, 110));
    for (int i = 0; i < 98; ++i)
        recent.addFrame(whole());
    QCOMPARE(recent.reason(), QString("2 of the last 100 revolutions incomplete, worst gap 90° at 0–90°"));
    recent.addFrame(whole());
    QCOMPARE(recent.reason(), QString("1 of the last 100 revolutions incomplete, worst gap 10° at 100–110°"));
    recent.addFrame(whole());
    QVERIFY(recent.isSound() && recent.reason().isEmpty());
    recent.setLastSecond(3, 0);
    QVERIFY(!recent.isSound());
    recent.setLastSecond(0, 0);
    QVERIFY(recent.isSound());
}

QTEST_GUILESS_MAIN(StreamHealthTest)
#include "tst_stream_health.moc"
