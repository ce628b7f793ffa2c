#pragma once
// What a ranging pair tells beyond its distance: the bearing of the second
// point seen from the first, in degrees counter-clockwise from +x (0..360,
// as a map reads angles, not the lidar's azimuth), and the offsets along x
// and y in centimetres. The window shows them after the distance texts it
// already shows, which keep their form.

#include <QCoreApplication>
#include <QString>

namespace display {

struct RangingComponents {
    double bearingDegrees = 0.0;  // NaN when both points lie on one spot in x and y
    double deltaXCm = 0.0;        // second minus first
    double deltaYCm = 0.0;
    bool hasBearing() const { return bearingDegrees == bearingDegrees; }
};

class RangingBearing {
    Q_DECLARE_TR_FUNCTIONS(RangingBearing)
public:
    // Decimals of the bearing and the offsets, as of the distance.
    static constexpr int kPrecision = 2;

    // From the first point (x0, y0) to the second (x1, y1), metres.
    static RangingComponents components(double x0, double y0, double x1, double y1);
    // "  Bearing:45.00°  Δx:100.00 CM  Δy:100.00 CM", to follow the distance
    // text; "Bearing:" stands alone without a bearing. A bearing that rounds
    // to 360.00 reads 0.00.
    static QString text(const RangingComponents& components);
};

}  // namespace display
