#include "PacketBuilders.h"

#include <QDateTime>
#include <algorithm>
#include <numeric>

namespace testing {

namespace {

// A packet of `size` bytes filled with `fill`, A5 5A first and FA FB last.
QByteArray framed(int size, char fill = '\0')
{
    QByteArray p(size, fill);
    p[0] = char(0xA5);
    p[1] = char(0x5A);
    p[size - 2] = char(0xFA);
    p[size - 1] = char(0xFB);
    return p;
}

// A parameters reply: the six date and version bytes from `versionOffset`,
// the filter code at 181.
QByteArray reply(int size, int versionOffset, std::initializer_list<uint8_t> dateVersion, uint8_t filterCode)
{
    QByteArray p = framed(size);
    std::copy(dateVersion.begin(), dateVersion.end(), p.begin() + versionOffset);
    p[181] = char(filterCode);
    return p;
}

// Starts a Wren packet; its last bytes are the end angle and the checksum.
QByteArray wrenPacket(int size, uint8_t type, uint16_t period, uint16_t start, uint16_t end)
{
    QByteArray p = framed(size);
    p[2] = char(type);
    putBe16(p, 3, period);
    putBe16(p, 5, start);
    putBe16(p, size - 3, end);
    return p;
}

void putStamp(QByteArray& p, int offset, const GpsStamp& s)
{
    const int calendar[] = {s.year - 2000, s.month, s.day, s.hour, s.minute, s.second};
    for (int i = 0; i < 6; ++i)
        p[offset + i] = char(calendar[i]);
    putBe16(p, offset + 6, uint16_t(s.millisecond));
    putBe16(p, offset + 8, uint16_t(s.microsecond));
}

// Distance words with high bytes 03..05 or 83..85 (every third word has the
// flag bit), so that no A5 5A or FA FB can appear across them.
QVector<uint16_t> variedWords(int packet, int count)
{
    QVector<uint16_t> words(count);
    for (int i = 0; i < count; ++i) {
        const uint16_t base = uint16_t(0x0300 + (packet * 7 + i * 13) % 0x300);
        words[i] = (i % 3 == 2) ? uint16_t(base | 0x8000) : base;
    }
    return words;
}

}  // namespace

void putBe16(QByteArray& packet, int offset, uint16_t value)
{
    packet[offset] = char(value >> 8);
    packet[offset + 1] = char(value & 0xFF);
}

QByteArray ternPacket(uint16_t start, uint16_t period, const QVector<uint16_t>& words)
{
    QByteArray p = framed(92, char(0xFF));
    putBe16(p, 2, start);
    putBe16(p, 4, period);
    for (int i = 0; i < words.size() && i < 42; ++i)
        putBe16(p, 6 + 2 * i, words[i]);
    return p;
}

QByteArray ternPacketFilled(uint16_t start, uint16_t period, uint16_t word)
{
    return ternPacket(start, period, QVector<uint16_t>(42, word));
}

QByteArray ternReply(std::initializer_list<uint8_t> dateVersion, uint8_t filterCode)
{
    return reply(186, 175, dateVersion, filterCode);
}

QVector<QByteArray> ternRevolutions(int revolutions, uint16_t word, uint16_t firstStart)
{
    QVector<QByteArray> packets;
    for (int r = 0; r < revolutions; ++r)
        for (int k = 0; k < 24; ++k)
            packets.append(ternPacketFilled(uint16_t((firstStart + k * 1500) % 36000), 4167, word));
    return packets;
}

GpsStamp GpsStamp::later(qint64 microseconds) const
{
    const qint64 totalUs = qint64(millisecond) * 1000 + microsecond + microseconds;
    const QDateTime t = QDateTime(QDate(year, month, day), QTime(hour, minute, second), Qt::UTC).addMSecs(totalUs / 1000);
    return {t.date().year(), t.date().month(), t.date().day(), t.time().hour(), t.time().minute(), t.time().second(),
            t.time().msec(), int(totalUs % 1000)};
}

quint64 GpsStamp::packetTimeNs() const
{
    const QDateTime t(QDate(year, month, day), QTime(hour, minute, second), Qt::UTC);
    return quint64(double(t.toSecsSinceEpoch()) * 1e9 + millisecond * 1e6 + microsecond * 1e3);
}

QByteArray ternGpsPacket(uint16_t start, uint16_t period, const QVector<uint16_t>& words, const GpsStamp& stamp)
{
    QByteArray p = ternPacket(start, period, words).insert(90, QByteArray(10, '\0'));
    putStamp(p, 90, stamp);
    return p;
}

QByteArray ternLengthPacket(uint16_t start, uint16_t period, const QVector<uint16_t>& words, const GpsStamp& stamp)
{
    const int size = 20 + 2 * words.size();
    QByteArray p = framed(size);
    putBe16(p, 2, uint16_t(size));
    putBe16(p, 4, start);
    putBe16(p, 6, period);
    for (int i = 0; i < words.size(); ++i)
        putBe16(p, 8 + 2 * i, words[i]);
    putStamp(p, size - 12, stamp);
    return p;
}

QByteArray ternLongReply(int versionOffset, std::initializer_list<uint8_t> dateVersion, uint8_t filterCode)
{
    return reply(188, versionOffset, dateVersion, filterCode);
}

void sealChecksum(QByteArray& packet)
{
    // Summing signed or unsigned bytes gives the same value modulo 256.
    packet[packet.size() - 1] = char(std::accumulate(packet.cbegin(), packet.cend() - 1, 0));
}

QByteArray wrenPlusPacket(uint16_t period, uint16_t start, uint16_t end, const QVector<WrenPlusGroup>& groups,
                          uint16_t ambient)
{
    QByteArray p = wrenPacket(108, 0x6C, period, start, end);
    for (int k = 0; k < groups.size() && k < 16; ++k) {
        putBe16(p, 7 + 6 * k, groups[k].distance0);
        p[9 + 6 * k] = char(groups[k].intensity0);
        putBe16(p, 10 + 6 * k, groups[k].distance1);
        p[12 + 6 * k] = char(groups[k].intensity1);
    }
    putBe16(p, 103, ambient);
    sealChecksum(p);
    return p;
}

QByteArray wrenKitePacket(uint16_t period, uint16_t start, uint16_t end, const QVector<WrenKiteGroup>& groups)
{
    QByteArray p = wrenPacket(58, 0x3A, period, start, end);
    for (int k = 0; k < groups.size() && k < 16; ++k) {
        putBe16(p, 7 + 3 * k, groups[k].distance);
        p[9 + 3 * k] = char(groups[k].intensity);
    }
    sealChecksum(p);
    return p;
}

QByteArray wrenReply(uint8_t deviceParam, std::initializer_list<uint8_t> dateVersion, uint8_t filterState)
{
    QByteArray p = ternLongReply(173, dateVersion, filterState);
    p[2] = char(0x55);
    p[172] = char(deviceParam);
    return p;
}

QByteArray commandBytes(uint8_t commandClass, uint8_t code, uint8_t parameter,
                        const QVector<QPair<int, uint8_t>>& extra)
{
    QByteArray p = framed(188);
    p[2] = char(commandClass);
    for (const auto& byte : extra)
        p[byte.first] = char(byte.second);
    p[184] = char(code);
    p[185] = char(parameter);
    return p;
}

QVector<QByteArray> revolutionPackets(const QString& model, int revolutions)
{
    const uint16_t period = 4167;  // 600 r/min
    QVector<QByteArray> packets;
    for (int k = 0; k < revolutions * 24 + 1; ++k) {
        const uint16_t start = uint16_t((500 + k * 1500) % 36000);
        const uint16_t end = uint16_t((start + 1400) % 36000);
        const GpsStamp stamp = GpsStamp().later(qint64(k) * 4167);
        if (model == QLatin1String("Tern")) {
            packets.append(ternPacket(start, period, variedWords(k, 42)));
        } else if (model == QLatin1String("Tern_GPS")) {
            packets.append(ternGpsPacket(start, period, variedWords(k, 42), stamp));
        } else if (model == QLatin1String("Tern_P") || model == QLatin1String("Tern_Plus")) {
            packets.append(ternLengthPacket(start, period, variedWords(k, 48), stamp));
        } else if (model == QLatin1String("Wren_Plus")) {
            QVector<WrenPlusGroup> groups(16);
            // Channel 1 measures nothing at each packet's first azimuth.
            for (int g = 0; g < 16; ++g)
                groups[g] = {uint16_t(2000 + (k * 16 + g) % 1000), uint8_t(g * 3),
                             uint16_t(g == 0 ? 0 : 3000 + (k * 5 + g) % 700), uint8_t(100 + g)};
            packets.append(wrenPlusPacket(period, start, end, groups, uint16_t(50 + k % 20)));
        } else if (model == QLatin1String("Wren_Kite")) {
            QVector<WrenKiteGroup> groups(16);
            for (int g = 0; g < 16; ++g)
                groups[g] = {uint16_t(g == 5 ? 0 : 1500 + (k * 16 + g) % 900), uint8_t(g * 7)};
            packets.append(wrenKitePacket(period, start, end, groups));
        }
    }
    return packets;
}

}  // namespace testing
