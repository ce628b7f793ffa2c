// A reference sweep and the change against it, on frames of known geometry:
// an object moved by a known distance in a known direction shows exactly
// its points as changed, nearer or farther; the median over several frames
// ignores what passed through one of them; the tolerance, directions that
// never returned, points without an echo and the angle range each decide a
// point's class as the operator expects.

#include "ChangeComparison.h"
#include "ReferenceSweep.h"
#include "SyntheticFrames.h"

#include <QtTest>
#include <cmath>

using display::ChangeClass;
using Span = QPair<double, double>;  // azimuths from..to, inclusive; from > to reaches across 0

Q_DECLARE_METATYPE(ChangeClass)

namespace {

constexpr double kStep = 0.5;
constexpr double kWall = 6.0;

// A room of 6 m with one object standing in `object` at `range` metres.
synthetic::RangeOf roomWith(Span object, double range)
{
    return [=](double azimuth) { return synthetic::inSpan(azimuth, object.first, object.second) ? range : kWall; };
}

bool inAny(double azimuth, const QList<Span>& spans)
{
    for (const Span& s : spans)
        if (synthetic::inSpan(azimuth, s.first, s.second))
            return true;
    return false;
}

}  // namespace

class ReferenceChangeTest : public QObject {
    Q_OBJECT
private slots:
    void movedObject_data();
    void movedObject();
    void referenceOfSeveralFrames_data();
    void referenceOfSeveralFrames();
    void collectorTakesTheFramesAsked();
    void onePoint_data();
    void onePoint();
};

void ReferenceChangeTest::movedObject_data()
{
    QTest::addColumn<Span>("before");  // where the object stood when the reference was taken
    QTest::addColumn<double>("beforeRange");
    QTest::addColumn<Span>("after");
    QTest::addColumn<double>("afterRange");
    QTest::addColumn<double>("tolerance");
    QTest::addColumn<QList<Span>>("nearer");
    QTest::addColumn<QList<Span>>("farther");
    QTest::addColumn<double>("largest");  // signed, metres
    QTest::addColumn<double>("largestAt");

    const Span box{40.0, 50.0};
    QTest::newRow("moved 0.5 m away from the lidar")
        << box << 3.0 << box << 3.5 << 0.05 << QList<Span>{} << QList<Span>{box} << 0.5 << 40.0;
    QTest::newRow("moved 0.3 m towards the lidar")
        << box << 3.0 << box << 2.7 << 0.05 << QList<Span>{box} << QList<Span>{} << -0.3 << 40.0;
    // Ten degrees clockwise: it now stands where the wall was seen, and the
    // wall shows again where it stood; at 50 degrees it stands still.
    QTest::newRow("moved 10 degrees sideways")
        << box << 3.0 << Span{50.0, 60.0} << 3.0 << 0.05 << QList<Span>{{50.5, 60.0}} << QList<Span>{{40.0, 49.5}}
        << 3.0 << 40.0;
    QTest::newRow("moved 4 cm: within the default 5 cm")
        << box << 3.0 << box << 3.04 << 0.05 << QList<Span>{} << QList<Span>{} << 0.04 << 40.0;
    QTest::newRow("moved 4 cm with a 3 cm tolerance")
        << box << 3.0 << box << 3.04 << 0.03 << QList<Span>{} << QList<Span>{box} << 0.04 << 40.0;
    QTest::newRow("an object across 0 degrees, 1 m nearer")
        << Span{355.0, 5.0} << 4.0 << Span{355.0, 5.0} << 3.0 << 0.05 << QList<Span>{{355.0, 5.0}} << QList<Span>{}
        << -1.0 << 0.0;
    QTest::newRow("an object came in front of the wall")
        << Span{400.0, 400.0} << 0.0 << Span{200.0, 210.0} << 1.5 << 0.05 << QList<Span>{{200.0, 210.0}}
        << QList<Span>{} << -4.5 << 200.0;
}

