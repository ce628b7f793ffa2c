#include "Wren_Kite.h"

#include "WrenProtocol.h"

using namespace lidar::decode;
namespace wren = lidar::wren;

double Wren_Kite::previousAzimuth = -1.0;
int Wren_Kite::deviceParamAttempts = 0;
int Wren_Kite::filterAttempts = 0;

Wren_Kite::Wren_Kite(QObject* parent) : LidarAnalysis(parent) {}

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

void Wren_Kite::ParseLidarData()
{
    wren::parseStream(
        receiveBuffer, kPacketSize, kPacketType,
        [this](const QByteArray& packet) {
            recordPacket(packet);
            DecodePacket(packet, decoded_);
            placePoints<double>(decoded_, currentFrame, lastFrame, previousAzimuth, [this] { finishFrame(); });
        },
        [this](const QByteArray& reply) {
            replyReceived = 1;
            wren::decodeReply(reply, param);
            SetMotorFrequency(param.frequency);
        });
}

QVector<lidar::LidarDataPoint_V4> Wren_Kite::ParseRecordedPackets(const QVector<QByteArray>& packets)
{
    // Offline the previous azimuth is kept in whole degrees.
    static OfflineFrames<int32_t> frames;
    return wren::parseRecorded<double>(packets, kPacketSize, DecodePacket, frames);
}

QByteArray Wren_Kite::ReadParamCommand()
{
    return wren::readParamCommand(param.frequency);
}

void Wren_Kite::SetMotorFrequency(quint8 code)
{
    param.frequency = code;
    sendTwice(wren::setFrequencyCommand(code));
}

void Wren_Kite::SetDeviceParam(quint8 value)
{
    sendWithRetries(wren::setDeviceParamCommand(value), deviceParamAttempts);
    SetMotorFrequency(param.frequency);
}

void Wren_Kite::SetLidarFilter(int mode)
{
    sendWithRetries(wren::setFilterCommand(mode, param.frequency), filterAttempts);
    SetMotorFrequency(param.frequency);
}
