#pragma once
// Record mode: a recording of the simulated lidar in the viewer's recorded
// file format, made without any link and without waiting for real time.

#include "SimOptions.h"

#include <QByteArray>
#include <QString>
#include <functional>

namespace sim {

// The file's elements in order, handed to `element` one at a time: the
// header elements the model's descriptor asks for (its class name, and the
// firmware version number where its recordings carry one), then the
// packets of `revolutions` whole revolutions and the first packet of the
// next, which is what tells a decoder that the last revolution is complete. Faults are not applied: a recording holds the
// packets a decoder accepted. Returns the number of elements.
qint64 recordingElements(const SimOptions& options, int revolutions,
                         const std::function<void(const QByteArray& element)>& element);

// Writes those elements to `fileName` as they are made, so that a long
// recording costs no memory; false with a message on failure.
bool writeRecording(const SimOptions& options, int revolutions, const QString& fileName, QString* error);

}  // namespace sim
