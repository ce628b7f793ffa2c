#include "CaptureFile.h"

#include <QCoreApplication>
#include <QFile>

#include <pcap/pcap.h>

#include <algorithm>
#include <cstdio>
#include <limits>

namespace capture {
namespace {

// The first four bytes: pcap's magic number (microsecond or nanosecond time
// stamps) in either byte order, or the type of pcapng's first block.
enum class Format { None, Pcap, PcapNano, PcapNg };

Format formatOf(const QByteArray& head)
{
    if (head.size() < 4)
        return Format::None;
    const auto* b = reinterpret_cast<const uint8_t*>(head.constData());
    const uint32_t big = uint32_t(b[0]) << 24 | uint32_t(b[1]) << 16 | uint32_t(b[2]) << 8 | b[3];
    const uint32_t little = uint32_t(b[3]) << 24 | uint32_t(b[2]) << 16 | uint32_t(b[1]) << 8 | b[0];
    for (uint32_t magic : {big, little}) {
        if (magic == 0xA1B2C3D4u)
            return Format::Pcap;
        if (magic == 0xA1B23C4Du)
            return Format::PcapNano;
    }
    return big == 0x0A0D0D0Au ? Format::PcapNg : Format::None;
}

QString formatName(Format format)
{
    switch (format) {
    case Format::Pcap:
        return QStringLiteral("pcap");
    case Format::PcapNano:
        return QStringLiteral("pcap (nanosecond time stamps)");
    case Format::PcapNg:
        return QStringLiteral("pcapng");
    case Format::None:
        break;
    }
    return QStringLiteral("unknown");
}

// A record's time stamp (seconds and, as asked, nanoseconds) in nanoseconds
// since 1970. pcapng stamps are 64-bit counts of any unit, so they can lie
// beyond the year 2262; those are held at the last time 64 bits can carry.
qint64 nanosecondsOf(const timeval& stamp)
{
    constexpr qint64 kMaxSeconds = std::numeric_limits<qint64>::max() / 1000000000 - 1;
    const qint64 seconds = std::clamp<qint64>(stamp.tv_sec, 0, kMaxSeconds);
    return seconds * 1000000000 + std::clamp<qint64>(stamp.tv_usec, 0, 999999999);
}

}  // namespace

bool looksLikeCapture(const QByteArray& firstBytes)
{
    return formatOf(firstBytes) != Format::None;
}

bool looksLikeCaptureFile(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) && looksLikeCapture(file.read(4));
}

CaptureFile::CaptureFile() = default;

CaptureFile::~CaptureFile()
{
    if (handle_)
        pcap_close(handle_);
}

bool CaptureFile::open(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        error_ = QCoreApplication::translate("CaptureFile", "Cannot open %1: %2").arg(path, file.errorString());
        return false;
    }
    const QByteArray head = file.read(4);
    file.close();
    char errorText[PCAP_ERRBUF_SIZE] = {};
    pcap* handle = pcap_open_offline_with_tstamp_precision(QFile::encodeName(path).constData(),
                                                           PCAP_TSTAMP_PRECISION_NANO, errorText);
    return start(handle, errorText, path, head);
}

bool CaptureFile::openBytes(const QByteArray& bytes)
{
    memory_ = bytes;
    char errorText[PCAP_ERRBUF_SIZE] = {};
    pcap* handle = nullptr;
    // fmemopen refuses an empty buffer; libpcap then reports the short file.
    if (FILE* stream = fmemopen(memory_.data(), size_t(std::max(1, memory_.size())), "rb")) {
        handle = pcap_fopen_offline_with_tstamp_precision(stream, PCAP_TSTAMP_PRECISION_NANO, errorText);
        if (!handle)
            std::fclose(stream);
    } else {
        std::snprintf(errorText, sizeof errorText, "cannot read from memory");
    }
    return start(handle, errorText, QCoreApplication::translate("CaptureFile", "the capture"), memory_.left(4));
}

