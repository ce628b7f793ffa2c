#pragma once
// The recorded data file: one QDataStream-serialised QVector<QByteArray>.
// Element 0 is the model's class name, for a model whose descriptor says so
// element 1 its firmware version number as decimal text, then the raw
// packets as they were cut.

#include <QByteArray>
#include <QIODevice>
#include <QString>
#include <QVector>
#include <cstdint>

namespace lidar {

// Reads the element list from `device`. Safe on any input: elements are read
// one by one, so a corrupt count allocates nothing up front, and reading stops
// at the first element that cannot be read, giving an empty list.
QVector<QByteArray> readRecordElements(QIODevice& device);
// The same from a file; an unreadable file gives an empty list.
QVector<QByteArray> readRecordFile(const QString& fileName);
// Elements between the class name and the first packet, as the model's
// descriptor gives them; 0 for a model without one.
int recordPrefixElements(const QString& model);
// The elements a recording of `model` begins with: its name and, where
// its descriptor asks for it, `versionNumber` as decimal text.
QVector<QByteArray> recordHeaderElements(const QString& model, uint32_t versionNumber);
// Writes `elements` the way readRecordElements reads them.
bool writeRecordElements(QIODevice& device, const QVector<QByteArray>& elements);

// How a recording's elements lie in its file, found by walking their
// lengths (one sequential read, nothing kept but the first element).
struct RecordLayout {
    bool hasCount = false;    // the file holds at least the element count
    quint32 announced = 0;    // the count at the front
    quint32 complete = 0;     // whole elements, one after the other
    qint64 completeEnd = 0;   // offset just past the last whole element
    qint64 size = 0;          // the file's size
    QByteArray first;         // element 0 (the model name) when it is whole

    // Exactly the elements the count announces and nothing after them.
    bool isWhole() const { return hasCount && complete == announced && completeEnd == size; }
    // A recording cut short: its first element is whole but the count does
    // not describe the file (an unfinished count, or bytes missing).
    bool isCutShort() const { return hasCount && complete > 0 && !isWhole(); }
};
RecordLayout scanRecordFile(const QString& fileName);

// Makes a recording cut short readable again: cuts off an incomplete last
// element and writes the number of whole elements as its count. Returns
// that number, or -1 when the file cannot be read and written or holds no
// whole element (`error` says why). A whole recording is left untouched.
qint64 repairRecordFile(const QString& fileName, QString* error);

}  // namespace lidar
