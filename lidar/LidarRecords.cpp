#include "LidarRecords.h"

#include <QVector>

namespace lidar {

void registerMetaTypes()
{
    qRegisterMetaType<lidar::LidarDataPoint_V4>("lidar::LidarDataPoint_V4");
    qRegisterMetaType<lidar::GPSTime>("lidar::GPSTime");
    qRegisterMetaType<QVector<lidar::LidarDataPoint_V4>>("QVector<lidar::LidarDataPoint_V4>");
}

}  // namespace lidar
