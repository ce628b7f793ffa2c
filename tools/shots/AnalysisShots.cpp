// scandeck-analysis-shots: the README's pictures of the stream's health and
// of the analysis tools, taken from the real window on the demo lidar
// (simulated, loopback only) over a link that loses packets, and from the
// player on a recording with packets missing. Run it under a virtual
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

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QTabWidget>
#include <QTemporaryDir>

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
        shots::click(window, "btn_disconnect");
        demo.stop();
        shots::settle(300);

        // The player on a recording with packets missing: the frame's health
        // beside the frame box, the incomplete frames marked under the slider.
        QTemporaryDir dir;
        const QString recording = dir.filePath(QStringLiteral("Tern_lossy.txt"));
        if (!writeLossyRecording(sim::Model::Tern, 300, recording, &error))
            return shots::fail(kTool, error);
        window.findChild<QTabWidget*>(QStringLiteral("tabWidget"))
            ->setCurrentWidget(window.findChild<QWidget*>(QStringLiteral("tab_offline")));
        auto* player = window.findChild<OffinePlayWidget*>(QStringLiteral("offline"));
        player->setOpenFileHook([&](const QString&, const QString&, const QString&) { return recording; });
        player->setMessageHook([](const QString& title, const QString& text) {
            shots::fail(kTool, title + ": " + text);
        });
        shots::click(window, "btn_open_file");
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
