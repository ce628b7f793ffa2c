#pragma once
// Decodes a recording's packets into frames through the model's registered
// offline parse, a batch at a time: packets are collected and handed over in
// batches (each led by the recording's elements that precede the packets,
// Tern_P's version number), so frames come out while the recording is read
// and are exactly those of one parse over all packets. A model registered
// without a batch form gets all its packets in one call at finish().

#include "LidarRecords.h"

#include <QByteArray>
#include <QString>
#include <QVector>
#include <functional>

namespace lidar {

class RecordingDecoder {
public:
    static constexpr int kBatchPackets = 2048;

    // `model` is a registered class name; `prefix` the elements between the
    // class name and the first packet (recordPrefixElements of the model).
    RecordingDecoder(const QString& model, const QVector<QByteArray>& prefix);

    bool isKnownModel() const { return bool(whole_) || bool(batch_); }
    // Adds a packet; a full batch is decoded and its frames appended.
    void add(const QByteArray& packet, QVector<LidarDataPoint_V4>& frames);
    // Decodes the packets still waiting.
    void finish(QVector<LidarDataPoint_V4>& frames);
    // A packet ended the parse: later packets are not decoded.
    bool ended() const { return ended_; }
    qint64 packetsAdded() const { return added_; }

private:
    void decodeWaiting(QVector<LidarDataPoint_V4>& frames);

    std::function<QVector<LidarDataPoint_V4>(const QVector<QByteArray>&)> whole_;
    std::function<bool(const QVector<QByteArray>&, QVector<LidarDataPoint_V4>&)> batch_;
    int prefixSize_ = 0;
    QVector<QByteArray> waiting_;  // the prefix, then the packets not yet decoded
    qint64 added_ = 0;
    bool ended_ = false;
};

}  // namespace lidar
