#include "RecordReader.h"

#include <QIODevice>
#include <algorithm>
#include <limits>

namespace lidar {

RecordReader::RecordReader(QIODevice& device, int pieceSize)
    : device_(device), pieceSize_(std::max(pieceSize, 16))
{
}

bool RecordReader::fill(qint64 bytes)
{
    qint64 available = buffer_.size() - offset_;
    if (available >= bytes)
        return true;
    // An element longer than what is left of a file is damage, found without
    // reading the rest; and no byte array holds more than 2 GB.
    if (!device_.isSequential() && bytes > available + device_.bytesAvailable())
        return false;
    if (bytes > std::numeric_limits<int>::max() - qint64(pieceSize_) - available)
        return false;
    buffer_.remove(0, offset_);
    offset_ = 0;
    while (available < bytes) {
        const int want = int(std::max(bytes - available, qint64(pieceSize_)));
        const int used = buffer_.size();
        buffer_.resize(used + want);
        const qint64 got = std::max<qint64>(device_.read(buffer_.data() + used, want), 0);
        buffer_.resize(used + int(got));
        available += got;
        if (got == 0)
            return false;
    }
    return true;
}

quint32 RecordReader::takeBe32()
{
    const auto* b = reinterpret_cast<const uchar*>(buffer_.constData() + offset_);
    offset_ += 4;
    consumed_ += 4;
    return quint32(b[0]) << 24 | quint32(b[1]) << 16 | quint32(b[2]) << 8 | quint32(b[3]);
}

bool RecordReader::fail(qint64 element, qint64 length)
{
    status_ = Status::Damaged;
    damage_.element = element;
    damage_.length = length;
    const qint64 buffered = buffer_.size() - offset_;
    damage_.remaining = buffered + (device_.isSequential() ? 0 : device_.bytesAvailable());
    buffer_.clear();
    offset_ = 0;
    return false;
}

bool RecordReader::readCount()
{
    if (countRead_)
        return true;
    if (status_ != Status::Reading)
        return false;
    if (!fill(4))
        return fail(-1, -1);
    count_ = takeBe32();
    countRead_ = true;
    return true;
}

bool RecordReader::resumeAt(qint64 offset, quint32 element, quint32 announced)
{
    buffer_.clear();
    offset_ = 0;
    consumed_ = offset;
    countRead_ = true;
    count_ = announced;
    read_ = element;
    status_ = Status::Reading;
    damage_ = Damage();
    return device_.seek(offset);
}

bool RecordReader::next(QByteArray& element)
{
    if (!readCount() || status_ != Status::Reading)
        return false;
    if (read_ == count_) {
        status_ = Status::Complete;
        return false;
    }
    if (!fill(4))
        return fail(read_, -1);
    const quint32 length = takeBe32();
    if (length == 0xFFFFFFFFu) {
        element = QByteArray();
        ++read_;
        return true;
    }
    if (!fill(length))
        return fail(read_, length);
    element = QByteArray(buffer_.constData() + offset_, int(length));
    offset_ += int(length);
    consumed_ += length;
    ++read_;
    return true;
}

}  // namespace lidar
