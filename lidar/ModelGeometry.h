#pragma once
// What a laser scan of a model needs to know about its measurements: the
// angle between neighbouring measurements and the distances a packet can
// carry. Both follow from the packet geometry and distance width of the
// model's descriptor:
//
// - the Tern family spreads a packet's 15 degrees over the points it makes:
//   fixed-size packets make 41 of their 42 words where the 41st is dropped
//   whenever the 40th holds a distance, length-field packets one per word,
//   and their word count follows from the length field;
// - the Wren family puts 16 groups from a start to an end azimuth, both
//   carried by every packet.
//
// Distances are millimetres in 15 or 16 bits; 0 is no echo, so the nearest
// measurable distance is 1 mm.

#include <QByteArray>
#include <QString>
#include <cstdint>

namespace lidar {

struct ScanGeometry {
    double angularStep = 0.0;  // degrees between neighbouring measurements
    double rangeMin = 0.0;     // metres
    double rangeMax = 0.0;     // metres

    bool isValid() const { return angularStep > 0.0 && rangeMax > rangeMin; }
};

struct ModelDescriptor;

// The geometry of `model` read from `bytes`, which begin with one whole data
// packet of that model (anything may follow it). Invalid for an unknown
// model or bytes that do not begin with such a packet.
ScanGeometry scanGeometry(const QString& model, const QByteArray& bytes);
ScanGeometry scanGeometry(const ModelDescriptor& model, const QByteArray& bytes);

// The degrees one data packet covers, which the stream-health accounting
// adds up, in 1/100 degree as the packets carry their angles (whole numbers
// add up and meet exactly): in the decoder's azimuths before the 360-degree
// correction, so `end` may pass 36000 (those degrees belong to the next
// revolution).
struct PacketCover {
    int32_t start = 0;
    int32_t end = 0;

    bool known() const { return end > start; }
    int32_t width() const { return end - start; }
};

namespace packetcover {

constexpr int32_t kTurn = 36000;
constexpr int32_t kTernPacket = 1500;

// The Tern family: a packet starts at its start angle and covers 15
// degrees, however many points its words make.
inline PacketCover tern(uint16_t startCode)
{
    return {startCode, startCode + kTernPacket};
}

// The Wren family: a packet carries the azimuths of its first and last
// group; sixteen groups lie evenly between them and each stands for the
// step that follows it, so the packet covers 16/15 of its start-to-end
// span. Angles above 360 degrees lose 360, and a packet whose end lies
// below its start crosses 0, as the decoders read them.
inline PacketCover wren(uint16_t startCode, uint16_t endCode)
{
    const int32_t start = startCode > kTurn ? startCode - kTurn : startCode;
    const int32_t end = endCode > kTurn ? endCode - kTurn : endCode;
    const int32_t span = start > end ? end + kTurn - start : end - start;
    return {start, start + span * 16 / 15};
}

}  // namespace packetcover

}  // namespace lidar
