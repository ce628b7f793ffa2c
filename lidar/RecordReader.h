#pragma once
// Reads a recording's elements one at a time, front to back, from a device
// read in large pieces: memory stays bounded by the piece size and the
// longest element whatever the recording's length, and the file is read
// once. The elements are exactly those readRecordElements gives (a length of
// FFFFFFFF is a null byte array); a recording that ends before its last
// announced element is damaged, and the reader says where.

#include <QByteArray>
#include <QtGlobal>

class QIODevice;

namespace lidar {

class RecordReader {
public:
    static constexpr int kDefaultPieceSize = 1 << 20;

    enum class Status {
        Reading,   // more elements may follow
        Complete,  // every announced element was read
        Damaged,   // the recording ends early (see damage())
    };

    // Where a damaged recording ends. `element` is the index of the first
    // element that could not be read; `length` its announced length, or -1
    // when the file ends before the element's length (or, for element -1,
    // before the element count); `remaining` the bytes after that length.
    struct Damage {
        qint64 element = -1;
        qint64 length = -1;
        qint64 remaining = 0;
    };

    explicit RecordReader(QIODevice& device, int pieceSize = kDefaultPieceSize);

    // Reads the element count; false when the device holds fewer than four
    // bytes. next() calls it when needed.
    bool readCount();
    // Goes on reading at byte `offset` of the device, where element
    // `element` of a recording announcing `announced` elements begins (as
    // an earlier reader of the same file found them). False when the
    // device cannot seek there.
    bool resumeAt(qint64 offset, quint32 element, quint32 announced);
    // The next element; false at the end of a complete recording or at the
    // damage, with status() telling which.
    bool next(QByteArray& element);

    Status status() const { return status_; }
    Damage damage() const { return damage_; }
    quint32 announcedCount() const { return count_; }
    quint32 elementsRead() const { return read_; }
    // Bytes of the device consumed so far (for progress).
    qint64 position() const { return consumed_; }

private:
    // Makes at least `bytes` unread bytes available; false when the device
    // runs out first.
    bool fill(qint64 bytes);
    bool fail(qint64 element, qint64 length);
    quint32 takeBe32();

    QIODevice& device_;
    int pieceSize_;
    QByteArray buffer_;
    int offset_ = 0;  // first unread byte of buffer_
    qint64 consumed_ = 0;
    bool countRead_ = false;
    quint32 count_ = 0;
    quint32 read_ = 0;
    Status status_ = Status::Reading;
    Damage damage_;
};

}  // namespace lidar
