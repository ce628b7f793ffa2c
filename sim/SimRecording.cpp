#include "SimRecording.h"

#include "RecordFile.h"
#include "SimScanGenerator.h"

#include <QDateTime>
#include <QSaveFile>

namespace sim {

QVector<QByteArray> recordingElements(const SimOptions& options, int revolutions)
{
    QVector<QByteArray> elements;
    elements.append(modelName(options.model).toLatin1());
    if (options.model == Model::Tern_P)
        elements.append(QByteArray::number(options.firmware.versionNumber(), 10));

    const qint64 startMs = options.gpsStartMs >= 0 ? options.gpsStartMs : QDateTime::currentMSecsSinceEpoch();
    ScanGenerator generator(options.model, options.seed, startMs * 1000, options.firmware.versionNumber());
    const DeviceState state = initialDeviceState(options.rpm, options.filter);
    const int packets = revolutions * generator.layout().packetsPerRevolution + 1;
    elements.reserve(elements.size() + packets);
    for (int i = 0; i < packets; ++i)
        elements.append(generator.nextPacket(state));
    return elements;
}

bool writeRecording(const SimOptions& options, int revolutions, const QString& fileName, QString* error)
{
    QSaveFile file(fileName);
    if (!file.open(QIODevice::WriteOnly)) {
        *error = QStringLiteral("cannot write %1: %2").arg(fileName, file.errorString());
        return false;
    }
    if (!lidar::writeRecordElements(file, recordingElements(options, revolutions)) || !file.commit()) {
        *error = QStringLiteral("cannot write %1: %2").arg(fileName, file.errorString());
        return false;
    }
    return true;
}

}  // namespace sim
