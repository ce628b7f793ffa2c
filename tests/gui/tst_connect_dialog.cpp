// The connection dialog against a fake main window: what it offers per model,
// what it accepts as input, and what it hands over, saves and says on OK.

#include "IConnectLiDAR.h"
#include "IniSettings.h"
#include "SelectConnectType.h"
#include "UserMessages.h"

#include <QComboBox>
#include <QFile>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QStackedWidget>
#include <QTemporaryDir>
#include <QValidator>
#include <QtTest>

namespace {

struct FakeWindow : IConnectLiDAR {
    bool answer = false;
    QStringList calls;  // "network <model>" / "serial <model>"
    NetworkParam network;
    SerialPortParam serial;

    bool ConnectNetworkLidar(const QString& model, const NetworkParam& param) override
    {
        calls << "network " + model;
        network = param;
        return answer;
    }
    bool ConnectSerialLidar(const QString& model, const SerialPortParam& param) override
    {
        calls << "serial " + model;
        serial = param;
        return answer;
    }
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

const QByteArray kSettings = "LiDAR IP=127.0.0.1\n"
                             "Data IP=127.0.0.1\n"
                             "LiDAR Port=2369\n"
                             "Data Port=2368\n"
                             "\n"
                             "[connect_type]\n"
                             "c=Tern_Plus\n"
                             "a=Wren_Kite\n"
                             "b=Tern\n"
                             "\n"
                             "[Tern_Plus]\n"
                             "default baud rate=921600\n"
                             "\n"
                             "[Wren_Kite]\n"
                             "serial port function=true\n"
                             "network port function=false\n"
                             "default baud rate=230400\n"
                             "\n"
                             "[Tern]\n"
                             "serial port function=false\n"
                             "default baud rate=9600\n";

QString settingsFile(const QTemporaryDir& dir, const QByteArray& content = kSettings)
{
    const QString path = dir.filePath("connect_type.ini");
    QFile file(path);
    if (file.open(QIODevice::WriteOnly))
        file.write(content);
    return path;
}

}  // namespace

class ConnectDialogTest : public QObject {
    Q_OBJECT
private slots:
    void formAndModelList();
    void validators_data();
    void validators();
    void perModelTransportAndBaud_data();
    void perModelTransportAndBaud();
    void serialOk_data();
    void serialOk();
    void networkOk_data();
    void networkOk();
    void missingSettingsFile();
    void refreshAndCancel();
    void messagesGoThroughTheViewersHook();
};

void ConnectDialogTest::formAndModelList()
{
    QTemporaryDir dir;
    FakeWindow window;
    Dialog dialog(&window, nullptr, settingsFile(dir));

    QCOMPARE(dialog.windowTitle(), QString("Select the connection"));
    auto* models = dialog.get<QComboBox>("cob_lidar_type");
    QVERIFY(models);
    QStringList items;
    for (int i = 0; i < models->count(); ++i)
        items << models->itemText(i);
    QCOMPARE(items, QStringList({"Tern_Plus", "Wren_Kite", "Tern"}));  // file order, not key order
    QCOMPARE(models->currentText(), QString("Tern_Plus"));

    QVERIFY(dialog.get<QRadioButton>("rad_serial_port")->isChecked());
    QVERIFY(!dialog.get<QRadioButton>("rad_network")->isChecked());
    auto* pages = dialog.get<QStackedWidget>("stackedWidget");
    QCOMPARE(pages->currentWidget()->objectName(), QString("widget_serial_port"));
    QCOMPARE(pages->widget(1)->objectName(), QString("widget_newwork"));
    QCOMPARE(dialog.get<QComboBox>("cob_baud")->currentText(), QString("921600"));
    QCOMPARE(dialog.get<QComboBox>("cob_baud")->count(), 5);
    QCOMPARE(dialog.get<QComboBox>("cob_data_bits")->currentText(), QString("8"));
    QCOMPARE(dialog.get<QComboBox>("cob_stop_bits")->currentText(), QString("1"));
    QCOMPARE(dialog.get<QComboBox>("cob_parity")->currentText(), QString("NoParity"));
    QCOMPARE(dialog.get<QLineEdit>("led_lidar_ip")->text(), QString("127.0.0.1"));
    QCOMPARE(dialog.get<QLineEdit>("led_data_port")->text(), QString("2368"));
    for (const char* name : {"cob_portName", "btn_refresh", "btn_ok", "btn_cancel", "led_data_ip", "led_lidar_port"})
        QVERIFY2(dialog.findChild<QWidget*>(name), name);

    // The radio buttons switch the page.
    dialog.get<QRadioButton>("rad_network")->click();
    QCOMPARE(pages->currentIndex(), 1);
    dialog.get<QRadioButton>("rad_serial_port")->click();
    QCOMPARE(pages->currentIndex(), 0);
}

void ConnectDialogTest::validators_data()
{
    QTest::addColumn<QString>("edit");
    QTest::addColumn<QString>("input");
    QTest::addColumn<int>("state");
    const int ok = QValidator::Acceptable, partial = QValidator::Intermediate, bad = QValidator::Invalid;
    QTest::newRow("ip") << "led_lidar_ip" << "127.0.0.1" << ok;
    QTest::newRow("ip 255") << "led_data_ip" << "255.255.255.0" << ok;
    QTest::newRow("ip unfinished") << "led_data_ip" << "192.168." << partial;
    QTest::newRow("ip octet 256") << "led_lidar_ip" << "10.0.0.256" << bad;
    QTest::newRow("ip five octets") << "led_lidar_ip" << "1.2.3.4.5" << bad;
    QTest::newRow("ip letters") << "led_data_ip" << "localhost" << bad;
    QTest::newRow("port 0") << "led_lidar_port" << "0" << ok;
    QTest::newRow("port 65535") << "led_data_port" << "65535" << ok;
    QTest::newRow("port 65536") << "led_data_port" << "65536" << bad;
    QTest::newRow("port 70000") << "led_lidar_port" << "70000" << bad;
    QTest::newRow("port leading zero") << "led_lidar_port" << "01" << bad;
    QTest::newRow("port negative") << "led_data_port" << "-1" << bad;
    QTest::newRow("port empty") << "led_data_port" << "" << partial;
}

void ConnectDialogTest::validators()
{
    QFETCH(QString, edit);
    QFETCH(QString, input);
    QFETCH(int, state);
    QTemporaryDir dir;
    FakeWindow window;
    Dialog dialog(&window, nullptr, settingsFile(dir));
    auto* line = dialog.get<QLineEdit>(qPrintable(edit));
    QVERIFY(line && line->validator());
    QString text = input;
    int pos = text.size();
    QCOMPARE(int(line->validator()->validate(text, pos)), state);

    // Typing cannot produce a rejected text.
    line->clear();
    QTest::keyClicks(line, input);
    if (state == QValidator::Invalid)
        QVERIFY(line->text() != input);
    else
        QCOMPARE(line->text(), input);
}

void ConnectDialogTest::perModelTransportAndBaud_data()
{
    QTest::addColumn<QString>("model");
    QTest::addColumn<bool>("choice");   // radio buttons shown
    QTest::addColumn<int>("page");
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
    QTemporaryDir dir;
    FakeWindow window;
    Dialog dialog(&window, nullptr, settingsFile(dir));
    dialog.show();
    dialog.get<QComboBox>("cob_lidar_type")->setCurrentText(model);

    auto* serial = dialog.get<QRadioButton>("rad_serial_port");
    auto* network = dialog.get<QRadioButton>("rad_network");
    QCOMPARE(serial->isVisible(), choice);
    QCOMPARE(network->isVisible(), choice);
    QCOMPARE(dialog.get<QStackedWidget>("stackedWidget")->currentIndex(), page);
    QCOMPARE(dialog.get<QComboBox>("cob_baud")->currentText(), baud);

    // OK uses the link whose page is shown.
    dialog.get<QComboBox>("cob_portName")->addItem("ttyFAKE0");
    dialog.get<QPushButton>("btn_ok")->click();
    QCOMPARE(window.calls, QStringList{(page == 1 ? "network " : "serial ") + model});

    // Back to a model with both links: the choice is offered again.
    dialog.get<QComboBox>("cob_lidar_type")->setCurrentText("Tern_Plus");
    QVERIFY(serial->isVisible() && network->isVisible());
}

void ConnectDialogTest::serialOk_data()
{
    QTest::addColumn<QString>("port");
    QTest::addColumn<bool>("clearBaud");
    QTest::addColumn<int>("parityIndex");
    QTest::addColumn<bool>("answer");
    QTest::addColumn<int>("parity");  // handed over
    QTest::addColumn<QString>("message");
    QTest::newRow("no port") << "" << false << 0 << true << -1 << "information: Please select the radar port";
    QTest::newRow("no baud rate") << "ttyFAKE0" << true << 0 << true << -1
                                  << "information: Please select the serial baud rate";
    QTest::newRow("no parity, connected") << "ttyFAKE0" << false << 0 << true << 0 << "";
    QTest::newRow("odd parity, connected") << "ttyFAKE0" << false << 1 << true << 3 << "";
    QTest::newRow("even parity, refused") << "ttyFAKE0" << false << 2 << false << 2
                                          << "information: Lidar connection failed";
}

void ConnectDialogTest::serialOk()
{
    QFETCH(QString, port);
    QFETCH(bool, clearBaud);
    QFETCH(int, parityIndex);
    QFETCH(bool, answer);
    QFETCH(int, parity);
    QFETCH(QString, message);
    QTemporaryDir dir;
    const QString path = settingsFile(dir);
    FakeWindow window;
    window.answer = answer;
    Dialog dialog(&window, nullptr, path);
    dialog.show();

    auto* ports = dialog.get<QComboBox>("cob_portName");
    ports->clear();
    if (!port.isEmpty())
        ports->addItem(port);
    if (clearBaud)
        dialog.get<QComboBox>("cob_baud")->clear();
    dialog.get<QComboBox>("cob_data_bits")->setCurrentText("7");
    dialog.get<QComboBox>("cob_stop_bits")->setCurrentText("2");
    dialog.get<QComboBox>("cob_parity")->setCurrentIndex(parityIndex);
    dialog.get<QPushButton>("btn_ok")->click();

    QCOMPARE(dialog.messages, message.isEmpty() ? QStringList() : QStringList{message});
    if (parity < 0) {
        QVERIFY(window.calls.isEmpty());
        QVERIFY(dialog.isVisible());
        return;
    }
    QCOMPARE(window.calls, QStringList{"serial Tern_Plus"});
    QCOMPARE(window.serial.portName, port);
    QCOMPARE(window.serial.baudRate, 921600);
    QCOMPARE(window.serial.dataBits, 7);
    QCOMPARE(window.serial.stopBits, 2);
    QCOMPARE(window.serial.parity, parity);
    QCOMPARE(window.serial.flowControl, 0);
    QCOMPARE(dialog.isVisible(), !answer);  // closes on success only
}

void ConnectDialogTest::networkOk_data()
{
    QTest::addColumn<QString>("lidarPort");
    QTest::addColumn<QString>("dataPort");
    QTest::addColumn<bool>("answer");
    QTest::addColumn<int>("lidarPortNumber");
    QTest::addColumn<int>("dataPortNumber");
    QTest::newRow("refused") << "5000" << "5001" << false << 5000 << 5001;
    QTest::newRow("connected") << "0" << "65535" << true << 0 << 65535;
    // Texts set from the file bypass the validator: the numbers wrap at 16 bits.
    QTest::newRow("over 16 bits") << "70000" << "65536" << false << 4464 << 0;
}

void ConnectDialogTest::networkOk()
{
    QFETCH(QString, lidarPort);
    QFETCH(QString, dataPort);
    QFETCH(bool, answer);
    QFETCH(int, lidarPortNumber);
    QFETCH(int, dataPortNumber);
    QTemporaryDir dir;
    const QString path = settingsFile(dir);
    FakeWindow window;
    window.answer = answer;
    Dialog dialog(&window, nullptr, path);
    dialog.show();
    dialog.get<QComboBox>("cob_lidar_type")->setCurrentText("Tern");
    dialog.get<QRadioButton>("rad_network")->click();
    dialog.get<QLineEdit>("led_lidar_ip")->setText("127.0.0.2");
    dialog.get<QLineEdit>("led_data_ip")->setText("127.0.0.3");
    dialog.get<QLineEdit>("led_lidar_port")->setText(lidarPort);
    dialog.get<QLineEdit>("led_data_port")->setText(dataPort);
    dialog.get<QPushButton>("btn_ok")->click();

    QCOMPARE(window.calls, QStringList{"network Tern"});
    QCOMPARE(window.network.lidarIp, QString("127.0.0.2"));
    QCOMPARE(window.network.dataIp, QString("127.0.0.3"));
    QCOMPARE(int(window.network.lidarPort), lidarPortNumber);
    QCOMPARE(int(window.network.dataPort), dataPortNumber);
    QCOMPARE(dialog.isVisible(), !answer);
    QCOMPARE(dialog.messages,
             answer ? QStringList() : QStringList{"information: Lidar connection failed"});

    // Saved whatever the outcome, in place, readable under any spelling.
    const IniSettings settings(path);
    QCOMPARE(settings.value("", "lidar ip"), QString("127.0.0.2"));
    QCOMPARE(settings.value("", "DATA IP"), QString("127.0.0.3"));
    QCOMPARE(settings.value("", "lidar port"), lidarPort);
    QCOMPARE(settings.value("", "data port"), dataPort);
    QCOMPARE(settings.childKeys(""), QStringList({"LiDAR IP", "Data IP", "LiDAR Port", "Data Port"}));

    // A new dialog starts from the saved values.
    Dialog again(&window, nullptr, path);
    QCOMPARE(again.get<QLineEdit>("led_data_ip")->text(), QString("127.0.0.3"));
}

void ConnectDialogTest::missingSettingsFile()
{
    QTemporaryDir dir;
    FakeWindow window;
    Dialog dialog(&window, nullptr, dir.filePath("ini/connect_type.ini"));
    QCOMPARE(dialog.get<QComboBox>("cob_lidar_type")->count(), 0);
    QVERIFY(dialog.get<QRadioButton>("rad_serial_port")->isChecked());
    QCOMPARE(dialog.get<QComboBox>("cob_baud")->currentText(), QString("115200"));
    QVERIFY(dialog.get<QLineEdit>("led_lidar_ip")->text().isEmpty());
    QVERIFY(dialog.messages.isEmpty());
}

void ConnectDialogTest::refreshAndCancel()
{
    QTemporaryDir dir;
    FakeWindow window;
    Dialog dialog(&window, nullptr, settingsFile(dir));
    dialog.show();
    auto* ports = dialog.get<QComboBox>("cob_portName");
    ports->addItem("not-a-port");
    dialog.get<QPushButton>("btn_refresh")->click();
    QCOMPARE(ports->findText("not-a-port"), -1);

    dialog.get<QPushButton>("btn_cancel")->click();
    QVERIFY(!dialog.isVisible());
    QVERIFY(window.calls.isEmpty() && dialog.messages.isEmpty());
}

void ConnectDialogTest::messagesGoThroughTheViewersHook()
{
    QTemporaryDir dir;
    FakeWindow window;
    SelectConnectType dialog(&window, nullptr, settingsFile(dir));
    QStringList seen;
    const auto previous = usermessages::setHandler([&](QWidget* parent, const UserMessage& message) {
        seen << QString("%1 %2: %3").arg(parent == &dialog).arg(message.title, message.text);
        return QMessageBox::Ok;
    });
    dialog.findChild<QComboBox*>("cob_portName")->clear();
    dialog.findChild<QPushButton*>("btn_ok")->click();
    usermessages::setHandler(previous);
    QCOMPARE(seen, QStringList{"1 information: Please select the radar port"});
}

QTEST_MAIN(ConnectDialogTest)
#include "tst_connect_dialog.moc"
