#include "NetworkToolLauncher.h"

#include <QProcess>

void NetworkToolLauncher::start()
{
    if (!m_process) {
        m_process = new QProcess(this);
        // Nobody reads the tool's output: it goes where ScanDeck's goes, so a
        // talkative tool never stalls on a full pipe.
        m_process->setProcessChannelMode(QProcess::ForwardedChannels);
    }
    if (m_process->state() != QProcess::NotRunning)
        return;
    m_process->start(programPath(), QStringList(), QIODevice::ReadWrite);
}
