// The progress line of 'convert' and 'info': on a terminal (here a
// pseudo-terminal as standard error) it is drawn and cleared at the end;
// into a pipe, or with --quiet, nothing but the command's own messages.

#include "CaptureBuilders.h"
#include "PacketBuilders.h"
#include "RecordFile.h"

#include <QBuffer>
#include <QElapsedTimer>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>

#include <cerrno>
#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

namespace {

// A pseudo-terminal passing bytes through as written.
class PseudoTerminal {
public:
    PseudoTerminal()
    {
        master_ = posix_openpt(O_RDWR | O_NOCTTY);
        if (master_ < 0 || grantpt(master_) != 0 || unlockpt(master_) != 0)
            return;
        slave_ = QString::fromLocal8Bit(ptsname(master_));
        const int slave = ::open(ptsname(master_), O_RDWR | O_NOCTTY);
        termios settings{};
        if (slave < 0 || tcgetattr(slave, &settings) != 0)
            return;
        cfmakeraw(&settings);
        tcsetattr(slave, TCSANOW, &settings);
        ::close(slave);
        fcntl(master_, F_SETFL, fcntl(master_, F_GETFL) | O_NONBLOCK);
    }
    ~PseudoTerminal()
    {
        if (master_ >= 0)
            ::close(master_);
    }
    QString slave() const { return slave_; }

    // What has arrived so far.
    QByteArray read()
    {
        QByteArray bytes;
        char piece[4096];
        for (;;) {
            const ssize_t n = ::read(master_, piece, sizeof piece);
            if (n <= 0)
                return bytes;  // EAGAIN: nothing more yet; EIO: no writer left
            bytes.append(piece, int(n));
        }
    }

private:
    int master_ = -1;
    QString slave_;
};

struct Run {
    int exitCode = -1;
    QByteArray out, err;
};

// Runs scandeck-cli with its standard error on a terminal, or into a pipe.
Run runCli(const QStringList& arguments, bool terminal)
{
    PseudoTerminal pty;
    QProcess process;
    if (terminal)
        process.setStandardErrorFile(pty.slave());
    process.start(QDir::current().absoluteFilePath("scandeck-cli"), arguments);
    Run run;
    QElapsedTimer waited;
    waited.start();
    while (!process.waitForFinished(50) && waited.elapsed() < 60000)
        run.err += terminal ? pty.read() : QByteArray();
    if (process.state() != QProcess::NotRunning) {
        process.kill();
        process.waitForFinished(5000);
        return run;
    }
    run.err += terminal ? pty.read() : process.readAllStandardError();
    run.out = process.readAllStandardOutput();
    run.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    return run;
}

}  // namespace

class ProgressTest : public QObject {
    Q_OBJECT
private slots:
    void initTestCase();
    void progressOnATerminalOnly_data();
    void progressOnATerminalOnly();

private:
    QTemporaryDir dir_;
    QString recording_, capture_;
};

void ProgressTest::initTestCase()
{
    // Long enough to be drawn more than once on most machines.
    const QVector<QByteArray> packets = testing::revolutionPackets("Wren_Plus", 3000);
    recording_ = dir_.filePath("rec.txt");
    QFile file(recording_);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QVERIFY(lidar::writeRecordElements(file, QVector<QByteArray>{"Wren_Plus"} + packets));
    file.close();
    QVector<QByteArray> frames;
    for (const QByteArray& packet : packets.mid(0, 24 * 200 + 1))
        frames << testing::ethernet(testing::udp4(2368, packet));
    QFile capture(capture_ = dir_.filePath("cap.pcap"));
    QVERIFY(capture.open(QIODevice::WriteOnly));
    capture.write(testing::captureFile(testing::CaptureFormat::PcapMicroseconds, false, testing::kLinkEthernet, frames));
}

void ProgressTest::progressOnATerminalOnly_data()
{
    QTest::addColumn<QStringList>("arguments");  // the input is added
    QTest::addColumn<bool>("capture");
    QTest::addColumn<bool>("terminal");
    QTest::addColumn<bool>("shown");
    QTest::addColumn<int>("frames");
    const QStringList csv{"convert", "-o", "FILE.csv"}, bag{"convert", "-o", "FILE.bag", "--format", "bag"};
    QTest::newRow("convert to CSV on a terminal") << csv << false << true << true << 3000;
    QTest::newRow("convert to a bag on a terminal") << bag << false << true << true << 3000;
    QTest::newRow("info on a terminal") << QStringList{"info"} << false << true << true << 3000;
    QTest::newRow("info of a capture on a terminal") << QStringList{"info", "--model", "Wren_Plus"} << true << true
                                                     << true << 200;
    QTest::newRow("convert --quiet on a terminal") << csv + QStringList{"--quiet"} << false << true << false << 3000;
    QTest::newRow("info -q on a terminal") << QStringList{"info", "-q"} << false << true << false << 3000;
    QTest::newRow("convert into a pipe") << csv << false << false << false << 3000;
    QTest::newRow("info of a capture into a pipe") << QStringList{"info", "--model", "Wren_Plus"} << true << false
                                                   << false << 200;
}

void ProgressTest::progressOnATerminalOnly()
{
    QFETCH(QStringList, arguments);
    QFETCH(bool, capture);
    QFETCH(bool, terminal);
    QFETCH(bool, shown);
    QFETCH(int, frames);
    arguments.replaceInStrings("FILE", dir_.filePath("out"));
    arguments.insert(1, capture ? capture_ : recording_);
    const Run run = runCli(arguments, terminal);
    QCOMPARE(run.exitCode, 0);
    QVERIFY2(run.out.contains(arguments[0] == "info" ? QStringLiteral("complete frames:   %1\n").arg(frames).toUtf8()
                                                     : QStringLiteral(": %1 frames, ").arg(frames).toUtf8()),
             run.out.constData());
    if (!shown) {
        QVERIFY2(run.err.isEmpty(), run.err.constData());
        return;
    }
    // Each drawing starts at the line's beginning and erases what an older,
    // longer one left; the last erases the line.
    static const QRegularExpression line(
        QStringLiteral("\\rscandeck-cli: (\\d+)% read, (\\d+) frames?, \\d+ frames/s\\x1b\\[K"));
    QVERIFY2(run.err.endsWith("\r\x1b[K"), run.err.constData());
    QString rest = QString::fromLatin1(run.err.left(run.err.size() - 4));
    int lines = 0, lastPercent = 0, lastFrames = 0;
    for (auto match = line.match(rest); match.hasMatch() && match.capturedStart() == 0; match = line.match(rest)) {
        const int percent = match.captured(1).toInt(), count = match.captured(2).toInt();
        QVERIFY(percent >= lastPercent && percent <= 100);
        QVERIFY(count >= lastFrames && count >= 1 && count <= frames);
        lastPercent = percent;
        lastFrames = count;
        rest.remove(0, match.capturedLength());
        ++lines;
    }
    QVERIFY2(lines >= 1 && rest.isEmpty(), run.err.constData());
}

QTEST_MAIN(ProgressTest)
#include "tst_progress.moc"
