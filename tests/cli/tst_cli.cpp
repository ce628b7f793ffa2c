// scandeck-cli end to end: the built program run on recordings written here
// and on a loopback lidar.

#include "LIdarFactory.h"
#include "LoopbackLidar.h"
#include "PacketBuilders.h"
#include "RecordFile.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTimer>
#include <QUdpSocket>
#include <QtTest>

namespace {

struct Run {
    int exitCode = -1;
    bool finished = false;
    QByteArray out;
    QByteArray err;
    QStringList errLines() const
    {
        return QString::fromLocal8Bit(err).split('\n', Qt::SkipEmptyParts);
    }
};

QString cliPath()
{
    return QDir::current().absoluteFilePath("scandeck-cli");
}

Run runCli(const QStringList& arguments, int timeoutMs = 30000)
{
    QProcess process;
    process.start(cliPath(), arguments);
    Run run;
    if (!process.waitForStarted(5000))
        return run;
    run.finished = process.waitForFinished(timeoutMs);
    if (!run.finished) {
        process.kill();
        process.waitForFinished(5000);
    }
    run.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    run.out = process.readAllStandardOutput();
    run.err = process.readAllStandardError();
    return run;
}

bool writeRecording(const QString& path, const QVector<QByteArray>& elements)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && lidar::writeRecordElements(file, elements);
}

QVector<QByteArray> ternRecording(int revolutions)
{
    return QVector<QByteArray>{"Tern"} + testing::ternRevolutions(revolutions);
}

QList<QByteArray> csvLines(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QList<QByteArray> lines = file.readAll().split('\n');
    if (!lines.isEmpty() && lines.last().isEmpty())
        lines.removeLast();
    return lines;
}

const QByteArray kHeader = "FrameNumbers,ID,Points_X,Points_Y,Points_Z,Azimuth,Distance,Intensity,Timestamp";

}  // namespace

class CliTest : public QObject {
    Q_OBJECT
private slots:
    void initTestCase();
    void convertWritesEveryCompleteFrame();
    void convertAngleRangeIsInclusive_data();
    void convertAngleRangeIsInclusive();
    void badRecordingsFailWithOneLine_data();
    void badRecordingsFailWithOneLine();
    void badArgumentsAreUsageErrors_data();
    void badArgumentsAreUsageErrors();
    void infoSummarisesARecording();
    void infoShowsGpsPacketTimes_data();
    void infoShowsGpsPacketTimes();
    void listenReceivesFramesOverLoopback();
    void listenFailsWhenNoFrameArrives();
    void listenReportsAPortInUse();
    void listenReadsASerialPort();
    void listenStopsCleanlyWhenTerminated();

private:
    QTemporaryDir dir_;
};

void CliTest::initTestCase()
{
    QVERIFY2(QFile::exists(cliPath()), qPrintable(cliPath()));
    QVERIFY(dir_.isValid());
}

void CliTest::convertWritesEveryCompleteFrame()
{
    const QString recording = dir_.filePath("three.txt");
    QVERIFY(writeRecording(recording, ternRecording(3)));
    const QString csv = dir_.filePath("three.csv");
    const Run run = runCli({"convert", recording, "-o", csv});
    QVERIFY(run.finished);
    QCOMPARE(run.exitCode, 0);
    QVERIFY(run.err.isEmpty());

    // Three turns of 24 packets with 41 points each; the third turn is still
    // open when the recording ends.
    const QList<QByteArray> lines = csvLines(csv);
    QCOMPARE(lines.size(), 1 + 2 * 24 * 41);
    QCOMPARE(lines.first(), kHeader);
    QCOMPARE(lines.at(1), QByteArray("1,0,0,1,0,0,1,0,-1"));
    QCOMPARE(lines.at(2), QByteArray("1,0,0.01,1,0,0.36585367,1,0,-1"));
    QCOMPARE(lines.at(1 + 984), QByteArray("2,0,0,1,0,0,1,0,-1"));
    // 90 degrees: x = 1 m, y rounds to 0 whatever tiny value the sine leaves.
    QVERIFY(lines.contains(QByteArray("1,0,1,0,0,90,1,0,-1")));
    for (const QByteArray& line : lines.mid(1)) {
        const QList<QByteArray> fields = line.split(',');
        QCOMPARE(fields.size(), 9);
        for (int f = 2; f <= 3; ++f) {  // at most two decimals after rounding
            const int point = fields[f].indexOf('.');
            QVERIFY2(point < 0 || fields[f].size() - point - 1 <= 2, line.constData());
        }
    }

    // The same to standard output.
    const Run toStdout = runCli({"convert", recording, "-o", "-"});
    QCOMPARE(toStdout.exitCode, 0);
    QCOMPARE(toStdout.out.split('\n').size(), lines.size() + 1);
}

