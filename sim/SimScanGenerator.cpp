#include "SimScanGenerator.h"

namespace sim {

ScanGenerator::ScanGenerator(Model model, uint64_t seed, qint64 startMicroseconds, int versionNumber)
    : model_(model),
      layout_(layoutOf(model)),
      random_(seed),
      versionNumber_(versionNumber),
      startUs_(startMicroseconds)
{
}

void ScanGenerator::setGpsGap(double gapMs, double everySeconds)
{
    gpsGapUs_ = gapMs * 1000.0;
    gpsGapEveryUs_ = everySeconds * 1.0e6;
    nextGpsGapAtUs_ = elapsedUs_ + gpsGapEveryUs_;
}

double ScanGenerator::packetIntervalUs(double rpm) const
{
    return 60.0e6 / rpm / layout_.packetsPerRevolution;
}

PacketContent ScanGenerator::nextContent(const DeviceState& state)
{
    if (packetIndex_ == 0 && gpsGapUs_ > 0.0 && elapsedUs_ >= nextGpsGapAtUs_) {
        elapsedUs_ += gpsGapUs_;
        nextGpsGapAtUs_ = elapsedUs_ + gpsGapEveryUs_;
        ++gpsGaps_;
    }
    PacketContent c;
    c.startAzimuth = packetIndex_ * layout_.packetSpan;
    c.endAzimuth = c.startAzimuth + (layout_.groupsPerPacket - 1) * layout_.groupStep;
    c.period = periodWord(state.rpm);
    // Ambient light: a slow wobble around a daylight-ish reading.
    c.ambient = static_cast<uint16_t>(120 + random_.between(0, 12));
    c.time = calendarFromMicroseconds(clockMicroseconds());
    c.measurements.reserve(size_t(layout_.measurementsPerPacket()));
    for (int k = 0; k < layout_.groupsPerPacket; ++k) {
        const double azimuth = c.startAzimuth + k * layout_.groupStep;
        for (int ch = 0; ch < layout_.channels; ++ch) {
            Measurement m = scene_.measure(azimuth, state.filter, random_);
            // The second Wren channel sees the same surface a little weaker.
            if (ch == 1)
                m.intensity = static_cast<uint8_t>(m.intensity * 7 / 8);
            c.measurements.push_back(m);
        }
    }

    elapsedUs_ += packetIntervalUs(state.rpm);
    if (++packetIndex_ == layout_.packetsPerRevolution) {
        packetIndex_ = 0;
        ++revolutions_;
    }
    return c;
}

QByteArray ScanGenerator::nextPacket(const DeviceState& state)
{
    return encodePacket(model_, nextContent(state), versionNumber_);
}

}  // namespace sim
