#include "Wren_Kite.h"

#include "WrenProtocol.h"

using namespace lidar::decode;
namespace wren = lidar::wren;

double Wren_Kite::previousAzimuth = -1.0;

Wren_Kite::Wren_Kite(QObject* parent) : WrenSession(parent) {}

void Wren_Kite::DecodePacket(const QByteArray& packet, DecodedPacket& out)
{
    out.reset();
    out.motorSpeed = motorSpeedFromPeriod(be16(packet, 3));
    const auto angles = wren::groupAngles<double>(packet, 5, 55);
    for (int k = 0; k < wren::kGroups; ++k) {
        const int at = 7 + 3 * k;
        out.points.push_back(makePoint(0, angles.at(k), be16(packet, at), u8(packet, at + 2)));
    }
}

bool Wren_Kite::ParseRecordedBatch(const QVector<QByteArray>& packets, QVector<lidar::LidarDataPoint_V4>& frames)
{
    // Offline the previous azimuth is kept in whole degrees.
    static OfflineFrames<int32_t> state;
    return wren::parseRecorded<double>(packets, kPacketSize, DecodePacket, state, frames);
}
