#pragma once
// The records every part of the program passes around: one point, one frame
// (a whole revolution) and one GPS time stamp.

#include <QMap>
#include <QMetaType>
#include <QString>
#include <cstdint>
#include <vector>

namespace lidar {

struct LidarPoint {
    float x = 0.0f;          // metres, sin(azimuth) * distance
    float y = 0.0f;          // metres, cos(azimuth) * distance
    float z = 0.0f;          // metres, always 0 for single-plane lidars
    float azimuth = -1.0f;   // degrees; -1 until a decoder gives it an angle
    int32_t distance = 0;    // millimetres
    int32_t intensity = 0;   // reflectivity, scale depends on the model
    int64_t timestamp = -1;  // per-point time in ms, -1 when the model has none
};

// One revolution of the head. Despite the name it is a frame, not a point.
struct LidarDataPoint_V4 {
    int32_t ambient = -1;
    int32_t motorSpeed = -1;  // revolutions per minute, -1 = not supplied
    QString dateTime;         // GPS date-time text, empty for models without one
    QMap<int32_t, std::vector<LidarPoint>> points;  // by channel ID

    // Between revolutions: the text survives, everything else is reset.
    void clear()
    {
        ambient = -1;
        motorSpeed = -1;
        points.clear();
    }
    size_t pointCount() const
    {
        size_t n = 0;
        for (const auto& line : points)
            n += line.size();
        return n;
    }
};

struct GPSTime {
    int32_t year = 0;
    int32_t month = 0;
    int32_t day = 0;
    int32_t hour = 0;
    int32_t minute = 0;
    int32_t second = 0;
    int32_t millisecond = 0;
    int32_t microsecond = 0;
    uint64_t previousNs = 0;  // time of the previous GPS data packet
    uint64_t currentNs = 0;   // time of this packet
    // Calendar fields of the previous packet, as the decoder remembered them.
    int32_t previous[8] = {0, 0, 0, 0, 0, 0, 0, 0};
};

// Registers "lidar::LidarDataPoint_V4" and "lidar::GPSTime" (and the vector
// of frames) for queued connections. Safe to call more than once.
void registerMetaTypes();

}  // namespace lidar

Q_DECLARE_METATYPE(lidar::LidarDataPoint_V4)
Q_DECLARE_METATYPE(lidar::GPSTime)
