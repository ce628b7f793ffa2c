// scandeck-sim: a simulated lidar on the loopback interface or a
// pseudo-terminal, or a recording made without any link.

#include "SimCommandLine.h"
#include "SimRecording.h"
#include "SimulatedLidar.h"
#include "TerminationSignals.h"

#include <QCoreApplication>
#include <QTimer>

#include <cstdio>

namespace {

void printError(const QString& text)
{
    std::fprintf(stderr, "scandeck-sim: %s\n", qPrintable(text));
}

void printStatus(const sim::SimulatedLidar& lidar)
{
    std::fprintf(stderr, "scandeck-sim: %s\n", qPrintable(lidar.stats().toString()));
    std::fflush(stderr);
}

}  // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("scandeck-sim"));

    sim::SimCommandLine line;
    QString message;
    switch (sim::parseCommandLine(QCoreApplication::arguments(), &line, &message)) {
    case sim::ParseOutcome::Help:
        std::fputs(qPrintable(message), stdout);
        return 0;
    case sim::ParseOutcome::Error:
        printError(message);
        printError(QStringLiteral("see scandeck-sim --help"));
        return 2;
    case sim::ParseOutcome::Run:
        break;
    }

    if (!line.recordFile.isEmpty()) {
        QString error;
        if (!sim::writeRecording(line.options, line.revolutions, line.recordFile, &error)) {
            printError(error);
            return 1;
        }
        std::fprintf(stderr, "scandeck-sim: wrote %d revolutions of %s to %s\n", line.revolutions,
                     qPrintable(sim::modelName(line.options.model)), qPrintable(line.recordFile));
        return 0;
    }

    if (!termination::catchSignals()) {
        printError(QStringLiteral("cannot set up signal handling"));
        return 1;
    }
    termination::onSignal(&app, [&app] { app.quit(); });

    sim::SimulatedLidar lidar(line.options);
    if (!lidar.start()) {
        printError(lidar.errorString());
        return 1;
    }
    if (line.options.transport == sim::Transport::PseudoTerminal) {
        // The first line on stdout is the device a host opens.
        std::fprintf(stdout, "%s\n", qPrintable(lidar.ptyPath()));
        std::fflush(stdout);
    }
    std::fprintf(stderr, "scandeck-sim: %s, %g rpm%s: %s\n", qPrintable(sim::modelName(line.options.model)),
                 line.options.rpm, line.options.fast ? ", fast" : "", qPrintable(lidar.linkDescription()));
    std::fflush(stderr);

    QTimer status;
    QObject::connect(&status, &QTimer::timeout, &app, [&] { printStatus(lidar); });
    status.start(1000);
    if (line.seconds > 0.0)
        QTimer::singleShot(int(line.seconds * 1000.0), Qt::PreciseTimer, &app, &QCoreApplication::quit);

    app.exec();
    lidar.stop();
    printStatus(lidar);
    return 0;
}
