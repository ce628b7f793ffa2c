#include "DecodeCommon.h"

namespace lidar {
namespace decode {

const QByteArray kHeader("\xA5\x5A", 2);
const QByteArray kTrailer("\xFA\xFB", 2);

QByteArray commandPacket(uint8_t commandClass, uint8_t code, uint8_t parameter,
                         std::initializer_list<std::pair<int, uint8_t>> extra)
{
    QByteArray packet(188, '\0');
    packet[0] = char(0xA5);
    packet[1] = char(0x5A);
    packet[2] = char(commandClass);
    for (const auto& byte : extra)
        packet[byte.first] = char(byte.second);
    packet[184] = char(code);
    packet[185] = char(parameter);
    packet[186] = char(0xFA);
    packet[187] = char(0xFB);
    return packet;
}

QString versionText(const QByteArray& reply, int offset, bool signedBytes)
{
    auto at = [&](int i) { return signedBytes ? int(s8(reply, offset + i)) : int(u8(reply, offset + i)); };
    return QStringLiteral("%1.%2.%3-V%4.%5.%6")
        .arg(at(0) + 2000)
        .arg(at(1))
        .arg(at(2))
        .arg(at(3))
        .arg(at(4))
        .arg(at(5));
}

}  // namespace decode
}  // namespace lidar
