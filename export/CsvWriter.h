#pragma once
// Writes frames as CSV: a header line, then one line per point
//   frame number, ID, x, y, z, azimuth, distance in metres, intensity, timestamp
// with lines ending in a single line feed, floats in their shortest text and
// integers in base 10. Only points whose azimuth lies in the angle range
// (inclusive at both ends; a NaN azimuth never does) are written.
//
// Lines are collected in memory and handed to the device in large pieces:
// call flush() before closing the device.

#include "LidarRecords.h"

#include <QByteArray>
#include <QString>

class QIODevice;

class CsvWriter {
public:
    static constexpr const char* kHeader =
        "FrameNumbers,ID,Points_X,Points_Y,Points_Z,Azimuth,Distance,Intensity,Timestamp\n";

    explicit CsvWriter(QIODevice* device);
    ~CsvWriter();  // flushes what is still pending
    CsvWriter(const CsvWriter&) = delete;
    CsvWriter& operator=(const CsvWriter&) = delete;

    void setAngleRange(float startAngle, float endAngle);

    void writeHeader();
    // The frame's points in ID order, array order within an ID; returns how
    // many were inside the angle range and written.
    qint64 writeFrame(int frameNumber, const lidar::LidarDataPoint_V4& frame);
    // One point's line, whatever its azimuth.
    void writePoint(int frameNumber, int32_t id, const lidar::LidarPoint& point);

    // Hands everything pending to the device; false once any write failed.
    bool flush();
    bool hasError() const { return failed_; }
    QString errorString() const;

    // One point's line, as written (for tests and the point table).
    static QByteArray pointLine(int frameNumber, int32_t id, const lidar::LidarPoint& point);

private:
    void writePending(bool force);

    QIODevice* device_;
    QByteArray pending_;  // a fixed buffer; the lines not yet handed over are its first used_ bytes
    int used_ = 0;
    float startAngle_ = 0.0f;
    float endAngle_ = 360.0f;
    bool failed_ = false;
};
