#pragma once
// The display shows, tabulates and exports coordinates rounded to the
// centimetre; the CSV export of the command-line tool rounds the same way so
// that both give the same files.

#include "LidarRecords.h"

namespace display {

// t = value * 100 in single precision, n = floor(t + 0.5), value = n * 0.01
// in double stored as float: halves go up, also below zero (-0.125 -> -0.12).
float roundCoordinate(float value);

// Rounds x, y and z of every point of the frame in place.
void roundFrameCoordinates(lidar::LidarDataPoint_V4& frame);

}  // namespace display
