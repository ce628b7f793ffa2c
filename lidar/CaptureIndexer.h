#pragma once
// A capture made ready to be shown frame by frame without holding its
// frames: on a thread of its own it is decoded once, in order, exactly as
// readCaptureFrames decodes it, and every frame goes to a temporary file
// (SpilledFrames) from which the window reads the frame it shows.

#include "CaptureFrames.h"
#include "HealthIndex.h"
#include "SpilledFrames.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <thread>

namespace lidar {

class CaptureIndexer {
public:
    CaptureIndexer(QString path, capture::CaptureOptions options);
    // Stops the pass and waits for it.
    ~CaptureIndexer();
    CaptureIndexer(const CaptureIndexer&) = delete;
    CaptureIndexer& operator=(const CaptureIndexer&) = delete;

    // Makes the temporary file and starts the pass; false when no
    // temporary file can be made (error()).
    bool start();
    void stop();

    // Each frame read back with its full health: frames().read(k, frame, &health).
    SpilledFrames& frames() { return frames_; }
    // The health of each frame decoded so far, small, for the slider and
    // the jumps to incomplete frames.
    const HealthIndex& health() const { return health_; }
    bool isFinished() const { return finished_.load(std::memory_order_acquire); }
    // Bytes of the capture read so far, and its size.
    qint64 bytesRead() const { return bytesRead_.load(std::memory_order_relaxed); }
    qint64 fileSize() const { return size_; }
    // Once finished: what readCaptureFrames reported.
    capture::CaptureFramesResult result() const;
    QString error() const { return frames_.errorString(); }

private:
    void run();

    QString path_;
    capture::CaptureOptions options_;
    qint64 size_ = 0;
    SpilledFrames frames_;
    HealthIndex health_;
    std::atomic<bool> stopRequested_{false};
    std::atomic<bool> finished_{false};
    std::atomic<qint64> bytesRead_{0};
    mutable std::mutex resultMutex_;
    capture::CaptureFramesResult result_;
    bool spillFailed_ = false;
    std::thread thread_;
};

}  // namespace lidar
