#pragma once
// Machinery shared by every model decoder: reading big-endian fields, the
// points of one packet before they are placed, placing them into the frame
// being built or the next one at the azimuth wrap, and command packets.

#include "FrameAccounting.h"
#include "LidarRecords.h"
#include "ModelGeometry.h"

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
// that grows past that is given up for the next header that fits. Returns
// the bytes dropped, `used` or more.
int keepUnconsumed(QByteArray& buffer, int used, int maxPending);

// What one data packet contributes: frame-level values and its points in
// packet order, each with its azimuth before the 360-degree correction (in
// the precision the model computes in), its channel ID, and whether it is
// stored (`kept` false: it takes part in the revolution test only). The
// Tern family stores every point under channel 0 (`channel0Only`), and
// then `ids` and `kept` are not read. Decoders size the packet to its
// point count and write every field of each point, so that a run of
// packets of one size reuses the same storage.
struct DecodedPacket {
    int32_t motorSpeed = -1;
    bool hasAmbient = false;
    int32_t ambient = -1;
    bool hasDateTime = false;
    char dateTime[64];  // Latin-1, dateTimeLength characters
    int dateTimeLength = 0;
    bool channel0Only = false;
    std::vector<LidarPoint> points;  // azimuth: the final one when not above 360
    std::vector<double> azimuths;
    std::vector<int32_t> ids;
    std::vector<uint8_t> kept;
    // Every azimuth at or above the one before, none above 360 degrees (and
    // the first not below 0): the points go into the revolution as one run
    // after the first has been tested for a revolution's end.
    bool risingBelow360 = false;
    // For the stream-health accounting: the degrees the packet covers, its
    // points with a distance above 0 (counted where the decoder reads its
    // distances) and its GPS time in ns (0: none).
    PacketCover cover;
    int32_t returns = 0;
    uint64_t timeNs = 0;

