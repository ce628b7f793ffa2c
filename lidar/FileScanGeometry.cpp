#include "FileScanGeometry.h"

#include "CaptureFile.h"
#include "DecodeCommon.h"
#include "RecordFile.h"
#include "RecordReader.h"

#include <QFile>

namespace lidar {

ScanGeometry recordingScanGeometry(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    constexpr int kPieceSize = 64 * 1024;  // the first packets are enough
    RecordReader reader(file, kPieceSize);
    QByteArray element;
    if (!reader.next(element))
        return {};
    const QString model = QString::fromUtf8(element);
    for (int skip = recordPrefixElements(model); skip > 0; --skip)
        if (!reader.next(element))
            return {};
    while (reader.next(element)) {
        const ScanGeometry geometry = scanGeometry(model, element);
        if (geometry.isValid())
            return geometry;
    }
    return {};
}

ScanGeometry captureScanGeometry(const QString& path, const QString& model, quint16 port)
{
    capture::CaptureFile file;
    if (!file.open(path))
        return {};
    ScanGeometry geometry;
    file.readDatagrams(port, [&](const QByteArray& payload) {
        for (int at = payload.indexOf(decode::kHeader); at >= 0 && !geometry.isValid();
             at = payload.indexOf(decode::kHeader, at + 1))
            geometry = scanGeometry(model, at == 0 ? payload : payload.mid(at));
        return !geometry.isValid();
    });
    return geometry;
}

}  // namespace lidar
