#include "RecordFile.h"

#include "FileSync.h"
#include "LIdarFactory.h"
#include "RecordReader.h"

#include <QDataStream>
#include <QFile>
#include <QtEndian>

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
    const ModelDescriptor* described = LIdarFactory::GetInstance()->FindModel(model);
    return described ? described->recording.prefixElements() : 0;
}

QVector<QByteArray> recordHeaderElements(const QString& model, uint32_t versionNumber)
{
    QVector<QByteArray> header{model.toLatin1()};
    const ModelDescriptor* described = LIdarFactory::GetInstance()->FindModel(model);
    if (described && described->recording.firmwareVersion)
        header.append(QByteArray::number(versionNumber, 10));
    return header;
}

bool writeRecordElements(QIODevice& device, const QVector<QByteArray>& elements)
{
    QDataStream out(&device);
    out << qint32(elements.size());
    for (const QByteArray& element : elements)
        out << element;
    return out.status() == QDataStream::Ok;
}

RecordLayout scanRecordFile(const QString& fileName)
{
    RecordLayout layout;
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return layout;
    layout.size = file.size();
    char be32[4];
    if (file.read(be32, 4) != 4)
        return layout;
    layout.hasCount = true;
    layout.announced = qFromBigEndian<quint32>(be32);
    layout.completeEnd = 4;
    // Read through rather than seek past each element: one read call per
    // 16 KiB instead of one seek per packet.
    QByteArray skipped;
    while (file.read(be32, 4) == 4) {
        quint32 length = qFromBigEndian<quint32>(be32);
        if (length == 0xFFFFFFFFu)  // a null byte array: no bytes follow
            length = 0;
        // No packet comes near 16 MiB: a length like that is damage.
        if (length > (1u << 24) || layout.completeEnd + 4 + qint64(length) > layout.size)
            break;
        skipped.resize(int(length));
        if (file.read(skipped.data(), length) != qint64(length))
            break;
        if (layout.complete == 0)
            layout.first = skipped;
        ++layout.complete;
        layout.completeEnd += 4 + qint64(length);
    }
    return layout;
}

qint64 repairRecordFile(const QString& fileName, QString* error)
{
    const auto failed = [error](const QString& why) {
        if (error)
            *error = why;
        return qint64(-1);
    };
    QFile file(fileName);
    if (!file.open(QIODevice::ReadWrite))
        return failed(file.errorString());
    file.close();
    const RecordLayout layout = scanRecordFile(fileName);
    if (!layout.hasCount || layout.complete == 0)
        return failed(QStringLiteral("no complete element: not a recording"));
    if (layout.isWhole())
        return layout.complete;
    char count[4];
    qToBigEndian(layout.complete, count);
    if (!file.open(QIODevice::ReadWrite) || !file.resize(layout.completeEnd) || !file.seek(0)
        || file.write(count, 4) != 4 || !file.flush())
        return failed(file.errorString());
    // Repaired on the disk, not only in the page cache, before it says so.
    QString why;
    if (!filesync::syncData(int(file.handle()), &why))
        return failed(why);
    return layout.complete;
}

}  // namespace lidar
