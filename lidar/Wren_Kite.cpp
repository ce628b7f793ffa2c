#include "Wren_Kite.h"

#include "WrenProtocol.h"

using namespace lidar::decode;
namespace wren = lidar::wren;

double Wren_Kite::previousAzimuth = -1.0;

Wren_Kite::Wren_Kite(QObject* parent) : WrenSession(parent) {}

const lidar::ModelDescriptor& Wren_Kite::Descriptor()
{
    static const lidar::ModelDescriptor model = [] {
        auto d = wren::describe<Wren_Kite>();
        d.baudRate = 230400;
        d.geometry.channels = 1;
        return d;
    }();
    return model;
}

void Wren_Kite::DecodePacket(Bytes packet, DecodedPacket& out)
{
    out.reset();
    out.motorSpeed = motorSpeedFromPeriod(be16(packet, 3));
    const PacketAngles<double>& angles =
        wren::packetAngles<double>(be16(packet, kStartAngleAt), be16(packet, kEndAngleAt));
    // Every point is stored, under channel 0; its azimuths are doubles.
    out.resize(wren::kGroups, true);
    int32_t returns = 0;
    for (size_t k = 0; k < size_t(wren::kGroups); ++k) {
        const int at = kGroupsAt + 3 * int(k);
        const int32_t distance = be16(packet, at);
        setPoint(out, k, 0, angles.azimuths[k], distance, u8(packet, at + 2), angles.trig[k]);
        returns += distance > 0 ? 1 : 0;
    }
    out.returns = returns;
    out.cover = angles.cover;
    out.risingBelow360 = angles.risingBelow360;
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
