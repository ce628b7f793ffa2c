#include "Wren_Kite.h"

#include "WrenProtocol.h"

using namespace lidar::decode;
namespace wren = lidar::wren;

double Wren_Kite::previousAzimuth = -1.0;

Wren_Kite::Wren_Kite(QObject* parent) : WrenSession(parent) {}

void Wren_Kite::DecodePacket(Bytes packet, DecodedPacket& out)
{
    out.reset();
    out.motorSpeed = motorSpeedFromPeriod(be16(packet, 3));
    const auto angles = wren::groupAngles<double>(packet, 5, 55);
    AzimuthTrig& trig = AzimuthTrig::forThisThread();
    out.points.resize(wren::kGroups);
    for (int k = 0; k < wren::kGroups; ++k) {
        const int at = 7 + 3 * k;
        const double azimuth = angles.at(k);
        setPoint(out.points[size_t(k)], 0, azimuth, be16(packet, at), u8(packet, at + 2), trig.of(azimuth));
    }
}

bool Wren_Kite::ParseRecordedBatch(const QVector<QByteArray>& packets, QVector<lidar::LidarDataPoint_V4>& frames)
{
    return lidar::parseSharedBatch<Wren_Kite>(packets, frames);
}

bool Wren_Kite::AddRecordedPacket(OfflineState& state, const QByteArray& packet,
                                  QVector<lidar::LidarDataPoint_V4>& frames)
{
    return wren::addRecorded<double>(packet, kPacketSize, DecodePacket, state.frames, frames);
}
