// The analysis tools in the main window, fed by the offline player (its
// frames carry a model, as a live link's do): the reference and the Change
// colouring with its legend and readout, the reference file, statistics read
// from the recording without playing it, and the closest return per sector.

#include "AnalysisTools.h"
#include "ChangeColouring.h"
#include "ColourLegendOverlay.h"
#include "FacingLabels.h"
#include "OffinePlayWidget.h"
#include "ReferenceDock.h"
#include "ReferenceFile.h"
#include "ReferenceTool.h"
#include "SectorDock.h"
#include "SectorOverlay.h"
#include "StatisticsCsv.h"
#include "StatisticsDock.h"
#include "StatisticsRun.h"
#include "SyntheticFrames.h"
#include "tst_scandeck_support.h"

#include <QCheckBox>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QSpinBox>
#include <QMenu>
#include <QStandardItemModel>
#include <QToolButton>

#include <vtkActor.h>
#include <vtkPolyData.h>
#include <vtkPolyDataMapper.h>

using namespace testing;

namespace {

constexpr double kStep = 0.36;

Frame wall(double metres)
{
    return synthetic::sweep(kStep, [metres](double) { return metres; });
}

// The wall with something 1 m nearer from 10 to 20 degrees: 28 directions
// (10.08 .. 19.80).
Frame wallWithObject()
{
    return synthetic::sweep(kStep, [](double a) { return a >= 10.0 && a <= 20.0 ? 4.0 : 5.0; });
}

AnalysisTools* toolsOf(ScanDeck* w)
{
    return w->findChild<AnalysisTools*>(QStringLiteral("analysis_tools"));
}

OffinePlayWidget* playerOf(ScanDeck* w)
{
    return control<OffinePlayWidget>(w, "offline");
}

// The analysis menu's entries, as the operator picks them.
void trigger(ScanDeck* w, const char* name)
{
    auto* action = w->findChild<QAction*>(QLatin1String(name));
    QVERIFY2(action, name);
    action->trigger();
}

QString textOf(QWidget* parent, const char* name)
{
    auto* label = parent->findChild<QLabel*>(QLatin1String(name));
    return label ? label->text() : QStringLiteral("<no %1>").arg(QLatin1String(name));
}

// Drawn colours of the points at azimuths from..to (the cloud is in frame order, one ID).
QSet<QString> coloursBetween(ScanDeck* w, const Frame& frame, double from, double to)
{
    QSet<QString> colours;
    const auto& points = frame.points.first();
    for (int i = 0; i < points.size(); ++i)
        if (points[i].azimuth >= from && points[i].azimuth <= to) {
            const auto& p = w->frameCloud().points[size_t(i)];
            colours << QStringLiteral("%1,%2,%3").arg(p.r).arg(p.g).arg(p.b);
        }
    return colours;
}

QString colourText(const display::Rgb& c)
{
    return QStringLiteral("%1,%2,%3").arg(c.r).arg(c.g).arg(c.b);
}

}  // namespace

class AnalysisWindowTest : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() { m_dir = std::make_unique<ScratchWorkingDir>(QStringLiteral("English")); }
    void cleanupTestCase() { m_dir.reset(); }

    void toolsSitWithTheMeasureTools();
    void changeColouringInThePlayer_data();
    void changeColouringInThePlayer();
    void referenceFile_data();
    void referenceFile();
    void nothingToAnalyse();
    void statisticsWithoutPlaying();
    void closestPerSector_data();
    void closestPerSector();
    void liveReferenceAndStatistics();

private:
    std::unique_ptr<ScratchWorkingDir> m_dir;
};

void AnalysisWindowTest::toolsSitWithTheMeasureTools()
{
    auto window = openWindow();
    ScanDeck* w = window.get();
    auto* button = control<QToolButton>(w, "btn_analysis");
    QVERIFY(button && button->isVisible());
    // Beside the legend's switch in the bar above the view.
    QCOMPARE(button->parentWidget(), control(w, "btn_legend")->parentWidget());
    QVERIFY(!button->toolTip().isEmpty());
    QStringList entries;
    for (QAction* action : button->menu()->actions())
        entries << action->objectName() + ":" + action->text();
    QCOMPARE(entries, QStringList({"act_set_reference:Set reference", "act_statistics:Range statistics",
                                   "act_sectors:Closest per sector"}));
    for (const char* dock : {"dock_reference", "dock_statistics", "dock_sectors"})
        QVERIFY2(w->findChild<QDockWidget*>(QLatin1String(dock))->isHidden(), dock);
}

