#include "SimScene.h"

#include <algorithm>
#include <cmath>

namespace sim {

namespace {

constexpr double kPi = 3.141592653589793;
// Each noise draw is the sum of four uniform steps: roughly normal, sigma
// about 5.8 mm, and bounded.
constexpr double kNoiseStepMm = 5.0;
// Echoes lost at random in normal filtering, and without filtering.
constexpr double kDropout = 0.01;
constexpr double kDropoutUnfiltered = 0.003;
// Without filtering a few echoes come from dust in front of the surface.
constexpr double kStrayEcho = 0.01;
// Beyond about 82 degrees of incidence the echo is too weak to be measured.
constexpr double kGrazingCos = 0.14;

double reflectivity(Surface s)
{
    switch (s) {
    case Surface::Pillar: return 0.75;
    case Surface::Door: return 0.45;
    case Surface::Reflector: return 1.0;
    default: return 0.55;
    }
}

}  // namespace

Scene::Scene()
{
    // Room walls, x from -3.2 to 4.6 m, y from -2.3 to 3.4 m. The east wall
    // has an open door from y = 0.6 to 1.5 m, its leaf swung into the
    // corridor; the corridor's far wall stands at x = 6.4 m.
    const double w = -3.2, e = 4.6, s = -2.3, n = 3.4;
    segments_ = {
        {w, n, -0.5, n, Surface::Wall},
        {-0.5, n, 0.3, n, Surface::Reflector},  // reflective tape on the north wall
        {0.3, n, e, n, Surface::Wall},
        {w, s, e, s, Surface::Wall},
        {w, s, w, n, Surface::Wall},
        {e, s, e, 0.6, Surface::Wall},
        {e, 1.5, e, n, Surface::Wall},
        {e, 1.5, 5.4, 1.5, Surface::Door},
        {6.4, -1.0, 6.4, 3.0, Surface::Wall},
        {e, -1.0, 6.4, -1.0, Surface::Wall},
        {e, 3.0, 6.4, 3.0, Surface::Wall},
        // A square pillar, 0.6 m across.
        {2.5, -1.7, 3.1, -1.7, Surface::Pillar},
        {3.1, -1.7, 3.1, -1.1, Surface::Pillar},
        {3.1, -1.1, 2.5, -1.1, Surface::Pillar},
        {2.5, -1.1, 2.5, -1.7, Surface::Pillar},
    };
    pillars_ = {{1.5, 1.2, 0.25}, {-1.6, -1.0, 0.2}};
}

bool Scene::cast(double azimuth, Hit* hit) const
{
    const double a = azimuth * kPi / 180.0;
    const double dx = std::sin(a), dy = std::cos(a);
    double best = kMaxRangeM;
    bool found = false;
    for (const Segment& s : segments_) {
        // Solve origin + t * d = p1 + u * (p2 - p1).
        const double ex = s.x2 - s.x1, ey = s.y2 - s.y1;
        const double denom = dx * ey - dy * ex;
        if (std::abs(denom) < 1e-12)
            continue;
        const double t = (s.x1 * ey - s.y1 * ex) / denom;
        const double u = (s.x1 * dy - s.y1 * dx) / denom;
        if (t <= 0.0 || t >= best || u < 0.0 || u > 1.0)
            continue;
        best = t;
        found = true;
        const double len = std::hypot(ex, ey);
        hit->range = t;
        hit->cosIncidence = std::abs(dx * ey - dy * ex) / len;
        hit->surface = s.surface;
    }
    for (const Circle& c : pillars_) {
        // |t d - c|^2 = r^2 with |d| = 1.
        const double b = dx * c.x + dy * c.y;
        const double disc = b * b - (c.x * c.x + c.y * c.y - c.r * c.r);
        if (disc < 0.0)
            continue;
        const double t = b - std::sqrt(disc);
        if (t <= 0.0 || t >= best)
            continue;
        best = t;
        found = true;
        const double nx = (t * dx - c.x) / c.r, ny = (t * dy - c.y) / c.r;
        hit->range = t;
        hit->cosIncidence = std::abs(nx * dx + ny * dy);
        hit->surface = Surface::Pillar;
    }
    return found;
}

double Scene::trueRangeMm(double azimuth) const
{
    Hit hit;
    return cast(azimuth, &hit) ? hit.range * 1000.0 : 0.0;
}

double Scene::noiseBoundMm()
{
    return 4.0 * kNoiseStepMm;
}

Measurement Scene::measure(double azimuth, FilterMode filter, Random& random) const
{
    // The same number of draws whatever happens, so that one lost echo does
    // not shift the noise of every later one.
    const double noise = kNoiseStepMm * (random.uniform(-1, 1) + random.uniform(-1, 1) +
                                         random.uniform(-1, 1) + random.uniform(-1, 1));
    const double lost = random.uniform();
    const double stray = random.uniform();
    const double strayPlace = random.uniform();
    const double shimmer = random.uniform(-4, 4);

    Measurement m;
    Hit hit;
    const bool unfiltered = filter == FilterMode::None;
    if (!cast(azimuth, &hit))
        return m;
    if (lost < (unfiltered ? kDropoutUnfiltered : kDropout))
        return m;
    if (!unfiltered && hit.cosIncidence < kGrazingCos)
        return m;

    double rangeMm = hit.range * 1000.0 + noise;
    double intensity = 0.0;
    if (unfiltered && stray < kStrayEcho) {
        // Dust or a mixed edge echo somewhere between the lidar and the wall.
        rangeMm = 150.0 + strayPlace * std::max(0.0, hit.range * 1000.0 - 450.0);
        intensity = 20.0 + shimmer;
    } else if (hit.surface == Surface::Reflector) {
        intensity = 240.0 + shimmer;
    } else {
        // Weaker with distance and with oblique incidence; kept below the
        // strong-echo mark so that only the tape raises the Tern flag.
        intensity = reflectivity(hit.surface) * 230.0 * std::sqrt(hit.cosIncidence) / (1.0 + hit.range / 6.0);
        intensity = std::min(190.0, intensity + shimmer);
    }
    if (filter == FilterMode::WithinThreeMetres && rangeMm > kNearFilterMm)
        return m;
    m.distance = static_cast<uint16_t>(std::clamp(std::lround(rangeMm), 1L, 65534L));
    m.intensity = static_cast<uint8_t>(std::clamp(std::lround(intensity), 1L, 255L));
    return m;
}

}  // namespace sim
