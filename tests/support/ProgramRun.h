#pragma once
// Runs one of the build's programs (scandeck-cli, scandeck-sim) as the
// command-line tests do: from the tests' working directory, with a time
// limit after which it is killed and counts as a crash.

#include <QByteArray>
#include <QString>
#include <QStringList>

namespace testing {

struct Run {
    int exitCode = -1;  // -1: crashed or did not finish
    QByteArray out, err;
};

// `program` is found in the current directory; it runs in `workingDir`
// when one is given.
Run runProgram(const QString& program, const QStringList& arguments, const QString& workingDir = QString(),
               int timeoutMs = 60000);

}  // namespace testing
