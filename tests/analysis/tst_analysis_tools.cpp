// The analysis tools' state without the window: a reference taken from the
// frame on screen, over the next frames shown or from a recording; range
// statistics collected live or read from a recording; the angular step
// read off a frame.

#include "FramePipeline.h"
#include "PlayerFrames.h"
#include "ReferenceTool.h"
#include "SectorMinima.h"
#include "StatisticsCsv.h"
#include "StatisticsRun.h"
#include "SyntheticFrames.h"

#include <QBuffer>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

using Frame = lidar::LidarDataPoint_V4;

namespace {

constexpr double kStep = 0.36;

Frame wall(double metres)
{
    return synthetic::sweep(kStep, [metres](double) { return metres; });
}

struct Fixture {
    display::ViewSettings settings;
    ScanSource source;
    int redraws = 0;
    ReferenceTool tool{settings, [this] { return source; }, [this] { ++redraws; }};
    Fixture()
    {
        source.model = QStringLiteral("Tern");
        source.angularStep = kStep;
    }
    // What the window does with a frame: the pipeline with its settings, then the overlays.
    display::FrameView show(const Frame& frame, ViewOverlay& overlay)
    {
        const display::FrameView view = display::frameView(frame, settings);
        overlay.frameShown(view);
        return view;
    }
    // The frame on screen drawn again, as a new tolerance or an edited box does.
    void showAgain(const Frame& frame, ViewOverlay& overlay)
    {
        display::FrameView view = display::frameView(frame, settings);
        view.drawnAgain = true;
        overlay.frameShown(view);
    }
};

}  // namespace

class AnalysisToolsTest : public QObject {
    Q_OBJECT
private slots:
    void binsOfAnyTurn_data();
    void binsOfAnyTurn();
    void stepOfFrame_data();
    void stepOfFrame();
    void referenceOfTheFrameOnScreen();
    void referenceOverTheNextFramesShown();
    void referenceFromARecording_data();
    void referenceFromARecording();
    void nothingToTakeFrom();
    void referenceOfAnotherSourceIsDropped_data();
    void referenceOfAnotherSourceIsDropped();
    void loadRefusesAnotherModelOrStep_data();
    void loadRefusesAnotherModelOrStep();
    void statisticsLive();
    void statisticsFromARecording();
};

// Decoders may hand on azimuths a turn above (or below) the circle: they
// fall in the same direction and the same sector as within it.
void AnalysisToolsTest::binsOfAnyTurn_data()
{
    QTest::addColumn<double>("azimuth");
    QTest::addColumn<int>("bin");     // of 1000 bins of 0.36 degrees
    QTest::addColumn<int>("sector");  // of 12
    QTest::newRow("0") << 0.0 << 0 << 0;
    QTest::newRow("just below a turn") << 359.9 << 0 << 0;
    QTest::newRow("a whole turn") << 360.0 << 0 << 0;
    QTest::newRow("one step past a turn") << 360.36 << 1 << 0;
    QTest::newRow("40 degrees past a turn") << 400.0 << 111 << 1;
    QTest::newRow("two turns on") << 720.72 << 2 << 0;
    QTest::newRow("one step below 0") << -0.36 << 999 << 0;
    QTest::newRow("20 below 0") << -20.0 << 944 << 11;
    QTest::newRow("a turn and a half below") << -540.0 << 500 << 6;
}

void AnalysisToolsTest::binsOfAnyTurn()
{
    QFETCH(double, azimuth);
    QFETCH(int, bin);
    QFETCH(int, sector);
    QCOMPARE(display::AngularBins(kStep).binOf(azimuth), bin);
    Frame frame;
    frame.points[0].push_back(synthetic::point(0.0, 9.0));
    lidar::LidarPoint p = synthetic::point(azimuth, 2.0);
    p.azimuth = float(azimuth);
    frame.points[0].push_back(p);
    // The view draws only 0..360; asked for more, the sectors take any turn.
    QCOMPARE(display::sectorMinima(frame, 12, -1000.0f, 1000.0f).nearestSector, sector);
}

void AnalysisToolsTest::stepOfFrame_data()
{
    QTest::addColumn<Frame>("frame");
    QTest::addColumn<double>("step");
    QTest::newRow("every 0.36 degrees") << wall(5.0) << 0.36;
    QTest::newRow("every 0.24 degrees") << synthetic::sweep(0.24, [](double) { return 3.0; }) << 0.24;
    // Every third point gone: most gaps are still one step.
    QTest::newRow("a third missing") << synthetic::sweep(0.5, [](double a) { return std::fmod(a, 1.5) < 0.1 ? 0 : 4.0; })
                                     << 0.5;
    Frame twoChannels = wall(5.0);
    twoChannels.points[1] = wall(6.0).points[0];  // the same azimuths again
    QTest::newRow("two channels on one azimuth") << twoChannels << 0.36;
    QTest::newRow("no points") << Frame() << 0.0;
}

void AnalysisToolsTest::stepOfFrame()
{
    QFETCH(Frame, frame);
    QFETCH(double, step);
    QVERIFY2(std::abs(scansource::stepOfFrame(frame) - step) < 1e-4, qPrintable(QString::number(scansource::stepOfFrame(frame))));
}

