#include "CaptureDatagrams.h"

#include <pcap/dlt.h>

#include <algorithm>

namespace capture {
namespace {

constexpr int kUdp = 17;
constexpr uint16_t kEtherIpv4 = 0x0800;
constexpr uint16_t kEtherIpv6 = 0x86DD;
// 802.1Q, 802.1ad and the older QinQ tag: four bytes before the real type.
constexpr uint16_t kEtherVlanTags[] = {0x8100, 0x88A8, 0x9100};
constexpr int kMaxVlanTags = 8;
constexpr int kMaxDatagram = 65535;

uint16_t be16(const uint8_t* p)
{
    return uint16_t(p[0] << 8 | p[1]);
}

uint32_t be32(const uint8_t* p)
{
    return uint32_t(p[0]) << 24 | uint32_t(p[1]) << 16 | uint32_t(p[2]) << 8 | p[3];
}

// Address families a BSD loopback header may name: AF_INET is 2 everywhere,
// AF_INET6 differs between systems (Linux 10, the BSDs 24, 28 and 30).
int versionOfFamily(uint32_t family)
{
    if (family == 2)
        return 4;
    if (family == 10 || family == 24 || family == 28 || family == 30)
        return 6;
    return 0;
}

int versionOfEtherType(uint16_t type)
{
    return type == kEtherIpv4 ? 4 : type == kEtherIpv6 ? 6 : 0;
}

bool isVlanTag(uint16_t type)
{
    return std::find(std::begin(kEtherVlanTags), std::end(kEtherVlanTags), type) != std::end(kEtherVlanTags);
}

}  // namespace

LinkType linkTypeFromDlt(int dlt)
{
    switch (dlt) {
    case DLT_EN10MB:
        return LinkType::Ethernet;
    case DLT_LINUX_SLL:
        return LinkType::LinuxSll;
    case DLT_LINUX_SLL2:
        return LinkType::LinuxSll2;
    case DLT_RAW:
    case 101:  // LINKTYPE_RAW, should a file's number come through unmapped
        return LinkType::RawIp;
    case DLT_IPV4:
        return LinkType::Ipv4;
    case DLT_IPV6:
        return LinkType::Ipv6;
    case DLT_NULL:
        return LinkType::BsdNull;
    case DLT_LOOP:
        return LinkType::BsdLoop;
    default:
        return LinkType::Unsupported;
    }
}

DatagramExtractor::DatagramExtractor(LinkType link, quint16 port) : link_(link), port_(port) {}

void DatagramExtractor::feed(const uint8_t* data, size_t captured, size_t original, const PayloadSink& sink)
{
    ++counts_.frames;
    ++clock_;
    const bool cut = captured < original;
    auto skip = [&](size_t header) -> Bytes {
        return header <= captured ? Bytes{data + header, captured - header, cut} : Bytes{data, 0, cut};
    };

    switch (link_) {
    case LinkType::Ethernet: {
        if (captured < 14)
            break;
        size_t offset = 12;
        uint16_t type = be16(data + offset);
        for (int tags = 0; isVlanTag(type) && tags < kMaxVlanTags; ++tags) {
            offset += 4;
            if (offset + 2 > captured) {
                ++counts_.malformed;
                return;
            }
            type = be16(data + offset);
        }
        ipPacket(skip(offset + 2), versionOfEtherType(type), sink);
        return;
    }
    case LinkType::LinuxSll:
        if (captured < 16)
            break;
        ipPacket(skip(16), versionOfEtherType(be16(data + 14)), sink);
        return;
    case LinkType::LinuxSll2:
        if (captured < 20)
            break;
        ipPacket(skip(20), versionOfEtherType(be16(data)), sink);
        return;
    case LinkType::RawIp:
        if (captured < 1)
            break;
        ipPacket(skip(0), data[0] >> 4, sink);
        return;
    case LinkType::Ipv4:
        ipPacket(skip(0), 4, sink);
        return;
    case LinkType::Ipv6:
        ipPacket(skip(0), 6, sink);
        return;
    case LinkType::BsdNull: {
        if (captured < 4)
            break;
        // In the byte order of the machine that captured: try both.
        const uint32_t big = be32(data);
        const uint32_t little = uint32_t(data[3]) << 24 | uint32_t(data[2]) << 16 | uint32_t(data[1]) << 8 | data[0];
        const int version = versionOfFamily(big) ? versionOfFamily(big) : versionOfFamily(little);
        ipPacket(skip(4), version, sink);
        return;
    }
    case LinkType::BsdLoop:
        if (captured < 4)
            break;
        ipPacket(skip(4), versionOfFamily(be32(data)), sink);
        return;
    case LinkType::Unsupported:
        ++counts_.otherTraffic;
        return;
    }
    ++counts_.malformed;  // shorter than its link header
}

void DatagramExtractor::ipPacket(Bytes bytes, int version, const PayloadSink& sink)
{
    if (version == 4)
        ipv4(bytes, sink);
    else if (version == 6)
        ipv6(bytes, sink);
    else
        ++counts_.otherTraffic;
}

void DatagramExtractor::ipv4(Bytes bytes, const PayloadSink& sink)
{
    if (bytes.size < 20 || bytes.data[0] >> 4 != 4) {
        ++(bytes.cut && bytes.size < 20 ? counts_.otherTraffic : counts_.malformed);
        return;
    }
    const size_t headerLength = size_t(bytes.data[0] & 0x0F) * 4;
    const size_t totalLength = be16(bytes.data + 2);
    if (headerLength < 20 || totalLength < headerLength || headerLength > bytes.size) {
        ++counts_.malformed;
        return;
    }
    const int protocol = bytes.data[9];
    const uint16_t flagsAndOffset = be16(bytes.data + 6);
    const bool more = flagsAndOffset & 0x2000;
    const int offset = (flagsAndOffset & 0x1FFF) * 8;

    // The link layer may pad a short packet; the IP length says where it ends.
    Bytes payload{bytes.data + headerLength, 0, bytes.cut};
    if (totalLength <= bytes.size) {
        payload.size = totalLength - headerLength;
        payload.cut = false;
    } else if (bytes.cut) {
        payload.size = bytes.size - headerLength;
        payload.cut = true;
    } else {
        ++counts_.malformed;  // longer than the frame that carried it
        return;
    }

    if (more || offset > 0) {
        if (protocol != kUdp) {
            ++counts_.otherTraffic;
            return;
        }
        const FragmentKey key{4, QByteArray(reinterpret_cast<const char*>(bytes.data + 12), 4),
                              QByteArray(reinterpret_cast<const char*>(bytes.data + 16), 4),
                              be16(bytes.data + 4), protocol};
        fragment(key, offset, more, protocol, payload, sink);
        return;
    }
    transport(protocol, payload, sink, false);
}

void DatagramExtractor::ipv6(Bytes bytes, const PayloadSink& sink)
{
    if (bytes.size < 40 || bytes.data[0] >> 4 != 6) {
        ++(bytes.cut && bytes.size < 40 ? counts_.otherTraffic : counts_.malformed);
        return;
    }
    const size_t payloadLength = be16(bytes.data + 4);
    int next = bytes.data[6];
    const QByteArray source(reinterpret_cast<const char*>(bytes.data + 8), 16);
    const QByteArray destination(reinterpret_cast<const char*>(bytes.data + 24), 16);

    Bytes rest{bytes.data + 40, 0, bytes.cut};
    if (40 + payloadLength <= bytes.size) {
        rest.size = payloadLength;
        rest.cut = false;
    } else if (bytes.cut) {
        rest.size = bytes.size - 40;
        rest.cut = true;
    } else {
        ++counts_.malformed;
        return;
    }

    // Extension headers up to the transport header.
    for (int hops = 0; hops < 16; ++hops) {
        if (next == 0 || next == 43 || next == 60 || next == 51) {  // hop-by-hop, routing, options, AH
            if (rest.size < 8) {
                ++(rest.cut ? counts_.otherTraffic : counts_.malformed);
                return;
            }
            const size_t length = next == 51 ? (size_t(rest.data[1]) + 2) * 4 : (size_t(rest.data[1]) + 1) * 8;
            if (length > rest.size) {
                ++(rest.cut ? counts_.otherTraffic : counts_.malformed);
                return;
            }
            next = rest.data[0];
            rest.data += length;
            rest.size -= length;
            continue;
        }
        if (next == 44) {  // fragment
            if (rest.size < 8) {
                ++(rest.cut ? counts_.otherTraffic : counts_.malformed);
                return;
            }
            const int protocol = rest.data[0];
            const uint16_t offsetAndFlags = be16(rest.data + 2);
            const FragmentKey key{6, source, destination, be32(rest.data + 4), 0};
            const Bytes piece{rest.data + 8, rest.size - 8, rest.cut};
            fragment(key, (offsetAndFlags >> 3) * 8, offsetAndFlags & 1, protocol, piece, sink);
            return;
        }
        transport(next, rest, sink, false);
        return;
    }
    ++counts_.malformed;
}

void DatagramExtractor::fragment(const FragmentKey& key, int offset, bool more, int protocol, Bytes piece,
                                 const PayloadSink& sink)
{
    if (piece.cut || offset + piece.size > size_t(kMaxDatagram)) {
        // A piece the capture did not keep whole can never complete its
        // datagram; whether it was for our port is unknowable.
        ++(piece.cut ? counts_.cutShort : counts_.malformed);
        return;
    }
    auto found = pending_.find(key);
    if (found == pending_.end()) {
        if (int(pending_.size()) >= kMaxPendingDatagrams) {
            auto oldest = std::min_element(pending_.begin(), pending_.end(), [](const auto& a, const auto& b) {
                return a.second.age < b.second.age;
            });
            counts_.fragmentsDropped += oldest->second.fragments;
            pending_.erase(oldest);
        }
        found = pending_.emplace(key, Reassembly()).first;
    }
    Reassembly& r = found->second;
    r.age = clock_;
    ++r.fragments;
    const int end = offset + int(piece.size);
    if (r.data.size() < end)
        r.data.resize(end);
    std::copy(piece.data, piece.data + piece.size, r.data.begin() + offset);
    r.pieces.append({offset, end});
    if (!more)
        r.total = end;
    if (offset == 0)
        r.nextHeader = protocol;

    if (r.total < 0 || r.nextHeader < 0)
        return;
    // Complete once the pieces, merged, cover 0 .. total without a gap.
    std::sort(r.pieces.begin(), r.pieces.end());
    int covered = 0;
    for (const auto& range : r.pieces) {
        if (range.first > covered)
            return;
        covered = std::max(covered, range.second);
    }
    if (covered < r.total)
        return;
    const QByteArray datagram = r.data.left(r.total);
    const int nextHeader = r.nextHeader;
    pending_.erase(found);
    transport(nextHeader,
              Bytes{reinterpret_cast<const uint8_t*>(datagram.constData()), size_t(datagram.size()), false}, sink,
              true);
}

void DatagramExtractor::transport(int protocol, Bytes bytes, const PayloadSink& sink, bool rebuilt)
{
    if (protocol != kUdp) {
        ++counts_.otherTraffic;
        return;
    }
    if (bytes.size < 8) {
        ++(bytes.cut ? counts_.otherTraffic : counts_.malformed);
        return;
    }
    const quint16 destination = be16(bytes.data + 2);
    const size_t length = be16(bytes.data + 4);
    if (destination != port_) {
        ++counts_.otherTraffic;
        otherPort(destination);
        return;
    }
    if (length < 8 || (length > bytes.size && !bytes.cut)) {
        ++counts_.malformed;
        return;
    }
    if (length > bytes.size) {
        ++counts_.cutShort;
        return;
    }
    ++counts_.datagrams;
    if (rebuilt)
        ++counts_.reassembled;
    // No copy: the payload is only read during the call.
    sink(QByteArray::fromRawData(reinterpret_cast<const char*>(bytes.data + 8), int(length - 8)));
}

void DatagramExtractor::otherPort(quint16 port)
{
    if (counts_.otherPorts.size() < kMaxOtherPorts && !counts_.otherPorts.contains(port))
        counts_.otherPorts.append(port);
}

void DatagramExtractor::finish()
{
    for (const auto& entry : pending_)
        counts_.fragmentsDropped += entry.second.fragments;
    pending_.clear();
}

}  // namespace capture
