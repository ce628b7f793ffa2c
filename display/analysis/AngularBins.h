#pragma once
// The directions a model measures in, as bins over a whole turn: as many as
// its angular step fits into 360 degrees, rounded to a whole number so that
// the bins tile the turn. Bin i is centred on i * width, so bin 0 reaches
// from half a bin below 0 (that is, below 360) to half a bin above it; a
// measurement taken exactly on a multiple of the step lies in the middle of
// its bin, never on an edge where a rounding error would move it across.
//
// Azimuths are the lidar's own: degrees clockwise from +y (x = sin, y = cos).

#include <cmath>

namespace display {

class AngularBins {
public:
    AngularBins() = default;  // no bins: isValid() false
    explicit AngularBins(double angularStepDegrees);

    bool isValid() const { return count_ > 0; }
    int count() const { return count_; }
    double width() const { return width_; }  // degrees, 360 / count
    // The step the bins were made from (a reference file carries it).
    double angularStep() const { return step_; }
    // The bin of an azimuth in degrees (any turn); -1 for NaN or infinity.
    int binOf(double azimuthDegrees) const
    {
        if (!std::isfinite(azimuthDegrees) || count_ <= 0)
            return -1;
        // Nearly every azimuth is already within the turn: fmod only for the rest,
        // which it leaves unchanged anyway (it costs more than the rest of a point).
        double turn = azimuthDegrees;
        if (turn < 0.0 || turn >= 360.0) {
            turn = std::fmod(turn, 360.0);
            if (turn < 0.0)
                turn += 360.0;
        }
        return int(std::lround(turn / width_) % count_);
    }
    double centre(int bin) const { return bin * width_; }

private:
    int count_ = 0;
    double width_ = 0.0;
    double step_ = 0.0;
};

// Two angular steps describe the same directions when they differ by at most
// one per cent: a Wren packet's start and end angle are given to 1/100
// degree, so the step read from one packet varies by a few tenths of a per
// cent, while another motor speed or another packet layout moves it by far
// more.
bool sameAngularStep(double a, double b);

}  // namespace display
