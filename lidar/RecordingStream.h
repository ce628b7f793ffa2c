#pragma once
// A recording decoded frame by frame while it is read, once, front to back
// in pieces: memory stays bounded by a batch of packets and the frames it
// completes, whatever the recording's length. The frames are exactly those
// the registry's ParseFile gives for a sound recording. Each packet can be
// looked at on the way, so that what a caller needs to know about them is
// gathered in the same pass.
//
// Unlike ParseFile, which refuses a damaged recording whole, the stream finds
// damage only when it gets there: the frames before it have been handed on.

#include "LidarRecords.h"
#include "RecordReader.h"
#include "RecordingDecoder.h"

#include <QByteArray>
#include <QFile>
#include <QString>
#include <functional>
#include <memory>

namespace lidar {

class RecordingStream {
public:
    enum class Problem {
        None,
        CannotOpen,  // the file cannot be opened (errorString())
        Damaged,     // it ends before its last announced element (damage())
        NoElements,  // its element count is 0
    };

    explicit RecordingStream(const QString& fileName);

    // Opens the file and reads the class name, and Tern_P's version number;
    // false with problem() set when that fails.
    bool open();
    QString model() const { return model_; }
    // Whether the registry knows the model (otherwise run() decodes nothing).
    bool isKnownModel() const { return decoder_ && decoder_->isKnownModel(); }
    QByteArray versionElement() const { return version_; }

    using FrameSink = std::function<bool(LidarDataPoint_V4& frame)>;  // false stops the run
    using PacketObserver = std::function<void(const QByteArray& packet)>;
    // Sees every packet as it is read (before it is decoded).
    void setPacketObserver(PacketObserver observer) { observer_ = std::move(observer); }
    // Hands every complete frame to `sink`, in order. False when the
    // recording turns out damaged (problem()) or the sink stopped it.
    bool run(const FrameSink& sink);

    Problem problem() const { return problem_; }
    RecordReader::Damage damage() const { return reader_.damage(); }
    QString errorString() const { return file_.errorString(); }
    qint64 fileSize() const { return size_; }
    // Bytes of the file read so far (for progress).
    qint64 bytesRead() const { return reader_.position(); }
    quint32 announcedCount() const { return reader_.announcedCount(); }
    // Packets read so far (elements after the name and version).
    qint64 packets() const { return packets_; }

private:
    bool fail(Problem problem);
    bool deliver(QVector<LidarDataPoint_V4>& frames, const FrameSink& sink);

    QFile file_;
    qint64 size_ = 0;
    RecordReader reader_;
    QString model_;
    QByteArray version_;
    std::unique_ptr<RecordingDecoder> decoder_;
    PacketObserver observer_;
    Problem problem_ = Problem::None;
    qint64 packets_ = 0;
};

}  // namespace lidar
