#pragma once
// What the commands of scandeck-cli share: one-line messages on stderr,
// exit codes, argument conversions and the CSV output file.

#include "AtomicFileWrite.h"
#include "CsvWriter.h"

#include <QFile>
#include <QString>
#include <QStringList>
#include <memory>

class QCommandLineParser;

namespace cli {

enum ExitCode { Success = 0, Failure = 1, UsageError = 2, Interrupted = 130 };

// "scandeck-cli: <message>" on stderr.
void printError(const QString& message);
// "scandeck-cli: <file>: <reason>" on stderr; returns Failure.
int fileError(const QString& fileName, const QString& reason);
// "scandeck-cli <command>: <message> (see scandeck-cli <command> --help)"; returns UsageError.
int usageError(const QString& command, const QString& message);
void printOut(const QString& line);  // a line on stdout
// "1 frame", "3 frames": the count and the noun, plural unless the count is 1.
QString counted(qint64 count, const QString& noun);

// Parses the command's arguments; handles --help. Returns -1 when the
// command should go on, otherwise the exit code to return at once.
int parseCommandLine(QCommandLineParser& parser, const QString& command, const QStringList& arguments,
                     const QString& helpText);
// The same for a command that takes exactly one input file, given back in `input`.
int parseCommandLine(QCommandLineParser& parser, const QString& command, const QStringList& arguments,
                     const QString& helpText, QString& input);

bool toNumber(const QString& text, double& value);  // C locale, finite only
bool toPositiveInt(const QString& text, int& value);
bool toPort(const QString& text, quint16& port);  // 1..65535
// The registered model names, comma separated.
QString modelList();
// "<ip>:<port>" with an IPv4 or IPv6 (in brackets) address and a port 1..65535.
bool toEndpoint(const QString& text, QString& ip, quint16& port);

// A CSV file (or stdout for "-") that appears only complete and on the
// disk: the file is written under a temporary name, and finish() syncs it,
// renames it and syncs its folder.
class CsvOutput {
public:
    bool open(const QString& path, QString& error);
    CsvWriter& writer() { return *writer_; }
    bool finish(QString& error);  // flush, sync and commit
    void discard();               // leave no file behind
    QString path() const { return path_; }

private:
    QString path_;
    std::unique_ptr<lidar::AtomicFileWrite> file_;
    std::unique_ptr<QFile> stdout_;
    std::unique_ptr<CsvWriter> writer_;
};

int runConvert(const QStringList& arguments);
int runInfo(const QStringList& arguments);
int runListen(const QStringList& arguments);
int runRepair(const QStringList& arguments);
int runStats(const QStringList& arguments);

}  // namespace cli
