// scandeck-display-bench: how fast the main window shows frames, against a
// bare PCLVisualizer in a QVTKOpenGLNativeWidget of the same size redrawing a
// cloud of the same points, like with like: both without multisampling (as
// the viewer draws) and both with the render window's default multisampling.
// Prints, per frame size: frames per second, ms per frame and, for ScanDeck,
// the ms of its own work (rounding, box test, colouring, table rows, cloud
// fill, readouts), of the viewer's remove-and-add and of the render; the same
// with the measurement tools all on (grid, polar rings, a box selection, a
// ranging pair); and the cost of one mouse move over the view (the hover
// readouts, then the ranging rubber band) with the number of renders it
// caused; the added cost of each analysis tool (Change colouring against a
// reference, statistics collecting, closest per sector, a ranging pair with
// its bearing) alone and of all four; and, given --recording FILE, the time
// to collect statistics over its first 1000 frames as the player does.
// Run it under a display, e.g.
//   xvfb-run -a -s "-screen 0 1600x900x24" ./scandeck-display-bench
// Options: --seconds S (per measurement, default 2), --repeat R (default 3,
// the median is printed), --points N,N,... (frame sizes, default
// 1000,5000,20000), --hold S (keep the window open S seconds at the end),
// --recording FILE (statistics over its first 1000 frames).

#include "AnalysisTools.h"
#include "PlayerFrames.h"
#include "ReferenceTool.h"
#include "ScanDeck.h"
#include "StatisticsRun.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QMouseEvent>
#include <QFileInfo>
#include <QTextStream>
#include <QThread>
#include <QVTKOpenGLNativeWidget.h>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <functional>
#include <limits>
#include <random>

#include <pcl/point_cloud.h>
#include <pcl/point_types.h>
#include <pcl/visualization/pcl_visualizer.h>
#include <vtkCamera.h>
#include <vtkAxesActor.h>
#include <vtkCallbackCommand.h>
#include <vtkGenericOpenGLRenderWindow.h>
#include <vtkOrientationMarkerWidget.h>
#include <vtkObject.h>
#include <vtkRenderWindow.h>
#include <vtkRenderer.h>

