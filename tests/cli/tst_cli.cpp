// scandeck-cli end to end: the built program run on recordings and captures
// written here and on a loopback lidar, its PCD and PLY files read back by PCL.

#include "CaptureBuilders.h"
#include "CloudPoint.h"
#include "CsvWriter.h"
#include "LIdarFactory.h"
#include "LoopbackLidar.h"
#include "PacketBuilders.h"
#include "RecordFile.h"

#include <QDirIterator>
#include <QProcess>
#include <QTemporaryDir>
#include <QTimer>
#include "ProgramRun.h"

#include <QtTest>
#include <cmath>

#include <pcl/io/pcd_io.h>
#include <pcl/io/ply_io.h>

namespace {

using testing::Run;

QString cliPath()
{
    return QDir::current().absoluteFilePath("scandeck-cli");
}

Run runCli(const QStringList& arguments, const QString& workingDir = QString())
{
    return testing::runProgram(QStringLiteral("scandeck-cli"), arguments, workingDir, 30000);
}

QByteArray recording(const QByteArray& model, const QVector<QByteArray>& packets)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    lidar::writeRecordElements(buffer, QVector<QByteArray>{model} + packets);
    return buffer.data();
}

QList<QByteArray> linesOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll().trimmed().split('\n') : QList<QByteArray>();
}

// Every point of every PCD/PLY file under `path` (a file or a folder, files
// in name order) as the CSV line the same point makes.
template <typename PointT>
QList<QByteArray> cloudLines(const QString& path, bool ply)
{
    QStringList files{path};
    if (QFileInfo(path).isDir()) {
        files.clear();
        for (const QString& name : QDir(path).entryList(QDir::Files, QDir::Name))
            files << QDir(path).filePath(name);
    }
    QList<QByteArray> lines;
    for (const QString& file : files) {
        pcl::PointCloud<PointT> cloud;
        const std::string name = file.toStdString();
        if ((ply ? pcl::io::loadPLYFile(name, cloud) : pcl::io::loadPCDFile(name, cloud)) != 0)
            return {"unreadable " + file.toUtf8()};
        for (const PointT& p : cloud.points) {
            lidar::LidarPoint point{p.x, p.y, p.z, p.azimuth, int32_t(std::lround(p.distance * 1000.0)),
                                    int32_t(p.intensity), int64_t(p.timestamp)};
            lines << CsvWriter::pointLine(int(p.frame), p.id, point).trimmed();
        }
    }
    return lines;
}

}  // namespace

class CliTest : public QObject {
    Q_OBJECT
private slots:
    void convert_data();
    void convert();
    void cloudFilesReadBackByPcl_data();
    void cloudFilesReadBackByPcl();
    void capturesConvertLikeRecordings_data();
    void capturesConvertLikeRecordings();
    void badRecordingsFailWithOneLine_data();
    void badRecordingsFailWithOneLine();
    void usageErrors_data();
    void usageErrors();
    void infoShowsGpsPacketTimes();
    void listen_data();
    void listen();
    void listenBaudRate_data();
    void listenBaudRate();
    void listenSaysWhyNoFrameCame_data();
    void listenSaysWhyNoFrameCame();
    void repair_data();
    void repair();
    void recordingOfAKilledListenIsRepaired();

private:
    QString write(const QString& name, const QByteArray& content)
    {
        QFile file(dir_.filePath(name));
        return file.open(QIODevice::WriteOnly) && file.write(content) == content.size() ? file.fileName() : QString();
    }
    QTemporaryDir dir_;
};

void CliTest::convert_data()
{
    QTest::addColumn<int>("turns");  // the last one is still open when the recording ends
    QTest::addColumn<QStringList>("range");
    QTest::addColumn<int>("points");  // per frame
    QTest::addColumn<QByteArray>("summary");
    // Packets start every 15 degrees; the one at 180 begins with a point at
    // exactly 180, the one at 75 ends at 89.63.
    QTest::newRow("whole turn by default") << 3 << QStringList{} << 24 * 41 << QByteArray("2 frames, 1968 points");
    QTest::newRow("90 to 180 inclusive") << 3 << QStringList{"--start-angle", "90", "--end-angle", "180"}
                                         << 6 * 41 + 1 << QByteArray("2 frames, 494 points");
    QTest::newRow("one frame, one point") << 2 << QStringList{"--start-angle", "180", "--end-angle", "180"} << 1
                                          << QByteArray("1 frame, 1 point");
}

