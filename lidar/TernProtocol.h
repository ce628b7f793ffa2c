#pragma once
// What the four Tern models share: packets run from a header A5 5A to a
// trailer FA FB, a packet covers 15 degrees spread over its valid points,
// filter codes, and GPS calendar time stamps (Tern_P, Tern_GPS, Tern_Plus).

#include "DecodeCommon.h"

#include <QByteArray>
#include <QString>
#include <cstdint>

namespace lidar {
namespace tern {

// Cuts the next piece from the first header to the first trailer after it,
// dropping everything before it. Without a trailer: when `fallbackLength` is
// non-zero and the buffer holds at least that many bytes, that many bytes
// from the header are cut instead; otherwise nothing is removed and the
// result is empty.
QByteArray cutPiece(QByteArray& buffer, int fallbackLength);

// The live loop of every Tern model: while the buffer holds a header, cut a
// piece and hand it to `handle`, which returns false to stop until the next
// arrival of bytes.
template <typename Handle>
void parseStream(QByteArray& buffer, int minimumSize, int fallbackLength, Handle&& handle)
{
    if (buffer.size() < minimumSize || !buffer.contains(decode::kHeader))
        return;
    do {
        if (!handle(cutPiece(buffer, fallbackLength)))
            return;
    } while (buffer.contains(decode::kHeader));
}

// Whether the 16-bit length field at offset 2 equals the piece's length.
inline bool lengthFieldMatches(const QByteArray& piece)
{
    return piece.size() >= 4 && decode::be16(piece, 2) == piece.size();
}

// A piece contains no trailer at or after its first header (ends an offline parse).
bool lacksTrailer(const QByteArray& piece);

// Filter modes 0 "Normal filtering", 1 "No filtering", 2 "Within three meters".
uint8_t filterCode(int mode);         // 11, 10, 12; 0 for any other mode
int filterModeFromCode(uint8_t code);  // 11 -> 0, 12 -> 2, anything else -> 1

struct Measurement {
    int32_t distance;
    int32_t intensity;
};

// Spreads a packet's 15 degrees evenly over its `count` points, from `start`:
// azimuth i = i * (15 / count) + start in single precision.
void spreadPoints(float startAzimuth, const Measurement* measurements, int count,
                  decode::DecodedPacket& out);

// Calendar fields of a GPS-stamped packet (year already + 2000).
struct CalendarTime {
    int32_t year, month, day, hour, minute, second, millisecond, microsecond;
};
// Eight calendar bytes: year-2000, month, day, hour, minute, second, then
// 16-bit millisecond and microsecond.
CalendarTime readCalendar(const QByteArray& packet, int offset);
// mktime of the local calendar time (no daylight saving) in ns, plus ms and us.
uint64_t packetTimeNs(const CalendarTime& t);
// "%1-%2-%3 %4:%5:%6:%7": year, month, day, hour, minute, second, millisecond.
QString dateTimeText(const CalendarTime& t);

// The per-model memory of the previous GPS packet.
struct PacketClock {
    uint64_t previousNs = 0;
    CalendarTime previousFields{0, 0, 0, 0, 0, 0, 0, 0};

    // The time record of a packet at `t`; call remember() once it is used.
    GPSTime stamp(const CalendarTime& t, uint64_t nowNs) const;
    void remember(const CalendarTime& t, uint64_t nowNs)
    {
        previousFields = t;
        previousNs = nowNs;
    }
};

// Point timestamps in ms, rising evenly through the packet so that the last
// point carries the packet's own time. The per-point offset is held in a
// signed 32-bit integer and wraps beyond 2^31 ns, as the firmware tools do.
void stampPoints(decode::DecodedPacket& packet, uint64_t nowNs, uint64_t previousNs);

// Applies a GPS-stamped packet's calendar to `packet`: dateTime text, time
// stamps. Returns the packet time in ns.
uint64_t applyCalendar(decode::DecodedPacket& packet, const CalendarTime& t, uint64_t previousNs);

}  // namespace tern
}  // namespace lidar
