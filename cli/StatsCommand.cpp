// scandeck-cli stats: range statistics per direction over frames of a
// recording or a capture, for acceptance tests run in batch, and with a
// reference the change of every frame against it.

#include "AtomicFileWrite.h"
#include "ChangeComparison.h"
#include "CliSupport.h"
#include "FrameSource.h"
#include "ProgressLine.h"
#include "RangeStatistics.h"
#include "ReferenceFile.h"
#include "StatisticsCsv.h"

#include <QCommandLineParser>
#include <cstdio>
#include <limits>

namespace cli {
namespace {

const char* const kHelp =
    "Usage: scandeck-cli stats <recording|capture> [--start K] [--frames N] [-o <out.csv>]\n"
    "         [--reference <ref.csv> [--tolerance CM] [--json]] [--model <Name>] [--port <n>]\n"
    "         [--firmware <n>] [--quiet]\n"
    "\n"
    "Collects range statistics per direction over frames K..K+N-1 of a recording\n"
    "or a tcpdump/Wireshark capture (frames numbered from 1, as 'convert' numbers\n"
    "them; by default all) and writes them as CSV, one line per direction of the\n"
    "model's angular step:\n"
    "\n"
    "  azimuth,frames,returns,return_rate,mean_m,std_m,min_m,max_m\n"
    "\n"
    "azimuth is the direction's centre in degrees (clockwise from +y, as the\n"
    "viewer's), frames the frames collected, returns the points with a distance\n"
    "in that direction, return_rate the share of frames in which it returned,\n"
    "then the mean, the standard deviation (of the population), the minimum and\n"
    "the maximum of its ranges in metres, empty where it never returned.\n"
    "\n"
    "--reference compares every frame with a reference saved by the viewer (it\n"
    "must be of the same model and angular step) and prints one line per frame\n"
    "on standard output: the points farther or nearer than the reference in\n"
    "their direction by more than the tolerance, and the largest difference\n"
    "from the reference (metres, negative when nearer) with its azimuth. As CSV\n"
    "with the header 'frame,changed,largest_change_m,azimuth', or with --json as\n"
    "JSON Lines:\n"
    "\n"
    "  {\"frame\":1,\"changed\":12,\"largest_change_m\":-0.4125,\"azimuth\":87.537}\n"
    "\n"
    "(empty, or null, where no point had a reference range). The statistics then\n"
    "go only to the file given with -o.\n"
    "\n"
    "Options:\n"
    "  --start <K>            the first frame (default 1)\n"
    "  --frames <N>           how many frames (default: to the end)\n"
    "  -o, --output <path>    the statistics CSV (default standard output, '-')\n"
    "  --reference <file>     compare each frame with this reference\n"
    "  --tolerance <cm>       differences up to this count as unchanged (default 5)\n"
    "  --json                 the comparison as JSON Lines\n"
    "  --model <Name>         the lidar model of a capture: %1\n"
    "  --port <n>             a capture's data port (default 2368)\n"
    "  --firmware <n>         a capture's Tern_P firmware version number\n"
    "  -q, --quiet            no progress line on a terminal\n"
    "  -h, --help             show this help\n"
    "\n"
    "Exit status: 0 success, 1 the input or the reference could not be used,\n"
    "2 bad arguments.\n";

QString number(double value, int decimals, const QString& none)
{
    return value == value ? QString::number(value, 'f', decimals) : none;
}

// One frame's change against the reference, as a CSV line or a JSON object.
QString changeLine(int frame, const display::ChangeSummary& s, bool json)
{
    if (json)
        return QStringLiteral("{\"frame\":%1,\"changed\":%2,\"largest_change_m\":%3,\"azimuth\":%4}")
            .arg(frame)
            .arg(s.changed)
            .arg(number(s.largestChangeM, 4, QStringLiteral("null")),
                 number(s.largestChangeAzimuth, 3, QStringLiteral("null")));
    return QStringLiteral("%1,%2,%3,%4")
        .arg(frame)
        .arg(s.changed)
        .arg(number(s.largestChangeM, 4, QString()), number(s.largestChangeAzimuth, 3, QString()));
}

// The statistics file: standard output, or a file that appears only
// complete and on the disk.
class StatisticsOutput {
public:
    bool open(const QString& path, QString& error)
    {
        if (path == QLatin1String("-"))
            return true;
        file_ = std::make_unique<lidar::AtomicFileWrite>(path);
        return file_->open(&error);
    }
    bool write(const display::RangeStatistics& statistics, QString& error)
    {
        if (!file_) {
            QFile out;
            if (!out.open(stdout, QIODevice::WriteOnly) || !display::writeStatisticsCsv(statistics, out)) {
                error = out.errorString();
                return false;
            }
            out.flush();
            return true;
        }
        if (!display::writeStatisticsCsv(statistics, file_->file())) {
            error = file_->file().errorString();
            file_->discard();
            return false;
        }
        return file_->commit(&error);
    }

private:
    std::unique_ptr<lidar::AtomicFileWrite> file_;
};

}  // namespace

int runStats(const QStringList& arguments)
{
    const QString command = QStringLiteral("stats");
    QCommandLineParser parser;
    const QCommandLineOption startOption("start", "First frame.", "K", "1");
    const QCommandLineOption framesOption("frames", "Number of frames.", "N");
    const QCommandLineOption output({"o", "output"}, "Statistics CSV.", "path");
    const QCommandLineOption referenceOption("reference", "Reference file.", "file");
    const QCommandLineOption toleranceOption("tolerance", "Tolerance in cm.", "cm", "5");
    const QCommandLineOption json("json", "JSON Lines.");
    const QCommandLineOption quiet({"q", "quiet"}, "No progress line.");
    parser.addOptions({startOption, framesOption, output, referenceOption, toleranceOption, json, quiet});
    addSourceOptions(parser);
    parser.addPositionalArgument("input", "Recording or capture.");
    QString input;
    const int early = parseCommandLine(parser, command, arguments, QString::fromLatin1(kHelp).arg(modelList()), input);
    if (early >= 0)
        return early;

    int start = 1;
    if (!toPositiveInt(parser.value(startOption), start))
        return usageError(command, QStringLiteral("start '%1' is no frame number (1 or more)").arg(parser.value(startOption)));
    int frames = std::numeric_limits<int>::max();
    if (parser.isSet(framesOption) && !toPositiveInt(parser.value(framesOption), frames))
        return usageError(command,
                          QStringLiteral("frames '%1' is no number of frames (1 or more)").arg(parser.value(framesOption)));
    const bool comparing = parser.isSet(referenceOption);
    if (!comparing && (parser.isSet(toleranceOption) || parser.isSet(json)))
        return usageError(command, "--tolerance and --json are for --reference");
    double toleranceCm = 0.0;
    if (!toNumber(parser.value(toleranceOption), toleranceCm) || toleranceCm < 0.0)
        return usageError(command,
                          QStringLiteral("tolerance '%1' is no distance in centimetres").arg(parser.value(toleranceOption)));
    const QString target = parser.isSet(output) ? parser.value(output) : (comparing ? QString() : QStringLiteral("-"));
    if (parser.isSet(output) && target.isEmpty())
        return usageError(command, "the output path is empty");
    if (comparing && target == QLatin1String("-"))
        return usageError(command, "with --reference the comparison takes standard output: give the statistics a file");

    std::unique_ptr<FrameSource> source;
    if (const int failed = openSourceFromArguments(parser, command, input, source))
        return failed;
    const lidar::ScanGeometry geometry = source->scanGeometry();
    if (!geometry.isValid())
        return fileError(input, QStringLiteral("no whole data packet of model %1 to take the angular step from")
                                    .arg(source->model()));
    QString error;
    display::ReferenceSweep reference;
    if (comparing) {
        const QString path = parser.value(referenceOption);
        reference = display::ReferenceFile::load(path, error);
        if (!reference.isValid()) {
            printError(error);
            return Failure;
        }
        if (!display::ReferenceFile::fits(reference, source->model(), geometry.angularStep, error))
            return fileError(path, error);
    }
    StatisticsOutput statisticsFile;
    if (!target.isEmpty() && !statisticsFile.open(target, error))
        return fileError(target, QStringLiteral("cannot write: %1").arg(error));

    display::ChangeOptions changeOptions;
    changeOptions.toleranceM = toleranceCm / 100.0;
    display::RangeStatistics statistics{display::AngularBins(geometry.angularStep)};
    if (comparing && !parser.isSet(json))
        printOut(QStringLiteral("frame,changed,largest_change_m,azimuth"));
    const qint64 last = qint64(start) + frames - 1;
    qint64 number = 0;
    ProgressLine progress(parser.isSet(quiet) || comparing);
    const bool read = source->run(
        [&](lidar::LidarDataPoint_V4& frame) {
            ++number;
            progress.update(source->fractionRead(), number);
            if (number < start)
                return true;
            statistics.addFrame(frame);
            if (comparing)
                printOut(changeLine(int(number), display::compareWithReference(reference, frame, changeOptions).summary,
                                    parser.isSet(json)));
            return number < last;
        },
        error);
    progress.clear();
    if (!read)
        return fileError(input, error);
    for (const QString& warning : source->warnings())
        printError(QStringLiteral("%1: warning: %2").arg(input, warning));
    if (number == 0)
        return fileError(input, QStringLiteral("no complete frame (model %1)").arg(source->model()));
    if (statistics.frames() == 0)
        return fileError(input, QStringLiteral("%1, none from frame %2 on").arg(counted(number, QStringLiteral("frame"))).arg(start));
    if (!target.isEmpty() && !statisticsFile.write(statistics, error))
        return fileError(target, QStringLiteral("cannot write: %1").arg(error));
    if (!comparing && target != QLatin1String("-"))
        printOut(QStringLiteral("%1: statistics of %2 (from frame %3) of model %4 in %5 directions written to %6")
                     .arg(input, counted(statistics.frames(), QStringLiteral("frame")))
                     .arg(start)
                     .arg(source->model())
                     .arg(statistics.bins().count())
                     .arg(target));
    return Success;
}

}  // namespace cli
