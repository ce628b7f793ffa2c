#include "CsvWriter.h"

#include "display/AngleRange.h"

#include "NumberText.h"

#include <QIODevice>
#include <cstring>

namespace {

constexpr int kChunk = 1 << 16;
// Nine fields of at most kMaxLength characters, their commas and the newline.
constexpr int kMaxLine = 9 * numbertext::kMaxLength + 10;

char* writeLine(char* out, int frameNumber, int32_t id, const lidar::LidarPoint& p)
{
    using namespace numbertext;
    out = writeInteger(out, frameNumber);
    *out++ = ',';
    out = writeInteger(out, id);
    *out++ = ',';
    out = writeShortest(out, p.x);
    *out++ = ',';
    out = writeShortest(out, p.y);
    *out++ = ',';
    out = writeShortest(out, p.z);
    *out++ = ',';
    out = writeShortest(out, p.azimuth);
    *out++ = ',';
    out = writeDecimal(out, p.distance, 3);  // the text of p.distance / 1000.0
    *out++ = ',';
    out = writeInteger(out, p.intensity);
    *out++ = ',';
    out = writeInteger(out, p.timestamp);
    *out++ = '\n';
    return out;
}

}  // namespace

CsvWriter::CsvWriter(QIODevice* device) : device_(device), pending_(kChunk + kMaxLine, '\0')
{
}

CsvWriter::~CsvWriter()
{
    flush();
}

void CsvWriter::setAngleRange(float startAngle, float endAngle)
{
    startAngle_ = startAngle;
    endAngle_ = endAngle;
}

void CsvWriter::writeHeader()
{
    const size_t length = std::strlen(kHeader);
    std::memcpy(pending_.data() + used_, kHeader, length);
    used_ += int(length);
    writePending(false);
}

qint64 CsvWriter::writeFrame(int frameNumber, const lidar::LidarDataPoint_V4& frame)
{
    qint64 written = 0;
    for (auto line = frame.points.constBegin(); line != frame.points.constEnd(); ++line) {
        for (const lidar::LidarPoint& p : line.value()) {
            if (!display::inAngleRange(p.azimuth, startAngle_, endAngle_))
                continue;
            writePoint(frameNumber, line.key(), p);
            ++written;
        }
    }
    return written;
}

void CsvWriter::writePoint(int frameNumber, int32_t id, const lidar::LidarPoint& point)
{
    // The buffer always has room for one more line after the last flush.
    char* start = pending_.data();
    used_ = int(writeLine(start + used_, frameNumber, id, point) - start);
    writePending(false);
}

QByteArray CsvWriter::pointLine(int frameNumber, int32_t id, const lidar::LidarPoint& point)
{
    char line[kMaxLine];
    return QByteArray(line, int(writeLine(line, frameNumber, id, point) - line));
}

void CsvWriter::writePending(bool force)
{
    if (used_ == 0 || (!force && used_ < kChunk))
        return;
    if (!device_ || !device_->isWritable() || device_->write(pending_.constData(), used_) != used_)
        failed_ = true;
    used_ = 0;
}

bool CsvWriter::flush()
{
    writePending(true);
    return !failed_;
}

QString CsvWriter::errorString() const
{
    if (!failed_)
        return QString();
    if (!device_)
        return QStringLiteral("no device");
    return device_->errorString().isEmpty() ? QStringLiteral("write failed") : device_->errorString();
}