namespace {

using Cloud = pcl::PointCloud<pcl::PointXYZRGB>;

// One revolution in a 12 m x 8 m room with some clutter: distances from the
// walls plus noise, intensity varying along the walls.
lidar::LidarDataPoint_V4 roomFrame(int points, int seed)
{
    std::mt19937 random(seed);
    std::normal_distribution<float> noise(0.0f, 0.01f);
    lidar::LidarDataPoint_V4 frame;
    frame.motorSpeed = 600;
    auto& line = frame.points[0];
    line.reserve(points);
    for (int i = 0; i < points; ++i) {
        lidar::LidarPoint p;
        p.azimuth = 360.0f * i / points;
        const double a = p.azimuth * M_PI / 180.0;
        const double sx = std::sin(a), cy = std::cos(a);
        double d = std::min(sx != 0 ? std::abs((sx > 0 ? 7.0 : 5.0) / sx) : 1e9,
                            cy != 0 ? std::abs((cy > 0 ? 5.0 : 3.0) / cy) : 1e9);
        if (std::fmod(p.azimuth, 40.0f) < 3.0f)
            d = std::min(d, 2.5);  // a pillar
        d += noise(random);
        p.distance = int32_t(d * 1000);
        p.x = float(sx * d);
        p.y = float(cy * d);
        p.intensity = int32_t(i * 7 + seed) % 256;
        line.push_back(p);
    }
    return frame;
}

struct Figures {
    double fps = 0;
    double msPerFrame = 0;
    double ownMs = 0;
    double viewerMs = 0;
    double renderMs = 0;
};

// Runs `step(i)` followed by one pass of the event loop (the widget paints
// the new image) for `seconds`, after a short warm-up.
template <typename Step>
Figures measure(double seconds, Step step)
{
    // Warm-up: the window has just been shown; let its first frames settle.
    QElapsedTimer clock;
    clock.start();
    for (int i = 0; i < 10 || clock.elapsed() < 500; ++i) {
        step(i);
        QApplication::processEvents();
    }
    Figures f;
    clock.restart();
    int frames = 0;
    double own = 0, viewer = 0, render = 0;
    while (clock.elapsed() < seconds * 1000) {
        const Figures inner = step(frames);
        QApplication::processEvents();
        own += inner.ownMs;
        viewer += inner.viewerMs;
        render += inner.renderMs;
        ++frames;
    }
    const double elapsedMs = clock.nsecsElapsed() / 1e6;
    f.msPerFrame = elapsedMs / frames;
    f.fps = 1000.0 / f.msPerFrame;
    f.ownMs = own / frames;
    f.viewerMs = viewer / frames;
    f.renderMs = render / frames;
    return f;
}

Figures median(std::vector<Figures> runs)
{
    std::sort(runs.begin(), runs.end(), [](const Figures& a, const Figures& b) { return a.fps < b.fps; });
    return runs[runs.size() / 2];
}

Figures timingsOf(const ScanDeck& window)
{
    const ScanDeck::FrameTimings& t = window.lastFrameTimings();
    Figures f;
    f.ownMs = t.ownNs / 1e6;
    f.viewerMs = t.viewerNs / 1e6;
    f.renderMs = t.renderNs / 1e6;
    return f;
}

// The reference: a bare viewer in its own widget, one cloud, one render per
// frame. The widget of `viewSize` sits in a top-level window of `windowSize`,
// so that it can match ScanDeck's view and window both.
class BareViewer {
public:
    BareViewer(const QSize& windowSize, const QSize& viewSize, int multiSamples, bool withMarker = false)
        : m_widget(&m_top), m_window(vtkSmartPointer<vtkGenericOpenGLRenderWindow>::New()), m_cloud(new Cloud)
    {
        m_window->SetMultiSamples(multiSamples);
        auto renderer = vtkSmartPointer<vtkRenderer>::New();
        m_viewer = std::make_shared<pcl::visualization::PCLVisualizer>(renderer, m_window, "bare", false);
        m_widget.setRenderWindow(m_window);
        m_viewer->setupInteractor(m_widget.interactor(), m_widget.renderWindow());
        m_viewer->getRendererCollection()->GetFirstRenderer()->GetActiveCamera()->SetPosition(0, 0, 15);
        if (withMarker) {
            // The same orientation marker as ScanDeck's, to tell its cost apart.
            m_marker = vtkSmartPointer<vtkOrientationMarkerWidget>::New();
            m_marker->SetOrientationMarker(vtkSmartPointer<vtkAxesActor>::New());
            m_marker->SetInteractor(m_widget.interactor());
            m_marker->SetViewport(0.0, 0.0, 0.16, 0.22);
            m_marker->SetEnabled(1);
            m_marker->InteractiveOff();
        }
        m_top.setGeometry(0, 0, windowSize.width(), windowSize.height());
        m_widget.setGeometry((windowSize.width() - viewSize.width()) / 2,
                             (windowSize.height() - viewSize.height()) / 2, viewSize.width(), viewSize.height());
    }
    QWidget& widget() { return m_top; }

