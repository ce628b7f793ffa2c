#include "SelectConnectType.h"
#include "ui_SelectConnectType.h"

#include "UserMessages.h"

#include <QEvent>
#include <QRegExpValidator>
#include <QSerialPort>
#include <QSerialPortInfo>
#include <QShowEvent>

namespace {

const char* const kIpPattern =
    "\\b(?:(?:25[0-5]|2[0-4][0-9]|[01]?[0-9][0-9]?)\\.){3}(?:25[0-5]|2[0-4][0-9]|[01]?[0-9][0-9]?)\\b";
// 0 to 65535, no leading zeros.
const char* const kPortPattern =
    "^(?:[0-9]|[1-9][0-9]{1,3}|[1-5][0-9]{4}|6[0-4][0-9]{3}|65[0-4][0-9]{2}|655[0-2][0-9]|6553[0-5])$";

const char* const kModelGroup = "connect_type";
const char* const kLidarIpKey = "LiDAR IP";
const char* const kDataIpKey = "Data IP";
const char* const kLidarPortKey = "LiDAR Port";
const char* const kDataPortKey = "Data Port";

// cob_parity lists none, odd, even; QSerialPort numbers them 0, 3, 2.
int parityForIndex(int index)
{
    switch (index) {
    case 1: return QSerialPort::OddParity;
    case 2: return QSerialPort::EvenParity;
    default: return QSerialPort::NoParity;
    }
}

}  // namespace

SelectConnectType::SelectConnectType(IConnectLiDAR* connector, QWidget* parent, const QString& settingsPath)
    : QDialog(parent), ui(new Ui::SelectConnectType), m_connector(connector), m_settings(settingsPath)
{
    ui->setupUi(this);

    auto* ipValidator = new QRegExpValidator(QRegExp(QLatin1String(kIpPattern)), this);
    auto* portValidator = new QRegExpValidator(QRegExp(QLatin1String(kPortPattern)), this);
    ui->led_lidar_ip->setValidator(ipValidator);
    ui->led_data_ip->setValidator(ipValidator);
    ui->led_lidar_port->setValidator(portValidator);
    ui->led_data_port->setValidator(portValidator);

    ui->cob_lidar_type->addItems(m_settings.childValues(QLatin1String(kModelGroup)));
    loadModelSettings(ui->cob_lidar_type->currentText());
    setWindowTitle(tr("Select the connection"));
    refreshPorts();

    connect(ui->btn_ok, &QPushButton::clicked, this, &SelectConnectType::onOkClicked);
    connect(ui->btn_refresh, &QPushButton::clicked, this, &SelectConnectType::refreshPorts);
    connect(ui->rad_serial_port, &QRadioButton::clicked, this, [this] { ui->stackedWidget->setCurrentIndex(0); });
    connect(ui->rad_network, &QRadioButton::clicked, this, [this] { ui->stackedWidget->setCurrentIndex(1); });
    connect(ui->cob_lidar_type, &QComboBox::currentTextChanged, this, &SelectConnectType::loadModelSettings);
    connect(ui->btn_cancel, &QPushButton::clicked, this, &QDialog::close);
}

SelectConnectType::~SelectConnectType() = default;

void SelectConnectType::refreshPorts()
{
    // The port the user picked stays picked while it is still there.
    const QString picked = ui->cob_portName->currentText();
    ui->cob_portName->clear();
    for (const QSerialPortInfo& info : QSerialPortInfo::availablePorts())
        ui->cob_portName->addItem(info.portName());
    const int index = ui->cob_portName->findText(picked);
    if (index >= 0)
        ui->cob_portName->setCurrentIndex(index);
}

void SelectConnectType::loadModelSettings(const QString& model)
{
    // A model that lacks one of the two links offers no choice. The page and
    // the checked radio button go together so that OK uses the page shown.
    const bool noSerial = m_settings.value(model, QStringLiteral("serial port function")) == QLatin1String("false");
    const bool noNetwork = m_settings.value(model, QStringLiteral("network port function")) == QLatin1String("false");
    ui->rad_serial_port->setVisible(!noSerial && !noNetwork);
    ui->rad_network->setVisible(!noSerial && !noNetwork);
    if (noSerial) {
        ui->rad_serial_port->setChecked(true);
        ui->stackedWidget->setCurrentIndex(0);
    }
    if (noNetwork) {
        ui->rad_network->setChecked(true);
        ui->stackedWidget->setCurrentIndex(1);
    }

    ui->cob_baud->setCurrentText(m_settings.value(model, QStringLiteral("default baud rate")));

    ui->led_lidar_ip->setText(m_settings.value(QString(), QLatin1String(kLidarIpKey)));
    ui->led_data_ip->setText(m_settings.value(QString(), QLatin1String(kDataIpKey)));
    ui->led_lidar_port->setText(m_settings.value(QString(), QLatin1String(kLidarPortKey)));
    ui->led_data_port->setText(m_settings.value(QString(), QLatin1String(kDataPortKey)));
}

void SelectConnectType::onOkClicked()
{
    const QString model = ui->cob_lidar_type->currentText();
    bool connected = false;

    if (ui->rad_serial_port->isChecked()) {
        if (ui->cob_portName->currentText().isEmpty()) {
            showInformation(tr("information"), tr("Please select the radar port"));
            return;
        }
        m_serialParam.portName = ui->cob_portName->currentText();
        if (ui->cob_baud->currentText().isEmpty()) {
            showInformation(tr("information"), tr("Please select the serial baud rate"));
            return;
        }
        m_serialParam.baudRate = ui->cob_baud->currentText().toInt();
        m_serialParam.dataBits = ui->cob_data_bits->currentText().toInt();
        m_serialParam.stopBits = ui->cob_stop_bits->currentText().toInt();
        m_serialParam.parity = parityForIndex(ui->cob_parity->currentIndex());
        connected = m_connector && m_connector->ConnectSerialLidar(model, m_serialParam);
    } else if (ui->rad_network->isChecked()) {
        m_networkParam.lidarIp = ui->led_lidar_ip->text();
        m_networkParam.dataIp = ui->led_data_ip->text();
        m_networkParam.lidarPort = static_cast<uint16_t>(ui->led_lidar_port->text().toUInt());
        m_networkParam.dataPort = static_cast<uint16_t>(ui->led_data_port->text().toUInt());
        // Saved before connecting: what the user typed survives a failed attempt.
        m_settings.setValue(QString(), QLatin1String(kLidarIpKey), ui->led_lidar_ip->text());
        m_settings.setValue(QString(), QLatin1String(kDataIpKey), ui->led_data_ip->text());
        m_settings.setValue(QString(), QLatin1String(kLidarPortKey), ui->led_lidar_port->text());
        m_settings.setValue(QString(), QLatin1String(kDataPortKey), ui->led_data_port->text());
        connected = m_connector && m_connector->ConnectNetworkLidar(model, m_networkParam);
    }

    if (connected)
        accept();
    else
        showInformation(tr("information"), tr("Lidar connection failed"));
}

void SelectConnectType::showInformation(const QString& title, const QString& text)
{
    usermessages::information(this, title, text);
}

void SelectConnectType::showEvent(QShowEvent* event)
{
    // The dialog is kept between connections: list the ports of now.
    if (!event->spontaneous())
        refreshPorts();
    QDialog::showEvent(event);
}

void SelectConnectType::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::LanguageChange) {
        ui->retranslateUi(this);
        setWindowTitle(tr("Select the connection"));
    }
    QDialog::changeEvent(event);
}
