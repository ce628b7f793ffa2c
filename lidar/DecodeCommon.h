#pragma once
// Machinery shared by every model decoder: reading big-endian fields, the
// points of one packet before they are placed, placing them into the frame
// being built or the next one at the azimuth wrap, and command packets.

#include "LidarRecords.h"

#include <QByteArray>
#include <QVector>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <utility>
#include <vector>

namespace lidar {
namespace decode {

// A packet's bytes where they lie: in a receive buffer or a recorded element.
struct Bytes {
    const char* data = nullptr;
    int size = 0;

    Bytes() = default;
    Bytes(const char* d, int n) : data(d), size(n) {}
    Bytes(const QByteArray& b) : data(b.constData()), size(b.size()) {}  // NOLINT: a view of it
    QByteArray toByteArray() const { return QByteArray(data, size); }
};

inline uint8_t u8(Bytes b, int offset)
{
    return static_cast<uint8_t>(b.data[offset]);
}
inline int8_t s8(Bytes b, int offset)
{
    return static_cast<int8_t>(b.data[offset]);
}
inline uint16_t be16(Bytes b, int offset)
{
    return static_cast<uint16_t>((u8(b, offset) << 8) | u8(b, offset + 1));
}

// First index at or after `from` where bytes `a`, `b` follow each other, or -1.
inline int findPair(Bytes bytes, int from, uint8_t a, uint8_t b)
{
    const char* const end = bytes.data + bytes.size;
    for (const char* p = bytes.data + from; p < end - 1;) {
        p = static_cast<const char*>(std::memchr(p, a, size_t(end - 1 - p)));
        if (!p)
            return -1;
        if (static_cast<uint8_t>(p[1]) == b)
            return int(p - bytes.data);
        ++p;
    }
    return -1;
}
inline int findHeader(Bytes bytes, int from)  // A5 5A
{
    return findPair(bytes, from, 0xA5, 0x5A);
}
inline int findTrailer(Bytes bytes, int from)  // FA FB
{
    return findPair(bytes, from, 0xFA, 0xFB);
}

// Revolutions per minute from the period word the lidars send.
inline int32_t motorSpeedFromPeriod(uint16_t period)
{
    return period == 0 ? 0 : static_cast<int32_t>(2500000 / period);
}

extern const QByteArray kHeader;   // A5 5A
extern const QByteArray kTrailer;  // FA FB

// Drops the bytes a live loop has consumed, `used` of them, and what can no
// longer become part of a packet, so that junk cannot pile up. A buffer
// without a header keeps at most a last A5 (a header's first half). A piece
// still waiting for its end may hold `maxPending` bytes from its header; one
// that grows past that is given up for the next header that fits.
void keepUnconsumed(QByteArray& buffer, int used, int maxPending);

// One point of a packet with its azimuth before the 360-degree correction.
// `keep` false: the point takes part in the revolution test but is not stored.
struct PacketPoint {
    int32_t id = 0;
    double azimuth = 0.0;
    LidarPoint point;
    bool keep = true;
};

// What one data packet contributes: frame-level values and its points.
// Decoders size `points` to the packet's count and write every field of
// each, so that a run of packets of one size reuses the same storage.
struct DecodedPacket {
    int32_t motorSpeed = -1;
    bool hasAmbient = false;
    int32_t ambient = -1;
    bool hasDateTime = false;
    char dateTime[64];  // Latin-1, dateTimeLength characters
    int dateTimeLength = 0;
    std::vector<PacketPoint> points;

    void reset()
    {
        motorSpeed = -1;
        hasAmbient = false;
        hasDateTime = false;
    }
};

// A packet's decoding scratch for offline parses, one per thread, so that
// its storage is reused from packet to packet.
DecodedPacket& scratchPacket();

// sin and cos of azimuth * pi / 180 (in double precision, azimuth in
// degrees), exactly as std::sin and std::cos give them.
struct SinCos {
    double sin;
    double cos;
};
SinCos computeSinCos(double azimuth);

// A lidar sends the same azimuths revolution after revolution, so each
// thread keeps the sines and cosines it has computed in a table: a hit
// returns the very same doubles without the cost of the trigonometry. Four
// azimuths share a set, so that a revolution's azimuths all find a place
// even where their hashes meet; a new one pushes out the oldest.
class AzimuthTrig {
public:
    // The calling thread's table (look it up once per packet).
    static AzimuthTrig& forThisThread();

    SinCos of(double azimuth)
    {
        uint64_t key;
        std::memcpy(&key, &azimuth, sizeof key);
        Entry* set = sets_[(key * 0x9E3779B97F4A7C15ull) >> (64 - kSetBits)];
        for (int way = 0; way < kWays; ++way)
            if (set[way].key == key)
                return set[way].value;
        return miss(set, key, azimuth);
    }

    AzimuthTrig();

private:
    struct Entry {
        uint64_t key;
        SinCos value;
    };
    static constexpr int kSetBits = 11;
    static constexpr int kWays = 4;
    SinCos miss(Entry* set, uint64_t key, double azimuth);