void ReferenceChangeTest::movedObject()
{
    QFETCH(Span, before);
    QFETCH(double, beforeRange);
    QFETCH(Span, after);
    QFETCH(double, afterRange);
    QFETCH(double, tolerance);
    QFETCH(QList<Span>, nearer);
    QFETCH(QList<Span>, farther);
    QFETCH(double, largest);
    QFETCH(double, largestAt);

    const display::ReferenceSweep reference =
        display::referenceFromFrame("Wren_Kite", kStep, synthetic::sweep(kStep, roomWith(before, beforeRange)));
    QCOMPARE(reference.bins().count(), 720);
    QCOMPARE(reference.directionsWithRange(), 720);
    const lidar::LidarDataPoint_V4 frame = synthetic::sweep(kStep, roomWith(after, afterRange));
    display::ChangeOptions options;
    options.toleranceM = tolerance;
    const display::ChangeComparison change = display::compareWithReference(reference, frame, options);

    QCOMPARE(change.classes.size(), frame.pointCount());
    int expectedNearer = 0, expectedFarther = 0;
    const std::vector<lidar::LidarPoint>& points = frame.points[0];
    for (size_t i = 0; i < points.size(); ++i) {
        const double azimuth = points[i].azimuth;
        const ChangeClass expected = inAny(azimuth, nearer) ? ChangeClass::Nearer
            : inAny(azimuth, farther)                       ? ChangeClass::Farther
                                                            : ChangeClass::Within;
        expectedNearer += expected == ChangeClass::Nearer;
        expectedFarther += expected == ChangeClass::Farther;
        if (change.classes[i] != expected)
            QFAIL(qPrintable(QStringLiteral("the point at %1 degrees is of class %2, not %3")
                                 .arg(azimuth)
                                 .arg(int(change.classes[i]))
                                 .arg(int(expected))));
    }
    QCOMPARE(change.summary.compared, 720);
    QCOMPARE(change.summary.nearer, expectedNearer);
    QCOMPARE(change.summary.farther, expectedFarther);
    QCOMPARE(change.summary.changed, expectedNearer + expectedFarther);
    QVERIFY(std::abs(change.summary.largestChangeM - largest) < 1e-9);
    QCOMPARE(change.summary.largestChangeAzimuth, largestAt);
}

void ReferenceChangeTest::referenceOfSeveralFrames_data()
{
    // The points in the direction of 100 degrees, frame by frame (none: the
    // direction did not return in that frame), and the reference it gets.
    QTest::addColumn<QList<QList<int>>>("frames");
    QTest::addColumn<double>("expectedMm");  // NaN: no range
    const double none = std::nan("");
    QTest::newRow("one frame") << QList<QList<int>>{{3000}} << 3000.0;
    QTest::newRow("an odd count: the middle one") << QList<QList<int>>{{3000}, {3010}, {2990}, {9000}, {3005}}
                                                  << 3005.0;
    QTest::newRow("an even count: between the middle two") << QList<QList<int>>{{1000}, {3010}, {3000}, {3020}}
                                                           << 3005.0;
    QTest::newRow("a passer-by in one frame of five")
        << QList<QList<int>>{{6000}, {6000}, {1200}, {6000}, {6000}} << 6000.0;
    QTest::newRow("returned in two frames of four") << QList<QList<int>>{{3000}, {}, {}, {3011}} << 3005.5;
    QTest::newRow("never returned") << QList<QList<int>>{{}, {}} << none;
    QTest::newRow("two channels: each frame's nearer")
        << QList<QList<int>>{{3000, 3020}, {3030, 3010}, {3005, 2990}} << 3000.0;
}

void ReferenceChangeTest::referenceOfSeveralFrames()
{
    QFETCH(QList<QList<int>>, frames);
    QFETCH(double, expectedMm);
    display::ReferenceCollector collector("Wren_Plus", kStep, frames.size());
    QCOMPARE(collector.framesWanted(), frames.size());
    for (const QList<int>& ranges : frames) {
        QVERIFY(!collector.isComplete());
        lidar::LidarDataPoint_V4 frame = synthetic::sweep(kStep, roomWith({100.0, 100.0}, -1.0));
        for (int mm : ranges)
            frame.points[1].push_back(synthetic::point(100.0, mm / 1000.0));
        collector.addFrame(frame);
    }
    QVERIFY(collector.isComplete());
    const display::ReferenceSweep reference = collector.reference();
    const int bin = reference.bins().binOf(100.0);
    if (std::isnan(expectedMm))
        QVERIFY(!reference.hasRange(bin));
    else
        QCOMPARE(reference.rangeMm(bin), expectedMm);
    QCOMPARE(reference.rangeMm(reference.bins().binOf(99.5)), kWall * 1000.0);
    QCOMPARE(reference.directionsWithRange(), std::isnan(expectedMm) ? 719 : 720);
}

