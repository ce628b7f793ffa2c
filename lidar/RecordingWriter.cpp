#include "RecordingWriter.h"

#include "AtomicFileWrite.h"
#include "FileSync.h"

#include <QFile>
#include <QtEndian>

namespace lidar {

namespace {

constexpr int kWriteThreshold = 64 * 1024;

void appendBe32(QByteArray& out, quint32 value)
{
    char bytes[4];
    qToBigEndian(value, bytes);
    out.append(bytes, 4);
}

// Elements as QDataStream writes a QByteArray: a 32-bit length, the bytes.
QByteArray encodeElements(const QVector<QByteArray>& elements)
{
    QByteArray out;
    for (const QByteArray& element : elements) {
        appendBe32(out, element.isNull() ? 0xFFFFFFFFu : quint32(element.size()));
        out.append(element);
    }
    return out;
}

}  // namespace

bool RecordingWriter::start(const QString& fileName, const QVector<QByteArray>& header, int syncIntervalMs)
{
    sync_.stop();
    if (file_.isOpen())
        file_.close();
    header_ = header;
    pending_.clear();
    pending_.reserve(kWriteThreshold + 4096);
    written_ = 0;
    writtenPackets_ = pendingPackets_ = 0;
    publishCounts();
    failed_ = false;
    error_.clear();
    open_ = false;
    file_.setFileName(fileName);
    // Unbuffered: what writePending() hands over is in the file at once.
    if (!file_.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Unbuffered)) {
        error_ = file_.errorString();
        return false;
    }
    if (!sync_.start(int(file_.handle()), fileName, syncIntervalMs)) {
        error_ = QStringLiteral("cannot keep %1 on the disk").arg(fileName);
        file_.close();
        return false;
    }
    open_ = true;
    appendBe32(pending_, kUnfinishedCount);
    pending_.append(encodeElements(header));
    if (!writePending()) {
        sync_.stop();
        file_.close();
        open_ = false;
        return false;
    }
    return true;
}

void RecordingWriter::append(const char* data, int size)
{
    if (!open_ || failed_)
        return;
    appendBe32(pending_, quint32(size));
    pending_.append(data, size);
    ++pendingPackets_;
    if (pending_.size() >= kWriteThreshold)
        writePending();
}

bool RecordingWriter::writePending()
{
    if (failed_)
        return false;
    if (pending_.isEmpty())
        return true;
    // A write cut short is tried again for the rest, which then says why.
    for (qint64 done = 0; done < pending_.size();) {
        const qint64 n = file_.write(pending_.constData() + done, pending_.size() - done);
        if (n <= 0)
            return fail();
        done += n;
    }
    written_ += pending_.size();
    writtenPackets_ += pendingPackets_;
    pendingPackets_ = 0;
    pending_.resize(0);  // the reserved capacity stays
    publishCounts();
    sync_.wrote(quint64(written_));
    // The disk refused what was written before (an I/O error): it is lost.
    if (sync_.failed())
        return fail(sync_.errorString());
    return true;
}

void RecordingWriter::publishCounts()
{
    countedPackets_.store(packetCount(), std::memory_order_relaxed);
    countedBytes_.store(quint64(written_) + quint64(pending_.size()), std::memory_order_relaxed);
}

bool RecordingWriter::fail()
{
    return fail(file_.errorString());
}

bool RecordingWriter::fail(const QString& error)
{
    failed_ = true;
    error_ = error;
    pending_.resize(0);
    pendingPackets_ = 0;
    publishCounts();
    return false;
}

bool RecordingWriter::finish(const QVector<QByteArray>& header)
{
    if (!open_)
        return false;
    open_ = false;
    sync_.stop();
    writePending();
    // A write that failed half-way leaves part of an element behind.
    if (failed_)
        file_.resize(written_);
    QByteArray count;
    appendBe32(count, quint32(header_.size()) + writtenPackets_);
    bool ok = file_.seek(0) && file_.write(count) == 4;
    if (ok && !failed_ && header != header_) {
        const QByteArray before = encodeElements(header_), after = encodeElements(header);
        if (after.size() == before.size()) {
            ok = file_.seek(4) && file_.write(after) == after.size();
        } else {
            file_.close();
            return replaceHeader(header);
        }
    }
    if (!ok && !failed_) {
        failed_ = true;
        error_ = file_.errorString();
    }
    // Also after a failure: what was kept is worth having on the disk.
    const bool synced = syncAndClose();
    return !failed_ && synced;
}

void RecordingWriter::abandon()
{
    if (!open_)
        return;
    open_ = false;
    sync_.stop();
    pending_.resize(0);
    pendingPackets_ = 0;
    file_.resize(0);
    file_.close();
    written_ = 0;
    writtenPackets_ = 0;
    publishCounts();
}

bool RecordingWriter::syncAndClose()
{
    QString error;
    const bool ok = filesync::syncData(int(file_.handle()), &error) && filesync::syncFolderOf(file_.fileName(), &error);
    file_.close();
    if (!ok && !failed_) {
        failed_ = true;
        error_ = error;
    }
    return ok;
}

// The header's length changed (a Tern_P firmware version read during the
// recording): the packets move, so the file is written anew beside the
// complete old one and then takes its place.
bool RecordingWriter::replaceHeader(const QVector<QByteArray>& header)
{
    const QString fileName = file_.fileName();
    const qint64 packetsAt = 4 + encodeElements(header_).size();
    QFile in(fileName);
    AtomicFileWrite out(fileName);
    QByteArray head;
    appendBe32(head, quint32(header.size()) + writtenPackets_);
    head.append(encodeElements(header));
    QString error;
    bool ok = in.open(QIODevice::ReadOnly) && in.seek(packetsAt) && out.open(&error)
              && out.file().write(head) == head.size();
    while (ok && !in.atEnd()) {
        const QByteArray chunk = in.read(1 << 20);
        ok = !chunk.isEmpty() && out.file().write(chunk) == chunk.size();
    }
    if (!ok && error.isEmpty())
        error = out.file().error() != QFileDevice::NoError ? out.file().errorString() : in.errorString();
    ok = ok && out.commit(&error);
    if (!ok) {
        failed_ = true;
        error_ = error;
        return false;
    }
    return true;
}

}  // namespace lidar
