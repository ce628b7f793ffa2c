#include "BenchPackets.h"

#include <QStringList>
#include <cmath>

namespace bench {
namespace {

constexpr int kPacketsPerTurn = 24;
constexpr uint16_t kPeriod = 4167;  // 600 r/min

void put16(QByteArray& p, int offset, int value)
{
    p[offset] = char((value >> 8) & 0xFF);
    p[offset + 1] = char(value & 0xFF);
}

// A wall of distances that varies a little, so that nothing is constant.
int distanceAt(int packet, int sample)
{
    return 1000 + ((packet * 37 + sample * 11) % 3000);
}

void putHeaderTrailer(QByteArray& p)
{
    p[0] = char(0xA5);
    p[1] = char(0x5A);
    p[p.size() - 2] = char(0xFA);
    p[p.size() - 1] = char(0xFB);
}

// year-2000, month, day, hour, minute, second, ms (16), us (16) at `offset`.
void putCalendar(QByteArray& p, int offset, int packetIndex)
{
    const qint64 us = qint64(packetIndex) * 1000000 / 240;
    const int seconds = int(us / 1000000);
    p[offset] = char(24);
    p[offset + 1] = char(5);
    p[offset + 2] = char(20);
    p[offset + 3] = char(10 + seconds / 3600 % 10);
    p[offset + 4] = char(seconds / 60 % 60);
    p[offset + 5] = char(seconds % 60);
    put16(p, offset + 6, int(us / 1000 % 1000));
    put16(p, offset + 8, int(us % 1000));
}

// Tern family: 42 words from `wordsAt`, start angle at `angleAt`.
QByteArray ternFamilyPacket(int size, int angleAt, int speedAt, int wordsAt, int index, bool wholeWords)
{
    QByteArray p(size, '\0');
    putHeaderTrailer(p);
    put16(p, angleAt, (index % kPacketsPerTurn) * 1500);
    put16(p, speedAt, kPeriod);
    for (int w = 0; w < 42; ++w) {
        const int d = distanceAt(index, w);
        put16(p, wordsAt + 2 * w, wholeWords ? d : (d | ((w % 3 == 0) ? 0x8000 : 0)));
    }
    return p;
}

QByteArray wrenPacket(bool twoChannels, int index)
{
    const int size = twoChannels ? 108 : 58;
    const int group = twoChannels ? 6 : 3;
    QByteArray p(size, '\0');
    p[0] = char(0xA5);
    p[1] = char(0x5A);
    p[2] = char(twoChannels ? 0x6C : 0x3A);
    put16(p, 3, kPeriod);
    const int start = (index % kPacketsPerTurn) * 1500;
    put16(p, 5, start);
    for (int k = 0; k < 16; ++k) {
        const int at = 7 + k * group;
        put16(p, at, distanceAt(index, k));
        p[at + 2] = char(100 + k);
        if (twoChannels) {
            put16(p, at + 3, distanceAt(index, k + 16));
            p[at + 5] = char(50 + k);
        }
    }
    const int endAt = twoChannels ? 105 : 55;
    if (twoChannels)
        put16(p, 103, 77);  // ambient
    // Sixteen samples a packet, one every 15/16 degree.
    put16(p, endAt, (start + 1500 * 15 / 16) % 36000);
    uint8_t sum = 0;
    for (int i = 0; i < size - 1; ++i)
        sum = uint8_t(sum + uint8_t(p[i]));
    p[size - 1] = char(sum);
    return p;
}

QByteArray packetFor(const QString& model, int index)
{
    if (model == QLatin1String("Tern"))
        return ternFamilyPacket(92, 2, 4, 6, index, false);
    if (model == QLatin1String("Tern_GPS")) {
        QByteArray p = ternFamilyPacket(102, 2, 4, 6, index, false);
        putCalendar(p, 90, index);
        return p;
    }
    if (model == QLatin1String("Tern_P") || model == QLatin1String("Tern_Plus")) {
        QByteArray p = ternFamilyPacket(104, 4, 6, 8, index, true);
        put16(p, 2, 104);
        putCalendar(p, 104 - 12, index);
        return p;
    }
    if (model == QLatin1String("Wren_Plus"))
        return wrenPacket(true, index);
    if (model == QLatin1String("Wren_Kite"))
        return wrenPacket(false, index);
    return QByteArray();
}

}  // namespace

bool canBuild(const QString& model)
{
    static const QStringList known{"Tern", "Tern_GPS", "Tern_P", "Tern_Plus", "Wren_Plus", "Wren_Kite"};
    return known.contains(model);
}

Stream buildStream(const QString& model, int revolutions)
{
    Stream s;
    if (!canBuild(model))
        return s;
    const int count = revolutions * kPacketsPerTurn;
    s.packets.reserve(count);
    for (int i = 0; i < count; ++i)
        s.packets.append(packetFor(model, i));
    if (model == QLatin1String("Tern_P")) {
        s.versionNumber = 215;
        s.recordPrefix.append(QByteArray::number(s.versionNumber));
    }
    return s;
}

}  // namespace bench