void CliTest::convertAngleRangeIsInclusive_data()
{
    QTest::addColumn<QStringList>("range");
    QTest::addColumn<int>("pointsPerFrame");
    // Packets start every 15 degrees; the packet at 180 begins with a point
    // at exactly 180, the packet at 75 ends at 89.63.
    QTest::newRow("90 to 180") << QStringList{"--start-angle", "90", "--end-angle", "180"} << 6 * 41 + 1;
    QTest::newRow("whole turn by default") << QStringList{} << 24 * 41;
    QTest::newRow("one exact angle") << QStringList{"--start-angle", "180", "--end-angle", "180"} << 1;
    QTest::newRow("start above end") << QStringList{"--start-angle", "200", "--end-angle", "100"} << 0;
}

void CliTest::convertAngleRangeIsInclusive()
{
    QFETCH(QStringList, range);
    QFETCH(int, pointsPerFrame);
    const QString recording = dir_.filePath("range.txt");
    QVERIFY(writeRecording(recording, ternRecording(2)));
    const QString csv = dir_.filePath("range.csv");
    const Run run = runCli(QStringList{"convert", recording, "-o", csv} + range);
    QCOMPARE(run.exitCode, 0);
    const QList<QByteArray> lines = csvLines(csv);
    QCOMPARE(lines.size(), 1 + pointsPerFrame);
    for (const QByteArray& line : lines.mid(1)) {
        const float azimuth = line.split(',').at(5).toFloat();
        QVERIFY(azimuth >= (range.isEmpty() ? 0.0f : range[1].toFloat()));
        QVERIFY(azimuth <= (range.isEmpty() ? 360.0f : range[3].toFloat()));
    }
}

void CliTest::badRecordingsFailWithOneLine_data()
{
    QTest::addColumn<QByteArray>("content");  // empty: no file at all
    QTest::addColumn<bool>("exists");
    QTest::addColumn<QString>("reason");
    QTest::addColumn<bool>("infoFails");

    auto serialise = [](const QVector<QByteArray>& elements) {
        QBuffer buffer;
        buffer.open(QIODevice::WriteOnly);
        lidar::writeRecordElements(buffer, elements);
        return buffer.data();
    };
    const QByteArray good = serialise(ternRecording(2));

    QTest::newRow("missing") << QByteArray() << false << "cannot open" << true;
    QTest::newRow("empty") << QByteArray() << true << "empty file" << true;
    QTest::newRow("huge count in 20 bytes")
        << QByteArray("\x7F\xFF\xFF\xF0\x00\x00\x00\x04Tern\x00\x00\x00\x04\xA5\x5A\x00\x00", 20) << true
        << "truncated or damaged" << true;
    QTest::newRow("cut in a packet") << good.left(good.size() / 2) << true << "truncated or damaged" << true;
    QTest::newRow("cut in a length") << good.left(4 + 4 + 4 + 2) << true << "truncated or damaged" << true;
    QTest::newRow("text file") << QByteArray("hello, this is not a recording\n") << true << "truncated or damaged"
                               << true;
    QTest::newRow("unknown model") << serialise(QVector<QByteArray>{"Falcon"} + testing::ternRevolutions(2)) << true
                                   << "unknown model \"Falcon\"" << true;
    QTest::newRow("no complete frame") << serialise(QVector<QByteArray>{"Tern"} + testing::ternRevolutions(1))
                                       << true << "no complete frame" << false;
    QTest::newRow("name only") << serialise({"Tern"}) << true << "no complete frame" << false;
}

