#pragma once
// Writes a recording while it is being made: the count and the header
// elements (the model name, for Tern_P its firmware version) when it
// starts, each packet as it is cut, and at the end the element count in
// place at the front. The bytes are those of a list written in one go.
//
// Until the end the count reads 0xFFFFFFFF, so a recording cut short by a
// crash or a power loss is seen as unfinished; repairRecording() restores
// its complete elements. Packets are collected in memory and handed to the
// file once per arrival of bytes (or every 64 KiB), one write each.
//
// Handing bytes to the file puts them in the system's page cache only; a
// thread of the writer's own (PeriodicSync) puts them on the disk every half
// second while the recording grows, so a power cut costs at most about a
// second of it, and the writing thread never waits for the disk. finish()
// syncs the file and its folder before it returns.

#include "PeriodicSync.h"

#include <QByteArray>
#include <QString>
#include <QVector>
#include <atomic>

class QFile;

namespace lidar {

// How far a running recording has got: packets and bytes in the file (the
// packets of an arrival reach it once the arrival is cut).
struct RecordingCounts {
    quint64 packets = 0;
    quint64 bytes = 0;  // the file's size, count and header included
};

class RecordingWriter {
public:
    explicit RecordingWriter(QFile& file) : file_(file) {}

    // Truncates `fileName` and writes the unfinished count and `header`.
    // The data is synced every `syncIntervalMs` (0: only at the end).
    bool start(const QString& fileName, const QVector<QByteArray>& header,
               int syncIntervalMs = PeriodicSync::kDefaultIntervalMs);
    // Adds one packet; it reaches the file with the next writePending().
    void append(const char* data, int size);
    // Hands the collected packets to the file. False once a write failed:
    // from then on nothing more is written.
    bool writePending();
    // Writes what is left and the count, with `header` in place of the one
    // written at the start if it changed, syncs the file and its folder
    // and closes the file. After a
    // failed write the file is cut back to the packets written whole before
    // it, which are kept. False when the recording is not complete.
    bool finish(const QVector<QByteArray>& header);
    // Ends the recording without keeping it: nothing more is written and
    // the file is left empty, as a recording that was never saved is.
    void abandon();

    bool isOpen() const { return open_; }
    bool failed() const { return failed_; }
    QString errorString() const { return error_; }
    // The syncing of the running recording (its counts, for tests and benchmarks).
    const PeriodicSync& periodicSync() const { return sync_; }
    // Packets that are in the file (or will be with the next write).
    quint32 packetCount() const { return failed_ ? writtenPackets_ : writtenPackets_ + pendingPackets_; }
    // What is in the file, safe to read from any thread while the writer's
    // own thread records.
    RecordingCounts counts() const
    {
        return {countedPackets_.load(std::memory_order_relaxed), countedBytes_.load(std::memory_order_relaxed)};
    }

    // The count a recording carries until it is finished.
    static constexpr quint32 kUnfinishedCount = 0xFFFFFFFFu;

private:
    bool fail();
    bool fail(const QString& error);
    bool syncAndClose();
    bool replaceHeader(const QVector<QByteArray>& header);
    void publishCounts();

    QFile& file_;
    QVector<QByteArray> header_;
    QByteArray pending_;
    qint64 written_ = 0;  // bytes in the file, ending after a whole element
    quint32 writtenPackets_ = 0;
    quint32 pendingPackets_ = 0;
    bool open_ = false;
    bool failed_ = false;
    QString error_;
    PeriodicSync sync_;
    // Copies of the counts above for readers on other threads.
    std::atomic<quint64> countedPackets_{0};
    std::atomic<quint64> countedBytes_{0};
};

}  // namespace lidar
