#pragma once
// Where converted frames go, one at a time: begin(), frame() for each frame
// in order, end(). A writer keeps no more than one frame unless its output
// is one cloud of all of them. Only points whose azimuth lies in the angle
// range (inclusive; a NaN azimuth never does) are written.

#include "LidarRecords.h"
#include "display/AngleRange.h"

#include <QString>

class FrameWriter {
public:
    virtual ~FrameWriter() = default;

    void setAngleRange(float startAngle, float endAngle)
    {
        startAngle_ = startAngle;
        endAngle_ = endAngle;
    }

    // Each returns false with `error` set when the output cannot be written.
    virtual bool begin(QString& error) = 0;
    // `number` counts the frames from 1.
    virtual bool frame(int number, const lidar::LidarDataPoint_V4& frame, QString& error) = 0;
    virtual bool end(QString& error) = 0;
    // Leaves nothing half-written behind (files already complete may stay).
    virtual void discard() = 0;

    qint64 pointsWritten() const { return points_; }

protected:
    bool inRange(float azimuth) const { return display::inAngleRange(azimuth, startAngle_, endAngle_); }

    float startAngle_ = 0.0f;
    float endAngle_ = 360.0f;
    qint64 points_ = 0;
};
