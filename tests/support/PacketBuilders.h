#pragma once
// Builders for hand-made packets, so tests state the fields they care about.

#include <QByteArray>
#include <QPair>
#include <QString>
#include <QVector>
#include <cstdint>
#include <initializer_list>

namespace testing {

void putBe16(QByteArray& packet, int offset, uint16_t value);

// A 92-byte Tern data packet: start angle in 1/100 degree, period word and
// the 42 distance words (missing words are 0xFFFF).
QByteArray ternPacket(uint16_t startCentidegrees, uint16_t period, const QVector<uint16_t>& words);
// The same with every one of the 42 words set to `word`.
QByteArray ternPacketFilled(uint16_t startCentidegrees, uint16_t period, uint16_t word);
// A 186-byte Tern parameters reply: date, version and filter code at 175..181,
// FA FB in its last two bytes.
QByteArray ternReply(std::initializer_list<uint8_t> dateVersion, uint8_t filterCode);

// Data packets for `revolutions` whole turns of a Tern at 15 degrees a packet,
// every word `word`; the first packet starts at `firstStart`.
QVector<QByteArray> ternRevolutions(int revolutions, uint16_t word = 1000, uint16_t firstStart = 0);

// The calendar a GPS-stamped packet carries (full year).
struct GpsStamp {
    int year = 2024, month = 5, day = 20, hour = 12, minute = 0, second = 0;
    int millisecond = 0, microsecond = 0;

    // The stamp `microseconds` later, carried through the calendar.
    GpsStamp later(qint64 microseconds) const;
    // The packet time in nanoseconds as the decoders compute it, in double
    // precision (so to within about 256 ns), the calendar read as UTC.
    quint64 packetTimeNs() const;
};

// A 102-byte Tern_GPS data packet (missing words are 0xFFFF).
QByteArray ternGpsPacket(uint16_t startCentidegrees, uint16_t period, const QVector<uint16_t>& words,
                         const GpsStamp& stamp);
// A length-field packet of Tern_P and Tern_Plus: L = 20 + 2 * words.
QByteArray ternLengthPacket(uint16_t startCentidegrees, uint16_t period, const QVector<uint16_t>& words,
                            const GpsStamp& stamp);
// A 188-byte parameters reply: the six date and version bytes from
// `versionOffset`, the filter code at 181, FA FB at 186.
QByteArray ternLongReply(int versionOffset, std::initializer_list<uint8_t> dateVersion, uint8_t filterCode);

struct WrenPlusGroup {
    uint16_t distance0;
    uint8_t intensity0;
    uint16_t distance1;
    uint8_t intensity1;
};
struct WrenKiteGroup {
    uint16_t distance;
    uint8_t intensity;
};
// A 108-byte Wren_Plus data packet with a correct checksum; missing groups are 0.
QByteArray wrenPlusPacket(uint16_t period, uint16_t startCentidegrees, uint16_t endCentidegrees,
                          const QVector<WrenPlusGroup>& groups, uint16_t ambient = 0);
// A 58-byte Wren_Kite data packet with a correct checksum; missing groups are 0.
QByteArray wrenKitePacket(uint16_t period, uint16_t startCentidegrees, uint16_t endCentidegrees,
                          const QVector<WrenKiteGroup>& groups);
// Sets a Wren packet's last byte to the sum of the others modulo 256.
void sealChecksum(QByteArray& packet);
// A 188-byte Wren reply: device parameter at 172, the six date and version
// bytes at 173, filter state at 181, FA FB at 186.
QByteArray wrenReply(uint8_t deviceParam, std::initializer_list<uint8_t> dateVersion, uint8_t filterState);

// A 188-byte command as the lidars expect it, written out here independently
// of the decoders: A5 5A, class at 2, `extra` bytes, code at 184, parameter at
// 185, FA FB at 186, zeros elsewhere.
QByteArray commandBytes(uint8_t commandClass, uint8_t code, uint8_t parameter,
                        const QVector<QPair<int, uint8_t>>& extra = {});

// Data packets of `revolutions` whole turns of `model` (any of the six), 24
// packets of 15 degrees a turn, with varied distances, intensities and (for
// the GPS-stamped models) times 4167 us apart. The first packet starts at 5
// degrees, so each turn's last packet reaches past 360 and leaves early
// points for the next; one more packet opens a further turn and so closes
// the last one. Tern_P packets are meant for firmware 215 or later. No packet
// holds a trailer pattern before its end.
QVector<QByteArray> revolutionPackets(const QString& model, int revolutions);

}  // namespace testing
