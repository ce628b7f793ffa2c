#include "SimulationThread.h"

#include "RunOnThread.h"

#include <QThread>

namespace sim {

SimulationThread::~SimulationThread()
{
    stop();
}

bool SimulationThread::start(const SimOptions& options, QString* error)
{
    stop();
    thread_ = new QThread();
    thread_->setObjectName(QStringLiteral("scandeck-sim"));
    engine_ = new SimulatedLidar(options);
    engine_->moveToThread(thread_);
    // The simulator is deleted on its own thread as that thread ends.
    QObject::connect(thread_, &QThread::finished, engine_, &QObject::deleteLater);
    thread_->start();

    SimulatedLidar* engine = engine_;
    const bool ok = lidar::runOnThreadOf(engine, [engine] { return engine->start(); });
    if (!ok) {
        if (error)
            *error = engine_->errorString();
        stop();
    }
    return ok;
}

void SimulationThread::stop(int timeoutMs)
{
    if (!thread_)
        return;
    SimulatedLidar* engine = engine_;
    if (thread_->isRunning())
        lidar::runOnThreadOf(engine, [engine] { engine->stop(); });
    thread_->quit();
    if (thread_->wait(unsigned(timeoutMs)))
        delete thread_;
    // A thread that did not end in time is left to finish on its own rather
    // than destroyed under its feet.
    thread_ = nullptr;
    engine_ = nullptr;
}

}  // namespace sim
