#pragma once
// The texts of the status-bar readouts and of the frame's ambient value, each
// with its text for "no value". Lengths shown are in centimetres.

#include <QCoreApplication>
#include <QString>
#include <cstdint>

class ReadoutTexts {
    Q_DECLARE_TR_FUNCTIONS(ReadoutTexts)
public:
    // Decimals of the box extent readouts.
    static constexpr int kPrecision = 2;

    // The azimuth of a world point seen from the lidar, in degrees, from the
    // quadrant of (x, y). On an axis no quadrant applies and the raw angle
    // less 90 stands: both x half-axes read -90, both y half-axes 0.
    static double cursorAzimuth(double x, double y);

    static QString azimuth(double degrees);  // "Azimuth:45"; NaN gives "Azimuth:"
    static QString distance(double metres);  // "Distance:1.41421"
    static QString noAzimuth();
    static QString noDistance();

    // "motor speed: 10 hz,600 r/s" for 600 revolutions per minute; -1 = none.
    static QString motorSpeed(int32_t speed);

    // The box's extent in x and y (metres) and the span of its distances
    // (millimetres), as "Δx:50.00 CM" and so on.
    static QString deltaX(double metres);
    static QString deltaY(double metres);
    static QString deltaDistance(double millimetres);
    static QString noDeltaX();
    static QString noDeltaY();
    static QString noDeltaDistance();

    static QString ambient(int32_t value);  // "Ambient:12"
};
