#include "SimPacketEncoders.h"

#include <QDateTime>
#include <cmath>

namespace sim {

namespace {

void put8(QByteArray& p, int offset, int value)
{
    p[offset] = static_cast<char>(value & 0xFF);
}
void put16(QByteArray& p, int offset, int value)
{
    p[offset] = static_cast<char>((value >> 8) & 0xFF);
    p[offset + 1] = static_cast<char>(value & 0xFF);
}

QByteArray framed(int length)
{
    QByteArray p(length, '\0');
    put8(p, 0, 0xA5);
    put8(p, 1, 0x5A);
    return p;
}

void putTrailer(QByteArray& p)
{
    put8(p, p.size() - 2, 0xFA);
    put8(p, p.size() - 1, 0xFB);
}

// year - 2000, month, day, hour, minute, second, ms (16 bits), us (16 bits).
void putCalendar(QByteArray& p, int offset, const CalendarStamp& t)
{
    put8(p, offset, t.year - 2000);
    put8(p, offset + 1, t.month);
    put8(p, offset + 2, t.day);
    put8(p, offset + 3, t.hour);
    put8(p, offset + 4, t.minute);
    put8(p, offset + 5, t.second);
    put16(p, offset + 6, t.millisecond);
    put16(p, offset + 8, t.microsecond);
}

Measurement measurementAt(const PacketContent& c, size_t index)
{
    return index < c.measurements.size() ? c.measurements[index] : Measurement{};
}

template <typename WordOf>
void putWords(QByteArray& p, int offset, int count, const PacketContent& c, WordOf&& wordOf)
{
    for (int i = 0; i < count; ++i)
        put16(p, offset + 2 * i, wordOf(measurementAt(c, size_t(i))));
}

// The shared part of the variable-length Tern packets (Tern_P, Tern_Plus).
template <typename WordOf>
QByteArray variableTernPacket(const PacketContent& c, WordOf&& wordOf)
{
    const int length = kTernVariableLength;
    QByteArray p = framed(length);
    put16(p, 2, length);
    put16(p, 4, centidegrees(c.startAzimuth));
    put16(p, 6, c.period);
    putWords(p, 8, (length - 20) / 2, c, wordOf);
    putCalendar(p, length - 12, c.time);
    putTrailer(p);
    return p;
}

}  // namespace

CalendarStamp calendarFromMicroseconds(qint64 us)
{
    const QDateTime t = QDateTime::fromMSecsSinceEpoch(us / 1000, Qt::UTC);
    CalendarStamp s;
    s.year = t.date().year();
    s.month = t.date().month();
    s.day = t.date().day();
    s.hour = t.time().hour();
    s.minute = t.time().minute();
    s.second = t.time().second();
    s.millisecond = t.time().msec();
    s.microsecond = int(us % 1000);
    return s;
}

uint16_t centidegrees(double azimuth)
{
    long value = std::lround(azimuth * 100.0) % 36000;
    if (value < 0)
        value += 36000;
    return static_cast<uint16_t>(value);
}

uint16_t flaggedWord(const Measurement& m)
{
    if (m.distance == 0)
        return 0xFFFF;
    const uint16_t flag = m.intensity >= kStrongEcho ? 0x8000 : 0;
    return static_cast<uint16_t>(flag | (m.distance > 0x7FFE ? 0x7FFE : m.distance));
}

uint16_t wholeWord(const Measurement& m)
{
    return m.distance;
}

uint8_t byteSum(const QByteArray& bytes, int count)
{
    unsigned sum = 0;
    for (int i = 0; i < count && i < bytes.size(); ++i)
        sum += static_cast<uint8_t>(bytes[i]);
    return static_cast<uint8_t>(sum & 0xFF);
}

QByteArray encodeTern(const PacketContent& c)
{
    QByteArray p = framed(92);
    put16(p, 2, centidegrees(c.startAzimuth));
    put16(p, 4, c.period);
    putWords(p, 6, 42, c, flaggedWord);
    putTrailer(p);
    return p;
}

QByteArray encodeTernP(const PacketContent& c, int versionNumber)
{
    if (versionNumber >= kWholeWordVersion)
        return variableTernPacket(c, wholeWord);
    return variableTernPacket(c, flaggedWord);
}

QByteArray encodeTernGps(const PacketContent& c)
{
    // Bit 15 carries the strong-echo flag as in Tern; the receiver ignores it.
    QByteArray p = framed(102);
    put16(p, 2, centidegrees(c.startAzimuth));
    put16(p, 4, c.period);
    putWords(p, 6, 42, c, flaggedWord);
    putCalendar(p, 90, c.time);
    putTrailer(p);
    return p;
}

QByteArray encodeTernPlus(const PacketContent& c)
{
    // The whole word is the distance; bit 15 would also read as intensity,
    // so the device never sets it (room distances stay far below 32.768 m).
    return variableTernPacket(c, [](const Measurement& m) { return uint16_t(wholeWord(m) & 0x7FFF); });
}

QByteArray encodeWrenPlus(const PacketContent& c)
{
    QByteArray p = framed(108);
    put8(p, 2, 0x6C);
    put16(p, 3, c.period);
    put16(p, 5, centidegrees(c.startAzimuth));
    for (int k = 0; k < 16; ++k) {
        for (int ch = 0; ch < 2; ++ch) {
            const Measurement m = measurementAt(c, size_t(2 * k + ch));
            const int offset = 7 + 6 * k + 3 * ch;
            put16(p, offset, m.distance);
            put8(p, offset + 2, m.intensity);
        }
    }
    put16(p, 103, c.ambient);
    put16(p, 105, centidegrees(c.endAzimuth));
    put8(p, 107, byteSum(p, 107));
    return p;
}

QByteArray encodeWrenKite(const PacketContent& c)
{
    QByteArray p = framed(58);
    put8(p, 2, 0x3A);
    put16(p, 3, c.period);
    put16(p, 5, centidegrees(c.startAzimuth));
    for (int k = 0; k < 16; ++k) {
        const Measurement m = measurementAt(c, size_t(k));
        put16(p, 7 + 3 * k, m.distance);
        put8(p, 9 + 3 * k, m.intensity);
    }
    put16(p, 55, centidegrees(c.endAzimuth));
    put8(p, 57, byteSum(p, 57));
    return p;
}

QByteArray encodePacket(Model model, const PacketContent& c, int versionNumber)
{
    switch (model) {
    case Model::Tern: return encodeTern(c);
    case Model::Tern_P: return encodeTernP(c, versionNumber);
    case Model::Tern_GPS: return encodeTernGps(c);
    case Model::Tern_Plus: return encodeTernPlus(c);
    case Model::Wren_Plus: return encodeWrenPlus(c);
    case Model::Wren_Kite: return encodeWrenKite(c);
    }
    return QByteArray();
}

}  // namespace sim
