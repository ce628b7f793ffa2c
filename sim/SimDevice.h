#pragma once
// What the simulated device is set to: firmware identity and the state that
// commands change (motor, filter, rotation rate, device parameter).

#include "SimModel.h"
#include "SimScene.h"

#include <QDate>
#include <QString>
#include <cstdint>

namespace sim {

struct FirmwareInfo {
    QDate date{2024, 5, 20};
    int major = 2;
    int minor = 1;
    int patch = 5;

    // major * 100 + minor * 10 + patch; Tern_P's word encoding depends on it.
    int versionNumber() const { return major * 100 + minor * 10 + patch; }
    // The text a decoder builds from the parameters reply, "2024.5.20-V2.1.5".
    QString versionText() const;
};

struct DeviceState {
    bool motorRunning = true;
    uint8_t frequencyCode = 1;  // last set-frequency parameter (0 stop, 1 run)
    FilterMode filter = FilterMode::Normal;
    double rpm = 600.0;
    // Wren models: rotation rate in revolutions per second, echoed in replies.
    uint8_t deviceParam = 10;
};

DeviceState initialDeviceState(double rpm, FilterMode filter);

}  // namespace sim
