#include "LiveConnection.h"

#include "LIdarFactory.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QThread>

QString LiveConnection::modelName() const
{
    return m_session ? QString::fromLatin1(m_session->metaObject()->className()) : QString();
}

bool LiveConnection::connectNetwork(const QString& model, const NetworkParam& link)
{
    return connectOver(model, link, lidar::NetworkConnection);
}

bool LiveConnection::connectSerial(const QString& model, const SerialPortParam& link)
{
    return connectOver(model, link, lidar::SerialPortConnection);
}

template <typename Link>
bool LiveConnection::connectOver(const QString& model, const Link& link, lidar::CONNECTION_TYPE type)
{
    // The registry's new session replaces ours even when it is null.
    m_session = LIdarFactory::GetInstance()->ChangeLidar(model);
    if (!m_session)
        return false;
    // The fields are written here, on the user interface thread; the queued
    // connect request runs after them on the session's thread.
    applyLink(*m_session, link);
    emit m_session->SendConnectSignal(type);
    processEventsFor(kConfirmMs);

    if (m_session && m_session->frameReceived.load()) {
        m_session->connectionType = type;
        return true;
    }
    if (m_session)
        emit m_session->SendDisConnectSignal();
    return false;
}

void LiveConnection::disconnect()
{
    if (m_session)
        emit m_session->SendDisConnectSignal();
}

void LiveConnection::applyLink(LidarAnalysis& session, const NetworkParam& link)
{
    session.lidarIp = link.lidarIp;
    session.dataIp = link.dataIp;
    session.lidarPort = link.lidarPort;
    session.dataPort = link.dataPort;
}

void LiveConnection::applyLink(LidarAnalysis& session, const SerialPortParam& link)
{
    session.portName = link.portName;
    session.baudRate = link.baudRate;
    session.dataBits = link.dataBits;
    session.parity = link.parity;
    session.stopBits = link.stopBits;
    session.flowControl = link.flowControl;
}

void LiveConnection::processEventsFor(int ms)
{
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < ms) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
        // Short naps keep the wait from taking a whole core from the
        // session's thread, which is the one that has to deliver the frame.
        QThread::msleep(1);
    }
}
