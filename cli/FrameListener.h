#pragma once
// The receiving end of a live session for scandeck-cli listen: it lives on
// the main thread like the viewer's window, takes the session's frames from
// the worker thread, rounds them as the display does, prints one line per
// frame and writes the first frames to CSV, then quits the event loop.

#include "CliSupport.h"
#include "HealthOutput.h"
#include "LidarAnalysis.h"

#include <QObject>
#include <QTimer>
#include <memory>

class FrameListener : public QObject {
    Q_OBJECT
public:
    // `csv` may be null. `confirmedType` is written into the session's
    // connectionType when the first frame arrives (the viewer does the same
    // once it has seen a frame); -1 leaves the session unable to send.
    FrameListener(std::shared_ptr<LidarAnalysis> session, int frameLimit, cli::CsvOutput* csv,
                  int confirmedType, QObject* parent = nullptr);

    // Each frame as a JSON object of its health instead of a line of text.
    void setJson(bool json) { json_ = json; }
    void start(int timeoutMs);
    int framesSeen() const { return frames_; }
    // {"summary": ...} over the frames seen, with the stream's totals as they
    // stood when the last of them was completed.
    QString summaryJson() const { return summary_.json(totals_); }
    // Set once the event loop has been asked to quit.
    int exitCode() const { return exitCode_; }

public slots:
    void onHealth(const lidar::FrameHealth& health, const lidar::StreamTotals& totals);
    void onFrame(lidar::LidarDataPoint_V4 frame);
    void onTimeout();
    void interrupt();

signals:
    void finished(int exitCode);

private:
    void finish(int exitCode);

    std::shared_ptr<LidarAnalysis> session_;
    int frameLimit_;
    cli::CsvOutput* csv_;
    int confirmedType_;
    int frames_ = 0;
    int exitCode_ = -1;
    bool json_ = false;
    lidar::FrameHealth health_;  // of the frame that comes next
    lidar::StreamTotals pendingTotals_, totals_;
    cli::HealthSummary summary_;
    QTimer timeout_;
};
