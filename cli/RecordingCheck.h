#pragma once
// Opens a recording for the commands and says, in one line, what is wrong
// with it: the streamed decoding itself quietly gives nothing for a missing,
// empty, damaged or foreign file.

#include "RecordingStream.h"

#include <QString>

// Opens `stream`; false with `problem` (one line, without the file name) for
// a file that cannot be opened, is empty or too short, holds no elements,
// ends early, or is of a model that is not registered.
bool openRecording(lidar::RecordingStream& stream, QString& problem);

// The line for a recording that run() found damaged.
QString damageText(const lidar::RecordingStream& stream);
