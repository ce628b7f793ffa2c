#include "CaptureBuilders.h"

#include <QtEndian>

namespace testing {
namespace {

void put16(QByteArray& b, int offset, uint16_t v)
{
    b[offset] = char(v >> 8);
    b[offset + 1] = char(v);
}

void put32(QByteArray& b, int offset, uint32_t v)
{
    put16(b, offset, uint16_t(v >> 16));
    put16(b, offset + 2, uint16_t(v));
}

uint16_t get16(const QByteArray& b, int offset)
{
    return uint16_t(uint8_t(b[offset]) << 8 | uint8_t(b[offset + 1]));
}

QByteArray ipv4Header(int protocol, int payloadLength, uint16_t identification)
{
    QByteArray h(20, '\0');
    h[0] = char(0x45);
    put16(h, 2, uint16_t(20 + payloadLength));
    put16(h, 4, identification);
    h[8] = char(64);
    h[9] = char(protocol);
    put32(h, 12, 0x7F000001);
    put32(h, 16, 0x7F000001);
    return h;
}

QByteArray ipv6Header(int nextHeader, int payloadLength)
{
    QByteArray h(40, '\0');
    h[0] = char(0x60);
    put16(h, 4, uint16_t(payloadLength));
    h[6] = char(nextHeader);
    h[7] = char(64);
    h[23] = char(1);  // ::1
    h[39] = char(1);
    return h;
}

QByteArray udpHeader(uint16_t destinationPort, int payloadLength)
{
    QByteArray h(8, '\0');
    put16(h, 0, 2369);
    put16(h, 2, destinationPort);
    put16(h, 4, uint16_t(8 + payloadLength));
    return h;  // checksum 0: not computed, as offloading leaves many captures
}

uint16_t etherTypeOf(const QByteArray& ipPacket)
{
    return (uint8_t(ipPacket[0]) >> 4) == 6 ? 0x86DD : 0x0800;
}

// Writes numbers in the file's byte order.
class Writer {
public:
    explicit Writer(bool bigEndian) : big_(bigEndian) {}
    void u16(uint16_t v)
    {
        char b[2];
        big_ ? qToBigEndian(v, b) : qToLittleEndian(v, b);
        out.append(b, 2);
    }
    void u32(uint32_t v)
    {
        char b[4];
        big_ ? qToBigEndian(v, b) : qToLittleEndian(v, b);
        out.append(b, 4);
    }
    void pad() { out.append(QByteArray((4 - out.size() % 4) % 4, '\0')); }
    void lengthAt(int offset, uint32_t v)
    {
        char b[4];
        big_ ? qToBigEndian(v, b) : qToLittleEndian(v, b);
        out.replace(offset, 4, QByteArray(b, 4));
    }
    QByteArray out;

private:
    bool big_;
};

}  // namespace

QByteArray udp4(uint16_t destinationPort, const QByteArray& payload, uint16_t identification)
{
    return ipv4Header(17, 8 + payload.size(), identification) + udpHeader(destinationPort, payload.size()) + payload;
}

QByteArray udp6(uint16_t destinationPort, const QByteArray& payload)
{
    return ipv6Header(17, 8 + payload.size()) + udpHeader(destinationPort, payload.size()) + payload;
}

QByteArray tcp4(uint16_t destinationPort, const QByteArray& payload)
{
    QByteArray tcp(20, '\0');
    put16(tcp, 0, 40000);
    put16(tcp, 2, destinationPort);
    tcp[12] = char(0x50);
    return ipv4Header(6, tcp.size() + payload.size(), 9) + tcp + payload;
}

QVector<QByteArray> ipv4Fragments(const QByteArray& packet, int pieceSize)
{
    const QByteArray header = packet.left(20);
    const QByteArray body = packet.mid(20);
    QVector<QByteArray> fragments;
    for (int offset = 0; offset < body.size(); offset += pieceSize) {
        const QByteArray piece = body.mid(offset, pieceSize);
        QByteArray h = header;
        put16(h, 2, uint16_t(20 + piece.size()));
        const bool more = offset + pieceSize < body.size();
        put16(h, 6, uint16_t((more ? 0x2000 : 0) | (offset / 8)));
        fragments.append(h + piece);
    }
    return fragments;
}

QVector<QByteArray> ipv6Fragments(const QByteArray& packet, int pieceSize, uint32_t identification)
{
    const int nextHeader = uint8_t(packet[6]);
    const QByteArray body = packet.mid(40);
    QVector<QByteArray> fragments;
    for (int offset = 0; offset < body.size(); offset += pieceSize) {
        const QByteArray piece = body.mid(offset, pieceSize);
        QByteArray fragmentHeader(8, '\0');
        fragmentHeader[0] = char(nextHeader);
        const bool more = offset + pieceSize < body.size();
        put16(fragmentHeader, 2, uint16_t(offset | (more ? 1 : 0)));  // offset in 8-byte units << 3
        put32(fragmentHeader, 4, identification);
        QByteArray h = ipv6Header(44, 8 + piece.size());
        fragments.append(h + fragmentHeader + piece);
    }
    return fragments;
}

QByteArray ethernet(const QByteArray& ipPacket, const QVector<uint16_t>& vlanTypes)
{
    QByteArray frame(12, '\0');  // loopback: both addresses zero
    for (uint16_t tagType : vlanTypes) {
        QByteArray tag(4, '\0');
        put16(tag, 0, tagType);
        put16(tag, 2, 42);  // VLAN 42
        frame += tag;
    }
    QByteArray type(2, '\0');
    put16(type, 0, etherTypeOf(ipPacket));
    frame += type + ipPacket;
    if (frame.size() < 60)
        frame.append(QByteArray(60 - frame.size(), '\0'));  // padded to Ethernet's minimum
    return frame;
}

QByteArray linuxSll(const QByteArray& ipPacket)
{
    QByteArray header(16, '\0');
    put16(header, 2, 772);  // ARPHRD_LOOPBACK
    put16(header, 4, 6);
    put16(header, 14, etherTypeOf(ipPacket));
    return header + ipPacket;
}

QByteArray linuxSll2(const QByteArray& ipPacket)
{
    QByteArray header(20, '\0');
    put16(header, 0, etherTypeOf(ipPacket));
    put32(header, 4, 1);  // interface index
    put16(header, 8, 772);
    header[11] = char(6);
    return header + ipPacket;
}

QByteArray bsdLoopback(const QByteArray& ipPacket, bool networkOrder)
{
    const uint32_t family = (uint8_t(ipPacket[0]) >> 4) == 6 ? 30 : 2;
    char b[4];
    networkOrder ? qToBigEndian(family, b) : qToLittleEndian(family, b);
    return QByteArray(b, 4) + ipPacket;
}

QByteArray captureFile(CaptureFormat format, bool bigEndian, int linkType, const QVector<CapturedPacket>& packets)
{
    Writer w(bigEndian);
    const uint64_t startNs = 1716206400ull * 1000000000ull;
    if (format == CaptureFormat::PcapNg) {
        // Section header block.
        w.u32(0x0A0D0D0A);
        w.u32(28);
        w.u32(0x1A2B3C4D);
        w.u16(1);
        w.u16(0);
        w.u32(0xFFFFFFFF);
        w.u32(0xFFFFFFFF);  // section length unknown
        w.u32(28);
        // Interface description block with nanosecond time stamps.
        w.u32(1);
        w.u32(32);
        w.u16(uint16_t(linkType));
        w.u16(0);
        w.u32(65535);
        w.u16(9);  // if_tsresol
        w.u16(1);
        w.out.append(char(9));
        w.pad();
        w.u32(0);  // end of options
        w.u32(32);
        for (int i = 0; i < packets.size(); ++i) {
            const QByteArray& data = packets[i].bytes;
            const int original = packets[i].originalLength < 0 ? data.size() : packets[i].originalLength;
            const uint64_t ns = startNs + uint64_t(i) * 1000000u;
            const int start = w.out.size();
            w.u32(6);  // enhanced packet block
            w.u32(0);
            w.u32(0);  // interface 0
            w.u32(uint32_t(ns >> 32));
            w.u32(uint32_t(ns));
            w.u32(uint32_t(data.size()));
            w.u32(uint32_t(original));
            w.out.append(data);
            w.pad();
            const uint32_t length = uint32_t(w.out.size() - start + 4);
            w.u32(length);
            w.lengthAt(start + 4, length);
        }
        return w.out;
    }
    const bool nano = format == CaptureFormat::PcapNanoseconds;
    w.u32(nano ? 0xA1B23C4D : 0xA1B2C3D4);
    w.u16(2);
    w.u16(4);
    w.u32(0);
    w.u32(0);
    w.u32(65535);
    w.u32(uint32_t(linkType));
    for (int i = 0; i < packets.size(); ++i) {
        const QByteArray& data = packets[i].bytes;
        const uint64_t ns = startNs + uint64_t(i) * 1000000u;
        w.u32(uint32_t(ns / 1000000000u));
        w.u32(uint32_t(nano ? ns % 1000000000u : ns % 1000000000u / 1000u));
        w.u32(uint32_t(data.size()));
        w.u32(uint32_t(packets[i].originalLength < 0 ? data.size() : packets[i].originalLength));
        w.out.append(data);
    }
    return w.out;
}

QByteArray captureFile(CaptureFormat format, bool bigEndian, int linkType, const QVector<QByteArray>& frames)
{
    QVector<CapturedPacket> packets;
    for (const QByteArray& frame : frames)
        packets.append({frame, -1});
    return captureFile(format, bigEndian, linkType, packets);
}

}  // namespace testing
