#pragma once
// The recorded data file: one QDataStream-serialised QVector<QByteArray>.
// Element 0 is the model's class name, for Tern_P element 1 its firmware
// version number as decimal text, then the raw packets as they were cut.

#include <QByteArray>
#include <QIODevice>
#include <QString>
#include <QVector>

namespace lidar {

// Reads the element list from `device`. Safe on any input: elements are read
// one by one, so a corrupt count allocates nothing up front, and reading stops
// at the first element that cannot be read, giving an empty list.
QVector<QByteArray> readRecordElements(QIODevice& device);
// The same from a file; an unreadable file gives an empty list.
QVector<QByteArray> readRecordFile(const QString& fileName);
// Elements between the class name and the first packet: 1 for Tern_P (its
// version number), 0 for every other model.
int recordPrefixElements(const QString& model);
// Writes `elements` the way readRecordElements reads them.
bool writeRecordElements(QIODevice& device, const QVector<QByteArray>& elements);

}  // namespace lidar
