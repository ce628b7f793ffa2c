#include "Wren_Plus.h"

#include "WrenProtocol.h"

using namespace lidar::decode;
namespace wren = lidar::wren;

float Wren_Plus::previousAzimuth = -1.0f;

Wren_Plus::Wren_Plus(QObject* parent) : WrenSession(parent) {}

const lidar::ModelDescriptor& Wren_Plus::Descriptor()
{
    static const lidar::ModelDescriptor model = [] {
        auto d = wren::describe<Wren_Plus>();
        d.baudRate = 460800;
        d.geometry.channels = 2;
        return d;
    }();
    return model;
}

void Wren_Plus::DecodePacket(Bytes packet, DecodedPacket& out)
{
    out.reset();
    out.motorSpeed = motorSpeedFromPeriod(be16(packet, 3));
    out.hasAmbient = true;
    out.ambient = be16(packet, 103);
    const PacketAngles<float>& angles =
        wren::packetAngles<float>(be16(packet, kStartAngleAt), be16(packet, kEndAngleAt));
    out.resize(2 * wren::kGroups, false);
    size_t i = 0;
    int32_t returns = 0;
    for (int k = 0; k < wren::kGroups; ++k) {
        const float azimuth = angles.azimuths[size_t(k)];
        const SinCos& t = angles.trig[size_t(k)];
        for (int channel = 0; channel < 2; ++channel, ++i) {
            const int at = kGroupsAt + 6 * k + 3 * channel;
            const int32_t distance = be16(packet, at);
            setPoint(out, i, channel, azimuth, distance, u8(packet, at + 2), t);
            out.kept[i] = distance > 0;
            returns += distance > 0 ? 1 : 0;
        }
    }
    out.returns = returns;
    out.cover = angles.cover;
    out.risingBelow360 = angles.risingBelow360;
}

bool Wren_Plus::ParseRecordedBatch(const QVector<QByteArray>& packets, QVector<lidar::LidarDataPoint_V4>& frames)
{
    return lidar::parseSharedBatch<Wren_Plus>(packets, frames);
}

bool Wren_Plus::AddRecordedPacket(OfflineState& state, const QByteArray& packet,
                                  QVector<lidar::LidarDataPoint_V4>& frames)
{
    return wren::addRecorded<float>(packet, kPacketSize, DecodePacket, state.frames, frames);
}
