// scandeck-cli convert: a recording to CSV, as the viewer would export it.

#include "CliSupport.h"
#include "PointRounding.h"
#include "RecordingCheck.h"

#include <QCommandLineParser>

namespace cli {
namespace {

const char* const kHelp =
    "Usage: scandeck-cli convert <recording> -o <out.csv> [--start-angle A] [--end-angle B]\n"
    "\n"
    "Decodes every complete frame of a recording made by the viewer or by\n"
    "'scandeck-cli listen --record' and writes it as CSV: a header line, then\n"
    "one line per point (frame number from 1, ID, x, y, z rounded to the\n"
    "centimetre as the viewer shows them, azimuth, distance in metres,\n"
    "intensity, timestamp). The model is read from the recording.\n"
    "\n"
    "Options:\n"
    "  -o, --output <file>    CSV file to write ('-' for standard output)\n"
    "  --start-angle <deg>    write only points with azimuth >= A (default 0)\n"
    "  --end-angle <deg>      write only points with azimuth <= B (default 360)\n"
    "  -h, --help             show this help\n"
    "\n"
    "The recording is read once, a piece at a time, and frames are written as\n"
    "they are decoded, so any length fits in a little memory. The file appears\n"
    "only once it is complete; written to standard output, the frames before a\n"
    "damaged part of a recording are out before the error is found. Exit\n"
    "status: 0 success, 1 the recording could not be converted, 2 bad arguments.\n";

}  // namespace

int runConvert(const QStringList& arguments)
{
    const QString command = QStringLiteral("convert");
    QCommandLineParser parser;
    const QCommandLineOption output({"o", "output"}, "CSV file.", "file");
    const QCommandLineOption startAngle("start-angle", "Lowest azimuth.", "degrees", "0");
    const QCommandLineOption endAngle("end-angle", "Highest azimuth.", "degrees", "360");
    parser.addOptions({output, startAngle, endAngle});
    parser.addPositionalArgument("recording", "Recorded data file.");
    const int early = parseCommandLine(parser, command, arguments, QString::fromLatin1(kHelp));
    if (early >= 0)
        return early;

    const QStringList positional = parser.positionalArguments();
    if (positional.size() != 1)
        return usageError(command, positional.isEmpty() ? "no recording given" : "give exactly one recording");
    if (!parser.isSet(output) || parser.value(output).isEmpty())
        return usageError(command, "no output file given (-o <out.csv>)");
    double start = 0.0, end = 0.0;
    if (!toNumber(parser.value(startAngle), start))
        return usageError(command, QStringLiteral("start angle '%1' is not a number").arg(parser.value(startAngle)));
    if (!toNumber(parser.value(endAngle), end))
        return usageError(command, QStringLiteral("end angle '%1' is not a number").arg(parser.value(endAngle)));

    const QString recording = positional.first();
    lidar::RecordingStream stream(recording);
    QString error;
    if (!openRecording(stream, error))
        return fileError(recording, error);

    // Frames are written as the recording is read and decoded; the output
    // is opened with the first of them, so that a recording without any
    // leaves nothing behind.
    CsvOutput out;
    bool outputFailed = false;
    int frames = 0;
    qint64 points = 0;
    const bool complete = stream.run([&](lidar::LidarDataPoint_V4& frame) {
        if (frames == 0) {
            if (!out.open(parser.value(output), error))
                return !(outputFailed = true);
            out.writer().setAngleRange(float(start), float(end));
        }
        display::roundFrameCoordinates(frame);
        points += out.writer().writeFrame(++frames, frame);
        return true;
    });
    if (outputFailed)
        return fileError(parser.value(output), QStringLiteral("cannot write: %1").arg(error));
    if (!complete) {
        out.discard();
        return fileError(recording, damageText(stream));
    }
    if (frames == 0)
        return fileError(recording, QStringLiteral("no complete frame in its %1 elements (model %2)")
                                        .arg(stream.announcedCount())
                                        .arg(stream.model()));
    if (!out.finish(error))
        return fileError(parser.value(output), QStringLiteral("cannot write: %1").arg(error));
    if (start > end)
        printError(QStringLiteral("warning: start angle %1 is above end angle %2, no point was written")
                       .arg(start)
                       .arg(end));
    if (parser.value(output) != QLatin1String("-"))
        printOut(QStringLiteral("%1: %2 frames, %3 points of model %4 written to %5")
                     .arg(recording)
                     .arg(frames)
                     .arg(points)
                     .arg(stream.model(), parser.value(output)));
    return Success;
}

}  // namespace cli