void AnalysisWindowTest::changeColouringInThePlayer_data()
{
    QTest::addColumn<int>("frames");
    QTest::addColumn<double>("referenceMm");
    // The recording: 5 m, 7 m, 5 m, 5 m, then the wall with the object.
    QTest::newRow("the frame on screen") << 1 << 5000.0;
    // The median of 5, 7 and 5 m ignores the odd frame.
    QTest::newRow("median over three") << 3 << 5000.0;
    // Two frames: the median is halfway.
    QTest::newRow("median over two") << 2 << 6000.0;
}

void AnalysisWindowTest::changeColouringInThePlayer()
{
    QFETCH(int, frames);
    QFETCH(double, referenceMm);
    auto window = openWindow();
    ScanDeck* w = window.get();
    auto* modes = control<QComboBox>(w, "comboBox_color_mode");
    QStringList modeTexts;
    for (int i = 0; i < modes->count(); ++i)
        modeTexts << modes->itemText(i);
    auto* legend = w->findChild<ColourLegendOverlay*>();
    OffinePlayWidget* player = playerOf(w);
    const Frame object = wallWithObject();
    player->loadFrames(QStringLiteral("Tern"), {wall(5.0), wall(7.0), wall(5.0), wall(5.0), object});
    QTRY_VERIFY_WITH_TIMEOUT(!w->lastFrame().points.isEmpty(), 5000);

    auto* dock = w->findChild<ReferenceDock*>();
    dock->findChild<QSpinBox*>(QStringLiteral("spin_reference_frames"))->setValue(frames);
    trigger(w, "act_set_reference");
    QVERIFY(dock->isVisible());
    ReferenceTool& tool = toolsOf(w)->reference();
    QVERIFY(tool.hasReference());
    QCOMPARE(tool.reference()->model(), QStringLiteral("Tern"));
    QCOMPARE(tool.reference()->rangeMm(100), referenceMm);
    // Taken without playing: the player is still at its first frame.
    QCOMPARE(player->currentPosition(), 0);
    auto* change = dock->findChild<QCheckBox*>(QStringLiteral("check_change_colouring"));
    QVERIFY(change->isChecked());
    QCOMPARE(legend->title(), QStringLiteral("Change"));
    QCOMPARE(legend->legend().swatches.size(), display::changeLegend(0.05).swatches.size());
    QCOMPARE(legend->legend().swatches.first().label, display::changeLegend(0.05).swatches.first().label);

    player->lastFrame();
    const QString nearer = colourText(display::changeColour(display::ChangeClass::Nearer));
    QCOMPARE(coloursBetween(w, object, 10.0, 20.0), QSet<QString>{nearer});
    const bool wallMoved = referenceMm != 5000.0;
    if (!wallMoved) {
        QCOMPARE(coloursBetween(w, object, 30.0, 350.0),
                 QSet<QString>{colourText(display::changeColour(display::ChangeClass::Within))});
        QVERIFY2(textOf(dock, "label_change").startsWith("Changed: 28 points (nearer 28, farther 0); largest -1.000 m at "),
                 qPrintable(textOf(dock, "label_change")));
        const double at = textOf(dock, "label_change").section(" at ", 1).chopped(1).toDouble();
        QVERIFY(at >= 10.0 && at <= 20.0);
    } else {
        // Every direction 1 m nearer than the 6 m reference, the object 2 m.
        QVERIFY2(textOf(dock, "label_change").startsWith("Changed: 1000 points (nearer 1000, farther 0); largest -2.000 m"),
                 qPrintable(textOf(dock, "label_change")));
    }

    // A wider tolerance applies to the frame on screen at once.
    dock->findChild<QDoubleSpinBox*>(QStringLiteral("spin_change_tolerance"))->setValue(250.0);
    QVERIFY2(textOf(dock, "label_change").startsWith("Changed: 0 points"), qPrintable(textOf(dock, "label_change")));
    QVERIFY(legend->legend().swatches.first().label.contains("250"));

    // Off: the colour mode and its legend are back, the combo box as it was.
    change->click();
    QCOMPARE(legend->title(), modes->currentText());
    QVERIFY(!coloursBetween(w, object, 10.0, 20.0).contains(nearer));
    QStringList after;
    for (int i = 0; i < modes->count(); ++i)
        after << modes->itemText(i);
    QCOMPARE(after, modeTexts);
    QCOMPARE(modes->count(), 3);
}

