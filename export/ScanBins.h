#pragma once
// The bins of a laser scan over a whole turn: as many as the model's angular
// step fits into 360 degrees (rounded to a whole number, so the bins tile the
// turn), bin i at angle i * increment.
//
// Scan angles are counted as ROS counts them, counter-clockwise from x seen
// from above, while the lidars' azimuth runs clockwise from y (x = sin,
// y = cos): a point at azimuth a lies at scan angle 90 - a degrees. So the
// scan lies exactly on the points of the same revolution.

class ScanBins {
public:
    explicit ScanBins(double angularStepDegrees);

    int count() const { return count_; }
    double incrementDegrees() const { return 360.0 / count_; }
    // The scan angle of an azimuth, in degrees from 0 up to 360.
    static double scanAngle(double azimuthDegrees);
    // The bin whose angle is nearest to that of the azimuth.
    int binOf(double azimuthDegrees) const;

private:
    int count_;
};
