#pragma once
// The commands the three GPS-stamped Tern models (Tern_P, Tern_GPS,
// Tern_Plus) share: read parameters and set filter with the class bytes
// their descriptors give (0x55 and 0x01), set frequency with 0x55. Each
// model gets its own program-wide filter retry counter, one template
// instance per model.

#include "LidarAnalysis.h"
#include "TernProtocol.h"

namespace lidar {
namespace tern {

template <typename Model>
class GpsSession : public LidarAnalysis {
public:
    explicit GpsSession(QObject* parent) : LidarAnalysis(parent) {}

    QByteArray ReadParamCommand() override
    {
        return readParamCommand(Model::Descriptor().commands.readParamClass, storedFrequency());
    }

    void SetMotorFrequency(quint8 frequency) override
    {
        storeFrequency(frequency);
        sendTwice(setFrequencyCommand(frequency));
    }

    void SetLidarFilter(int mode) override
    {
        sendWithRetries(setFilterCommand(Model::Descriptor().commands.setFilterClass, mode, storedFrequency()),
                        filterAttempts);
        SetMotorFrequency(storedFrequency());
    }

    static int filterAttempts;  // program-wide, never reset
};

template <typename Model>
int GpsSession<Model>::filterAttempts = 0;

}  // namespace tern
}  // namespace lidar
