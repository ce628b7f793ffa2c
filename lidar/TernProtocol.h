#pragma once
// What the four Tern models share: packets run from a header A5 5A to a
// trailer FA FB, a packet covers 15 degrees spread over its valid points,
// the ways models read their distance words, filter codes, replies and
// command packets, and GPS calendar time stamps (Tern_P, Tern_GPS, Tern_Plus).

#include "DecodeCommon.h"
#include "LidarAnalysis.h"
#include "ModelDescriptor.h"
#include "StreamCounters.h"

#include <QByteArray>
#include <QString>
#include <cstdint>

namespace lidar {
namespace tern {

// No piece of these lidars comes near this many bytes; a header that has
// waited this long for its trailer was junk, and the stream is taken up
// again at a later header.
constexpr int kMaxPending = 2048;

// Where the next piece lies: from the first header at or after `from` to
// the first trailer after it, inclusive. Without a trailer: when
// `fallbackLength` is non-zero and `available` (the bytes not yet consumed)
// is at least that, `fallbackLength` bytes from the header (fewer where the
// bytes run out); otherwise there is no piece yet. `next` is where cutting
// goes on: everything before it is consumed, junk before the header too.
struct Cut {
    int start = -1;
    int size = 0;
    int next = 0;
    bool found() const { return start >= 0; }
};
Cut cutPiece(decode::Bytes bytes, int from, int fallbackLength);

// The live loop of every Tern model: while the buffer holds a header with a
// piece behind it, cut the piece and hand it to `handle`, which takes data
// packets and replies and passes over anything else; then drop what was
// consumed and what cannot become a piece (see keepUnconsumed). `counters`
// hear of the pieces passed over (rejected) and of the bytes dropped outside
// any piece (skipped): junk before a header, and what keepUnconsumed drops.
template <typename Handle>
void parseStream(QByteArray& buffer, StreamCounters& counters, int minimumSize, int fallbackLength,
                 Handle&& handle)
{
    if (buffer.size() < minimumSize) {
        counters.addSkipped(quint64(decode::keepUnconsumed(buffer, 0, kMaxPending)));
        return;
    }
    int used = 0;
    {
        // Held while the pieces are handled, which only read them.
        const QByteArray held = buffer;
        const decode::Bytes bytes(held);
        for (;;) {
            const Cut cut = cutPiece(bytes, used, fallbackLength);
            if (!cut.found())
                break;
            // Counted in stream order: a frame's totals hold what came before it.
            counters.addSkipped(quint64(cut.start - used));
            used = cut.next;
            const quint64 taken = counters.taken();
            handle(decode::Bytes(bytes.data + cut.start, cut.size));
            if (counters.taken() == taken)
                counters.addRejected(1);
        }
    }
    counters.addSkipped(quint64(decode::keepUnconsumed(buffer, used, kMaxPending) - used));
}

// Whether the 16-bit length field at offset 2 equals the piece's length.
inline bool lengthFieldMatches(decode::Bytes piece)
{
    return piece.size >= 4 && decode::be16(piece, 2) == piece.size;
}

// A piece contains no trailer at or after its first header (ends an offline parse).
bool lacksTrailer(decode::Bytes piece);

// The offline rule of every Tern model for one recorded element: a piece
// without trailer ends the parse (false), pieces `isDataPacket` rejects are
// skipped, the others go to `place`. The first two count in `totals` as
// rejected.
template <typename IsDataPacket, typename Place>
bool addRecorded(const QByteArray& packet, StreamTotals& totals, IsDataPacket&& isDataPacket, Place&& place)
{
    if (lacksTrailer(packet)) {
        ++totals.rejectedPackets;
        return false;
    }
    if (isDataPacket(packet))
        place(packet);
    else
        ++totals.rejectedPackets;
    return true;
}

// Length-field packets (Tern_P, Tern_Plus): header, length, start angle,
// period word, distance words from offset 8, then eight calendar bytes and
// the trailer in the last 12 bytes.
constexpr int kVariableWordsOffset = 8;
constexpr int kVariableOverhead = 20;
// A data packet: its length field equals its length and it has room for the
// fixed fields.
inline bool isVariableDataPacket(decode::Bytes piece)
{
    return piece.size >= kVariableOverhead && lengthFieldMatches(piece);
}
// ceil((L - 20) / 2) words: an odd byte count still makes a last word.
inline int variableWordCount(int packetSize)
{
    return (packetSize - kVariableOverhead + 1) / 2;
}

// Filter modes 0 "Normal filtering", 1 "No filtering", 2 "Within three meters".
uint8_t filterCode(int mode);         // 11, 10, 12; 0 for any other mode
int filterModeFromCode(uint8_t code);  // 11 -> 0, 12 -> 2, anything else -> 1

// How a model reads its 16-bit distance words.
struct WordEncoding {
    bool skipsNoMeasurement;  // FFFF means no measurement and makes no point
    bool masksFlag;           // bit 15 is not part of the distance
    bool flagIsIntensity;     // bit 15 set gives intensity 255, else 0
};
// Tern, and Tern_P before firmware 215.
constexpr WordEncoding kFlaggedWords{true, true, true};
// Tern_GPS: bit 15 is ignored, intensity is always 0.
constexpr WordEncoding kFlagIgnoredWords{true, true, false};
// Tern_P from firmware 215: the whole word is the distance.
constexpr WordEncoding kPlainWords{false, false, false};
// Tern_Plus: the whole word is the distance and bit 15 still gives intensity.
constexpr WordEncoding kUnmaskedFlaggedWords{false, false, true};

// Decodes the body every Tern model shares: the start angle (1/100 degree)
// at `angleOffset`, the period word right after it, and `wordCount` distance
// words from `wordsOffset`. A packet's 15 degrees are spread evenly over the
// points it makes: azimuth i = i * (15 / points) + start, in single
// precision. With `dropsThe41st` the 41st word is discarded unless the 40th
// is zero (Tern, Tern_GPS).
void decodeBody(decode::Bytes packet, int angleOffset, int wordsOffset, int wordCount,
                WordEncoding encoding, bool dropsThe41st, decode::DecodedPacket& out);

// Version text ("%1.%2.%3-V%4.%5.%6", signed bytes) from the six bytes at
// `versionOffset` and the filter mode from byte 181 of a parameters reply.
void readReply(decode::Bytes reply, int versionOffset, LidarParam& param);

// Command packets. Tern reads parameters with class 0x01 and filters with
// 0x55; Tern_P, Tern_GPS and Tern_Plus the other way round.
constexpr uint8_t kClass01 = 0x01;
constexpr uint8_t kClass55 = 0x55;
QByteArray readParamCommand(uint8_t commandClass, uint8_t frequency);      // code 0x03
QByteArray setFrequencyCommand(uint8_t frequency);                          // class 0x55, code 0x01
QByteArray setFilterCommand(uint8_t commandClass, int mode, uint8_t frequency);  // code 0x06, filter code at 181

// Calendar fields of a GPS-stamped packet (year already + 2000).
struct CalendarTime {
    int32_t year, month, day, hour, minute, second, millisecond, microsecond;
};
// Eight calendar bytes: year-2000, month, day, hour, minute, second, then
// 16-bit millisecond and microsecond.
CalendarTime readCalendar(decode::Bytes packet, int offset);
// Points of a length-field packet (Tern_P, Tern_Plus), time stamps not yet
// set; returns its calendar time, read 12 bytes before its end.
CalendarTime decodeVariablePacket(decode::Bytes packet, WordEncoding encoding, decode::DecodedPacket& out);
// mktime of the local calendar time (no daylight saving) in ns, plus ms and us.
uint64_t packetTimeNs(const CalendarTime& t);
// "%1-%2-%3 %4:%5:%6:%7": year, month, day, hour, minute, second, millisecond.
QString dateTimeText(const CalendarTime& t);
// The same into `text` (64 characters are plenty); returns its length.
int formatDateTime(const CalendarTime& t, char* text, int capacity);

// The per-model memory of the previous GPS packet.
struct PacketClock {
    uint64_t previousNs = 0;
    CalendarTime previousFields{0, 0, 0, 0, 0, 0, 0, 0};

