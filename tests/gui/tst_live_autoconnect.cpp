// Automatic connection on its own, against a fake window: what it reads
// from the settings file, the order in which it tries models, links and
// ports, where it stops, how Cancel ends it, and its progress dialog.

#include "AutoConnector.h"
#include "IniSettings.h"

#include <QApplication>
#include <QFile>
#include <QProgressDialog>
#include <QTemporaryDir>
#include <QtTest>
#include <functional>

namespace {

// Stands in for the main window. Each attempt is logged as
// "net <model> <lidarIp>:<lidarPort>/<dataIp>:<dataPort>" or
// "serial <model> <port> <baud> <data bits><parity><stop bits> <flow>".
struct FakeWindow : IConnectLiDAR {
    QStringList attempts;
    int succeedAt = -1;                 // 1-based attempt that connects; -1: none
    std::function<void(int)> onAttempt; // runs during attempt n, as a real wait would

    bool ConnectNetworkLidar(const QString& model, const NetworkParam& p) override
    {
        attempts << QStringLiteral("net %1 %2:%3/%4:%5").arg(model, p.lidarIp).arg(p.lidarPort).arg(p.dataIp).arg(p.dataPort);
        return answer();
    }
    bool ConnectSerialLidar(const QString& model, const SerialPortParam& p) override
    {
        attempts << QStringLiteral("serial %1 %2 %3 %4%5%6 %7")
                        .arg(model, p.portName)
                        .arg(p.baudRate)
                        .arg(p.dataBits)
                        .arg(p.parity)
                        .arg(p.stopBits)
                        .arg(p.flowControl);
        return answer();
    }

private:
    bool answer()
    {
        if (onAttempt)
            onAttempt(attempts.size());
        return attempts.size() == succeedAt;
    }
};

QString writeSettings(const QTemporaryDir& dir, const QByteArray& text)
{
    const QString path = dir.filePath(QStringLiteral("connect_type.ini"));
    QFile file(path);
    if (file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        file.write(text);
    return path;
}

QProgressDialog* progressOf(QWidget* parent)
{
    return parent->findChild<QProgressDialog*>();
}

}  // namespace

class AutoConnectTest : public QObject {
    Q_OBJECT
private slots:
    void planFromSettings_data();
    void planFromSettings();
    void triesEveryModelAndPortTwice();
    void stopsAtTheFirstConnection_data();
    void stopsAtTheFirstConnection();
    void cancelEndsSilently_data();
    void cancelEndsSilently();

private:
    QTemporaryDir m_dir;
};

void AutoConnectTest::planFromSettings_data()
{
    QTest::addColumn<QByteArray>("settings");
    QTest::addColumn<QString>("network");  // lidarIp:lidarPort/dataIp:dataPort
    QTest::addColumn<QString>("models");   // name=baud, in the order they are tried

    QTest::newRow("keys in any case, models by name, listed twice tried once")
        << QByteArray("LiDAR IP=127.0.0.1\nData IP=127.0.0.2\nLiDAR Port=4001\nDATA PORT=4002\n"
                      "[connect_type]\nm1=Wren_Plus\nm2=Tern\nm3=Wren_Kite\nm4=Tern\n"
                      "[Tern]\ndefault baud rate=230400\n[Wren_Plus]\nDefault Baud Rate=460800\n")
        << "127.0.0.1:4001/127.0.0.2:4002"
        << "Tern=230400 Wren_Kite=0 Wren_Plus=460800";
    QTest::newRow("top-level keys missing: the lidar's defaults")
        << QByteArray("[connect_type]\nx=Tern_P\n[Tern_P]\ndefault baud rate=921600\n")
        << "192.168.1.200:2369/192.168.1.200:2368"
        << "Tern_P=921600";
    QTest::newRow("unreadable port: its default")
        << QByteArray("lidar port=sixty\ndata port=70000\nlidar ip=127.0.0.1\ndata ip=127.0.0.1\n[connect_type]\n")
        << "127.0.0.1:2369/127.0.0.1:2368"
        << "";
    QTest::newRow("no connect_type group: nothing to try")
        << QByteArray("lidar ip=127.0.0.1\n[Tern]\ndefault baud rate=230400\n")
        << "127.0.0.1:2369/192.168.1.200:2368"
        << "";
}

void AutoConnectTest::planFromSettings()
{
    QFETCH(QByteArray, settings);
    QFETCH(QString, network);
    QFETCH(QString, models);
    const AutoConnectPlan plan = AutoConnectPlan::fromSettings(IniSettings(writeSettings(m_dir, settings)));
    QCOMPARE(QStringLiteral("%1:%2/%3:%4")
                 .arg(plan.network.lidarIp)
                 .arg(plan.network.lidarPort)
                 .arg(plan.network.dataIp)
                 .arg(plan.network.dataPort),
             network);
    QStringList listed;
    for (auto it = plan.baudRates.cbegin(); it != plan.baudRates.cend(); ++it)
        listed << QStringLiteral("%1=%2").arg(it.key()).arg(it.value());
    QCOMPARE(listed.join(' '), models);
}

void AutoConnectTest::triesEveryModelAndPortTwice()
{
    QWidget parent;
    parent.resize(1003, 600);
    parent.show();
    AutoConnectPlan plan;
    plan.network.lidarIp = plan.network.dataIp = QStringLiteral("127.0.0.1");
    plan.baudRates = {{QStringLiteral("Wren_Plus"), 460800}, {QStringLiteral("Tern"), 230400}};

    FakeWindow window;
    QString title, label;
    int width = 0, minimum = -1, maximum = -1;
    bool visible = false;
    window.onAttempt = [&](int) {
        if (QProgressDialog* progress = progressOf(&parent)) {
            title = progress->windowTitle();
            label = progress->labelText();
            width = progress->width();
            minimum = progress->minimum();
            maximum = progress->maximum();
            visible = progress->isVisible();
        }
    };
    int listings = 0;
    AutoConnector connector(window, [&listings] {
        ++listings;
        return QStringList{"ttyA", "ttyB"};
    });
    QCOMPARE(connector.run(plan, &parent), AutoConnector::Outcome::Failed);

    const QStringList onePass{
        "net Tern 127.0.0.1:2369/127.0.0.1:2368",
        "serial Tern ttyA 230400 801 0",
        "serial Tern ttyB 230400 801 0",
        "net Wren_Plus 127.0.0.1:2369/127.0.0.1:2368",
        "serial Wren_Plus ttyA 460800 801 0",
        "serial Wren_Plus ttyB 460800 801 0",
    };
    QCOMPARE(window.attempts, onePass + onePass);
    QVERIFY(listings >= 2);  // the ports are asked for afresh, not once for all time

    QCOMPARE(title, QStringLiteral("Trying to connect the radar"));
    QCOMPARE(label, QStringLiteral("wait..."));
    QCOMPARE(width, 1003 / 5);
    QCOMPARE(minimum, 0);
    QCOMPARE(maximum, 0);  // busy indicator
    QVERIFY(visible);
    QVERIFY(!progressOf(&parent) || !progressOf(&parent)->isVisible());
}

void AutoConnectTest::stopsAtTheFirstConnection_data()
{
    QTest::addColumn<int>("succeedAt");
    QTest::addColumn<QString>("last");
    // Models Tern and Wren_Kite, one port: four attempts a pass.
    QTest::newRow("first network attempt") << 1 << "net Tern 127.0.0.1:2369/127.0.0.1:2368";
    QTest::newRow("serial port of the first model") << 2 << "serial Tern ttyS9 115200 801 0";
    QTest::newRow("second model over the network") << 3 << "net Wren_Kite 127.0.0.1:2369/127.0.0.1:2368";
    QTest::newRow("second pass") << 6 << "serial Tern ttyS9 115200 801 0";
}

void AutoConnectTest::stopsAtTheFirstConnection()
{
    QFETCH(int, succeedAt);
    QFETCH(QString, last);
    QWidget parent;
    AutoConnectPlan plan;
    plan.network.lidarIp = plan.network.dataIp = QStringLiteral("127.0.0.1");
    plan.baudRates = {{QStringLiteral("Wren_Kite"), 230400}, {QStringLiteral("Tern"), 115200}};
    FakeWindow window;
    window.succeedAt = succeedAt;
    AutoConnector connector(window, [] { return QStringList{"ttyS9"}; });
    QCOMPARE(connector.run(plan, &parent), AutoConnector::Outcome::Connected);
    QCOMPARE(window.attempts.size(), succeedAt);
    QCOMPARE(window.attempts.last(), last);
    QVERIFY(!progressOf(&parent) || !progressOf(&parent)->isVisible());
}

void AutoConnectTest::cancelEndsSilently_data()
{
    QTest::addColumn<int>("cancelDuring");
    QTest::addColumn<int>("attempts");
    QTest::newRow("during a network attempt") << 1 << 1;
    QTest::newRow("during a serial attempt") << 2 << 2;
    QTest::newRow("during the second pass") << 4 << 4;
}

void AutoConnectTest::cancelEndsSilently()
{
    QFETCH(int, cancelDuring);
    QFETCH(int, attempts);
    QWidget parent;
    AutoConnectPlan plan;
    plan.network.lidarIp = plan.network.dataIp = QStringLiteral("127.0.0.1");
    plan.baudRates = {{QStringLiteral("Tern"), 230400}};
    FakeWindow window;
    // The user presses Cancel while an attempt is waiting for frames.
    window.onAttempt = [&](int n) {
        if (n == cancelDuring)
            progressOf(&parent)->cancel();
    };
    AutoConnector connector(window, [] { return QStringList{"ttyA", "ttyB"}; });
    QCOMPARE(connector.run(plan, &parent), AutoConnector::Outcome::Cancelled);
    QCOMPARE(window.attempts.size(), attempts);
}

QTEST_MAIN(AutoConnectTest)
#include "tst_live_autoconnect.moc"
