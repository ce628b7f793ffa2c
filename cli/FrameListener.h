#pragma once
// The receiving end of a live session for scandeck-cli listen: it lives on
// the main thread like the viewer's window, takes the session's frames from
// the worker thread, rounds them as the display does, prints one line per
// frame and writes the first frames to CSV, then quits the event loop.

#include "CliSupport.h"
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

    void start(int timeoutMs);
    int framesSeen() const { return frames_; }
    // Set once the event loop has been asked to quit.
    int exitCode() const { return exitCode_; }

public slots:
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
    QTimer timeout_;
};
