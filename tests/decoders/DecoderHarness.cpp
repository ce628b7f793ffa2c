#include "DecoderHarness.h"

#include "LIdarFactory.h"

namespace testing {

std::unique_ptr<LidarAnalysis> makeSession(const QString& model)
{
    const auto& classes = LIdarFactory::GetInstance()->classMap;
    for (auto it = classes.constBegin(); it != classes.constEnd(); ++it) {
        if (QString::fromLatin1(it.key()) != model)
            continue;
        std::unique_ptr<LidarAnalysis> session(qobject_cast<LidarAnalysis*>(it.value()->newInstance()));
        if (session)
            session->lidarIp = session->dataIp = QStringLiteral("127.0.0.1");
        return session;
    }
    return nullptr;
}

void feed(LidarAnalysis& session, const QByteArray& bytes)
{
    session.receiveBuffer.append(bytes);
    session.ParseLidarData();
}

void feedInPieces(LidarAnalysis& session, const QByteArray& bytes, QRandomGenerator& random, int longestPiece)
{
    for (int at = 0; at < bytes.size();) {
        const int piece = qMin(int(random.bounded(1, longestPiece + 1)), bytes.size() - at);
        feed(session, bytes.mid(at, piece));
        at += piece;
    }
}

QByteArray joinWithJunk(const QVector<QByteArray>& packets, QRandomGenerator& random)
{
    static const char junkBytes[] = {0x00, 0x11, 0x37, 0x42, char(0x99), char(0xC3)};
    QByteArray stream;
    for (const QByteArray& packet : packets) {
        if (random.bounded(2) == 1) {
            const int length = int(random.bounded(1, 13));
            for (int i = 0; i < length; ++i)
                stream.append(junkBytes[random.bounded(int(sizeof junkBytes))]);
        }
        stream.append(packet);
    }
    return stream;
}

QVector<lidar::LidarDataPoint_V4> spiedFrames(const QSignalSpy& spy)
{
    QVector<lidar::LidarDataPoint_V4> frames;
    for (const QList<QVariant>& call : spy)
        frames.append(call.at(0).value<lidar::LidarDataPoint_V4>());
    return frames;
}

QVector<lidar::GPSTime> spiedTimes(const QSignalSpy& spy)
{
    QVector<lidar::GPSTime> times;
    for (const QList<QVariant>& call : spy)
        times.append(call.at(0).value<lidar::GPSTime>());
    return times;
}

QList<QByteArray> spiedCommands(const QSignalSpy& spy)
{
    QList<QByteArray> commands;
    for (const QList<QVariant>& call : spy)
        commands.append(call.at(0).toByteArray());
    return commands;
}

QString frameDifference(const lidar::LidarDataPoint_V4& a, const lidar::LidarDataPoint_V4& b)
{
    if (a.ambient != b.ambient)
        return QStringLiteral("ambient %1 vs %2").arg(a.ambient).arg(b.ambient);
    if (a.motorSpeed != b.motorSpeed)
        return QStringLiteral("motor speed %1 vs %2").arg(a.motorSpeed).arg(b.motorSpeed);
    if (a.dateTime != b.dateTime)
        return QStringLiteral("date-time %1 vs %2").arg(a.dateTime, b.dateTime);
    if (a.points.keys() != b.points.keys())
        return QStringLiteral("different IDs");
    for (auto it = a.points.constBegin(); it != a.points.constEnd(); ++it) {
        const auto& left = it.value();
        const auto& right = b.points.value(it.key());
        if (left.size() != right.size())
            return QStringLiteral("ID %1: %2 vs %3 points").arg(it.key()).arg(left.size()).arg(right.size());
        for (size_t i = 0; i < left.size(); ++i) {
            const lidar::LidarPoint& p = left[i];
            const lidar::LidarPoint& q = right[i];
            if (p.x != q.x || p.y != q.y || p.z != q.z || p.azimuth != q.azimuth || p.distance != q.distance ||
                p.intensity != q.intensity || p.timestamp != q.timestamp)
                return QStringLiteral("ID %1 point %2: azimuth %3 vs %4, distance %5 vs %6, time %7 vs %8")
                    .arg(it.key())
                    .arg(i)
                    .arg(double(p.azimuth))
                    .arg(double(q.azimuth))
                    .arg(p.distance)
                    .arg(q.distance)
                    .arg(p.timestamp)
                    .arg(q.timestamp);
        }
    }
    return QString();
}

std::vector<lidar::LidarPoint> pointsOf(const lidar::LidarDataPoint_V4& frame, int id)
{
    return frame.points.value(id);
}

}  // namespace testing
