// scandeck-cli convert: a recording to CSV, as the viewer would export it.

#include "CliSupport.h"
#include "LIdarFactory.h"
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
    "The file appears only once it is complete. Exit status: 0 success, 1 the\n"
    "recording could not be converted, 2 bad arguments.\n";

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
    const RecordingCheck check = checkRecording(recording);
    if (!check.ok)
        return fileError(recording, check.problem);

    auto parsed = LIdarFactory::GetInstance()->ParseFile(recording);
    QVector<lidar::LidarDataPoint_V4>& frames = parsed.second;
    if (frames.isEmpty())
        return fileError(recording, QStringLiteral("no complete frame in its %1 elements (model %2)")
                                        .arg(check.elementCount)
                                        .arg(check.model));

    CsvOutput out;
    QString error;
    if (!out.open(parser.value(output), error))
        return fileError(parser.value(output), QStringLiteral("cannot write: %1").arg(error));
    out.writer().setAngleRange(float(start), float(end));
    qint64 points = 0;
    for (int i = 0; i < frames.size(); ++i) {
        display::roundFrameCoordinates(frames[i]);
        points += out.writer().writeFrame(i + 1, frames[i]);
        frames[i] = lidar::LidarDataPoint_V4();  // done with it: give the memory back early
    }
    if (!out.finish(error))
        return fileError(parser.value(output), QStringLiteral("cannot write: %1").arg(error));
    if (start > end)
        printError(QStringLiteral("warning: start angle %1 is above end angle %2, no point was written")
                       .arg(start)
                       .arg(end));
    if (parser.value(output) != QLatin1String("-"))
        printOut(QStringLiteral("%1: %2 frames, %3 points of model %4 written to %5")
                     .arg(recording)
                     .arg(frames.size())
                     .arg(points)
                     .arg(check.model, parser.value(output)));
    return Success;
}

}  // namespace cli