void CliTest::badRecordingsFailWithOneLine()
{
    QFETCH(QByteArray, content);
    QFETCH(bool, exists);
    QFETCH(QString, reason);
    QFETCH(bool, infoFails);

    const QString recording = dir_.filePath(QString("bad-%1.txt").arg(QTest::currentDataTag()).replace(' ', '_'));
    if (exists) {
        QFile file(recording);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(content);
    }
    const QString csv = dir_.filePath("bad.csv");
    QFile::remove(csv);

    const Run run = runCli({"convert", recording, "-o", csv});
    QVERIFY(run.finished);
    QCOMPARE(run.exitCode, 1);
    QCOMPARE(run.errLines().size(), 1);
    QVERIFY2(run.errLines().first().contains(recording), run.err.constData());
    QVERIFY2(run.errLines().first().contains(reason), run.err.constData());
    QVERIFY(!QFile::exists(csv));

    const Run info = runCli({"info", recording});
    QVERIFY(info.finished);
    if (infoFails) {
        QCOMPARE(info.exitCode, 1);
        QCOMPARE(info.errLines().size(), 1);
        QVERIFY(info.errLines().first().contains(recording));
    } else {
        QCOMPARE(info.exitCode, 0);
        QVERIFY(info.out.contains("complete frames:   0"));
    }
}

void CliTest::badArgumentsAreUsageErrors_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("no command") << QStringList{};
    QTest::newRow("unknown command") << QStringList{"explode"};
    QTest::newRow("convert without output") << QStringList{"convert", "x.txt"};
    QTest::newRow("convert with a bad angle") << QStringList{"convert", "x.txt", "-o", "y.csv", "--end-angle", "abc"};
    QTest::newRow("unknown option") << QStringList{"info", "--colour", "x.txt"};
    QTest::newRow("listen, unknown model") << QStringList{"listen", "--model", "Falcon", "--udp", "127.0.0.1:2368"};
    QTest::newRow("listen, no link") << QStringList{"listen", "--model", "Tern"};
    QTest::newRow("listen, both links")
        << QStringList{"listen", "--model", "Tern", "--udp", "127.0.0.1:2368", "--serial", "/dev/null"};
    QTest::newRow("listen, bad port") << QStringList{"listen", "--model", "Tern", "--udp", "127.0.0.1:70000"};
    QTest::newRow("listen, zero frames")
        << QStringList{"listen", "--model", "Tern", "--udp", "127.0.0.1:2368", "--frames", "0"};
}

void CliTest::badArgumentsAreUsageErrors()
{
    QFETCH(QStringList, arguments);
    const Run run = runCli(arguments);
    QVERIFY(run.finished);
    QCOMPARE(run.exitCode, 2);
    QVERIFY(!run.err.isEmpty());

    // Help for the command (or the program) goes to stdout and succeeds.
    const QStringList commands{"convert", "info", "listen"};
    const bool known = !arguments.isEmpty() && commands.contains(arguments.first());
    const Run help = runCli(known ? QStringList{arguments.first(), "--help"} : QStringList{"--help"});
    QCOMPARE(help.exitCode, 0);
    QVERIFY(help.out.startsWith("Usage: scandeck-cli"));
}

void CliTest::infoSummarisesARecording()
{
    const QString recording = dir_.filePath("info.txt");
    QVERIFY(writeRecording(recording, ternRecording(3)));
    const Run run = runCli({"info", recording});
    QCOMPARE(run.exitCode, 0);
    const QString out = QString::fromLocal8Bit(run.out);
    QVERIFY2(out.contains("model:             Tern\n"), qPrintable(out));
    QVERIFY(out.contains("packets:           72\n"));
    QVERIFY(out.contains("complete frames:   2\n"));
    QVERIFY(out.contains("points:            1968\n"));
    QVERIFY(!out.contains("packet time"));  // Tern has no GPS time
}

void CliTest::infoShowsGpsPacketTimes_data()
{
    QTest::addColumn<QString>("model");
    QTest::newRow("Tern_GPS, calendar at 90") << "Tern_GPS";
    QTest::newRow("Tern_P, calendar 12 bytes before the end") << "Tern_P";
    QTest::newRow("Tern_Plus, calendar 12 bytes before the end") << "Tern_Plus";
}

