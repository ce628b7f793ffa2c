#include "PointTableRow.h"

#include <QCoreApplication>

namespace pointtable {

QStringList headers()
{
    return {QCoreApplication::translate("PointTable", "  ID  "),
            QCoreApplication::translate("PointTable", "    Points_XYZ    "),
            QCoreApplication::translate("PointTable", "   Azimuth  "),
            QCoreApplication::translate("PointTable", "  Distance(m)  "),
            QCoreApplication::translate("PointTable", "  Intensity  "),
            QCoreApplication::translate("PointTable", "  Timestamp")};
}

QStringList rowTexts(int id, const lidar::LidarPoint& point, int precision)
{
    const QString separator = QStringLiteral(",   ");
    const QString xyz = QString::number(double(point.x), 'f', 3) + separator
                        + QString::number(double(point.y), 'f', 3) + separator
                        + QString::number(double(point.z), 'f', precision);
    return {QString::number(id),
            xyz,
            QString::number(double(point.azimuth), 'f', precision),
            QString::number(point.distance / 1000.0, 'f', precision),
            QString::number(point.intensity),
            QString::number(qint64(point.timestamp))};
}

}  // namespace pointtable
