#pragma once
// The viewer's CSV export: the next N frames that are shown, live or
// offline, go to one file through the same CsvWriter as 'scandeck-cli
// convert', so both write the same bytes for the same frames. The end is
// noticed when the frame after the last one arrives; that frame is not
// written.
//
// The file is written under a temporary name and appears under its own only
// when the export ends, synced to the disk with its folder. While it runs,
// a thread of its own syncs what was written twice a second, so that the
// last sync, on the window's thread, has little left to do.

#include "CsvWriter.h"
#include "LidarRecords.h"

#include "AtomicFileWrite.h"
#include "PeriodicSync.h"

#include <QString>
#include <functional>
#include <memory>

class CsvExport {
public:
    enum class Step { Written, Finished };

    CsvExport();
    // A file still open is completed and kept.
    ~CsvExport();

    // Opens the file (truncating it) and writes the header. False when it
    // cannot be opened (openError() says why): no export runs then.
    bool start(const QString& path, int frameLimit, float startAngle, float endAngle);
    QString openError() const { return openError_; }

    bool isActive() const { return active_; }
    // The window switches the export off while it asks whether to cancel.
    void setActive(bool active) { active_ = active; }

    // One frame shown: counted, then written line by line (`lineWritten`
    // gets frames written / frame limit after each line) or, once the
    // count passes the limit, not written: the export ends, the file is
    // completed (saveError() says why when it could not be).
    Step frameShown(const lidar::LidarDataPoint_V4& frame, const std::function<void(float progress)>& lineWritten);

    // Ends the export and keeps what was written (the window is closing).
    void finish();
    // Ends the export and removes the file.
    void cancel();

    QString path() const { return path_; }
    int framesWritten() const { return framesWritten_; }
    int frameLimit() const { return frameLimit_; }
    // Why the file of the last export that ended could not be completed;
    // empty when it was (or when it never opened).
    QString saveError() const { return saveError_; }

private:
    void close();

    std::unique_ptr<lidar::AtomicFileWrite> file_;
    lidar::PeriodicSync sync_;
    QString saveError_;
    std::unique_ptr<CsvWriter> writer_;
    bool active_ = false;
    int framesWritten_ = 0;
    int frameLimit_ = 0;
    QString path_;
    QString openError_;
};
