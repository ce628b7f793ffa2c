#pragma once
// 'convert --format bag': the bag writer behind the command's frame writer,
// and how its two options read.

#include "BagWriter.h"
#include "FrameWriter.h"

#include <QString>

namespace cli {

class BagFrameWriter : public FrameWriter {
public:
    BagFrameWriter(QString path, const BagOptions& options) : path_(std::move(path)), options_(options) {}

    bool begin(QString& error) override;
    bool frame(int number, const lidar::LidarDataPoint_V4& frame, QString& error) override;
    bool end(QString& error) override { return bag_.finish(error); }
    void discard() override { bag_.discard(); }

private:
    QString path_;
    BagOptions options_;
    BagWriter bag_;
};

// --start-time: an ISO 8601 date and time ("2024-05-20T12:00:00.250Z"; UTC
// when it names no offset) or seconds since 1970 ("1716206400.25"), in
// nanoseconds since 1970; false for anything else or a time a bag cannot
// stamp (not after 1970, after 2106).
bool toStartTime(const QString& text, qint64& ns);
// The modification time of a file, in nanoseconds since 1970.
qint64 modificationTimeNs(const QString& path);

}  // namespace cli
