// scandeck-cli info: what a recording or a capture holds.

#include "CliSupport.h"
#include "FrameSource.h"
#include "ProgressLine.h"

#include <QCommandLineParser>

namespace cli {
namespace {

const char* const kHelp =
    "Usage: scandeck-cli info <recording|capture> [--model <Name>] [--port <n>] [--firmware <n>] [--quiet]\n"
    "\n"
    "Prints the model of a recording, its number of packets, complete frames\n"
    "and points, and for models that stamp their packets with GPS time\n"
    "(Tern_P, Tern_GPS, Tern_Plus) the time of the first and last data packet.\n"
    "For a tcpdump/Wireshark capture (pcap or pcapng) of the given model: its\n"
    "format and link type, its packets, the UDP datagrams to the data port, the\n"
    "complete frames and points they make, and the capture time of the first\n"
    "and last datagram.\n"
    "\n"
    "Options:\n"
    "  --model <Name>         the lidar model of a capture: %1\n"
    "  --port <n>             a capture's data port (default 2368)\n"
    "  --firmware <n>         a capture's Tern_P firmware version number\n"
    "  -q, --quiet            no progress line on a terminal\n"
    "  -h, --help             show this help\n"
    "\n"
    "Exit status: 0 success, 1 the input could not be read, 2 bad arguments.\n";

}  // namespace

int runInfo(const QStringList& arguments)
{
    const QString command = QStringLiteral("info");
    QCommandLineParser parser;
    const QCommandLineOption quiet({"q", "quiet"}, "No progress line.");
    parser.addOption(quiet);
    addSourceOptions(parser);
    parser.addPositionalArgument("input", "Recording or capture.");
    QString input;
    const int early =
        parseCommandLine(parser, command, arguments, QString::fromLatin1(kHelp).arg(modelList()), input);
    if (early >= 0)
        return early;
    std::unique_ptr<FrameSource> source;
    if (const int failed = openSourceFromArguments(parser, command, input, source))
        return failed;
    QString error;

    qint64 frames = 0, points = 0;
    ProgressLine progress(parser.isSet(quiet));
    const bool read = source->run(
        [&](lidar::LidarDataPoint_V4& frame) {
            ++frames;
            points += qint64(frame.pointCount());
            progress.update(source->fractionRead(), frames);
            return true;
        },
        error);
    progress.clear();
    if (!read)
        return fileError(input, error);

    printOut(QStringLiteral("file:              %1").arg(input));
    printOut(QStringLiteral("model:             %1").arg(source->model()));
    for (const QString& line : source->details())
        printOut(line);
    printOut(QStringLiteral("complete frames:   %1").arg(frames));
    printOut(QStringLiteral("points:            %1").arg(points));
    for (const QString& line : source->times())
        printOut(line);
    for (const QString& warning : source->warnings())
        printError(QStringLiteral("%1: warning: %2").arg(input, warning));
    return Success;
}

}  // namespace cli
