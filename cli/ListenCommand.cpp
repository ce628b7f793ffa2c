// scandeck-cli listen: a live session opened the way the viewer opens one.

#include "CliSupport.h"
#include "FrameListener.h"
#include "IniSettings.h"
#include "LIdarFactory.h"
#include "RunOnThread.h"
#include "TerminationSignals.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QUdpSocket>


namespace cli {
namespace {

const char* const kHelp =
    "Usage: scandeck-cli listen --model <Name>\n"
    "         (--udp <bindIp>:<port> [--lidar <ip>:<port>] | --serial <port> [--baud <n>])\n"
    "         [--frames <n>] [--timeout <s>] [-o <out.csv>] [--record <file>] [--json]\n"
    "\n"
    "Opens a live session with a lidar of the given model, prints one line per\n"
    "frame (points, motor speed) and stops after n frames.\n"
    "\n"
    "Options:\n"
    "  --model <Name>         model class name: %1\n"
    "  --udp <ip>:<port>      receive datagrams on this local address and port\n"
    "  --lidar <ip>:<port>    the lidar's command address; without it nothing is\n"
    "                         ever sent over the network\n"
    "  --serial <port>        read from this serial port (e.g. /dev/ttyUSB0)\n"
    "  --baud <n>             serial baud rate (default: the model's \"default baud\n"
    "                         rate\" in ini/connect_type.ini, else the rate the\n"
    "                         model usually runs at)\n"
    "  --frames <n>           frames to receive before stopping (default 10)\n"
    "  --timeout <s>          give up when the frames have not arrived within s\n"
    "                         seconds (default 10)\n"
    "  -o, --output <file>    write the frames to CSV ('-' for standard output)\n"
    "  --record <file>        record the raw packet stream to a file that\n"
    "                         'scandeck-cli convert' and the viewer can read\n"
    "  --json                 each frame's health as a JSON object instead, then\n"
    "                         a summary object, as 'scandeck-cli info --json'\n"
    "                         prints them; the summary's rejected packets and\n"
    "                         skipped bytes are the stream's up to the last frame\n"
    "  -h, --help             show this help\n"
    "\n"
    "Exit status: 0 all frames arrived, 1 failure or timeout, 2 bad arguments,\n"
    "130 interrupted.\n";

// The model's "default baud rate" from the settings file, as the viewer's
// connection dialog preselects it; without one, the rate its descriptor
// gives.
int defaultBaud(const QString& model)
{
    int baud = 0;
    if (toPositiveInt(IniSettings().value(model, QStringLiteral("default baud rate")), baud))
        return baud;
    const lidar::ModelDescriptor* described = LIdarFactory::GetInstance()->FindModel(model);
    return described ? described->baudRate : 0;
}

struct ListenOptions {
    QString model;
    bool network = true;
    QString bindIp;
    quint16 dataPort = 0;
    bool hasLidar = false;
    QString lidarIp;
    quint16 lidarPort = 0;
    QString serialPort;
    int baud = 0;
    int frames = 10;
    double timeoutSeconds = 10.0;
    QString output;
    QString record;
    bool json = false;

