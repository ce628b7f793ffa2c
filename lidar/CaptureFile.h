#pragma once
// tcpdump and Wireshark captures, read through libpcap: pcap files with
// microsecond or nanosecond time stamps in either byte order, and pcapng.
// What the lidar sent is the UDP payloads to its data port, in capture order.

#include "CaptureDatagrams.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <functional>
#include <memory>

struct pcap;  // libpcap's handle

namespace capture {

constexpr quint16 kDefaultDataPort = 2368;

// Whether the bytes (at least the first four of a file) open a pcap or a
// pcapng capture.
bool looksLikeCapture(const QByteArray& firstBytes);
bool looksLikeCaptureFile(const QString& path);

struct CaptureSummary {
    QString format;     // "pcap", "pcap (nanosecond time stamps)" or "pcapng"
    QString linkName;   // libpcap's name of the link type ("EN10MB", "LINUX_SLL2", ...)
    qint64 packets = 0; // records read
    DatagramCounts counts;
    QString damage;     // libpcap's words when the file ends inside a record or a record is broken
    qint64 firstDatagramNs = -1;  // capture time of the first and last datagram to the port
    qint64 lastDatagramNs = -1;
};

class CaptureFile {
public:
    using PayloadSink = std::function<bool(const QByteArray& payload)>;  // false stops

    CaptureFile();
    ~CaptureFile();
    CaptureFile(const CaptureFile&) = delete;
    CaptureFile& operator=(const CaptureFile&) = delete;

    // false: errorString() says why (unreadable, not a capture, a link
    // type without IP).
    bool open(const QString& path);
    // The same from bytes in memory.
    bool openBytes(const QByteArray& bytes);
    QString errorString() const { return error_; }

    // Hands the UDP payloads to `port` to `sink` in capture order, up to the
    // end of the file, the first damaged record, or until `sink` says stop.
    // A payload is valid only during the call: copy what is to be kept.
    // Call once after a successful open.
    void readDatagrams(quint16 port, const PayloadSink& sink);

    const CaptureSummary& summary() const { return summary_; }
    // Bytes of the capture read so far, for progress; -1 when unknown.
    qint64 position() const;
    // One line for each thing the reader had to skip or give up on.
    QStringList warnings() const;
    // Why no datagram came out (port, what the capture held instead).
    QString noDatagramMessage(quint16 port) const;

private:
    bool start(pcap* handle, const char* errorText, const QString& name, const QByteArray& head);

    pcap* handle_ = nullptr;
    QByteArray memory_;  // the bytes openBytes reads from
    LinkType link_ = LinkType::Unsupported;
    QString error_;
    CaptureSummary summary_;
};

}  // namespace capture
