#pragma once
// A recording decoded frame by frame while it is read, once, front to back
// in pieces: memory stays bounded whatever the recording's length. It runs
// the same cursor the player reads recordings with, starting from the
// model's process-wide parser and handing its state back at the end, so the
// frames are exactly those the registry's ParseFile gives for a sound
// recording. Each packet can be looked at on the way, so that what a caller
// needs to know about them is gathered in the same pass.
//
// Unlike ParseFile, which refuses a damaged recording whole, the stream finds
// damage only when it gets there: the frames before it have been handed on.

#include "LidarRecords.h"
#include "RecordingCursor.h"

#include <QByteArray>
#include <QString>
#include <functional>

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
    QString model() const { return cursor_.model(); }
    // Whether the registry can decode the model (otherwise run() decodes nothing).
    bool isKnownModel() const { return known_; }
    QByteArray versionElement() const { return cursor_.prefix().value(0); }

    using FrameSink = std::function<bool(LidarDataPoint_V4& frame)>;  // false stops the run
    using PacketObserver = RecordingCursor::PacketObserver;
    // Sees every packet as it is read (before it is decoded).
    void setPacketObserver(PacketObserver observer) { cursor_.setPacketObserver(std::move(observer)); }
    // Hands every complete frame to `sink`, in order. False when the
    // recording turns out damaged (problem()) or the sink stopped it.
    bool run(const FrameSink& sink);

    Problem problem() const;
    RecordReader::Damage damage() const { return cursor_.damage(); }
    QString errorString() const { return cursor_.errorString(); }
    qint64 fileSize() const { return cursor_.fileSize(); }
    quint32 announcedCount() const { return cursor_.announcedCount(); }
    // Bytes read so far.
    qint64 position() const { return cursor_.position(); }
    // Packets read so far (elements after the name and version).
    qint64 packets() const { return cursor_.packetsRead(); }
    // The health of the frame last handed to the sink, and the recording's
    // health totals so far.
    const FrameHealth& frameHealth() const { return cursor_.frameHealth(); }
    StreamTotals totals() const { return cursor_.totals(); }

private:
    RecordingCursor cursor_;
    bool known_ = false;
};

}  // namespace lidar
