#pragma once
// Decoded frames kept in a temporary file instead of memory, for inputs
// whose decoding cannot be taken up again in the middle (a capture runs
// through a live session's stream cutting, IP reassembly and the model's
// program-wide state): they are decoded once, in order, on a thread of
// their own, each frame appended here as it is completed, and read back
// when shown. A frame reads back exactly as it was written. One thread
// appends while another reads.

#include "FrameHealth.h"
#include "LidarRecords.h"

#include <QFile>
#include <QTemporaryFile>
#include <mutex>
#include <vector>

namespace lidar {

class SpilledFrames {
public:
    SpilledFrames();
    // False when no temporary file can be made (errorString()).
    bool open();
    QString errorString() const;

    // Appends a frame and its health; false when it cannot be written (a
    // full disk).
    bool append(const LidarDataPoint_V4& frame, const FrameHealth& health = FrameHealth());
    qint64 count() const;
    // Frame `number`, below count(), and its health when `health` is given.
    bool read(qint64 number, LidarDataPoint_V4& out, FrameHealth* health = nullptr);

    // The bytes of one frame, and back.
    static QByteArray encode(const LidarDataPoint_V4& frame);
    static bool decode(const QByteArray& bytes, LidarDataPoint_V4& out);
    // The bytes of one health record, and back.
    static QByteArray encodeHealth(const FrameHealth& health);
    static bool decodeHealth(const QByteArray& bytes, FrameHealth& out);

private:
    QTemporaryFile writer_;
    QFile reader_;
    mutable std::mutex mutex_;
    std::vector<qint64> ends_;  // where each frame ends in the file
    QString error_;
};

}  // namespace lidar
