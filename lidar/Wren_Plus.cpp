#include "Wren_Plus.h"

#include "WrenProtocol.h"

using namespace lidar::decode;
namespace wren = lidar::wren;

float Wren_Plus::previousAzimuth = -1.0f;
int Wren_Plus::deviceParamAttempts = 0;
int Wren_Plus::filterAttempts = 0;

Wren_Plus::Wren_Plus(QObject* parent) : LidarAnalysis(parent) {}

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

void Wren_Plus::ParseLidarData()
{
    wren::parseStream(
        receiveBuffer, kPacketSize, kPacketType,
        [this](const QByteArray& packet) {
            recordPacket(packet);
            DecodePacket(packet, decoded_);
            placePoints<float>(decoded_, currentFrame, lastFrame, previousAzimuth, [this] { finishFrame(); });
        },
        [this](const QByteArray& reply) {
            replyReceived = 1;
            wren::decodeReply(reply, param);
            SetMotorFrequency(param.frequency);
        });
}

QVector<lidar::LidarDataPoint_V4> Wren_Plus::ParseRecordedPackets(const QVector<QByteArray>& packets)
{
    static OfflineFrames<float> frames;
    return wren::parseRecorded<float>(packets, kPacketSize, DecodePacket, frames);
}

QByteArray Wren_Plus::ReadParamCommand()
{
    return wren::readParamCommand(param.frequency);
}

void Wren_Plus::SetMotorFrequency(quint8 code)
{
    param.frequency = code;
    sendTwice(wren::setFrequencyCommand(code));
}

void Wren_Plus::SetDeviceParam(quint8 value)
{
    sendWithRetries(wren::setDeviceParamCommand(value), deviceParamAttempts);
    SetMotorFrequency(param.frequency);
}

void Wren_Plus::SetLidarFilter(int mode)
{
    sendWithRetries(wren::setFilterCommand(mode, param.frequency), filterAttempts);
    SetMotorFrequency(param.frequency);
}
