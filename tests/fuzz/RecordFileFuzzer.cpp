// The recorded-file reader fed arbitrary bytes, read in pieces of arbitrary
// size (from the end of the input). It must give exactly what QDataStream
// reads element by element: the same elements, null or not, and damage
// exactly where QDataStream fails.

#include "FuzzChecks.h"
#include "RecordFile.h"
#include "RecordReader.h"

#include <QBuffer>
#include <QDataStream>

namespace {

// QDataStream reading one element at a time: what recordings are written with.
QVector<QByteArray> referenceRead(const QByteArray& bytes, bool& complete)
{
    QDataStream in(bytes);
    QVector<QByteArray> elements;
    quint32 count = 0;
    in >> count;
    complete = in.status() == QDataStream::Ok;
    for (quint32 i = 0; complete && i < count; ++i) {
        QByteArray element;
        in >> element;
        complete = in.status() == QDataStream::Ok;
        if (complete)
            elements.append(element);
    }
    return elements;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    FuzzedDataProvider input(data, size);
    const int piece = input.ConsumeIntegralInRange<int>(1, 4096);
    QByteArray bytes = fuzzing::takeBytes(input, input.remaining_bytes());

    bool complete = false;
    const QVector<QByteArray> expected = referenceRead(bytes, complete);

    QBuffer device(&bytes);
    device.open(QIODevice::ReadOnly);
    lidar::RecordReader reader(device, piece);
    QVector<QByteArray> elements;
    QByteArray element;
    while (reader.next(element))
        elements.append(element);
    fuzzing::require(elements == expected, "the same elements");
    for (int i = 0; i < elements.size(); ++i)
        fuzzing::require(elements[i].isNull() == expected[i].isNull(), "null elements stay null");
    fuzzing::require((reader.status() == lidar::RecordReader::Status::Complete) == complete,
                     "damage where QDataStream fails");
    if (!complete) {
        // A file too short for the count is damaged before element 0.
        const qint64 where = bytes.size() < 4 ? -1 : qint64(elements.size());
        fuzzing::require(reader.damage().element == where, "damage at the first element that cannot be read");
    }

    device.seek(0);
    fuzzing::require(lidar::readRecordElements(device) == (complete ? expected : QVector<QByteArray>()),
                     "a damaged recording is refused whole");
    return 0;
}