void AnalysisToolsTest::referenceOfTheFrameOnScreen()
{
    Fixture f;
    QString error;
    QVERIFY(f.tool.take(1, wall(5.0), error));
    QVERIFY(f.tool.hasReference());
    // A new reference switches the Change colouring on and the frame on screen is drawn again.
    QVERIFY(f.tool.isOn());
    QCOMPARE(f.settings.changeReference.get(), f.tool.reference());
    QCOMPARE(f.redraws, 1);
    QCOMPARE(f.tool.reference()->rangeMm(0), 5000.0);

    // 10 cm nearer everywhere: every point changed at the default tolerance, none at 20 cm.
    f.show(wall(4.9), f.tool);
    QCOMPARE(f.tool.summary().nearer, 1000);
    QCOMPARE(f.tool.summary().farther, 0);
    QVERIFY(std::abs(f.tool.summary().largestChangeM + 0.1) < 1e-6);
    f.tool.setToleranceM(0.2);
    QCOMPARE(f.settings.changeToleranceM, 0.2);
    f.show(wall(4.9), f.tool);
    QCOMPARE(f.tool.summary().changed, 0);

    f.tool.setOn(false);
    QVERIFY(!f.settings.changeReference);
    QVERIFY(f.tool.hasReference());  // kept for later
    QCOMPARE(f.tool.summary().compared, 0);
}

void AnalysisToolsTest::referenceOverTheNextFramesShown()
{
    Fixture f;
    QSignalSpy collecting(&f.tool, &ReferenceTool::collecting);
    QString error;
    QVERIFY(f.tool.take(3, wall(1.0), error));  // the frame on screen is not one of them
    QVERIFY(f.tool.isCollecting());
    QVERIFY(!f.tool.hasReference());
    for (double metres : {5.0, 9.0}) {
        f.show(wall(metres), f.tool);
        // Drawn again, it is still one revolution: no frame of the three.
        f.showAgain(wall(metres), f.tool);
        QVERIFY(f.tool.isCollecting());
    }
    const int redrawsBefore = f.redraws;
    f.show(wall(6.0), f.tool);
    QVERIFY(!f.tool.isCollecting());
    QVERIFY(f.tool.hasReference());
    QCOMPARE(f.tool.reference()->rangeMm(500), 6000.0);  // the median of 5, 9 and 6
    // Not drawn again from inside the frame being shown: the next frame is compared.
    QCOMPARE(f.redraws, redrawsBefore);
    QVERIFY(f.settings.changeReference);
    QCOMPARE(collecting.last().at(0).toInt(), 3);
    // A frame after it does not change the reference.
    f.show(wall(2.0), f.tool);
    QCOMPARE(f.tool.reference()->rangeMm(500), 6000.0);
}

void AnalysisToolsTest::referenceFromARecording_data()
{
    QTest::addColumn<int>("position");
    QTest::addColumn<int>("frames");
    QTest::addColumn<double>("medianMm");
    // Frames at 1, 2, ... 7 m.
    QTest::newRow("three from the first") << 0 << 3 << 2000.0;
    QTest::newRow("three from the fourth") << 3 << 3 << 5000.0;
    // Only four frames remain: the median of 4..7 m.
    QTest::newRow("more than the recording holds") << 3 << 20 << 5500.0;
}

void AnalysisToolsTest::referenceFromARecording()
{
    QFETCH(int, position);
    QFETCH(int, frames);
    QFETCH(double, medianMm);
    QVector<Frame> recorded;
    for (int m = 1; m <= 7; ++m)
        recorded << wall(m);
    MemoryFrames recording(recorded);
    Fixture f;
    f.source.recording = &recording;
    f.source.position = position;
    QString error;
    QVERIFY(f.tool.take(frames, recorded[position], error));
    QVERIFY(!f.tool.isCollecting());
    QCOMPARE(f.tool.reference()->rangeMm(123), medianMm);
}

void AnalysisToolsTest::nothingToTakeFrom()
{
    Fixture f;
    QString error;
    QVERIFY(!f.tool.take(1, Frame(), error));  // no frame on screen
    QVERIFY(!error.isEmpty());
    f.source = ScanSource();
    error.clear();
    QVERIFY(!f.tool.take(20, wall(5.0), error));  // nothing connected or loaded
    QVERIFY(!error.isEmpty());
    QVERIFY(!f.tool.isCollecting());
    QCOMPARE(f.redraws, 0);
}

void AnalysisToolsTest::referenceOfAnotherSourceIsDropped_data()
{
    QTest::addColumn<QString>("model");
    QTest::addColumn<double>("step");
    QTest::addColumn<bool>("kept");
    QTest::newRow("the same source") << "Tern" << kStep << true;
    QTest::newRow("another model") << "Wren_Plus" << kStep << false;
    QTest::newRow("another step") << "Tern" << 0.24 << false;
    QTest::newRow("nothing connected any more") << "" << 0.0 << true;
}

