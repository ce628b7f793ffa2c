#include "RecordFile.h"

#include <QDataStream>
#include <QFile>

namespace lidar {

QVector<QByteArray> readRecordElements(QIODevice& device)
{
    QVector<QByteArray> elements;
    QDataStream in(&device);
    quint32 count = 0;
    in >> count;
    // QDataStream's own QVector reader reserves the stored count first, which
    // a damaged count turns into gigabytes; read element by element instead.
    // Like that reader, an element that cannot be read voids the whole list:
    // a damaged recording is refused rather than played in part.
    for (quint32 i = 0; i < count; ++i) {
        QByteArray element;
        in >> element;
        if (in.status() != QDataStream::Ok)
            return {};
        elements.append(element);
    }
    return elements;
}

QVector<QByteArray> readRecordFile(const QString& fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return readRecordElements(file);
}

bool writeRecordElements(QIODevice& device, const QVector<QByteArray>& elements)
{
    QDataStream out(&device);
    out << qint32(elements.size());
    for (const QByteArray& element : elements)
        out << element;
    return out.status() == QDataStream::Ok;
}

}  // namespace lidar