void CliTest::infoShowsGpsPacketTimes()
{
    QFETCH(QString, model);
    if (!LIdarFactory::GetInstance()->ModelNames().contains(model))
        QSKIP("model not registered");
    // A Tern body (start angle, speed, 42 words), then the calendar and the
    // trailer; the length-field models carry their length before the angle.
    auto packet = [&](uint16_t start, int second, int millisecond) {
        const QByteArray tern = testing::ternPacketFilled(start, 4167, 1000);
        QByteArray p = tern.left(2);
        if (model != "Tern_GPS")
            p.append(char(0)).append(char(104));
        p.append(tern.mid(2, 88));
        p.append(char(24)).append(char(5)).append(char(20)).append(char(10)).append(char(11)).append(char(second));
        p.append(char(millisecond >> 8)).append(char(millisecond & 0xFF)).append('\0').append('\0');
        p.append(char(0xFA)).append(char(0xFB));
        return p;
    };
    QVector<QByteArray> elements{model.toLatin1()};
    if (model == "Tern_P")
        elements.append("214");
    for (int k = 0; k < 60; ++k)
        elements.append(packet(uint16_t((k % 24) * 1500), 12 + k / 24, (k % 24) * 4));
    elements.append(QByteArray("\xA5\x5A\x01\x02\xFA\xFB", 6));  // not a data packet: no time
    const QString recording = dir_.filePath(model + ".txt");
    QVERIFY(writeRecording(recording, elements));
    const Run run = runCli({"info", recording});
    QCOMPARE(run.exitCode, 0);
    QVERIFY2(run.out.contains("first packet time: 2024-5-20 10:11:12:0\n"), run.out.constData());
    QVERIFY2(run.out.contains("last packet time:  2024-5-20 10:11:14:44\n"), run.out.constData());
    QVERIFY(run.out.contains("packets:           61\n"));
    QVERIFY(run.out.contains("complete frames:   2\n"));
    QCOMPARE(run.out.contains("version number:    214\n"), model == "Tern_P");
}

void CliTest::listenReceivesFramesOverLoopback()
{
    const quint16 port = testing::freeUdpPort();
    const QString csv = dir_.filePath("live.csv");
    const QString recording = dir_.filePath("live.txt");
    QProcess process;
    process.start(cliPath(), {"listen", "--model", "Tern", "--udp", QString("127.0.0.1:%1").arg(port), "--frames",
                              "3", "-o", csv, "--record", recording, "--timeout", "20"});
    QVERIFY(process.waitForStarted(5000));

    // Once it listens: one packet per datagram, a turn every 20 ms, until the
    // program stops.
    QVERIFY(testing::waitFor([&] { return process.canReadLine(); }, 10000));
    testing::LoopbackLidar lidar;
    const QVector<QByteArray> turn = testing::ternRevolutions(1);
    QTimer sender;
    QObject::connect(&sender, &QTimer::timeout, [&] {
        for (const QByteArray& packet : turn)
            lidar.send(packet, port);
    });
    sender.start(20);
    QVERIFY(testing::waitFor([&] { return process.state() == QProcess::NotRunning; }, 20000));
    sender.stop();

    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(process.exitCode(), 0);
    const QList<QByteArray> out = process.readAllStandardOutput().split('\n');
    QCOMPARE(out.at(0), QByteArray("listening on 127.0.0.1:") + QByteArray::number(port) + " for 3 frames of model Tern");
    // The first turn starts at 0 degrees like every other: all its points.
    QCOMPARE(out.at(1), QByteArray("frame 1: 984 points, motor speed 599 r/min"));
    QVERIFY(out.at(3).startsWith("frame 3: "));

    const QList<QByteArray> lines = csvLines(csv);
    QCOMPARE(lines.size(), 1 + 3 * 984);
    QVERIFY(lines.at(1).startsWith("1,0,"));
    QVERIFY(lines.last().startsWith("3,0,"));

    // The recording is a complete file that convert reads back.
    const Run info = runCli({"info", recording});
    QCOMPARE(info.exitCode, 0);
    QVERIFY(info.out.contains("model:             Tern\n"));
    // Nothing is ever sent back without --lidar.
    QVERIFY(lidar.commands().isEmpty());
}

