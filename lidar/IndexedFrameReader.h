#pragma once
// Any frame of an indexed recording, decoded when asked for: from the last
// checkpoint before it, or straight on when it follows the frame given
// last. A few frames stay cached, so that stepping back and forth around
// the current frame and reading ahead while playing cost nothing more.

#include "FrameIndex.h"
#include "RecordingCursor.h"

#include <QString>
#include <deque>
#include <memory>

namespace lidar {

class IndexedFrameReader {
public:
    static constexpr int kCachedFrames = 8;
    // Small pieces: a jump reads a few dozen frames, not a megabyte.
    static constexpr int kPieceSize = 64 * 1024;

    IndexedFrameReader(QString fileName, std::shared_ptr<const FrameIndex> index);

    // Frame `number` (0-based, below the index's frame count), and its
    // health when `health` is given. False when it cannot be read: the file
    // changed since it was indexed.
    bool frame(qint64 number, LidarDataPoint_V4& out, FrameHealth* health = nullptr);
    // Decodes frame `number` into the cache, if it is not there yet.
    void readAhead(qint64 number);

    // Frames decoded to answer requests, for the figures of a benchmark.
    qint64 framesDecoded() const { return decoded_; }

private:
    struct Decoded {
        qint64 number = -1;
        LidarDataPoint_V4 frame;
        FrameHealth health;
    };
    bool decode(qint64 number, Decoded& out);
    const Decoded* cached(qint64 number) const;
    void keep(const Decoded& decoded);

    QString fileName_;
    std::shared_ptr<const FrameIndex> index_;
    std::unique_ptr<RecordingCursor> cursor_;
    std::deque<Decoded> cache_;  // newest last
    qint64 decoded_ = 0;
};

}  // namespace lidar
