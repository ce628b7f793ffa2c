#pragma once
// The live session both Wren models share: the stream loop, reply handling
// and commands are the same; each model supplies its packet size and type,
// its pure DecodePacket and its program-wide previous azimuth, whose type is
// the precision the model compares azimuths in. Each model gets its own
// program-wide retry counters, one template instance per model.

#include "DecodeCommon.h"
#include "LidarAnalysis.h"
#include "WrenProtocol.h"

#include <type_traits>

namespace lidar {
namespace wren {

template <typename Model>
class WrenSession : public LidarAnalysis {
public:
    explicit WrenSession(QObject* parent) : LidarAnalysis(parent) {}

    void ParseLidarData() override
    {
        using Azimuth = std::remove_reference_t<decltype(Model::previousAzimuth)>;
        parseStream(
            receiveBuffer, streamCounters, Model::kPacketSize, Model::kPacketType,
            [this](decode::Bytes packet) {
                recordPacket(packet.data, packet.size);
                Model::DecodePacket(packet, decoded_);
                decode::placePoints<Azimuth>(decoded_, currentFrame, lastFrame, Model::previousAzimuth,
                                             frameAccounting, [this] { finishFrame(); });
            },
            [this](decode::Bytes reply) { takeReply([reply](LidarParam& p) { decodeReply(reply, p); }); });
    }

    QByteArray ReadParamCommand() override { return readParamCommand(storedFrequency()); }

    void SetMotorFrequency(quint8 code) override
    {
        storeFrequency(code);
        sendTwice(setFrequencyCommand(code));
    }

    void SetDeviceParam(quint8 value) override
    {
        sendWithRetries(setDeviceParamCommand(value), deviceParamAttempts);
        SetMotorFrequency(storedFrequency());
    }

    void SetLidarFilter(int mode) override
    {
        sendWithRetries(setFilterCommand(mode, storedFrequency()), filterAttempts);
        SetMotorFrequency(storedFrequency());
    }

    static int deviceParamAttempts;  // program-wide, never reset
    static int filterAttempts;       // program-wide, never reset

private:
    decode::DecodedPacket decoded_;
};

template <typename Model>
int WrenSession<Model>::deviceParamAttempts = 0;
template <typename Model>
int WrenSession<Model>::filterAttempts = 0;

}  // namespace wren
}  // namespace lidar