void CliTest::convert()
{
    QFETCH(int, turns);
    QFETCH(QStringList, range);
    QFETCH(int, points);
    QFETCH(QByteArray, summary);
    const QString file = write("turns.txt", recording("Tern", testing::ternRevolutions(turns)));
    const QString csv = dir_.filePath("turns.csv");
    const Run run = runCli(QStringList{"convert", file, "-o", csv} + range);
    QCOMPARE(run.exitCode, 0);
    QVERIFY2(run.out.contains(": " + summary + " of model Tern written to"), run.out.constData());
    const QList<QByteArray> lines = linesOf(csv);
    QCOMPARE(lines.size(), 1 + (turns - 1) * points);
    QCOMPARE(lines.first(), QByteArray(CsvWriter::kHeader).trimmed());
    for (const QByteArray& line : lines.mid(1)) {
        const float azimuth = line.split(',').at(5).toFloat();
        QVERIFY(azimuth >= (range.isEmpty() ? 0.0f : range[1].toFloat()));
        QVERIFY(azimuth <= (range.isEmpty() ? 360.0f : range[3].toFloat()));
    }
    if (range.isEmpty()) {  // coordinates rounded to the centimetre
        QCOMPARE(lines.at(1), QByteArray("1,0,0,1,0,0,1,0,-1"));
        QCOMPARE(lines.at(2), QByteArray("1,0,0.01,1,0,0.36585367,1,0,-1"));
        QCOMPARE(lines.at(1 + 984), QByteArray("2,0,0,1,0,0,1,0,-1"));
        QVERIFY(lines.contains("1,0,1,0,0,90,1,0,-1"));  // y rounds to 0 whatever the cosine leaves
    }
}

void CliTest::cloudFilesReadBackByPcl_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QStringList>("range");
    QTest::addColumn<int>("files");  // 0: one merged file
    QTest::newRow("PCD, binary, a file per frame") << QStringList{"--format", "pcd"} << QStringList{} << 3;
    QTest::newRow("PCD, ASCII, merged") << QStringList{"--format", "pcd", "--ascii", "--merge"} << QStringList{} << 0;
    QTest::newRow("PLY, binary, merged") << QStringList{"--format", "ply", "--merge"} << QStringList{} << 0;
    QTest::newRow("PLY, ASCII, a file per frame, 90 to 180")
        << QStringList{"--format", "ply", "--ascii"} << QStringList{"--start-angle", "90", "--end-angle", "180"} << 3;
}

void CliTest::cloudFilesReadBackByPcl()
{
    pcl::console::setVerbosityLevel(pcl::console::L_ERROR);  // PCL's reader frowns on PCL's own camera element
    QFETCH(QStringList, options);
    QFETCH(QStringList, range);
    QFETCH(int, files);
    // GPS-stamped packets: every field has something to carry.
    const QString file = write("gps.txt", recording("Tern_Plus", testing::revolutionPackets("Tern_Plus", 3)));
    const QString csv = dir_.filePath("gps.csv");
    QCOMPARE(runCli(QStringList{"convert", file, "-o", csv} + range).exitCode, 0);
    const QString out = dir_.filePath(QString::fromLatin1(QTest::currentDataTag()));
    const Run run = runCli(QStringList{"convert", file, "-o", out} + options + range);
    QCOMPARE(run.exitCode, 0);
    const bool ply = options.contains("ply");
    QCOMPARE(QFileInfo(out).isDir(), files > 0);
    if (files)
        QCOMPARE(QDir(out).entryList(QDir::Files).size(), files);
    const QList<QByteArray> lines = ply ? cloudLines<cloudfile::PlyPoint>(out, true)
                                        : cloudLines<cloudfile::PcdPoint>(out, false);
    QCOMPARE(lines, linesOf(csv).mid(1));
    QVERIFY(lines.size() > 100 && !lines.first().endsWith(",-1"));  // real time stamps came through
}

void CliTest::capturesConvertLikeRecordings_data()
{
    QTest::addColumn<QString>("model");
    QTest::addColumn<QStringList>("options");
    QTest::newRow("Wren_Plus, pcapng") << "Wren_Plus" << QStringList{};
    QTest::newRow("Tern_P, firmware given") << "Tern_P" << QStringList{"--firmware", "215"};
}

