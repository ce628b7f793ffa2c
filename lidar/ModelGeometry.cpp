#include "ModelGeometry.h"

#include "TernProtocol.h"
#include "Tern.h"
#include "Tern_GPS.h"
#include "WrenProtocol.h"
#include "Wren_Kite.h"
#include "Wren_Plus.h"

namespace lidar {
namespace {

constexpr double kFifteenBitRange = 32.767;  // metres
constexpr double kSixteenBitRange = 65.535;
constexpr double kNearest = 0.001;
constexpr double kTernPacketSpan = 15.0;  // degrees

// A fixed-size Tern packet: header, trailer in its last two bytes.
bool isFixedTernPacket(decode::Bytes bytes, int size)
{
    return bytes.size >= size && decode::findHeader(bytes, 0) == 0 && decode::findTrailer(bytes, size - 2) == size - 2;
}

// Tern and Tern_GPS: 42 words at 6, the 41st counts only when the 40th is zero.
double fixedTernStep(decode::Bytes packet)
{
    constexpr int kWords = 42, kFortiethWord = 6 + 39 * 2;
    const int points = decode::be16(packet, kFortiethWord) == 0 ? kWords : kWords - 1;
    return kTernPacketSpan / points;
}

ScanGeometry ternGeometry(decode::Bytes bytes, int packetSize)
{
    if (!isFixedTernPacket(bytes, packetSize))
        return {};
    return {fixedTernStep(bytes), kNearest, kFifteenBitRange};
}

// Tern_P and Tern_Plus: every word of the length-field packet is a point
// (Tern_P's older firmware skips missing echoes, which leaves gaps, not a
// wider step).
ScanGeometry lengthFieldGeometry(decode::Bytes bytes)
{
    if (bytes.size < tern::kVariableOverhead || decode::findHeader(bytes, 0) != 0)
        return {};
    const int length = decode::be16(bytes, 2);
    if (length < tern::kVariableOverhead || length > bytes.size || decode::findTrailer(bytes, length - 2) != length - 2)
        return {};
    const int words = tern::variableWordCount(length);
    if (words <= 0)
        return {};
    return {kTernPacketSpan / words, kNearest, kSixteenBitRange};
}

ScanGeometry wrenGeometry(decode::Bytes bytes, int packetSize, uint8_t type, int endOffset)
{
    if (bytes.size < packetSize || decode::findHeader(bytes, 0) != 0 || decode::u8(bytes, 2) != type
        || !wren::checksumMatches(bytes, 0, packetSize))
        return {};
    constexpr int kStartOffset = 5;
    const uint16_t start = decode::be16(bytes, kStartOffset), end = decode::be16(bytes, endOffset);
    return {wren::groupAngles<double>(start, end).step, kNearest, kSixteenBitRange};
}

}  // namespace

ScanGeometry scanGeometry(const QString& model, const QByteArray& bytes)
{
    const decode::Bytes b(bytes);
    if (model == QLatin1String("Tern"))
        return ternGeometry(b, Tern::kPacketSize);
    if (model == QLatin1String("Tern_GPS"))
        return ternGeometry(b, Tern_GPS::kPacketSize);
    if (model == QLatin1String("Tern_P") || model == QLatin1String("Tern_Plus"))
        return lengthFieldGeometry(b);
    if (model == QLatin1String("Wren_Plus"))
        return wrenGeometry(b, Wren_Plus::kPacketSize, Wren_Plus::kPacketType, 105);
    if (model == QLatin1String("Wren_Kite"))
        return wrenGeometry(b, Wren_Kite::kPacketSize, Wren_Kite::kPacketType, 55);
    return {};
}

}  // namespace lidar
