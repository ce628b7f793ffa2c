#include "DemoLidar.h"

#include "SimModel.h"

#include <QHostAddress>
#include <QUdpSocket>

namespace {

// The confirmation wait of a connection is short; on a busy machine the
// first revolution may miss it, so the demo tries a few times.
constexpr int kConnectAttempts = 5;

quint16 freeLoopbackUdpPort()
{
    QUdpSocket probe;
    probe.bind(QHostAddress(QHostAddress::LocalHost), 0);
    return probe.localPort();
}

}  // namespace

DemoLidar::Request DemoLidar::fromArguments(const QStringList& arguments)
{
    Request request;
    const int at = arguments.indexOf(QStringLiteral("--demo"));
    if (at < 1)
        return request;
    request.wanted = true;
    request.model = defaultModel();
    const QString next = arguments.value(at + 1);
    if (next.isEmpty() || next.startsWith(QLatin1Char('-')))
        return request;
    request.model = next;
    sim::Model model;
    if (!sim::modelFromName(next, &model))
        request.error = QStringLiteral("unknown lidar model \"%1\" for --demo (one of: %2)")
                            .arg(next, sim::allModelNames().join(QStringLiteral(", ")));
    return request;
}

bool DemoLidar::start(const QString& model, IConnectLiDAR& connector, QString* error)
{
    stop();
    const auto fail = [error](const QString& message) {
        if (error)
            *error = message;
        return false;
    };
    sim::SimOptions options;
    if (!sim::modelFromName(model, &options.model))
        return fail(tr("Unknown lidar model %1").arg(model));
    options.transport = sim::Transport::Udp;
    options.dataHost = QStringLiteral("127.0.0.1");
    options.dataPort = freeLoopbackUdpPort();
    options.commandPort = 0;  // the simulator picks a free one
    options.faults = m_faults;
    options.gpsGapMs = m_gpsGapMs;
    QString simError;
    if (!m_simulator.start(options, &simError))
        return fail(tr("The simulated lidar could not start: %1").arg(simError));

    m_link.lidarIp = QStringLiteral("127.0.0.1");
    m_link.dataIp = QStringLiteral("127.0.0.1");
    m_link.lidarPort = m_simulator.engine()->commandPort();
    m_link.dataPort = options.dataPort;
    for (int attempt = 0; attempt < kConnectAttempts; ++attempt) {
        if (connector.ConnectNetworkLidar(model, m_link))
            return true;
    }
    stop();
    return fail(tr("No frame arrived from the simulated lidar"));
}

void DemoLidar::stop()
{
    m_simulator.stop();
}