void AnalysisWindowTest::referenceFile_data()
{
    QTest::addColumn<QString>("model");
    QTest::addColumn<double>("step");
    QTest::addColumn<QString>("refusal");  // empty: loaded
    QTest::newRow("the same model and step") << "Tern" << kStep << "";
    QTest::newRow("another model") << "Wren_Plus" << kStep << "Wren_Plus";
    QTest::newRow("another step") << "Tern" << 0.24 << "0.24";
}

void AnalysisWindowTest::referenceFile()
{
    QFETCH(QString, model);
    QFETCH(double, step);
    QFETCH(QString, refusal);
    QTemporaryDir files;
    const QString saved = files.filePath(QStringLiteral("saved.csv"));
    const QString other = files.filePath(QStringLiteral("other.csv"));
    {
        display::ReferenceSweep reference = display::referenceFromFrame(
            model, step, synthetic::sweep(step, [](double) { return 3.0; }));
        QString error;
        QVERIFY(display::ReferenceFile::save(reference, other, error));
    }
    auto window = openWindow();
    ScanDeck* w = window.get();
    MessageRecorder messages;
    QString answer;
    toolsOf(w)->setFileHook([&](bool, const QString&, const QString&) { return answer; });
    playerOf(w)->loadFrames(QStringLiteral("Tern"), {wall(5.0)});
    QTRY_VERIFY_WITH_TIMEOUT(!w->lastFrame().points.isEmpty(), 5000);
    trigger(w, "act_set_reference");
    auto* dock = w->findChild<ReferenceDock*>();
    answer = saved;
    click(dock, "btn_save_reference");
    QVERIFY(QFile::exists(saved));
    QVERIFY(QFile(saved).size() > 0);

    answer = other;
    click(dock, "btn_load_reference");
    ReferenceTool& tool = toolsOf(w)->reference();
    if (refusal.isEmpty()) {
        QCOMPARE(messages.texts, QStringList());
        QCOMPARE(tool.reference()->rangeMm(0), 3000.0);
    } else {
        QCOMPARE(messages.texts.size(), 1);
        QVERIFY2(messages.texts.first().startsWith("Load reference: ") && messages.texts.first().contains(refusal),
                 qPrintable(messages.texts.first()));
        QCOMPARE(tool.reference()->rangeMm(0), 5000.0);
    }
    // The saved one always fits: it was taken here.
    answer = saved;
    click(dock, "btn_load_reference");
    QCOMPARE(tool.reference()->rangeMm(0), 5000.0);
    // A cancelled dialog changes nothing.
    answer.clear();
    click(dock, "btn_load_reference");
    QCOMPARE(messages.texts.size(), refusal.isEmpty() ? 0 : 1);
}

void AnalysisWindowTest::nothingToAnalyse()
{
    auto window = openWindow();
    ScanDeck* w = window.get();
    MessageRecorder messages;
    w->showFrame(wall(5.0));  // a frame, but neither a lidar nor a recording
    w->findChild<ReferenceDock*>()->findChild<QSpinBox*>(QStringLiteral("spin_reference_frames"))->setValue(1);
    trigger(w, "act_set_reference");
    trigger(w, "act_statistics");
    click(w->findChild<StatisticsDock*>(), "btn_collect_statistics");
    QCOMPARE(messages.texts.size(), 2);
    QVERIFY(messages.texts[0].startsWith("Set reference: "));
    QVERIFY(messages.texts[1].startsWith("Range statistics: "));
    QVERIFY(!toolsOf(w)->reference().hasReference());
}

