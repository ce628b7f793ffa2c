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

#include <QtGlobal>
#include <algorithm>
#include <array>
#include <cstdint>

namespace lidar {

class FrameAccounting {
public:
    // When the bytes now being cut arrived, in ns of a monotonic clock (0:
    // unknown). Packets without a GPS stamp are timed by it.
    void setArrivalNs(uint64_t ns) { arrivalNs_ = ns; }

    // The revolution being built ends with `frame`. A packet's azimuths rise
    // through it, so a revolution ends at a packet's first point: that
    // packet, `next` (what it covers and its GPS time in ns, 0: none), is
    // not yet counted and belongs to the next revolution.
    void closeFrame(const LidarDataPoint_V4& frame, const PacketCover& next, uint64_t nextStampNs);

    // A data packet has been placed: what it covers, its points with a
    // distance, its GPS time in ns (0: none). `madePoints` false: it made
    // none and so could not end a revolution; `lastAzimuth` is the
    // placement's remembered azimuth after it; `returnsToNext` of its
    // returns went to the next revolution (azimuths above 360: only a
    // packet that reaches past 360 degrees has any).
    template <typename Azimuth>
    void packetPlaced(const PacketCover& cover, int32_t returns, uint64_t stampNs, bool madePoints,
                      Azimuth lastAzimuth, int32_t returnsToNext)
    {
        // The usual packet: within the turn, after the last one; one span grows.
        Turn& turn = current_;
        if (Q_LIKELY(madePoints && cover.end <= packetcover::kTurn && cover.known() && turn.spanCount > 0
                     && (turn.firstTimeNs != 0 || timeOf(stampNs) == 0))) {
            Turn::Span& last = turn.spans[size_t(turn.spanCount - 1)];
            if (cover.start >= last.start && cover.start <= last.end + Turn::jitter(cover)) {
                last.end = std::max(last.end, cover.end);
                ++turn.packets;
                turn.widths += cover.width();
                turn.returns += returns;
                return;
            }
        }
        placeAnyPacket(cover, returns, timeOf(stampNs), returnsToNext, madePoints, double(lastAzimuth));
    }

    // The health of the revolution closed last.
    const FrameHealth& lastHealth() const { return last_; }
    // Data packets placed so far.
    quint64 packetsPlaced() const { return closedPackets_ + quint64(current_.packets) + quint64(next_.packets); }

private:
    static constexpr int kMaxSpans = 48;

    // One revolution's packets; angles in 1/100 degree.
    struct Turn {
        struct Span {
            int32_t start, end;
        };
        std::array<Span, kMaxSpans> spans;
        int spanCount = 0;
        int32_t packets = 0;
        int32_t returns = 0;
        int64_t widths = 0;        // covered by its packets, whole, for the pitch
        uint64_t firstTimeNs = 0;  // of its first packet, and where that starts
        int32_t firstStart = 0;

        // A space this narrow before a packet is the jitter of start
        // angles: an eighth of the packet.
        static int32_t jitter(const PacketCover& cover) { return cover.width() / 8; }
        void cover(int32_t start, int32_t end, int32_t jitter);
        // The spans are not cleared: spanCount says how many hold.
        void reset()
        {
            spanCount = packets = returns = 0;
            widths = 0;
            firstTimeNs = 0;
            firstStart = 0;
        }
        void takeOver(const Turn& other);
    };
    uint64_t timeOf(uint64_t stampNs) const { return stampNs != 0 ? stampNs : arrivalNs_; }
    void placeAnyPacket(const PacketCover& cover, int32_t returns, uint64_t timeNs, int32_t returnsToNext,
                        bool madePoints, double lastAzimuth);
    static void count(Turn& turn, int32_t start, int32_t width, uint64_t timeNs);

    Turn current_, next_;
    uint64_t arrivalNs_ = 0;
    double pitch_ = 0.0;  // degrees per packet, as the last revolution measured it
    quint64 closedPackets_ = 0;
    FrameHealth last_;
};

}  // namespace lidar
