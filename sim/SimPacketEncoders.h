#pragma once
// Data packets of the six models, byte for byte, from what the simulated head
// measured. Written from the packet layouts, independently of the decoders,
// so that the end-to-end tests check one side against the other.

#include "SimModel.h"
#include "SimScene.h"

#include <QByteArray>
#include <QtGlobal>
#include <cstdint>
#include <vector>

namespace sim {

// The GPS calendar time of a packet (full year).
struct CalendarStamp {
    int year = 2000, month = 1, day = 1, hour = 0, minute = 0, second = 0;
    int millisecond = 0, microsecond = 0;
};
CalendarStamp calendarFromMicroseconds(qint64 microsecondsSinceEpochUtc);

// One packet's worth of measurements and the fields around them.
struct PacketContent {
    double startAzimuth = 0.0;  // degrees
    double endAzimuth = 0.0;    // degrees, azimuth of the last sample (Wren)
    uint16_t period = 0;        // speed word: rpm = 2500000 / period
    uint16_t ambient = 0;       // Wren_Plus only
    CalendarStamp time;         // GPS models only
    // Sample-major, channel-minor: sample k channel c at k * channels + c.
    std::vector<Measurement> measurements;
};

// Length of the Tern_P and Tern_Plus packets: 42 words, 8 + 84 + 12 bytes.
constexpr int kTernVariableLength = 104;
// Tern_P firmware from this version number on sends whole-word distances.
constexpr int kWholeWordVersion = 215;

// Hundredths of a degree, wrapped into 0..35999.
uint16_t centidegrees(double azimuth);

// Tern distance word: bit 15 flags a strong echo, bits 14..0 the distance,
// 0xFFFF no measurement.
uint16_t flaggedWord(const Measurement& m);
// Whole-word distance (Tern_P from version 215, Tern_Plus); 0 no measurement.
uint16_t wholeWord(const Measurement& m);

QByteArray encodeTern(const PacketContent& c);                        // 92 bytes
QByteArray encodeTernP(const PacketContent& c, int versionNumber);    // 104 bytes
QByteArray encodeTernGps(const PacketContent& c);                     // 102 bytes
QByteArray encodeTernPlus(const PacketContent& c);                    // 104 bytes
QByteArray encodeWrenPlus(const PacketContent& c);                    // 108 bytes
QByteArray encodeWrenKite(const PacketContent& c);                    // 58 bytes
QByteArray encodePacket(Model model, const PacketContent& c, int versionNumber);

// Sum of bytes [0, count) modulo 256: the Wren checksum.
uint8_t byteSum(const QByteArray& bytes, int count);

}  // namespace sim
