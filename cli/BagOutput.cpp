#include "BagOutput.h"

#include "CliSupport.h"

#include <QDateTime>
#include <QFileInfo>
#include <cmath>

namespace cli {
namespace {

// A bag's stamps are unsigned 32-bit seconds.
constexpr double kLastSecond = 4294967295.0;

}  // namespace

bool BagFrameWriter::begin(QString& error)
{
    options_.startAngle = startAngle_;
    options_.endAngle = endAngle_;
    return bag_.open(path_, options_, error);
}

bool BagFrameWriter::frame(int number, const lidar::LidarDataPoint_V4& frame, QString& error)
{
    const qint64 before = bag_.pointsWritten();
    if (!bag_.writeFrame(number, frame, error))
        return false;
    points_ += bag_.pointsWritten() - before;
    return true;
}

bool toStartTime(const QString& text, qint64& ns)
{
    double seconds = 0.0;
    if (toNumber(text, seconds)) {
        if (seconds <= 0.0 || seconds > kLastSecond)
            return false;
        ns = qint64(std::llround(seconds * 1e9));
        return true;
    }
    QDateTime time = QDateTime::fromString(text.trimmed(), Qt::ISODateWithMs);
    if (!time.isValid())
        return false;
    if (time.timeSpec() == Qt::LocalTime)  // no offset given
        time.setTimeSpec(Qt::UTC);
    const qint64 ms = time.toMSecsSinceEpoch();
    if (ms <= 0 || ms / 1000 > qint64(kLastSecond))
        return false;
    ns = ms * 1000000LL;
    return true;
}

qint64 modificationTimeNs(const QString& path)
{
    return QFileInfo(path).lastModified().toMSecsSinceEpoch() * 1000000LL;
}

}  // namespace cli
