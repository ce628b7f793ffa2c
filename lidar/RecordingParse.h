#pragma once
// Parses a whole recording into its model's name and frames, as the registry's
// ParseFile does, telling how far it got on the way so that a caller can show
// progress and offer to cancel. The recording is read completely before any
// packet is decoded, so a damaged file changes no decoder state.

#include "LidarRecords.h"

#include <QString>
#include <QVector>
#include <functional>

namespace lidar {

// Called now and then with the share done, in thousandths; returning false
// cancels the parse.
using ParseProgress = std::function<bool(int permille)>;

struct ParsedRecording {
    QString model;                       // empty: no data, or the file could not be read
    QVector<LidarDataPoint_V4> frames;   // empty for an unknown model
    bool cancelled = false;              // progress returned false; nothing else is set
};

ParsedRecording parseRecording(const QString& fileName, const ParseProgress& progress = {});

}  // namespace lidar
