#pragma once
// The sections of scandeck-bench; each prints its table and returns whether
// every target in it was met.

#include <QString>
#include <QStringList>

namespace bench {

bool decodingSection(const QStringList& models);
bool csvSection();
bool recordingSection();
// Decoding while recording, with and without the file kept on the disk.
bool recordingSyncSection(const QStringList& models);

// The child side of the player's index figure: indexes `fileName` as the
// player does and prints its memory and frames; returns the exit status.
int parseAndReport(const QString& fileName);
// The child that writes a ten-minute recording of `model`.
int writeRecordingAndExit(const QString& model, const QString& fileName);

}  // namespace bench
