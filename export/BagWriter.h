#pragma once
// Frames as a ROS bag (format 2.0, read by rosbag, rviz's bag tools, Foxglove
// Studio and rosbags-convert), written with Debian's own ROS libraries, one
// revolution at a time; no frame is kept. Each revolution makes two
// messages with the same header (seq = the frame number, the stamp of
// RevolutionClock, frame_id):
//   /scandeck/scan    sensor_msgs/LaserScan
//   /scandeck/points  sensor_msgs/PointCloud2
// (RosScanMessages.h describes both). The bag is written under a temporary
// name beside the target and appears under its own name only once finish()
// succeeds; discard(), or destruction before finish(), leaves nothing.
//
//   BagWriter bag;
//   bag.open(path, options, error);
//   for each frame: bag.writeFrame(number, frame, error);
//   bag.finish(error);

#include "LidarRecords.h"
#include "ModelGeometry.h"

#include <QString>
#include <memory>

struct BagOptions {
    lidar::ScanGeometry geometry;       // the model's, from lidar::scanGeometry()
    QString frameId = QStringLiteral("laser");
    qint64 startTimeNs = 0;             // stamp of the first frame of a model without GPS time
    float startAngle = 0.0f;            // only points with an azimuth in this range
    float endAngle = 360.0f;
};

class BagWriter {
public:
    static constexpr const char* kScanTopic = "/scandeck/scan";
    static constexpr const char* kPointsTopic = "/scandeck/points";

    BagWriter();
    ~BagWriter();
    BagWriter(const BagWriter&) = delete;
    BagWriter& operator=(const BagWriter&) = delete;

    // Each returns false with `error` set when the bag cannot be written;
    // after a failure only discard() is left.
    bool open(const QString& path, const BagOptions& options, QString& error);
    // `number` counts the frames from 1 and becomes the messages' seq.
    bool writeFrame(int number, const lidar::LidarDataPoint_V4& frame, QString& error);
    bool finish(QString& error);
    void discard();

    qint64 framesWritten() const { return frames_; }
    qint64 pointsWritten() const { return points_; }

private:
    struct Bag;
    std::unique_ptr<Bag> bag_;
    qint64 frames_ = 0;
    qint64 points_ = 0;
};
