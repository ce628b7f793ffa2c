// Operations of the live link, the overlays, box selection, ranging, CSV
// export and the device panel. Each is wired to its control already; the
// ones without a body yet only keep what they are given.

#include "ScanDeck.h"

#include "LidarAnalysis.h"
#include "ui_ScanDeck.h"

bool ScanDeck::ConnectNetworkLidar(const QString& model, const NetworkParam& param)
{
    Q_UNUSED(model);
    Q_UNUSED(param);
    return false;
}

bool ScanDeck::ConnectSerialLidar(const QString& model, const SerialPortParam& param)
{
    Q_UNUSED(model);
    Q_UNUSED(param);
    return false;
}

void ScanDeck::showGrid(bool on)
{
    IGridPolar::showGrid(on);
}

void ScanDeck::showPolar(bool on)
{
    IGridPolar::showPolar(on);
}

void ScanDeck::setBoxRange(const BoxCorner& min, const BoxCorner& max)
{
    m_boxRange = {min, max};
}

BoxRange ScanDeck::getBoxRange() const
{
    return m_boxRange;
}

void ScanDeck::setRangingMode(bool on)
{
    m_rangingActive = on ? 1 : 0;
}

void ScanDeck::autoConnect() {}

void ScanDeck::showConnectDialog() {}

void ScanDeck::disconnectLidar() {}

void ScanDeck::playPause(bool play)
{
    Q_UNUSED(play);
}

void ScanDeck::recordData(bool record)
{
    Q_UNUSED(record);
}

void ScanDeck::exportCsv(QAbstractButton* button, bool checked)
{
    Q_UNUSED(button);
    Q_UNUSED(checked);
}

void ScanDeck::writeCsvFrame(const lidar::LidarDataPoint_V4& frame)
{
    Q_UNUSED(frame);
}

void ScanDeck::toggleBoxSelection(bool on)
{
    Q_UNUSED(on);
}

void ScanDeck::areaPicked(const std::vector<int>& indices)
{
    Q_UNUSED(indices);
}

void ScanDeck::showBoxRangeDialog() {}

void ScanDeck::showGridPolarDialog() {}

void ScanDeck::toggleGpsTest() {}

void ScanDeck::startNetworkTool() {}

void ScanDeck::setMotorFrequencyFromText(const QString& text)
{
    if (m_session)
        m_session->SetDeviceParam(static_cast<quint8>(text.toInt() & 0xFF));
}

void ScanDeck::configureDevicePanel(const QString& group)
{
    Q_UNUSED(group);
}
