#include "SimRecording.h"

#include "RecordFile.h"
#include "SimScanGenerator.h"

#include <QDataStream>
#include <QDateTime>
#include <QSaveFile>

namespace sim {

qint64 recordingElements(const SimOptions& options, int revolutions,
                         const std::function<void(const QByteArray& element)>& element)
{
    qint64 count = 0;
    const auto add = [&](const QByteArray& bytes) {
        element(bytes);
        ++count;
    };
    for (const QByteArray& header : lidar::recordHeaderElements(modelName(options.model),
                                                                 uint32_t(options.firmware.versionNumber())))
        add(header);

    const qint64 startMs = options.gpsStartMs >= 0 ? options.gpsStartMs : QDateTime::currentMSecsSinceEpoch();
    ScanGenerator generator(options.model, options.seed, startMs * 1000, options.firmware.versionNumber());
    const DeviceState state = initialDeviceState(options.rpm, options.filter);
    const qint64 packets = qint64(revolutions) * generator.layout().packetsPerRevolution + 1;
    for (qint64 i = 0; i < packets; ++i)
        add(generator.nextPacket(state));
    return count;
}

bool writeRecording(const SimOptions& options, int revolutions, const QString& fileName, QString* error)
{
    QSaveFile file(fileName);
    const auto failed = [&] {
        *error = QStringLiteral("cannot write %1: %2").arg(fileName, file.errorString());
        return false;
    };
    if (!file.open(QIODevice::WriteOnly))
        return failed();
    // The count leads the file: a placeholder now, the real one once every
    // element has been written.
    QDataStream out(&file);
    out << qint32(0);
    const qint64 count = recordingElements(options, revolutions, [&out](const QByteArray& element) { out << element; });
    if (out.status() != QDataStream::Ok || count > qint64(INT32_MAX) || !file.seek(0))
        return failed();
    out << qint32(count);
    if (out.status() != QDataStream::Ok || !file.commit())
        return failed();
    return true;
}

}  // namespace sim
