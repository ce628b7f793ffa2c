// scandeck-cli info: what a recording holds.

#include "CliSupport.h"
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

// The calendar time of a GPS-stamped data packet, as its text.
QString packetTime(const QString& model, const QByteArray& packet)
{
    if (packet.isNull())
        return QStringLiteral("none (no data packet)");
    return lidar::tern::dateTimeText(lidar::tern::readCalendar(packet, calendarOffset(model, packet)));
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
    lidar::RecordingStream stream(recording);
    QString problem;
    if (!openRecording(stream, problem))
        return fileError(recording, problem);

    // One pass: the packets are looked at for their times as they are read,
    // and the frames counted as they are decoded.
    const QString model = stream.model();
    QByteArray first, last;  // the first and last data packets with a calendar time
    if (hasGpsTime(model)) {
        stream.setPacketObserver([&](const QByteArray& packet) {
            if (calendarOffset(model, packet) == kNoCalendar)
                return;
            if (first.isNull())
                first = packet;
            last = packet;
        });
    }
    qint64 frames = 0, points = 0;
    const bool complete = stream.run([&](lidar::LidarDataPoint_V4& frame) {
        ++frames;
        points += qint64(frame.pointCount());
        return true;
    });
    if (!complete)
        return fileError(recording, damageText(stream));

    printOut(QStringLiteral("file:              %1").arg(recording));
    printOut(QStringLiteral("model:             %1").arg(model));
    if (lidar::recordPrefixElements(model) > 0)
        printOut(QStringLiteral("version number:    %1").arg(QString::fromLatin1(stream.versionElement())));
    printOut(QStringLiteral("packets:           %1").arg(stream.packets()));
    printOut(QStringLiteral("complete frames:   %1").arg(frames));
    printOut(QStringLiteral("points:            %1").arg(points));
    if (hasGpsTime(model)) {
        printOut(QStringLiteral("first packet time: %1").arg(packetTime(model, first)));
        printOut(QStringLiteral("last packet time:  %1").arg(packetTime(model, last)));
    }
    return Success;
}

}  // namespace cli