    // The same points as ScanDeck draws, coloured, copied in as a new frame would be.
    Figures draw(const Cloud& points, bool removeAndAdd)
    {
        QElapsedTimer clock;
        clock.start();
        *m_cloud = points;
        const pcl::visualization::PointCloudColorHandlerRGBField<pcl::PointXYZRGB> colours(m_cloud);
        if (removeAndAdd || !m_viewer->updatePointCloud<pcl::PointXYZRGB>(m_cloud, colours, "cloud")) {
            m_viewer->removePointCloud("cloud");
            m_viewer->addPointCloud<pcl::PointXYZRGB>(m_cloud, colours, "cloud", 0);
            m_viewer->setPointCloudRenderingProperties(pcl::visualization::PCL_VISUALIZER_POINT_SIZE, 4, "cloud");
        }
        Figures f;
        f.viewerMs = clock.nsecsElapsed() / 1e6;
        clock.restart();
        m_window->Render();
        f.renderMs = clock.nsecsElapsed() / 1e6;
        return f;
    }

private:
    QWidget m_top;
    QVTKOpenGLNativeWidget m_widget;
    vtkSmartPointer<vtkGenericOpenGLRenderWindow> m_window;
    std::shared_ptr<pcl::visualization::PCLVisualizer> m_viewer;
    Cloud::Ptr m_cloud;
    vtkSmartPointer<vtkOrientationMarkerWidget> m_marker;
};

void printRow(QTextStream& out, int points, const QString& what, const Figures& f, bool withOwn)
{
    out << QString("%1  %2 %3 %4").arg(points, 6).arg(what, -40).arg(f.fps, 7, 'f', 1).arg(f.msPerFrame, 9, 'f', 2);
    if (withOwn)
        out << QString(" %1").arg(f.ownMs, 8, 'f', 3);
    else
        out << QString(" %1").arg("-", 8);
    out << QString(" %1 %2\n").arg(f.viewerMs, 9, 'f', 3).arg(f.renderMs, 9, 'f', 3);
    out.flush();
}

// The machine's load, printed with the figures: they mean little on a busy machine.
QString loadAverage()
{
    QFile file("/proc/loadavg");
    return file.open(QIODevice::ReadOnly) ? QString::fromLatin1(file.readLine()).section(' ', 0, 2) : QString("?");
}

void click(ScanDeck& window, const char* name, bool wantChecked)
{
    auto* button = window.findChild<QAbstractButton*>(name);
    if (button->isChecked() != wantChecked)
        button->click();
}

// The measurement tools an operator can have on at once.
enum Tools { Overlays = 1, BoxAndRanging = 2, AllTools = Overlays | BoxAndRanging };

// Grid and polar rings on, a box around one of the room's pillars, range
// finding on with a pair measured across the pillar (as `tools` says).
// Returns the number of points in the box.
int measuringOn(ScanDeck& window, const lidar::LidarDataPoint_V4& frame, int tools)
{
    window.showFrame(frame);
    if (tools & Overlays) {
        click(window, "btn_grid", true);
        click(window, "btn_polar", true);
    }
    if (!(tools & BoxAndRanging))
        return 0;
    const Cloud& cloud = window.frameCloud();
    const double pillarX = 2.5 * std::sin(41.5 * M_PI / 180), pillarY = 2.5 * std::cos(41.5 * M_PI / 180);
    std::vector<int> pillar;
    for (size_t i = 0; i < cloud.size(); ++i)
        if (std::hypot(cloud.points[i].x - pillarX, cloud.points[i].y - pillarY) < 0.5)
            pillar.push_back(int(i));
    window.areaPicked(pillar);
    click(window, "btn_ranging", true);
    const int a = pillar.front(), b = pillar.back();
    window.rangingStep(a, cloud.points[size_t(a)]);
    window.rangingStep(b, cloud.points[size_t(b)]);
    return int(pillar.size());
}

void measuringOff(ScanDeck& window)
{
    window.findChild<QAbstractButton*>("btn_clear")->click();  // also ends the box and the rings
    click(window, "btn_grid", false);
    click(window, "btn_ranging", false);
}

// The analysis tools, one bit each.
enum Analysis { ChangeTool = 1, StatisticsTool = 2, SectorsTool = 4, BearingTool = 8, AllAnalysis = 15 };

// A reference of the frame (the others then differ by their noise), statistics
// collecting without end, the sector overlay, a ranging pair: as `tools` says.
void analysisOn(ScanDeck& window, const lidar::LidarDataPoint_V4& frame, int tools)
{
    window.showFrame(frame);
    AnalysisTools* analysis = window.findChild<AnalysisTools*>("analysis_tools");
    int points = 0;
    for (const auto& line : frame.points)
        points += line.size();
    const double step = 360.0 / points;
    if (tools & ChangeTool)
        analysis->reference().setReference(display::referenceFromFrame("Bench", step, frame));
    if (tools & StatisticsTool)
        analysis->statistics().startLive(display::AngularBins(step), std::numeric_limits<int>::max());
    if (tools & SectorsTool)
        window.findChild<QAction*>("act_sectors")->setChecked(true);
    if (tools & BearingTool) {
        click(window, "btn_ranging", true);
        const Cloud& cloud = window.frameCloud();
        window.rangingStep(0, cloud.points[0]);
        window.rangingStep(int(cloud.size() / 3), cloud.points[cloud.size() / 3]);
    }
}

void analysisOff(ScanDeck& window)
{
    AnalysisTools* analysis = window.findChild<AnalysisTools*>("analysis_tools");
    analysis->reference().setOn(false);
    analysis->statistics().setOn(false);
    window.findChild<QAction*>("act_sectors")->setChecked(false);
    click(window, "btn_ranging", false);
}

// Statistics over the first `frames` frames of a recording, read from it as
// the player reads them; the plain reading of the same frames beside it.
void recordingStatistics(QTextStream& out, const QString& path, int frames)
{
    QString model, refusal;
    std::unique_ptr<PlayerFrames> recording = openRecordingFrames(path, model, refusal);
    if (!recording) {
        out << "cannot open " << path << ": " << refusal << "\n";
        return;
    }
    QElapsedTimer clock;
    clock.start();
    while (!recording->isFinal() && clock.elapsed() < 60000)
        QThread::msleep(20);
    lidar::LidarDataPoint_V4 first;
    recording->frame(0, first);
    int points = 0;
    for (const auto& line : first.points)
        points += line.size();
    const display::AngularBins bins(scansource::stepOfFrame(first));
    std::vector<double> readMs, collectMs;
    int read = 0;
    for (int run = 0; run < 3; ++run) {
        lidar::LidarDataPoint_V4 frame;
        clock.restart();
        for (int i = 0; i < std::min(frames, recording->count()); ++i)
            recording->frame(i, frame);
        readMs.push_back(clock.nsecsElapsed() / 1e6);
        display::RangeStatistics statistics(bins, true);
        clock.restart();
        read = StatisticsRun::collect(*recording, 0, frames, statistics);
        collectMs.push_back(clock.nsecsElapsed() / 1e6);
    }
    std::sort(readMs.begin(), readMs.end());
    std::sort(collectMs.begin(), collectMs.end());
    out << QString("statistics over %1 frames of %2 (%3, %4 points a frame, %5 directions): %6 ms"
                   " (reading the frames alone %7 ms; median of 3; goal < 2000 ms)\n")
               .arg(read)
               .arg(QFileInfo(path).fileName())
               .arg(model)
               .arg(points)
               .arg(bins.count())
               .arg(collectMs[1], 0, 'f', 1)
               .arg(readMs[1], 0, 'f', 1);
    out.flush();
}

struct HoverFigures {
    double handleUs = 0;   // the window's filter and the view's interactor, per move
    double repaintUs = 0;  // the status bar repainting what changed, per move
    double rendersPerMove = 0;
};

// Mouse moves along a circle over the cloud, each sent to the view like a
// real one and followed by one pass of the event loop.
HoverFigures hover(ScanDeck& window, int moves)
{
    QWidget* view = window.findChild<QWidget*>("openGLWidget");
    int renders = 0;
    auto counter = vtkSmartPointer<vtkCallbackCommand>::New();
    counter->SetClientData(&renders);
    counter->SetCallback([](vtkObject*, unsigned long, void* data, void*) { ++*static_cast<int*>(data); });
    vtkRenderWindow* renderWindow = window.renderer()->GetRenderWindow();
    QApplication::processEvents();
    const unsigned long observer = renderWindow->AddObserver(vtkCommand::StartEvent, counter);
    double handleNs = 0, repaintNs = 0;
    QElapsedTimer clock;
    for (int i = 0; i < moves; ++i) {
        const double a = 2 * M_PI * i / moves;
        const QPoint at(int(view->width() * (0.5 + 0.3 * std::cos(a))), int(view->height() * (0.5 + 0.3 * std::sin(a))));
        QMouseEvent move(QEvent::MouseMove, at, view->mapToGlobal(at), Qt::NoButton, Qt::NoButton, Qt::NoModifier);
        clock.start();
        QApplication::sendEvent(view, &move);
        handleNs += clock.nsecsElapsed();
        clock.start();
        QApplication::processEvents();
        repaintNs += clock.nsecsElapsed();
    }
    renderWindow->RemoveObserver(observer);
    return {handleNs / moves / 1e3, repaintNs / moves / 1e3, double(renders) / moves};
}

double argument(const QStringList& args, const QString& name, double fallback)
{
    const int i = args.indexOf(name);
    return i >= 0 && i + 1 < args.size() ? args[i + 1].toDouble() : fallback;
}

}  // namespace

