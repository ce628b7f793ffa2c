#pragma once
// Everything the simulated lidar is configured with: model, link, rotation,
// firmware identity and faults. A plain value, so that the command line, the
// viewer's demo mode and the tests fill it the same way.

#include "SimDevice.h"
#include "SimFaultInjector.h"
#include "SimModel.h"
#include "SimScene.h"

#include <QString>
#include <QtGlobal>
#include <cstdint>

namespace sim {

enum class Transport {
    Udp,             // data and replies to dataHost:dataPort, commands on 127.0.0.1:commandPort
    PseudoTerminal,  // a serial line: the host opens the pseudo-terminal's slave device
};

struct SimOptions {
    Model model = Model::Tern;
    Transport transport = Transport::Udp;
    QString dataHost = QStringLiteral("127.0.0.1");
    quint16 dataPort = 2368;
    quint16 commandPort = 2369;  // 0: any free port
    double rpm = 600.0;          // 10 revolutions per second
    bool fast = false;           // as fast as possible instead of in real time
    // Packets go out this many times faster than the rotation rate says,
    // beyond any real motor: a host under a flood of frames (tests).
    double speedUp = 1.0;
    uint64_t seed = 1;
    FilterMode filter = FilterMode::Normal;
    FirmwareInfo firmware;
    FaultOptions faults;
    // GPS time of the first packet in ms since the epoch (UTC); negative: now.
    qint64 gpsStartMs = -1;
    // A GPS clock fault: every gpsGapEverySeconds the stamp of one
    // revolution's first packet comes gpsGapMs late (0: never).
    double gpsGapMs = 0.0;
    double gpsGapEverySeconds = 3.0;
    // Where the packet log goes (SimPacketLog.h); empty: no log.
    QString logFile;
};

// The longest GPS gap the simulator injects: a minute.
constexpr double kMaxGpsGapMs = 60000.0;
// The largest speed-up over real time.
constexpr double kMaxSpeedUp = 100.0;

// 127.0.0.0/8, ::1 or "localhost": the only places the simulator sends to.
bool isLoopbackHost(const QString& host);
// The address to send to; "localhost" becomes 127.0.0.1.
QString resolvedLoopbackHost(const QString& host);

// Empty when the options can be used, otherwise what is wrong with them.
QString validateOptions(const SimOptions& options);

}  // namespace sim
