#pragma once
// The link status in the status bar while a lidar is connected: packets (or,
// over a serial port, kilobytes) and frames per second and the time since
// the last datagram ("450 packets/s, 10.0 frames/s, 0.0 s ago"), in green;
// in amber with the reason while revolutions arrive incomplete or data is
// rejected; after a second without data a red "No data from the lidar" with
// the time of silence. Hidden while disconnected.

#include "LinkStatus.h"

#include <QLabel>
#include <QTimer>
#include <functional>

class LinkStatusReadout : public QLabel {
    Q_OBJECT
public:
    // Reads the session's running totals; called on the user interface thread.
    using TotalsSource = std::function<LinkTotals()>;
    static constexpr int kRefreshMs = 250;
    enum class Look { Hidden, Green, Amber, Red };

    explicit LinkStatusReadout(QWidget* parent = nullptr, LinkStatus::Clock clock = LinkStatus::Clock());

    // Starts watching a confirmed link; `network` says whether its arrivals
    // are datagrams (network) or serial reads.
    void watch(TotalsSource source, bool network);
    void unwatch();
    // One sample and a new text; the timer calls it every kRefreshMs.
    void refresh();
    // Why the stream is not sound (RecentHealth), empty when it is.
    void setHealthWarning(const QString& reason);

    Look look() const;
    const QString& healthWarning() const { return m_warning; }

    const LinkStatus& status() const { return m_status; }
    // The text for a status (empty while disconnected).
    static QString describe(const LinkStatus& status, bool network);

protected:
    void changeEvent(QEvent* event) override;

private:
    void showStatus();

    LinkStatus m_status;
    TotalsSource m_source;
    bool m_network = true;
    QString m_warning;
    QTimer m_timer;
};
