// Ten-minute recordings read by scandeck-cli (info, convert) and indexed as
// the player indexes them, each in a child process measured for time and
// peak memory, beside a child that only reads the file.

#include "BenchSections.h"
#include "BenchSupport.h"
#include "FrameIndex.h"
#include "LIdarFactory.h"
#include "RecordingIndexer.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QThread>
#include <cstdio>

namespace bench {
namespace {

constexpr double kTargetCliPeakMiB = 100.0;
constexpr double kTargetIndexPeakMiB = 150.0;
// Ten minutes at 15 revolutions a second, 24 packets each.
constexpr int kRevolutionsIn10Minutes = 9000;

qint64 statusKilobytes(const char* field)
{
    QFile status("/proc/self/status");
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    for (const QByteArray& line : status.readAll().split('\n'))
        if (line.startsWith(field))
            return line.mid(int(qstrlen(field))).trimmed().split(' ').first().toLongLong();
    return -1;
}

void printRun(const char* model, const char* what, const ChildRun& run, const QString& remark)
{
    if (!run.ok) {
        std::printf("%-10s %-14s failed\n", model, what);
        return;
    }
    std::printf("%-10s %-14s %8.2f %10.1f   %s\n", model, what, run.seconds, run.peakMiB, qPrintable(remark));
}

}  // namespace

int parseAndReport(const QString& fileName)
{
    const qint64 baselineKb = statusKilobytes("VmHWM:");
    auto cursor = std::make_unique<lidar::RecordingCursor>(fileName);
    if (!cursor->open() || !cursor->startFromRegistry())
        return 1;
    auto index = std::make_shared<lidar::FrameIndex>();
    lidar::RecordingIndexer indexer(std::move(cursor), index);
    indexer.start();
    while (!index->isFinished())
        QThread::msleep(1);
    std::printf("%lld %lld %lld\n", (long long)baselineKb, (long long)statusKilobytes("VmHWM:"),
                (long long)index->frames());
    return index->frames() > 0 ? 0 : 1;
}

int writeRecordingAndExit(const QString& model, const QString& fileName)
{
    return writeRecording(fileName, model, buildStream(model, kRevolutionsIn10Minutes)) ? 0 : 1;
}

bool recordingSection()
{
    // A child's peak memory counts what its parent held when it was started,
    // so the children are started from this small process, and the
    // recordings written by children of their own.
    if (!QCoreApplication::arguments().contains("--recordings")) {
        const ChildRun section = runChild(QCoreApplication::applicationFilePath(), {"--recordings"});
        std::fputs(section.out.constData(), stdout);
        return section.ok;
    }
    const QString self = QCoreApplication::applicationFilePath();
    const QString cli = QCoreApplication::applicationDirPath() + "/scandeck-cli";
    std::printf("\nTen-minute recordings (%s packets each), every figure from a child process: scandeck-cli info\n"
                "and convert (target: peak memory below %.0f MiB), and the player's index of the file (target:\n"
                "peak at most %.0f MiB above its start), beside a child that only reads the file front to back\n"
                "in 1 MiB pieces.\n\n",
                qPrintable(grouped(kRevolutionsIn10Minutes * 24 + 1)), kTargetCliPeakMiB, kTargetIndexPeakMiB);
    std::printf("%-10s %-14s %8s %10s\n", "model", "", "time s", "peak MiB");
    QTemporaryDir dir;
    bool allMet = true;
    for (const QString model : {"Tern", "Wren_Plus"}) {
        const QByteArray name = model.toLatin1();
        const QString file = dir.filePath(model + ".txt");
        if (!runChild(self, {"--write", model, file}).ok) {
            std::printf("cannot write %s\n", qPrintable(file));
            return false;
        }
        const ChildRun plain = plainReadChild(file);
        printRun(name, "plain read", plain, QString("%1 MiB file").arg(QFileInfo(file).size() / 1048576.0, 0, 'f', 1));

        if (QFileInfo::exists(cli)) {
            const ChildRun info = runChild(cli, {"info", file});
            const bool infoOk = info.ok && info.peakMiB < kTargetCliPeakMiB;
            printRun(name, "cli info", info, QString("%1 the read's time").arg(info.seconds / plain.seconds, 0, 'f', 1) +
                                                  (infoOk ? "  ok" : "  MISSED"));
            const QString csv = dir.filePath(model + ".csv");
            const ChildRun convert = runChild(cli, {"convert", file, "-o", csv});
            const QRegularExpressionMatch written =
                QRegularExpression(" (\\d+) points").match(QString::fromLocal8Bit(convert.out));
            const double points = written.hasMatch() ? written.captured(1).toDouble() : 0.0;
            const bool convertOk = convert.ok && convert.peakMiB < kTargetCliPeakMiB;
            printRun(name, "cli convert", convert,
                     QString("%1 points/s, %2 MiB of CSV").arg(grouped(points / convert.seconds))
                             .arg(QFileInfo(csv).size() / 1048576.0, 0, 'f', 0) +
                         (convertOk ? "  ok" : "  MISSED"));
            QFile::remove(csv);
            allMet = allMet && infoOk && convertOk;
        } else {
            std::printf("%-10s (no %s: build it to measure the command-line tool)\n", name.constData(),
                        qPrintable(cli));
        }

        ChildRun parse = runChild(self, {"--parse", file});
        const QList<QByteArray> f = parse.out.trimmed().split(' ');
        if (!parse.ok || f.size() < 3) {
            printRun(name, "player index", parse, {});
            allMet = false;
            continue;
        }
        parse.peakMiB = f[1].toDouble() / 1024.0;  // its own, from before its start
        const double used = parse.peakMiB - f[0].toDouble() / 1024.0;
        const bool parseOk = used <= kTargetIndexPeakMiB;
        printRun(name, "player index", parse,
                 QString("%1 frames; peak above start %2 MiB  %3")
                     .arg(QString(f[2]))
                     .arg(used, 0, 'f', 1)
                     .arg(parseOk ? "ok" : "MISSED"));
        allMet = allMet && parseOk;
    }
    std::fflush(stdout);
    return allMet;
}

}  // namespace bench