void CliTest::capturesConvertLikeRecordings()
{
    QFETCH(QString, model);
    QFETCH(QStringList, options);
    const QVector<QByteArray> packets = testing::revolutionPackets(model, 4);
    QVector<QByteArray> elements = packets;
    if (model == "Tern_P")
        elements.prepend("215");
    const QString recorded = write("rec.txt", recording(model.toLatin1(), elements));
    QVector<QByteArray> frames;
    for (const QByteArray& packet : packets)
        frames << testing::ethernet(testing::udp4(2368, packet));
    using testing::CaptureFormat;
    const QString captured =
        write("cap.pcapng", testing::captureFile(CaptureFormat::PcapNg, false, testing::kLinkEthernet, frames));

    const QString fromRecording = dir_.filePath("rec.csv"), fromCapture = dir_.filePath("cap.csv");
    QCOMPARE(runCli({"convert", recorded, "-o", fromRecording}).exitCode, 0);
    QCOMPARE(runCli(QStringList{"convert", captured, "--model", model, "-o", fromCapture} + options).exitCode, 0);
    QCOMPARE(linesOf(fromCapture), linesOf(fromRecording));

    const Run info = runCli(QStringList{"info", captured, "--model", model} + options);
    QCOMPARE(info.exitCode, 0);
    for (const char* line : {"capture format:    pcapng\n", "link type:         EN10MB\n",
                             "datagrams:         97 to port 2368\n", "complete frames:   4\n",
                             "first datagram:    2024-05-20 12:00:00.000 UTC\n"})
        QVERIFY2(info.out.contains(line), info.out.constData());

    // A capture names no model; another port holds nothing.
    const Run noModel = runCli({"info", captured});
    QCOMPARE(noModel.exitCode, 2);
    QVERIFY2(noModel.err.contains("give --model"), noModel.err.constData());
    const Run otherPort = runCli({"convert", captured, "--model", model, "--port", "2370", "-o", fromCapture});
    QCOMPARE(otherPort.exitCode, 1);
    QVERIFY2(otherPort.err.contains("no UDP datagram to port 2370") && otherPort.err.count('\n') == 1,
             otherPort.err.constData());
}

void CliTest::badRecordingsFailWithOneLine_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("reason");
    QTest::addColumn<bool>("foreign");  // no recording at all, rather than a damaged one
    const QByteArray good = recording("Tern", testing::ternRevolutions(2));
    QTest::newRow("text") << QByteArray("hello, this is not a recording\n")
                          << "truncated or damaged: element 0 claims 1865162868 bytes" << true;
    QTest::newRow("empty") << QByteArray() << "empty file" << true;
    QTest::newRow("three bytes") << QByteArray("abc") << "3 bytes, too short" << true;
    QTest::newRow("no elements") << QByteArray(4, '\0') << "no elements" << true;
    QTest::newRow("first element too long for a name")
        << QByteArray("\x00\x00\x00\x01\x00\x01\x00\x00", 8) + QByteArray(65536, 'T') << "unknown model" << true;
    QTest::newRow("huge count in 20 bytes")
        << QByteArray("\x7F\xFF\xFF\xF0\x00\x00\x00\x04Tern\x00\x00\x00\x04\xA5\x5A\x00\x00", 20)
        << "truncated or damaged" << false;
    QTest::newRow("truncated") << good.left(good.size() / 2) << "truncated or damaged" << false;
    // Found only after thousands of packets were decoded and their frames written.
    const QByteArray longer = recording("Tern", testing::ternRevolutions(120));
    QTest::newRow("truncated late") << longer.left(longer.size() - 1000) << "truncated or damaged" << false;
    QTest::newRow("unregistered model") << recording("Falcon", testing::ternRevolutions(2))
                                        << "unknown model \"Falcon\"" << true;
    QTest::newRow("no complete frame") << recording("Tern", testing::ternRevolutions(1)) << "no complete frame"
                                       << false;
}

void CliTest::badRecordingsFailWithOneLine()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, reason);
    QFETCH(bool, foreign);
    const QString file = write("bad.txt", content);
    const QString csv = dir_.filePath("bad.csv");
    QList<QStringList> commands{{"convert", file, "-o", csv}};
    if (!reason.startsWith("no complete frame"))  // info reads such a file well: it holds no frame
        commands << QStringList{"info", file};
    for (const QStringList& command : commands) {
        const Run run = runCli(command);
        QCOMPARE(run.exitCode, 1);
        const QStringList lines = QString::fromLocal8Bit(run.err).split('\n', Qt::SkipEmptyParts);
        QCOMPARE(lines.size(), 1);
        QVERIFY2(lines.first().contains(file) && lines.first().contains(reason), run.err.constData());
        // The verdict first, the byte-level detail after it.
        QCOMPARE(lines.first().startsWith("scandeck-cli: " + file + ": not a ScanDeck recording: "), foreign);
        QVERIFY(!QFile::exists(csv));
    }
}

