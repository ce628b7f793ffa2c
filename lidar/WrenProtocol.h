#pragma once
// What the two Wren models share: fixed-size data packets that carry a type
// byte and end in a checksum, 188-byte command replies found among them,
// sixteen measurement groups spread from a start to an end azimuth, and the
// command packets.
//
// Command and reply packets are 188 bytes: A5 5A, class byte 2, FA FB at
// 186..187. Commands carry their code at 184 and the frequency code at 185;
// a reply holds the device parameter at 172, six version numbers at
// 173..178 (year - 2000 first) and the filter state at 181.

#include "DecodeCommon.h"
#include "LidarAnalysis.h"
#include "ModelDescriptor.h"
#include "ModelGeometry.h"
#include "StreamCounters.h"

#include <QByteArray>
#include <QVector>
#include <cstdint>

namespace lidar {
namespace wren {

constexpr int kReplySize = 188;
constexpr int kReplyVersionAt = 173;
constexpr int kGroups = 16;
// Class bytes: reading parameters (and the reply) 0x55, setting the filter 0x01.
constexpr uint8_t kReadParamClass = 0x55;
constexpr uint8_t kSetFilterClass = 0x01;

// A piece waiting at a header is at most a reply long; more bytes than
// this before it, junk that came along with it, are dropped.
constexpr int kMaxPending = 2048;

// The sum of the packet's bytes before its last, modulo 256, equals the last.
bool checksumMatches(decode::Bytes bytes, int offset, int packetSize);

enum class Piece { None, DataPacket, Reply, Refused };

// What lies at the first header at or after `from`:
// - a data packet of `packetSize` bytes whose checksum and type byte (at 2)
//   are right: it is consumed with everything before it;
// - otherwise a reply, 188 bytes with FA FB at 186: the whole buffer is
//   consumed, whatever followed the reply included;
// - 188 bytes from the header without FA FB at 186: the packet-sized piece
//   at the header is refused and the whole buffer is consumed to find the
//   stream again (Refused);
// - a packet or reply not yet complete, or no header: nothing more is
//   consumed (None).
// `used` moves on past what is consumed; `piece` is where the packet, reply
// or refused piece lies.
Piece cutPiece(decode::Bytes bytes, int& used, int packetSize, uint8_t packetType, decode::Bytes& piece);

// The live loop of both Wren models: data packets go to `onData` in order, a
// reply to `onReply`; then what was consumed, and what can never become a
// packet, is dropped from the buffer (see keepUnconsumed). `counters` hear
// of refused pieces (rejected) and of every other byte consumed outside a
// packet or reply (skipped).
template <typename OnData, typename OnReply>
void parseStream(QByteArray& buffer, StreamCounters& counters, int packetSize, uint8_t packetType,
                 OnData&& onData, OnReply&& onReply)
{
    int used = 0;
    {
        // Held while the pieces are handled, which only read them.
        const QByteArray held = buffer;
        const decode::Bytes bytes(held);
        decode::Bytes piece;
        for (bool more = true; more;) {
            const int from = used;
            const Piece kind = cutPiece(bytes, used, packetSize, packetType, piece);
            // Consumed: what lies outside the piece was passed over. Counted
            // in stream order: a frame's totals hold what came before it.
            if (kind != Piece::None)
                counters.addSkipped(quint64((used - from) - piece.size));
            switch (kind) {
            case Piece::DataPacket:
                onData(piece);
                break;
            case Piece::Reply:
                onReply(piece);
                more = false;  // everything is consumed now
                break;
            case Piece::Refused:
                counters.addRejected(1);
                more = false;
                break;
            case Piece::None:
                more = false;
                break;
            }
        }
    }
    counters.addSkipped(quint64(decode::keepUnconsumed(buffer, used, kMaxPending) - used));
}

// What every Wren model's descriptor holds: packets framed by their type
// byte and checksum, sixteen groups from the start to the end angle they
// carry, the family's command classes, two filter modes and 16-bit
// distances. A model adds its baud rate and its channels.
template <typename Model>
ModelDescriptor describe()
{
    auto d = ModelDescriptor::of<Model>(ModelFamily::Wren);
    d.packets.framing = PacketFraming::TypedChecksum;
    d.packets.dataSize = Model::kPacketSize;
    d.packets.packetType = Model::kPacketType;
    d.packets.replySize = kReplySize;
    d.packets.replyVersionAt = kReplyVersionAt;
    d.commands.readParamClass = kReadParamClass;
    d.commands.setFilterClass = kSetFilterClass;
    d.commands.filterModes = 2;
    d.commands.deviceParam = DeviceParam::ValueAt172;
    d.geometry.span = PacketSpan::StartToEnd;
    d.geometry.startAngleAt = Model::kStartAngleAt;
    d.geometry.endAngleAt = Model::kEndAngleAt;
    d.geometry.measurementsAt = Model::kGroupsAt;
    d.geometry.groups = kGroups;
    d.distanceBits = 16;
    return d;
}

// The offline rule of both Wren models for one recorded element: every
// element long enough to hold the fields is taken as a data packet (no
// header, type or checksum test), decoded by `decodePacket` and placed in
// `state`; completed frames are appended to `frames`. No packet ends the
// parse; a shorter element counts as rejected.
template <typename Azimuth, typename Previous, typename DecodePacket>
bool addRecorded(const QByteArray& packet, int packetSize, DecodePacket&& decodePacket,
                 decode::OfflineFrames<Previous>& state, QVector<LidarDataPoint_V4>& frames)
{
    if (packet.size() < packetSize) {
        ++state.totals.rejectedPackets;
        return true;
    }
    decode::DecodedPacket& decoded = decode::scratchPacket();
    decodePacket(packet, decoded);
    state.template place<Azimuth>(decoded, frames);
    return true;
}

// The azimuths of a packet's sixteen groups: start + k * step, in the
// precision the model computes in. Start and end (1/100 degree) above 360
// lose 360; a packet that crosses 0 (start above end) steps over the wrap,
// so its late groups lie above 360 and belong to the next revolution.
template <typename Azimuth>
struct GroupAngles {
    Azimuth start;
    Azimuth step;
    Azimuth at(int group) const { return start + Azimuth(group) * step; }
};

template <typename Azimuth>
GroupAngles<Azimuth> groupAngles(uint16_t startCode, uint16_t endCode)
{
    Azimuth start = Azimuth(startCode) / Azimuth(100);
    Azimuth end = Azimuth(endCode) / Azimuth(100);
    if (start > Azimuth(360))
        start -= Azimuth(360);
    if (end > Azimuth(360))
        end -= Azimuth(360);
    const Azimuth span = start > end ? end + Azimuth(360) - start : end - start;
    return {start, span / Azimuth(15)};
}

// The sixteen azimuths of a packet with these start and end codes, their
// sines and cosines and the degrees the packet covers, from the calling
// thread's table.
template <typename Azimuth>
const decode::PacketAngles<Azimuth>& packetAngles(uint16_t startCode, uint16_t endCode)
{
    return decode::PacketAngleTable<Azimuth, 1>::forThisThread().lookUp(
        startCode, endCode, [&](decode::PacketAngles<Azimuth>& slot) {
            const GroupAngles<Azimuth> angles = groupAngles<Azimuth>(startCode, endCode);
            slot.azimuths.resize(kGroups);
            for (int k = 0; k < kGroups; ++k)
                slot.azimuths[size_t(k)] = angles.at(k);
            slot.cover = packetcover::wren(startCode, endCode);
        });
}

// Version text (unsigned bytes), filter mode (0 when the state is 1,
// otherwise 1) and device parameter of a reply into `param`.
void decodeReply(decode::Bytes reply, LidarParam& param);

QByteArray readParamCommand(uint8_t frequency);         // class 0x55, code 3
QByteArray setFrequencyCommand(uint8_t frequency);      // class 0x55, code 1
QByteArray setDeviceParamCommand(uint8_t value);        // class 0x55, code 10, value at 172
// Class 0x01, code 6; byte 181 is 1 for mode 0 "Normal filtering" and 0 for
// every other mode.
QByteArray setFilterCommand(int mode, uint8_t frequency);

}  // namespace wren
}  // namespace lidar
