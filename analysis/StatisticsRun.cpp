#include "StatisticsRun.h"

#include "FramePipeline.h"
#include "PlayerFrames.h"
#include "StatisticsCsv.h"

#include <QFile>
#include <QSaveFile>

StatisticsRun::StatisticsRun(ScanSourceQuery source, QObject* parent) : QObject(parent), m_source(std::move(source)) {}

void StatisticsRun::setOn(bool on)
{
    if (on || m_wanted == 0)
        return;
    m_wanted = 0;
    emit finished();
}

void StatisticsRun::frameShown(const display::FrameView& view)
{
    if (m_wanted == 0 || !m_statistics || view.drawnAgain)
        return;
    m_statistics->addFrame(view.frame);
    --m_wanted;
    emit progress(m_statistics->frames(), m_total);
    if (m_wanted == 0)
        emit finished();
}

bool StatisticsRun::start(int frames, QString& error)
{
    const ScanSource source = m_source();
    if (!source.isKnown()) {
        error = tr("No lidar is connected and no recording is loaded: there are no frames to collect.");
        return false;
    }
    frames = std::max(1, frames);
    if (!source.recording) {
        startLive(display::AngularBins(source.angularStep), frames);
        return true;
    }
    m_statistics = std::make_unique<display::RangeStatistics>(display::AngularBins(source.angularStep), true);
    m_total = frames;
    m_wanted = 0;
    if (collect(*source.recording, source.position, frames, *m_statistics) == 0) {
        error = tr("The frames of the recording cannot be read.");
        return false;
    }
    emit progress(m_statistics->frames(), frames);
    emit finished();
    return true;
}

void StatisticsRun::startLive(const display::AngularBins& bins, int frames)
{
    m_statistics = std::make_unique<display::RangeStatistics>(bins, true);
    m_total = m_wanted = std::max(1, frames);
    emit progress(0, m_total);
}

int StatisticsRun::collect(PlayerFrames& recording, int first, int frames, display::RangeStatistics& statistics)
{
    lidar::LidarDataPoint_V4 frame;
    int read = 0;
    const int end = int(std::min<qint64>(qint64(first) + frames, recording.count()));
    for (int i = std::max(0, first); i < end; ++i)
        if (recording.frame(i, frame)) {
            statistics.addFrame(frame);
            ++read;
        }
    return read;
}

bool StatisticsRun::exportCsv(const QString& path, QString& error) const
{
    if (!m_statistics || m_statistics->frames() == 0) {
        error = tr("There are no statistics to export.");
        return false;
    }
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || !display::writeStatisticsCsv(*m_statistics, file) || !file.commit()) {
        error = tr("%1 cannot be written: %2").arg(path, file.errorString());
        return false;
    }
    return true;
}
