#pragma once
// A simulated lidar: streams the chosen model's data packets over its link
// at the rotation rate (or as fast as possible), answers commands like the
// device and damages the stream on request. It lives on whichever thread it
// is moved to; start() and stop() are slots, the status readers are safe
// from any thread.

#include "SimCommandResponder.h"
#include "SimDevice.h"
#include "SimFaultInjector.h"
#include "SimOptions.h"
#include "SimPacketLog.h"
#include "SimScanGenerator.h"

#include <QElapsedTimer>
#include <mutex>
#include <QObject>
#include <QString>
#include <atomic>
#include <memory>

class QTimer;

namespace sim {

class SimLink;

struct SimStats {
    quint64 packets = 0;      // data packets produced (lost ones included)
    quint64 revolutions = 0;  // whole revolutions produced
    quint64 commands = 0;     // commands received
    quint64 replies = 0;      // replies sent
    quint64 ignored = 0;      // received commands the model does not know
    quint64 dropped = 0;      // packets lost on purpose or because the line was full
    quint64 corrupted = 0;
    quint64 junk = 0;
    quint64 gpsGaps = 0;      // late GPS time stamps injected

    QString toString() const;
};

class SimulatedLidar : public QObject {
    Q_OBJECT
public:
    explicit SimulatedLidar(const SimOptions& options, QObject* parent = nullptr);
    ~SimulatedLidar() override;

    const SimOptions& options() const { return options_; }
    SimStats stats() const;
    DeviceState deviceState() const;
    bool isRunning() const { return running_.load(); }
    // Valid once start() has succeeded.
    quint16 commandPort() const { return commandPort_.load(); }
    QString ptyPath() const;
    QString linkDescription() const;
    QString errorString() const;

public slots:
    // Opens the link and starts streaming; false (and failed()) when the
    // options are unusable or the link cannot be opened.
    bool start();
    void stop();

signals:
    void started();
    void stopped();
    void failed(const QString& message);
    void commandHandled(const QString& description);

private:
    void tick();
    void sendDataPacket();
    void handleBytes(const QByteArray& bytes);
    void handleCommand(const QByteArray& command);
    void setError(const QString& message);

    SimOptions options_;
    ScanGenerator generator_;
    FaultInjector faults_;
    PacketLog log_;
    SimLink* link_ = nullptr;
    QTimer* timer_ = nullptr;
    QElapsedTimer clock_;
    double nextDueUs_ = 0.0;
    double lastTickUs_ = 0.0;
    QByteArray commandBuffer_;

    // Guards state_, ptyPath_, linkDescription_, error_; a standard mutex,
    // whose locking ThreadSanitizer sees (QMutex it does not).
    mutable std::mutex mutex_;
    DeviceState state_;
    QString ptyPath_;
    QString linkDescription_;
    QString error_;

    std::atomic<bool> running_{false};
    std::atomic<quint16> commandPort_{0};
    std::atomic<quint64> packets_{0}, revolutions_{0}, commands_{0}, replies_{0}, ignored_{0};
    std::atomic<quint64> lineDrops_{0}, dropped_{0}, corrupted_{0}, junk_{0}, gpsGaps_{0};
};

}  // namespace sim
