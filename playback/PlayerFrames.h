#pragma once
// Where the player's frames come from. A recording or a capture is read
// from disk frame by frame while an index of it grows on a thread of its
// own; frames handed to loadFrames are held in memory. The player asks only
// for the number of frames there are so far and for one frame at a time.

#include "FrameHealth.h"
#include "LidarRecords.h"

#include <QString>
#include <QVector>
#include <memory>

namespace lidar {
class HealthIndex;
}

class PlayerFrames {
public:
    virtual ~PlayerFrames() = default;

    // Frames that can be shown now; it grows until isFinal().
    virtual int count() const = 0;
    virtual bool isFinal() const = 0;
    // How far the index has got, in thousandths of the file.
    virtual int progressPermille() const = 0;
    // Frame `index` (0-based, below count()); false when it cannot be read
    // (the file changed since it was opened).
    virtual bool frame(int index, lidar::LidarDataPoint_V4& out) = 0;
    // A frame about to be shown: decoded now, while there is time.
    virtual void readAhead(int /*index*/) {}
    // The health of the frame frame() gave last; false when the source
    // keeps none (frames parsed whole into memory).
    virtual bool lastHealth(lidar::FrameHealth& /*out*/) const { return false; }
    // The health of every frame indexed so far (it grows with count());
    // null when the source keeps none.
    virtual const lidar::HealthIndex* healthIndex() const { return nullptr; }
    // Once final: what the user should know about the file (damage,
    // skipped parts), empty when nothing; and why nothing can be played
    // when count() stays 0.
    virtual QString note() const { return {}; }
    virtual QString refusal() const = 0;
};

// Frames held in memory.
class MemoryFrames : public PlayerFrames {
public:
    explicit MemoryFrames(QVector<lidar::LidarDataPoint_V4> frames) : frames_(std::move(frames)) {}
    int count() const override { return frames_.size(); }
    bool isFinal() const override { return true; }
    int progressPermille() const override { return 1000; }
    bool frame(int index, lidar::LidarDataPoint_V4& out) override
    {
        if (index < 0 || index >= frames_.size())
            return false;
        out = frames_.at(index);
        return true;
    }
    QString refusal() const override;
    const QVector<lidar::LidarDataPoint_V4>& frames() const { return frames_; }

private:
    QVector<lidar::LidarDataPoint_V4> frames_;
};

namespace capture {
struct CaptureOptions;
}

// A recording indexed while it plays; null with `refusal` set when the file
// cannot be opened as one (not a recording, no data, an unknown model). A
// model whose parse cannot be read on demand is parsed whole into memory.
std::unique_ptr<PlayerFrames> openRecordingFrames(const QString& path, QString& modelName, QString& refusal);
// A capture decoded once into a temporary file while it plays.
std::unique_ptr<PlayerFrames> openCaptureFrames(const QString& path, const capture::CaptureOptions& options,
                                                QString& refusal);
