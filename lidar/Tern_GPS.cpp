#include "Tern_GPS.h"

#include "Tern.h"

using namespace lidar::decode;
namespace tern = lidar::tern;

float Tern_GPS::previousAzimuth = -1.0f;
tern::PacketClock Tern_GPS::packetClock;

Tern_GPS::Tern_GPS(QObject* parent) : GpsSession(parent) {}

tern::CalendarTime Tern_GPS::DecodePacket(const QByteArray& packet, DecodedPacket& out)
{
    tern::decodeBody(packet, 2, 6, 42, tern::kFlagIgnoredWords, true, out);
    return tern::readCalendar(packet, kCalendarOffset);
}

void Tern_GPS::ParseLidarData()
{
    tern::parseStream(receiveBuffer, kPacketSize, kReplySize, [this](const QByteArray& piece) {
        if (piece.size() == kPacketSize) {
            recordPacket(piece);
            const tern::CalendarTime time = DecodePacket(piece, decoded_);
            emit SendGPSTimeData(packetClock.apply(decoded_, time));
            placePoints<float>(decoded_, currentFrame, lastFrame, previousAzimuth, [this] { finishFrame(); });
            return true;
        }
        if (piece.size() == kReplySize) {
            replyReceived = 1;
            Tern::DecodeReply(piece, param);  // same bytes as Tern's, at 175..181
            SetMotorFrequency(param.frequency);
            return true;
        }
        return false;
    });
}

bool Tern_GPS::ParseRecordedBatch(const QVector<QByteArray>& packets, QVector<lidar::LidarDataPoint_V4>& frames)
{
    static OfflineFrames<float> state;
    static tern::PacketClock clock;
    DecodedPacket decoded;
    return tern::parseRecorded(
        packets, 0, [](const QByteArray& packet) { return packet.size() == kPacketSize; },
        [&](const QByteArray& packet) {
            const tern::CalendarTime time = DecodePacket(packet, decoded);
            clock.apply(decoded, time);
            state.place<float>(decoded, frames);
        });
}