void AnalysisWindowTest::statisticsWithoutPlaying()
{
    auto window = openWindow();
    ScanDeck* w = window.get();
    QVector<Frame> frames;
    // Frame i at 2 + i/10 m; the back half returns every other frame.
    for (int i = 0; i < 12; ++i)
        frames << synthetic::sweep(kStep, [i](double a) { return a < 180.0 || i % 2 ? 2.0 + i / 10.0 : 0.0; });
    OffinePlayWidget* player = playerOf(w);
    player->loadFrames(QStringLiteral("Tern"), frames);
    QTRY_VERIFY_WITH_TIMEOUT(!w->lastFrame().points.isEmpty(), 5000);
    // The first step shows the first frame again (its position goes from 0 to 1).
    for (int i = 0; i < 3; ++i)
        player->nextFrame();  // frame 3 (index 2) on screen
    const Frame onScreen = w->lastFrame();
    trigger(w, "act_statistics");
    auto* dock = w->findChild<StatisticsDock*>();
    QVERIFY(dock->isVisible());
    QCOMPARE(dock->findChild<QSpinBox*>(QStringLiteral("spin_statistics_frames"))->value(), 100);
    dock->findChild<QSpinBox*>(QStringLiteral("spin_statistics_frames"))->setValue(4);
    click(dock, "btn_collect_statistics");
    // Nothing was played.
    QCOMPARE(player->currentPosition(), 3);
    QVERIFY(sameFrame(w->lastFrame(), onScreen));
    const display::RangeStatistics* s = toolsOf(w)->statistics().statistics();
    QCOMPARE(s->frames(), 4);
    QCOMPARE(s->bin(10).meanM, 2.35);  // frames 2..5: 2.2 .. 2.5 m
    QCOMPARE(textOf(dock, "label_statistics"), QStringLiteral("4 frames, 1000 directions of 0.360°"));
    const QVector<QPointF> rate = dock->charted("rate");
    QCOMPARE(rate.size(), 1000);
    QCOMPARE(rate[10], QPointF(3.6, 100.0));
    QCOMPARE(rate[900].y(), 50.0);
    // The front's ranges spread, the back's too (frames 3 and 5 only).
    const QVector<QPointF> deviation = dock->charted("std");
    QCOMPARE(deviation.size(), 1000);
    QVERIFY(std::abs(deviation[10].y() - std::sqrt(0.0125) * 100.0) < 1e-6);

    dock->showHistogramAt(3.6);
    QCOMPARE(dock->histogramBin(), 10);
    int counted = 0;
    for (const QPointF& bucket : dock->charted("histogram"))
        counted += int(bucket.y());
    QCOMPARE(counted, 4);

    QTemporaryDir files;
    const QString path = files.filePath(QStringLiteral("statistics.csv"));
    toolsOf(w)->setFileHook([&](bool save, const QString&, const QString&) { return save ? path : QString(); });
    click(dock, "btn_export_statistics");
    QFile written(path);
    QVERIFY(written.open(QIODevice::ReadOnly));
    const QList<QByteArray> lines = written.readAll().split('\n');
    QCOMPARE(lines.first() + '\n', display::statisticsCsvHeader());
    QCOMPARE(lines[11], display::statisticsCsvLine(*s, 10).trimmed());
}

void AnalysisWindowTest::closestPerSector_data()
{
    QTest::addColumn<int>("sectors");
    QTest::addColumn<int>("rows");
    QTest::addColumn<int>("nearestRow");
    QTest::newRow("default twelve") << 12 << 12 << 3;  // 95 degrees: 75..105
    QTest::newRow("four") << 4 << 4 << 1;
    QTest::newRow("most") << 36 << 36 << 9;  // 85..95
    QTest::newRow("too few asked") << 2 << 4 << 1;
}

void AnalysisWindowTest::closestPerSector()
{
    QFETCH(int, sectors);
    QFETCH(int, rows);
    QFETCH(int, nearestRow);
    auto window = openWindow();
    ScanDeck* w = window.get();
    // A wall at 5 m and a post at 2 m, 94.68 degrees (a multiple of the step).
    const Frame frame = synthetic::sweep(kStep, [](double a) { return std::abs(a - 94.68) < 0.01 ? 2.0 : 5.0; });
    w->showFrame(frame);
    auto* dock = w->findChild<SectorDock*>();
    dock->findChild<QSpinBox*>(QStringLiteral("spin_sectors"))->setValue(sectors);
    trigger(w, "act_sectors");
    QVERIFY(dock->isVisible());
    SectorOverlay& overlay = toolsOf(w)->sectors();
    QVERIFY(overlay.isOn());
    for (const char* id : {SectorOverlay::kEdgesId, SectorOverlay::kLabelsId, SectorOverlay::kNearestId})
        QVERIFY2(w->viewer().contains(id), id);
    QStandardItemModel* table = dock->table();
    QCOMPARE(table->rowCount(), rows);
    QCOMPARE(table->item(nearestRow, 1)->text(), QStringLiteral("2.000"));
    QCOMPARE(table->item(nearestRow, 2)->text(), QStringLiteral("94.68"));
    QCOMPARE(table->item(0, 1)->text(), QStringLiteral("5.000"));
    QCOMPARE(textOf(dock, "label_nearest"), QStringLiteral("Nearest: 2.000 m at 94.68°"));
    // One label per sector, the nearest point marked where it is.
    QCOMPARE(int(overlay.labels()->labels().size()), rows);
    auto* marker = vtkActor::SafeDownCast((*w->viewer().getShapeActorMap())[SectorOverlay::kNearestId]);
    double marked[3];
    vtkPolyData::SafeDownCast(marker->GetMapper()->GetInput())->GetPoint(0, marked);
    QVERIFY(std::abs(marked[0] - 2.0 * std::sin(94.68 * M_PI / 180.0)) < 0.01);

    // Another number of sectors applies to the frame on screen at once.
    dock->findChild<QSpinBox*>(QStringLiteral("spin_sectors"))->setValue(6);
    QCOMPARE(table->rowCount(), 6);
    QCOMPARE(int(overlay.labels()->labels().size()), 6);

    // Clear takes the marks away; the next frame brings them back.
    click(w, "btn_clear");
    QVERIFY(!w->viewer().contains(SectorOverlay::kLabelsId));
    w->showFrame(frame);
    QVERIFY(w->viewer().contains(SectorOverlay::kLabelsId));
    // Off: gone, and the dock with them.
    trigger(w, "act_sectors");
    QVERIFY(!overlay.isOn());
    QVERIFY(dock->isHidden());
    for (const char* id : {SectorOverlay::kEdgesId, SectorOverlay::kLabelsId, SectorOverlay::kNearestId})
        QVERIFY2(!w->viewer().contains(id), id);
}

