// A capture of arbitrary bytes read from memory (pcap or pcapng, whatever
// libpcap makes of them) with its UDP payloads to the data port played
// through a model's live stream cutting, as the player and scandeck-cli do
// with a capture file. The model and Tern_P's firmware come from the end of
// the input, the capture's bytes from its front.

#include "CaptureFile.h"
#include "FuzzChecks.h"
#include "Tern.h"
#include "Tern_GPS.h"
#include "Tern_P.h"
#include "Tern_Plus.h"
#include "Wren_Kite.h"
#include "Wren_Plus.h"

#include <memory>

namespace {

// Each reply makes a session tell the lidar its frequency again, sending
// twice 20 ms apart. Nothing listens here and the pause would slow the run
// a thousandfold, so only the frequency is kept.
template <typename Model>
class Session final : public Model {
public:
    void SetMotorFrequency(quint8 frequency) override { this->param.frequency = frequency; }
};

std::unique_ptr<LidarAnalysis> makeSession(int model)
{
    switch (model) {
    case 0:
        return std::make_unique<Session<Tern>>();
    case 1:
        return std::make_unique<Session<Tern_GPS>>();
    case 2:
        return std::make_unique<Session<Tern_P>>();
    case 3:
        return std::make_unique<Session<Tern_Plus>>();
    case 4:
        return std::make_unique<Session<Wren_Plus>>();
    default:
        return std::make_unique<Session<Wren_Kite>>();
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    FuzzedDataProvider input(data, size);
    const std::unique_ptr<LidarAnalysis> session = makeSession(input.ConsumeIntegralInRange<int>(0, 5));
    session->versionNumber = input.ConsumeBool() ? 215 : 214;  // Tern_P's two word encodings
    session->connected = 1;  // finished frames are sent, and checked here
    QObject::connect(session.get(), &LidarAnalysis::SendleLidarDataSignal, &fuzzing::checkFrame);
    const QByteArray bytes = fuzzing::takeBytes(input, input.remaining_bytes());

    capture::CaptureFile file;
    if (!file.openBytes(bytes))
        return 0;
    qint64 payloads = 0;
    file.readDatagrams(capture::kDefaultDataPort, [&](const QByteArray& payload) {
        // A UDP payload fits a 16-bit IP length less the UDP header.
        fuzzing::require(payload.size() <= 65535 - 8, "a payload no longer than UDP allows");
        ++payloads;
        session->receiveBuffer.append(payload);
        session->ParseLidarData();
        return true;
    });
    const capture::CaptureSummary& summary = file.summary();
    fuzzing::require(summary.counts.datagrams == payloads, "every datagram handed on is counted");
    fuzzing::require(summary.counts.frames == summary.packets, "every record read is looked at");
    fuzzing::require(summary.counts.reassembled <= summary.counts.datagrams, "rebuilt datagrams among the datagrams");
    fuzzing::checkFrame(session->currentFrame);
    fuzzing::checkFrame(session->lastFrame);
    return 0;
}
