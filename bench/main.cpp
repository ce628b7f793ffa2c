// scandeck-bench: every speed and memory figure of the core, each beside a
// plain read of the same bytes, so that the figures mean something on any
// machine: decoding of every model live and offline, CSV writing, and
// ten-minute recordings through scandeck-cli and the player's index.
//
//   scandeck-bench                 everything
//   scandeck-bench --model <name>  one model's decoding only (for profiling)
//   scandeck-bench --csv           CSV writing only
//   scandeck-bench --recording-sync  decoding while recording, synced or not
//   scandeck-bench --parse <file>  (internal) the player's index of one recording
//   scandeck-bench --read <file>   (internal) a plain read of one file
//   scandeck-bench --write <model> <file>  (internal) writes a ten-minute recording
//   scandeck-bench --recordings    (internal) the recordings section alone

#include "BenchSections.h"
#include "BenchSupport.h"
#include "LIdarFactory.h"

#include <QCoreApplication>
#include <cstdio>

int main(int argc, char* argv[])
{
    QCoreApplication app(argc, argv);
    const QStringList args = QCoreApplication::arguments();
    int code = -1;
    if (args.size() == 3 && args[1] == QLatin1String("--parse"))
        code = bench::parseAndReport(args[2]);
    else if (args.size() == 3 && args[1] == QLatin1String("--read"))
        code = bench::readFileAndExit(args[2]);
    else if (args.size() == 4 && args[1] == QLatin1String("--write"))
        code = bench::writeRecordingAndExit(args[2], args[3]);
    else if (args.size() == 2 && args[1] == QLatin1String("--recordings"))
        code = bench::recordingSection() ? 0 : 1;
    if (code >= 0) {
        LIdarFactory::GetInstance()->Shutdown();
        return code;
    }

    bool allMet = true;
    if (args.size() == 2 && args[1] == QLatin1String("--csv")) {
        allMet = bench::csvSection();
    } else if (args.size() == 2 && args[1] == QLatin1String("--recording-sync")) {
        allMet = bench::recordingSyncSection({"Tern", "Wren_Plus"});
    } else if (args.size() == 3 && args[1] == QLatin1String("--model")) {
        allMet = bench::decodingSection({args[2]});
    } else {
        allMet = bench::decodingSection(LIdarFactory::GetInstance()->ModelNames());
        allMet = bench::recordingSyncSection({"Tern", "Wren_Plus"}) && allMet;
        allMet = bench::csvSection() && allMet;
        allMet = bench::recordingSection() && allMet;
    }
    std::printf("\n%s\n", allMet ? "All targets met." : "Some targets MISSED.");
    LIdarFactory::GetInstance()->Shutdown();
    return 0;
}
