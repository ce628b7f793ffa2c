#include "PeriodicSync.h"

#include "FileSync.h"

#include <fcntl.h>
#include <unistd.h>

namespace lidar {

PeriodicSync::~PeriodicSync()
{
    stop();
}

bool PeriodicSync::start(int fd, const QString& path, int intervalMs)
{
    stop();
    std::lock_guard<std::mutex> lock(roundMutex_);
    fd_ = ::fcntl(fd, F_DUPFD_CLOEXEC, 0);
    if (fd_ < 0)
        return false;
    path_ = path;
    folderSynced_ = false;
    synced_ = 0;
    error_.clear();
    written_.store(0, std::memory_order_relaxed);
    failed_.store(false, std::memory_order_relaxed);
    rounds_.store(0, std::memory_order_relaxed);
    syncs_.store(0, std::memory_order_relaxed);
    {
        std::lock_guard<std::mutex> wakeLock(wakeMutex_);
        stopping_ = false;
    }
    if (intervalMs > 0)
        thread_ = std::thread([this, intervalMs] { run(intervalMs); });
    return true;
}

void PeriodicSync::run(int intervalMs)
{
    std::unique_lock<std::mutex> lock(wakeMutex_);
    while (!wake_.wait_for(lock, std::chrono::milliseconds(intervalMs), [this] { return stopping_; })) {
        lock.unlock();
        const bool ok = round();
        lock.lock();
        if (!ok)
            return;  // the writer finds out through failed()
    }
}

bool PeriodicSync::round()
{
    std::lock_guard<std::mutex> lock(roundMutex_);
    if (fd_ < 0 || failed_.load(std::memory_order_relaxed))
        return false;
    const quint64 written = written_.load(std::memory_order_acquire);
    bool ok = true;
    if (written != synced_) {
        ok = filesync::syncData(fd_, &error_);
        if (ok) {
            synced_ = written;
            syncs_.fetch_add(1, std::memory_order_release);
        }
    }
    if (ok && !folderSynced_ && synced_ > 0) {
        ok = filesync::syncFolderOf(path_, &error_);
        folderSynced_ = ok;
    }
    if (!ok)
        failed_.store(true, std::memory_order_release);
    rounds_.fetch_add(1, std::memory_order_release);
    return ok;
}

QString PeriodicSync::errorString() const
{
    std::lock_guard<std::mutex> lock(roundMutex_);
    return error_;
}

void PeriodicSync::stop()
{
    {
        std::lock_guard<std::mutex> lock(wakeMutex_);
        stopping_ = true;
    }
    wake_.notify_all();
    if (thread_.joinable())
        thread_.join();
    std::lock_guard<std::mutex> lock(roundMutex_);
    if (fd_ >= 0)
        ::close(fd_);
    fd_ = -1;
}

}  // namespace lidar
