// scandeck-cli repair: makes a recording cut short (a crash, a power loss,
// a full disk) readable again.

#include "CliSupport.h"
#include "LIdarFactory.h"
#include "RecordFile.h"

#include <QCommandLineParser>
#include <QFileInfo>

namespace cli {
namespace {

const char* const kHelp =
    "Usage: scandeck-cli repair <recording>\n"
    "\n"
    "A recording that was still being written when the program or the\n"
    "machine stopped has no valid element count, and its last packet may be\n"
    "cut off: the player refuses it. repair keeps every complete packet, drops\n"
    "an incomplete last one and writes the count, in place. A complete\n"
    "recording is left as it is.\n"
    "\n"
    "Exit status: 0 repaired or nothing to repair, 1 the file is no recording\n"
    "or cannot be written, 2 bad arguments.\n";

}  // namespace

int runRepair(const QStringList& arguments)
{
    const QString command = QStringLiteral("repair");
    QCommandLineParser parser;
    parser.addPositionalArgument("recording", "Recorded data file.");
    QString recording;
    const int early = parseCommandLine(parser, command, arguments, QString::fromLatin1(kHelp), recording);
    if (early >= 0)
        return early;
    if (!QFileInfo(recording).isFile())
        return fileError(recording, QStringLiteral("cannot open: no such file"));

    const lidar::RecordLayout layout = lidar::scanRecordFile(recording);
    if (!layout.hasCount || layout.complete == 0)
        return fileError(recording, QStringLiteral("not a recording: it holds no complete element"));
    const QString model = QString::fromUtf8(layout.first);
    const lidar::ModelDescriptor* described = LIdarFactory::GetInstance()->FindModel(model);
    if (!described)
        return fileError(recording, QStringLiteral("not a recording of a known model: left as it is"));
    const qint64 headerElements = described->recording.elements();
    const auto packets = [&](qint64 elements) { return qMax<qint64>(0, elements - headerElements); };

    if (layout.isWhole()) {
        printOut(QStringLiteral("%1: complete, %2 packets of model %3; nothing to repair")
                     .arg(recording)
                     .arg(packets(layout.complete))
                     .arg(model));
        return Success;
    }
    QString error;
    const qint64 kept = lidar::repairRecordFile(recording, &error);
    if (kept < 0)
        return fileError(recording, QStringLiteral("cannot repair: %1").arg(error));
    QString line = QStringLiteral("%1: repaired, kept %2 complete packets of model %3")
                       .arg(recording)
                       .arg(packets(kept))
                       .arg(model);
    if (layout.size > layout.completeEnd)
        line += QStringLiteral(" (dropped %1 bytes of an incomplete packet)").arg(layout.size - layout.completeEnd);
    printOut(line);
    return Success;
}

}  // namespace cli
