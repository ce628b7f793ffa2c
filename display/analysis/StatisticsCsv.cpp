#include "StatisticsCsv.h"

#include <QIODevice>
#include <cmath>

namespace display {
namespace {

QByteArray number(double value, int decimals)
{
    return std::isnan(value) ? QByteArray() : QByteArray::number(value, 'f', decimals);
}

}  // namespace

QByteArray statisticsCsvHeader()
{
    return QByteArrayLiteral("azimuth,frames,returns,return_rate,mean_m,std_m,min_m,max_m\n");
}

QByteArray statisticsCsvLine(const RangeStatistics& statistics, int bin)
{
    const BinStatistics s = statistics.bin(bin);
    QByteArray line = QByteArray::number(statistics.bins().centre(bin), 'f', 3);
    line += ',' + QByteArray::number(s.frames) + ',' + QByteArray::number(s.returns);
    line += ',' + number(s.returnRate, 4);
    // Mean and deviation carry a tenth of a millimetre; the extremes are
    // whole millimetres as measured.
    line += ',' + number(s.meanM, 4) + ',' + number(s.stdM, 4);
    line += ',' + number(s.minM, 3) + ',' + number(s.maxM, 3) + '\n';
    return line;
}

bool writeStatisticsCsv(const RangeStatistics& statistics, QIODevice& device)
{
    QByteArray text = statisticsCsvHeader();
    for (int bin = 0; bin < statistics.bins().count(); ++bin)
        text += statisticsCsvLine(statistics, bin);
    return device.write(text) == text.size();
}

}  // namespace display