// Live, the reference and the statistics come from the next frames shown,
// in the directions of the stream's own angular step.
void AnalysisWindowTest::liveReferenceAndStatistics()
{
    SimulatedLidarRig lidar;
    QVERIFY(lidar.start(QStringLiteral("Tern"), sim::Transport::Udp));
    auto window = openWindow();
    ScanDeck* w = window.get();
    QVERIFY(connectWindow(*w, QStringLiteral("Tern"), lidar));
    QTRY_VERIFY_WITH_TIMEOUT(!w->lastFrame().points.isEmpty(), 10000);
    auto* dock = w->findChild<ReferenceDock*>();
    dock->findChild<QSpinBox*>(QStringLiteral("spin_reference_frames"))->setValue(3);
    trigger(w, "act_set_reference");
    ReferenceTool& tool = toolsOf(w)->reference();
    QVERIFY(tool.isCollecting() || tool.hasReference());
    QTRY_VERIFY_WITH_TIMEOUT(tool.hasReference(), 10000);
    QCOMPARE(tool.reference()->model(), QStringLiteral("Tern"));
    const double step = w->session()->streamScanGeometry().angularStep;
    QVERIFY(step > 0.0);
    QCOMPARE(tool.reference()->angularStep(), step);
    QVERIFY(tool.reference()->directionsWithRange() > tool.reference()->bins().count() / 2);
    // The frames that follow are compared with it.
    QTRY_VERIFY_WITH_TIMEOUT(tool.summary().compared > 0, 10000);
    QVERIFY2(textOf(dock, "label_change").startsWith("Changed: "), qPrintable(textOf(dock, "label_change")));

    trigger(w, "act_statistics");
    auto* statistics = w->findChild<StatisticsDock*>();
    statistics->findChild<QSpinBox*>(QStringLiteral("spin_statistics_frames"))->setValue(5);
    click(statistics, "btn_collect_statistics");
    StatisticsRun& run = toolsOf(w)->statistics();
    QTRY_VERIFY_WITH_TIMEOUT(!run.isOn(), 10000);
    QCOMPARE(run.statistics()->frames(), 5);
    QCOMPARE(run.statistics()->bins().count(), tool.reference()->bins().count());
    QVERIFY(!statistics->charted("rate").isEmpty());

    // A new tolerance draws the frame on screen again: it is not collected twice.
    statistics->findChild<QSpinBox*>(QStringLiteral("spin_statistics_frames"))->setValue(1000);
    click(statistics, "btn_collect_statistics");
    QVERIFY(run.isOn());
    const int collected = run.statistics()->frames();
    auto* tolerance = dock->findChild<QDoubleSpinBox*>(QStringLiteral("spin_change_tolerance"));
    for (double value : {10.0, 20.0, 30.0})
        tolerance->setValue(value);
    QCOMPARE(run.statistics()->frames(), collected);
    click(w, "btn_disconnect");
    quietRegistry();
}

SCANDECK_TEST_MAIN(AnalysisWindowTest)
#include "tst_analysis_window.moc"
