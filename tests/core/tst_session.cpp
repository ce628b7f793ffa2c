// The live session over its two transports: loopback UDP and a
// pseudo-terminal standing in for a serial port.

#include "FrameCollector.h"
#include "LIdarFactory.h"
#include "LoopbackLidar.h"
#include "PacketBuilders.h"
#include "Tern.h"

#include <QSignalSpy>
#include <QNetworkDatagram>
#include <QUdpSocket>
#include <QtTest>

#include <atomic>
#include <thread>

using namespace testing;

namespace {

// Answers every 188-byte command with a Tern parameters reply, from its own
// thread, because GetLidarParam blocks the thread it is called on.
class ReplyingLidar {
public:
    explicit ReplyingLidar(const QByteArray& reply)
    {
        worker_ = std::thread([this, reply] {
            QUdpSocket socket;
            socket.bind(QHostAddress(QHostAddress::LocalHost), 0);
            port_ = socket.localPort();
            while (!stop_) {
                if (!socket.waitForReadyRead(20))
                    continue;
                while (socket.hasPendingDatagrams()) {
                    QNetworkDatagram d = socket.receiveDatagram();
                    if (d.data().size() == 188 && quint8(d.data()[184]) == 0x03) {
                        ++readRequests;
                        socket.writeDatagram(reply, d.senderAddress(), quint16(d.senderPort()));
                    }
                }
            }
        });
        while (port_ == 0)
            std::this_thread::yield();
    }
    ~ReplyingLidar()
    {
        stop_ = true;
        worker_.join();
    }
    quint16 port() const { return port_; }
    std::atomic<int> readRequests{0};

private:
    std::atomic<quint16> port_{0};
    std::atomic<bool> stop_{false};
    std::thread worker_;
};

std::shared_ptr<LidarAnalysis> connectedTern(quint16 lidarPort)
{
    auto session = LIdarFactory::GetInstance()->ChangeLidar("Tern");
    session->dataIp = session->lidarIp = "127.0.0.1";
    session->dataPort = freeUdpPort();
    session->lidarPort = lidarPort;
    emit session->SendConnectSignal(lidar::NetworkConnection);
    waitFor([&] { return session->connected == 1; });
    return session;
}

}  // namespace

class SessionTest : public QObject {
    Q_OBJECT
private slots:
    void freshSessionDefaults();
    void connectResetsBufferAndRejectsUnknownType();
    void udpFramesReachTheMainThreadAndPauseStopsThem();
    void commandsGoOnlyWhereTheConnectionTypeSays();
    void parametersRequestAgainstAnAnsweringLidar();
    void serialLinkOverPseudoTerminal();
    void cleanupTestCase() { LIdarFactory::GetInstance()->Shutdown(); }
};

void SessionTest::freshSessionDefaults()
{
    Tern session;
    QCOMPARE(session.connectionType.load(), -1);
    QCOMPARE(session.lidarPort, quint16(2369));
    QCOMPARE(session.dataPort, quint16(2368));
    QCOMPARE(session.lidarIp, QString("192.168.1.200"));
    QCOMPARE(session.dataIp, QString("192.168.1.200"));
    QCOMPARE(session.baudRate, 460800);
    QCOMPARE(session.dataBits, 8);
    QCOMPARE(session.parity, 0);
    QCOMPARE(session.stopBits, 1);
    QCOMPARE(session.flowControl, 0);
    QCOMPARE(session.currentFrame.motorSpeed, -1);

    // Disconnected: the default record comes back at once and nothing is sent.
    QSignalSpy sent(&session, &LidarAnalysis::SendDataToLidarSignal);
    const LidarParam p = session.GetLidarParam();
    QCOMPARE(int(p.frequency), 1);
    QCOMPARE(p.value1, -1);
    QCOMPARE(p.value2, 0);
    QVERIFY(p.text.isEmpty());
    QCOMPARE(sent.count(), 0);
}

void SessionTest::connectResetsBufferAndRejectsUnknownType()
{
    // Counts the parses: one per arrival of bytes, however often it connected.
    struct CountingTern : Tern {
        int parses = 0;
        void ParseLidarData() override { ++parses, Tern::ParseLidarData(); }
    } session;
    session.dataIp = session.lidarIp = "127.0.0.1";
    for (int round = 0; round < 3; ++round) {
        session.dataPort = freeUdpPort();
        session.receiveBuffer = QByteArray("\xA5\x5A stale", 8);
        session.frameReceived = 1;
        session.ConnectLidar(lidar::NetworkConnection);
        QVERIFY(session.receiveBuffer.isEmpty());
        QCOMPARE(int(session.frameReceived), 0);
        QCOMPARE(int(session.connected), 1);
        QCOMPARE(session.connectionType.load(), -1);  // the window sets it once frames arrive
        if (round < 2) {
            session.DisconnectLidar();
            QCOMPARE(int(session.connected), 0);
        }
    }
    LoopbackLidar lidar;
    lidar.send(ternRevolutions(1).first(), session.dataPort);
    QVERIFY(waitFor([&] { return session.parses > 0; }));
    QTest::qWait(50);
    QCOMPARE(session.parses, 1);
    session.DisconnectLidar();

    QSignalSpy messages(&session, &LidarAnalysis::SendMessageSignal);
    session.ConnectLidar(lidar::CONNECTION_TYPE(7));
    QCOMPARE(messages.count(), 1);
    QCOMPARE(messages.at(0).at(0).toString(), QString("Please set a valid connection status!"));
    QCOMPARE(int(session.connected), 0);
}