void CliTest::usageErrors_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QByteArray>("says");
    const QStringList convert{"convert", "x.txt", "-o", "x.csv"};
    QTest::newRow("unknown command") << QStringList{"explode"} << QByteArray("unknown command");
    QTest::newRow("convert without output") << QStringList{"convert", "x.txt"} << QByteArray("no output");
    QTest::newRow("convert to an unknown format") << QStringList{"convert", "x.txt", "-o", "x", "--format", "las"}
                                                  << QByteArray("unknown format");
    QTest::newRow("PCD to standard output") << QStringList{"convert", "x.txt", "-o", "-", "--format", "pcd"}
                                            << QByteArray("standard output");
    QTest::newRow("start angle below 0") << convert + QStringList{"--start-angle", "-1"}
                                         << QByteArray("start angle -1 is outside 0..360");
    QTest::newRow("end angle above 360") << convert + QStringList{"--end-angle", "360.5"}
                                         << QByteArray("end angle 360.5 is outside 0..360");
    QTest::newRow("start above end") << convert + QStringList{"--start-angle", "200", "--end-angle", "100"}
                                     << QByteArray("start angle 200 is above end angle 100");
    QTest::newRow("listen, both links") << QStringList{"listen",         "--model",  "Tern",     "--udp",
                                                       "127.0.0.1:2368", "--serial", "/dev/null"}
                                        << QByteArray("exactly one of");
    QTest::newRow("listen, baud rate 0") << QStringList{"listen", "--model", "Tern", "--serial", "/dev/null", "--baud", "0"}
                                         << QByteArray("baud rate '0'");
}

void CliTest::usageErrors()
{
    QFETCH(QStringList, arguments);
    QFETCH(QByteArray, says);
    const Run run = runCli(arguments);
    QCOMPARE(run.exitCode, 2);
    QVERIFY2(run.err.contains(says) && run.err.count('\n') == 1, run.err.constData());
    QVERIFY(!QFile::exists("x.csv"));
}

void CliTest::infoShowsGpsPacketTimes()
{
    // Two whole turns and the packet that closes the second, 4167 us apart.
    QVector<QByteArray> packets;
    for (int k = 0; k < 49; ++k)
        packets << testing::ternGpsPacket(uint16_t(k % 24 * 1500), 4167, QVector<uint16_t>(42, 1000),
                                          testing::GpsStamp().later(k * 4167));
    const Run run = runCli({"info", write("gps.txt", recording("Tern_GPS", packets))});
    QCOMPARE(run.exitCode, 0);
    for (const char* line : {"model:             Tern_GPS\n", "packets:           49\n", "complete frames:   2\n",
                             "points:            1968\n", "first packet time: 2024-5-20 12:0:0:0\n",
                             "last packet time:  2024-5-20 12:0:0:200\n"})
        QVERIFY2(run.out.contains(line), run.out.constData());
}

void CliTest::listen_data()
{
    QTest::addColumn<bool>("serial");
    QTest::addColumn<int>("frames");
    QTest::newRow("UDP on 127.0.0.1") << false << 3;
    QTest::newRow("pseudo-terminal, one frame") << true << 1;
}