void CliTest::listenFailsWhenNoFrameArrives()
{
    const quint16 port = testing::freeUdpPort();
    const QString csv = dir_.filePath("silent.csv");
    const Run run =
        runCli({"listen", "--model", "Tern", "--udp", QString("127.0.0.1:%1").arg(port), "--timeout", "0.5", "-o", csv});
    QVERIFY(run.finished);
    QCOMPARE(run.exitCode, 1);
    QCOMPARE(run.errLines().size(), 1);
    QVERIFY2(run.errLines().first().contains(QString("127.0.0.1:%1: no frame of model Tern within 0.5 s").arg(port)),
             run.err.constData());
}

void CliTest::listenReportsAPortInUse()
{
    QUdpSocket blocker;
    QVERIFY(blocker.bind(QHostAddress::LocalHost, 0, QAbstractSocket::DontShareAddress));
    const QString csv = dir_.filePath("busy.csv");
    const QString recording = dir_.filePath("busy.txt");
    const Run run = runCli({"listen", "--model", "Tern", "--udp", QString("127.0.0.1:%1").arg(blocker.localPort()),
                            "--timeout", "5", "-o", csv, "--record", recording});
    QVERIFY(run.finished);
    QCOMPARE(run.exitCode, 1);
    QCOMPARE(run.errLines().size(), 1);
    QVERIFY2(run.errLines().first().contains("cannot listen"), run.err.constData());
    QVERIFY(!QFile::exists(csv));
    QVERIFY(!QFile::exists(recording));
}

void CliTest::listenReadsASerialPort()
{
    testing::PseudoTerminal terminal;
    if (!terminal.isOpen())
        QSKIP("no pseudo-terminal here");
    const QString csv = dir_.filePath("serial.csv");
    QProcess process;
    process.start(cliPath(), {"listen", "--model", "Tern", "--serial", terminal.slaveName(), "--baud", "460800",
                              "--frames", "2", "-o", csv, "--timeout", "20"});
    QVERIFY(process.waitForStarted(5000));
    const QVector<QByteArray> turn = testing::ternRevolutions(1);
    QTimer sender;
    QObject::connect(&sender, &QTimer::timeout, [&] {
        for (const QByteArray& packet : turn)
            terminal.write(packet);
    });
    sender.start(20);
    QVERIFY(testing::waitFor([&] { return process.state() == QProcess::NotRunning; }, 20000));
    sender.stop();
    QCOMPARE(process.exitCode(), 0);
    QCOMPARE(csvLines(csv).size(), 1 + 2 * 984);
}

void CliTest::listenStopsCleanlyWhenTerminated()
{
    const quint16 port = testing::freeUdpPort();
    const QString recording = dir_.filePath("stopped.txt");
    QProcess process;
    process.start(cliPath(), {"listen", "--model", "Tern", "--udp", QString("127.0.0.1:%1").arg(port), "--record",
                              recording, "--timeout", "30"});
    QVERIFY(process.waitForStarted(5000));
    testing::LoopbackLidar lidar;
    const QVector<QByteArray> packets = testing::ternRevolutions(1);
    // Once it says so, the program listens: give it some packets to record.
    QVERIFY(testing::waitFor([&] { return process.canReadLine(); }, 10000));
    QVERIFY(process.readLine().startsWith("listening on"));
    for (const QByteArray& packet : packets.mid(0, 10))
        lidar.send(packet, port);
    QTest::qWait(300);
    process.terminate();
    QVERIFY(process.waitForFinished(10000));
    QCOMPARE(process.exitCode(), 130);
    QVERIFY(process.readAllStandardError().contains("interrupted after 0 of 10 frames"));

    // The ten packets were still written, after the model's name.
    QFile file(recording);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QVector<QByteArray> elements = lidar::readRecordElements(file);
    QCOMPARE(elements.size(), 11);
    QCOMPARE(elements.first(), QByteArray("Tern"));
    QCOMPARE(elements.at(1), packets.at(0));
}

QTEST_MAIN(CliTest)
#include "tst_cli.moc"
