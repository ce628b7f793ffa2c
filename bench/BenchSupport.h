#pragma once
// What the sections of scandeck-bench share: the packets of a model, the
// plain reads every figure is set beside, child processes measured for time
// and peak memory, and number printing.

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVector>

namespace bench {

// A model's packets, one datagram each: whole turns of 24 packets of 15
// degrees with GPS times 1/240 s apart, as the decoder tests use them.
struct Stream {
    QVector<QByteArray> packets;
    QVector<QByteArray> recordPrefix;  // elements before the packets (Tern_P: its version)
    int versionNumber = 0;             // for a live Tern_P session
};
Stream buildStream(const QString& model, int revolutions);

// Writes a recording of `model` holding `stream`'s packets; false on failure.
bool writeRecording(const QString& path, const QString& model, const Stream& stream);

// Packets per second of reading every byte of `packets` once and doing
// nothing with them: the floor any decoder is measured against.
double plainReadPacketsPerSecond(const QVector<QByteArray>& packets);

// A finished child process: wall time, the child's peak resident memory.
struct ChildRun {
    bool ok = false;  // started and exited with status 0
    double seconds = 0;
    double peakMiB = 0;
    QByteArray out;
};
ChildRun runChild(const QString& program, const QStringList& arguments);

// This program run as a child that only reads `file` front to back in 1 MiB
// pieces (the plain read beside the command-line figures).
ChildRun plainReadChild(const QString& file);
// The child side of it; returns the exit status.
int readFileAndExit(const QString& file);

// "1,234,567" with thousands separators.
QString grouped(double value);

}  // namespace bench