    Entry sets_[1 << kSetBits][kWays];
};

// Writes a whole point at `azimuth` degrees and `distance` mm; x uses the
// sine, y the cosine; stored, no time stamp.
inline void setPoint(PacketPoint& p, int32_t id, double azimuth, int32_t distance, int32_t intensity,
                     const SinCos& trig)
{
    p.id = id;
    p.azimuth = azimuth;
    p.point.x = static_cast<float>(trig.sin * distance / 1000.0);
    p.point.y = static_cast<float>(trig.cos * distance / 1000.0);
    p.point.z = 0.0f;
    p.point.azimuth = -1.0f;  // given when the point is placed
    p.point.distance = distance;
    p.point.intensity = intensity;
    p.point.timestamp = -1;
    p.keep = true;
}

// The point list of one ID in a frame, found once and then reused while
// points of that ID follow (the models use IDs 0 and 1). A list that a new
// revolution starts is made room for at once, as much as the last one held.
class FrameLines {
public:
    explicit FrameLines(LidarDataPoint_V4& frame) : frame_(frame) {}
    std::vector<LidarPoint>& operator[](int32_t id)
    {
        if (Q_LIKELY((id == 0 || id == 1) && lines_[id]))
            return *lines_[id];
        return lookUp(id);
    }
    // The revolution ended: note how many points it held, and look the
    // lists up afresh in the frame that follows.
    void newRevolution(const LidarDataPoint_V4& ended)
    {
        for (int32_t id = 0; id < 2; ++id) {
            const auto line = ended.points.constFind(id);
            expected_[id] = line == ended.points.constEnd() ? 0 : line->size();
            lines_[id] = nullptr;
        }
    }
    // The frame's map changed hands: look the lists up afresh.
    void forget() { lines_[0] = lines_[1] = nullptr; }

private:
    std::vector<LidarPoint>& lookUp(int32_t id);

    LidarDataPoint_V4& frame_;
    std::vector<LidarPoint>* lines_[2] = {nullptr, nullptr};
    size_t expected_[2] = {0, 0};
};

// Writes `text` into `target`, reusing its storage when no copy shares it.
void assignLatin1(QString& target, const char* text, int length);

// Places a packet's points. `Azimuth` is the precision the model compares
// azimuths in; `previous` is the model's remembered azimuth (its own type:
// float, double or, for one offline path, a truncated integer). A revolution
// ends when an azimuth falls more than 15 degrees below its predecessor;
// `endRevolution` then hands the finished frame on and shifts the frames.
// Azimuths above 360 belong to the next revolution and go to `next`.
template <typename Azimuth, typename Previous, typename EndRevolution>
void placePoints(const DecodedPacket& packet, LidarDataPoint_V4& current, LidarDataPoint_V4& next,
                 Previous& previous, EndRevolution&& endRevolution)
{
    if (packet.hasAmbient)
        current.ambient = packet.ambient;
    current.motorSpeed = packet.motorSpeed;
    if (packet.hasDateTime)
        assignLatin1(current.dateTime, packet.dateTime, packet.dateTimeLength);

    FrameLines currentLines(current), nextLines(next);
    for (const PacketPoint& p : packet.points) {
        const Azimuth azimuth = static_cast<Azimuth>(p.azimuth);
        const Azimuth before = static_cast<Azimuth>(previous);
        if (before > azimuth && std::abs(before - azimuth) > Azimuth(15)) {
            const LidarDataPoint_V4 ended = current;  // shares the points
            endRevolution();
            currentLines.newRevolution(ended);
            nextLines.forget();
        }
        previous = static_cast<Previous>(azimuth);
        if (!p.keep)
            continue;
        if (azimuth > Azimuth(360)) {
            std::vector<LidarPoint>& line = nextLines[p.id];
            line.push_back(p.point);
            line.back().azimuth = static_cast<float>(azimuth - Azimuth(360));
        } else {
            std::vector<LidarPoint>& line = currentLines[p.id];
            line.push_back(p.point);
            line.back().azimuth = static_cast<float>(azimuth);
        }
    }
}

// State an offline parse function keeps from one call to the next.
template <typename Previous>
struct OfflineFrames {
    LidarDataPoint_V4 current;
    LidarDataPoint_V4 next;
    Previous previous = Previous(-1);

    // Places a packet and appends every revolution it completes to `out`.
    template <typename Azimuth>
    void place(const DecodedPacket& packet, QVector<LidarDataPoint_V4>& out)
    {
        placePoints<Azimuth>(packet, current, next, previous, [&] {
            out.append(current);
            current = next;
            next.clear();
        });
    }
};

// An offline parse that can be fed a recording's packets a batch at a time:
// it appends the frames the batch completes and keeps its unfinished turn for
// the next call, so batches give exactly the frames of one call over all
// packets. It returns false when a packet ended the parse: the rest of the
// recording is not decoded.
using BatchParse = bool (*)(const QVector<QByteArray>& packets, QVector<LidarDataPoint_V4>& frames);

// The registered whole-list parse: one batch.
template <BatchParse parseBatch>
QVector<LidarDataPoint_V4> parseWhole(const QVector<QByteArray>& packets)
{
    QVector<LidarDataPoint_V4> frames;
    parseBatch(packets, frames);
    return frames;
}

// A 188-byte command packet: A5 5A, class byte 2, code at 184, parameter at
// 185, FA FB at 186; every other byte 0 unless listed in `extra`.
QByteArray commandPacket(uint8_t commandClass, uint8_t code, uint8_t parameter,
                         std::initializer_list<std::pair<int, uint8_t>> extra = {});

// "%1.%2.%3-V%4.%5.%6" from six bytes at `offset` (year - 2000 first).
// Signed: each byte is read as a signed 8-bit value.
QString versionText(Bytes reply, int offset, bool signedBytes);

}  // namespace decode
}  // namespace lidar
