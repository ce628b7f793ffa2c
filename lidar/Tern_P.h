#pragma once
// Tern_P: a Tern whose packets give their own length and carry a GPS date
// and time. Big-endian, no checksum, L = the whole packet's length:
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
// The word encoding depends on the firmware version number V (major * 100 +
// minor * 10 + patch from the last parameters reply, kept in versionNumber):
// below 215 bit 15 is the intensity flag, bits 14..0 the distance and FFFF no
// measurement; from 215 on the whole word is the distance, intensity 0, and
// every word is a point. There is no 41st-word rule.
// The parameters reply is 188 bytes: date and version at 173..178 (signed
// bytes), filter code at 181. A recording carries V as its first element.

#include "TernGpsSession.h"
#include "DecodeCommon.h"
#include "ModelDescriptor.h"
#include "OfflineParser.h"
#include "TernProtocol.h"

class Tern_P : public lidar::tern::GpsSession<Tern_P> {
    Q_OBJECT
public:
    Q_INVOKABLE explicit Tern_P(QObject* parent = nullptr);

    static const lidar::ModelDescriptor& Descriptor();

    void ParseLidarData() override;

    // The first element is the firmware version number as decimal text.
    static QVector<lidar::LidarDataPoint_V4> ParseRecordedPackets(const QVector<QByteArray>& elements)
    {
        return lidar::decode::parseWhole<ParseRecordedBatch>(elements);
    }
    // The same fed a recording's packets a batch at a time, each batch led
    // by the version element, through the model's process-wide offline
    // parser: the frames each batch completes are appended; false once a
    // packet ended the parse.
    static bool ParseRecordedBatch(const QVector<QByteArray>& packets, QVector<lidar::LidarDataPoint_V4>& frames);

    // What the offline parse carries from packet to packet (OfflineParser.h).
    struct OfflineState {
        lidar::decode::OfflineFrames<float> frames;
        lidar::tern::PacketClock clock;
        uint32_t version = 0;  // from the recording, not carried to the next
    };
    // The version element; not a number reads as 0, the older word encoding.
    static void SetRecordPrefix(OfflineState& state, const QVector<QByteArray>& prefix);
    static bool AddRecordedPacket(OfflineState& state, const QByteArray& packet,
                                  QVector<lidar::LidarDataPoint_V4>& frames);

    // Points of one data packet decoded for firmware `version`, time stamps
    // not yet set; returns the packet's calendar time. Pure.
    static lidar::tern::CalendarTime DecodePacket(lidar::decode::Bytes packet, uint32_t version,
                                                  lidar::decode::DecodedPacket& out);
    // Version text and filter mode of a 188-byte reply into `param`;
    // returns the firmware version number.
    static uint32_t DecodeReply(lidar::decode::Bytes reply, LidarParam& param);

    static constexpr int kMinimumBuffer = 92;
    static constexpr int kReplySize = 188;
    static constexpr int kReplyVersionAt = 173;
    static constexpr uint32_t kPlainWordsFrom = 215;  // first version with whole-word distances
    // A recording holds the firmware version after the class name.
    static constexpr lidar::RecordingHeader kRecording{true};

    // Live state shared by every Tern_P session.
    static float previousAzimuth;
    static lidar::tern::PacketClock packetClock;

private:
    lidar::decode::DecodedPacket decoded_;
};
