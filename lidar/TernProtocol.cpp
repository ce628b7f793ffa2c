#include "TernProtocol.h"

#include <algorithm>
#include <charconv>
#include <cstring>
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
    // As nearly every recorded packet is: a header first, a trailer last.
    if (piece.size >= 4 && decode::u8(piece, 0) == 0xA5 && decode::u8(piece, 1) == 0x5A
        && decode::u8(piece, piece.size - 2) == 0xFA && decode::u8(piece, piece.size - 1) == 0xFB)
        return false;
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

namespace {

// The distance words that make points, read once: `distances` and
// `intensities` get one entry per point; returns their number.
template <bool SkipsNoMeasurement, bool MasksFlag, bool FlagIsIntensity>
int readWords(const uchar* words, int wordCount, int dropped, int32_t* distances, int32_t* intensities)
{
    int count = 0;
    for (int w = 0; w < wordCount; ++w) {
        const uint16_t word = uint16_t(words[2 * w] << 8 | words[2 * w + 1]);
        if (w == dropped || (SkipsNoMeasurement && word == 0xFFFF))
            continue;
        distances[count] = MasksFlag ? (word & 0x7FFF) : word;
        intensities[count] = FlagIsIntensity && (word & 0x8000) ? 255 : 0;
        ++count;
    }
    return count;
}

int readWords(WordEncoding e, const uchar* words, int wordCount, int dropped, int32_t* distances,
              int32_t* intensities)
{
    if (e.skipsNoMeasurement && e.masksFlag && e.flagIsIntensity)
        return readWords<true, true, true>(words, wordCount, dropped, distances, intensities);
    if (e.skipsNoMeasurement && e.masksFlag && !e.flagIsIntensity)
        return readWords<true, true, false>(words, wordCount, dropped, distances, intensities);
    if (!e.skipsNoMeasurement && !e.masksFlag && !e.flagIsIntensity)
        return readWords<false, false, false>(words, wordCount, dropped, distances, intensities);
    if (!e.skipsNoMeasurement && !e.masksFlag && e.flagIsIntensity)
        return readWords<false, false, true>(words, wordCount, dropped, distances, intensities);
    // No model reads its words any other way; kept general all the same.
    int count = 0;
    for (int w = 0; w < wordCount; ++w) {
        const uint16_t word = uint16_t(words[2 * w] << 8 | words[2 * w + 1]);
        if (w == dropped || (e.skipsNoMeasurement && word == 0xFFFF))
            continue;
        distances[count] = e.masksFlag ? (word & 0x7FFF) : word;
        intensities[count] = e.flagIsIntensity && (word & 0x8000) ? 255 : 0;
        ++count;
    }
    return count;
}

// Points with a distance above 0: one pass over the packed distances, which
// the compiler does several at a time.
int32_t countReturns(const int32_t* distances, int count)
{
    int32_t returns = 0;
    for (int i = 0; i < count; ++i)
        returns += distances[i] > 0 ? 1 : 0;
    return returns;
}

}  // namespace

