#pragma once
// The viewer's demo mode: a simulated lidar runs on a thread of its own
// inside the program, sending to 127.0.0.1 only, and the window connects to
// it through its ordinary network connection, as it would to a real lidar.

#include "IConnectLiDAR.h"
#include "SimFaultInjector.h"
#include "SimulationThread.h"

#include <QCoreApplication>
#include <QString>
#include <QStringList>

class DemoLidar {
    Q_DECLARE_TR_FUNCTIONS(DemoLidar)
public:
    // What "--demo [<Model>]" on the command line asks for.
    struct Request {
        bool wanted = false;
        QString model;
        QString error;  // not empty: the arguments cannot be used
    };
    // The densest picture of the room: two channels, a sample every half degree.
    static QString defaultModel() { return QStringLiteral("Wren_Plus"); }
    // `arguments` starts with the program's name, as QCoreApplication gives them.
    static Request fromArguments(const QStringList& arguments);

    DemoLidar() = default;
    ~DemoLidar() { stop(); }
    DemoLidar(const DemoLidar&) = delete;
    DemoLidar& operator=(const DemoLidar&) = delete;

    // Starts the simulator of `model` on a free loopback port pair and
    // connects `connector` to it. False, with a message, when either fails.
    bool start(const QString& model, IConnectLiDAR& connector, QString* error = nullptr);
    // Stops the simulator and its thread (the session stays with the window).
    void stop();
    // A damaged link and a late GPS stamp every few seconds, for the next start.
    void setFaults(const sim::FaultOptions& faults, double gpsGapMs = 0.0)
    {
        m_faults = faults;
        m_gpsGapMs = gpsGapMs;
    }

    bool isRunning() const { return m_simulator.engine() != nullptr; }
    NetworkParam link() const { return m_link; }
    sim::SimulatedLidar* engine() const { return m_simulator.engine(); }

private:
    sim::SimulationThread m_simulator;
    NetworkParam m_link;
    sim::FaultOptions m_faults;
    double m_gpsGapMs = 0.0;
};