int main(int argc, char* argv[])
{
    vtkObject::SetGlobalWarningDisplay(0);
    ScanDeck::prepareGraphics();
    QApplication app(argc, argv);
    const QStringList args = app.arguments();
    const double seconds = argument(args, "--seconds", 2.0);
    const int repeat = std::max(1, int(argument(args, "--repeat", 3)));
    const double hold = argument(args, "--hold", 0.0);
    QTextStream out(stdout);

    ScanDeck window;
    window.waitUntilWired();
    window.setWindowState(Qt::WindowNoState);
    window.setGeometry(0, 0, 1600, 900);
    window.show();
    QApplication::processEvents();
    QWidget* view = window.findChild<QWidget*>("openGLWidget");
    const QSize viewSize = view->size();

    vtkRenderWindow* scanDeckRenderWindow = window.renderer()->GetRenderWindow();
    const int ownSamples = scanDeckRenderWindow->GetMultiSamples();
    // What a render window gets when nobody chooses.
    const int vtkSamples = vtkSmartPointer<vtkGenericOpenGLRenderWindow>::New()->GetMultiSamples();
    BareViewer bareFull(QSize(1600, 900), QSize(1600, 900), ownSamples);
    BareViewer bareView(QSize(1600, 900), viewSize, ownSamples);
    BareViewer bareViewMarker(QSize(1600, 900), viewSize, ownSamples, true);
    BareViewer bareViewMultisampled(QSize(1600, 900), viewSize, vtkSamples);

    out << "ScanDeck window 1600x900, its 3D view " << viewSize.width() << "x" << viewSize.height() << ", "
        << ownSamples << "x multisampling (the render window's default: " << vtkSamples << "x)"
        << "; median of " << repeat << " runs of " << seconds << " s each; load average " << loadAverage()
        << "\n";
    out << "points  what                                         fps  ms/frame   own ms viewer ms render ms\n";

    QList<int> sizes;
    const int pointsAt = args.indexOf("--points");
    for (const QString& n : pointsAt >= 0 ? args.value(pointsAt + 1).split(',') : QStringList())
        if (n.toInt() > 0)
            sizes << n.toInt();
    if (sizes.isEmpty())
        sizes = {1000, 5000, 20000};
    for (int points : sizes) {
        std::vector<lidar::LidarDataPoint_V4> frames;
        for (int seed = 0; seed < 8; ++seed)
            frames.push_back(roomFrame(points, seed));
        // The bare viewer draws the very points ScanDeck drew from each frame.
        std::vector<Cloud> clouds;
        for (const auto& frame : frames) {
            window.showFrame(frame);
            clouds.push_back(window.frameCloud());
        }

        // The variants take turns, so that a slow spell of the shared machine
        // does not fall on one of them only; each figure is the median.
        auto* table = window.findChild<QAbstractButton*>("btn_table");
        QSize openViewSize;
        int boxPoints = 0;
        auto scanDeckRun = [&](bool tableOpen, bool renderTwice = false, int samples = -1, int tools = 0,
                               int analysis = 0) {
            scanDeckRenderWindow->SetMultiSamples(samples >= 0 ? samples : ownSamples);
            window.show();
            if (table->isChecked() != tableOpen)
                table->click();
            if (tools)
                boxPoints = std::max(boxPoints, measuringOn(window, frames[0], tools));
            if (analysis)
                analysisOn(window, frames[0], analysis);
            const Figures f = measure(seconds, [&](int i) {
                window.showFrame(frames[i % frames.size()]);
                Figures t = timingsOf(window);
                if (renderTwice) {
                    // What one render per cloud update, unbatched, would cost.
                    QElapsedTimer clock;
                    clock.start();
                    window.renderer()->GetRenderWindow()->Render();
                    t.renderMs += clock.nsecsElapsed() / 1e6;
                }
                return t;
            });
            if (tableOpen) {
                openViewSize = view->size();
                table->click();
            }
            if (tools)
                measuringOff(window);
            if (analysis)
                analysisOff(window);
            scanDeckRenderWindow->SetMultiSamples(ownSamples);
            window.hide();
            return f;
        };
        auto bareRun = [&](BareViewer& bare, bool removeAndAdd) {
            bare.widget().show();
            const Figures f =
                measure(seconds, [&](int i) { return bare.draw(clouds[i % clouds.size()], removeAndAdd); });
            bare.widget().hide();
            return f;
        };
        const QString viewName = QString("%1x%2").arg(viewSize.width()).arg(viewSize.height());
        scanDeckRun(true);  // learns the view size with the pane open
        struct Variant {
            QString name;
            bool own;
            std::function<Figures()> run;
            std::vector<Figures> runs;
        };
        // The first four are the headline pairs: ScanDeck and the bare viewer
        // of its view's size, both as the viewer draws (multisampling off),
        // then both with the render window's default multisampling.
        const QString own = QString("%1x MSAA").arg(ownSamples), vtk = QString("%1x MSAA").arg(vtkSamples);
        std::vector<Variant> variants{
            {"ScanDeck, view " + viewName + ", " + own, true, [&] { return scanDeckRun(false); }, {}},
            {"bare " + viewName + " in 1600x900, " + own, false, [&] { return bareRun(bareView, false); }, {}},
            {"ScanDeck, view " + viewName + ", " + vtk, true, [&] { return scanDeckRun(false, false, vtkSamples); }, {}},
            {"bare " + viewName + " in 1600x900, " + vtk, false,
             [&] { return bareRun(bareViewMultisampled, false); }, {}},
            {QString("ScanDeck, table open, view %1x%2").arg(openViewSize.width()).arg(openViewSize.height()), true,
             [&] { return scanDeckRun(true); }, {}},
            {"ScanDeck, two renders per frame", true, [&] { return scanDeckRun(false, true); }, {}},
            {"bare 1600x900, updatePointCloud", false, [&] { return bareRun(bareFull, false); }, {}},
            {"bare 1600x900, remove + add", false, [&] { return bareRun(bareFull, true); }, {}},
            {"bare " + viewName + " in 1600x900, rm+add", false, [&] { return bareRun(bareView, true); }, {}},
            {"  the same + orientation marker", false, [&] { return bareRun(bareViewMarker, false); }, {}},
            {"ScanDeck, grid+polar+box+ranging on", true, [&] { return scanDeckRun(false, false, -1, AllTools); }, {}},
            {"  grid and polar only", true, [&] { return scanDeckRun(false, false, -1, Overlays); }, {}},
            {"  box and ranging only", true, [&] { return scanDeckRun(false, false, -1, BoxAndRanging); }, {}},
            {"ScanDeck, Change colouring on", true, [&] { return scanDeckRun(false, false, -1, 0, ChangeTool); }, {}},
            {"ScanDeck, statistics collecting", true,
             [&] { return scanDeckRun(false, false, -1, 0, StatisticsTool); }, {}},
            {"ScanDeck, closest per sector on", true, [&] { return scanDeckRun(false, false, -1, 0, SectorsTool); }, {}},
            {"ScanDeck, ranging pair with bearing", true,
             [&] { return scanDeckRun(false, false, -1, 0, BearingTool); }, {}},
            {"ScanDeck, all four analysis tools on", true,
             [&] { return scanDeckRun(false, false, -1, 0, AllAnalysis); }, {}},
        };
        for (int r = 0; r < repeat; ++r)
            for (Variant& v : variants)
                v.runs.push_back(v.run());
        std::vector<Figures> result;
        for (Variant& v : variants) {
            result.push_back(median(v.runs));
            printRow(out, points, v.name, result.back(), v.own);
        }
        out << QString("        ScanDeck / bare %1 in 1600x900: %2 % with %3, %4 % with %5;"
                       " own work %6 ms (goals: >= 90 %, < 2 ms at 5000)\n")
                   .arg(viewName)
                   .arg(100.0 * result[0].fps / result[1].fps, 0, 'f', 1)
                   .arg(own)
                   .arg(100.0 * result[2].fps / result[3].fps, 0, 'f', 1)
                   .arg(vtk)
                   .arg(result[0].ownMs, 0, 'f', 3);
        auto resultOf = [&](const QString& name) {
            const auto found = std::find_if(variants.begin(), variants.end(),
                                            [&](const Variant& v) { return v.name == name; });
            return result[size_t(found - variants.begin())];
        };
        const Figures measuring = resultOf("ScanDeck, grid+polar+box+ranging on");
        out << QString("        measuring tools on (box of %1 points) / off: %2 % of the frame rate, render %3 ms more,"
                       " own work %4 ms (goals: >= 90 %, < 2 ms at 5000)\n")
                   .arg(boxPoints)
                   .arg(100.0 * measuring.fps / result[0].fps, 0, 'f', 1)
                   .arg(measuring.renderMs - result[0].renderMs, 0, 'f', 2)
                   .arg(measuring.ownMs, 0, 'f', 3);
        for (const QString& part : {QString("  grid and polar only"), QString("  box and ranging only")}) {
            const Figures f = resultOf(part);
            out << QString("          %1: %2 % of the frame rate, render %3 ms more\n")
                       .arg(part.trimmed())
                       .arg(100.0 * f.fps / result[0].fps, 0, 'f', 1)
                       .arg(f.renderMs - result[0].renderMs, 0, 'f', 2);
        }

        for (const QString& part : {QString("ScanDeck, Change colouring on"), QString("ScanDeck, statistics collecting"),
                                    QString("ScanDeck, closest per sector on"),
                                    QString("ScanDeck, ranging pair with bearing"),
                                    QString("ScanDeck, all four analysis tools on")}) {
            const Figures f = resultOf(part);
            out << QString("          %1: own work %2 ms, %3 ms more than with none (goal <= 1 ms more); %4 % of the"
                           " frame rate\n")
                       .arg(part.mid(10), -32)
                       .arg(f.ownMs, 0, 'f', 3)
                       .arg(f.ownMs - result[0].ownMs, 0, 'f', 3)
                       .arg(100.0 * f.fps / result[0].fps, 0, 'f', 1);
        }

        // One mouse move over the view: readouts only (nothing to redraw),
        // then with the ranging rubber band following the cursor.
        window.show();
        window.showFrame(frames[0]);
        const HoverFigures readouts = hover(window, 400);
        click(window, "btn_ranging", true);
        const Cloud& cloud = window.frameCloud();
        window.rangingStep(0, cloud.points[0]);
        const HoverFigures rubberBand = hover(window, 100);
        window.rangingStep(1, cloud.points[1]);
        click(window, "btn_ranging", false);
        window.hide();
        for (const auto& row : {std::make_pair(QString("readouts"), readouts), std::make_pair(QString("ranging rubber band"), rubberBand)})
            out << QString("        mouse move, %1: %2 us in the window and the view, %3 us repainting,"
                           " %4 renders per move\n")
                       .arg(row.first, -20)
                       .arg(row.second.handleUs, 0, 'f', 1)
                       .arg(row.second.repaintUs, 0, 'f', 1)
                       .arg(row.second.rendersPerMove, 0, 'f', 2);
        out << "        (goal: readouts < 1000 us per move at 20000 points, no render)\n\n";
        out.flush();
    }

    const int recordingAt = args.indexOf("--recording");
    if (recordingAt >= 0 && recordingAt + 1 < args.size())
        recordingStatistics(out, args[recordingAt + 1], 1000);
    out << "load average at the end: " << loadAverage() << "\n";
    out.flush();
    if (hold > 0) {
        window.show();
        window.showFrame(roomFrame(5000, 1));
        QElapsedTimer clock;
        clock.start();
        while (clock.elapsed() < hold * 1000)
            QApplication::processEvents(QEventLoop::AllEvents, 50);
    }
    return 0;
}
