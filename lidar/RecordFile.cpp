#include "RecordFile.h"

#include "RecordReader.h"

#include <QDataStream>
#include <QFile>

namespace lidar {

QVector<QByteArray> readRecordElements(QIODevice& device)
{
    // Element by element, so that a damaged count allocates nothing up front
    // (QDataStream's own QVector reader reserves it first). Like that reader,
    // an element that cannot be read voids the whole list: a damaged
    // recording is refused rather than played in part.
    QVector<QByteArray> elements;
    RecordReader reader(device);
    QByteArray element;
    while (reader.next(element))
        elements.append(element);
    if (reader.status() != RecordReader::Status::Complete)
        return {};
    return elements;
}

QVector<QByteArray> readRecordFile(const QString& fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return readRecordElements(file);
}

int recordPrefixElements(const QString& model)
{
    return model == QLatin1String("Tern_P") ? 1 : 0;
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
