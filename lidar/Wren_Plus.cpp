#include "Wren_Plus.h"

#include "WrenProtocol.h"

using namespace lidar::decode;
namespace wren = lidar::wren;

float Wren_Plus::previousAzimuth = -1.0f;

Wren_Plus::Wren_Plus(QObject* parent) : WrenSession(parent) {}

void Wren_Plus::DecodePacket(Bytes packet, DecodedPacket& out)
{
    out.reset();
    out.motorSpeed = motorSpeedFromPeriod(be16(packet, 3));
    out.hasAmbient = true;
    out.ambient = be16(packet, 103);
    const auto angles = wren::groupAngles<float>(packet, 5, 105);
    AzimuthTrig& trig = AzimuthTrig::forThisThread();
    out.points.resize(2 * wren::kGroups);
    PacketPoint* point = out.points.data();
    for (int k = 0; k < wren::kGroups; ++k) {
        const float azimuth = angles.at(k);
        const SinCos t = trig.of(azimuth);
        for (int channel = 0; channel < 2; ++channel, ++point) {
            const int at = 7 + 6 * k + 3 * channel;
            const int32_t distance = be16(packet, at);
            setPoint(*point, channel, azimuth, distance, u8(packet, at + 2), t);
            point->keep = distance > 0;
        }
    }
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
