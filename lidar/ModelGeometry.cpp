#include "ModelGeometry.h"

#include "LIdarFactory.h"
#include "ModelDescriptor.h"
#include "TernProtocol.h"
#include "WrenProtocol.h"

namespace lidar {
namespace {

constexpr double kNearest = 0.001;

// A fixed-size Tern packet: header, trailer in its last two bytes.
bool isFixedTernPacket(decode::Bytes bytes, int size)
{
    return bytes.size >= size && decode::findHeader(bytes, 0) == 0 && decode::findTrailer(bytes, size - 2) == size - 2;
}

// The points a fixed-size packet makes of its words: with the 41st-word
// rule, the 41st counts only when the 40th word is zero.
double fixedTernStep(const ModelDescriptor& model, decode::Bytes packet)
{
    const PacketGeometry& g = model.geometry;
    const int fortiethWord = g.measurementsAt + 39 * 2;
    const bool dropped = g.dropsThe41stWord && decode::be16(packet, fortiethWord) != 0;
    return g.spanDegrees / (dropped ? g.groups - 1 : g.groups);
}

ScanGeometry ternGeometry(const ModelDescriptor& model, decode::Bytes bytes)
{
    if (!isFixedTernPacket(bytes, model.packets.dataSize))
        return {};
    return {fixedTernStep(model, bytes), kNearest, farthestDistance(model)};
}

// Length-field packets: every word is a point (Tern_P's older firmware
// skips missing echoes, which leaves gaps, not a wider step).
ScanGeometry lengthFieldGeometry(const ModelDescriptor& model, decode::Bytes bytes)
{
    if (bytes.size < tern::kVariableOverhead || decode::findHeader(bytes, 0) != 0)
        return {};
    const int length = decode::be16(bytes, 2);
    if (length < tern::kVariableOverhead || length > bytes.size || decode::findTrailer(bytes, length - 2) != length - 2)
        return {};
    const int words = tern::variableWordCount(length);
    if (words <= 0)
        return {};
    return {model.geometry.spanDegrees / words, kNearest, farthestDistance(model)};
}

ScanGeometry wrenGeometry(const ModelDescriptor& model, decode::Bytes bytes)
{
    const int size = model.packets.dataSize;
    if (bytes.size < size || decode::findHeader(bytes, 0) != 0 || decode::u8(bytes, 2) != model.packets.packetType
        || !wren::checksumMatches(bytes, 0, size))
        return {};
    const uint16_t start = decode::be16(bytes, model.geometry.startAngleAt);
    const uint16_t end = decode::be16(bytes, model.geometry.endAngleAt);
    return {wren::groupAngles<double>(start, end).step, kNearest, farthestDistance(model)};
}

}  // namespace

ScanGeometry scanGeometry(const ModelDescriptor& model, const QByteArray& bytes)
{
    const decode::Bytes b(bytes);
    switch (model.packets.framing) {
    case PacketFraming::FixedSize: return ternGeometry(model, b);
    case PacketFraming::LengthField: return lengthFieldGeometry(model, b);
    case PacketFraming::TypedChecksum: return wrenGeometry(model, b);
    }
    return {};
}

ScanGeometry scanGeometry(const QString& model, const QByteArray& bytes)
{
    const ModelDescriptor* described = LIdarFactory::GetInstance()->FindModel(model);
    return described ? scanGeometry(*described, bytes) : ScanGeometry();
}

}  // namespace lidar
