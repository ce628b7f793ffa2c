#include "CaptureIndexer.h"

#include <QCoreApplication>
#include <QFileInfo>

namespace lidar {

CaptureIndexer::CaptureIndexer(QString path, capture::CaptureOptions options)
    : path_(std::move(path)), options_(std::move(options)), size_(QFileInfo(path_).size())
{
}

CaptureIndexer::~CaptureIndexer()
{
    stop();
}

bool CaptureIndexer::start()
{
    if (!frames_.open())
        return false;
    thread_ = std::thread([this] { run(); });
    return true;
}

void CaptureIndexer::stop()
{
    stopRequested_ = true;
    if (thread_.joinable())
        thread_.join();
}

capture::CaptureFramesResult CaptureIndexer::result() const
{
    std::lock_guard<std::mutex> lock(resultMutex_);
    return result_;
}

void CaptureIndexer::run()
{
    FrameHealth health;  // of the frame about to come
    capture::CaptureFramesResult result = capture::readCaptureFrames(
        path_, options_,
        [this, &health](LidarDataPoint_V4& frame) {
            if (!frames_.append(frame, health)) {
                spillFailed_ = true;
                return false;
            }
            health_.append(health);
            return !stopRequested_.load(std::memory_order_relaxed);
        },
        [this](qint64 read) { bytesRead_.store(read, std::memory_order_relaxed); },
        [&health](const FrameHealth& h, const StreamTotals&) { health = h; });
    if (spillFailed_)
        result.warnings << QCoreApplication::translate("CaptureFile",
                                                       "The decoded frames could not be kept (%1): the capture "
                                                       "plays up to frame %2")
                               .arg(frames_.errorString())
                               .arg(frames_.count());
    bytesRead_.store(size_, std::memory_order_relaxed);
    {
        std::lock_guard<std::mutex> lock(resultMutex_);
        result_ = std::move(result);
    }
    finished_.store(true, std::memory_order_release);
}

}  // namespace lidar
