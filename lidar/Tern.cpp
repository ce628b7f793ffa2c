#include "Tern.h"

#include "TernProtocol.h"

using namespace lidar::decode;
namespace tern = lidar::tern;

float Tern::previousAzimuth = -1.0f;
int Tern::filterAttempts = 0;

Tern::Tern(QObject* parent) : LidarAnalysis(parent) {}

void Tern::DecodePacket(const QByteArray& packet, DecodedPacket& out)
{
    out.reset();
    // The 41st measurement is kept only when the 40th word is zero.
    const bool drop41st = be16(packet, 84) != 0;
    out.motorSpeed = motorSpeedFromPeriod(be16(packet, 4));
    tern::Measurement m[42];
    int n = 0;
    for (int w = 0; w < 42; ++w) {
        const uint16_t word = (drop41st && w == 40) ? 0xFFFF : be16(packet, 6 + 2 * w);
        if (word == 0xFFFF)
            continue;
        m[n++] = {word & 0x7FFF, (word & 0x8000) ? 255 : 0};
    }
    const float start = static_cast<float>(be16(packet, 2) / 100.0);
    tern::spreadPoints(start, m, n, out);
}

void Tern::DecodeReply(const QByteArray& reply, LidarParam& param)
{
    param.text = versionText(reply, 175, true);
    param.value1 = tern::filterModeFromCode(u8(reply, 181));
}

void Tern::ParseLidarData()
{
    tern::parseStream(receiveBuffer, kPacketSize, kReplySize, [this](const QByteArray& piece) {
        if (piece.size() == kPacketSize) {
            recordPacket(piece);
            DecodePacket(piece, decoded_);
            placePoints<float>(decoded_, currentFrame, lastFrame, previousAzimuth, [this] { finishFrame(); });
            return true;
        }
        if (piece.size() == kReplySize) {
            replyReceived = 1;
            DecodeReply(piece, param);
            SetMotorFrequency(param.frequency);
            return true;
        }
        return false;
    });
}

QVector<lidar::LidarDataPoint_V4> Tern::ParseRecordedPackets(const QVector<QByteArray>& packets)
{
    static OfflineFrames<float> frames;
    QVector<lidar::LidarDataPoint_V4> result;
    DecodedPacket decoded;
    for (const QByteArray& packet : packets) {
        if (tern::lacksTrailer(packet))
            break;
        if (packet.size() != kPacketSize)
            continue;
        DecodePacket(packet, decoded);
        frames.place<float>(decoded, result);
    }
    return result;
}

QByteArray Tern::ReadParamCommand()
{
    return commandPacket(0x01, 0x03, param.frequency);
}

void Tern::SetMotorFrequency(quint8 frequency)
{
    param.frequency = frequency;
    sendTwice(commandPacket(0x55, 0x01, frequency));
}

void Tern::SetLidarFilter(int mode)
{
    sendWithRetries(commandPacket(0x55, 0x06, param.frequency, {{181, tern::filterCode(mode)}}), filterAttempts);
    SetMotorFrequency(param.frequency);
}
