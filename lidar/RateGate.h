#pragma once
// Lets events through in a burst of up to `burst` at once, then one every
// `intervalMs` milliseconds: a token bucket. Rare events always pass; a
// flood passes at the steady rate only.

#include <QtGlobal>
#include <algorithm>

namespace lidar {

class RateGate {
public:
    RateGate(int burst, qint64 intervalMs) : burst_(burst), intervalMs_(intervalMs), tokens_(burst) {}

    // Whether an event at `nowMs` (a clock that never goes back) may pass.
    bool allow(qint64 nowMs)
    {
        if (tokens_ < burst_) {
            const qint64 earned = (nowMs - since_) / intervalMs_;
            tokens_ = int(std::min<qint64>(burst_, tokens_ + earned));
            since_ += earned * intervalMs_;
        }
        if (tokens_ == 0)
            return false;
        if (tokens_ == burst_)
            since_ = nowMs;  // the next token is earned from now
        --tokens_;
        return true;
    }

private:
    int burst_;
    qint64 intervalMs_;
    int tokens_;
    qint64 since_ = 0;
};

}  // namespace lidar
