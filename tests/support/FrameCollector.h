#pragma once
// Collects the frames a session emits, on the thread the collector lives on
// (the test's main thread), whichever thread the session runs on.

#include "LidarAnalysis.h"

#include <QObject>
#include <QVector>

namespace testing {

class FrameCollector : public QObject {
    Q_OBJECT
public:
    explicit FrameCollector(LidarAnalysis* session, QObject* parent = nullptr) : QObject(parent)
    {
        connect(session, &LidarAnalysis::SendleLidarDataSignal, this,
                [this](const lidar::LidarDataPoint_V4& f) { frames.append(f); }, Qt::QueuedConnection);
    }

    QVector<lidar::LidarDataPoint_V4> frames;
};

}  // namespace testing
