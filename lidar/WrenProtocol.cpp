#include "WrenProtocol.h"

namespace lidar {
namespace wren {

using decode::commandPacket;
using decode::u8;

bool checksumMatches(decode::Bytes bytes, int offset, int packetSize)
{
    uint8_t sum = 0;
    for (int i = offset; i < offset + packetSize - 1; ++i)
        sum = uint8_t(sum + u8(bytes, i));
    return sum == u8(bytes, offset + packetSize - 1);
}

Piece cutPiece(decode::Bytes bytes, int& used, int packetSize, uint8_t packetType, decode::Bytes& piece)
{
    const int header = decode::findHeader(bytes, used);
    if (header < 0)
        return Piece::None;
    const int available = bytes.size - header;
    // A packet that has not fully arrived is waited for.
    if (available < packetSize)
        return Piece::None;
    if (u8(bytes, header + 2) == packetType && checksumMatches(bytes, header, packetSize)) {
        piece = decode::Bytes(bytes.data + header, packetSize);
        used = header + packetSize;
        return Piece::DataPacket;
    }
    if (available < kReplySize)
        return Piece::None;
    used = bytes.size;
    // Neither a packet nor a reply: start again from fresh bytes.
    if (u8(bytes, header + 186) != 0xFA || u8(bytes, header + 187) != 0xFB) {
        piece = decode::Bytes(bytes.data + header, packetSize);
        return Piece::Refused;
    }
    piece = decode::Bytes(bytes.data + header, kReplySize);
    return Piece::Reply;
}

void decodeReply(decode::Bytes reply, LidarParam& param)
{
    param.text = decode::versionText(reply, kReplyVersionAt, false);
    param.value1 = u8(reply, 181) == 1 ? 0 : 1;
    param.value2 = u8(reply, 172);
}

QByteArray readParamCommand(uint8_t frequency)
{
    return commandPacket(kReadParamClass, 3, frequency);
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
    return commandPacket(kSetFilterClass, 6, frequency, {{181, uint8_t(mode == 0 ? 1 : 0)}});
}

}  // namespace wren
}  // namespace lidar
