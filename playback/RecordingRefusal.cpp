#include "RecordingRefusal.h"

#include "LIdarFactory.h"
#include "RecordFile.h"

#include <QCoreApplication>

namespace offline {

QString refusalText(const QString& path)
{
    const QString refused = QCoreApplication::translate("OffinePlayWidget", "Unable to parse this file");
    const lidar::RecordLayout layout = lidar::scanRecordFile(path);
    if (!layout.isCutShort() || !LIdarFactory::GetInstance()->parseMap.contains(QString::fromUtf8(layout.first)))
        return refused;
    return refused + QLatin1Char('\n')
           + QCoreApplication::translate("OffinePlayWidget",
                                         "The recording was cut short. \"scandeck-cli repair %1\" makes its "
                                         "complete packets readable again.")
                 .arg(path);
}

}  // namespace offline
