// One model's live stream path fed arbitrary bytes in arbitrary pieces, as
// datagrams and serial reads arrive: each piece is appended to the receive
// buffer and parsed. The piece lengths come from the end of the input, the
// bytes from its front. Built once per model, SCANDECK_FUZZ_MODEL naming the
// class.

#include "FuzzChecks.h"
#include "Tern.h"
#include "Tern_GPS.h"
#include "Tern_P.h"
#include "Tern_Plus.h"
#include "Wren_Kite.h"
#include "Wren_Plus.h"

namespace {

// Each reply makes a session tell the lidar its frequency again, sending
// twice 20 ms apart. Nothing listens here and the pause would slow the run
// a thousandfold, so only the frequency is kept.
class Session final : public SCANDECK_FUZZ_MODEL {
public:
    void SetMotorFrequency(quint8 frequency) override { param.frequency = frequency; }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    FuzzedDataProvider input(data, size);
    Session session;
    session.connected = 1;  // finished frames are sent, and checked here
    QObject::connect(&session, &LidarAnalysis::SendleLidarDataSignal, &fuzzing::checkFrame);
    session.versionNumber = input.ConsumeBool() ? 215 : 214;  // Tern_P's two word encodings
    while (input.remaining_bytes() > 0) {
        const size_t length = input.ConsumeIntegralInRange<size_t>(1, 512);
        session.receiveBuffer.append(fuzzing::takeBytes(input, length));
        session.ParseLidarData();
    }
    fuzzing::checkFrame(session.currentFrame);
    fuzzing::checkFrame(session.lastFrame);
    return 0;
}
