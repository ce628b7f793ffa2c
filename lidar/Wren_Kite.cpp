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
    const PacketAngles<double>& angles = wren::packetAngles<double>(be16(packet, 5), be16(packet, 55));
    // Every point is stored, under channel 0; its azimuths are doubles.
    out.resize(wren::kGroups, true);
    int32_t returns = 0;
    for (size_t k = 0; k < size_t(wren::kGroups); ++k) {
        const int at = 7 + 3 * int(k);
        const int32_t distance = be16(packet, at);
        setPoint(out, k, 0, angles.azimuths[k], distance, u8(packet, at + 2), angles.trig[k]);
        returns += distance > 0 ? 1 : 0;
    }
    out.returns = returns;
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
