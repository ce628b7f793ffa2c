#include "WrenProtocol.h"

namespace lidar {
namespace wren {

using decode::commandPacket;
using decode::u8;

bool checksumMatches(const QByteArray& buffer, int offset, int packetSize)
{
    uint8_t sum = 0;
    for (int i = offset; i < offset + packetSize - 1; ++i)
        sum = uint8_t(sum + u8(buffer, i));
    return sum == u8(buffer, offset + packetSize - 1);
}

Piece cutPiece(QByteArray& buffer, int packetSize, uint8_t packetType, QByteArray& piece)
{
    const int header = buffer.indexOf(decode::kHeader);
    if (header < 0)
        return Piece::None;
    const int available = buffer.size() - header;
    // A packet that has not fully arrived is waited for.
    if (available < packetSize)
        return Piece::None;
    if (u8(buffer, header + 2) == packetType && checksumMatches(buffer, header, packetSize)) {
        piece = buffer.mid(header, packetSize);
        buffer.remove(0, header + packetSize);
        return Piece::DataPacket;
    }
    if (available < kReplySize)
        return Piece::None;
    if (u8(buffer, header + 186) != 0xFA || u8(buffer, header + 187) != 0xFB) {
        // Neither a packet nor a reply: start again from fresh bytes.
        buffer.clear();
        return Piece::None;
    }
    piece = buffer.mid(header, kReplySize);
    buffer.clear();
    return Piece::Reply;
}

void decodeReply(const QByteArray& reply, LidarParam& param)
{
    param.text = decode::versionText(reply, 173, false);
    param.value1 = u8(reply, 181) == 1 ? 0 : 1;
    param.value2 = u8(reply, 172);
}

QByteArray readParamCommand(uint8_t frequency)
{
    return commandPacket(0x55, 3, frequency);
}

QByteArray setFrequencyCommand(uint8_t frequency)
{
    return commandPacket(0x55, 1, frequency);
}

QByteArray setDeviceParamCommand(uint8_t value)
{
    return commandPacket(0x55, 10, 0, {{172, value}});
}

QByteArray setFilterCommand(int mode, uint8_t frequency)
{
    return commandPacket(0x01, 6, frequency, {{181, uint8_t(mode == 0 ? 1 : 0)}});
}

}  // namespace wren
}  // namespace lidar
