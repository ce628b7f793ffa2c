#pragma once
// The one test of whether a point lies in an angle range, for the view, the
// exports and the bags alike.

namespace display {

// minimum <= azimuth <= maximum; a NaN azimuth is never in range, and a
// reversed range holds nothing.
inline bool inAngleRange(float azimuth, float minimum, float maximum)
{
    return minimum <= azimuth && azimuth <= maximum;
}

}  // namespace display
