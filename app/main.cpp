#include "DemoLidar.h"
#include "LIdarFactory.h"
#include "ProgramFiles.h"
#include "ScanDeck.h"
#include "TerminationSignals.h"
#include "UserMessages.h"

#include <QApplication>
#include <QTimer>
#include <cstdio>
#include <vtkObject.h>

int main(int argc, char* argv[])
{
    termination::catchSignals();
    vtkObject::SetGlobalWarningDisplay(0);
    ScanDeck::prepareGraphics();
    QApplication app(argc, argv);
    // Installed: its own files beside the installation, the settings per user.
    if (!ProgramFiles::locate(ProgramFiles::UserSettings::CreateFromShipped))
        std::fprintf(stderr, "scandeck: %s\n", qPrintable(ProgramFiles::problem()));

    // "--demo [<Model>]": start on a simulated lidar inside the program.
    const DemoLidar::Request demo = DemoLidar::fromArguments(QApplication::arguments());
    if (!demo.error.isEmpty()) {
        std::fprintf(stderr, "scandeck: %s\n", qPrintable(demo.error));
        return 2;
    }

    int status = 0;
    {
        ScanDeck window;
        window.show();
        termination::onSignal(&window, [&window] { window.close(); });
        DemoLidar demoLidar;
        if (demo.wanted) {
            // Once the window is up, so that it paints while the link is confirmed.
            QTimer::singleShot(0, &window, [&window, &demoLidar, model = demo.model] {
                QString error;
                if (!demoLidar.start(model, window, &error))
                    usermessages::warning(&window, ScanDeck::tr("warning"), error);
            });
        }
        status = QApplication::exec();
        // The simulator's thread first, then the session's, while the window
        // still holds the session: it is then released on this thread.
        demoLidar.stop();
        LIdarFactory::GetInstance()->Shutdown();
    }
    return status;
}