void AnalysisToolsTest::referenceOfAnotherSourceIsDropped()
{
    QFETCH(QString, model);
    QFETCH(double, step);
    QFETCH(bool, kept);
    Fixture f;
    QString error;
    QVERIFY(f.tool.take(1, wall(5.0), error));
    f.source.model = model;
    f.source.angularStep = step;
    for (int i = 1; i < ReferenceTool::kCheckEvery; ++i)
        f.show(wall(5.0), f.tool);
    QVERIFY(f.tool.hasReference());  // looked at every few frames only
    f.show(wall(5.0), f.tool);
    QCOMPARE(f.tool.hasReference(), kept);
    QCOMPARE(bool(f.settings.changeReference), kept);
    QCOMPARE(f.tool.dropped().isEmpty(), kept);
    if (!kept)
        QVERIFY2(f.tool.dropped().contains(model == "Tern" ? "0.24" : model), qPrintable(f.tool.dropped()));
}

void AnalysisToolsTest::loadRefusesAnotherModelOrStep_data()
{
    QTest::addColumn<QString>("model");
    QTest::addColumn<double>("step");
    QTest::addColumn<bool>("loads");
    QTest::newRow("same model and step") << "Tern" << kStep << true;
    QTest::newRow("another model") << "Wren_Plus" << kStep << false;
    QTest::newRow("another step") << "Tern" << 0.24 << false;
}

void AnalysisToolsTest::loadRefusesAnotherModelOrStep()
{
    QFETCH(QString, model);
    QFETCH(double, step);
    QFETCH(bool, loads);
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("reference.csv"));
    Fixture saving;
    saving.source.model = model;
    saving.source.angularStep = step;
    QString error;
    QVERIFY(saving.tool.take(1, synthetic::sweep(step, [](double) { return 3.0; }), error));
    QVERIFY2(saving.tool.save(path, error), qPrintable(error));

    Fixture f;  // Tern at 0.36
    QVERIFY(f.tool.take(1, wall(5.0), error));
    QCOMPARE(f.tool.load(path, error), loads);
    QCOMPARE(error.isEmpty(), loads);
    // A refused file leaves the reference as it was.
    QCOMPARE(f.tool.reference()->rangeMm(0), loads ? 3000.0 : 5000.0);
}

void AnalysisToolsTest::statisticsLive()
{
    Fixture f;
    StatisticsRun run([&f] { return f.source; });
    QSignalSpy finished(&run, &StatisticsRun::finished);
    QString error;
    QVERIFY(run.start(4, error));
    QVERIFY(run.isOn());
    for (double metres : {5.0, 5.1, 5.2, 5.3, 9.0}) {
        f.show(wall(metres), run);
        f.showAgain(wall(metres), run);  // a new tolerance or box: not another frame
    }
    QCOMPARE(finished.count(), 1);
    QVERIFY(!run.isOn());
    QCOMPARE(run.statistics()->frames(), 4);  // the fifth came after
    const display::BinStatistics bin = run.statistics()->bin(10);
    QVERIFY(std::abs(bin.meanM - 5.15) < 1e-9);
    QCOMPARE(bin.maxM, 5.3);
    QCOMPARE(run.statistics()->histogram(10).counts.size() > 0, true);

    // Switched off half way, it keeps what it has.
    QVERIFY(run.start(10, error));
    f.show(wall(5.0), run);
    run.setOn(false);
    f.show(wall(5.0), run);
    QCOMPARE(run.statistics()->frames(), 1);
}

void AnalysisToolsTest::statisticsFromARecording()
{
    QVector<Frame> recorded;
    for (int i = 0; i < 10; ++i)
        recorded << synthetic::sweep(kStep, [i](double a) { return a < 180.0 || i % 2 ? 2.0 + i : 0.0; });
    MemoryFrames recording(recorded);
    Fixture f;
    f.source.recording = &recording;
    f.source.position = 2;
    StatisticsRun run([&f] { return f.source; });
    QString error;
    QVERIFY(run.start(4, error));
    QVERIFY(!run.isOn());  // read at once, nothing left to collect live
    const display::RangeStatistics* s = run.statistics();
    QCOMPARE(s->frames(), 4);
    // Frames 2..5 at 4, 5, 6, 7 m; the far half returned in 3 and 5 only.
    QCOMPARE(s->bin(10).meanM, 5.5);
    QCOMPARE(s->bin(900).returnRate, 0.5);
    f.show(wall(1.0), run);  // a frame shown later is not counted
    QCOMPARE(s->frames(), 4);

    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("statistics.csv"));
    QVERIFY2(run.exportCsv(path, error), qPrintable(error));
    QFile written(path);
    QVERIFY(written.open(QIODevice::ReadOnly));
    QBuffer expected;
    expected.open(QIODevice::WriteOnly);
    QVERIFY(display::writeStatisticsCsv(*s, expected));
    QCOMPARE(written.readAll(), expected.data());
    QVERIFY(!run.exportCsv(dir.filePath(QStringLiteral("missing/dir/s.csv")), error));

    f.source.position = 20;  // past the end: nothing read
    QVERIFY(!run.start(4, error));
}

QTEST_GUILESS_MAIN(AnalysisToolsTest)
#include "tst_analysis_tools.moc"
