#include "TernProtocol.h"

#include <algorithm>
#include <charconv>
#include <ctime>

namespace lidar {
namespace tern {

Cut cutPiece(decode::Bytes bytes, int from, int fallbackLength)
{
    Cut cut;
    const int start = decode::findHeader(bytes, from);
    if (start < 0)
        return cut;
    const int end = decode::findTrailer(bytes, start);
    if (end >= 0) {
        cut.start = start;
        cut.size = end + 2 - start;
        cut.next = end + 2;
        return cut;
    }
    // A reply may carry no trailer where the scan expects one.
    if (fallbackLength <= 0 || bytes.size - from < fallbackLength)
        return cut;
    cut.start = start;
    cut.next = std::min(start + fallbackLength, bytes.size);
    cut.size = cut.next - start;
    return cut;
}

bool lacksTrailer(decode::Bytes piece)
{
    const int start = decode::findHeader(piece, 0);
    // Without a header the trailer search starts at the last byte.
    const int from = start < 0 ? piece.size - 1 : start;
    return from < 0 || decode::findTrailer(piece, from) < 0;
}

uint8_t filterCode(int mode)
{
    switch (mode) {
    case 0: return 11;
    case 1: return 10;
    case 2: return 12;
    default: return 0;
    }
}

int filterModeFromCode(uint8_t code)
{
    if (code == 11)
        return 0;
    if (code == 12)
        return 2;
    return 1;
}

void decodeBody(decode::Bytes packet, int angleOffset, int wordsOffset, int wordCount, WordEncoding encoding,
                bool dropsThe41st, decode::DecodedPacket& out)
{
    using decode::be16;
    out.reset();
    out.motorSpeed = decode::motorSpeedFromPeriod(be16(packet, angleOffset + 2));
    // The 41st measurement is kept only when the 40th word is zero.
    const int dropped = dropsThe41st && wordCount > 40 && be16(packet, wordsOffset + 2 * 39) != 0 ? 40 : -1;
    const auto makesPoint = [&](int w, uint16_t word) {
        return w != dropped && !(encoding.skipsNoMeasurement && word == 0xFFFF);
    };
    // The step depends on how many points the packet makes: count first.
    int count = std::max(wordCount, 0);
    if (encoding.skipsNoMeasurement || dropped >= 0) {
        count = 0;
        for (int w = 0; w < wordCount; ++w)
            count += makesPoint(w, be16(packet, wordsOffset + 2 * w)) ? 1 : 0;
    }
    out.points.resize(size_t(count));
    if (count == 0)
        return;
    const float start = static_cast<float>(be16(packet, angleOffset) / 100.0);
    const float step = static_cast<float>(15.0 / count);
    decode::AzimuthTrig& trig = decode::AzimuthTrig::forThisThread();
    decode::PacketPoint* point = out.points.data();
    int i = 0;
    for (int w = 0; w < wordCount; ++w) {
        const uint16_t word = be16(packet, wordsOffset + 2 * w);
        if (!makesPoint(w, word))
            continue;
        const bool flag = (word & 0x8000) != 0;
        const int32_t distance = encoding.masksFlag ? (word & 0x7FFF) : word;
        const int32_t intensity = (encoding.flagIsIntensity && flag) ? 255 : 0;
        const float azimuth = static_cast<float>(i++) * step + start;
        decode::setPoint(*point++, 0, azimuth, distance, intensity, trig.of(azimuth));
    }
}

CalendarTime decodeVariablePacket(decode::Bytes packet, WordEncoding encoding, decode::DecodedPacket& out)
{
    decodeBody(packet, 4, kVariableWordsOffset, variableWordCount(packet.size), encoding, false, out);
    return readCalendar(packet, packet.size - 12);
}

void readReply(decode::Bytes reply, int versionOffset, LidarParam& param)
{
    param.text = decode::versionText(reply, versionOffset, true);
    param.value1 = filterModeFromCode(decode::u8(reply, 181));
}

QByteArray readParamCommand(uint8_t commandClass, uint8_t frequency)
{
    return decode::commandPacket(commandClass, 0x03, frequency);
}

QByteArray setFrequencyCommand(uint8_t frequency)
{
    return decode::commandPacket(kClass55, 0x01, frequency);
}

QByteArray setFilterCommand(uint8_t commandClass, int mode, uint8_t frequency)
{
    return decode::commandPacket(commandClass, 0x06, frequency, {{181, filterCode(mode)}});
}

CalendarTime readCalendar(decode::Bytes p, int offset)
{
    using decode::be16;
    using decode::u8;
    return CalendarTime{u8(p, offset) + 2000,     u8(p, offset + 1), u8(p, offset + 2),
                        u8(p, offset + 3),        u8(p, offset + 4), u8(p, offset + 5),
                        be16(p, offset + 6),      be16(p, offset + 8)};
}

uint64_t packetTimeNs(const CalendarTime& t)
{
    // mktime consults the time zone on every call (with TZ unset, a stat of
    // /etc/localtime), which costs more than decoding the packet. Packets
    // come hundreds a second, so each thread keeps the last second it asked
    // for (the live and offline paths run on different threads).
    struct Second {
        int32_t year = -1, month = 0, day = 0, hour = 0, minute = 0, second = 0;
        std::time_t value = 0;
    };
    thread_local Second last;
    if (t.year != last.year || t.month != last.month || t.day != last.day || t.hour != last.hour ||
        t.minute != last.minute || t.second != last.second) {
        std::tm tm{};
        tm.tm_year = t.year - 1900;
        tm.tm_mon = t.month - 1;
        tm.tm_mday = t.day;
        tm.tm_hour = t.hour;
        tm.tm_min = t.minute;
        tm.tm_sec = t.second;
        tm.tm_isdst = 0;
        last = Second{t.year, t.month, t.day, t.hour, t.minute, t.second, std::mktime(&tm)};
    }
    const double ns = double(last.value) * 1e9 + t.millisecond * 1e6 + t.microsecond * 1e3;
    return static_cast<uint64_t>(ns);
}

int formatDateTime(const CalendarTime& t, char* text, int capacity)
{
    // "%1-%2-%3 %4:%5:%6:%7" in one pass: seven chained QString::arg calls
    // cost as much as the rest of the packet.
    const int32_t fields[7] = {t.year, t.month, t.day, t.hour, t.minute, t.second, t.millisecond};
    const char separators[7] = {'-', '-', ' ', ':', ':', ':', '\0'};
    char* end = text;
    for (int i = 0; i < 7; ++i) {
        end = std::to_chars(end, text + capacity, fields[i]).ptr;
        if (separators[i])
            *end++ = separators[i];
    }
    return int(end - text);
}

QString dateTimeText(const CalendarTime& t)
{
    char text[64];
    return QString::fromLatin1(text, formatDateTime(t, text, sizeof text));
}

GPSTime PacketClock::stamp(const CalendarTime& t, uint64_t nowNs) const
{
    GPSTime g;
    g.year = t.year;
    g.month = t.month;
    g.day = t.day;
    g.hour = t.hour;
    g.minute = t.minute;
    g.second = t.second;
    g.millisecond = t.millisecond;
    g.microsecond = t.microsecond;
    g.previousNs = previousNs;
    g.currentNs = nowNs;
    const CalendarTime& p = previousFields;
    const int32_t fields[8] = {p.year, p.month, p.day, p.hour, p.minute, p.second, p.millisecond, p.microsecond};
    std::copy(fields, fields + 8, g.previous);
    return g;
}

GPSTime PacketClock::apply(decode::DecodedPacket& packet, const CalendarTime& t)
{
    const uint64_t now = applyCalendar(packet, t, previousNs);
    const GPSTime record = stamp(t, now);
    if (!packet.points.empty())
        remember(t, now);
    return record;
}

void stampPoints(decode::DecodedPacket& packet, uint64_t nowNs, uint64_t previousNs)
{
    const uint64_t n = packet.points.size();
    if (n == 0)
        return;
    const uint64_t dt = (nowNs - previousNs) / n;
    for (uint64_t i = 0; i < n; ++i) {
        const int32_t offset = static_cast<int32_t>((n - 1 - i) * dt);
        packet.points[i].point.timestamp = static_cast<int64_t>((nowNs - offset) / 1000000u);
    }
}

uint64_t applyCalendar(decode::DecodedPacket& packet, const CalendarTime& t, uint64_t previousNs)
{
    packet.hasDateTime = true;
    packet.dateTimeLength = formatDateTime(t, packet.dateTime, sizeof packet.dateTime);
    const uint64_t now = packetTimeNs(t);
    stampPoints(packet, now, previousNs);
    return now;
}

}  // namespace tern
}  // namespace lidar
