// Captures as recordings: pcap and pcapng files in every time resolution and
// byte order, the link types tcpdump and Wireshark write, datagrams cut or
// joined differently from packets, fragments and other traffic mixed in, and
// captures that cannot be used.

#include "CaptureBuilders.h"
#include "CaptureFrames.h"
#include "CsvWriter.h"
#include "LiveStreamFrames.h"
#include "PacketBuilders.h"
#include "Tern.h"

#include <QBuffer>
#include <QtEndian>
#include <QTemporaryDir>
#include <QtTest>

using namespace testing;
using Frame = lidar::LidarDataPoint_V4;

namespace {

constexpr quint16 kPort = 2368;

// Everything a frame holds, as text that compares and prints well.
QByteArray frameText(const Frame& frame)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    {
        CsvWriter writer(&buffer);
        writer.writeFrame(0, frame);
    }
    return QByteArray::number(frame.ambient) + ' ' + QByteArray::number(frame.motorSpeed) + ' '
           + frame.dateTime.toUtf8() + '\n' + buffer.data();
}

uint32_t versionFor(const QString& model)
{
    return model == QLatin1String("Tern_P") ? 215 : 0;  // the builders' Tern_P packets need 215
}

// The frames the model's live session makes of the packets, one read each.
// A first pass leaves the model's program-wide state where the capture's
// pass will find it too.
QList<QByteArray> liveFrames(const QString& model, const QVector<QByteArray>& packets)
{
    QList<QByteArray> texts;
    for (int pass = 0; pass < 2; ++pass) {
        texts.clear();
        auto stream = lidar::LiveStreamFrames::create(model, [&](Frame& f) { texts << frameText(f); });
        stream->setVersionNumber(versionFor(model));
        for (const QByteArray& packet : packets)
            stream->feed(packet);
    }
    return texts;
}

capture::CaptureFramesResult readCapture(const QString& path, const QString& model, QList<QByteArray>& texts)
{
    capture::CaptureOptions options;
    options.model = model;
    options.versionNumber = versionFor(model);
    return capture::readCaptureFrames(path, options, [&](Frame& f) {
        texts << frameText(f);
        return true;
    });
}

QVector<QByteArray> ethernetUdp(const QVector<QByteArray>& payloads, uint16_t port = kPort)
{
    QVector<QByteArray> frames;
    for (int i = 0; i < payloads.size(); ++i)
        frames << ethernet(udp4(port, payloads[i], uint16_t(i)));
    return frames;
}

}  // namespace

class CaptureTest : public QObject {
    Q_OBJECT
private slots:
    void framesAsLive_data();
    void framesAsLive();
    void unusableCaptures_data();
    void unusableCaptures();

private:
    QString write(const QByteArray& content)
    {
        QFile file(dir_.filePath(QStringLiteral("capture%1.pcap").arg(++files_)));
        return file.open(QIODevice::WriteOnly) && file.write(content) == content.size() ? file.fileName() : QString();
    }
    QTemporaryDir dir_;
    int files_ = 0;
};

