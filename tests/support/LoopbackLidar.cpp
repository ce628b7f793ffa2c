#include "LoopbackLidar.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QHostAddress>
#include <QNetworkDatagram>
#include <QThread>

#include <fcntl.h>
#include <pty.h>
#include <termios.h>
#include <unistd.h>

namespace testing {

bool waitFor(const std::function<bool()>& done, int timeoutMs)
{
    QElapsedTimer timer;
    timer.start();
    while (!done()) {
        if (timer.elapsed() > timeoutMs)
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        QThread::msleep(2);
    }
    return true;
}

quint16 freeUdpPort()
{
    QUdpSocket probe;
    probe.bind(QHostAddress(QHostAddress::LocalHost), 0);
    return probe.localPort();
}

LoopbackLidar::LoopbackLidar()
{
    socket_.bind(QHostAddress(QHostAddress::LocalHost), 0);
}

void LoopbackLidar::send(const QByteArray& datagram, quint16 dataPort)
{
    socket_.writeDatagram(datagram, QHostAddress::LocalHost, dataPort);
}

QList<QByteArray> LoopbackLidar::commands()
{
    while (socket_.hasPendingDatagrams())
        received_.append(socket_.receiveDatagram().data());
    return received_;
}

PseudoTerminal::PseudoTerminal()
{
    char name[128] = {0};
    if (openpty(&master_, &slave_, name, nullptr, nullptr) != 0) {
        master_ = slave_ = -1;
        return;
    }
    termios raw{};
    tcgetattr(master_, &raw);
    cfmakeraw(&raw);
    tcsetattr(master_, TCSANOW, &raw);
    fcntl(master_, F_SETFL, fcntl(master_, F_GETFL) | O_NONBLOCK);
    slaveName_ = QString::fromLocal8Bit(name);
}

PseudoTerminal::~PseudoTerminal()
{
    ::close(slave_);  // -1 when openpty failed: a harmless EBADF
    ::close(master_);
}

bool PseudoTerminal::write(const QByteArray& bytes)
{
    for (int done = 0; done < bytes.size();) {
        const ssize_t n = ::write(master_, bytes.constData() + done, size_t(bytes.size() - done));
        if (n < 0)
            return false;
        done += int(n);
    }
    return true;
}

QByteArray PseudoTerminal::readAvailable()
{
    QByteArray out;
    char chunk[4096];
    for (ssize_t n; (n = ::read(master_, chunk, sizeof chunk)) > 0;)
        out.append(chunk, int(n));
    return out;
}

}  // namespace testing
