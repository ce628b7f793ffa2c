// scandeck-cli info: what a recording holds.

#include "CliSupport.h"
#include "LIdarFactory.h"
#include "RecordFile.h"
#include "RecordingCheck.h"
#include "TernProtocol.h"

#include <QCommandLineParser>

namespace cli {
namespace {

const char* const kHelp =
    "Usage: scandeck-cli info <recording>\n"
    "\n"
    "Prints the model of a recording, its number of packets, complete frames\n"
    "and points, and for models that stamp their packets with GPS time\n"
    "(Tern_P, Tern_GPS, Tern_Plus) the time of the first and last data packet.\n"
    "\n"
    "Exit status: 0 success, 1 the recording could not be read, 2 bad arguments.\n";

// Where a data packet carries its calendar time: Tern_GPS packets at 90,
// length-field packets 12 bytes before their end. -1: not a data packet.
constexpr int kNoCalendar = -1;

int calendarOffset(const QString& model, const QByteArray& packet)
{
    if (model == QLatin1String("Tern_GPS"))
        return packet.size() == 102 ? 90 : kNoCalendar;
    if (model == QLatin1String("Tern_P") || model == QLatin1String("Tern_Plus")) {
        if (packet.size() >= 20 && lidar::tern::lengthFieldMatches(packet))
            return packet.size() - 12;
    }
    return kNoCalendar;
}

bool hasGpsTime(const QString& model)
{
    return model == QLatin1String("Tern_GPS") || model == QLatin1String("Tern_P") ||
           model == QLatin1String("Tern_Plus");
}

QString packetTime(const QString& model, const QVector<QByteArray>& packets, bool first)
{
    for (int k = 0; k < packets.size(); ++k) {
        const QByteArray& packet = packets[first ? k : packets.size() - 1 - k];
        const int offset = calendarOffset(model, packet);
        if (offset >= 0)
            return lidar::tern::dateTimeText(lidar::tern::readCalendar(packet, offset));
    }
    return QStringLiteral("none (no data packet)");
}

}  // namespace

int runInfo(const QStringList& arguments)
{
    const QString command = QStringLiteral("info");
    QCommandLineParser parser;
    parser.addPositionalArgument("recording", "Recorded data file.");
    const int early = parseCommandLine(parser, command, arguments, QString::fromLatin1(kHelp));
    if (early >= 0)
        return early;
    const QStringList positional = parser.positionalArguments();
    if (positional.size() != 1)
        return usageError(command, positional.isEmpty() ? "no recording given" : "give exactly one recording");

    const QString recording = positional.first();
    const RecordingCheck check = checkRecording(recording);
    if (!check.ok)
        return fileError(recording, check.problem);

    QVector<QByteArray> packets = lidar::readRecordFile(recording);
    if (!packets.isEmpty())
        packets.removeFirst();  // the model name
    QString version;
    if (check.model == QLatin1String("Tern_P") && !packets.isEmpty())
        version = QString::fromLatin1(packets.takeFirst());

    const auto parsed = LIdarFactory::GetInstance()->ParseFile(recording);
    qint64 points = 0;
    for (const auto& frame : parsed.second)
        points += qint64(frame.pointCount());

    printOut(QStringLiteral("file:              %1").arg(recording));
    printOut(QStringLiteral("model:             %1").arg(check.model));
    if (check.model == QLatin1String("Tern_P"))
        printOut(QStringLiteral("version number:    %1").arg(version));
    printOut(QStringLiteral("packets:           %1").arg(packets.size()));
    printOut(QStringLiteral("complete frames:   %1").arg(parsed.second.size()));
    printOut(QStringLiteral("points:            %1").arg(points));
    if (hasGpsTime(check.model)) {
        printOut(QStringLiteral("first packet time: %1").arg(packetTime(check.model, packets, true)));
        printOut(QStringLiteral("last packet time:  %1").arg(packetTime(check.model, packets, false)));
    }
    return Success;
}

}  // namespace cli
