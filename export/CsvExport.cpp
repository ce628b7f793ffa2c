#include "CsvExport.h"

CsvExport::CsvExport() = default;

CsvExport::~CsvExport()
{
    close();
}

bool CsvExport::start(const QString& path, int frameLimit, float startAngle, float endAngle)
{
    close();
    saveError_.clear();
    file_ = std::make_unique<lidar::AtomicFileWrite>(path);
    const bool opened = file_->open() && sync_.start(int(file_->file().handle()), file_->temporaryPath());
    if (opened) {
        writer_ = std::make_unique<CsvWriter>(&file_->file());
        writer_->setAngleRange(startAngle, endAngle);
        writer_->writeHeader();
    } else {
        file_.reset();
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
    sync_.wrote(quint64(file_->file().pos()));
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
    sync_.stop();
    writer_.reset();  // nothing pending is worth writing any more
    file_.reset();    // and the part written so far goes
}

void CsvExport::close()
{
    sync_.stop();
    if (!file_)
        return;
    const bool written = writer_->flush();
    if (!written)
        saveError_ = writer_->errorString();
    writer_.reset();
    if (written)
        file_->commit(&saveError_);
    file_.reset();  // an uncommitted part is removed
}