    QString source() const
    {
        return network ? QStringLiteral("%1:%2").arg(bindIp).arg(dataPort) : serialPort;
    }
};

// Parses the arguments into `o`; returns -1 to go on, else the exit code.
int parseListenOptions(const QStringList& arguments, ListenOptions& o)
{
    const QString command = QStringLiteral("listen");
    const QStringList models = LIdarFactory::GetInstance()->ModelNames();
    QCommandLineParser parser;
    const QCommandLineOption model("model", "Model.", "name");
    const QCommandLineOption udp("udp", "Bind address.", "ip:port");
    const QCommandLineOption lidar("lidar", "Lidar address.", "ip:port");
    const QCommandLineOption serial("serial", "Serial port.", "port");
    const QCommandLineOption baud("baud", "Baud rate.", "n");
    const QCommandLineOption frames("frames", "Frames.", "n", "10");
    const QCommandLineOption timeout("timeout", "Timeout.", "s", "10");
    const QCommandLineOption output({"o", "output"}, "CSV file.", "file");
    const QCommandLineOption record("record", "Recording.", "file");
    const QCommandLineOption json("json", "JSON Lines.");
    parser.addOptions({model, udp, lidar, serial, baud, frames, timeout, output, record, json});
    const int early = parseCommandLine(parser, command, arguments,
                                       QString::fromLatin1(kHelp).arg(models.join(QStringLiteral(", "))));
    if (early >= 0)
        return early;

    if (!parser.positionalArguments().isEmpty())
        return usageError(command, QStringLiteral("unexpected argument '%1'").arg(parser.positionalArguments().first()));
    if (!parser.isSet(model))
        return usageError(command, "no model given (--model <Name>)");
    o.model = parser.value(model);
    if (!models.contains(o.model))
        return usageError(command, QStringLiteral("unknown model '%1' (known: %2)")
                                       .arg(o.model, models.join(QStringLiteral(", "))));
    if (parser.isSet(udp) == parser.isSet(serial))
        return usageError(command, "give exactly one of --udp <ip>:<port> and --serial <port>");
    o.network = parser.isSet(udp);
    if (o.network) {
        if (!toEndpoint(parser.value(udp), o.bindIp, o.dataPort))
            return usageError(command, QStringLiteral("'%1' is not <ip>:<port>").arg(parser.value(udp)));
        if (parser.isSet(baud))
            return usageError(command, "--baud applies to --serial only");
        o.hasLidar = parser.isSet(lidar);
        if (o.hasLidar && !toEndpoint(parser.value(lidar), o.lidarIp, o.lidarPort))
            return usageError(command, QStringLiteral("'%1' is not <ip>:<port>").arg(parser.value(lidar)));
    } else {
        if (parser.isSet(lidar))
            return usageError(command, "--lidar applies to --udp only");
        o.serialPort = parser.value(serial);
        if (o.serialPort.isEmpty())
            return usageError(command, "empty serial port name");
        o.baud = defaultBaud(o.model);
        if (parser.isSet(baud) && !toPositiveInt(parser.value(baud), o.baud))
            return usageError(command, QStringLiteral("baud rate '%1' is not a positive number").arg(parser.value(baud)));
    }
    if (!toPositiveInt(parser.value(frames), o.frames))
        return usageError(command, QStringLiteral("frame count '%1' is not a positive number").arg(parser.value(frames)));
    if (!toNumber(parser.value(timeout), o.timeoutSeconds) || o.timeoutSeconds <= 0 || o.timeoutSeconds > 86400 * 7)
        return usageError(command, QStringLiteral("timeout '%1' is not a number of seconds above 0").arg(parser.value(timeout)));
    o.output = parser.value(output);
    if (parser.isSet(output) && o.output.isEmpty())
        return usageError(command, "empty output file name");
    o.record = parser.value(record);
    if (parser.isSet(record) && o.record.isEmpty())
        return usageError(command, "empty recording file name");
    o.json = parser.isSet(json);
    if (o.json && o.output == QLatin1String("-"))
        return usageError(command, "--json and -o - both want standard output");
    return -1;
}

// Runs on the session's thread right after its connect: did the bind or the
// open succeed? The session itself does not tell.
QString transportProblem(LidarAnalysis* session, bool network)
{
    QString problem;
    lidar::runOnThreadOf(
        session,
        [&] {
            if (network) {
                if (!session->udpSocket || session->udpSocket->state() != QAbstractSocket::BoundState)
                    problem = QStringLiteral("cannot listen: %1")
                                  .arg(session->udpSocket ? session->udpSocket->errorString() : QStringLiteral("no socket"));
            } else if (!session->connected) {
                problem = QStringLiteral("cannot open serial port: %1")
                              .arg(session->serialPort ? session->serialPort->errorString() : QStringLiteral("no port"));
            }
        });
    return problem;
}

// Stops receiving and, when recording, writes the recording on the session's
// own thread so that no packet is appended while the file is written.
bool closeSession(LidarAnalysis* session, bool recording, QString& recordError)
{
    lidar::runOnThreadOf(
        session,
        [&] {
            session->DisconnectLidar();
            // A write that failed during the recording already ended it.
            if (recording) {
                session->EndSaveData();
                recordError = session->saveError;
            }
        });
    return recordError.isEmpty();
}

// Why the frames did not all come: nothing at all, data in which the model's
// packets were not found (another model, another baud rate), or too few.
QString shortfall(const ListenOptions& o, int seen, quint64 bytes)
{
    if (seen > 0)
        return QStringLiteral("only %1 of %2 of model %3 within %4 s")
            .arg(seen)
            .arg(counted(o.frames, QStringLiteral("frame")), o.model)
            .arg(o.timeoutSeconds);
    if (bytes == 0)
        return QStringLiteral("no data within %1 s").arg(o.timeoutSeconds);
    return QStringLiteral("%1 arrived within %2 s, but no frame of model %3 was found in it "
                          "(is the lidar of another model%4?)")
        .arg(counted(qint64(bytes), QStringLiteral("byte")))
        .arg(o.timeoutSeconds)
        .arg(o.model, o.network ? QString() : QStringLiteral(", or at another baud rate"));
}

}  // namespace

int runListen(const QStringList& arguments)
{
    ListenOptions o;
    const int early = parseListenOptions(arguments, o);
    if (early >= 0)
        return early;

    std::unique_ptr<CsvOutput> csv;
    if (!o.output.isEmpty()) {
        csv = std::make_unique<CsvOutput>();
        QString error;
        if (!csv->open(o.output, error))
            return fileError(o.output, QStringLiteral("cannot write: %1").arg(error));
    }

    std::shared_ptr<LidarAnalysis> session = LIdarFactory::GetInstance()->ChangeLidar(o.model);
    if (!session) {
        printError(QStringLiteral("model %1 could not be created").arg(o.model));
        return Failure;
    }
    // The session's public fields, as the viewer fills them before connecting.
    // Without --lidar, commands would go back to the local address, and
    // connectionType stays -1 so that none is ever sent at all.
    int confirmedType = -1;
    if (o.network) {
        session->dataIp = o.bindIp;
        session->dataPort = o.dataPort;
        session->lidarIp = o.hasLidar ? o.lidarIp : o.bindIp;
        session->lidarPort = o.hasLidar ? o.lidarPort : o.dataPort;
        if (o.hasLidar)
            confirmedType = lidar::NetworkConnection;
    } else {
        session->portName = o.serialPort;
        session->baudRate = o.baud;
        confirmedType = lidar::SerialPortConnection;
    }
    if (!o.record.isEmpty() && !session->StartSaveData(o.record))
        return fileError(o.record, QStringLiteral("cannot write: %1").arg(session->saveError));

    FrameListener listener(session, o.frames, csv.get(), confirmedType);
    listener.setJson(o.json);
    QObject::connect(&listener, &FrameListener::finished, QCoreApplication::instance(), &QCoreApplication::exit,
                     Qt::QueuedConnection);

    // Ctrl-C and SIGTERM end the wait cleanly: the CSV and the recording
    // are still written.
    termination::catchSignals();
    termination::onSignal(&listener, [&listener] { listener.interrupt(); });

    emit session->SendConnectSignal(o.network ? lidar::NetworkConnection : lidar::SerialPortConnection);
    int exitCode = Success;
    const QString problem = transportProblem(session.get(), o.network);
    if (!problem.isEmpty()) {
        exitCode = fileError(o.source(), problem);
    } else {
        QString line = QStringLiteral("listening on %1 for %2 of model %3")
                           .arg(o.source(), counted(o.frames, QStringLiteral("frame")), o.model);
        if (!o.network)
            line += QStringLiteral(" at %1 baud").arg(o.baud);
        if (o.output == QLatin1String("-") || o.json)
            printError(line);
        else
            printOut(line);
        listener.start(int(o.timeoutSeconds * 1000.0));
        QCoreApplication::exec();
        exitCode = listener.exitCode();
    }

    QString recordError;
    if (!closeSession(session.get(), !o.record.isEmpty(), recordError)) {
        fileError(o.record, QStringLiteral("cannot write: %1").arg(recordError));
        exitCode = exitCode == Success ? Failure : exitCode;
    }
    if (!problem.isEmpty()) {
        // Nothing was received: leave no empty files behind.
        if (!o.record.isEmpty())
            QFile::remove(o.record);
        if (csv)
            csv->discard();
    } else if (csv) {
        QString error;
        if (!csv->finish(error)) {
            fileError(o.output, QStringLiteral("cannot write: %1").arg(error));
            exitCode = exitCode == Success ? Failure : exitCode;
        }
    }

    if (o.json && problem.isEmpty())
        printOut(listener.summaryJson());
    const int seen = listener.framesSeen();
    if (exitCode == Failure && problem.isEmpty() && seen < o.frames)
        fileError(o.source(), shortfall(o, seen, session->bytesReceived.load()));
    else if (exitCode == Interrupted)
        printError(QStringLiteral("interrupted after %1 of %2").arg(seen).arg(counted(o.frames, QStringLiteral("frame"))));
    return exitCode;
}

}  // namespace cli
