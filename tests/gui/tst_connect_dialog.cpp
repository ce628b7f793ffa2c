// The connection dialog against a fake main window: what it offers per model,
// what it accepts as input, and what it hands over, saves and says on OK.

#include "IConnectLiDAR.h"
#include "IniSettings.h"
#include "SelectConnectType.h"

#include <QComboBox>
#include <QFile>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QStackedWidget>
#include <QTemporaryDir>
#include <QValidator>
#include <QtTest>
#include <memory>

namespace {

struct FakeWindow : IConnectLiDAR {
    bool answer = false;
    QStringList calls;  // "network <model>" / "serial <model>"
    NetworkParam network;
    SerialPortParam serial;
    bool ConnectNetworkLidar(const QString& model, const NetworkParam& p) override { network = p; return record("network " + model); }
    bool ConnectSerialLidar(const QString& model, const SerialPortParam& p) override { serial = p; return record("serial " + model); }
    bool record(const QString& call) { calls << call; return answer; }
};

class Dialog : public SelectConnectType {
public:
    using SelectConnectType::SelectConnectType;
    QStringList messages;  // "title: text"
    template <typename T>
    T* get(const char* name) { return findChild<T*>(QLatin1String(name)); }

protected:
    void showInformation(const QString& title, const QString& text) override { messages << title + ": " + text; }
};

// Models listed out of key order; Tern's baud rate is not one the form offers.
const QByteArray kSettings = "LiDAR IP=127.0.0.1\nData IP=127.0.0.1\nLiDAR Port=2369\nData Port=2368\n"
                             "[connect_type]\nc=Tern_Plus\na=Wren_Kite\nb=Tern\n"
                             "[Tern_Plus]\ndefault baud rate=921600\n"
                             "[Wren_Kite]\nserial port function=true\nnetwork port function=false\n"
                             "default baud rate=230400\n"
                             "[Tern]\nserial port function=false\ndefault baud rate=9600\n";

}  // namespace

class ConnectDialogTest : public QObject {
    Q_OBJECT
private slots:
    void init();
    void validators_data();
    void validators();
    void perModelTransportAndBaud_data();
    void perModelTransportAndBaud();
    void serialOk_data();
    void serialOk();
    void networkOk_data();
    void networkOk();

private:
    QTemporaryDir dir;
    QString path;
    FakeWindow window;
    std::unique_ptr<Dialog> dialog;
};

void ConnectDialogTest::init()
{
    QFile file(path = dir.filePath("connect_type.ini"));
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write(kSettings) == kSettings.size());
    file.close();
    window = FakeWindow();
    dialog = std::make_unique<Dialog>(&window, nullptr, path);
    dialog->show();
}

void ConnectDialogTest::validators_data()
{
    QTest::addColumn<QString>("edit");
    QTest::addColumn<QString>("input");
    QTest::addColumn<int>("state");
    const int ok = QValidator::Acceptable, partial = QValidator::Intermediate, bad = QValidator::Invalid;
    QTest::newRow("ip") << "led_lidar_ip" << "255.255.255.0" << ok;
    QTest::newRow("ip unfinished") << "led_data_ip" << "192.168." << partial;
    QTest::newRow("ip octet 256") << "led_lidar_ip" << "10.0.0.256" << bad;
    QTest::newRow("port 65535") << "led_data_port" << "65535" << ok;
    QTest::newRow("port 65536") << "led_lidar_port" << "65536" << bad;
    QTest::newRow("port leading zero") << "led_lidar_port" << "01" << bad;
}

void ConnectDialogTest::validators()
{
    QFETCH(QString, edit);
    QFETCH(QString, input);
    QFETCH(int, state);
    auto* line = dialog->get<QLineEdit>(qPrintable(edit));
    int pos = input.size();
    QCOMPARE(int(line->validator()->validate(input, pos)), state);
}

void ConnectDialogTest::perModelTransportAndBaud_data()
{
    QTest::addColumn<QString>("model");
    QTest::addColumn<bool>("choice");  // radio buttons shown
    QTest::addColumn<int>("page");     // 0 serial, 1 network
    QTest::addColumn<QString>("baud");
    QTest::newRow("both links") << "Tern_Plus" << true << 0 << "921600";
    QTest::newRow("network function false") << "Wren_Kite" << false << 1 << "230400";
    QTest::newRow("serial function false, baud not offered") << "Tern" << false << 0 << "921600";
}

