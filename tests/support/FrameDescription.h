#pragma once
// Frames as text, one line for a frame's fields and one per channel with
// its points' bytes, so that two lists of frames compare exactly and a
// difference shows where it lies.

#include "LidarRecords.h"

#include <QByteArrayList>
#include <QVector>

namespace testing {

QByteArrayList describe(const QVector<lidar::LidarDataPoint_V4>& frames);
QByteArrayList describe(const lidar::LidarDataPoint_V4& frame);

}  // namespace testing
