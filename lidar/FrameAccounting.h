#pragma once
// The per-frame side of the stream-health accounting. It follows the frame
// placement of DecodeCommon.h packet by packet, and like it keeps two
// revolutions: the one being built and the next, which receives the degrees
// (and points) of a packet that reach past 360. When the placement ends a
// revolution, the accounting closes its FrameHealth.
//
// Per packet it stores a few numbers and extends a covered span; the gaps
// are worked out once per revolution. A plain value: copying it copies the
// accounting of an offline parse along with the parse's state.

#include "FrameHealth.h"
#include "LidarRecords.h"
#include "ModelGeometry.h"

#include <array>
#include <cstdint>

namespace lidar {

class FrameAccounting {
public:
    // When the bytes now being cut arrived, in ns of a monotonic clock (0:
    // unknown). Packets without a GPS stamp are timed by it.
    void setArrivalNs(uint64_t ns) { arrivalNs_ = ns; }

    // A data packet is about to be placed: what it covers, its points with a
    // distance, and its GPS time in ns (0: none).
    void packetArrives(const PacketCover& cover, int32_t returns, uint64_t stampNs)
    {
        pending_.cover = cover;
        pending_.returns = returns;
        pending_.timeNs = stampNs != 0 ? stampNs : arrivalNs_;
    }
    // The revolution being built ends with `frame`, before the pending
    // packet's points are placed: a packet's azimuths rise through it, so a
    // revolution can only end at its first point, and the packet belongs to
    // the next revolution.
    void closeFrame(const LidarDataPoint_V4& frame);
    // The pending packet is placed: `returnsToNext` of its returns went to the
    // next revolution (azimuths above 360). `madePoints` false: it made none
    // and so could not end a revolution; `lastAzimuth` is the placement's
    // remembered azimuth after it.
    void packetPlaced(int32_t returnsToNext, bool madePoints, double lastAzimuth);

    // The health of the revolution closed last.
    const FrameHealth& lastHealth() const { return last_; }

private:
    static constexpr int kMaxSpans = 48;

    struct Turn {
        std::array<CoveredSpan, kMaxSpans> spans;
        int spanCount = 0;
        int32_t packets = 0;
        int32_t returns = 0;
        double widths = 0.0;       // degrees covered by its packets, whole, for the pitch
        uint64_t firstTimeNs = 0;  // of its first packet, and where that starts
        float firstStart = 0.0f;

        void cover(float start, float end);
        void reset() { *this = Turn(); }
    };
    struct Pending {
        PacketCover cover;
        int32_t returns = 0;
        uint64_t timeNs = 0;
    };

    static void count(Turn& turn, float start, float width, uint64_t timeNs);

    Turn current_, next_;
    Pending pending_;
    uint64_t arrivalNs_ = 0;
    double pitch_ = 0.0;  // degrees per packet, as the last revolution measured it
    FrameHealth last_;
};

}  // namespace lidar
