#pragma once
// Tern_GPS: Tern's packet lengthened by the GPS date and time of the packet.
// Data packets are exactly 102 bytes, big-endian, no checksum:
//
// | offset | bytes | field                                                |
// |--------|-------|------------------------------------------------------|
// | 0      | 2     | header A5 5A                                         |
// | 2      | 2     | start angle, 1/100 degree (may exceed 360)           |
// | 4      | 2     | period word, rpm = 2500000 / value (0 -> 0)          |
// | 6      | 84    | 42 words: bits 14..0 mm, bit 15 ignored; FFFF none   |
// | 90     | 6     | year - 2000, month, day, hour, minute, second        |
// | 96     | 2     | millisecond                                          |
// | 98     | 2     | microsecond                                          |
// | 100    | 2     | trailer FA FB                                        |
//
// Intensity is always 0; the 41st word counts only when the 40th is zero.
// The parameters reply is 188 bytes: date and version at 175..180 (signed
// bytes), filter code at 181. Every data packet is reported as a GPS time.

#include "TernGpsSession.h"
#include "DecodeCommon.h"
#include "ModelDescriptor.h"
#include "OfflineParser.h"
#include "TernProtocol.h"

class Tern_GPS : public lidar::tern::GpsSession<Tern_GPS> {
    Q_OBJECT
public:
    Q_INVOKABLE explicit Tern_GPS(QObject* parent = nullptr);

    static const lidar::ModelDescriptor& Descriptor();

    void ParseLidarData() override;

    static QVector<lidar::LidarDataPoint_V4> ParseRecordedPackets(const QVector<QByteArray>& packets)
    {
        return lidar::decode::parseWhole<ParseRecordedBatch>(packets);
    }
    // The same fed a recording's packets a batch at a time, through the
    // model's process-wide offline parser: the frames each batch completes
    // are appended; false once a packet ended the parse.
    static bool ParseRecordedBatch(const QVector<QByteArray>& packets, QVector<lidar::LidarDataPoint_V4>& frames);

    // What the offline parse carries from packet to packet (OfflineParser.h).
    struct OfflineState {
        lidar::decode::OfflineFrames<float> frames;
        lidar::tern::PacketClock clock;
    };
    static void SetRecordPrefix(OfflineState&, const QVector<QByteArray>&) {}
    static bool AddRecordedPacket(OfflineState& state, const QByteArray& packet,
                                  QVector<lidar::LidarDataPoint_V4>& frames);

    // Points of one 102-byte data packet, time stamps not yet set; returns
    // the packet's calendar time. Pure: used live and offline.
    static lidar::tern::CalendarTime DecodePacket(lidar::decode::Bytes packet, lidar::decode::DecodedPacket& out);

    static constexpr int kPacketSize = 102;
    static constexpr int kReplySize = 188;
    static constexpr int kCalendarOffset = 90;

    // Live state shared by every Tern_GPS session.
    static float previousAzimuth;
    static lidar::tern::PacketClock packetClock;

private:
    lidar::decode::DecodedPacket decoded_;
};
