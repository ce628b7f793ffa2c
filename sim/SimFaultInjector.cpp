#include "SimFaultInjector.h"

namespace sim {

FaultInjector::FaultInjector(const FaultOptions& options, uint64_t seed, Damage damage)
    : options_(options), damage_(damage), random_(seed)
{
}

void FaultInjector::damage(QByteArray& packet)
{
    // The header stays whole, so that the damaged packet is cut out and refused.
    if (damage_ == Damage::LoseBodyByte && packet.size() > 4) {
        packet.remove(random_.between(2, packet.size() - 3), 1);  // the trailer stays whole too
    } else if (packet.size() > 2) {
        const int at = random_.between(2, packet.size() - 1);
        packet[at] = static_cast<char>(packet[at] ^ random_.between(1, 255));
    }
}

QVector<QByteArray> FaultInjector::apply(const QByteArray& packet)
{
    QVector<QByteArray> chunks;
    fate_ = PacketFate();
    if (random_.chance(options_.drop)) {
        ++counters_.dropped;
        fate_.kind = PacketFate::Kind::Dropped;
        return chunks;
    }
    QByteArray body = packet;
    if (!body.isEmpty() && random_.chance(options_.corrupt)) {
        ++counters_.corrupted;
        fate_.kind = PacketFate::Kind::Corrupted;
        damage(body);
    }
    QByteArray junk;
    if (random_.chance(options_.junk)) {
        ++counters_.junk;
        const int n = random_.between(1, 24);
        for (int i = 0; i < n; ++i)
            junk.append(static_cast<char>(random_.between(0, 255)));
        fate_.junkBytes = n;
    }

    if (!options_.split) {
        if (!junk.isEmpty())
            chunks.append(junk);
        chunks.append(body);
        return chunks;
    }
    // The previous packet's tail, any junk and this packet's head make one
    // chunk; this packet's tail waits for the next one.
    const int cut = body.size() > 1 ? random_.between(1, body.size() - 1) : body.size();
    chunks.append(carry_ + junk + body.left(cut));
    carry_ = body.mid(cut);
    return chunks;
}

QByteArray FaultInjector::flush()
{
    QByteArray tail;
    tail.swap(carry_);
    return tail;
}

}  // namespace sim
