#include "DeviceSettingsPanel.h"

#include "GPSTest.h"
#include "SwitchButton.h"

#include <QAbstractButton>
#include <QComboBox>

namespace {

// Keys of a model's settings group, spelled as the file spells them.
const QString kGpsTestKey = QStringLiteral("GPS test function");
const QString kMotorSwitchKey = QStringLiteral("motor on-off switch function");
const QString kFilterKey = QStringLiteral("lidar filter function");
const QString kFrequencyKey = QStringLiteral("motor frequenc function");

bool isConnected(const LidarAnalysis* session)
{
    return session && session->GetConnectionType() != -1;
}

}  // namespace

DeviceSettingsPanel::DeviceSettingsPanel(const Controls& controls, QObject* parent)
    : QObject(parent), m_controls(controls)
{
}

DeviceSettingsPanel::~DeviceSettingsPanel()
{
    for (const QMetaObject::Connection& connection : m_connections)
        disconnect(connection);
}

void DeviceSettingsPanel::configure(const QString& group, const LidarParam& param, const IniSettings& settings)
{
    const auto read = [&](const QString& key) { return settings.value(group, key); };

    m_controls.gpsTestButton->setEnabled(read(kGpsTestKey) == QLatin1String("true"));
    m_controls.motorSwitch->setEnabled(read(kMotorSwitchKey) == QLatin1String("true"));

    // Only the number of filter entries counts, never their texts.
    QComboBox* filter = m_controls.filter;
    filter->clear();
    const QString filters = read(kFilterKey);
    if (filters.isEmpty()) {
        filter->setEnabled(false);
    } else {
        filter->setEnabled(true);
        const int modes = filters.split(QLatin1Char('/')).size();
        if (modes == 3 || modes == 2) {
            filter->addItem(tr("Normal filtering"));
            filter->addItem(tr("No filtering"));
            if (modes == 3)
                filter->addItem(tr("Within three meters"));
            filter->setCurrentIndex(param.value1);
        } else {
            // Left enabled on purpose, with nothing chosen.
            filter->addItem(tr("Cannot be set"));
            filter->setEditable(false);
        }
    }

    QComboBox* frequency = m_controls.frequency;
    frequency->clear();
    const QString frequencies = read(kFrequencyKey);
    if (frequencies != QLatin1String("false")) {
        frequency->setEnabled(true);
        frequency->addItems(frequencies.split(QLatin1Char('_')));
        frequency->setCurrentText(QString::number(param.value2));
    } else {
        frequency->addItem(tr("Cannot be set"));
        frequency->setEnabled(false);
    }
}

void DeviceSettingsPanel::bindSession(const std::shared_ptr<LidarAnalysis>& session)
{
    for (const QMetaObject::Connection& connection : m_connections)
        disconnect(connection);
    m_connections.clear();
    m_session = session;
    LidarAnalysis* s = session.get();
    if (!s)
        return;

    // The session is the context: these run in the session's thread.
    m_connections << connect(m_controls.motorSwitch, &SwitchButton::toggled, s, [s](bool checked) {
        if (isConnected(s))
            s->SetMotorFrequency(checked ? 1 : 0);
    });
    m_connections << connect(m_controls.filter, QOverload<int>::of(&QComboBox::activated), s, [s](int index) {
        if (isConnected(s))
            s->SetLidarFilter(index);
    });
    // This one runs here, on the user interface thread.
    m_connections << connect(m_controls.frequency, &QComboBox::textActivated, this,
                             &DeviceSettingsPanel::sendFrequency);
    m_connections << connect(s, &LidarAnalysis::SendGPSTimeData, gpsTest(), &GPSTest::SetData);
}

void DeviceSettingsPanel::sendFrequency(const QString& text)
{
    const std::shared_ptr<LidarAnalysis> session = m_session.lock();
    if (!isConnected(session.get()))
        return;
    bool ok = false;
    const int value = text.toInt(&ok, 10);
    session->SetDeviceParam(static_cast<quint8>(ok ? value & 0xFF : 0));
}

GPSTest* DeviceSettingsPanel::gpsTest()
{
    if (!m_gpsTest)
        m_gpsTest = std::make_unique<GPSTest>();
    return m_gpsTest.get();
}

void DeviceSettingsPanel::toggleGpsTest()
{
    GPSTest* window = gpsTest();
    window->setVisible(!window->isVisible());
}
