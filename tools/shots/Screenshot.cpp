// Takes a picture of the main window as an operator sees it, for the README:
//   scandeck-screenshot -o docs/x.png [--size 1600x900] [--demo [Model]]
//                       [--silence] [--colour 0|1|2] [--language Chinese]
//                       [--tab lidar|offline|setting] [--play recording.txt]
//                       [--record recording.txt] [--wait ms]
// --demo connects to the simulated lidar inside the program (127.0.0.1
// only); --silence then stops the simulator, so that the link goes quiet.
// Run it from the build directory, where the settings and style sheet are.

#include "DemoLidar.h"
#include "IniSettings.h"
#include "LIdarFactory.h"
#include "OffinePlayWidget.h"
#include "ScanDeck.h"
#include "ShotSupport.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QCommandLineParser>
#include <QTabWidget>
#include <QTimer>

constexpr char kTool[] = "scandeck-screenshot";

int main(int argc, char* argv[])
{
    shots::prepare();
    QApplication app(argc, argv);
    shots::answerMessages(kTool);  // no box waits for a click

    QCommandLineParser parser;
    parser.addOptions({
        {{"o", "output"}, "PNG file to write.", "file"},
        {"size", "Window size.", "WxH", "1600x900"},
        {"demo", "Connect to a simulated lidar of this model.", "model"},
        {"silence", "Stop the simulated lidar before the picture."},
        {"colour", "Colour mode index.", "index", "0"},
        {"language", "Chinese or English.", "language"},
        {"tab", "Page of the panel: lidar, offline or setting.", "page", "lidar"},
        {"play", "Load this recording in the player.", "file"},
        {"record", "Record the demo's stream into this file while the window runs.", "file"},
        {"wait", "Milliseconds to let the window run first.", "ms", "1500"},
    });
    parser.process(app);
    if (!parser.isSet("output"))
        return shots::fail(kTool, "no --output file");
    const QStringList size = parser.value("size").split('x');

    // Switching the language writes it into the settings file: put it back.
    struct LanguageKeeper {
        QString language = IniSettings().value(QString(), "language");
        ~LanguageKeeper()
        {
            if (!language.isNull())
                IniSettings().setValue(QString(), "language", language);
        }
    } keeper;
    int status = 0;
    {
        ScanDeck window;
        shots::showWindow(window, QSize(size.value(0).toInt(), size.value(1).toInt()));

        auto* language = window.findChild<QComboBox*>("cob_language");
        if (parser.value("language") == "Chinese")
            language->setCurrentIndex(0);
        else if (parser.value("language") == "English")
            language->setCurrentIndex(1);
        window.findChild<QComboBox*>("comboBox_color_mode")->setCurrentIndex(parser.value("colour").toInt());
        auto* tabs = window.findChild<QTabWidget*>("tabWidget");
        const QString tab = parser.value("tab");
        tabs->setCurrentIndex(tab == "offline" ? 1 : tab == "setting" ? 2 : 0);

        DemoLidar demo;
        if (parser.isSet("demo")) {
            QString error;
            if (!demo.start(parser.value("demo"), window, &error))
                return shots::fail(kTool, error);
        }
        if (parser.isSet("play")) {
            const auto parsed = LIdarFactory::GetInstance()->ParseFile(parser.value("play"));
            if (parsed.second.isEmpty())
                return shots::fail(kTool, "cannot play " + parser.value("play"));
            auto* player = window.findChild<OffinePlayWidget*>("offline");
            player->loadFrames(parsed.first, parsed.second, parser.value("play"));
            player->lastFrame();
        }
        if (parser.isSet("record")) {
            const QString file = parser.value("record");
            window.setSaveFileHook([file](QWidget*, const QString&, const QString&, const QString&) { return file; });
            window.findChild<QAbstractButton*>("btn_save_data")->click();
        }
        shots::settle(parser.value("wait").toInt());
        if (parser.isSet("silence")) {
            demo.stop();
            shots::settle(2300);
        }
        if (!shots::savePng(window.grab().toImage(), parser.value("output")))
            status = shots::fail(kTool, "cannot write " + parser.value("output"));
        if (parser.isSet("record")) {
            window.findChild<QAbstractButton*>("btn_save_data")->click();
            shots::settle(100);
        }
        demo.stop();
        LIdarFactory::GetInstance()->Shutdown();
    }
    return status;
}
