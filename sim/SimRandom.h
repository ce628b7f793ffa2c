#pragma once
// A seeded random source with the same sequence on every platform (the
// standard library's distributions are not portable, so the draws are made
// here from the raw 64-bit engine).

#include <cstdint>
#include <random>

namespace sim {

class Random {
public:
    explicit Random(uint64_t seed) : engine_(seed) {}

    // Uniform in [0, 1).
    double uniform() { return double(engine_() >> 11) * (1.0 / 9007199254740992.0); }
    double uniform(double low, double high) { return low + (high - low) * uniform(); }
    bool chance(double probability) { return probability > 0.0 && uniform() < probability; }
    // Uniform integer in [low, high].
    int between(int low, int high) { return low + int(uniform() * double(high - low + 1)); }

private:
    std::mt19937_64 engine_;
};

}  // namespace sim
