#pragma once
// The simulator's two links to a host: UDP on the loopback interface and a
// serial line through a pseudo-terminal.

#include <QByteArray>
#include <QHostAddress>
#include <QObject>
#include <QString>

class QSocketNotifier;
class QUdpSocket;

namespace sim {

class SimLink : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;
    virtual bool open(QString* error) = 0;
    virtual void close() = 0;
    // Sends one chunk; false when the link could not take it (it is lost).
    virtual bool send(const QByteArray& bytes) = 0;
    // A byte stream (serial) rather than datagrams: commands may arrive in pieces.
    virtual bool isStream() const = 0;
    // Where data goes and commands come from, for messages.
    virtual QString description() const = 0;

signals:
    void bytesReceived(const QByteArray& bytes);
};

// Data and replies go from the command socket (bound on 127.0.0.1) to the
// host's data address; commands arrive on the command socket.
class UdpLink : public SimLink {
    Q_OBJECT
public:
    UdpLink(const QString& dataHost, quint16 dataPort, quint16 commandPort, QObject* parent = nullptr);
    bool open(QString* error) override;
    void close() override;
    bool send(const QByteArray& bytes) override;
    bool isStream() const override { return false; }
    QString description() const override;
    // The port actually bound (the requested one, or a free one for 0).
    quint16 commandPort() const;

private:
    void readDatagrams();

    QHostAddress dataAddress_;
    quint16 dataPort_;
    quint16 commandPort_;
    QUdpSocket* socket_ = nullptr;
};

// A pseudo-terminal pair: the host opens the slave device as its serial
// port; the simulator writes data to the master side and reads commands
// from it. The simulator keeps the slave open itself, so that the line
// stays usable while no host is attached.
class PtyLink : public SimLink {
    Q_OBJECT
public:
    explicit PtyLink(QObject* parent = nullptr);
    ~PtyLink() override;
    bool open(QString* error) override;
    void close() override;
    bool send(const QByteArray& bytes) override;
    bool isStream() const override { return true; }
    QString description() const override { return slavePath_; }
    QString slavePath() const { return slavePath_; }

private:
    void readMaster();
    void flushPending();

    int master_ = -1;
    int slave_ = -1;
    QString slavePath_;
    QByteArray pending_;  // bytes the line could not take yet
    QSocketNotifier* readNotifier_ = nullptr;
    QSocketNotifier* writeNotifier_ = nullptr;
};

}  // namespace sim
