#pragma once
// The live session with one lidar and the base class of every model decoder.
// It owns the transport (UDP socket or serial port), the receive buffer, the
// device parameters from the last reply and the recording state. It knows no
// packet format: after each read it calls the model's ParseLidarData().

#include "LidarRecords.h"

#include <QByteArray>
#include <QDataStream>
#include <QFile>
#include <QObject>
#include <QSerialPort>
#include <QString>
#include <QVector>
#include <atomic>
#include <cstdint>

class QUdpSocket;

namespace lidar {
enum CONNECTION_TYPE : int32_t {
    SerialPortConnection = 0,
    NetworkConnection = 1,
};
}
Q_DECLARE_METATYPE(lidar::CONNECTION_TYPE)

// Device parameters kept from the last parameters reply.
struct LidarParam {
    uint8_t frequency = 1;  // last byte given to SetMotorFrequency (1 run, 0 stop)
    int32_t value1 = -1;    // filter mode for most models
    int32_t value2 = 0;     // device parameter (motor speed setting) where the model has one
    QString text;           // firmware version text
};

class LidarAnalysis : public QObject {
    Q_OBJECT
public:
    explicit LidarAnalysis(QObject* parent = nullptr);
    ~LidarAnalysis() override;

    bool StartSaveData(const QString& fileName);
    void EndSaveData();
    LidarParam GetLidarParam();
    void SetConnected(bool on);
    int GetConnectionType() const;
    void WaitDisconnect();

public slots:
    virtual void ParseLidarData() = 0;
    virtual QByteArray ReadParamCommand() = 0;
    virtual void SetMotorFrequency(quint8 code);
    virtual void SetDeviceParam(quint8 value);
    virtual void SetLidarFilter(int mode);

    void ConnectLidar(lidar::CONNECTION_TYPE type);
    void DisconnectLidar();
    void WriteToLidar(const QByteArray& data);

signals:
    void SendEndSaveDataSignal(QString fileName);
    void SendleLidarDataSignal(lidar::LidarDataPoint_V4 frame);
    void SendMessageSignal(QString message);
    void SendDataToLidarSignal(QByteArray data);
    void SendConnectSignal(lidar::CONNECTION_TYPE type);
    void SendDisConnectSignal();
    void SendGPSTimeData(lidar::GPSTime time);

public:
    uint32_t versionNumber = 0;
    std::atomic<uint8_t> frameReceived{0};
    uint8_t connected = 0;
    uint8_t replyReceived = 0;
    QByteArray receiveBuffer;
    int32_t connectionType = -1;
    lidar::LidarDataPoint_V4 currentFrame;
    lidar::LidarDataPoint_V4 lastFrame;
    LidarParam param;
    QUdpSocket* udpSocket = nullptr;
    QString lidarIp = QStringLiteral("192.168.1.200");
    QString dataIp = QStringLiteral("192.168.1.200");
    uint16_t lidarPort = 2369;
    uint16_t dataPort = 2368;
    QSerialPort* serialPort = nullptr;
    QString portName;
    int32_t baudRate = 460800;
    int32_t dataBits = QSerialPort::Data8;
    int32_t parity = QSerialPort::NoParity;
    int32_t stopBits = QSerialPort::OneStop;
    int32_t flowControl = QSerialPort::NoFlowControl;
    QString saveFileName;
    QDataStream saveStream;
    QFile saveFile;
    QVector<QByteArray> savePackets;
    std::atomic<uint8_t> saving{0};
    // Running totals of the link since the session was made, read from the
    // user interface thread for the link status: datagrams (serial reads),
    // their bytes, and revolutions completed whether shown or not.
    std::atomic<quint64> datagramsReceived{0};
    std::atomic<quint64> bytesReceived{0};
    std::atomic<quint64> framesCompleted{0};

protected:
    // Appends a packet, exactly as cut, to the recording while one runs.
    void recordPacket(const QByteArray& packet)
    {
        if (saving.load())
            savePackets.append(packet);
    }
    // Ends a revolution: reports it while connected and shifts the early
    // points of the next revolution into the frame being built.
    void finishFrame();
    // The command senders' shared shape: send, sleep 100 ms, stop on a reply,
    // otherwise go on while the program-wide counter is below 3.
    void sendWithRetries(const QByteArray& packet, int& attempts);
    // Sends a packet, sleeps 20 ms and sends it again.
    void sendTwice(const QByteArray& packet);

private slots:
    void readSerial();
    void readDatagrams();
};