void ConnectDialogTest::perModelTransportAndBaud()
{
    QFETCH(QString, model);
    QFETCH(bool, choice);
    QFETCH(int, page);
    QFETCH(QString, baud);
    auto* models = dialog->get<QComboBox>("cob_lidar_type");
    QStringList items;
    for (int i = 0; i < models->count(); ++i)
        items << models->itemText(i);
    QCOMPARE(items.join(' '), QString("Tern_Plus Wren_Kite Tern"));  // file order, not key order

    models->setCurrentText(model);
    QCOMPARE(dialog->get<QRadioButton>("rad_serial_port")->isVisible(), choice);
    QCOMPARE(dialog->get<QRadioButton>("rad_network")->isVisible(), choice);
    QCOMPARE(dialog->get<QStackedWidget>("stackedWidget")->currentIndex(), page);
    QCOMPARE(dialog->get<QComboBox>("cob_baud")->currentText(), baud);
    // OK uses the link whose page is shown.
    dialog->get<QComboBox>("cob_portName")->addItem("ttyFAKE0");
    dialog->get<QPushButton>("btn_ok")->click();
    QCOMPARE(window.calls, QStringList{(page == 1 ? "network " : "serial ") + model});
}

void ConnectDialogTest::serialOk_data()
{
    QTest::addColumn<int>("parityIndex");
    QTest::addColumn<int>("parity");  // handed over, -1: not called
    QTest::addColumn<QString>("message");  // none: the link is accepted
    QTest::newRow("no port") << 0 << -1 << "information: Please select the radar port";
    QTest::newRow("no baud rate") << 0 << -1 << "information: Please select the serial baud rate";
    QTest::newRow("no parity, connected") << 0 << 0 << "";
    QTest::newRow("odd parity, connected") << 1 << 3 << "";
    QTest::newRow("even parity, refused") << 2 << 2 << "information: Lidar connection failed";
}

void ConnectDialogTest::serialOk()
{
    QFETCH(int, parityIndex);
    QFETCH(int, parity);
    QFETCH(QString, message);
    const QByteArray tag = QTest::currentDataTag();
    window.answer = message.isEmpty();
    dialog->get<QComboBox>("cob_portName")->clear();
    if (tag != "no port")
        dialog->get<QComboBox>("cob_portName")->addItem("ttyFAKE0");
    if (tag == "no baud rate")
        dialog->get<QComboBox>("cob_baud")->clear();
    dialog->get<QComboBox>("cob_data_bits")->setCurrentText("7");
    dialog->get<QComboBox>("cob_stop_bits")->setCurrentText("2");
    dialog->get<QComboBox>("cob_parity")->setCurrentIndex(parityIndex);
    dialog->get<QPushButton>("btn_ok")->click();

    QCOMPARE(dialog->messages.join(""), message);
    QCOMPARE(dialog->isVisible(), !message.isEmpty());  // closes on success only
    QCOMPARE(window.calls.size(), parity < 0 ? 0 : 1);
    const auto& s = window.serial;
    if (parity >= 0)
        QCOMPARE(s.portName + QString(" %1 %2 %3 %4 %5").arg(s.baudRate).arg(s.dataBits).arg(s.stopBits).arg(s.parity).arg(s.flowControl),
                 QString("ttyFAKE0 921600 7 2 %1 0").arg(parity));
}

void ConnectDialogTest::networkOk_data()
{
    QTest::addColumn<QString>("ports");  // lidar and data port texts
    QTest::addColumn<QString>("handedOver");
    QTest::addColumn<bool>("answer");
    QTest::newRow("refused") << "5000 65535" << "5000 65535" << false;
    QTest::newRow("connected") << "0 2368" << "0 2368" << true;
    // Texts set from the file bypass the validator: the numbers wrap at 16 bits.
    QTest::newRow("over 16 bits") << "70000 65536" << "4464 0" << false;
}

void ConnectDialogTest::networkOk()
{
    QFETCH(QString, ports);
    QFETCH(QString, handedOver);
    QFETCH(bool, answer);
    window.answer = answer;
    dialog->get<QComboBox>("cob_lidar_type")->setCurrentText("Tern");
    dialog->get<QRadioButton>("rad_network")->click();
    dialog->get<QLineEdit>("led_lidar_ip")->setText("127.0.0.2");
    dialog->get<QLineEdit>("led_data_ip")->setText("127.0.0.3");
    dialog->get<QLineEdit>("led_lidar_port")->setText(ports.section(' ', 0, 0));
    dialog->get<QLineEdit>("led_data_port")->setText(ports.section(' ', 1));
    dialog->get<QPushButton>("btn_ok")->click();

    const NetworkParam& n = window.network;
    QCOMPARE(window.calls, QStringList{"network Tern"});
    QCOMPARE(QStringList({n.lidarIp, n.dataIp, QString("%1 %2").arg(n.lidarPort).arg(n.dataPort)}),
             QStringList({"127.0.0.2", "127.0.0.3", handedOver}));
    QCOMPARE(dialog->isVisible(), !answer);
    QCOMPARE(dialog->messages.join(""), answer ? "" : "information: Lidar connection failed");

    // Saved whatever the outcome, in place.
    const IniSettings settings(path);
    QCOMPARE(settings.childKeys(""), QStringList({"LiDAR IP", "Data IP", "LiDAR Port", "Data Port"}));
    QCOMPARE(settings.childValues("").join(' '), "127.0.0.2 127.0.0.3 " + ports);
}

QTEST_MAIN(ConnectDialogTest)
#include "tst_connect_dialog.moc"
