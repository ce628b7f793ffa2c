#pragma once
// Hand-made captures: IP packets carrying UDP (or other) traffic, their
// fragments, the link-layer headers around them, and whole pcap or pcapng
// files in either byte order, as tcpdump and Wireshark write them.

#include <QByteArray>
#include <QVector>
#include <cstdint>

namespace testing {

// An IPv4 packet (127.0.0.1 to 127.0.0.1) carrying a UDP datagram.
QByteArray udp4(uint16_t destinationPort, const QByteArray& payload, uint16_t identification = 1);
// An IPv6 packet (::1 to ::1) carrying a UDP datagram.
QByteArray udp6(uint16_t destinationPort, const QByteArray& payload);
// An IPv4 packet carrying a TCP segment with `payload`.
QByteArray tcp4(uint16_t destinationPort, const QByteArray& payload);

// The fragments of an IPv4 or IPv6 packet made above, each carrying at most
// `pieceSize` bytes (a multiple of 8) of what follows the IP header.
QVector<QByteArray> ipv4Fragments(const QByteArray& packet, int pieceSize);
QVector<QByteArray> ipv6Fragments(const QByteArray& packet, int pieceSize, uint32_t identification = 7);

// Link-layer frames around an IP packet (the version decides the type).
QByteArray ethernet(const QByteArray& ipPacket, const QVector<uint16_t>& vlanTypes = {});
QByteArray linuxSll(const QByteArray& ipPacket);
QByteArray linuxSll2(const QByteArray& ipPacket);
// BSD loopback: the address family as a 32-bit number, in the capturing
// machine's order (DLT_NULL) or in network order (DLT_LOOP).
QByteArray bsdLoopback(const QByteArray& ipPacket, bool networkOrder);

struct CapturedPacket {
    QByteArray bytes;
    int originalLength = -1;  // -1: as long as captured
};

enum class CaptureFormat { PcapMicroseconds, PcapNanoseconds, PcapNg };

// A whole capture file of link type `linkType` (a LINKTYPE_ number), packets
// 1 ms apart.
QByteArray captureFile(CaptureFormat format, bool bigEndian, int linkType, const QVector<CapturedPacket>& packets);
// The same with every packet as long as captured.
QByteArray captureFile(CaptureFormat format, bool bigEndian, int linkType, const QVector<QByteArray>& frames);

constexpr int kLinkNull = 0;
constexpr int kLinkEthernet = 1;
constexpr int kLinkRaw = 101;
constexpr int kLinkIeee80211 = 105;
constexpr int kLinkLoop = 108;
constexpr int kLinkLinuxSll = 113;
constexpr int kLinkLinuxSll2 = 276;

}  // namespace testing