    // The time record of a packet at `t`; call remember() once it is used.
    GPSTime stamp(const CalendarTime& t, uint64_t nowNs) const;
    void remember(const CalendarTime& t, uint64_t nowNs)
    {
        previousFields = t;
        previousNs = nowNs;
    }
    // Dates a decoded packet taken at `t`: its dateTime text and point time
    // stamps. Returns the time record to report. A packet without points
    // stamps nothing and is not remembered.
    GPSTime apply(decode::DecodedPacket& packet, const CalendarTime& t);
};

// Point timestamps in ms, rising evenly through the packet so that the last
// point carries the packet's own time. The per-point offset is held in a
// signed 32-bit integer and wraps beyond 2^31 ns, as the firmware tools do.
void stampPoints(decode::DecodedPacket& packet, uint64_t nowNs, uint64_t previousNs);

// Applies a GPS-stamped packet's calendar to `packet`: dateTime text, time
// stamps. Returns the packet time in ns.
uint64_t applyCalendar(decode::DecodedPacket& packet, const CalendarTime& t, uint64_t previousNs);

// What every Tern model's descriptor holds: packets that each cover 15
// degrees from their start angle, one channel, three filter modes. A model
// adds its framing, replies, GPS time, command classes and word layout.
template <typename Model>
ModelDescriptor describe()
{
    auto d = ModelDescriptor::of<Model>(ModelFamily::Tern);
    d.packets.replySize = Model::kReplySize;
    d.commands.filterModes = 3;
    d.geometry.span = PacketSpan::Fixed;
    d.geometry.spanDegrees = 15.0;
    d.geometry.channels = 1;
    return d;
}

// The models whose packets give their length (Tern_P, Tern_Plus): the words
// start after the length field, the calendar and the trailer end the
// packet, they read parameters with class 0x55, and a distance takes the
// whole word (Tern_P from firmware 215 on).
template <typename Model>
ModelDescriptor describeWithLength()
{
    auto d = describe<Model>();
    d.packets.framing = PacketFraming::LengthField;
    d.packets.replyVersionAt = Model::kReplyVersionAt;
    d.gps.stamped = true;
    d.gps.calendarAt = -12;
    d.commands.readParamClass = kClass55;
    d.commands.setFilterClass = kClass01;
    d.geometry.startAngleAt = 4;
    d.geometry.measurementsAt = kVariableWordsOffset;
    d.distanceBits = 16;
    return d;
}

// The fixed-size models (Tern, Tern_GPS), known by their packet's size:
// the start angle at 2, the period word after it, 42 distance words from 6,
// the 41st dropped unless the 40th is zero, 15-bit distances (bit 15 a flag
// or ignored). A model adds its replies, GPS time and command classes.
constexpr int kFixedStartAngleAt = 2;
constexpr int kFixedWordsAt = 6;
constexpr int kFixedWords = 42;

template <typename Model>
ModelDescriptor describeFixedSize()
{
    auto d = describe<Model>();
    d.packets.framing = PacketFraming::FixedSize;
    d.packets.dataSize = Model::kPacketSize;
    d.geometry.startAngleAt = kFixedStartAngleAt;
    d.geometry.measurementsAt = kFixedWordsAt;
    d.geometry.groups = kFixedWords;
    d.geometry.dropsThe41stWord = true;
    d.distanceBits = 15;
    return d;
}

// The body of a fixed-size data packet, its words read as `encoding` says.
inline void decodeFixedSizeBody(decode::Bytes packet, WordEncoding encoding, decode::DecodedPacket& out)
{
    decodeBody(packet, kFixedStartAngleAt, kFixedWordsAt, kFixedWords, encoding, true, out);
}

}  // namespace tern
}  // namespace lidar
