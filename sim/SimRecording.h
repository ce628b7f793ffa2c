#pragma once
// Record mode: a recording of the simulated lidar in the viewer's recorded
// file format, made without any link and without waiting for real time.

#include "SimOptions.h"

#include <QByteArray>
#include <QString>
#include <QVector>

namespace sim {

// The file's elements: the model's class name, for Tern_P the firmware
// version number as decimal text, then the packets of `revolutions` whole
// revolutions and the first packet of the next, which is what tells a
// decoder that the last revolution is complete. Faults are not applied: a
// recording holds the packets a decoder accepted.
QVector<QByteArray> recordingElements(const SimOptions& options, int revolutions);

// Writes those elements to `fileName`; false with a message on failure.
bool writeRecording(const SimOptions& options, int revolutions, const QString& fileName, QString* error);

}  // namespace sim
