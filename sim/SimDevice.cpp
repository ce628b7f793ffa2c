#include "SimDevice.h"

#include <cmath>

namespace sim {

QString FirmwareInfo::versionText() const
{
    return QStringLiteral("%1.%2.%3-V%4.%5.%6")
        .arg(date.year())
        .arg(date.month())
        .arg(date.day())
        .arg(major)
        .arg(minor)
        .arg(patch);
}

DeviceState initialDeviceState(double rpm, FilterMode filter)
{
    DeviceState s;
    s.rpm = rpm;
    s.filter = filter;
    s.deviceParam = static_cast<uint8_t>(std::lround(rpm / 60.0) & 0xFF);
    return s;
}

}  // namespace sim