void decodeBody(decode::Bytes packet, int angleOffset, int wordsOffset, int wordCount, WordEncoding encoding,
                bool dropsThe41st, decode::DecodedPacket& out)
{
    using decode::be16;
    out.reset();
    out.motorSpeed = decode::motorSpeedFromPeriod(be16(packet, angleOffset + 2));
    wordCount = std::max(wordCount, 0);
    // The 41st measurement is kept only when the 40th word is zero.
    const int dropped = dropsThe41st && wordCount > 40 && be16(packet, wordsOffset + 2 * 39) != 0 ? 40 : -1;
    // The step depends on how many points the packet makes: the words are
    // read first.
    thread_local std::vector<int32_t> distances, intensities;
    if (distances.size() < size_t(wordCount)) {
        distances.resize(size_t(wordCount));
        intensities.resize(size_t(wordCount));
    }
    const auto* words = reinterpret_cast<const uchar*>(packet.data + wordsOffset);
    const int count = readWords(encoding, words, wordCount, dropped, distances.data(), intensities.data());
    out.returns = countReturns(distances.data(), count);
    const uint16_t code = be16(packet, angleOffset);
    out.cover = packetcover::tern(code);
    out.resize(size_t(count), true);
    if (count == 0)
        return;
    const decode::PacketAngles<float>& angles =
        decode::PacketAngleTable<float, 0>::forThisThread().lookUp(code, uint32_t(count), [&](decode::PacketAngles<float>& slot) {
            const float start = static_cast<float>(code / 100.0);
            const float step = static_cast<float>(15.0 / count);
            std::vector<float>& a = slot.azimuths;
            a.resize(size_t(count));
            for (int i = 0; i < count; ++i)
                a[size_t(i)] = static_cast<float>(i) * step + start;
        });
    for (size_t i = 0; i < size_t(count); ++i)
        decode::setPoint(out, i, 0, angles.azimuths[i], distances[i], intensities[i], angles.trig[i]);
    out.risingBelow360 = angles.risingBelow360;
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
    // cost as much as the rest of the packet. The date, hour and minute
    // change seldom: each thread keeps their text from the last packet.
    struct Minute {
        int32_t year = -1, month = 0, day = 0, hour = 0, minute = 0;
        char text[40];
        int length = 0;
    };
    thread_local Minute last;
    if (t.year != last.year || t.month != last.month || t.day != last.day || t.hour != last.hour
        || t.minute != last.minute) {
        const int32_t fields[5] = {t.year, t.month, t.day, t.hour, t.minute};
        const char separators[5] = {'-', '-', ' ', ':', ':'};
        char* end = last.text;
        for (int i = 0; i < 5; ++i) {
            end = std::to_chars(end, last.text + sizeof last.text, fields[i]).ptr;
            *end++ = separators[i];
        }
        last.length = int(end - last.text);
        last.year = t.year, last.month = t.month, last.day = t.day, last.hour = t.hour, last.minute = t.minute;
    }
    if (capacity < last.length + 24)
        return 0;
    std::memcpy(text, last.text, size_t(last.length));
    char* end = std::to_chars(text + last.length, text + capacity, t.second).ptr;
    *end++ = ':';
    end = std::to_chars(end, text + capacity, t.millisecond).ptr;
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
    // Where no offset leaves 32 bits (the points of a packet span less than
    // two seconds) the times rise by dt from point to point, less than a
    // millisecond each: the points of each millisecond are a run, found
    // with one division per millisecond instead of one per point.
    if (dt < 1000000u && (n - 1) * dt <= uint64_t(INT32_MAX)) {
        const uint64_t first = nowNs - (n - 1) * dt;
        uint64_t ms = first / 1000000u;
        uint64_t i = 0;
        while (i < n) {
            // The first point at or past the next millisecond.
            const uint64_t next = dt == 0 ? n : std::min(n, ((ms + 1) * 1000000u - first + dt - 1) / dt);
            for (; i < next; ++i)
                packet.points[i].timestamp = static_cast<int64_t>(ms);
            ++ms;
        }
        return;
    }
    for (uint64_t i = 0; i < n; ++i) {
        const int32_t offset = static_cast<int32_t>((n - 1 - i) * dt);
        packet.points[i].timestamp = static_cast<int64_t>((nowNs - offset) / 1000000u);
    }
}

uint64_t applyCalendar(decode::DecodedPacket& packet, const CalendarTime& t, uint64_t previousNs)
{
    packet.hasDateTime = true;
    packet.dateTimeLength = formatDateTime(t, packet.dateTime, sizeof packet.dateTime);
    const uint64_t now = packetTimeNs(t);
    packet.timeNs = now;
    stampPoints(packet, now, previousNs);
    return now;
}

}  // namespace tern
}  // namespace lidar
