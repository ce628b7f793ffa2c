#pragma once
// Builders for hand-made packets, so tests state the fields they care about.

#include <QByteArray>
#include <QVector>
#include <cstdint>
#include <initializer_list>

namespace testing {

void putBe16(QByteArray& packet, int offset, uint16_t value);

// A 92-byte Tern data packet: start angle in 1/100 degree, period word and
// the 42 distance words (missing words are 0xFFFF).
QByteArray ternPacket(uint16_t startCentidegrees, uint16_t period, const QVector<uint16_t>& words);
// The same with every one of the 42 words set to `word`.
QByteArray ternPacketFilled(uint16_t startCentidegrees, uint16_t period, uint16_t word);
// A 186-byte Tern parameters reply: date, version and filter code at 175..181,
// FA FB in its last two bytes.
QByteArray ternReply(std::initializer_list<uint8_t> dateVersion, uint8_t filterCode);

// Data packets for `revolutions` whole turns of a Tern at 15 degrees a packet,
// every word `word`; the first packet starts at `firstStart`.
QVector<QByteArray> ternRevolutions(int revolutions, uint16_t word = 1000, uint16_t firstStart = 0);

}  // namespace testing
