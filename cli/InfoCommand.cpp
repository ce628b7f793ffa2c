// scandeck-cli info: what a recording or a capture holds.

#include "CliSupport.h"
#include "FrameSource.h"
#include "HealthOutput.h"
#include "ProgressLine.h"

#include <QCommandLineParser>

namespace cli {
namespace {

const char* const kHelp =
    "Usage: scandeck-cli info <recording|capture> [--model <Name>] [--port <n>] [--firmware <n>]\n"
    "         [--frames | --json] [--quiet]\n"
    "\n"
    "Prints the model of a recording, its number of packets, complete frames\n"
    "and points, and for models that stamp their packets with GPS time\n"
    "(Tern_P, Tern_GPS, Tern_Plus) the time of the first and last data packet.\n"
    "For a tcpdump/Wireshark capture (pcap or pcapng) of the given model: its\n"
    "format and link type, its packets, the UDP datagrams to the data port, the\n"
    "complete frames and points they make, and the capture time of the first\n"
    "and last datagram.\n"
    "\n"
    "Then the stream's health: frames whole and incomplete (a part of the\n"
    "circle no packet covered), the packets missing, the widest gap, packets\n"
    "rejected (cut out but refused: length, trailer or checksum) and bytes\n"
    "skipped while finding the next packet (a recording holds only accepted\n"
    "packets: none of either), and the revolution period where the packets\n"
    "carry GPS time (a capture: its capture times).\n"
    "\n"
    "Options:\n"
    "  --frames               also one line of health per frame\n"
    "  --json                 only the health, as JSON Lines: one object per frame\n"
    "                         (frame, packets, missing_packets, coverage 0..1,\n"
    "                         gaps as [start, end] degrees, points, returns,\n"
    "                         period_ms or null, motor_speed), then\n"
    "                         {\"summary\": {frames, incomplete_frames,\n"
    "                         missing_packets, rejected_packets, skipped_bytes}}\n"
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
    const QCommandLineOption perFrame("frames", "One line per frame.");
    const QCommandLineOption json("json", "JSON Lines.");
    parser.addOptions({quiet, perFrame, json});
    addSourceOptions(parser);
    parser.addPositionalArgument("input", "Recording or capture.");
    QString input;
    const int early =
        parseCommandLine(parser, command, arguments, QString::fromLatin1(kHelp).arg(modelList()), input);
    if (early >= 0)
        return early;
    std::unique_ptr<FrameSource> source;
    if (parser.isSet(perFrame) && parser.isSet(json))
        return usageError(command, "give --frames or --json, not both");
    if (const int failed = openSourceFromArguments(parser, command, input, source))
        return failed;
    QString error;

    qint64 frames = 0, points = 0;
    HealthSummary health;
    ProgressLine progress(parser.isSet(quiet));
    const bool read = source->run(
        [&](lidar::LidarDataPoint_V4& frame) {
            ++frames;
            points += qint64(frame.pointCount());
            const lidar::FrameHealth frameHealth = source->frameHealth();
            health.add(frames, frameHealth);
            if (parser.isSet(json) || parser.isSet(perFrame)) {
                progress.clear();
                printOut(parser.isSet(json) ? frameJson(frames, frameHealth) : frameText(frames, frameHealth));
            }
            progress.update(source->fractionRead(), frames);
            return true;
        },
        error);
    progress.clear();
    if (!read)
        return fileError(input, error);
    if (parser.isSet(json)) {
        printOut(health.json(source->totals()));
        for (const QString& warning : source->warnings())
            printError(QStringLiteral("%1: warning: %2").arg(input, warning));
        return Success;
    }

    printOut(QStringLiteral("file:              %1").arg(input));
    printOut(QStringLiteral("model:             %1").arg(source->model()));
    for (const QString& line : source->details())
        printOut(line);
    printOut(QStringLiteral("complete frames:   %1").arg(frames));
    printOut(QStringLiteral("points:            %1").arg(points));
    for (const QString& line : source->times())
        printOut(line);
    for (const QString& line : health.lines(source->totals()))
        printOut(line);
    for (const QString& warning : source->warnings())
        printError(QStringLiteral("%1: warning: %2").arg(input, warning));
    return Success;
}

}  // namespace cli
