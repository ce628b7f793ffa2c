#pragma once
// The commands the three GPS-stamped Tern models (Tern_P, Tern_GPS,
// Tern_Plus) share: read parameters and set frequency with class byte 0x55,
// set filter with class byte 0x01. Each model gets its own program-wide
// filter retry counter, one template instance per model.

#include "LidarAnalysis.h"
#include "TernProtocol.h"

namespace lidar {
namespace tern {

template <typename Model>
class GpsSession : public LidarAnalysis {
public:
    explicit GpsSession(QObject* parent) : LidarAnalysis(parent) {}

    QByteArray ReadParamCommand() override { return readParamCommand(kClass55, storedFrequency()); }

    void SetMotorFrequency(quint8 frequency) override
    {
        storeFrequency(frequency);
        sendTwice(setFrequencyCommand(frequency));
    }

    void SetLidarFilter(int mode) override
    {
        sendWithRetries(setFilterCommand(kClass01, mode, storedFrequency()), filterAttempts);
        SetMotorFrequency(storedFrequency());
    }

    static int filterAttempts;  // program-wide, never reset
};

template <typename Model>
int GpsSession<Model>::filterAttempts = 0;

}  // namespace tern
}  // namespace lidar
