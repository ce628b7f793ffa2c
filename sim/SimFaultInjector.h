#pragma once
// Damage done to the data stream on its way out: lost packets, damaged
// packets, random bytes between packets and packets cut across datagrams.
// A damaged packet is one the lidar's own framing catches: a Tern-family
// packet (no checksum) loses a byte of its body, so its length is wrong; a
// Wren-family packet has a byte after its header changed, so its checksum
// fails. Bit flips no check can see would be believed by any decoder.

#include "SimRandom.h"

#include <QByteArray>
#include <QVector>
#include <cstdint>

namespace sim {

struct FaultOptions {
    double drop = 0.0;     // probability that a packet is lost
    double corrupt = 0.0;  // probability that a packet is damaged
    double junk = 0.0;     // probability of random bytes before a packet
    bool split = false;    // cut every packet at a random point across two datagrams

    bool any() const { return drop > 0.0 || corrupt > 0.0 || junk > 0.0 || split; }
};

struct FaultCounters {
    uint64_t dropped = 0;
    uint64_t corrupted = 0;
    uint64_t junk = 0;
};

// What became of one packet.
struct PacketFate {
    enum class Kind { Sent, Dropped, Corrupted };
    Kind kind = Kind::Sent;
    int junkBytes = 0;  // random bytes sent just before it
};

// How a packet is damaged (see above).
enum class Damage { LoseBodyByte, ChangeByte };

class FaultInjector {
public:
    FaultInjector(const FaultOptions& options, uint64_t seed, Damage damage = Damage::ChangeByte);

    // The chunks (datagrams, or writes on a serial line) that carry `packet`
    // once the faults have struck; empty when it is lost. With splitting,
    // a packet's tail travels at the front of the next packet's chunk.
    QVector<QByteArray> apply(const QByteArray& packet);
    // The tail a split packet left behind, to go out before anything that is
    // not part of the data stream (a reply); empty when there is none.
    QByteArray flush();

    const FaultCounters& counters() const { return counters_; }
    // The fate of the packet apply() was given last.
    const PacketFate& lastFate() const { return fate_; }

private:
    void damage(QByteArray& packet);

    FaultOptions options_;
    Damage damage_;
    PacketFate fate_;
    Random random_;
    QByteArray carry_;
    FaultCounters counters_;
};

}  // namespace sim
