#include "Wren_Plus.h"

#include "WrenProtocol.h"

using namespace lidar::decode;
namespace wren = lidar::wren;

float Wren_Plus::previousAzimuth = -1.0f;

Wren_Plus::Wren_Plus(QObject* parent) : WrenSession(parent) {}

void Wren_Plus::DecodePacket(const QByteArray& packet, DecodedPacket& out)
{
    out.reset();
    out.motorSpeed = motorSpeedFromPeriod(be16(packet, 3));
    out.hasAmbient = true;
    out.ambient = be16(packet, 103);
    const auto angles = wren::groupAngles<float>(packet, 5, 105);
    for (int k = 0; k < wren::kGroups; ++k) {
        const float azimuth = angles.at(k);
        for (int channel = 0; channel < 2; ++channel) {
            const int at = 7 + 6 * k + 3 * channel;
            const int32_t distance = be16(packet, at);
            PacketPoint point = makePoint(channel, azimuth, distance, u8(packet, at + 2));
            point.keep = distance > 0;
            out.points.push_back(point);
        }
    }
}

bool Wren_Plus::ParseRecordedBatch(const QVector<QByteArray>& packets, QVector<lidar::LidarDataPoint_V4>& frames)
{
    static OfflineFrames<float> state;
    return wren::parseRecorded<float>(packets, kPacketSize, DecodePacket, state, frames);
}
