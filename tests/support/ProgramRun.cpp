#include "ProgramRun.h"

#include <QDir>
#include <QProcess>

namespace testing {

Run runProgram(const QString& program, const QStringList& arguments, const QString& workingDir, int timeoutMs)
{
    QProcess process;
    process.setWorkingDirectory(workingDir);
    process.start(QDir::current().absoluteFilePath(program), arguments);
    if (!process.waitForFinished(timeoutMs))
        process.kill();  // reported as a crash
    process.waitForFinished(5000);
    const bool ran = process.error() != QProcess::FailedToStart && process.exitStatus() == QProcess::NormalExit;
    return {ran ? process.exitCode() : -1, process.readAllStandardOutput(), process.readAllStandardError()};
}

}  // namespace testing
