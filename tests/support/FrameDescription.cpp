#include "FrameDescription.h"

#include <QString>

namespace testing {

QByteArrayList describe(const lidar::LidarDataPoint_V4& frame)
{
    QByteArrayList lines;
    lines << QString("%1 %2 %3").arg(frame.ambient).arg(frame.motorSpeed).arg(frame.dateTime).toLatin1();
    for (auto line = frame.points.constBegin(); line != frame.points.constEnd(); ++line)
        lines << QByteArray::number(line.key()) +
                     QByteArray(reinterpret_cast<const char*>(line.value().data()),
                                int(line.value().size() * sizeof(lidar::LidarPoint)))
                         .toHex();
    return lines;
}

QByteArrayList describe(const QVector<lidar::LidarDataPoint_V4>& frames)
{
    QByteArrayList lines;
    for (const auto& frame : frames)
        lines << describe(frame);
    return lines;
}

}  // namespace testing
