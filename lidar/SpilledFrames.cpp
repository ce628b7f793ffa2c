#include "SpilledFrames.h"

#include <QDir>
#include <cstring>
#include <type_traits>

namespace lidar {
namespace {

static_assert(std::is_trivially_copyable<LidarPoint>::value, "points are written as they lie in memory");

template <typename T>
void put(QByteArray& out, T value)
{
    out.append(reinterpret_cast<const char*>(&value), sizeof value);
}

template <typename T>
bool take(const QByteArray& in, int& at, T& value)
{
    if (at < 0 || in.size() - at < int(sizeof value))
        return false;
    std::memcpy(&value, in.constData() + at, sizeof value);
    at += int(sizeof value);
    return true;
}

}  // namespace

SpilledFrames::SpilledFrames() : writer_(QDir::tempPath() + QStringLiteral("/scandeck-frames-XXXXXX")) {}

bool SpilledFrames::open()
{
    if (!writer_.open()) {
        error_ = writer_.errorString();
        return false;
    }
    reader_.setFileName(writer_.fileName());
    if (!reader_.open(QIODevice::ReadOnly)) {
        error_ = reader_.errorString();
        return false;
    }
    return true;
}

QString SpilledFrames::errorString() const
{
    return error_;
}

QByteArray SpilledFrames::encode(const LidarDataPoint_V4& frame)
{
    QByteArray out;
    out.reserve(int(32 + frame.dateTime.size() * 2 + frame.pointCount() * sizeof(LidarPoint) + frame.points.size() * 8));
    put(out, frame.ambient);
    put(out, frame.motorSpeed);
    put(out, int32_t(frame.dateTime.size()));
    out.append(reinterpret_cast<const char*>(frame.dateTime.constData()), frame.dateTime.size() * int(sizeof(QChar)));
    put(out, int32_t(frame.points.size()));
    for (auto line = frame.points.constBegin(); line != frame.points.constEnd(); ++line) {
        put(out, line.key());
        put(out, int32_t(line.value().size()));
        out.append(reinterpret_cast<const char*>(line.value().data()), int(line.value().size() * sizeof(LidarPoint)));
    }
    return out;
}

bool SpilledFrames::decode(const QByteArray& bytes, LidarDataPoint_V4& out)
{
    int at = 0;
    int32_t textLength = 0, lines = 0;
    LidarDataPoint_V4 frame;
    if (!take(bytes, at, frame.ambient) || !take(bytes, at, frame.motorSpeed) || !take(bytes, at, textLength)
        || textLength < 0 || bytes.size() - at < textLength * int(sizeof(QChar)))
        return false;
    frame.dateTime = QString(reinterpret_cast<const QChar*>(bytes.constData() + at), textLength);
    at += textLength * int(sizeof(QChar));
    if (!take(bytes, at, lines) || lines < 0)
        return false;
    for (int32_t i = 0; i < lines; ++i) {
        int32_t id = 0, n = 0;
        if (!take(bytes, at, id) || !take(bytes, at, n) || n < 0
            || qint64(bytes.size() - at) < qint64(n) * qint64(sizeof(LidarPoint)))
            return false;
        std::vector<LidarPoint>& line = frame.points[id];
        line.resize(size_t(n));
        std::memcpy(line.data(), bytes.constData() + at, size_t(n) * sizeof(LidarPoint));
        at += n * int(sizeof(LidarPoint));
    }
    out = std::move(frame);
    return at == bytes.size();
}

QByteArray SpilledFrames::encodeHealth(const FrameHealth& health)
{
    QByteArray out;
    put(out, health.packets);
    put(out, health.missingPackets);
    put(out, health.coverage);
    put(out, health.points);
    put(out, health.returns);
    put(out, health.periodMs);
    put(out, health.motorSpeed);
    put(out, int32_t(health.gaps.size()));
    for (const AngularGap& gap : health.gaps) {
        put(out, gap.start);
        put(out, gap.end);
    }
    return out;
}

bool SpilledFrames::decodeHealth(const QByteArray& bytes, FrameHealth& out)
{
    int at = 0;
    int32_t gaps = 0;
    FrameHealth h;
    if (!take(bytes, at, h.packets) || !take(bytes, at, h.missingPackets) || !take(bytes, at, h.coverage)
        || !take(bytes, at, h.points) || !take(bytes, at, h.returns) || !take(bytes, at, h.periodMs)
        || !take(bytes, at, h.motorSpeed) || !take(bytes, at, gaps) || gaps < 0)
        return false;
    for (int32_t i = 0; i < gaps; ++i) {
        AngularGap gap;
        if (!take(bytes, at, gap.start) || !take(bytes, at, gap.end))
            return false;
        h.gaps.append(gap);
    }
    out = std::move(h);
    return at == bytes.size();
}

bool SpilledFrames::append(const LidarDataPoint_V4& frame, const FrameHealth& health)
{
    // The frame, its health, and the health's length last.
    const QByteArray healthBytes = encodeHealth(health);
    QByteArray bytes = encode(frame) + healthBytes;
    put(bytes, int32_t(healthBytes.size()));
    // Written through at once, so that the reader's handle finds it.
    if (writer_.write(bytes) != bytes.size() || !writer_.flush()) {
        std::lock_guard<std::mutex> lock(mutex_);
        error_ = writer_.errorString();
        return false;
    }
    std::lock_guard<std::mutex> lock(mutex_);
    ends_.push_back((ends_.empty() ? 0 : ends_.back()) + bytes.size());
    return true;
}

qint64 SpilledFrames::count() const
{
    std::lock_guard<std::mutex> lock(mutex_);
    return qint64(ends_.size());
}

bool SpilledFrames::read(qint64 number, LidarDataPoint_V4& out, FrameHealth* health)
{
    qint64 begin = 0, end = 0;
    {
        std::lock_guard<std::mutex> lock(mutex_);
        if (number < 0 || number >= qint64(ends_.size()))
            return false;
        begin = number == 0 ? 0 : ends_[size_t(number - 1)];
        end = ends_[size_t(number)];
    }
    if (!reader_.seek(begin))
        return false;
    const QByteArray bytes = reader_.read(end - begin);
    int32_t healthSize = 0;
    int at = bytes.size() - int(sizeof healthSize);
    if (bytes.size() != end - begin || !take(bytes, at, healthSize) || healthSize < 0
        || healthSize > bytes.size() - int(sizeof healthSize))
        return false;
    const int frameSize = bytes.size() - int(sizeof healthSize) - healthSize;
    if (health && !decodeHealth(bytes.mid(frameSize, healthSize), *health))
        return false;
    return decode(bytes.left(frameSize), out);
}

}  // namespace lidar
