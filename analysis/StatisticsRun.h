#pragma once
// "Statistics over N frames": range statistics per direction of the model's
// angular step (RangeStatistics), with every range kept for the histograms.
// Live it collects the next N frames shown; in the player it reads N frames
// from the one on screen straight from the recording, without playing them.
// As an overlay it is "on" while it collects live.

#include "RangeStatistics.h"
#include "ScanSource.h"
#include "ViewOverlay.h"

#include <QObject>
#include <memory>

class PlayerFrames;

class StatisticsRun : public QObject, public ViewOverlay {
    Q_OBJECT
public:
    explicit StatisticsRun(ScanSourceQuery source, QObject* parent = nullptr);

    bool isOn() const override { return m_wanted > 0; }
    void setOn(bool on) override;  // off ends a live collection where it is
    void frameShown(const display::FrameView& view) override;

    // False with `error` when there is nothing to collect from.
    bool start(int frames, QString& error);
    // Collects the next `frames` frames shown, in these directions.
    void startLive(const display::AngularBins& bins, int frames);
    // The statistics so far; null before the first start.
    const display::RangeStatistics* statistics() const { return m_statistics.get(); }
    bool exportCsv(const QString& path, QString& error) const;

    // Frames first .. first + frames - 1 of a recording (as many as there
    // are) into `statistics`; the number read.
    static int collect(PlayerFrames& recording, int first, int frames, display::RangeStatistics& statistics);

signals:
    void progress(qint64 added, int wanted);
    void finished();

private:
    ScanSourceQuery m_source;
    std::unique_ptr<display::RangeStatistics> m_statistics;
    int m_wanted = 0;  // frames still to collect live; 0: not collecting
    int m_total = 0;
};
