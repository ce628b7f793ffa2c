#pragma once
// Keeps a file that is being written on the disk without making its writer
// wait for the disk: a thread of its own syncs the file's data once per
// interval in which something was written (the first time also its folder,
// so that the new file's name survives too). A power cut then loses at most
// about an interval of data, while the writing thread (a session decoding a
// live stream) only ever hands bytes to the page cache.
//
// The writer reports how far it has written with wrote(); the last sync, at
// the end, is the writer's own, after stop().

#include <QString>

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace lidar {

class PeriodicSync {
public:
    // Half a second between rounds: with the time a sync itself takes, what
    // is written reaches the disk within a second.
    static constexpr int kDefaultIntervalMs = 500;

    PeriodicSync() = default;
    ~PeriodicSync();
    PeriodicSync(const PeriodicSync&) = delete;
    PeriodicSync& operator=(const PeriodicSync&) = delete;

    // Starts keeping the open file `fd` at `path` on the disk. It works on a
    // duplicate of `fd`, so the writer may close its own at any time. With
    // an interval of 0 no thread runs and rounds happen only when asked
    // (tests). False when `fd` cannot be duplicated.
    bool start(int fd, const QString& path, int intervalMs = kDefaultIntervalMs);
    // From the writing thread: `totalBytes` have been handed to the file.
    void wrote(quint64 totalBytes) { written_.store(totalBytes, std::memory_order_release); }
    // One round, what the thread does every interval: syncs when something
    // was written since the last sync. False once a sync failed.
    bool round();
    // Ends the thread after the round it is in and lets go of the file.
    void stop();

    bool failed() const { return failed_.load(std::memory_order_acquire); }
    QString errorString() const;
    // Rounds run and syncs made since start(), for tests and benchmarks.
    quint64 rounds() const { return rounds_.load(std::memory_order_acquire); }
    quint64 syncs() const { return syncs_.load(std::memory_order_acquire); }

private:
    void run(int intervalMs);

    mutable std::mutex roundMutex_;  // one round at a time; guards the fields below
    int fd_ = -1;
    QString path_;
    bool folderSynced_ = false;
    quint64 synced_ = 0;
    QString error_;

    std::mutex wakeMutex_;
    std::condition_variable wake_;
    bool stopping_ = false;  // under wakeMutex_
    std::thread thread_;

    std::atomic<quint64> written_{0};
    std::atomic<bool> failed_{false};
    std::atomic<quint64> rounds_{0};
    std::atomic<quint64> syncs_{0};
};

}  // namespace lidar