void SessionTest::udpFramesReachTheMainThreadAndPauseStopsThem()
{
    LoopbackLidar lidar;
    auto session = connectedTern(lidar.commandPort());
    QVERIFY(session->thread() != QThread::currentThread());
    FrameCollector collector(session.get());

    // Three revolutions: the second and third starts each end one.
    for (const QByteArray& packet : ternRevolutions(3))
        lidar.send(packet, session->dataPort);
    QVERIFY(waitFor([&] { return collector.frames.size() == 2; }));
    QCOMPARE(int(session->frameReceived), 1);
    for (const auto& frame : collector.frames) {
        QCOMPARE(frame.points.keys(), QList<int32_t>{0});
        QCOMPARE(frame.points[0].size(), size_t(24 * 41));  // the 41st word is dropped
        QCOMPARE(frame.motorSpeed, 2500000 / 4167);
    }

    // Paused: decoding goes on (frameReceived) but no frame is delivered.
    session->SetConnected(false);
    session->frameReceived = 0;
    for (const QByteArray& packet : ternRevolutions(2))
        lidar.send(packet, session->dataPort);
    QVERIFY(waitFor([&] { return session->frameReceived == 1; }));
    QTest::qWait(100);
    QCOMPARE(collector.frames.size(), 2);

    session->SetConnected(true);
    for (const QByteArray& packet : ternRevolutions(2))
        lidar.send(packet, session->dataPort);
    QVERIFY(waitFor([&] { return collector.frames.size() >= 3; }));
}

void SessionTest::commandsGoOnlyWhereTheConnectionTypeSays()
{
    LoopbackLidar lidar;
    auto session = connectedTern(lidar.commandPort());
    const QByteArray command = session->ReadParamCommand();

    // Connected but the type is still unknown: nothing is sent.
    emit session->SendDataToLidarSignal(command);
    QTest::qWait(100);
    QVERIFY(lidar.commands().isEmpty());

    session->connectionType = lidar::NetworkConnection;
    emit session->SendDataToLidarSignal(command);
    QVERIFY(waitFor([&] { return lidar.commands().size() == 1; }));
    QCOMPARE(lidar.commands().first(), command);
    QCOMPARE(lidar.commands().first().size(), 188);
}

void SessionTest::parametersRequestAgainstAnAnsweringLidar()
{
    ReplyingLidar lidar(ternReply({0x18, 5, 20, 1, 2, 3}, 12));
    auto session = connectedTern(lidar.port());
    session->connectionType = lidar::NetworkConnection;

    const LidarParam p = session->GetLidarParam();
    QCOMPARE(p.text, QString("2024.5.20-V1.2.3"));
    QCOMPARE(p.value1, 2);  // within three meters
    QVERIFY(lidar.readRequests >= 1 && lidar.readRequests < 5);
}

void SessionTest::serialLinkOverPseudoTerminal()
{
    PseudoTerminal pty;
    QVERIFY2(pty.isOpen(), "openpty failed");
    auto session = LIdarFactory::GetInstance()->ChangeLidar("Tern");
    session->dataIp = session->lidarIp = "127.0.0.1";
    session->portName = pty.slaveName();
    emit session->SendConnectSignal(lidar::SerialPortConnection);
    QVERIFY(waitFor([&] { return session->connected == 1; }));
    FrameCollector collector(session.get());

    // A byte stream with no datagram boundaries, cut at odd places.
    QByteArray stream;
    for (const QByteArray& packet : ternRevolutions(3))
        stream += packet;
    for (int at = 0; at < stream.size(); at += 333) {
        QVERIFY(pty.write(stream.mid(at, 333)));
        QTest::qWait(1);
    }
    // The previous azimuth is program-wide: the first packet may end a frame
    // left over from an earlier test.
    QVERIFY(waitFor([&] { return collector.frames.size() >= 2; }));
    QCOMPARE(collector.frames.last().points[0].size(), size_t(24 * 41));

    session->connectionType = lidar::SerialPortConnection;
    pty.readAvailable();
    emit session->SendDataToLidarSignal(session->ReadParamCommand());
    QByteArray written;
    QVERIFY(waitFor([&] { written += pty.readAvailable(); return written.size() >= 188; }));
    QCOMPARE(written, session->ReadParamCommand());

    emit session->SendDisConnectSignal();
    QVERIFY(waitFor([&] { return session->connected == 0; }));
}

QTEST_MAIN(SessionTest)
#include "tst_session.moc"
