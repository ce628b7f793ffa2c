#include "Tern.h"

#include "TernProtocol.h"

using namespace lidar::decode;
namespace tern = lidar::tern;

float Tern::previousAzimuth = -1.0f;
int Tern::filterAttempts = 0;

Tern::Tern(QObject* parent) : LidarAnalysis(parent) {}

void Tern::DecodePacket(const QByteArray& packet, DecodedPacket& out)
{
    tern::decodeBody(packet, 2, 6, 42, tern::kFlaggedWords, true, out);
}

void Tern::DecodeReply(const QByteArray& reply, LidarParam& param)
{
    tern::readReply(reply, 175, param);
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

bool Tern::ParseRecordedBatch(const QVector<QByteArray>& packets, QVector<lidar::LidarDataPoint_V4>& frames)
{
    static OfflineFrames<float> state;
    DecodedPacket decoded;
    return tern::parseRecorded(
        packets, 0, [](const QByteArray& packet) { return packet.size() == kPacketSize; },
        [&](const QByteArray& packet) {
            DecodePacket(packet, decoded);
            state.place<float>(decoded, frames);
        });
}

QByteArray Tern::ReadParamCommand()
{
    return tern::readParamCommand(tern::kClass01, param.frequency);
}

void Tern::SetMotorFrequency(quint8 frequency)
{
    param.frequency = frequency;
    sendTwice(tern::setFrequencyCommand(frequency));
}

void Tern::SetLidarFilter(int mode)
{
    sendWithRetries(tern::setFilterCommand(tern::kClass55, mode, param.frequency), filterAttempts);
    SetMotorFrequency(param.frequency);
}
