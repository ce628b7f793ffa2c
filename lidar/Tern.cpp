#include "Tern.h"

#include "TernProtocol.h"

using namespace lidar::decode;
namespace tern = lidar::tern;

float Tern::previousAzimuth = -1.0f;
int Tern::filterAttempts = 0;

Tern::Tern(QObject* parent) : LidarAnalysis(parent) {}

const lidar::ModelDescriptor& Tern::Descriptor()
{
    static const lidar::ModelDescriptor model = [] {
        auto d = tern::describeFixedSize<Tern>();  // bit 15 is the intensity flag
        d.packets.replyVersionAt = kReplyVersionAt;
        d.baudRate = 230400;
        d.commands.readParamClass = tern::kClass01;
        d.commands.setFilterClass = tern::kClass55;
        return d;
    }();
    return model;
}

void Tern::DecodePacket(Bytes packet, DecodedPacket& out)
{
    tern::decodeFixedSizeBody(packet, tern::kFlaggedWords, out);
}

void Tern::DecodeReply(Bytes reply, LidarParam& param)
{
    tern::readReply(reply, kReplyVersionAt, param);
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
        packet, state.frames.totals, [](const QByteArray& p) { return p.size() == kPacketSize; },
        [&](const QByteArray& p) {
            DecodedPacket& decoded = scratchPacket();
            DecodePacket(p, decoded);
            state.frames.place<float>(decoded, frames);
        });
}

QByteArray Tern::ReadParamCommand()
{
    return tern::readParamCommand(Descriptor().commands.readParamClass, storedFrequency());
}

void Tern::SetMotorFrequency(quint8 frequency)
{
    storeFrequency(frequency);
    sendTwice(tern::setFrequencyCommand(frequency));
}

void Tern::SetLidarFilter(int mode)
{
    sendWithRetries(tern::setFilterCommand(Descriptor().commands.setFilterClass, mode, storedFrequency()),
                    filterAttempts);
    SetMotorFrequency(storedFrequency());
}
