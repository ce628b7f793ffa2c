// The live link status on a clock the test moves by hand: rates over the
// last second, silence after a second without a datagram and back when data
// returns, a session that counts from zero again, and the readout's texts
// and colours: green, amber with the stream's health warning, red when silent.

#include "LinkStatusReadout.h"

#include <QApplication>
#include <QtTest>

namespace {

// One step of a timeline: the clock moves to `at` ms and the totals are read.
struct Step {
    qint64 at;
    LinkTotals totals;
};

}  // namespace

Q_DECLARE_METATYPE(QVector<Step>)

class LinkStatusTest : public QObject {
    Q_OBJECT
private slots:
    void timeline_data();
    void timeline();
    void readout_data();
    void readout();
    void amberWhileUnsound_data();
    void amberWhileUnsound();
};

void LinkStatusTest::timeline_data()
{
    QTest::addColumn<QVector<Step>>("steps");
    QTest::addColumn<QString>("state");  // after the last step
    QTest::addColumn<double>("packetsPerSecond");
    QTest::addColumn<double>("framesPerSecond");
    QTest::addColumn<qint64>("sinceData");

    // 100 datagrams and 10 revolutions a second, sampled four times a second.
    QVector<Step> steady;
    for (int i = 0; i <= 8; ++i)
        steady.append(Step{i * 250, {quint64(i * 25), quint64(i * 25 * 100), quint64(i * 10 / 4)}});
    QTest::newRow("steady stream") << steady << "receiving" << 100.0 << 10.0 << qint64(0);

    // Data until 500 ms, then nothing; -1: the rate does not matter there.
    QVector<Step> quiet = {{0, {10, 1000, 1}}, {250, {35, 3500, 3}}, {500, {60, 6000, 6}}};
    for (qint64 at : {750, 1000, 1250, 1499})
        quiet.append(Step{at, {60, 6000, 6}});
    QTest::newRow("quiet for just under a second") << quiet << "receiving" << -1.0 << -1.0 << qint64(999);
    quiet.append(Step{1500, {60, 6000, 6}});
    QTest::newRow("silent after a second") << quiet << "silent" << -1.0 << -1.0 << qint64(1000);
    for (qint64 at : {1750, 2000, 2250, 2500})
        quiet.append(Step{at, {60, 6000, 6}});
    QTest::newRow("a quiet second has no rates") << quiet << "silent" << 0.0 << 0.0 << qint64(2000);
    quiet.append(Step{2750, {61, 6100, 6}});
    QTest::newRow("receiving again on one datagram") << quiet << "receiving" << 1.0 << 0.0 << qint64(0);

    // Datagrams that never complete a revolution (a wrong model, a stopped motor).
    const QVector<Step> noFrames = {{0, {0, 0, 0}}, {500, {50, 5000, 0}}, {1000, {100, 10000, 0}}};
    QTest::newRow("datagrams without frames") << noFrames << "receiving" << 100.0 << 0.0 << qint64(0);

    // A new session counts from zero: no negative or huge rates.
    const QVector<Step> restarted = {{0, {5000, 500000, 500}}, {500, {5050, 505000, 505}}, {750, {10, 1000, 1}},
                                     {1000, {35, 3500, 3}}};
    QTest::newRow("session counting from zero again") << restarted << "receiving" << 100.0 << 8.0 << qint64(0);
}

void LinkStatusTest::timeline()
{
    QFETCH(QVector<Step>, steps);
    QFETCH(QString, state);
    QFETCH(double, packetsPerSecond);
    QFETCH(double, framesPerSecond);
    QFETCH(qint64, sinceData);

    qint64 now = steps.first().at;
    LinkStatus status([&now] { return now; });
    QCOMPARE(status.state(), LinkStatus::State::Disconnected);
    status.start(steps.first().totals);
    for (int i = 1; i < steps.size(); ++i) {
        now = steps[i].at;
        status.sample(steps[i].totals);
    }
    const QString names[] = {"disconnected", "receiving", "silent"};
    QCOMPARE(names[int(status.state())], state);
    if (packetsPerSecond >= 0)
        QCOMPARE(status.datagramsPerSecond(), packetsPerSecond);
    if (framesPerSecond >= 0)
        QCOMPARE(status.framesPerSecond(), framesPerSecond);
    QCOMPARE(status.msSinceLastData(), sinceData);

    status.stop();
    QCOMPARE(status.state(), LinkStatus::State::Disconnected);
    QVERIFY(!status.sample(steps.last().totals));
}

