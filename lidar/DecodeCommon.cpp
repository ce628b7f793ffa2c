#include "DecodeCommon.h"

#include <algorithm>

namespace lidar {
namespace decode {

const QByteArray kHeader("\xA5\x5A", 2);
const QByteArray kTrailer("\xFA\xFB", 2);

int keepUnconsumed(QByteArray& buffer, int used, int maxPending)
{
    const Bytes bytes(buffer);
    const int size = bytes.size;
    // Without a header nothing can start a packet but a last A5.
    const auto headerlessTail = [&] { return size > used && u8(bytes, size - 1) == 0xA5 ? size - 1 : size; };
    const int header = findHeader(bytes, used);
    int keepFrom = used;
    if (header < 0) {
        keepFrom = headerlessTail();
    } else if (size - used > maxPending) {
        keepFrom = header;
        if (size - header > maxPending) {
            const int fits = findHeader(bytes, size - maxPending);
            keepFrom = fits >= 0 ? fits : headerlessTail();
        }
    }
    if (keepFrom > 0)
        buffer.remove(0, keepFrom);
    return keepFrom;
}

DecodedPacket& scratchPacket()
{
    thread_local DecodedPacket packet;
    return packet;
}

SinCos computeSinCos(double azimuth)
{
    const double angle = azimuth * 3.141592653589793 / 180.0;
    return {std::sin(angle), std::cos(angle)};
}

std::vector<LidarPoint>& FrameLines::lookUp(int32_t id)
{
    std::vector<LidarPoint>& line = frame_.points[id];
    if (id == 0 || id == 1) {
        lines_[id] = &line;
        if (line.capacity() < expected_[id])
            line.reserve(expected_[id]);
    }
    return line;
}

void assignLatin1(QString& target, const char* text, int length)
{
    // resize() keeps the storage when the string is not shared.
    target.resize(length);
    QChar* out = target.data();
    for (int i = 0; i < length; ++i)
        out[i] = QLatin1Char(text[i]);
}

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

QString versionText(Bytes reply, int offset, bool signedBytes)
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
