#pragma once
// While a recording runs, a short readout in the status bar: how long it has
// run, and the packets and bytes in its file ("● 01:05 · 3120 pkt · 1.2 MB"),
// refreshed once a second; the tooltip has the file and the exact numbers.
// Hidden when no recording runs, also when the session stopped one itself
// (a full disk). The clock is injected so that tests need not wait.

#include "RecordingWriter.h"

#include <QLabel>
#include <QTimer>
#include <functional>

class RecordingReadout : public QLabel {
    Q_OBJECT
public:
    // What the session's recording has written so far, read on the user
    // interface thread; `recording` false once it has ended.
    struct Progress {
        bool recording = false;
        lidar::RecordingCounts counts;
    };
    using ProgressSource = std::function<Progress()>;
    // Milliseconds on a clock that never goes back.
    using Clock = std::function<qint64()>;
    static constexpr int kRefreshMs = 1000;

    // An empty clock uses a monotonic system clock.
    explicit RecordingReadout(QWidget* parent = nullptr, Clock clock = Clock());

    // A recording into `fileName` has just started: the time counts from now.
    void watch(ProgressSource source, const QString& fileName);
    void unwatch();
    // Reads the progress and shows it; the timer calls it every kRefreshMs.
    void refresh();

    bool isWatching() const { return bool(m_source); }
    static QString describe(qint64 elapsedMs, const lidar::RecordingCounts& counts);
    static QString describeInFull(qint64 elapsedMs, const lidar::RecordingCounts& counts, const QString& fileName);

protected:
    void changeEvent(QEvent* event) override;

private:
    void showProgress(const lidar::RecordingCounts& counts);

    Clock m_clock;
    ProgressSource m_source;
    QString m_fileName;
    qint64 m_startedAt = 0;
    lidar::RecordingCounts m_last;
    QTimer m_timer;
};
