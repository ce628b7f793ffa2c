#pragma once
// Machinery shared by every model decoder: reading big-endian fields, the
// points of one packet before they are placed, placing them into the frame
// being built or the next one at the azimuth wrap, and command packets.

#include "LidarRecords.h"

#include <QByteArray>
#include <QVector>
#include <cmath>
#include <cstdint>
#include <initializer_list>
#include <utility>
#include <vector>

namespace lidar {
namespace decode {

inline uint8_t u8(const QByteArray& b, int offset)
{
    return static_cast<uint8_t>(b.constData()[offset]);
}
inline int8_t s8(const QByteArray& b, int offset)
{
    return static_cast<int8_t>(b.constData()[offset]);
}
inline uint16_t be16(const QByteArray& b, int offset)
{
    return static_cast<uint16_t>((u8(b, offset) << 8) | u8(b, offset + 1));
}

// Revolutions per minute from the period word the lidars send.
inline int32_t motorSpeedFromPeriod(uint16_t period)
{
    return period == 0 ? 0 : static_cast<int32_t>(2500000 / period);
}

extern const QByteArray kHeader;   // A5 5A
extern const QByteArray kTrailer;  // FA FB

// One point of a packet with its azimuth before the 360-degree correction.
// `keep` false: the point takes part in the revolution test but is not stored.
struct PacketPoint {
    int32_t id = 0;
    double azimuth = 0.0;
    LidarPoint point;
    bool keep = true;
};

// What one data packet contributes: frame-level values and its points.
struct DecodedPacket {
    int32_t motorSpeed = -1;
    bool hasAmbient = false;
    int32_t ambient = -1;
    bool hasDateTime = false;
    QString dateTime;
    std::vector<PacketPoint> points;

    void reset()
    {
        motorSpeed = -1;
        hasAmbient = false;
        hasDateTime = false;
        points.clear();
    }
};

// Point at `azimuth` degrees and `distance` mm; x uses the sine, y the cosine.
inline PacketPoint makePoint(int32_t id, double azimuth, int32_t distance, int32_t intensity)
{
    PacketPoint p;
    p.id = id;
    p.azimuth = azimuth;
    const double angle = azimuth * 3.141592653589793 / 180.0;
    p.point.x = static_cast<float>(std::sin(angle) * distance / 1000.0);
    p.point.y = static_cast<float>(std::cos(angle) * distance / 1000.0);
    p.point.z = 0.0f;
    p.point.distance = distance;
    p.point.intensity = intensity;
    p.point.timestamp = -1;
    return p;
}

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
        current.dateTime = packet.dateTime;

    for (const PacketPoint& p : packet.points) {
        const Azimuth azimuth = static_cast<Azimuth>(p.azimuth);
        const Azimuth before = static_cast<Azimuth>(previous);
        if (before > azimuth && std::abs(before - azimuth) > Azimuth(15))
            endRevolution();
        previous = static_cast<Previous>(azimuth);
        if (!p.keep)
            continue;
        LidarPoint point = p.point;
        if (azimuth > Azimuth(360)) {
            point.azimuth = static_cast<float>(azimuth - Azimuth(360));
            next.points[p.id].push_back(point);
        } else {
            point.azimuth = static_cast<float>(azimuth);
            current.points[p.id].push_back(point);
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
QString versionText(const QByteArray& reply, int offset, bool signedBytes);

}  // namespace decode
}  // namespace lidar
