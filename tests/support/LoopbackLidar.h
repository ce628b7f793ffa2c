#pragma once
// A stand-in lidar for session tests: a UDP socket on 127.0.0.1 that sends
// data to the session's bound port and collects the commands it receives,
// and a pseudo-terminal pair whose slave side a QSerialPort opens.

#include <QByteArray>
#include <QList>
#include <QString>
#include <QUdpSocket>
#include <functional>

namespace testing {

// Waits, processing events, until `done` holds or `timeoutMs` passes.
bool waitFor(const std::function<bool()>& done, int timeoutMs = 5000);

// A UDP port on 127.0.0.1 that nobody is bound to right now.
quint16 freeUdpPort();

class LoopbackLidar {
public:
    LoopbackLidar();  // binds 127.0.0.1 on a free port
    quint16 commandPort() const { return socket_.localPort(); }
    void send(const QByteArray& datagram, quint16 dataPort);
    // Commands received so far (processes pending datagrams first).
    QList<QByteArray> commands();

private:
    QUdpSocket socket_;
    QList<QByteArray> received_;
};

// A pseudo-terminal; the session opens slaveName() as its serial port.
class PseudoTerminal {
public:
    PseudoTerminal();
    ~PseudoTerminal();
    bool isOpen() const { return master_ >= 0; }
    QString slaveName() const { return slaveName_; }
    bool write(const QByteArray& bytes);
    QByteArray readAvailable();  // non-blocking read from the master side

private:
    int master_ = -1;
    int slave_ = -1;
    QString slaveName_;
};

}  // namespace testing