    void reset()
    {
        motorSpeed = -1;
        hasAmbient = false;
        hasDateTime = false;
        risingBelow360 = false;
        cover = PacketCover();
        returns = 0;
        timeNs = 0;
    }
    size_t size() const { return points.size(); }
    void resize(size_t n, bool everyPointOnChannel0)
    {
        channel0Only = everyPointOnChannel0;
        points.resize(n);
        azimuths.resize(n);
        if (!everyPointOnChannel0) {
            ids.resize(n);
            kept.resize(n);
        }
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

// The azimuths of one packet and their sines and cosines, and the degrees
// it covers where they follow from more than its start code.
template <typename Azimuth>
struct PacketAngles {
    bool known = false;
    uint16_t code = 0;    // start code, 1/100 degree
    uint32_t shape = 0;   // what else fixes the azimuths (points, or an end code)
    std::vector<Azimuth> azimuths;
    std::vector<SinCos> trig;
    PacketCover cover;
    bool risingBelow360 = false;  // as DecodedPacket::risingBelow360
};

// Whether `azimuths` rise (or stay) from 0 or more to at most 360 degrees.
template <typename Azimuth>
bool risesBelow360(const std::vector<Azimuth>& azimuths)
{
    if (azimuths.empty() || !(azimuths.front() >= Azimuth(0)))
        return false;
    for (size_t i = 0; i < azimuths.size(); ++i)
        if (!(azimuths[i] <= Azimuth(360)) || (i > 0 && !(azimuths[i] >= azimuths[i - 1])))
            return false;
    return true;
}

// A packet's azimuths follow from its start code (1/100 degree) and its
// shape: for the Tern family the number of points over its 15 degrees, for
// the Wren family its end code. A lidar sends the same few hundred start
// codes revolution after revolution, so each thread keeps the angles of the
// packets it has met, by start code: a packet met again costs one lookup,
// and its values are the very ones computing them gives (std::sin and
// std::cos of the azimuth in double precision). `Family` keeps the tables
// of the two families apart.
template <typename Azimuth, int Family>
class PacketAngleTable {
public:
    static PacketAngleTable& forThisThread()
    {
        thread_local PacketAngleTable table;
        return table;
    }

    // The angles of a packet; `fill(angles)` writes its azimuths (and its
    // cover where the family keeps it here) when they are not in the table.
    template <typename Fill>
    const PacketAngles<Azimuth>& lookUp(uint16_t code, uint32_t shape, Fill&& fill)
    {
        PacketAngles<Azimuth>& slot = slots_[code % kSlots];
        if (Q_UNLIKELY(!slot.known || slot.code != code || slot.shape != shape)) {
            fill(slot);
            slot.trig.resize(slot.azimuths.size());
            for (size_t i = 0; i < slot.azimuths.size(); ++i)
                slot.trig[i] = computeSinCos(double(slot.azimuths[i]));
            slot.risingBelow360 = risesBelow360(slot.azimuths);
            slot.code = code;
            slot.shape = shape;
            slot.known = true;
        }
        return slot;
    }

private:
    // Start codes of one revolution lie in different slots; a code that
    // meets another in its slot takes it over.
    static constexpr int kSlots = 4096;
    std::vector<PacketAngles<Azimuth>> slots_ = std::vector<PacketAngles<Azimuth>>(kSlots);
};

// Writes point `i` of a packet at `azimuth` degrees and `distance` mm; x
// uses the sine, y the cosine; stored, no time stamp. Channel and storing
// are written only where the packet has them.
inline void setPoint(DecodedPacket& packet, size_t i, int32_t id, double azimuth, int32_t distance,
                     int32_t intensity, const SinCos& trig)
{
    LidarPoint& p = packet.points[i];
    p.x = static_cast<float>(trig.sin * distance / 1000.0);
    p.y = static_cast<float>(trig.cos * distance / 1000.0);
    p.z = 0.0f;
    p.azimuth = static_cast<float>(azimuth);
    p.distance = distance;
    p.intensity = intensity;
    p.timestamp = -1;
    packet.azimuths[i] = azimuth;
    if (!packet.channel0Only) {
        packet.ids[i] = id;
        packet.kept[i] = 1;
    }
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

// Runs `f` out of line: a revolution ends once in dozens of packets, and
// its work, however long, then leaves the placement's loop as tight as it is.
template <typename F>
Q_NEVER_INLINE void callOutOfLine(F& f)
{
    f();
}

// Places a packet's points. `Azimuth` is the precision the model compares
// azimuths in; `previous` is the model's remembered azimuth (its own type:
// float, double or, for one offline path, a truncated integer). A revolution
// ends when an azimuth falls more than 15 degrees below its predecessor;
// `endRevolution` then hands the finished frame on and shifts the frames.
// Azimuths above 360 belong to the next revolution and go to `next`.
template <typename Azimuth, typename Previous, typename EndRevolution>
void placeUncounted(const DecodedPacket& packet, LidarDataPoint_V4& current, LidarDataPoint_V4& next,
                    Previous& previous, EndRevolution&& endRevolution)
{
    if (packet.hasAmbient)
        current.ambient = packet.ambient;
    current.motorSpeed = packet.motorSpeed;
    if (packet.hasDateTime)
        assignLatin1(current.dateTime, packet.dateTime, packet.dateTimeLength);

    FrameLines currentLines(current), nextLines(next);
    // Kept in a local while the points are placed: through the reference
    // every store into a point list would make it read again.
    Previous last = previous;
    const size_t n = packet.size();
    const auto endsRevolution = [](Azimuth before, Azimuth azimuth) {
        return before > azimuth && std::abs(before - azimuth) > Azimuth(15);
    };
    const auto startRevolution = [&] {
        const LidarDataPoint_V4 ended = current;  // shares the points
        previous = last;
        callOutOfLine(endRevolution);
        currentLines.newRevolution(ended);
        nextLines.forget();
    };
    if (packet.risingBelow360 && n > 0) {
        // Nearly every packet: no point after the first can end the
        // revolution or pass 360 degrees, and the azimuths the points carry
        // are already final, so the points go in as they are.
        if (Q_UNLIKELY(endsRevolution(static_cast<Azimuth>(last), static_cast<Azimuth>(packet.azimuths[0]))))
            startRevolution();
        previous = static_cast<Previous>(static_cast<Azimuth>(packet.azimuths[n - 1]));
        if (packet.channel0Only) {
            std::vector<LidarPoint>& line = currentLines[0];
            line.insert(line.end(), packet.points.begin(), packet.points.end());
        } else {
            for (size_t i = 0; i < n; ++i)
                if (packet.kept[i])
                    currentLines[packet.ids[i]].push_back(packet.points[i]);
        }
        return;
    }
    for (size_t i = 0; i < n;) {
        const Azimuth azimuth = static_cast<Azimuth>(packet.azimuths[i]);
        if (Q_UNLIKELY(endsRevolution(static_cast<Azimuth>(last), azimuth)))
            startRevolution();
        last = static_cast<Previous>(azimuth);
        if (packet.channel0Only && !(azimuth > Azimuth(360))) {
            // The run of points that stays in this revolution below 360
            // degrees goes in at once; their azimuths are already final.
            size_t end = i + 1;
            for (; end < n; ++end) {
                const Azimuth a = static_cast<Azimuth>(packet.azimuths[end]);
                if (a > Azimuth(360) || endsRevolution(static_cast<Azimuth>(last), a))
                    break;
                last = static_cast<Previous>(a);
            }
            std::vector<LidarPoint>& line = currentLines[0];
            line.insert(line.end(), packet.points.begin() + std::ptrdiff_t(i),
                        packet.points.begin() + std::ptrdiff_t(end));
            i = end;
            continue;
        }
        const int32_t id = packet.channel0Only ? 0 : packet.ids[i];
        if (packet.channel0Only || packet.kept[i]) {
            // Copied whole, then given its azimuth: a copy made on the stack
            // with one field changed would be read back before its store lands.
            if (Q_UNLIKELY(azimuth > Azimuth(360))) {
                std::vector<LidarPoint>& line = nextLines[id];
                line.push_back(packet.points[i]);
                line.back().azimuth = static_cast<float>(azimuth - Azimuth(360));
            } else {
                std::vector<LidarPoint>& line = currentLines[id];
                line.push_back(packet.points[i]);
                line.back().azimuth = static_cast<float>(azimuth);
            }
        }
        ++i;
    }
    previous = last;
}

// The returns among a packet's stored points above 360 degrees, which go to
// the next revolution.
template <typename Azimuth>
int32_t returnsAbove360(const DecodedPacket& packet)
{
    int32_t returns = 0;
    for (size_t i = 0; i < packet.size(); ++i)
        if (static_cast<Azimuth>(packet.azimuths[i]) > Azimuth(360) && (packet.channel0Only || packet.kept[i]))
            returns += packet.points[i].distance > 0 ? 1 : 0;
    return returns;
}

// placeUncounted with `accounting` following along: it closes the
// revolution's health just before `endRevolution` runs (lastHealth()), and
// counts what the packet covered. Kept outside the placement's loop, which
// stays as tight as without it.
template <typename Azimuth, typename Previous, typename EndRevolution>
void placePoints(const DecodedPacket& packet, LidarDataPoint_V4& current, LidarDataPoint_V4& next,
                 Previous& previous, FrameAccounting& accounting, EndRevolution&& endRevolution)
{
    placeUncounted<Azimuth>(packet, current, next, previous, [&] {
        accounting.closeFrame(current, packet.cover, packet.timeNs);
        endRevolution();
    });
    // Only a packet that reaches past 360 degrees can have points there.
    const int32_t returnsToNext =
        Q_UNLIKELY(packet.cover.end > packetcover::kTurn) ? returnsAbove360<Azimuth>(packet) : 0;
    accounting.packetPlaced(packet.cover, packet.returns, packet.timeNs, packet.size() > 0, previous,
                            returnsToNext);
}

// State an offline parse function keeps from one call to the next.
template <typename Previous>
struct OfflineFrames {
    LidarDataPoint_V4 current;
    LidarDataPoint_V4 next;
    Previous previous = Previous(-1);
    // The recording's health: its frames' records, those the last call
    // completed in `completed` (the caller empties it), and its totals
    // (their packets: accounting.packetsPlaced()).
    FrameAccounting accounting;
    std::vector<FrameHealth> completed;
    StreamTotals totals;

    // Makes the unfinished turns hold copies of their points of exactly
    // their size: a copy of the state shares its point lists with the
    // original until either changes, and they carry room for a whole turn.
    void compact()
    {
        for (LidarDataPoint_V4* frame : {&current, &next}) {
            QMap<int32_t, std::vector<LidarPoint>> points;
            for (auto line = frame->points.constBegin(); line != frame->points.constEnd(); ++line)
                points.insert(line.key(), std::vector<LidarPoint>(line.value().begin(), line.value().end()));
            frame->points = points;
        }
    }

    // Places a packet and appends every revolution it completes to `out`.
    template <typename Azimuth>
    void place(const DecodedPacket& packet, QVector<LidarDataPoint_V4>& out)
    {
        placePoints<Azimuth>(packet, current, next, previous, accounting, [&] {
            out.append(current);
            completed.push_back(accounting.lastHealth());
            totals.addFrame(accounting.lastHealth());
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