void CliTest::listen()
{
    QFETCH(bool, serial);
    QFETCH(int, frames);
    testing::PseudoTerminal terminal;
    if (serial && !terminal.isOpen())
        QSKIP("no pseudo-terminal here");
    testing::LoopbackLidar lidar;
    const quint16 port = testing::freeUdpPort();
    const QString csv = dir_.filePath("live.csv"), record = dir_.filePath("live.txt");
    const QStringList link = serial ? QStringList{"--serial", terminal.slaveName(), "--baud", "460800"}
                                    : QStringList{"--udp", QString("127.0.0.1:%1").arg(port)};
    QProcess process;
    process.start(cliPath(), QStringList{"listen", "--model", "Tern"} + link +
                                 QStringList{"--frames", QString::number(frames), "-o", csv, "--record", record,
                                             "--timeout", "20"});
    // Once it listens: a turn every 20 ms, one packet a datagram, until it stops.
    QVERIFY(testing::waitFor([&] { return process.canReadLine(); }, 10000));
    QTimer sender;
    QObject::connect(&sender, &QTimer::timeout, [&] {
        for (const QByteArray& packet : testing::ternRevolutions(1))
            serial ? void(terminal.write(packet)) : lidar.send(packet, port);
    });
    sender.start(20);
    QVERIFY(testing::waitFor([&] { return process.state() == QProcess::NotRunning; }, 20000));
    QCOMPARE(process.exitCode(), 0);
    const QList<QByteArray> out = process.readAllStandardOutput().split('\n');
    QCOMPARE(out.at(0), "listening on " + link[1].toLatin1()
                            + (frames == 1 ? " for 1 frame of model Tern" : " for 3 frames of model Tern")
                            + (serial ? " at 460800 baud" : ""));
    // The first turn starts at 0 degrees like every other: all its points.
    QCOMPARE(out.at(1), QByteArray("frame 1: 984 points, motor speed 599 r/min"));
    QVERIFY(out.at(frames).startsWith("frame " + QByteArray::number(frames) + ": "));
    const QList<QByteArray> lines = linesOf(csv);
    QCOMPARE(lines.size(), 1 + frames * 984);
    QVERIFY(lines.at(1).startsWith("1,0,") && lines.last().startsWith(QByteArray::number(frames) + ",0,"));
    // The recording is a complete file; nothing is ever sent back without --lidar.
    QVERIFY(runCli({"info", record}).out.contains("model:             Tern\n"));
    QVERIFY(lidar.commands().isEmpty());
}

void CliTest::listenBaudRate_data()
{
    QTest::addColumn<QString>("settings");  // the working directory's ini/connect_type.ini
    QTest::addColumn<QStringList>("baud");
    QTest::addColumn<QByteArray>("used");
    const QString tern = "[connect_type]\nmodel1=Tern\n[Tern]\ndefault baud rate=115200\n";
    QTest::newRow("the settings file's") << tern << QStringList{} << QByteArray("115200");
    QTest::newRow("given on the command line") << tern << QStringList{"--baud", "9600"} << QByteArray("9600");
    // Without a rate in the settings file, the model's own.
    const QByteArray ternRate = QByteArray::number(LIdarFactory::GetInstance()->FindModel("Tern")->baudRate);
    QTest::newRow("another model's section only")
        << "[Wren_Kite]\nDefault Baud Rate=921600\n" << QStringList{} << ternRate;
    QTest::newRow("no settings file") << QString() << QStringList{} << ternRate;
}

void CliTest::listenBaudRate()
{
    QFETCH(QString, settings);
    QFETCH(QStringList, baud);
    QFETCH(QByteArray, used);
    testing::PseudoTerminal terminal;
    if (!terminal.isOpen())
        QSKIP("no pseudo-terminal here");
    QTemporaryDir work;
    if (!settings.isNull()) {
        QDir(work.path()).mkpath("ini");
        QFile ini(work.filePath("ini/connect_type.ini"));
        QVERIFY(ini.open(QIODevice::WriteOnly) && ini.write(settings.toUtf8()) > 0);
    }
    const Run run = runCli(QStringList{"listen", "--model", "Tern", "--serial", terminal.slaveName(), "--frames", "1",
                                       "--timeout", "0.2"} + baud,
                           work.path());
    QCOMPARE(run.exitCode, 1);
    QCOMPARE(run.out, "listening on " + terminal.slaveName().toLatin1() + " for 1 frame of model Tern at " + used
                          + " baud\n");
}

void CliTest::listenSaysWhyNoFrameCame_data()
{
    QTest::addColumn<QString>("model");
    QTest::addColumn<int>("turnsSent");
    QTest::addColumn<QByteArray>("says");
    QTest::newRow("silence") << "Tern" << 0 << QByteArray("no data within 1 s");
    QTest::newRow("another model's packets")
        << "Wren_Kite" << 2 << QByteArray("bytes arrived within 1 s, but no frame of model Wren_Kite was found in it");
    QTest::newRow("one turn of two") << "Tern" << 2 << QByteArray("only 1 of 2 frames of model Tern within 1 s");
}

