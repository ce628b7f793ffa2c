#pragma once
// Runs a SimulatedLidar on a thread of its own, as the viewer's demo mode and
// the tests do: start() returns once the link is open (or failed), stop()
// closes it and ends the thread.

#include "SimOptions.h"
#include "SimulatedLidar.h"

#include <QString>

class QThread;

namespace sim {

class SimulationThread {
public:
    SimulationThread() = default;
    ~SimulationThread();
    SimulationThread(const SimulationThread&) = delete;
    SimulationThread& operator=(const SimulationThread&) = delete;

    bool start(const SimOptions& options, QString* error = nullptr);
    // Stops the simulator and its thread; waits at most `timeoutMs`.
    void stop(int timeoutMs = 5000);

    // The running simulator, null before start() and after stop(). Use only
    // its thread-safe readers (stats, deviceState, commandPort, ptyPath).
    SimulatedLidar* engine() const { return engine_; }

private:
    QThread* thread_ = nullptr;
    SimulatedLidar* engine_ = nullptr;
};

}  // namespace sim
