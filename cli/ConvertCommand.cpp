// scandeck-cli convert: a recording or a capture to CSV, PCD, PLY or a ROS
// bag, one frame at a time from the source into the writer.

#include "BagOutput.h"
#include "CliSupport.h"
#include "CloudFileWriter.h"
#include "FrameSource.h"
#include "PointRounding.h"
#include "ProgressLine.h"

#include <QCommandLineParser>

namespace cli {
namespace {

const char* const kHelp =
    "Usage: scandeck-cli convert <recording|capture> -o <output> [--format csv|pcd|ply|bag]\n"
    "         [--ascii] [--merge] [--model <Name>] [--port <n>] [--firmware <n>]\n"
    "         [--start-angle A] [--end-angle B] [--frame-id <id>] [--start-time <time>] [--quiet]\n"
    "\n"
    "Decodes every complete frame of a recording made by the viewer or by\n"
    "'scandeck-cli listen --record', or of a tcpdump/Wireshark capture (pcap or\n"
    "pcapng), and writes the points with x, y, z rounded to the centimetre as\n"
    "the viewer shows them.\n"
    "\n"
    "CSV: one file, a header line, then one line per point (frame number from 1,\n"
    "ID, x, y, z, azimuth, distance in metres, intensity, timestamp).\n"
    "PCD and PLY (written by PCL): fields x, y, z, intensity, azimuth, distance\n"
    "(metres), timestamp (ms, -1 when none), frame and id; one file per frame\n"
    "(frame_000001.pcd, ...) in the folder given with -o, or with --merge all\n"
    "frames as one cloud in the file given with -o.\n"
    "Bag: a ROS 1 bag with two messages per frame, /scandeck/scan\n"
    "(sensor_msgs/LaserScan, ranges on the model's angular step from 0 to 360\n"
    "degrees, inf where nothing was measured) and /scandeck/points\n"
    "(sensor_msgs/PointCloud2 with x, y, z, intensity, azimuth, distance and\n"
    "timestamp), stamped with the GPS time of the models that carry one, else\n"
    "with the start time plus each revolution's period.\n"
    "\n"
    "A capture does not name its lidar: its UDP payloads to the data port go,\n"
    "in capture order, through the given model's live stream cutting.\n"
    "\n"
    "Options:\n"
    "  -o, --output <path>    CSV file ('-' for standard output), folder, with\n"
    "                         --merge the PCD/PLY file, or the bag\n"
    "  --format <f>           csv (default), pcd, ply or bag\n"
    "  --ascii                PCD/PLY as text (default binary)\n"
    "  --merge                PCD/PLY: all frames in one file\n"
    "  --model <Name>         the lidar model of a capture: %1\n"
    "  --port <n>             a capture's data port (default 2368)\n"
    "  --firmware <n>         a capture's Tern_P firmware version number (e.g.\n"
    "                         215) until a parameters reply in it gives one\n"
    "  --start-angle <deg>    write only points with azimuth >= A (0..360, default 0)\n"
    "  --end-angle <deg>      write only points with azimuth <= B (A..360, default 360)\n"
    "  --frame-id <id>        bag: the messages' frame_id (default laser)\n"
    "  --start-time <time>    bag: the stamp of the first frame of a model without\n"
    "                         GPS time, ISO 8601 (2024-05-20T12:00:00Z, UTC unless\n"
    "                         an offset is given) or seconds since 1970 (default:\n"
    "                         the input file's modification time)\n"
    "  -q, --quiet            no progress line on a terminal\n"
    "  -h, --help             show this help\n"
    "\n"
    "The input is read once, a piece at a time, and each frame is written as it\n"
    "is decoded, so any length fits in a little memory. Single files appear only\n"
    "once complete; the frames before a damaged part of the input may already\n"
    "be out on standard output or as files of their own. Exit status: 0 success,\n"
    "1 the input could not be converted, 2 bad arguments.\n";

// CSV through the same writer as the viewer's export.
class CsvFrameWriter : public FrameWriter {
public:
    explicit CsvFrameWriter(QString path) : path_(std::move(path)) {}