void CaptureTest::framesAsLive_data()
{
    QTest::addColumn<QString>("model");
    QTest::addColumn<QByteArray>("capture");
    QTest::addColumn<qint64>("reassembled");

    using F = CaptureFormat;
    struct Format {
        const char* name;
        F format;
        bool big;
        const char* model;
    };
    for (const Format& f : {Format{"pcap us, little-endian", F::PcapMicroseconds, false, "Tern"},
                            Format{"pcap us, big-endian", F::PcapMicroseconds, true, "Tern_GPS"},
                            Format{"pcap ns, little-endian", F::PcapNanoseconds, false, "Wren_Plus"},
                            Format{"pcap ns, big-endian", F::PcapNanoseconds, true, "Wren_Kite"},
                            Format{"pcapng, little-endian", F::PcapNg, false, "Tern_P"},
                            Format{"pcapng, big-endian", F::PcapNg, true, "Tern_Plus"}}) {
        const QVector<QByteArray> packets = revolutionPackets(f.model, 3);
        QTest::newRow(f.name) << f.model << captureFile(f.format, f.big, kLinkEthernet, ethernetUdp(packets))
                              << qint64(0);
    }

    const QVector<QByteArray> tern = revolutionPackets("Tern", 3);
    auto linkRow = [&](const char* name, int link, const std::function<QByteArray(const QByteArray&)>& wrap) {
        QVector<QByteArray> frames;
        for (const QByteArray& packet : tern)
            frames << wrap(packet);
        QTest::newRow(name) << "Tern" << captureFile(F::PcapMicroseconds, false, link, frames) << qint64(0);
    };
    linkRow("Linux cooked (SLL)", kLinkLinuxSll, [](const QByteArray& p) { return linuxSll(udp4(kPort, p)); });
    linkRow("Linux cooked (SLL2), IPv6", kLinkLinuxSll2, [](const QByteArray& p) { return linuxSll2(udp6(kPort, p)); });
    linkRow("raw IPv4", kLinkRaw, [](const QByteArray& p) { return udp4(kPort, p); });
    linkRow("raw IPv6", kLinkRaw, [](const QByteArray& p) { return udp6(kPort, p); });
    linkRow("BSD loopback, host order", kLinkNull,
            [](const QByteArray& p) { return bsdLoopback(udp4(kPort, p), false); });
    linkRow("BSD loopback, network order, IPv6", kLinkLoop,
            [](const QByteArray& p) { return bsdLoopback(udp6(kPort, p), true); });
    linkRow("802.1Q inside 802.1ad tags", kLinkEthernet, [](const QByteArray& p) {
        return ethernet(udp4(kPort, p), {0x88A8, 0x8100});
    });

    // The stream is what counts, not how it was cut into datagrams.
    QVector<QByteArray> halves, triples;
    for (const QByteArray& packet : tern)
        halves << packet.left(37) << packet.mid(37);
    for (int i = 0; i < tern.size(); i += 3)
        triples << tern.mid(i, 3).toList().join();
    QTest::newRow("packets split over two datagrams")
        << "Tern" << captureFile(F::PcapMicroseconds, false, kLinkEthernet, ethernetUdp(halves)) << qint64(0);
    QTest::newRow("three packets a datagram")
        << "Tern" << captureFile(F::PcapMicroseconds, false, kLinkEthernet, ethernetUdp(triples)) << qint64(0);

    // Fragments (one datagram's arriving out of order), TCP, other ports and
    // ARP between the datagrams.
    QVector<QByteArray> mixed;
    const QByteArray arp = QByteArray(12, '\0') + QByteArray("\x08\x06", 2) + QByteArray(46, '\x01');
    for (int i = 0; i < tern.size(); ++i) {
        if (i % 5 == 1) {
            QVector<QByteArray> pieces = ipv4Fragments(udp4(kPort, tern[i], uint16_t(100 + i)), 32);
            if (i == 6)
                std::reverse(pieces.begin(), pieces.end());
            for (const QByteArray& piece : pieces)
                mixed << ethernet(piece) << ethernet(tcp4(kPort, "not for us"));
        } else {
            mixed << ethernet(udp4(kPort, tern[i])) << ethernet(udp4(2369, "reply elsewhere")) << arp;
        }
    }
    QTest::newRow("IPv4 fragments among other traffic")
        << "Tern" << captureFile(F::PcapMicroseconds, false, kLinkEthernet, mixed) << qint64((tern.size() + 3) / 5);
    QVector<QByteArray> fragments6;
    for (int i = 0; i < tern.size(); ++i)
        for (const QByteArray& piece : ipv6Fragments(udp6(kPort, tern[i]), 48, uint32_t(i)))
            fragments6 << ethernet(piece);
    QTest::newRow("IPv6 fragments") << "Tern" << captureFile(F::PcapNg, false, kLinkEthernet, fragments6)
                                    << qint64(tern.size());
}

void CaptureTest::framesAsLive()
{
    QFETCH(QString, model);
    QFETCH(QByteArray, capture);
    QFETCH(qint64, reassembled);
    const QList<QByteArray> expected = liveFrames(model, revolutionPackets(model, 3));
    QCOMPARE(expected.size(), 3);

    QList<QByteArray> texts;
    const auto result = readCapture(write(capture), model, texts);
    QVERIFY2(result.ok, qPrintable(result.error));
    QVERIFY2(result.warnings.isEmpty(), qPrintable(result.warnings.join('\n')));
    QCOMPARE(texts, expected);
    QCOMPARE(result.frames, qint64(3));
    QCOMPARE(result.summary.counts.reassembled, reassembled);
}

