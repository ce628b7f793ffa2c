#include "PointTableRow.h"

namespace pointtable {

QStringList headers()
{
    return {QStringLiteral("  ID  "),        QStringLiteral("    Points_XYZ    "),
            QStringLiteral("   Azimuth  "),  QStringLiteral("  Distance(m)  "),
            QStringLiteral("  Intensity  "), QStringLiteral("  Timestamp")};
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