    bool begin(QString& error) override
    {
        if (!out_.open(path_, error))
            return false;
        out_.writer().setAngleRange(startAngle_, endAngle_);
        return true;
    }
    bool frame(int number, const lidar::LidarDataPoint_V4& frame, QString& error) override
    {
        points_ += out_.writer().writeFrame(number, frame);
        if (!out_.writer().hasError())
            return true;
        error = out_.writer().errorString();
        return false;
    }
    bool end(QString& error) override { return out_.finish(error); }
    void discard() override { out_.discard(); }

private:
    QString path_;
    CsvOutput out_;
};

enum class OutputKind { Csv, Cloud, Bag };

bool formatFromName(const QString& name, OutputKind& kind, cloudfile::Format& format)
{
    kind = OutputKind::Cloud;
    if (name == QLatin1String("csv"))
        kind = OutputKind::Csv;
    else if (name == QLatin1String("bag"))
        kind = OutputKind::Bag;
    else if (name == QLatin1String("pcd"))
        format = cloudfile::Format::Pcd;
    else if (name == QLatin1String("ply"))
        format = cloudfile::Format::Ply;
    else
        return false;
    return true;
}

}  // namespace

int runConvert(const QStringList& arguments)
{
    const QString command = QStringLiteral("convert");
    QCommandLineParser parser;
    const QCommandLineOption output({"o", "output"}, "Output.", "path");
    const QCommandLineOption formatOption("format", "csv, pcd or ply.", "format", "csv");
    const QCommandLineOption ascii("ascii", "PCD/PLY as text.");
    const QCommandLineOption merge("merge", "One cloud of all frames.");
    const QCommandLineOption startAngle("start-angle", "Lowest azimuth.", "degrees", "0");
    const QCommandLineOption endAngle("end-angle", "Highest azimuth.", "degrees", "360");
    const QCommandLineOption frameId("frame-id", "Bag frame_id.", "id", "laser");
    const QCommandLineOption startTime("start-time", "Bag start time.", "time");
    const QCommandLineOption quiet({"q", "quiet"}, "No progress line.");
    parser.addOptions({output, formatOption, ascii, merge, startAngle, endAngle, frameId, startTime, quiet});
    addSourceOptions(parser);
    parser.addPositionalArgument("input", "Recording or capture.");
    const QString help = QString::fromLatin1(kHelp).arg(modelList());
    QString input;
    const int early = parseCommandLine(parser, command, arguments, help, input);
    if (early >= 0)
        return early;

    const QString target = parser.value(output);
    if (!parser.isSet(output) || target.isEmpty())
        return usageError(command, "no output given (-o <path>)");
    OutputKind kind = OutputKind::Csv;
    cloudfile::Format format = cloudfile::Format::Pcd;
    if (!formatFromName(parser.value(formatOption), kind, format))
        return usageError(command,
                          QStringLiteral("unknown format '%1' (csv, pcd, ply or bag)").arg(parser.value(formatOption)));
    if (kind != OutputKind::Csv && target == QLatin1String("-"))
        return usageError(command, "PCD, PLY and bags cannot go to standard output");
    if (kind != OutputKind::Bag && (parser.isSet(frameId) || parser.isSet(startTime)))
        return usageError(command, "--frame-id and --start-time are for --format bag");
    if (kind == OutputKind::Bag && (parser.isSet(ascii) || parser.isSet(merge)))
        return usageError(command, "--ascii and --merge are for PCD and PLY");
    BagOptions bagOptions;
    bagOptions.frameId = parser.value(frameId);
    if (bagOptions.frameId.isEmpty())
        return usageError(command, "the frame id is empty");
    if (parser.isSet(startTime) && !toStartTime(parser.value(startTime), bagOptions.startTimeNs))
        return usageError(command, QStringLiteral("start time '%1' is neither an ISO 8601 date and time nor "
                                                  "seconds since 1970 (up to 2106)")
                                       .arg(parser.value(startTime)));
    double start = 0.0, end = 0.0;
    if (!toNumber(parser.value(startAngle), start))
        return usageError(command, QStringLiteral("start angle '%1' is not a number").arg(parser.value(startAngle)));
    if (!toNumber(parser.value(endAngle), end))
        return usageError(command, QStringLiteral("end angle '%1' is not a number").arg(parser.value(endAngle)));
    if (start < 0.0 || start > 360.0)
        return usageError(command, QStringLiteral("start angle %1 is outside 0..360 degrees").arg(start));
    if (end < 0.0 || end > 360.0)
        return usageError(command, QStringLiteral("end angle %1 is outside 0..360 degrees").arg(end));
    // Such a range would hold no point at all: refused rather than written empty.
    if (start > end)
        return usageError(command, QStringLiteral("start angle %1 is above end angle %2, which leaves no point "
                                                  "(a range across 0 takes two conversions)")
                                       .arg(start)
                                       .arg(end));
    std::unique_ptr<FrameSource> source;
    if (const int failed = openSourceFromArguments(parser, command, input, source))
        return failed;
    QString error;

    std::unique_ptr<FrameWriter> writer;
    if (kind == OutputKind::Csv) {
        writer = std::make_unique<CsvFrameWriter>(target);
    } else if (kind == OutputKind::Bag) {
        bagOptions.geometry = source->scanGeometry();
        if (!bagOptions.geometry.isValid())
            return fileError(input, QStringLiteral("no whole data packet of model %1 to take the angular step from")
                                        .arg(source->model()));
        if (!parser.isSet(startTime))
            bagOptions.startTimeNs = modificationTimeNs(input);
        writer = std::make_unique<BagFrameWriter>(target, bagOptions);
    } else {
        cloudfile::Options options;
        options.format = format;
        options.ascii = parser.isSet(ascii);
        options.merge = parser.isSet(merge);
        options.output = target;
        writer = cloudfile::makeWriter(options);
    }
    writer->setAngleRange(float(start), float(end));
    if (!writer->begin(error))
        return fileError(target, QStringLiteral("cannot write: %1").arg(error));

    int frames = 0;
    bool writeFailed = false;
    ProgressLine progress(parser.isSet(quiet));
    const bool read = source->run(
        [&](lidar::LidarDataPoint_V4& frame) {
            display::roundFrameCoordinates(frame);
            if (writer->frame(++frames, frame, error)) {
                progress.update(source->fractionRead(), frames);
                return true;
            }
            writeFailed = true;
            return false;
        },
        error);
    progress.clear();
    if (writeFailed) {
        writer->discard();
        return fileError(target, QStringLiteral("cannot write: %1").arg(error));
    }
    if (!read) {
        writer->discard();
        return fileError(input, error);
    }
    for (const QString& warning : source->warnings())
        printError(QStringLiteral("%1: warning: %2").arg(input, warning));
    if (frames == 0) {
        writer->discard();
        return fileError(input, QStringLiteral("no complete frame (model %1)").arg(source->model()));
    }
    if (!writer->end(error))
        return fileError(target, QStringLiteral("cannot write: %1").arg(error));
    if (target != QLatin1String("-"))
        printOut(QStringLiteral("%1: %2, %3 of model %4 written to %5")
                     .arg(input, counted(frames, QStringLiteral("frame")),
                          counted(writer->pointsWritten(), QStringLiteral("point")), source->model(), target));
    return Success;
}

}  // namespace cli