void CaptureTest::unusableCaptures_data()
{
    QTest::addColumn<QByteArray>("capture");
    QTest::addColumn<QString>("error");    // empty: the capture is read
    QTest::addColumn<QString>("warning");  // empty: nothing to say
    QTest::addColumn<int>("frames");

    using F = CaptureFormat;
    const QVector<QByteArray> tern = revolutionPackets("Tern", 3);
    const QByteArray good = captureFile(F::PcapMicroseconds, false, kLinkEthernet, ethernetUdp(tern));
    QTest::newRow("not a capture") << QByteArray("FrameNumbers,ID\n1,0\n") << "as a capture"
                                   << "" << 0;
    QTest::newRow("empty file") << QByteArray() << "as a capture"
                                << "" << 0;
    QTest::newRow("cut inside the file header") << good.left(10) << "as a capture"
                                                << "" << 0;
    QTest::newRow("wireless link type") << captureFile(F::PcapMicroseconds, false, kLinkIeee80211,
                                                       QVector<QByteArray>{QByteArray(40, '\0')})
                                        << "link type 105 (IEEE802_11)"
                                        << "" << 0;
    QTest::newRow("datagrams only to another port")
        << captureFile(F::PcapNg, false, kLinkEthernet, ethernetUdp(tern, 2370))
        << "no UDP datagram to port 2368 (73 packets read); its UDP datagrams go to port 2370"
        << "" << 0;
    // The last record, which closes the third turn, is cut in half.
    QTest::newRow("file cut inside a packet") << good.left(good.size() - 50) << ""
                                              << "cut short after 72 packets" << 2;
    QVector<CapturedPacket> snapped;
    for (int i = 0; i < tern.size(); ++i) {
        const QByteArray frame = ethernetUdp({tern[i]}).first();
        snapped << (i >= 24 ? CapturedPacket{frame.left(64), frame.size()} : CapturedPacket{frame, -1});
    }
    QTest::newRow("snapshot length too small") << captureFile(F::PcapMicroseconds, true, kLinkEthernet, snapped) << ""
                                               << "49 datagrams were not captured whole" << 0;
    QVector<QByteArray> lostPiece = ethernetUdp(tern);
    lostPiece << ethernet(ipv4Fragments(udp4(kPort, tern[0], 999), 40).first());
    QByteArray lying = ethernet(udp4(kPort, tern[0]));
    lying[14 + 3] = char(0xF0);  // the IP length claims more than the frame holds
    lostPiece.insert(10, lying);
    QTest::newRow("a lost fragment and a broken header")
        << captureFile(F::PcapMicroseconds, false, kLinkEthernet, lostPiece) << ""
        << "1 IP fragments never made a whole datagram and were skipped\n1 packets with broken headers were skipped"
        << 3;
    // pcapng time stamps are 64-bit counts: these lie beyond the year 2262,
    // past what nanoseconds since 1970 hold in 64 bits.
    QByteArray farFuture = captureFile(F::PcapNg, false, kLinkEthernet, ethernetUdp(tern));
    for (int block = 28 + 32; block + 16 <= farFuture.size(); block += qFromLittleEndian<quint32>(farFuture.constData() + block + 4))
        qToLittleEndian<quint32>(0xFFFFFFF0u, farFuture.data() + block + 12);  // the stamp's high word
    QTest::newRow("time stamps beyond the year 2262") << farFuture << "" << "" << 3;
}

void CaptureTest::unusableCaptures()
{
    QFETCH(QByteArray, capture);
    QFETCH(QString, error);
    QFETCH(QString, warning);
    QFETCH(int, frames);
    Tern::previousAzimuth = -1.0f;  // as in a fresh program: no empty first frame
    QList<QByteArray> texts;
    const auto result = readCapture(write(capture), QStringLiteral("Tern"), texts);
    QCOMPARE(result.ok, error.isEmpty());
    QVERIFY2(result.error.contains(error, Qt::CaseInsensitive), qPrintable(result.error));
    QVERIFY2(result.warnings.join('\n').contains(warning), qPrintable(result.warnings.join('\n')));
    QCOMPARE(texts.size(), frames);
    if (result.summary.counts.datagrams > 0)
        QVERIFY(result.summary.firstDatagramNs >= 0 && result.summary.lastDatagramNs >= result.summary.firstDatagramNs);

    // From memory, as the fuzz target reads, the same happens.
    capture::CaptureFile memory;
    if (memory.openBytes(capture))
        memory.readDatagrams(kPort, [](const QByteArray&) { return true; });
    else
        QVERIFY(!error.isEmpty());
}

QTEST_GUILESS_MAIN(CaptureTest)
#include "tst_capture.moc"
