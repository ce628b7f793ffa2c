#pragma once
// Tern_Plus: the length-field packet of Tern_P with its own distance words.
// Big-endian, no checksum, L = the whole packet's length:
//
// | offset | bytes  | field                                               |
// |--------|--------|-----------------------------------------------------|
// | 0      | 2      | header A5 5A                                        |
// | 2      | 2      | length L                                            |
// | 4      | 2      | start angle, 1/100 degree (may exceed 360)          |
// | 6      | 2      | period word, rpm = 2500000 / value (0 -> 0)         |
// | 8      | L - 20 | ceil((L - 20) / 2) distance words                   |
// | L - 12 | 6      | year - 2000, month, day, hour, minute, second       |
// | L - 6  | 2      | millisecond                                         |
// | L - 4  | 2      | microsecond                                         |
// | L - 2  | 2      | trailer FA FB                                       |
//
// Every word is a point whatever it holds: the whole word is the distance
// (bit 15 is not masked off) and bit 15 also gives intensity 255. So the
// angular and time steps depend only on L.
// The parameters reply is 188 bytes: date and version at 173..178 (signed
// bytes), motor speed setting * 60 at 141..142, filter code at 181.

#include "TernGpsSession.h"
#include "DecodeCommon.h"
#include "ModelDescriptor.h"
#include "OfflineParser.h"
#include "TernProtocol.h"

class Tern_Plus : public lidar::tern::GpsSession<Tern_Plus> {
    Q_OBJECT
public:
    Q_INVOKABLE explicit Tern_Plus(QObject* parent = nullptr);

    static const lidar::ModelDescriptor& Descriptor();

    void ParseLidarData() override;
    // The byte is the motor speed setting as a signed char.
    void SetDeviceParam(quint8 value) override;

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

    // Points of one data packet, time stamps not yet set; returns the
    // packet's calendar time. Pure.
    static lidar::tern::CalendarTime DecodePacket(lidar::decode::Bytes packet, lidar::decode::DecodedPacket& out);
    // Version text, filter mode and motor speed setting of a 188-byte reply.
    static void DecodeReply(lidar::decode::Bytes reply, LidarParam& param);
    // The set-motor-speed command: value * 60 at 141..142.
    static QByteArray DeviceParamCommand(signed char value);

    static constexpr int kMinimumBuffer = 92;
    static constexpr int kReplySize = 188;
    static constexpr int kReplyVersionAt = 173;

    // Live state shared by every Tern_Plus session.
    static float previousAzimuth;
    static lidar::tern::PacketClock packetClock;

private:
    lidar::decode::DecodedPacket decoded_;
};
