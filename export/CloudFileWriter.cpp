#include "CloudFileWriter.h"

#include "AtomicFileWrite.h"
#include "CloudPoint.h"
#include "FileSync.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <pcl/io/pcd_io.h>
#include <pcl/io/ply_io.h>

#include <fstream>
#include <memory>

namespace cloudfile {
namespace {

// Enough digits for every float to read back as itself.
constexpr int kFloatDigits = 9;
// PLY's timestamp is a double: its millisecond counts need more.
constexpr int kDoubleDigits = 17;

std::string localPath(const QString& path)
{
    return QFile::encodeName(path).toStdString();
}

template <typename PointT>
class CloudWriter : public FrameWriter {
public:
    explicit CloudWriter(Options options) : options_(std::move(options)) {}

    bool begin(QString& error) override
    {
        if (options_.merge || QDir().mkpath(options_.output))
            return true;
        error = QStringLiteral("cannot create the folder");
        return false;
    }

    bool frame(int number, const lidar::LidarDataPoint_V4& frame, QString& error) override
    {
        if (!options_.merge)
            cloud_.clear();
        append(number, frame);
        if (options_.merge)
            return true;
        const QString path = QDir(options_.output).filePath(frameFileName(options_.format, number));
        if (!save(path, error))
            return false;
        unsynced_.append(path);
        return true;
    }

    bool end(QString& error) override
    {
        if (!options_.merge) {
            // Synced together at the end: the disk is asked once per file,
            // after the system has had time to write most of them already.
            for (const QString& path : unsynced_)
                if (!lidar::filesync::syncFile(path, &error))
                    return false;
            unsynced_.clear();
            // The files' names, and the folder's own in case it was made.
            return lidar::filesync::syncFolder(options_.output, &error)
                   && lidar::filesync::syncFolderOf(options_.output, &error);
        }
        part_ = std::make_unique<lidar::AtomicFileWrite>(options_.output);
        return save(part_->temporaryPath(), error) && part_->commit(&error);
    }

    void discard() override
    {
        part_.reset();  // a file not committed is removed
        cloud_.clear();
        unsynced_.clear();
    }

private:
    void append(int number, const lidar::LidarDataPoint_V4& frame)
    {
        for (auto line = frame.points.cbegin(); line != frame.points.cend(); ++line) {
            for (const lidar::LidarPoint& p : line.value()) {
                if (!inRange(p.azimuth))
                    continue;
                PointT q;
                q.x = p.x;
                q.y = p.y;
                q.z = p.z;
                q.data[3] = 1.0f;
                q.intensity = float(p.intensity);
                q.azimuth = p.azimuth;
                q.distance = float(p.distance / 1000.0);
                q.timestamp = decltype(q.timestamp)(p.timestamp);
                q.frame = std::uint32_t(number);
                q.id = line.key();
                cloud_.push_back(q);
                ++points_;
            }
        }
    }

    bool save(const QString& path, QString& error)
    {
        const std::string file = localPath(path);
        int result = -1;
        try {
            result = options_.format == Format::Pcd ? savePcd(file) : savePly(file);
        } catch (const std::exception& e) {
            error = QString::fromLocal8Bit(e.what());
        }
        if (result != 0 && error.isEmpty())
            error = QStringLiteral("PCL could not write %1").arg(path);
        return result == 0;
    }

    int savePcd(const std::string& file)
    {
        pcl::PCDWriter writer;
        if (cloud_.empty()) {
            // PCL refuses to write no points; a header saying so is a valid file.
            std::ofstream out(file, std::ios::binary | std::ios::trunc);
            out << writer.generateHeader(cloud_) << (options_.ascii ? "DATA ascii\n" : "DATA binary\n");
            return out.good() ? 0 : -1;
        }
        return options_.ascii ? writer.writeASCII(file, cloud_, kFloatDigits) : writer.writeBinary(file, cloud_);
    }

    int savePly(const std::string& file)
    {
        pcl::PCLPointCloud2 blob;
        pcl::toPCLPointCloud2(cloud_, blob);
        pcl::PLYWriter writer;
        const Eigen::Vector4f origin = Eigen::Vector4f::Zero();
        const Eigen::Quaternionf orientation = Eigen::Quaternionf::Identity();
        return options_.ascii ? writer.writeASCII(file, blob, origin, orientation, kDoubleDigits, true)
                              : writer.writeBinary(file, blob, origin, orientation, true);
    }

    Options options_;
    pcl::PointCloud<PointT> cloud_;
    std::unique_ptr<lidar::AtomicFileWrite> part_;
    QStringList unsynced_;  // frame files written, not yet synced
};

}  // namespace

QString suffix(Format format)
{
    return format == Format::Pcd ? QStringLiteral("pcd") : QStringLiteral("ply");
}

QString frameFileName(Format format, int number)
{
    return QStringLiteral("frame_%1.%2").arg(number, 6, 10, QLatin1Char('0')).arg(suffix(format));
}

std::unique_ptr<FrameWriter> makeWriter(const Options& options)
{
    if (options.format == Format::Pcd)
        return std::make_unique<CloudWriter<PcdPoint>>(options);
    return std::make_unique<CloudWriter<PlyPoint>>(options);
}

}  // namespace cloudfile
