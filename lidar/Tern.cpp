#include "Tern.h"

#include "TernProtocol.h"

using namespace lidar::decode;
namespace tern = lidar::tern;

float Tern::previousAzimuth = -1.0f;
int Tern::filterAttempts = 0;

Tern::Tern(QObject* parent) : LidarAnalysis(parent) {}

void Tern::DecodePacket(Bytes packet, DecodedPacket& out)
{
    tern::decodeBody(packet, 2, 6, 42, tern::kFlaggedWords, true, out);
}

void Tern::DecodeReply(Bytes reply, LidarParam& param)
{
    tern::readReply(reply, 175, param);
}

void Tern::ParseLidarData()
{
    tern::parseStream(receiveBuffer, streamCounters, kPacketSize, kReplySize, [this](Bytes piece) {
        if (piece.size == kPacketSize) {
            recordPacket(piece.data, piece.size);
            DecodePacket(piece, decoded_);
            placePoints<float>(decoded_, currentFrame, lastFrame, previousAzimuth, frameAccounting,
                              [this] { finishFrame(); });
        } else if (piece.size == kReplySize) {
            takeReply([piece](LidarParam& p) { DecodeReply(piece, p); });
        }
    });
}

bool Tern::ParseRecordedBatch(const QVector<QByteArray>& packets, QVector<lidar::LidarDataPoint_V4>& frames)
{
    return lidar::parseSharedBatch<Tern>(packets, frames);
}

bool Tern::AddRecordedPacket(OfflineState& state, const QByteArray& packet, QVector<lidar::LidarDataPoint_V4>& frames)
{
    return tern::addRecorded(
        packet, [](const QByteArray& p) { return p.size() == kPacketSize; },
        [&](const QByteArray& p) {
            DecodedPacket& decoded = scratchPacket();
            DecodePacket(p, decoded);
            state.frames.place<float>(decoded, frames);
        });
}

QByteArray Tern::ReadParamCommand()
{
    return tern::readParamCommand(tern::kClass01, storedFrequency());
}

void Tern::SetMotorFrequency(quint8 frequency)
{
    storeFrequency(frequency);
    sendTwice(tern::setFrequencyCommand(frequency));
}

void Tern::SetLidarFilter(int mode)
{
    sendWithRetries(tern::setFilterCommand(tern::kClass55, mode, storedFrequency()), filterAttempts);
    SetMotorFrequency(storedFrequency());
}
