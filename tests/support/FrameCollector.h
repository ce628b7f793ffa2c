#pragma once
// Collects what a session emits, on the thread the collector lives on (the
// test's main thread), whichever thread the session runs on.

#include "LidarAnalysis.h"

#include <QObject>
#include <QStringList>
#include <QVector>

namespace testing {

class FrameCollector : public QObject {
    Q_OBJECT
public:
    explicit FrameCollector(LidarAnalysis* session, QObject* parent = nullptr) : QObject(parent)
    {
        connect(session, &LidarAnalysis::SendleLidarDataSignal, this,
                [this](const lidar::LidarDataPoint_V4& f) { frames.append(f); }, Qt::QueuedConnection);
        connect(session, &LidarAnalysis::SendGPSTimeData, this,
                [this](const lidar::GPSTime& t) { times.append(t); }, Qt::QueuedConnection);
        connect(session, &LidarAnalysis::SendMessageSignal, this,
                [this](const QString& m) { messages.append(m); }, Qt::QueuedConnection);
        connect(session, &LidarAnalysis::SendEndSaveDataSignal, this,
                [this](const QString& f) { savedFiles.append(f); }, Qt::QueuedConnection);
    }

    QVector<lidar::LidarDataPoint_V4> frames;
    QVector<lidar::GPSTime> times;
    QStringList messages;
    QStringList savedFiles;
};

}  // namespace testing