void LinkStatusTest::readout_data()
{
    QTest::addColumn<bool>("network");
    QTest::addColumn<qint64>("quietFor");  // ms after a second of steady data
    QTest::addColumn<QString>("text");
    // Over the last second: 80 of the 100 datagrams and 8 of the 10 revolutions.
    QTest::newRow("network") << true << qint64(200) << "80 packets/s, 8.0 frames/s, 0.2 s ago";
    QTest::newRow("serial") << false << qint64(0) << "50.0 kB/s, 10.0 frames/s, 0.0 s ago";
    QTest::newRow("silent") << true << qint64(2500) << "No data from the lidar for 2.5 s";
}

void LinkStatusTest::readout()
{
    QFETCH(bool, network);
    QFETCH(qint64, quietFor);
    QFETCH(QString, text);

    qint64 now = 0;
    LinkTotals totals;
    LinkStatusReadout readout(nullptr, [&now] { return now; });
    readout.watch([&totals] { return totals; }, network);
    QVERIFY(!readout.isHidden());
    for (int tick = 1; tick <= 10; ++tick) {
        now = tick * 100;
        totals = {totals.datagrams + 10, totals.bytes + 5000, totals.frames + 1};
        readout.refresh();
    }
    now = 1000 + quietFor;
    readout.refresh();
    QCOMPARE(readout.text(), text);
    // The silent state is unmistakable: white on red.
    const bool silent = text.startsWith("No data");
    QCOMPARE(readout.styleSheet().contains("#D93025"), silent);

    readout.unwatch();
    QVERIFY(readout.isHidden() && readout.text().isEmpty());
}

void LinkStatusTest::amberWhileUnsound_data()
{
    QTest::addColumn<QString>("warning");
    QTest::addColumn<qint64>("quietFor");
    QTest::addColumn<QString>("look");
    QTest::addColumn<QString>("text");
    const QString rates = "100 packets/s, 10.0 frames/s, 0.0 s ago";
    const QString gaps = "12 of the last 100 revolutions incomplete, worst gap 30° at 120–150°";
    QTest::newRow("sound") << "" << qint64(0) << "green" << rates;
    QTest::newRow("incomplete revolutions") << gaps << qint64(0) << "amber" << rates + " — " + gaps;
    // Silence outweighs any warning about the data that did come.
    QTest::newRow("silent with a warning") << gaps << qint64(1500) << "red" << "No data from the lidar for 1.5 s";
}

void LinkStatusTest::amberWhileUnsound()
{
    QFETCH(QString, warning);
    QFETCH(qint64, quietFor);
    QFETCH(QString, look);
    QFETCH(QString, text);

    qint64 now = 0;
    LinkTotals totals;
    LinkStatusReadout readout(nullptr, [&now] { return now; });
    QCOMPARE(readout.look(), LinkStatusReadout::Look::Hidden);
    readout.watch([&totals] { return totals; }, true);
    for (int tick = 1; tick <= 10; ++tick) {
        now = tick * 100;
        totals = {totals.datagrams + 10, totals.bytes + 5000, totals.frames + 1};
        readout.refresh();
    }
    readout.setHealthWarning(warning);
    now += quietFor;
    readout.refresh();
    const QMap<QString, LinkStatusReadout::Look> looks{{"green", LinkStatusReadout::Look::Green},
                                                        {"amber", LinkStatusReadout::Look::Amber},
                                                        {"red", LinkStatusReadout::Look::Red}};
    QCOMPARE(readout.look(), looks.value(look));
    QCOMPARE(readout.text(), text);
    QCOMPARE(readout.styleSheet().contains("#F9A825"), look == "amber");

    // Whole again: green at once; a disconnect forgets the warning.
    readout.setHealthWarning(QString());
    QCOMPARE(readout.look(), quietFor > 0 ? LinkStatusReadout::Look::Red : LinkStatusReadout::Look::Green);
    readout.setHealthWarning(warning);
    readout.unwatch();
    QVERIFY(readout.healthWarning().isEmpty() && readout.look() == LinkStatusReadout::Look::Hidden);
}

QTEST_MAIN(LinkStatusTest)
#include "tst_link_status.moc"
