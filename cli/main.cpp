// scandeck-cli: converts, inspects, measures and captures lidar data without a window.

#include "CliSupport.h"
#include "LIdarFactory.h"
#include "ProgramFiles.h"

#include <QCoreApplication>
#include <cstdio>

namespace {

const char* const kUsage =
    "Usage: scandeck-cli <command> [options]\n"
    "\n"
    "Commands:\n"
    "  convert <recording|capture> -o <output> [--format csv|pcd|ply|bag] [--merge] [--model <Name>]\n"
    "          write the complete frames of a recording or a pcap/pcapng capture\n"
    "          as CSV, PCD, PLY or a ROS bag\n"
    "  info <recording|capture> [--model <Name>]\n"
    "          model, packets, frames, points and packet times of a recording\n"
    "          or a capture\n"
    "  stats <recording|capture> [--start K] [--frames N] [-o <out.csv>] [--model <Name>]\n"
    "        [--reference <ref.csv> [--tolerance CM] [--json]]\n"
    "          range statistics per direction over frames of a recording or a\n"
    "          capture as CSV; with a reference, each frame's change against it\n"
    "  repair <recording>\n"
    "          make a recording cut short by a crash readable again\n"
    "  listen --model <Name> (--udp <ip>:<port> [--lidar <ip>:<port>] | --serial <port> [--baud <n>])\n"
    "         [--frames <n>] [--timeout <s>] [-o <out.csv>] [--record <file>]\n"
    "          receive frames from a live lidar\n"
    "\n"
    "'scandeck-cli <command> --help' describes a command. On a terminal, convert\n"
    "and info show their progress on standard error (--quiet: none).\n"
    "Models: %1\n"
    "Exit status: 0 success, 1 failure, 2 bad arguments.\n";

int run(const QStringList& arguments)
{
    const QString usage =
        QString::fromLatin1(kUsage).arg(LIdarFactory::GetInstance()->ModelNames().join(QStringLiteral(", ")));
    if (arguments.size() < 2) {
        std::fprintf(stderr, "%s", usage.toLocal8Bit().constData());
        return cli::UsageError;
    }
    const QString command = arguments.at(1);
    // The command's own parser sees its name as the program name.
    const QStringList rest = arguments.mid(1);
    if (command == QLatin1String("-h") || command == QLatin1String("--help") || command == QLatin1String("help")) {
        std::fprintf(stdout, "%s", usage.toLocal8Bit().constData());
        return cli::Success;
    }
    if (command == QLatin1String("--version")) {
        cli::printOut(QStringLiteral("scandeck-cli %1").arg(QCoreApplication::applicationVersion()));
        return cli::Success;
    }
    if (command == QLatin1String("convert"))
        return cli::runConvert(rest);
    if (command == QLatin1String("info"))
        return cli::runInfo(rest);
    if (command == QLatin1String("listen"))
        return cli::runListen(rest);
    if (command == QLatin1String("stats"))
        return cli::runStats(rest);
    if (command == QLatin1String("repair"))
        return cli::runRepair(rest);
    cli::printError(QStringLiteral("unknown command '%1' (see scandeck-cli --help)").arg(command));
    return cli::UsageError;
}

}  // namespace

int main(int argc, char* argv[])
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("scandeck-cli"));
    QCoreApplication::setApplicationVersion(QStringLiteral(SCANDECK_VERSION));
    // Installed, 'listen' reads the operator's settings file, or the shipped one.
    ProgramFiles::locate(ProgramFiles::UserSettings::ReadShippedIfNone);
    const int code = run(QCoreApplication::arguments());
    LIdarFactory::GetInstance()->Shutdown();
    return code;
}
