#pragma once
// What the analysis tools need to know of the frames on screen: the model
// that sends them, its angular step (the directions a reference or the
// statistics are binned by) and, while a recording plays, where its frames
// can be read ahead of the display.

#include "LidarRecords.h"

#include <QString>
#include <functional>

class PlayerFrames;

struct ScanSource {
    QString model;             // empty: nothing connected or loaded
    double angularStep = 0.0;  // degrees; 0: unknown
    PlayerFrames* recording = nullptr;  // the player's frames; null live
    int position = 0;                   // the frame on screen in the recording, 0-based

    bool isKnown() const { return !model.isEmpty() && angularStep > 0.0; }
};

using ScanSourceQuery = std::function<ScanSource()>;

namespace scansource {

// The angular step read off a frame, for a source that cannot tell it (a
// capture, a recording whose first packet is damaged): the median of the
// gaps between neighbouring azimuths, so that a few missing points or a
// second channel on the same azimuths do not move it. 0 with fewer than
// three distinct azimuths.
double stepOfFrame(const lidar::LidarDataPoint_V4& frame);

}  // namespace scansource
