#include "SimCommandLine.h"

#include <QCommandLineParser>
#include <QDateTime>

namespace sim {

namespace {

const char kDescription[] =
    "A simulated lidar of any of ScanDeck's six models, for trying the viewer and\n"
    "the command-line tool without hardware. It streams the model's data packets\n"
    "from a plausible room (walls, pillars, an open door, a reflective strip),\n"
    "answers the device commands (read parameters, motor on/off, filter, device\n"
    "parameter), and sends only to the loopback interface.\n"
    "\n"
    "Examples:\n"
    "  scandeck-sim --model Wren_Plus                  UDP to 127.0.0.1:2368\n"
    "  scandeck-sim --model Tern_GPS --pty             prints the serial device path\n"
    "  scandeck-sim --model Tern_P --record rec.txt --revolutions 20\n"
    "  scandeck-sim --drop 0.01 --junk 0.01 --split    a damaged link\n"
    "  scandeck-sim --drop 0.02 --corrupt 0.02 --log packets.txt   and what became of each packet\n"
    "  scandeck-sim --model Tern_GPS --gps-gap 50      a late GPS time stamp every few seconds\n"
    "\n"
    "A status line goes to stderr every second; SIGINT or SIGTERM ends the run.";

bool parseProbability(const QString& text, double* value)
{
    bool ok = false;
    *value = text.toDouble(&ok);
    return ok && *value >= 0.0 && *value <= 1.0;
}

bool parsePort(const QString& text, quint16* port, bool allowZero)
{
    bool ok = false;
    const uint value = text.toUInt(&ok);
    if (!ok || value > 65535 || (value == 0 && !allowZero))
        return false;
    *port = quint16(value);
    return true;
}

// host:port, with an IPv6 host in brackets.
bool parseHostPort(const QString& text, QString* host, quint16* port)
{
    const int colon = text.lastIndexOf(QLatin1Char(':'));
    if (colon <= 0)
        return false;
    QString h = text.left(colon);
    if (h.startsWith(QLatin1Char('[')) && h.endsWith(QLatin1Char(']')))
        h = h.mid(1, h.size() - 2);
    if (h.isEmpty() || !parsePort(text.mid(colon + 1), port, false))
        return false;
    *host = h;
    return true;
}

bool parseFilter(const QString& text, FilterMode* mode)
{
    const QString t = text.toLower();
    if (t == QLatin1String("normal") || t == QLatin1String("0"))
        *mode = FilterMode::Normal;
    else if (t == QLatin1String("none") || t == QLatin1String("1"))
        *mode = FilterMode::None;
    else if (t == QLatin1String("near") || t == QLatin1String("2"))
        *mode = FilterMode::WithinThreeMetres;
    else
        return false;
    return true;
}

bool parseVersion(const QString& text, FirmwareInfo* firmware)
{
    const QStringList parts = text.split(QLatin1Char('.'));
    if (parts.size() != 3)
        return false;
    int values[3];
    for (int i = 0; i < 3; ++i) {
        bool ok = false;
        values[i] = parts[i].toInt(&ok);
        if (!ok || values[i] < 0 || values[i] > 127)
            return false;
    }
    firmware->major = values[0];
    firmware->minor = values[1];
    firmware->patch = values[2];
    return true;
}

}  // namespace

ParseOutcome parseCommandLine(const QStringList& arguments, SimCommandLine* out, QString* message)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QString::fromLatin1(kDescription));
    const QCommandLineOption help({QStringLiteral("h"), QStringLiteral("help")}, QStringLiteral("Show this help."));
    const QCommandLineOption model(QStringLiteral("model"),
                                   QStringLiteral("Packet format: %1 (default Tern).")
                                       .arg(allModelNames().join(QStringLiteral(", "))),
                                   QStringLiteral("name"), QStringLiteral("Tern"));
    const QCommandLineOption udp(QStringLiteral("udp"),
                                 QStringLiteral("Where data packets and replies go; loopback addresses only "
                                                "(default 127.0.0.1:2368)."),
                                 QStringLiteral("host:port"), QStringLiteral("127.0.0.1:2368"));
    const QCommandLineOption commandPort(QStringLiteral("command-port"),
                                         QStringLiteral("UDP port on 127.0.0.1 where commands are heard "
                                                        "(default 2369, 0 for any free port)."),
                                         QStringLiteral("port"), QStringLiteral("2369"));
    const QCommandLineOption pty(QStringLiteral("pty"),
                                 QStringLiteral("Serial line through a pseudo-terminal instead of UDP; its "
                                                "device path is the first line on stdout."));
    const QCommandLineOption rpm(QStringLiteral("rpm"),
                                 QStringLiteral("Rotation rate in revolutions per minute (default 600)."),
                                 QStringLiteral("rpm"), QStringLiteral("600"));
    const QCommandLineOption fast(QStringLiteral("fast"),
                                  QStringLiteral("Send as fast as possible instead of in real time."));
    const QCommandLineOption seed(QStringLiteral("seed"),
                                  QStringLiteral("Seed of the range noise and the faults (default 1)."),
                                  QStringLiteral("n"), QStringLiteral("1"));
    const QCommandLineOption filter(QStringLiteral("filter"),
                                    QStringLiteral("Filter at start: normal, none or near (within three "
                                                   "meters); commands change it (default normal)."),
                                    QStringLiteral("mode"), QStringLiteral("normal"));
    const QCommandLineOption version(QStringLiteral("firmware-version"),
                                     QStringLiteral("Firmware version major.minor.patch (default 2.1.5, "
                                                    "i.e. 215: Tern_P sends whole-word distances from 215)."),
                                     QStringLiteral("a.b.c"), QStringLiteral("2.1.5"));
    const QCommandLineOption date(QStringLiteral("firmware-date"),
                                  QStringLiteral("Firmware date (default 2024-05-20)."), QStringLiteral("yyyy-mm-dd"),
                                  QStringLiteral("2024-05-20"));
    const QCommandLineOption gpsStart(QStringLiteral("gps-start"),
                                      QStringLiteral("GPS time of the first packet, UTC, as "
                                                     "yyyy-mm-ddThh:mm:ss (default now)."),
                                      QStringLiteral("time"));
    const QCommandLineOption drop(QStringLiteral("drop"), QStringLiteral("Lose each packet with probability p."),
                                  QStringLiteral("p"), QStringLiteral("0"));
    const QCommandLineOption corrupt(QStringLiteral("corrupt"),
                                     QStringLiteral("Damage each packet with probability p so that its framing "
                                                    "fails: a Tern-family packet loses a byte, a Wren-family "
                                                    "packet fails its checksum."),
                                     QStringLiteral("p"), QStringLiteral("0"));
    const QCommandLineOption junk(QStringLiteral("junk"),
                                  QStringLiteral("Send random bytes before each packet with probability p."),
                                  QStringLiteral("p"), QStringLiteral("0"));
    const QCommandLineOption split(QStringLiteral("split"), QStringLiteral("Cut packets across datagrams."));
    const QCommandLineOption gpsGap(QStringLiteral("gps-gap"),
                                    QStringLiteral("Every few seconds, stamp one revolution's first packet ms "
                                                   "milliseconds late (GPS models; default 0, never)."),
                                    QStringLiteral("ms"), QStringLiteral("0"));
    const QCommandLineOption seconds(QStringLiteral("seconds"),
                                     QStringLiteral("Stop after s seconds (default: run until interrupted)."),
                                     QStringLiteral("s"), QStringLiteral("0"));
    const QCommandLineOption record(QStringLiteral("record"),
                                    QStringLiteral("Write a recording in ScanDeck's file format instead of "
                                                   "sending, then exit."),
                                    QStringLiteral("file"));
    const QCommandLineOption log(QStringLiteral("log"),
                                 QStringLiteral("Write one line per data packet to file: its revolution, its "
                                                "place in it, its start angle, whether it was sent, dropped or "
                                                "corrupted, and the junk bytes sent before it."),
                                 QStringLiteral("file"));
    const QCommandLineOption revolutions(QStringLiteral("revolutions"),
                                         QStringLiteral("Revolutions to record (default 10)."), QStringLiteral("n"),
                                         QStringLiteral("10"));
    parser.addOptions({help, model, udp, commandPort, pty, rpm, fast, seed, filter, version, date, gpsStart, drop,
                       corrupt, junk, split, gpsGap, seconds, record, revolutions, log});

    if (!parser.parse(arguments)) {
        *message = parser.errorText();
        return ParseOutcome::Error;
    }
    if (parser.isSet(help)) {
        *message = parser.helpText();
        return ParseOutcome::Help;
    }
    if (!parser.positionalArguments().isEmpty()) {
        *message = QStringLiteral("unexpected argument: %1").arg(parser.positionalArguments().first());
        return ParseOutcome::Error;
    }

    SimCommandLine c;
    SimOptions& o = c.options;
    auto fail = [message](const QString& text) {
        *message = text;
        return ParseOutcome::Error;
    };

    if (!modelFromName(parser.value(model), &o.model))
        return fail(QStringLiteral("unknown model \"%1\"; choose one of %2")
                        .arg(parser.value(model), allModelNames().join(QStringLiteral(", "))));
    if (!parseHostPort(parser.value(udp), &o.dataHost, &o.dataPort))
        return fail(QStringLiteral("--udp wants host:port, got \"%1\"").arg(parser.value(udp)));
    if (!isLoopbackHost(o.dataHost))
        return fail(QStringLiteral("refusing to send to %1: the simulator only sends to a loopback address "
                                   "(127.0.0.0/8 or localhost)")
                        .arg(o.dataHost));
    if (!parsePort(parser.value(commandPort), &o.commandPort, true))
        return fail(QStringLiteral("--command-port wants a port number, got \"%1\"").arg(parser.value(commandPort)));
    o.transport = parser.isSet(pty) ? Transport::PseudoTerminal : Transport::Udp;
    bool ok = false;
    o.rpm = parser.value(rpm).toDouble(&ok);
    if (!ok || o.rpm < kMinRpm || o.rpm > kMaxRpm)
        return fail(QStringLiteral("--rpm wants a rate from %1 to %2").arg(kMinRpm).arg(kMaxRpm));
    o.fast = parser.isSet(fast);
    o.seed = parser.value(seed).toULongLong(&ok);
    if (!ok)
        return fail(QStringLiteral("--seed wants a non-negative integer"));
    if (!parseFilter(parser.value(filter), &o.filter))
        return fail(QStringLiteral("--filter wants normal, none or near"));
    if (!parseVersion(parser.value(version), &o.firmware))
        return fail(QStringLiteral("--firmware-version wants three numbers 0..127 as a.b.c"));
    o.firmware.date = QDate::fromString(parser.value(date), Qt::ISODate);
    if (!o.firmware.date.isValid() || o.firmware.date.year() < 2000 || o.firmware.date.year() > 2127)
        return fail(QStringLiteral("--firmware-date wants a date yyyy-mm-dd from 2000 to 2127"));
    if (parser.isSet(gpsStart)) {
        QDateTime t = QDateTime::fromString(parser.value(gpsStart), Qt::ISODate);
        t.setTimeSpec(Qt::UTC);
        if (!t.isValid())
            return fail(QStringLiteral("--gps-start wants yyyy-mm-ddThh:mm:ss"));
        o.gpsStartMs = t.toMSecsSinceEpoch();
    }
    const struct {
        const QCommandLineOption* option;
        double* value;
    } probabilities[] = {{&drop, &o.faults.drop}, {&corrupt, &o.faults.corrupt}, {&junk, &o.faults.junk}};
    for (const auto& p : probabilities)
        if (!parseProbability(parser.value(*p.option), p.value))
            return fail(QStringLiteral("--%1 wants a probability from 0 to 1").arg(p.option->names().first()));
    o.faults.split = parser.isSet(split);
    o.gpsGapMs = parser.value(gpsGap).toDouble(&ok);
    if (!ok || !(o.gpsGapMs >= 0.0 && o.gpsGapMs <= kMaxGpsGapMs))
        return fail(QStringLiteral("--gps-gap wants milliseconds from 0 to %1").arg(kMaxGpsGapMs));
    c.seconds = parser.value(seconds).toDouble(&ok);
    if (!ok || c.seconds < 0.0)
        return fail(QStringLiteral("--seconds wants a non-negative number"));
    c.recordFile = parser.value(record);
    c.revolutions = parser.value(revolutions).toInt(&ok);
    if (!ok || c.revolutions < 1)
        return fail(QStringLiteral("--revolutions wants a positive number"));
    if (parser.isSet(record) && c.recordFile.isEmpty())
        return fail(QStringLiteral("--record wants a file name"));
    o.logFile = parser.value(log);
    if (parser.isSet(log) && o.logFile.isEmpty())
        return fail(QStringLiteral("--log wants a file name"));
    if (parser.isSet(log) && parser.isSet(record))
        return fail(QStringLiteral("--log logs what goes over a link; --record writes every packet"));

    *out = c;
    return ParseOutcome::Run;
}

}  // namespace sim
