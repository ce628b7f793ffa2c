#pragma once
// The pass that indexes a recording: on a thread of its own it decodes the
// recording once, front to back, and fills a FrameIndex as it goes, so that
// the first frames can be shown while the rest is still being read. When
// the pass reaches the end, the parse's state goes back to the registry, as
// if the registry's own parse had read the file: the next recording opened
// begins where this one left off.

#include "FrameIndex.h"
#include "RecordingCursor.h"

#include <atomic>
#include <functional>
#include <memory>
#include <thread>

namespace lidar {

class RecordingIndexer {
public:
    // Called on the indexing thread for every frame found, with its number.
    using FrameObserver = std::function<void(qint64 number, const LidarDataPoint_V4& frame)>;

    // `cursor` is open and started at the first packet.
    RecordingIndexer(std::unique_ptr<RecordingCursor> cursor, std::shared_ptr<FrameIndex> index);
    // Stops the pass and waits for it.
    ~RecordingIndexer();
    RecordingIndexer(const RecordingIndexer&) = delete;
    RecordingIndexer& operator=(const RecordingIndexer&) = delete;

    void setFrameObserver(FrameObserver observer) { observer_ = std::move(observer); }
    void start();
    // Asks the pass to stop and waits for it; the index keeps what it found.
    void stop();

private:
    void run();

    std::unique_ptr<RecordingCursor> cursor_;
    std::shared_ptr<FrameIndex> index_;
    FrameObserver observer_;
    std::atomic<bool> stopRequested_{false};
    std::thread thread_;
};

}  // namespace lidar
