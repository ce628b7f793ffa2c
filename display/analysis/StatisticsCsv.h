#pragma once
// The range statistics as a table, one line per direction:
//
//   azimuth,frames,returns,return_rate,mean_m,std_m,min_m,max_m
//   0.000,100,200,1.0000,5.0012,0.0101,4.971,5.030
//
// azimuth: the direction's centre in degrees; return_rate: the share of
// frames with a return; ranges in metres, empty where the direction never
// returned (and return_rate empty before any frame). Lines end in a line
// feed; numbers use a point, whatever the locale.

#include "RangeStatistics.h"

#include <QByteArray>

class QIODevice;

namespace display {

QByteArray statisticsCsvHeader();  // with its line feed
QByteArray statisticsCsvLine(const RangeStatistics& statistics, int bin);
// The header and every direction's line; false when the device refuses them.
bool writeStatisticsCsv(const RangeStatistics& statistics, QIODevice& device);

}  // namespace display
