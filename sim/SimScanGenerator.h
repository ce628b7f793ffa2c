#pragma once
// The rotating head: samples the scene at the model's angular layout, one
// data packet at a time, keeps the azimuth, the revolution count and the GPS
// clock that stamps each packet.

#include "SimDevice.h"
#include "SimModel.h"
#include "SimPacketEncoders.h"
#include "SimRandom.h"
#include "SimScene.h"

#include <QByteArray>
#include <QtGlobal>

namespace sim {

class ScanGenerator {
public:
    // `startMicroseconds`: GPS time of the first packet, microseconds since
    // the epoch (UTC). `versionNumber`: the firmware's, for Tern_P's words.
    ScanGenerator(Model model, uint64_t seed, qint64 startMicroseconds, int versionNumber);

    // What the head measures during the next packet, for the device's state.
    // Advances the head by one packet and the clock by one packet interval.
    PacketContent nextContent(const DeviceState& state);
    // The same, encoded for the model.
    QByteArray nextPacket(const DeviceState& state);

    // Time between two packets at `rpm`, in microseconds.
    double packetIntervalUs(double rpm) const;
    // Moves the GPS clock on without measuring (motor stopped, a skipped stretch).
    void advanceClock(double microseconds) { elapsedUs_ += microseconds; }
    // From now on, once every `everySeconds` of GPS time, the clock jumps
    // `gapMs` ahead just before a revolution's first packet, so that one pair
    // of consecutive stamps lies that much further apart. 0 switches it off.
    void setGpsGap(double gapMs, double everySeconds);
    // GPS gaps injected so far.
    qint64 gpsGaps() const { return gpsGaps_; }

    Model model() const { return model_; }
    const PacketLayout& layout() const { return layout_; }
    const Scene& scene() const { return scene_; }
    // Whole revolutions completed so far.
    qint64 revolutions() const { return revolutions_; }
    // Index of the next packet within its revolution.
    int packetIndex() const { return packetIndex_; }
    qint64 clockMicroseconds() const { return startUs_ + qint64(elapsedUs_); }

private:
    Model model_;
    PacketLayout layout_;
    Scene scene_;
    Random random_;
    int versionNumber_;
    // Kept apart so that the fractions of the packet interval are not lost
    // against a large absolute time.
    qint64 startUs_;
    double elapsedUs_ = 0.0;
    int packetIndex_ = 0;
    qint64 revolutions_ = 0;
    double gpsGapUs_ = 0.0;
    double gpsGapEveryUs_ = 0.0;
    double nextGpsGapAtUs_ = 0.0;  // elapsed GPS time from which the next gap is due
    qint64 gpsGaps_ = 0;
};

}  // namespace sim
