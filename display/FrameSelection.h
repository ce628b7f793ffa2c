#pragma once
// The first step of showing a frame: coordinates are rounded to the
// centimetre in place (what the view, the table and the CSV file then see)
// and the points inside the selection box are picked out.

#include "measure/IboxSelection.h"
#include "LidarRecords.h"

namespace display {

// Rounds x, y and z of every point of `frame` in place. Returns the rounded
// points inside `box` (none when box is null) under their IDs, in frame
// order, with the frame's ambient value, motor speed and date-time.
lidar::LidarDataPoint_V4 roundAndSelect(lidar::LidarDataPoint_V4& frame, const BoxRange* box);

// The points of an already rounded frame inside `box`, as above, without
// touching the frame.
lidar::LidarDataPoint_V4 selectInBox(const lidar::LidarDataPoint_V4& frame, const BoxRange& box);

}  // namespace display
