#include "CsvExport.h"

CsvExport::CsvExport() = default;

CsvExport::~CsvExport()
{
    close();
}

bool CsvExport::start(const QString& path, int frameLimit, float startAngle, float endAngle)
{
    close();
    file_.setFileName(path);
    const bool opened = file_.open(QIODevice::WriteOnly | QIODevice::Truncate);
    if (opened) {
        writer_ = std::make_unique<CsvWriter>(&file_);
        writer_->setAngleRange(startAngle, endAngle);
        writer_->writeHeader();
    }
    path_ = path;
    framesWritten_ = 0;
    frameLimit_ = frameLimit;
    startAngle_ = startAngle;
    endAngle_ = endAngle;
    active_ = true;
    return opened;
}

CsvExport::Step CsvExport::frameShown(const lidar::LidarDataPoint_V4& frame,
                                      const std::function<void(float progress)>& lineWritten)
{
    ++framesWritten_;
    if (framesWritten_ > frameLimit_) {
        active_ = false;
        close();
        return Step::Finished;
    }
    if (!writer_)
        return Step::Written;  // the file never opened: nothing to write to
    const float progress = float(framesWritten_) / float(frameLimit_);
    for (auto line = frame.points.constBegin(); line != frame.points.constEnd(); ++line) {
        for (const lidar::LidarPoint& p : line.value()) {
            if (!CsvWriter::inAngleRange(p.azimuth, startAngle_, endAngle_))
                continue;
            writer_->writePoint(framesWritten_, line.key(), p);
            if (lineWritten)
                lineWritten(progress);
        }
    }
    return Step::Written;
}

void CsvExport::finish()
{
    active_ = false;
    close();
}

void CsvExport::cancel()
{
    active_ = false;
    const bool opened = writer_ != nullptr;
    writer_.reset();  // nothing pending is worth writing any more
    file_.close();
    // Only a file this export made: one it could not open is not ours to delete.
    if (opened)
        QFile::remove(path_);
}

void CsvExport::close()
{
    if (writer_)
        writer_->flush();
    writer_.reset();
    if (file_.isOpen())
        file_.close();
}
