#include "BenchSupport.h"

#include "PacketBuilders.h"
#include "RecordFile.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QLocale>
#include <spawn.h>
#include <unistd.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <vector>

extern char** environ;

namespace bench {

Stream buildStream(const QString& model, int revolutions)
{
    Stream s;
    s.packets = testing::revolutionPackets(model, revolutions);
    if (lidar::recordPrefixElements(model) > 0) {
        s.versionNumber = 215;  // the packets carry whole-word distances
        s.recordPrefix.append(QByteArray::number(s.versionNumber));
    }
    return s;
}

bool writeRecording(const QString& path, const QString& model, const Stream& stream)
{
    QFile out(path);
    return out.open(QIODevice::WriteOnly) &&
           lidar::writeRecordElements(out, QVector<QByteArray>{model.toLatin1()} + stream.recordPrefix + stream.packets);
}

double plainReadPacketsPerSecond(const QVector<QByteArray>& packets)
{
    volatile unsigned sink = 0;
    qint64 read = 0;
    QElapsedTimer timer;
    timer.start();
    do {
        unsigned sum = 0;
        for (const QByteArray& packet : packets) {
            const char* bytes = packet.constData();
            for (int i = 0; i < packet.size(); ++i)
                sum += uchar(bytes[i]);
        }
        sink = sink + sum;
        read += packets.size();
    } while (timer.nsecsElapsed() < 300000000);
    return read / (timer.nsecsElapsed() / 1e9);
}

ChildRun runChild(const QString& program, const QStringList& arguments)
{
    ChildRun run;
    std::vector<QByteArray> texts{program.toLocal8Bit()};
    for (const QString& argument : arguments)
        texts.push_back(argument.toLocal8Bit());
    std::vector<char*> argv;
    for (QByteArray& text : texts)
        argv.push_back(text.data());
    argv.push_back(nullptr);

    int pipe[2];
    if (::pipe(pipe) != 0)
        return run;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, pipe[1], 1);
    posix_spawn_file_actions_addclose(&actions, pipe[0]);
    QElapsedTimer timer;
    timer.start();
    pid_t pid = 0;
    const int spawned = posix_spawn(&pid, argv[0], &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    ::close(pipe[1]);
    if (spawned != 0) {
        ::close(pipe[0]);
        return run;
    }
    char buffer[4096];
    for (ssize_t n; (n = ::read(pipe[0], buffer, sizeof buffer)) > 0;)
        run.out.append(buffer, int(n));
    ::close(pipe[0]);
    int status = 0;
    rusage usage{};
    wait4(pid, &status, 0, &usage);
    run.seconds = timer.nsecsElapsed() / 1e9;
    run.peakMiB = usage.ru_maxrss / 1024.0;
    run.ok = WIFEXITED(status) && WEXITSTATUS(status) == 0;
    return run;
}

ChildRun plainReadChild(const QString& file)
{
    return runChild(QCoreApplication::applicationFilePath(), {"--read", file});
}

int readFileAndExit(const QString& file)
{
    QFile in(file);
    if (!in.open(QIODevice::ReadOnly))
        return 1;
    QByteArray piece(1 << 20, '\0');
    volatile unsigned sink = 0;
    for (qint64 n; (n = in.read(piece.data(), piece.size())) > 0;)
        sink = sink + uchar(piece[int(n - 1)]);
    return 0;
}

QString grouped(double value)
{
    QLocale english(QLocale::English);
    return english.toString(qint64(value + 0.5));
}

}  // namespace bench
