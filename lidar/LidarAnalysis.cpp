#include "LidarAnalysis.h"

#include <QElapsedTimer>
#include <QEventLoop>
#include <QHostAddress>
#include <QMetaObject>
#include <QNetworkDatagram>
#include <QThread>
#include <QTimer>
#include <QUdpSocket>

LidarAnalysis::LidarAnalysis(QObject* parent) : QObject(parent)
{
    qRegisterMetaType<lidar::CONNECTION_TYPE>("lidar::CONNECTION_TYPE");
    lidar::registerMetaTypes();
    connect(this, &LidarAnalysis::SendDataToLidarSignal, this, &LidarAnalysis::WriteToLidar);
    connect(this, &LidarAnalysis::SendConnectSignal, this, &LidarAnalysis::ConnectLidar);
    connect(this, &LidarAnalysis::SendDisConnectSignal, this, &LidarAnalysis::DisconnectLidar);
}

LidarAnalysis::~LidarAnalysis() = default;

void LidarAnalysis::SetMotorFrequency(quint8) {}
void LidarAnalysis::SetDeviceParam(quint8) {}
void LidarAnalysis::SetLidarFilter(int) {}

void LidarAnalysis::ConnectLidar(lidar::CONNECTION_TYPE type)
{
    QByteArray().swap(receiveBuffer);
    frameReceived.exchange(0);

    if (type == lidar::SerialPortConnection) {
        if (!serialPort)
            serialPort = new QSerialPort(this);
        serialPort->setPortName(portName);
        serialPort->setBaudRate(baudRate, QSerialPort::AllDirections);
        serialPort->setDataBits(QSerialPort::DataBits(dataBits));
        serialPort->setParity(QSerialPort::Parity(parity));
        serialPort->setStopBits(QSerialPort::StopBits(stopBits));
        serialPort->setFlowControl(QSerialPort::FlowControl(flowControl));
        if (serialPort->open(QIODevice::ReadWrite)) {
            serialPort->clear(QSerialPort::AllDirections);
            connect(serialPort, &QSerialPort::readyRead, this, &LidarAnalysis::readSerial);
            connected = 1;
        }
    } else if (type == lidar::NetworkConnection) {
        if (!udpSocket)
            udpSocket = new QUdpSocket(this);
        udpSocket->bind(QHostAddress(dataIp), dataPort);
        connected = 1;
        connect(udpSocket, &QUdpSocket::readyRead, this, &LidarAnalysis::readDatagrams);
    } else {
        emit SendMessageSignal(tr("Please set a valid connection status!"));
    }
}

void LidarAnalysis::DisconnectLidar()
{
    if (serialPort)
        serialPort->close();
    if (udpSocket)
        udpSocket->close();
    connectionType = -1;
    connected = 0;
}

void LidarAnalysis::readSerial()
{
    const QByteArray bytes = serialPort->readAll();
    datagramsReceived.fetch_add(1, std::memory_order_relaxed);
    bytesReceived.fetch_add(quint64(bytes.size()), std::memory_order_relaxed);
    receiveBuffer.append(bytes);
    ParseLidarData();
}

void LidarAnalysis::readDatagrams()
{
    while (udpSocket->hasPendingDatagrams()) {
        const QByteArray datagram = udpSocket->receiveDatagram().data();
        datagramsReceived.fetch_add(1, std::memory_order_relaxed);
        bytesReceived.fetch_add(quint64(datagram.size()), std::memory_order_relaxed);
        receiveBuffer.append(datagram);
    }
    ParseLidarData();
}

void LidarAnalysis::WriteToLidar(const QByteArray& data)
{
    if (connectionType == lidar::SerialPortConnection && serialPort) {
        serialPort->write(data);
        // Stale input must not be mistaken for the answer to this command.
        serialPort->readAll();
        if (!serialPort->waitForBytesWritten(30000))
            emit SendMessageSignal(tr("Failed to send data"));
    } else if (connectionType == lidar::NetworkConnection && udpSocket) {
        udpSocket->writeDatagram(data, QHostAddress(lidarIp), lidarPort);
    }
}

LidarParam LidarAnalysis::GetLidarParam()
{
    if (connectionType == -1)
        return LidarParam();
    replyReceived = 0;
    for (int attempt = 1;; ++attempt) {
        emit SendDataToLidarSignal(ReadParamCommand());
        QThread::msleep(100);
        if (attempt == 5)
            return LidarParam();
        if (replyReceived)
            break;
    }
    return param;
}

void LidarAnalysis::SetConnected(bool on)
{
    connected = on ? 1 : 0;
}

int LidarAnalysis::GetConnectionType() const
{
    return connectionType;
}

void LidarAnalysis::WaitDisconnect()
{
    emit SendDisConnectSignal();
    // Give the queued disconnect a moment to run on the session's thread.
    QEventLoop loop;
    QTimer::singleShot(5, &loop, &QEventLoop::quit);
    loop.exec();
}

void LidarAnalysis::finishFrame()
{
    frameReceived.exchange(1);
    framesCompleted.fetch_add(1, std::memory_order_relaxed);
    if (connected)
        emit SendleLidarDataSignal(currentFrame);
    currentFrame.clear();
    currentFrame = lastFrame;
    lastFrame.clear();
}

void LidarAnalysis::sendWithRetries(const QByteArray& packet, int& attempts)
{
    replyReceived = 0;
    do {
        ++attempts;
        emit SendDataToLidarSignal(packet);
        QThread::msleep(100);
        if (replyReceived)
            break;
    } while (attempts < 3);
}

void LidarAnalysis::sendTwice(const QByteArray& packet)
{
    emit SendDataToLidarSignal(packet);
    QThread::msleep(20);
    emit SendDataToLidarSignal(packet);
}

bool LidarAnalysis::StartSaveData(const QString& fileName)
{
    savePackets.clear();
    saveFile.setFileName(fileName);
    if (!saveFile.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return false;
    saveStream.setDevice(&saveFile);
    saving.exchange(1);
    saveFileName = fileName;
    return true;
}

void LidarAnalysis::EndSaveData()
{
    saving.exchange(0);
    const QByteArray className(metaObject()->className());
    if (className == "Tern_P")
        savePackets.prepend(QByteArray::number(versionNumber, 10));
    savePackets.prepend(className);
    saveStream << qint32(savePackets.size());
    for (const QByteArray& element : savePackets)
        saveStream << element;
    saveFile.flush();
    saveFile.close();
    emit SendEndSaveDataSignal(saveFileName);
}
