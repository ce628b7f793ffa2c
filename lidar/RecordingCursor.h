#pragma once
// A recording decoded frame by frame from any point of it. The cursor reads
// the file front to back in pieces from where it stands, hands each packet
// to its copy of the model's offline parser and gives out the frames that
// parser completes, one at a time. Between two packets its place in the
// file and the parser's state can be kept (a Checkpoint); a cursor resumed
// from one gives exactly the frames that decoding from the start would have
// given from there on. Memory stays bounded by a piece of the file and the
// frames one packet completes, whatever the recording's length.

#include "FrameHealth.h"
#include "LidarRecords.h"
#include "OfflineParser.h"
#include "RecordReader.h"

#include <QByteArray>
#include <QFile>
#include <QString>
#include <QVector>
#include <functional>
#include <memory>

namespace lidar {

class RecordingCursor {
public:
    enum class Problem {
        None,
        CannotOpen,    // the file cannot be opened (errorString())
        NoElements,    // it holds no element
        Damaged,       // it ends before its last announced element (damage())
        UnknownModel,  // no offline parser is registered for its model
    };

    // A place between two packets and the parse's state there.
    struct Checkpoint {
        qint64 offset = 0;    // where the next packet's element begins
        quint32 element = 0;  // that element's index in the file
        quint32 announcedCount = 0;
        qint64 frames = 0;    // frames completed before it
        std::shared_ptr<const OfflineParser> parser;
    };

    explicit RecordingCursor(const QString& fileName, int pieceSize = RecordReader::kDefaultPieceSize);

    // Opens the file and reads the class name and the elements before the
    // first packet; false with problem() set when that fails.
    bool open();
    QString model() const { return model_; }
    QVector<QByteArray> prefix() const { return prefix_; }
    quint32 announcedCount() const { return reader_.announcedCount(); }

    // Decodes from the first packet on with `parser`, given the recording's
    // prefix: a copy of the model's process-wide parser starts where a
    // parse of the whole file through the registry would.
    void start(std::unique_ptr<OfflineParser> parser);
    // The same starting from the registry's copy; false (UnknownModel) when
    // the model has no parser.
    bool startFromRegistry();
    // Goes on from a checkpoint that a cursor over this same file took.
    // False when the file cannot be read there any more.
    bool resume(const Checkpoint& checkpoint);

    // The next frame in order. False at the end of the packets, at damage
    // (problem() Damaged) or once a packet ended the parse (ended()).
    bool next(LidarDataPoint_V4& frame);
    // The health of the frame next() gave last.
    const FrameHealth& frameHealth() const { return health_; }
    // The recording's totals so far (OfflineParser::totals); empty before start().
    StreamTotals totals() const { return parser_ ? parser_->totals() : StreamTotals(); }
    // Number of the frame next() gives next, counted from the file's start.
    qint64 nextFrameNumber() const { return completed_ - (waiting_.size() - taken_); }
    // The place after the last packet read and the state there.
    Checkpoint checkpoint() const;
    // Whether every frame the last packet completed has been given out, so
    // that a checkpoint taken now begins with the next frame.
    bool atPacketBoundary() const { return taken_ == waiting_.size(); }

    using PacketObserver = std::function<void(const QByteArray& packet)>;
    // Sees every packet as it is read, before it is decoded.
    void setPacketObserver(PacketObserver observer) { observer_ = std::move(observer); }

    bool ended() const { return ended_; }
    Problem problem() const { return problem_; }
    RecordReader::Damage damage() const { return reader_.damage(); }
    QString errorString() const { return file_.errorString(); }
    qint64 position() const { return reader_.position(); }
    qint64 fileSize() const { return size_; }
    qint64 packetsRead() const { return packets_; }
    const OfflineParser* parser() const { return parser_.get(); }

private:
    bool fail(Problem problem);
    bool readPacket();

    QFile file_;
    RecordReader reader_;
    qint64 size_ = 0;
    QString model_;
    QVector<QByteArray> prefix_;
    std::unique_ptr<OfflineParser> parser_;
    PacketObserver observer_;
    QVector<LidarDataPoint_V4> waiting_;  // completed by the last packet
    std::vector<FrameHealth> waitingHealth_;  // theirs
    FrameHealth health_;
    int taken_ = 0;                       // of them already given out
    qint64 completed_ = 0;                // frames the parser has completed
    qint64 packets_ = 0;
    QByteArray packet_;
    bool ended_ = false;
    Problem problem_ = Problem::None;
};

}  // namespace lidar
