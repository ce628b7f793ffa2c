#pragma once
// The scandeck-sim command line: options into SimOptions plus what only the
// program itself needs (record mode, run time).

#include "SimOptions.h"

#include <QString>
#include <QStringList>

namespace sim {

struct SimCommandLine {
    SimOptions options;
    QString recordFile;    // record mode when not empty
    int revolutions = 10;  // record mode
    double seconds = 0.0;  // 0: run until interrupted
};

enum class ParseOutcome { Run, Help, Error };

// `arguments` includes the program name first. On Help, `message` holds the
// help text; on Error, a one-line explanation.
ParseOutcome parseCommandLine(const QStringList& arguments, SimCommandLine* out, QString* message);

}  // namespace sim
