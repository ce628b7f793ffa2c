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
#include "UserMessages.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QCommandLineParser>
#include <QElapsedTimer>
#include <QTabWidget>
#include <QTimer>
#include <cstdio>
#include <vtkObject.h>

namespace {

void processEventsFor(int ms)
{
    QElapsedTimer clock;
    clock.start();
    while (clock.elapsed() < ms)
        QApplication::processEvents(QEventLoop::AllEvents, 20);
}

int fail(const QString& message)
{
    std::fprintf(stderr, "scandeck-screenshot: %s\n", qPrintable(message));
    return 1;
}

}  // namespace

int main(int argc, char* argv[])
{
    vtkObject::SetGlobalWarningDisplay(0);
    ScanDeck::prepareGraphics();
    QApplication app(argc, argv);

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
        return fail("no --output file");
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
        window.waitUntilWired();
        window.setWindowState(Qt::WindowNoState);
        window.resize(size.value(0).toInt(), size.value(1).toInt());
        window.show();
        processEventsFor(300);

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
                return fail(error);
        }
        if (parser.isSet("play")) {
            const auto parsed = LIdarFactory::GetInstance()->ParseFile(parser.value("play"));
            if (parsed.second.isEmpty())
                return fail("cannot play " + parser.value("play"));
            auto* player = window.findChild<OffinePlayWidget*>("offline");
            player->loadFrames(parsed.first, parsed.second, parser.value("play"));
            player->lastFrame();
        }
        if (parser.isSet("record")) {
            const QString file = parser.value("record");
            window.setSaveFileHook([file](QWidget*, const QString&, const QString&, const QString&) { return file; });
            window.findChild<QAbstractButton*>("btn_save_data")->click();
        }
        processEventsFor(parser.value("wait").toInt());
        if (parser.isSet("silence")) {
            demo.stop();
            processEventsFor(2300);
        }
        if (!window.grab().save(parser.value("output")))
            status = fail("cannot write " + parser.value("output"));
        if (parser.isSet("record")) {
            // The recording is finished; its "File saved" box is not waited for.
            usermessages::setHandler([](QWidget*, const UserMessage&) { return QMessageBox::Ok; });
            window.findChild<QAbstractButton*>("btn_save_data")->click();
            processEventsFor(100);
        }
        demo.stop();
        LIdarFactory::GetInstance()->Shutdown();
    }
    return status;
}
