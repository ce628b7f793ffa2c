#include "BagWriter.h"

#include "RevolutionClock.h"
#include "RosScanMessages.h"
#include "ScanBins.h"

#include <QFile>
#include <QFileInfo>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <exception>
#include <rosbag/bag.h>

struct BagWriter::Bag {
    Bag(const QString& target, const BagOptions& options)
        : target(target), options(options), bins(options.geometry.angularStep), clock(options.startTimeNs)
    {
    }

    QString target;
    QString partial;  // the name written under until finish()
    BagOptions options;
    ScanBins bins;
    RevolutionClock clock;
    rosbag::Bag file;
    // Reused from frame to frame.
    sensor_msgs::LaserScan scan;
    sensor_msgs::PointCloud2 cloud;
};

namespace {

// A name beside `target` that no file has yet.
QString partialName(const QString& target)
{
    for (int n = 0;; ++n) {
        const QString name = target + QStringLiteral(".partial") + (n ? QString::number(n) : QString());
        if (!QFileInfo::exists(name))
            return name;
    }
}

ros::Time rosTime(qint64 ns)
{
    return ros::Time(uint32_t(ns / 1000000000LL), uint32_t(ns % 1000000000LL));
}

}  // namespace

BagWriter::BagWriter() = default;

BagWriter::~BagWriter()
{
    discard();
}

bool BagWriter::open(const QString& path, const BagOptions& options, QString& error)
{
    discard();
    frames_ = points_ = 0;
    if (!options.geometry.isValid()) {
        error = QStringLiteral("the model's angular step is unknown");
        return false;
    }
    if (QFileInfo(path).isDir()) {
        error = QStringLiteral("is a folder");
        return false;
    }
    auto bag = std::make_unique<Bag>(path, options);
    bag->partial = partialName(path);
    try {
        bag->file.open(QFile::encodeName(bag->partial).toStdString(), rosbag::bagmode::Write);
    } catch (const std::exception& e) {
        error = QString::fromLocal8Bit(e.what());
        return false;
    }
    rosscan::describePointFields(bag->cloud);
    bag->scan.header.frame_id = bag->cloud.header.frame_id = options.frameId.toStdString();
    bag_ = std::move(bag);
    return true;
}

bool BagWriter::writeFrame(int number, const lidar::LidarDataPoint_V4& frame, QString& error)
{
    if (!bag_) {
        error = QStringLiteral("no bag is open");
        return false;
    }
    Bag& b = *bag_;
    const ros::Time stamp = rosTime(b.clock.stamp(frame));
    const rosscan::AngleRange range{b.options.startAngle, b.options.endAngle};
    rosscan::fillLaserScan(frame, b.options.geometry, b.bins, b.clock.periodNs() / 1e9, range, b.scan);
    const qint64 points = rosscan::fillPointCloud(frame, range, b.cloud);
    for (std_msgs::Header* header : {&b.scan.header, &b.cloud.header}) {
        header->seq = uint32_t(number);
        header->stamp = stamp;
    }
    try {
        b.file.write(kScanTopic, stamp, b.scan);
        b.file.write(kPointsTopic, stamp, b.cloud);
    } catch (const std::exception& e) {
        error = QString::fromLocal8Bit(e.what());
        return false;
    }
    ++frames_;
    points_ += points;
    return true;
}

bool BagWriter::finish(QString& error)
{
    if (!bag_) {
        error = QStringLiteral("no bag is open");
        return false;
    }
    try {
        bag_->file.close();  // writes the index
    } catch (const std::exception& e) {
        error = QString::fromLocal8Bit(e.what());
        return false;
    }
    // rename() replaces an older file of that name in one step.
    if (std::rename(QFile::encodeName(bag_->partial).constData(), QFile::encodeName(bag_->target).constData()) != 0) {
        error = QString::fromLocal8Bit(std::strerror(errno));
        return false;
    }
    bag_.reset();
    return true;
}

void BagWriter::discard()
{
    if (!bag_)
        return;
    try {
        bag_->file.close();
    } catch (const std::exception&) {
        // The file goes anyway.
    }
    QFile::remove(bag_->partial);
    bag_.reset();
}
