#include "ModelDescriptor.h"

#include "TernProtocol.h"
#include "WrenProtocol.h"

#include <QMetaObject>

namespace lidar {

QString ModelDescriptor::name() const
{
    return metaObject ? QString::fromLatin1(metaObject->className()) : QString();
}

bool isRecordedDataPacket(const ModelDescriptor& model, decode::Bytes element)
{
    switch (model.packets.framing) {
    case PacketFraming::FixedSize: return element.size == model.packets.dataSize;
    case PacketFraming::LengthField: return tern::isVariableDataPacket(element);
    case PacketFraming::TypedChecksum: return element.size >= model.packets.dataSize;
    }
    return false;
}

int calendarOffset(const ModelDescriptor& model, decode::Bytes element)
{
    if (!model.gps.stamped || !isRecordedDataPacket(model, element))
        return -1;
    return model.gps.calendarAt >= 0 ? model.gps.calendarAt : element.size + model.gps.calendarAt;
}

namespace {

uint16_t angleCode(decode::Bytes packet, int at)
{
    return at >= 0 && at + 2 <= packet.size ? decode::be16(packet, at) : 0;
}

wren::GroupAngles<double> groupAngles(const ModelDescriptor& model, decode::Bytes packet)
{
    return wren::groupAngles<double>(angleCode(packet, model.geometry.startAngleAt),
                                     angleCode(packet, model.geometry.endAngleAt));
}

}  // namespace

double packetStartAngle(const ModelDescriptor& model, decode::Bytes packet)
{
    if (model.geometry.span == PacketSpan::StartToEnd)
        return groupAngles(model, packet).start;
    return angleCode(packet, model.geometry.startAngleAt) / 100.0;
}

double packetSpanAngle(const ModelDescriptor& model, decode::Bytes packet)
{
    if (model.geometry.span == PacketSpan::StartToEnd)
        return groupAngles(model, packet).step * model.geometry.groups;
    return model.geometry.spanDegrees;
}

double farthestDistance(const ModelDescriptor& model)
{
    return double((1 << model.distanceBits) - 1) / 1000.0;
}

}  // namespace lidar
