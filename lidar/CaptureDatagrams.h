#pragma once
// Finds the UDP datagrams sent to one port in captured link-layer frames:
// Ethernet (with any number of VLAN tags), Linux cooked captures (SLL and
// SLL2), raw IPv4/IPv6 and BSD loopback. IPv4 and IPv6 fragments are put
// back together. Pure: bytes in, payloads out, counts of everything skipped.

#include <QByteArray>
#include <QList>
#include <QVector>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <tuple>

namespace capture {

enum class LinkType { Unsupported, Ethernet, LinuxSll, LinuxSll2, RawIp, Ipv4, Ipv6, BsdNull, BsdLoop };

// The link type of a libpcap DLT_ value; Unsupported for every other one.
LinkType linkTypeFromDlt(int dlt);

struct DatagramCounts {
    qint64 frames = 0;                // link-layer frames looked at
    qint64 datagrams = 0;             // UDP datagrams to the port, handed on
    qint64 otherTraffic = 0;          // not IP, not UDP, or UDP to another port
    qint64 cutShort = 0;              // datagrams to the port the capture did not keep whole
    qint64 malformed = 0;             // headers that do not add up
    qint64 reassembled = 0;           // datagrams to the port rebuilt from fragments
    qint64 fragmentsDropped = 0;      // fragments whose datagram never became complete
    QList<quint16> otherPorts;        // the first few other UDP destination ports, in order seen
};

class DatagramExtractor {
public:
    using PayloadSink = std::function<void(const QByteArray& payload)>;

    DatagramExtractor(LinkType link, quint16 port);

    // One captured frame: `captured` bytes at `data`, `original` bytes long
    // on the wire. Payloads to the port go to `sink` in capture order (a
    // fragmented datagram when its last missing piece arrives); a payload
    // points into `data` and is valid only during the call.
    void feed(const uint8_t* data, size_t captured, size_t original, const PayloadSink& sink);
    // The end of the capture: fragments still waiting count as dropped.
    void finish();

    const DatagramCounts& counts() const { return counts_; }

    // Datagrams waiting for fragments at any one time; the oldest is given
    // up beyond this.
    static constexpr int kMaxPendingDatagrams = 64;
    static constexpr int kMaxOtherPorts = 5;

private:
    struct Bytes {
        const uint8_t* data;
        size_t size;
        bool cut;  // the capture kept less than was sent
    };
    // Source, destination, identification and (IPv4) protocol.
    using FragmentKey = std::tuple<int, QByteArray, QByteArray, uint32_t, int>;
    struct Reassembly {
        QByteArray data;
        QVector<QPair<int, int>> pieces;  // [begin, end) byte ranges held
        int total = -1;                   // known once the last fragment came
        int nextHeader = -1;              // protocol of the datagram, from its first fragment
        qint64 fragments = 0;
        qint64 age = 0;
    };

    void ipPacket(Bytes bytes, int version, const PayloadSink& sink);
    void ipv4(Bytes bytes, const PayloadSink& sink);
    void ipv6(Bytes bytes, const PayloadSink& sink);
    void fragment(const FragmentKey& key, int offset, bool more, int protocol, Bytes piece,
                  const PayloadSink& sink);
    void transport(int protocol, Bytes bytes, const PayloadSink& sink, bool rebuilt);
    void otherPort(quint16 port);

    LinkType link_;
    quint16 port_;
    DatagramCounts counts_;
    std::map<FragmentKey, Reassembly> pending_;
    qint64 clock_ = 0;
};

}  // namespace capture
