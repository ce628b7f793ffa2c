#pragma once
// The live session with one lidar and the base class of every model decoder.
// It owns the transport (UDP socket or serial port), the receive buffer, the
// device parameters from the last reply and the recording state. It knows no
// packet format: after each read it calls the model's ParseLidarData().

#include "FrameAccounting.h"
#include "FrameHealth.h"
#include "LidarRecords.h"
#include "ModelGeometry.h"
#include "RateGate.h"
#include "RecordingWriter.h"
#include "RunOnThread.h"
#include "StreamCounters.h"

#include <QByteArray>
#include <QElapsedTimer>
#include <QFile>
#include <mutex>
#include <QObject>
#include <QSerialPort>
#include <QString>
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

    // Recording runs on the session's own thread, where the packets are cut:
    // called from another thread, both wait there until it is done.
    // StartSaveData writes the file's header at once; each packet follows
    // as it is cut (and reaches the disk within about a second, synced by a
    // thread of the writer's own); EndSaveData writes the element count,
    // syncs the file and its folder and then reports
    // SendEndSaveDataSignal. When a write fails (a full disk) the recording
    // stops at once, keeps the packets written before, and says so through
    // SendMessageSignal; saveError tells the reason until the next start.
    bool StartSaveData(const QString& fileName);
    void EndSaveData();
    // Ends the recording without keeping it (the user said not to save it):
    // the file is left empty and no "File saved" is reported.
    void AbandonSaveData();
    // Packets and bytes the running recording has in its file so far; any thread.
    lidar::RecordingCounts recordingCounts() const { return recorder_.counts(); }
    // Times the packets cut next by when their bytes arrived, in ns of a
    // monotonic clock (0: unknown), for the revolution period of models
    // without GPS time. The session's reads do it themselves; a capture
    // played through a session gives its capture times.
    void setArrivalTime(quint64 ns) { frameAccounting.setArrivalNs(ns); }
    LidarParam GetLidarParam();
    // The scan geometry of the stream (ModelGeometry.h), read from the first
    // data packet and again from every 256th, so that a new motor speed
    // (a Wren's step follows it) shows within a second or so. Invalid until
    // a data packet has come. Any thread.
    lidar::ScanGeometry streamScanGeometry() const;
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
    // The health of each revolution the session completes, emitted on its
    // thread just before the frame itself (SendleLidarDataSignal), and also
    // while frames are not reported (connected 0); `totals` are the stream's
    // totals at that moment.
    void SendFrameHealthSignal(const lidar::FrameHealth& health, const lidar::StreamTotals& totals);

public:
    // Written on the session's thread (or before it starts), read on both.
    std::atomic<uint32_t> versionNumber{0};
    std::atomic<uint8_t> frameReceived{0};
    std::atomic<uint8_t> connected{0};
    // Set once a reply's parameters are in `param` (release); whoever sees
    // it set (acquire) reads them whole.
    std::atomic<uint8_t> replyReceived{0};
    QByteArray receiveBuffer;
    std::atomic<int32_t> connectionType{-1};
    lidar::LidarDataPoint_V4 currentFrame;
    lidar::LidarDataPoint_V4 lastFrame;
    // Both threads touch it: under paramMutex (see the helpers below).
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
    QFile saveFile;
    QString saveError;  // why the last recording failed; empty when it did not
    std::atomic<uint8_t> saving{0};
    // Running totals of the link since the session was made, read from the
    // user interface thread for the link status: datagrams (serial reads),
    // their bytes, and revolutions completed whether shown or not.
    std::atomic<quint64> datagramsReceived{0};
    std::atomic<quint64> bytesReceived{0};
    std::atomic<quint64> framesCompleted{0};
    // The stream's health totals: data packets, rejected pieces, skipped
    // bytes, replies, revolutions whole and incomplete, missing packets.
    lidar::StreamCounters streamCounters;

protected:
    // Every data packet passes here exactly as cut: it goes to the
    // recording while one runs, and now and then gives the stream's scan
    // geometry.
    void recordPacket(const char* data, int size)
    {
        streamCounters.addPacket();
        if ((dataPackets_++ & kGeometryEvery) == 0)
            noteScanGeometry(data, size);
        if (saving.load(std::memory_order_relaxed))
            recordPiece(data, size);
    }
    // A parameters reply: `fill` writes its fields into `param`, which is
    // then published through replyReceived. The frequency is sent again as
    // after every reply, but a flood of reply-shaped junk must not make the
    // session send commands and sleep without end: resends pass a rate gate
    // (a few at once, then two a second), replies beyond it only update the
    // parameters and the flag.
    template <typename Fill>
    void takeReply(Fill&& fill)
    {
        {
            std::lock_guard<std::mutex> lock(paramMutex);
            fill(param);
        }
        replyReceived.store(1, std::memory_order_release);
        streamCounters.addReply();
        if (replyResends_.allow(clock_.elapsed()))
            SetMotorFrequency(storedFrequency());
    }
    uint8_t storedFrequency() const;
    void storeFrequency(uint8_t frequency);
    // The header elements of a recording, as the model's descriptor has them.
    QVector<QByteArray> recordingHeader() const;
    // Ends a revolution: reports it while connected and shifts the early
    // points of the next revolution into the frame being built.
    void finishFrame();
    // The command senders' shared shape: send, sleep 100 ms, stop on a reply,
    // otherwise go on while the program-wide counter is below 3.
    void sendWithRetries(const QByteArray& packet, int& attempts);
    // Sends a packet, sleeps 20 ms and sends it again.
    void sendTwice(const QByteArray& packet);

    // Follows the frame placement: the health of each revolution.
    lidar::FrameAccounting frameAccounting;

    // A standard mutex rather than QMutex: its locking is visible to
    // ThreadSanitizer.
    mutable std::mutex paramMutex;

private slots:
    void readSerial();
    void readDatagrams();

private:
    // Times the packets about to be cut by their arrival.
    void noteArrival();
    bool startRecording(const QString& fileName);
    bool endRecording();
    void recordPiece(const char* data, int size);
    void noteScanGeometry(const char* data, int size);
    void writeRecordingAfterArrival();
    void recordingFailed();

    lidar::RecordingWriter recorder_{saveFile};
    QElapsedTimer clock_;
    lidar::RateGate replyResends_{3, 500};
    static constexpr uint32_t kGeometryEvery = 255;  // a mask: every 256th data packet
    uint32_t dataPackets_ = 0;                       // the session's thread only
    const lidar::ModelDescriptor* model_ = nullptr;  // the session's thread only
    bool modelLookedUp_ = false;
    lidar::ScanGeometry streamGeometry_;             // under paramMutex
};
