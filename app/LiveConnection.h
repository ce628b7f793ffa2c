#pragma once
// The window's one live session and the way it gets connected. The registry
// makes (or reuses) the session of the chosen model, the link record is
// copied into it and it is asked to connect; then the window waits 200 ms
// processing events. A frame in that time proves that the model decodes what
// arrives on that link. Without one, the session is told to disconnect.
//
// No widgets here: the window enables its controls once this says yes.

#include "IConnectLiDAR.h"
#include "LidarAnalysis.h"

#include <QString>
#include <memory>

class LiveConnection {
public:
    // Two revolutions at the usual ten a second: the first azimuth wrap
    // after the stream starts completes a frame.
    static constexpr int kConfirmMs = 200;
    // Lets the session's queued disconnect run before the view is cleared.
    static constexpr int kDisconnectSettleMs = 100;

    // The current session: null before the first attempt, otherwise the
    // session of the last attempt, connected or not.
    const std::shared_ptr<LidarAnalysis>& session() const { return m_session; }
    // A session counts as connected once a frame has confirmed its link.
    bool isConnected() const { return m_session && m_session->GetConnectionType() != -1; }
    QString modelName() const;

    // Both return false for an unknown model and for a link on which no
    // frame of that model arrived within kConfirmMs.
    bool connectNetwork(const QString& model, const NetworkParam& link);
    bool connectSerial(const QString& model, const SerialPortParam& link);

    // Asks the session to disconnect (queued onto its thread). The session
    // object is kept; callers give the request kDisconnectSettleMs to run.
    void disconnect();

    static void applyLink(LidarAnalysis& session, const NetworkParam& link);
    static void applyLink(LidarAnalysis& session, const SerialPortParam& link);
    // Processes events until `ms` milliseconds have passed on a started
    // timer, so that frames, clicks and a progress dialog stay live.
    static void processEventsFor(int ms);

private:
    template <typename Link>
    bool connectOver(const QString& model, const Link& link, lidar::CONNECTION_TYPE type);

    std::shared_ptr<LidarAnalysis> m_session;
};