void CliTest::listenSaysWhyNoFrameCame()
{
    QFETCH(QString, model);
    QFETCH(int, turnsSent);
    QFETCH(QByteArray, says);
    testing::LoopbackLidar lidar;
    const quint16 port = testing::freeUdpPort();
    QProcess process;
    process.start(cliPath(), {"listen", "--model", model, "--udp", QString("127.0.0.1:%1").arg(port), "--frames", "2",
                              "--timeout", "1"});
    QVERIFY(testing::waitFor([&] { return process.canReadLine(); }, 10000));
    // Two turns make one frame: the second only closes the first.
    for (const QByteArray& packet : testing::ternRevolutions(turnsSent))
        lidar.send(packet, port);
    QVERIFY(testing::waitFor([&] { return process.state() == QProcess::NotRunning; }, 10000));
    QCOMPARE(process.exitCode(), 1);
    const QByteArray err = process.readAllStandardError();
    QVERIFY2(err.contains(says) && err.count('\n') == 1, err.constData());
}

void CliTest::repair_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("said");  // on stdout, or on stderr when it fails
    QTest::addColumn<int>("packets");   // in the file afterwards, -1: left as it was
    const QByteArray whole = recording("Tern", testing::ternRevolutions(2));
    QByteArray unfinished = whole;
    unfinished.replace(0, 4, QByteArray(4, '\xFF'));
    QTest::newRow("unfinished, cut inside a packet")
        << unfinished.left(4 + 8 + 30 * 96 + 40) << 0
        << "repaired, kept 30 complete packets of model Tern (dropped 40 bytes of an incomplete packet)" << 30;
    QTest::newRow("unfinished") << unfinished << 0 << "repaired, kept 48 complete packets of model Tern" << 48;
    QTest::newRow("complete") << whole << 0 << "complete, 48 packets of model Tern; nothing to repair" << -1;
    QTest::newRow("not a recording") << QByteArray("hello, this is not a recording\n") << 1
                                     << "not a recording: it holds no complete element" << -1;
    QTest::newRow("unknown model") << recording("Falcon", {}).replace(0, 4, QByteArray(4, '\xFF')) << 1
                                   << "not a recording of a known model: left as it is" << -1;
}

void CliTest::repair()
{
    QFETCH(QByteArray, content);
    QFETCH(int, exitCode);
    QFETCH(QString, said);
    QFETCH(int, packets);
    const QString file = write("repair.txt", content);
    const Run run = runCli({"repair", file});
    QCOMPARE(run.exitCode, exitCode);
    QCOMPARE(QString::fromLocal8Bit(exitCode ? run.err : run.out).trimmed(),
             (exitCode ? "scandeck-cli: " + file + ": " : file + ": ") + said);
    QFile repaired(file);
    QVERIFY(repaired.open(QIODevice::ReadOnly));
    if (packets < 0)
        QCOMPARE(repaired.readAll(), content);
    else
        QCOMPARE(lidar::readRecordElements(repaired).size(), 1 + packets);
}

// A capture killed mid-way (as a crash or a power loss would stop it) has
// its packets on disk; repair makes them a recording the tools read.
void CliTest::recordingOfAKilledListenIsRepaired()
{
    testing::LoopbackLidar lidar;
    const quint16 port = testing::freeUdpPort();
    const QString record = dir_.filePath("killed.txt");
    QProcess process;
    process.start(cliPath(), {"listen", "--model", "Tern", "--udp", QString("127.0.0.1:%1").arg(port), "--frames",
                              "1000", "--record", record, "--timeout", "30"});
    QVERIFY(testing::waitFor([&] { return process.canReadLine(); }, 10000));
    const QVector<QByteArray> packets = testing::ternRevolutions(4);
    for (const QByteArray& packet : packets) {
        lidar.send(packet, port);
        testing::waitFor([] { return false; }, 1);
    }
    QVERIFY(testing::waitFor([&] { return lidar::scanRecordFile(record).complete == 1 + packets.size(); }));
    process.kill();
    QVERIFY(process.waitForFinished(5000));

    QCOMPARE(runCli({"info", record}).exitCode, 1);
    const Run repaired = runCli({"repair", record});
    QCOMPARE(repaired.exitCode, 0);
    QCOMPARE(repaired.out.trimmed(), (record + ": repaired, kept 96 complete packets of model Tern").toLocal8Bit());
    QVERIFY(runCli({"info", record}).out.contains("complete frames:   3\n"));  // the fourth turn never closed
}

QTEST_MAIN(CliTest)
#include "tst_cli.moc"
