#pragma once
// What the fuzz targets share: the input cut into pieces, and the checks a
// decoded frame must pass whatever bytes it came from. A failed check aborts,
// which libFuzzer reports as a crash with the input that caused it.

#include "LidarRecords.h"

#include <QByteArray>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fuzzer/FuzzedDataProvider.h>

namespace fuzzing {

// The next `length` bytes from the front of the input.
inline QByteArray takeBytes(FuzzedDataProvider& input, size_t length)
{
    const std::vector<char> bytes = input.ConsumeBytes<char>(length);
    return QByteArray(bytes.data(), int(bytes.size()));
}

inline void require(bool condition, const char* what)
{
    if (!condition) {
        std::fprintf(stderr, "check failed: %s\n", what);
        std::abort();
    }
}

// Every stored point has been given an azimuth within one turn, finite
// coordinates in the plane, and lies where its azimuth and distance put it.
inline void checkFrame(const lidar::LidarDataPoint_V4& frame)
{
    for (auto line = frame.points.constBegin(); line != frame.points.constEnd(); ++line) {
        for (const lidar::LidarPoint& p : line.value()) {
            require(p.azimuth >= 0.0f && p.azimuth <= 360.0f, "azimuth within 0..360");
            require(std::isfinite(p.x) && std::isfinite(p.y) && p.z == 0.0f, "finite point in the plane");
            // x and y come from the azimuth before any 360-degree correction,
            // which changes neither sine nor cosine.
            const double radius = std::hypot(double(p.x), double(p.y)) * 1000.0;
            require(std::abs(radius - std::abs(double(p.distance))) <= 1e-3 * std::abs(double(p.distance)) + 1e-2,
                    "point at its distance");
        }
    }
}

inline bool sameFrames(const QVector<lidar::LidarDataPoint_V4>& a, const QVector<lidar::LidarDataPoint_V4>& b)
{
    if (a.size() != b.size())
        return false;
    for (int i = 0; i < a.size(); ++i) {
        if (a[i].ambient != b[i].ambient || a[i].motorSpeed != b[i].motorSpeed || a[i].dateTime != b[i].dateTime ||
            a[i].points.keys() != b[i].points.keys())
            return false;
        for (auto line = a[i].points.constBegin(); line != a[i].points.constEnd(); ++line) {
            const std::vector<lidar::LidarPoint>& other = b[i].points.value(line.key());
            if (other.size() != line.value().size() ||
                std::memcmp(other.data(), line.value().data(), other.size() * sizeof(lidar::LidarPoint)) != 0)
                return false;
        }
    }
    return true;
}

}  // namespace fuzzing
