#pragma once
// Tern: the basic single-plane lidar. Data packets are exactly 92 bytes,
// big-endian, 42 distance words over 15 degrees, no checksum:
//
// | offset | bytes | field                                                   |
// |--------|-------|---------------------------------------------------------|
// | 0      | 2     | header A5 5A                                            |
// | 2      | 2     | start angle, 1/100 degree (may exceed 360)              |
// | 4      | 2     | period word, rpm = 2500000 / value (0 -> 0)             |
// | 6      | 84    | 42 words: bit 15 intensity flag, bits 14..0 mm; FFFF none |
// | 90     | 2     | trailer FA FB                                           |
//
// The parameters reply is 186 bytes, recognised by length: firmware date and
// version at 175..180 (signed bytes), filter code at 181.

#include "LidarAnalysis.h"
#include "DecodeCommon.h"
#include "ModelDescriptor.h"
#include "OfflineParser.h"

class Tern : public LidarAnalysis {
    Q_OBJECT
public:
    Q_INVOKABLE explicit Tern(QObject* parent = nullptr);

    static const lidar::ModelDescriptor& Descriptor();

    void ParseLidarData() override;
    QByteArray ReadParamCommand() override;
    void SetMotorFrequency(quint8 frequency) override;
    void SetLidarFilter(int mode) override;

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
    };
    static void SetRecordPrefix(OfflineState&, const QVector<QByteArray>&) {}
    static bool AddRecordedPacket(OfflineState& state, const QByteArray& packet,
                                  QVector<lidar::LidarDataPoint_V4>& frames);

    // Points of one 92-byte data packet (the 41st word is dropped unless the
    // 40th is zero). Pure: used live and offline.
    static void DecodePacket(lidar::decode::Bytes packet, lidar::decode::DecodedPacket& out);
    // Version text and filter mode of a 186-byte reply into `param`.
    static void DecodeReply(lidar::decode::Bytes reply, LidarParam& param);

    static constexpr int kPacketSize = 92;
    static constexpr int kReplySize = 186;
    static constexpr int kReplyVersionAt = 175;

    static float previousAzimuth;  // live, shared by every Tern session
    static int filterAttempts;     // program-wide, never reset

private:
    lidar::decode::DecodedPacket decoded_;
};