bool CaptureFile::start(pcap* handle, const char* errorText, const QString& name, const QByteArray& head)
{
    if (!handle) {
        error_ = QCoreApplication::translate("CaptureFile", "Cannot read %1 as a capture: %2")
                     .arg(name, QString::fromLocal8Bit(errorText));
        return false;
    }
    handle_ = handle;
    const int dlt = pcap_datalink(handle_);
    const char* linkName = pcap_datalink_val_to_name(dlt);
    summary_.format = formatName(formatOf(head));
    summary_.linkName = linkName ? QString::fromLatin1(linkName) : QString::number(dlt);
    link_ = linkTypeFromDlt(dlt);
    if (link_ == LinkType::Unsupported) {
        error_ = QCoreApplication::translate(
                     "CaptureFile",
                     "The link type %1 (%2) of %3 is not supported: only Ethernet, Linux cooked (SLL, SLL2), "
                     "raw IP and BSD loopback captures can be read")
                     .arg(dlt)
                     .arg(summary_.linkName, name);
        return false;
    }
    return true;
}

void CaptureFile::readDatagrams(quint16 port, const PayloadSink& sink)
{
    if (!handle_)
        return;
    DatagramExtractor extractor(link_, port);
    bool stopped = false;
    qint64 timeNs = 0;
    const auto forward = [&](const QByteArray& payload) {
        if (summary_.firstDatagramNs < 0)
            summary_.firstDatagramNs = timeNs;
        summary_.lastDatagramNs = timeNs;
        if (!stopped && !sink(payload))
            stopped = true;
    };
    pcap_pkthdr* header = nullptr;
    const u_char* data = nullptr;
    while (!stopped) {
        const int result = pcap_next_ex(handle_, &header, &data);
        if (result == PCAP_ERROR_BREAK)
            break;  // the end of the file
        if (result != 1) {
            summary_.damage = QString::fromLocal8Bit(pcap_geterr(handle_));
            break;
        }
        ++summary_.packets;
        timeNs = nanosecondsOf(header->ts);
        extractor.feed(data, header->caplen, header->len, forward);
    }
    extractor.finish();
    summary_.counts = extractor.counts();
}

qint64 CaptureFile::position() const
{
    FILE* stream = handle_ ? pcap_file(handle_) : nullptr;
    return stream ? qint64(std::ftell(stream)) : -1;
}

QStringList CaptureFile::warnings() const
{
    QStringList lines;
    const DatagramCounts& c = summary_.counts;
    if (!summary_.damage.isEmpty())
        lines << QCoreApplication::translate(
                     "CaptureFile",
                     "The capture is damaged or cut short after %1 packets (%2); what came before is used")
                     .arg(summary_.packets)
                     .arg(summary_.damage);
    if (c.cutShort > 0)
        lines << QCoreApplication::translate(
                     "CaptureFile", "%1 datagrams were not captured whole (snapshot length too small) and were skipped")
                     .arg(c.cutShort);
    if (c.fragmentsDropped > 0)
        lines << QCoreApplication::translate("CaptureFile",
                                             "%1 IP fragments never made a whole datagram and were skipped")
                     .arg(c.fragmentsDropped);
    if (c.malformed > 0)
        lines << QCoreApplication::translate("CaptureFile", "%1 packets with broken headers were skipped")
                     .arg(c.malformed);
    return lines;
}

QString CaptureFile::noDatagramMessage(quint16 port) const
{
    QString text =
        QCoreApplication::translate("CaptureFile", "The capture holds no UDP datagram to port %1 (%2 packets read)")
            .arg(port)
            .arg(summary_.packets);
    if (!summary_.counts.otherPorts.isEmpty()) {
        QStringList ports;
        for (quint16 p : summary_.counts.otherPorts)
            ports << QString::number(p);
        text += QCoreApplication::translate("CaptureFile", "; its UDP datagrams go to port %1")
                    .arg(ports.join(QStringLiteral(", ")));
    }
    return text;
}

}  // namespace capture
