#include "Tern_GPS.h"

#include "Tern.h"

using namespace lidar::decode;
namespace tern = lidar::tern;

float Tern_GPS::previousAzimuth = -1.0f;
tern::PacketClock Tern_GPS::packetClock;

Tern_GPS::Tern_GPS(QObject* parent) : GpsSession(parent) {}

const lidar::ModelDescriptor& Tern_GPS::Descriptor()
{
    static const lidar::ModelDescriptor model = [] {
        auto d = tern::describeFixedSize<Tern_GPS>();  // bit 15 is ignored
        d.packets.replyVersionAt = Tern::kReplyVersionAt;  // Tern's reply bytes, in a longer reply
        d.gps.stamped = true;
        d.gps.calendarAt = kCalendarOffset;
        d.baudRate = 460800;
        d.commands.readParamClass = tern::kClass55;
        d.commands.setFilterClass = tern::kClass01;
        return d;
    }();
    return model;
}

tern::CalendarTime Tern_GPS::DecodePacket(Bytes packet, DecodedPacket& out)
{
    tern::decodeFixedSizeBody(packet, tern::kFlagIgnoredWords, out);
    return tern::readCalendar(packet, kCalendarOffset);
}

void Tern_GPS::ParseLidarData()
{
    tern::parseStream(receiveBuffer, streamCounters, kPacketSize, kReplySize, [this](Bytes piece) {
        if (piece.size == kPacketSize) {
            recordPacket(piece.data, piece.size);
            const tern::CalendarTime time = DecodePacket(piece, decoded_);
            emit SendGPSTimeData(packetClock.apply(decoded_, time));
            placePoints<float>(decoded_, currentFrame, lastFrame, previousAzimuth, frameAccounting,
                              [this] { finishFrame(); });
        } else if (piece.size == kReplySize) {
            // The same bytes as Tern's, at 175..181.
            takeReply([piece](LidarParam& p) { Tern::DecodeReply(piece, p); });
        }
    });
}

bool Tern_GPS::ParseRecordedBatch(const QVector<QByteArray>& packets, QVector<lidar::LidarDataPoint_V4>& frames)
{
    return lidar::parseSharedBatch<Tern_GPS>(packets, frames);
}

bool Tern_GPS::AddRecordedPacket(OfflineState& state, const QByteArray& packet,
                                 QVector<lidar::LidarDataPoint_V4>& frames)
{
    return tern::addRecorded(
        packet, state.frames.totals, [](const QByteArray& p) { return p.size() == kPacketSize; },
        [&](const QByteArray& p) {
            DecodedPacket& decoded = scratchPacket();
            const tern::CalendarTime time = DecodePacket(p, decoded);
            state.clock.apply(decoded, time);
            state.frames.place<float>(decoded, frames);
        });
}
