#include "LidarAnalysis.h"

#include "LIdarFactory.h"
#include "RecordFile.h"

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
    lidar::registerHealthMetaTypes();
    connect(this, &LidarAnalysis::SendDataToLidarSignal, this, &LidarAnalysis::WriteToLidar);
    connect(this, &LidarAnalysis::SendConnectSignal, this, &LidarAnalysis::ConnectLidar);
    connect(this, &LidarAnalysis::SendDisConnectSignal, this, &LidarAnalysis::DisconnectLidar);
    // Removing a consumed packet would otherwise free the buffer every time.
    receiveBuffer.reserve(4096);
    clock_.start();
}

LidarAnalysis::~LidarAnalysis() = default;

lidar::ScanGeometry LidarAnalysis::streamScanGeometry() const
{
    std::lock_guard<std::mutex> lock(paramMutex);
    return streamGeometry_;
}

void LidarAnalysis::noteScanGeometry(const char* data, int size)
{
    // Looked up once: a session's model does not change.
    if (!modelLookedUp_) {
        model_ = LIdarFactory::GetInstance()->FindModel(QString::fromLatin1(metaObject()->className()));
        modelLookedUp_ = true;
    }
    if (!model_)
        return;
    const lidar::ScanGeometry geometry = lidar::scanGeometry(*model_, QByteArray::fromRawData(data, size));
    if (!geometry.isValid())
        return;
    std::lock_guard<std::mutex> lock(paramMutex);
    streamGeometry_ = geometry;
}

void LidarAnalysis::SetMotorFrequency(quint8) {}
void LidarAnalysis::SetDeviceParam(quint8) {}
void LidarAnalysis::SetLidarFilter(int) {}

void LidarAnalysis::ConnectLidar(lidar::CONNECTION_TYPE type)
{
    QByteArray().swap(receiveBuffer);
    receiveBuffer.reserve(4096);
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
            // The port is reused by later connects: one handler, not one per connect.
            connect(serialPort, &QSerialPort::readyRead, this, &LidarAnalysis::readSerial, Qt::UniqueConnection);
            connected = 1;
        }
    } else if (type == lidar::NetworkConnection) {
        if (!udpSocket)
            udpSocket = new QUdpSocket(this);
        udpSocket->bind(QHostAddress(dataIp), dataPort);
        connected = 1;
        connect(udpSocket, &QUdpSocket::readyRead, this, &LidarAnalysis::readDatagrams, Qt::UniqueConnection);
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
    noteArrival();
    ParseLidarData();
    writeRecordingAfterArrival();
}

void LidarAnalysis::readDatagrams()
{
    while (udpSocket->hasPendingDatagrams()) {
        const QByteArray datagram = udpSocket->receiveDatagram().data();
        datagramsReceived.fetch_add(1, std::memory_order_relaxed);
        bytesReceived.fetch_add(quint64(datagram.size()), std::memory_order_relaxed);
        receiveBuffer.append(datagram);
    }
    noteArrival();
    ParseLidarData();
    writeRecordingAfterArrival();
}

void LidarAnalysis::noteArrival()
{
    // Once per read, not per packet: the packets of one read arrived together.
    frameAccounting.setArrivalNs(quint64(clock_.nsecsElapsed()) + 1);
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
        if (replyReceived.load(std::memory_order_acquire))
            break;
    }
    std::lock_guard<std::mutex> lock(paramMutex);
    return param;
}

uint8_t LidarAnalysis::storedFrequency() const
{
    std::lock_guard<std::mutex> lock(paramMutex);
    return param.frequency;
}

void LidarAnalysis::storeFrequency(uint8_t frequency)
{
    std::lock_guard<std::mutex> lock(paramMutex);
    param.frequency = frequency;
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
    const lidar::FrameHealth& health = frameAccounting.lastHealth();
    streamCounters.addFrame(health);
    emit SendFrameHealthSignal(health, streamCounters.snapshot());
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
        if (replyReceived.load(std::memory_order_acquire))
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
    return lidar::runOnThreadOf(this, [&] { return startRecording(fileName); });
}

void LidarAnalysis::EndSaveData()
{
    lidar::runOnThreadOf(this, [&] { endRecording(); });
}

void LidarAnalysis::AbandonSaveData()
{
    lidar::runOnThreadOf(this, [&] {
        if (saving.exchange(0))
            recorder_.abandon();
    });
}

QVector<QByteArray> LidarAnalysis::recordingHeader() const
{
    return lidar::recordHeaderElements(QString::fromLatin1(metaObject()->className()), versionNumber.load());
}

bool LidarAnalysis::startRecording(const QString& fileName)
{
    if (saving.load())
        endRecording();
    saveError.clear();
    if (!recorder_.start(fileName, recordingHeader())) {
        saveError = recorder_.errorString();
        return false;
    }
    saveFileName = fileName;
    saving.exchange(1);
    return true;
}

bool LidarAnalysis::endRecording()
{
    if (!saving.exchange(0))
        return false;
    if (!recorder_.finish(recordingHeader())) {
        saveError = recorder_.errorString();
        emit SendMessageSignal(tr("The recording %1 could not be completed (%2).").arg(saveFileName, saveError));
        return false;
    }
    emit SendEndSaveDataSignal(saveFileName);
    return true;
}

void LidarAnalysis::recordPiece(const char* data, int size)
{
    recorder_.append(data, size);
    if (recorder_.failed())
        recordingFailed();
}

void LidarAnalysis::writeRecordingAfterArrival()
{
    if (saving.load(std::memory_order_relaxed) && !recorder_.writePending())
        recordingFailed();
}

// Nothing more can be written (a full disk): the file keeps the packets
// written whole before the failure and is closed; the next recording
// starts afresh.
void LidarAnalysis::recordingFailed()
{
    saving.exchange(0);
    const QString reason = recorder_.errorString();
    recorder_.finish(recordingHeader());
    saveError = reason;
    emit SendMessageSignal(tr("Recording stopped: %1 could not be written (%2). It keeps the %3 packets "
                              "recorded before.")
                               .arg(saveFileName, reason)
                               .arg(recorder_.packetCount()));
}
