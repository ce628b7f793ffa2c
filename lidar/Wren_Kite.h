#pragma once
// Wren_Kite: a single-channel lidar. Data packets are 58 bytes, big-endian,
// sixteen measurements each, checksummed:
//
// | offset | bytes | field                                                |
// |--------|-------|------------------------------------------------------|
// | 0      | 2     | header A5 5A                                         |
// | 2      | 1     | packet type 0x3A (":")                               |
// | 3      | 2     | period, rpm = 2500000 / value (0 -> 0)               |
// | 5      | 2     | start azimuth, 1/100 degree                          |
// | 7      | 48    | 16 groups: distance (2, mm), intensity (1)           |
// | 55     | 2     | end azimuth, 1/100 degree                            |
// | 57     | 1     | checksum: sum of bytes 0..56 modulo 256              |
//
// Azimuths are computed in double precision, and points of distance 0 are
// kept. The offline parse remembers the previous azimuth as whole degrees
// (truncated), so its revolution test can differ from the live one near the
// 15-degree threshold. 188-byte replies and commands: WrenProtocol.h.

#include "ModelDescriptor.h"
#include "OfflineParser.h"
#include "WrenSession.h"

class Wren_Kite : public lidar::wren::WrenSession<Wren_Kite> {
    Q_OBJECT
public:
    Q_INVOKABLE explicit Wren_Kite(QObject* parent = nullptr);

    static const lidar::ModelDescriptor& Descriptor();

    // Every element is taken as a data packet; no header, type or checksum test.
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
        lidar::decode::OfflineFrames<int32_t> frames;  // the previous azimuth in whole degrees
    };
    static void SetRecordPrefix(OfflineState&, const QVector<QByteArray>&) {}
    static bool AddRecordedPacket(OfflineState& state, const QByteArray& packet,
                                  QVector<lidar::LidarDataPoint_V4>& frames);

    // Points of one data packet under channel ID 0. Pure.
    static void DecodePacket(lidar::decode::Bytes packet, lidar::decode::DecodedPacket& out);

    static constexpr int kPacketSize = 58;
    static constexpr int kStartAngleAt = 5;
    static constexpr int kGroupsAt = 7;
    static constexpr int kEndAngleAt = 55;
    static constexpr uint8_t kPacketType = 0x3A;

    // Live state shared by every Wren_Kite session.
    static double previousAzimuth;
};