void ReferenceChangeTest::collectorTakesTheFramesAsked()
{
    QCOMPARE(display::ReferenceCollector("Tern", 0.5, 0).framesWanted(), 1);
    QCOMPARE(display::ReferenceCollector("Tern", 0.5, 5000).framesWanted(), 1000);
    QCOMPARE(display::ReferenceCollector("Tern", 0.5).framesWanted(), 20);

    // Frames after the last wanted one change nothing.
    display::ReferenceCollector collector("Tern", kStep, 2);
    QVERIFY(!collector.addFrame(synthetic::sweep(kStep, roomWith({0, 0}, 2.0))));
    QVERIFY(collector.addFrame(synthetic::sweep(kStep, roomWith({0, 0}, 2.0))));
    QVERIFY(collector.addFrame(synthetic::sweep(kStep, [](double) { return 1.0; })));
    QCOMPARE(collector.framesAdded(), 2);
    QCOMPARE(collector.reference().rangeMm(0), 2000.0);
    QCOMPARE(collector.reference().rangeMm(1), kWall * 1000.0);
}

void ReferenceChangeTest::onePoint_data()
{
    QTest::addColumn<double>("referenceMm");  // NaN: the direction never returned
    QTest::addColumn<int>("distance");
    QTest::addColumn<double>("tolerance");
    QTest::addColumn<float>("maxAngle");
    QTest::addColumn<ChangeClass>("expected");
    QTest::addColumn<bool>("hasLargest");
    const double none = std::nan("");
    QTest::newRow("exactly the tolerance farther") << 3000.0 << 3050 << 0.05 << 360.0f << ChangeClass::Within << true;
    QTest::newRow("exactly the tolerance nearer") << 3000.0 << 2950 << 0.05 << 360.0f << ChangeClass::Within << true;
    QTest::newRow("a millimetre beyond, farther") << 3000.0 << 3051 << 0.05 << 360.0f << ChangeClass::Farther << true;
    QTest::newRow("a millimetre beyond, nearer") << 3000.0 << 2949 << 0.05 << 360.0f << ChangeClass::Nearer << true;
    QTest::newRow("half a millimetre of a median") << 3000.5 << 3051 << 0.05 << 360.0f << ChangeClass::Farther << true;
    QTest::newRow("no tolerance") << 3000.0 << 3001 << 0.0 << 360.0f << ChangeClass::Farther << true;
    QTest::newRow("where nothing returned before") << none << 3000 << 0.05 << 360.0f << ChangeClass::Nearer << false;
    QTest::newRow("a point without an echo") << 3000.0 << 0 << 0.05 << 360.0f << ChangeClass::NotCompared << false;
    QTest::newRow("outside the angle range") << 3000.0 << 9000 << 0.05 << 90.0f << ChangeClass::NotCompared << false;
}

void ReferenceChangeTest::onePoint()
{
    QFETCH(double, referenceMm);
    QFETCH(int, distance);
    QFETCH(double, tolerance);
    QFETCH(float, maxAngle);
    QFETCH(ChangeClass, expected);
    QFETCH(bool, hasLargest);
    display::ReferenceSweep reference("Tern", kStep);
    const int bin = reference.bins().binOf(120.0);
    reference.setRangeMm(bin, referenceMm);
    lidar::LidarDataPoint_V4 frame;
    frame.points[0].push_back(synthetic::point(120.0, distance / 1000.0));
    display::ChangeOptions options;
    options.toleranceM = tolerance;
    options.maxAngle = maxAngle;
    const display::ChangeComparison change = display::compareWithReference(reference, frame, options);
    QCOMPARE(change.classes, std::vector<ChangeClass>{expected});
    const bool changed = expected == ChangeClass::Nearer || expected == ChangeClass::Farther;
    QCOMPARE(change.summary.changed, changed ? 1 : 0);
    QCOMPARE(change.summary.compared, expected == ChangeClass::NotCompared ? 0 : 1);
    QCOMPARE(change.summary.hasLargestChange(), hasLargest);
    if (hasLargest) {
        QCOMPARE(change.summary.largestChangeM, (distance - referenceMm) / 1000.0);
        QCOMPARE(change.summary.largestChangeAzimuth, 120.0);
    }
}

QTEST_GUILESS_MAIN(ReferenceChangeTest)
#include "tst_reference_change.moc"
