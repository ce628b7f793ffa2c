#include "Tern_P.h"

using namespace lidar::decode;
namespace tern = lidar::tern;

float Tern_P::previousAzimuth = -1.0f;
tern::PacketClock Tern_P::packetClock;

Tern_P::Tern_P(QObject* parent) : GpsSession(parent) {}

const lidar::ModelDescriptor& Tern_P::Descriptor()
{
    static const lidar::ModelDescriptor model = [] {
        auto d = tern::describeWithLength<Tern_P>();
        d.baudRate = 460800;
        d.recording = kRecording;
        return d;
    }();
    return model;
}

tern::CalendarTime Tern_P::DecodePacket(Bytes packet, uint32_t version, DecodedPacket& out)
{
    const tern::WordEncoding encoding = version < kPlainWordsFrom ? tern::kFlaggedWords : tern::kPlainWords;
    return tern::decodeVariablePacket(packet, encoding, out);
}

uint32_t Tern_P::DecodeReply(Bytes reply, LidarParam& param)
{
    tern::readReply(reply, kReplyVersionAt, param);
    return uint32_t(s8(reply, 176) * 100 + s8(reply, 177) * 10 + s8(reply, 178));
}

void Tern_P::ParseLidarData()
{
    // No fallback length: without a trailer the piece waits for more bytes.
    tern::parseStream(receiveBuffer, streamCounters, kMinimumBuffer, 0, [this](Bytes piece) {
        if (tern::isVariableDataPacket(piece)) {
            recordPacket(piece.data, piece.size);
            const tern::CalendarTime time = DecodePacket(piece, versionNumber.load(), decoded_);
            emit SendGPSTimeData(packetClock.apply(decoded_, time));
            placePoints<float>(decoded_, currentFrame, lastFrame, previousAzimuth, frameAccounting,
                              [this] { finishFrame(); });
        } else if (piece.size == kReplySize) {
            takeReply([this, piece](LidarParam& p) { versionNumber = DecodeReply(piece, p); });
        }
    });
}

bool Tern_P::ParseRecordedBatch(const QVector<QByteArray>& elements, QVector<lidar::LidarDataPoint_V4>& frames)
{
    return lidar::parseSharedBatch<Tern_P, kRecording.prefixElements()>(elements, frames);
}

void Tern_P::SetRecordPrefix(OfflineState& state, const QVector<QByteArray>& prefix)
{
    state.version = prefix.value(0).trimmed().toUInt();
}

bool Tern_P::AddRecordedPacket(OfflineState& state, const QByteArray& packet, QVector<lidar::LidarDataPoint_V4>& frames)
{
    return tern::addRecorded(packet, state.frames.totals, tern::isVariableDataPacket, [&](const QByteArray& p) {
        DecodedPacket& decoded = scratchPacket();
        const tern::CalendarTime time = DecodePacket(p, state.version, decoded);
        state.clock.apply(decoded, time);
        state.frames.place<float>(decoded, frames);
    });
}
