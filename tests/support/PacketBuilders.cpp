#include "PacketBuilders.h"

namespace testing {

void putBe16(QByteArray& packet, int offset, uint16_t value)
{
    packet[offset] = char(value >> 8);
    packet[offset + 1] = char(value & 0xFF);
}

QByteArray ternPacket(uint16_t start, uint16_t period, const QVector<uint16_t>& words)
{
    QByteArray p(92, char(0xFF));
    p[0] = char(0xA5);
    p[1] = char(0x5A);
    putBe16(p, 2, start);
    putBe16(p, 4, period);
    for (int i = 0; i < words.size() && i < 42; ++i)
        putBe16(p, 6 + 2 * i, words[i]);
    p[90] = char(0xFA);
    p[91] = char(0xFB);
    return p;
}

QByteArray ternPacketFilled(uint16_t start, uint16_t period, uint16_t word)
{
    return ternPacket(start, period, QVector<uint16_t>(42, word));
}

QByteArray ternReply(std::initializer_list<uint8_t> dateVersion, uint8_t filterCode)
{
    QByteArray p(186, '\0');
    p[0] = char(0xA5);
    p[1] = char(0x5A);
    int i = 175;
    for (uint8_t b : dateVersion)
        p[i++] = char(b);
    p[181] = char(filterCode);
    p[184] = char(0xFA);
    p[185] = char(0xFB);
    return p;
}

QVector<QByteArray> ternRevolutions(int revolutions, uint16_t word, uint16_t firstStart)
{
    QVector<QByteArray> packets;
    for (int r = 0; r < revolutions; ++r)
        for (int k = 0; k < 24; ++k)
            packets.append(ternPacketFilled(uint16_t((firstStart + k * 1500) % 36000), 4167, word));
    return packets;
}

}  // namespace testing
