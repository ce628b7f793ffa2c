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
    openError_.clear();
    file_ = std::make_unique<lidar::AtomicFileWrite>(path);
    if (!file_->open(&openError_) || !sync_.start(int(file_->file().handle()), file_->temporaryPath())) {
        if (openError_.isEmpty())
            openError_ = file_->file().errorString();
        file_.reset();
        active_ = false;
        return false;
    }
    writer_ = std::make_unique<CsvWriter>(&file_->file());
    writer_->setAngleRange(startAngle, endAngle);
    writer_->writeHeader();
    path_ = path;
    framesWritten_ = 0;
    frameLimit_ = frameLimit;
    active_ = true;
    return true;
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
    const float progress = float(framesWritten_) / float(frameLimit_);
    const qint64 lines = writer_->writeFrame(framesWritten_, frame);
    // The progress follows every line written.
    if (lineWritten)
        for (qint64 i = 0; i < lines; ++i)
            lineWritten(progress);
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
