#pragma once
// The six cells of one point in the point table: ID, "x,   y,   z",
// azimuth, distance in metres, intensity, timestamp. x and y always carry
// three decimals while z, azimuth and distance follow the precision setting;
// the asymmetry is intended.

#include "LidarRecords.h"

#include <QStringList>

namespace pointtable {

constexpr int kColumnCount = 6;

// The column headers in the current language, spaces as the table shows them.
QStringList headers();

QStringList rowTexts(int id, const lidar::LidarPoint& point, int precision);

}  // namespace pointtable
