#include "SimLinks.h"

#include <QNetworkDatagram>
#include <QSocketNotifier>
#include <QUdpSocket>

#include <cerrno>
#include <fcntl.h>
#include <pty.h>
#include <termios.h>
#include <unistd.h>

namespace sim {

namespace {
// While nobody reads the serial line, at most this much waits to be written;
// anything beyond is lost as it would be on a real line.
constexpr int kMaxPendingBytes = 4096;
}  // namespace

UdpLink::UdpLink(const QString& dataHost, quint16 dataPort, quint16 commandPort, QObject* parent)
    : SimLink(parent), dataAddress_(dataHost), dataPort_(dataPort), commandPort_(commandPort)
{
}

bool UdpLink::open(QString* error)
{
    if (!dataAddress_.isLoopback()) {
        *error = QStringLiteral("refusing to send to %1: not a loopback address").arg(dataAddress_.toString());
        return false;
    }
    socket_ = new QUdpSocket(this);
    const QHostAddress local = dataAddress_.protocol() == QAbstractSocket::IPv6Protocol
                                   ? QHostAddress(QHostAddress::LocalHostIPv6)
                                   : QHostAddress(QHostAddress::LocalHost);
    if (!socket_->bind(local, commandPort_)) {
        *error = QStringLiteral("cannot listen for commands on %1:%2: %3")
                     .arg(local.toString())
                     .arg(commandPort_)
                     .arg(socket_->errorString());
        delete socket_;
        socket_ = nullptr;
        return false;
    }
    connect(socket_, &QUdpSocket::readyRead, this, &UdpLink::readDatagrams);
    return true;
}

void UdpLink::close()
{
    if (socket_)
        socket_->close();
}

bool UdpLink::send(const QByteArray& bytes)
{
    return socket_ && socket_->writeDatagram(bytes, dataAddress_, dataPort_) == bytes.size();
}

QString UdpLink::description() const
{
    return QStringLiteral("data to %1:%2, commands on %3:%4")
        .arg(dataAddress_.toString())
        .arg(dataPort_)
        .arg(socket_ ? socket_->localAddress().toString() : QStringLiteral("127.0.0.1"))
        .arg(commandPort());
}

quint16 UdpLink::commandPort() const
{
    return socket_ ? socket_->localPort() : commandPort_;
}

void UdpLink::readDatagrams()
{
    while (socket_->hasPendingDatagrams())
        emit bytesReceived(socket_->receiveDatagram().data());
}

PtyLink::PtyLink(QObject* parent) : SimLink(parent) {}

PtyLink::~PtyLink()
{
    close();
}

bool PtyLink::open(QString* error)
{
    char name[256] = {0};
    if (openpty(&master_, &slave_, name, nullptr, nullptr) != 0) {
        *error = QStringLiteral("cannot open a pseudo-terminal: %1").arg(QString::fromLocal8Bit(strerror(errno)));
        master_ = slave_ = -1;
        return false;
    }
    // Raw line: no echo of our data back to us, no translation of bytes.
    termios raw{};
    tcgetattr(slave_, &raw);
    cfmakeraw(&raw);
    tcsetattr(slave_, TCSANOW, &raw);
    fcntl(master_, F_SETFL, fcntl(master_, F_GETFL) | O_NONBLOCK);
    slavePath_ = QString::fromLocal8Bit(name);

    readNotifier_ = new QSocketNotifier(master_, QSocketNotifier::Read, this);
    connect(readNotifier_, &QSocketNotifier::activated, this, &PtyLink::readMaster);
    writeNotifier_ = new QSocketNotifier(master_, QSocketNotifier::Write, this);
    writeNotifier_->setEnabled(false);
    connect(writeNotifier_, &QSocketNotifier::activated, this, &PtyLink::flushPending);
    return true;
}

void PtyLink::close()
{
    delete readNotifier_;
    readNotifier_ = nullptr;
    delete writeNotifier_;
    writeNotifier_ = nullptr;
    if (master_ >= 0)
        ::close(master_);
    if (slave_ >= 0)
        ::close(slave_);
    master_ = slave_ = -1;
    pending_.clear();
}

bool PtyLink::send(const QByteArray& bytes)
{
    if (master_ < 0)
        return false;
    if (pending_.size() + bytes.size() > kMaxPendingBytes)
        return false;
    pending_.append(bytes);
    flushPending();
    return true;
}

void PtyLink::flushPending()
{
    while (!pending_.isEmpty()) {
        const ssize_t n = ::write(master_, pending_.constData(), size_t(pending_.size()));
        if (n <= 0)
            break;  // the line is full (EAGAIN) or gone: try again when it can take more
        pending_.remove(0, int(n));
    }
    if (writeNotifier_)
        writeNotifier_->setEnabled(!pending_.isEmpty());
}

void PtyLink::readMaster()
{
    char chunk[1024];
    QByteArray bytes;
    for (;;) {
        const ssize_t n = ::read(master_, chunk, sizeof chunk);
        if (n <= 0)
            break;
        bytes.append(chunk, int(n));
    }
    if (!bytes.isEmpty())
        emit bytesReceived(bytes);
}

}  // namespace sim
