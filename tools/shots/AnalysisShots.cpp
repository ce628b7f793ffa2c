// scandeck-analysis-shots: the README's pictures of the stream's health and
// of the analysis tools, taken from the real window on the demo lidar
// (simulated, loopback only) over a link that loses packets and over a
// clean one, and from the player on a recording with packets missing and on
// a frame of the room rearranged. Run it under a virtual
// display of the README's size, from the build directory:
//   xvfb-run -a -s "-screen 0 1600x900x24" ./scandeck-analysis-shots ../docs

#include "DemoLidar.h"
#include "LIdarFactory.h"
#include "OffinePlayWidget.h"
#include "RecordFile.h"
#include "ScanDeck.h"
#include "ShotSupport.h"
#include "SimModel.h"
#include "SimRecording.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QDir>
#include <QFile>
#include <QSpinBox>
#include <QTemporaryDir>
#include <cmath>

namespace {

constexpr char kTool[] = "scandeck-analysis-shots";
int failedPictures = 0;

void save(const QWidget& widget, const QString& path)
{
    if (!shots::saveScreen(widget.frameGeometry(), path))
        ++failedPictures;
}

// A recording of `revolutions` turns of `model` with every 37th data packet
// lost, as a link that drops now and then leaves it.
bool writeLossyRecording(sim::Model model, int revolutions, const QString& path, QString* error)
{
    sim::SimOptions options;
    options.model = model;
    QVector<QByteArray> elements;
    const int header = lidar::recordPrefixElements(sim::modelName(model));
    qint64 index = 0;
    sim::recordingElements(options, revolutions, [&](const QByteArray& element) {
        if (index < header || (index - header) % 37 != 20)
            elements.append(element);
        ++index;
    });
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || !lidar::writeRecordElements(file, elements)) {
        *error = QStringLiteral("cannot write %1").arg(path);
        return false;
    }
    return true;
}

// The frame with a crate set down 0.8 m in front of the wall between 40 and
// 60 degrees and the door at 200 to 215 degrees opened half a metre.
lidar::LidarDataPoint_V4 rearranged(lidar::LidarDataPoint_V4 frame)
{
    for (std::vector<lidar::LidarPoint>& line : frame.points) {
        for (lidar::LidarPoint& p : line) {
            const double shift = p.azimuth >= 40 && p.azimuth <= 60 ? -800 : p.azimuth >= 200 && p.azimuth <= 215 ? 500 : 0;
            if (shift == 0 || p.distance <= 0)
                continue;
            p.distance += int32_t(shift);
            const double rad = p.azimuth * M_PI / 180.0;
            p.x = float(std::sin(rad) * p.distance / 1000.0);
            p.y = float(std::cos(rad) * p.distance / 1000.0);
        }
    }
    return frame;
}

void trigger(ScanDeck& window, const char* action)
{
    window.findChild<QAction*>(QLatin1String(action))->trigger();
}

QWidget* topLevel(const char* className)
{
    for (QWidget* widget : QApplication::topLevelWidgets())
        if (widget->isVisible() && widget->inherits(className))
            return widget;
    return nullptr;
}

}  // namespace

int main(int argc, char* argv[])
{
    shots::prepare();
    QApplication app(argc, argv);
    const QDir out(app.arguments().value(1, QStringLiteral(".")));
    shots::answerMessages(kTool);
    {
        ScanDeck window;
        shots::showWindow(window, QSize(1600, 900));
        QString error;

        // A Tern_GPS whose link loses 3 % of its packets and whose clock
        // stamps a packet late every few seconds: the health page, the gaps
        // in the view and the amber link readout.
        DemoLidar demo;
        sim::FaultOptions faults;
        faults.drop = 0.03;
        demo.setFaults(faults, 30.0);
        if (!demo.start(QStringLiteral("Tern_GPS"), window, &error))
            return shots::fail(kTool, error);
        shots::click(window, "btn_show_gaps");
        shots::click(window, "btn_stream_health");
        shots::settle(12000);
        save(window, out.filePath(QStringLiteral("stream-health.png")));

        shots::click(window, "btn_GPS_test");
        shots::settle(6000);
        if (QWidget* gps = topLevel("GPSTest")) {
            gps->move(window.frameGeometry().topLeft() + QPoint(500, 60));
            shots::settle(1500);
            save(*gps, out.filePath(QStringLiteral("gps-timing.png")));
            gps->close();
        } else {
            shots::fail(kTool, QStringLiteral("the GPS test window did not open"));
            ++failedPictures;
        }
        shots::click(window, "btn_stream_health");
        shots::click(window, "btn_show_gaps");
        shots::click(window, "btn_disconnect");
        demo.stop();
        shots::settle(300);

        // Range statistics over 50 revolutions of the room, live.
        demo.setFaults(sim::FaultOptions());
        if (!demo.start(DemoLidar::defaultModel(), window, &error))
            return shots::fail(kTool, error);
        shots::settle(1500);
        const lidar::LidarDataPoint_V4 room = window.lastFrame();
        trigger(window, "act_statistics");
        window.findChild<QSpinBox*>(QStringLiteral("spin_statistics_frames"))->setValue(50);
        shots::click(window, "btn_collect_statistics");
        shots::settle(7000);
        save(window, out.filePath(QStringLiteral("analysis-statistics.png")));
        window.findChild<QWidget*>(QStringLiteral("dock_statistics"))->hide();
        shots::click(window, "btn_disconnect");
        demo.stop();
        shots::settle(300);

        // The room as the reference, then a crate set down and the door
        // opened: the change colouring and the closest object per sector.
        OffinePlayWidget* roomPlayer = &shots::showPlayer(window);
        roomPlayer->loadFrames(DemoLidar::defaultModel(), {room, room, rearranged(room)});
        shots::settle(800);
        window.findChild<QSpinBox*>(QStringLiteral("spin_reference_frames"))->setValue(1);
        trigger(window, "act_set_reference");
        roomPlayer->lastFrame();
        shots::settle(800);
        save(window, out.filePath(QStringLiteral("analysis-change.png")));
        window.findChild<QCheckBox*>(QStringLiteral("check_change_colouring"))->setChecked(false);
        window.findChild<QWidget*>(QStringLiteral("dock_reference"))->hide();
        trigger(window, "act_sectors");
        shots::settle(800);
        save(window, out.filePath(QStringLiteral("analysis-sectors.png")));
        trigger(window, "act_sectors");
        window.findChild<QWidget*>(QStringLiteral("dock_sectors"))->hide();
        roomPlayer->stop();
        shots::settle(300);

        // The player on a recording with packets missing: the frame's health
        // beside the frame box, the incomplete frames marked under the slider.
        QTemporaryDir dir;
        const QString recording = dir.filePath(QStringLiteral("Tern_lossy.txt"));
        if (!writeLossyRecording(sim::Model::Tern, 300, recording, &error))
            return shots::fail(kTool, error);
        OffinePlayWidget* player = &shots::openInPlayer(window, recording, kTool);
        shots::settle(1500);
        for (int step = 0; step < 3; ++step)
            shots::click(window, "btn_next");
        shots::settle(800);
        save(window, out.filePath(QStringLiteral("player-health.png")));
        player->stop();
        LIdarFactory::GetInstance()->Shutdown();
    }
    return failedPictures == 0 ? 0 : 1;
}
