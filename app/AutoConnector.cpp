#include "AutoConnector.h"

#include "IniSettings.h"

#include <QCoreApplication>
#include <QProgressDialog>
#include <QSerialPortInfo>
#include <QWidget>

namespace {

class AutoConnectTexts {
    Q_DECLARE_TR_FUNCTIONS(AutoConnector)
public:
    static QString title() { return tr("Trying to connect the radar"); }
    static QString label() { return tr("wait..."); }
};

quint16 portValue(const IniSettings& settings, const char* key, quint16 fallback)
{
    bool ok = false;
    const uint value = settings.value(QString(), QLatin1String(key)).toUInt(&ok);
    return ok && value <= 0xFFFF ? quint16(value) : fallback;
}

}  // namespace

AutoConnectPlan AutoConnectPlan::fromSettings(const IniSettings& settings)
{
    AutoConnectPlan plan;
    plan.network.lidarIp = settings.value(QString(), QStringLiteral("lidar ip"), QStringLiteral("192.168.1.200"));
    plan.network.dataIp = settings.value(QString(), QStringLiteral("data ip"), QStringLiteral("192.168.1.200"));
    plan.network.lidarPort = portValue(settings, "lidar port", 2369);
    plan.network.dataPort = portValue(settings, "data port", 2368);
    for (const QString& model : settings.childValues(QStringLiteral("connect_type"))) {
        if (model.isEmpty())
            continue;
        plan.baudRates.insert(model, settings.value(model, QStringLiteral("default baud rate")).toInt());
    }
    return plan;
}

AutoConnector::AutoConnector(IConnectLiDAR& connector, PortLister ports)
    : m_connector(connector), m_ports(ports ? std::move(ports) : PortLister(&AutoConnector::systemSerialPorts))
{
}

QStringList AutoConnector::systemSerialPorts()
{
    QStringList names;
    for (const QSerialPortInfo& port : QSerialPortInfo::availablePorts())
        names << port.portName();
    return names;
}

SerialPortParam AutoConnector::serialLink(const QString& portName, int baudRate)
{
    SerialPortParam link;
    link.portName = portName;
    link.baudRate = baudRate;
    link.dataBits = 8;
    link.parity = 0;  // none
    link.stopBits = 1;
    link.flowControl = 0;
    return link;
}

AutoConnector::Outcome AutoConnector::run(const AutoConnectPlan& plan, QWidget* parent)
{
    QProgressDialog progress(parent);
    if (parent)
        progress.setFixedWidth(parent->width() / 5);
    progress.setWindowTitle(AutoConnectTexts::title());
    progress.setLabelText(AutoConnectTexts::label());
    progress.setRange(0, 0);  // a busy indicator: there is no telling how long
    progress.show();

    // Every attempt processes events for a while, so the Cancel button is
    // heard between them.
    const auto cancelled = [&progress] {
        QCoreApplication::processEvents();
        return progress.wasCanceled();
    };
    for (int pass = 0; pass < kPasses; ++pass) {
        for (auto model = plan.baudRates.cbegin(); model != plan.baudRates.cend(); ++model) {
            QCoreApplication::processEvents();
            if (m_connector.ConnectNetworkLidar(model.key(), plan.network))
                return Outcome::Connected;
            if (cancelled())
                return Outcome::Cancelled;
            for (const QString& port : m_ports()) {
                QCoreApplication::processEvents();
                if (m_connector.ConnectSerialLidar(model.key(), serialLink(port, model.value())))
                    return Outcome::Connected;
                if (cancelled())
                    return Outcome::Cancelled;
            }
        }
    }
    progress.close();
    return Outcome::Failed;
}
