#pragma once
// The simulated surroundings: a rectangular room with pillars, an open door
// onto a corridor and a strip of reflective tape, seen from the lidar at the
// origin. Azimuth 0 looks along +y, azimuth 90 along +x, as the viewer draws.

#include "SimRandom.h"

#include <cstdint>
#include <vector>

namespace sim {

// What the lidar's own filter does; the values are the settings panel's
// mode indices (0 "Normal filtering", 1 "No filtering", 2 "Within three meters").
enum class FilterMode { Normal = 0, None = 1, WithinThreeMetres = 2 };

// One measurement as the lidar reports it; distance 0 means no echo.
struct Measurement {
    uint16_t distance = 0;  // millimetres
    uint8_t intensity = 0;  // 0..255
};

// Intensity from which the Tern packets' one-bit flag is set: only the
// reflective strip reaches it.
constexpr uint8_t kStrongEcho = 200;

enum class Surface { Wall, Pillar, Door, Reflector };

struct Hit {
    double range = 0.0;         // metres
    double cosIncidence = 1.0;  // between the beam and the surface normal
    Surface surface = Surface::Wall;
};

class Scene {
public:
    // The room every simulated lidar sits in.
    Scene();

    // The nearest surface along the beam at `azimuth` degrees; false when
    // nothing lies within the lidar's range.
    bool cast(double azimuth, Hit* hit) const;
    // The true range in millimetres at `azimuth`, 0 when nothing is in range.
    double trueRangeMm(double azimuth) const;

    // One measurement at `azimuth` under `filter`, with range noise, the
    // occasional lost echo and, without filtering, stray echoes from dust.
    Measurement measure(double azimuth, FilterMode filter, Random& random) const;

    // Range noise never exceeds this many millimetres either way.
    static double noiseBoundMm();
    static constexpr double kMaxRangeM = 12.0;
    static constexpr double kNearFilterMm = 3000.0;

private:
    struct Segment {
        double x1, y1, x2, y2;
        Surface surface;
    };
    struct Circle {
        double x, y, r;
    };
    std::vector<Segment> segments_;
    std::vector<Circle> pillars_;
};

}  // namespace sim
