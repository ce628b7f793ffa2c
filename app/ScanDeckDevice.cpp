// ScanDeck's "Setting" tab: the device panel and the network module tool do
// the work; the window hands them its session and its clicks.

#include "ScanDeck.h"

#include "DeviceSettingsPanel.h"
#include "LidarAnalysis.h"
#include "NetworkToolLauncher.h"

void ScanDeck::toggleGpsTest()
{
    m_devicePanel->toggleGpsTest();
}

void ScanDeck::startNetworkTool()
{
    m_networkTool->start();
}

// The session is asked for its parameters (up to half a second): they choose
// the selected filter and frequency.
void ScanDeck::configureDevicePanel(const QString& group)
{
    const std::shared_ptr<LidarAnalysis> session = m_live.session();
    m_devicePanel->configure(group, session ? session->GetLidarParam() : LidarParam());
}
