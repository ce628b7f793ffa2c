#pragma once
// How the connection dialog reaches the main window: it fills one of the two
// link records and asks to connect; the answer says whether frames arrived.

#include <QString>
#include <cstdint>

struct SerialPortParam {
    QString portName;
    int32_t baudRate = 460800;
    int32_t dataBits = 8;
    int32_t parity = 0;  // QSerialPort::Parity
    int32_t stopBits = 1;
    int32_t flowControl = 0;
};

struct NetworkParam {
    QString lidarIp = QStringLiteral("192.168.1.200");
    QString dataIp = QStringLiteral("192.168.1.200");
    uint16_t lidarPort = 2369;
    uint16_t dataPort = 2368;
};

class IConnectLiDAR {
public:
    virtual ~IConnectLiDAR() = default;
    virtual bool ConnectNetworkLidar(const QString& model, const NetworkParam& param) = 0;
    virtual bool ConnectSerialLidar(const QString& model, const SerialPortParam& param) = 0;
};
