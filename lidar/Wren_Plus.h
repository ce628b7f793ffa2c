#pragma once
// Wren_Plus: a two-channel lidar. Data packets are 108 bytes, big-endian,
// sixteen groups of two measurements each, checksummed:
//
// | offset | bytes | field                                                   |
// |--------|-------|---------------------------------------------------------|
// | 0      | 2     | header A5 5A                                            |
// | 2      | 1     | packet type 0x6C ("l")                                  |
// | 3      | 2     | period, rpm = 2500000 / value (0 -> 0)                  |
// | 5      | 2     | start azimuth, 1/100 degree                             |
// | 7      | 96    | 16 groups: channel 0 distance (2, mm) and intensity (1),|
// |        |       | then channel 1 distance and intensity                   |
// | 103    | 2     | ambient value of the frame                              |
// | 105    | 2     | end azimuth, 1/100 degree                               |
// | 107    | 1     | checksum: sum of bytes 0..106 modulo 256                |
//
// Azimuths are computed in single precision. A distance of 0 is no
// measurement and makes no point, but its group still takes part in finding
// the end of a revolution. 188-byte replies and commands: WrenProtocol.h.

#include "ModelDescriptor.h"
#include "OfflineParser.h"
#include "WrenSession.h"

class Wren_Plus : public lidar::wren::WrenSession<Wren_Plus> {
    Q_OBJECT
public:
    Q_INVOKABLE explicit Wren_Plus(QObject* parent = nullptr);

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
        lidar::decode::OfflineFrames<float> frames;
    };
    static void SetRecordPrefix(OfflineState&, const QVector<QByteArray>&) {}
    static bool AddRecordedPacket(OfflineState& state, const QByteArray& packet,
                                  QVector<lidar::LidarDataPoint_V4>& frames);

    // Points of one data packet under channel IDs 0 and 1. Pure.
    static void DecodePacket(lidar::decode::Bytes packet, lidar::decode::DecodedPacket& out);

    static constexpr int kPacketSize = 108;
    static constexpr int kStartAngleAt = 5;
    static constexpr int kGroupsAt = 7;
    static constexpr int kEndAngleAt = 105;
    static constexpr uint8_t kPacketType = 0x6C;

    // Live state shared by every Wren_Plus session.
    static float previousAzimuth;
};
