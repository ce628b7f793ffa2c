#pragma once
// Bytes as a lidar sends them, turned into frames by the model's own live
// session: the same receive buffer, stream cutting and decoding as on a
// real link, so a captured stream gives exactly the frames the viewer would
// have shown. The session is made here, on the calling thread, with no link.
//
// The model's program-wide decoder state (the previous azimuth, packet
// clocks) is the live one, shared with any live session of that model.

#include "FrameHealth.h"
#include "LidarRecords.h"

#include <QByteArray>
#include <QString>
#include <functional>
#include <memory>

class LidarAnalysis;

namespace lidar {

class LiveStreamFrames {
public:
    using FrameSink = std::function<void(LidarDataPoint_V4& frame)>;
    // Hears each frame's health just before the sink gets the frame, with
    // the stream's totals at that moment.
    using HealthSink = std::function<void(const FrameHealth& health, const StreamTotals& totals)>;

    // Null for a model the registry does not know.
    static std::unique_ptr<LiveStreamFrames> create(const QString& model, FrameSink sink);
    ~LiveStreamFrames();

    // The firmware version number a parameters reply would have given
    // (Tern_P reads its distance words by it). A reply in the stream still
    // overrides it, as live.
    void setVersionNumber(uint32_t version);

    void setHealthSink(HealthSink sink) { healthSink_ = std::move(sink); }

    // Bytes as one read from the link would deliver them, which arrived at
    // `arrivalNs` (0: unknown); every frame they complete goes to the sink
    // before this returns.
    void feed(const QByteArray& bytes, qint64 arrivalNs = 0);

    qint64 frames() const { return frames_; }
    // The stream's totals so far: packets, rejected pieces, skipped bytes...
    StreamTotals totals() const;

private:
    LiveStreamFrames(std::unique_ptr<LidarAnalysis> session, FrameSink sink);

    std::unique_ptr<LidarAnalysis> session_;
    FrameSink sink_;
    HealthSink healthSink_;
    qint64 frames_ = 0;
};

}  // namespace lidar
