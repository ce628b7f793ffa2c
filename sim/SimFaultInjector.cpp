#include "SimFaultInjector.h"

namespace sim {

FaultInjector::FaultInjector(const FaultOptions& options, uint64_t seed) : options_(options), random_(seed) {}

QVector<QByteArray> FaultInjector::apply(const QByteArray& packet)
{
    QVector<QByteArray> chunks;
    if (random_.chance(options_.drop)) {
        ++counters_.dropped;
        return chunks;
    }
    QByteArray body = packet;
    if (!body.isEmpty() && random_.chance(options_.corrupt)) {
        ++counters_.corrupted;
        const int flips = random_.between(1, 3);
        for (int i = 0; i < flips; ++i) {
            const int at = random_.between(0, body.size() - 1);
            body[at] = static_cast<char>(body[at] ^ random_.between(1, 255));
        }
    }
    QByteArray junk;
    if (random_.chance(options_.junk)) {
        ++counters_.junk;
        const int n = random_.between(1, 24);
        for (int i = 0; i < n; ++i)
            junk.append(static_cast<char>(random_.between(0, 255)));
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
