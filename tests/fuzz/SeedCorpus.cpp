// Writes the fuzz targets' seed inputs from the test packet builders, laid
// out the way each target reads its input (bytes from the front, lengths
// from the end, see the targets). The seeds are checked in under
// tests/fuzz/corpus; after changing a target's input layout, run
//   build-fuzz/fuzz/scandeck-fuzz-seeds tests/fuzz/corpus

#include "CaptureBuilders.h"
#include "PacketBuilders.h"
#include "RecordFile.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <algorithm>
#include <cstdio>

using namespace testing;

namespace {

const QStringList kModels{"Tern", "Tern_GPS", "Tern_P", "Tern_Plus", "Wren_Plus", "Wren_Kite"};

// What FuzzedDataProvider reads from the end: the values in the order they
// are consumed, each as its bytes (most significant first), the first value
// at the very end.
class Tail {
public:
    void add(unsigned value, int bytes)
    {
        for (int i = bytes - 1; i >= 0; --i)
            consumed_.append(char(value >> (8 * i)));
    }
    QByteArray bytes() const
    {
        QByteArray reversed;
        for (auto it = consumed_.crbegin(); it != consumed_.crend(); ++it)
            reversed.append(*it);
        return reversed;
    }

private:
    QByteArray consumed_;
};

// The last turn's closing packets and the one that opens the next, so that
// a frame ends.
QVector<QByteArray> closingPackets(const QString& model)
{
    return revolutionPackets(model, 1).mid(19);
}

QByteArray replyOf(const QString& model)
{
    if (model == "Tern")
        return ternReply({0x18, 5, 20, 1, 2, 3}, 11);
    if (model == "Tern_GPS")
        return ternLongReply(175, {0x18, 5, 20, 1, 2, 3}, 12);
    if (model.startsWith("Tern"))
        return ternLongReply(173, {0x18, 5, 20, 2, 1, 5}, 10);
    return wrenReply(3, {0x18, 5, 20, 1, 2, 3}, 1);
}

// The live target: the stream, cut into `pieces` lengths in turn.
QByteArray liveInput(const QByteArray& stream, const QVector<int>& pieces)
{
    Tail tail;
    tail.add(1, 1);  // firmware 215 for Tern_P
    int at = 0;
    for (int i = 0; at < stream.size(); ++i) {
        const int length = std::min(pieces[i % pieces.size()], int(stream.size()) - at);
        tail.add(unsigned(length - 1), 2);
        at += length;
    }
    return stream + tail.bytes();
}

// The offline target: the elements, parsed again in batches of `batch`.
QByteArray offlineInput(const QVector<QByteArray>& elements, int batch)
{
    Tail tail;
    tail.add(unsigned(batch - 1), 1);
    QByteArray front;
    for (const QByteArray& element : elements) {
        tail.add(unsigned(element.size()), 2);
        front += element;
    }
    return front + tail.bytes();
}

QByteArray recordingOf(const QVector<QByteArray>& elements)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    lidar::writeRecordElements(buffer, elements);
    return buffer.data();
}

// The record-file target: the file, read in pieces of `piece` bytes.
QByteArray recordInput(const QByteArray& file, int piece)
{
    Tail tail;
    tail.add(unsigned(piece - 1), 2);
    return file + tail.bytes();
}

// The capture target: a capture of `model`'s stream.
QByteArray captureInput(const QByteArray& capture, int model)
{
    Tail tail;
    tail.add(unsigned(model), 1);
    tail.add(1, 1);  // firmware 215 for Tern_P
    return capture + tail.bytes();
}

bool write(const QDir& dir, const QString& target, const QString& name, const QByteArray& bytes)
{
    if (!dir.mkpath(target))
        return false;
    QFile file(dir.filePath(target + "/" + name));
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

}  // namespace

int main(int argc, char* argv[])
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s <corpus directory>\n", argv[0]);
        return 2;
    }
    const QDir dir(QString::fromLocal8Bit(argv[1]));
    bool ok = true;
    for (int m = 0; m < kModels.size(); ++m) {
        const QString& model = kModels[m];
        const QVector<QByteArray> packets = closingPackets(model);
        const QVector<QByteArray> prefix = lidar::recordPrefixElements(model) ? QVector<QByteArray>{"215"}
                                                                               : QVector<QByteArray>{};
        QByteArray clean, junky;
        for (int i = 0; i < packets.size(); ++i) {
            if (i == 2)
                clean += replyOf(model);
            clean += packets[i];
            junky += QByteArray("\x11\xA5\xFA\x5A\x00", i % 5) + packets[i];
        }
        ok = write(dir, "live_" + model, "reply-in-pieces", liveInput(clean, {37, 200, 1, 91, 512})) && ok;
        ok = write(dir, "live_" + model, "junk-between-packets", liveInput(junky, {64})) && ok;

        ok = write(dir, "offline_" + model, "turn-end", offlineInput(prefix + packets, 2)) && ok;
        QVector<QByteArray> damaged = prefix + packets;
        damaged[prefix.size() + 1].chop(3);  // cut short: skipped, or the end of a Tern parse
        ok = write(dir, "offline_" + model, "short-packet", offlineInput(damaged, 16)) && ok;

        const QByteArray file = recordingOf(QVector<QByteArray>{model.toLatin1()} + prefix + packets.mid(0, 3));
        ok = write(dir, "record_file", model, recordInput(file, 100)) && ok;

        // The stream in datagrams of a packet each, one capture per model in
        // a different format and link type, one with a reply and other
        // traffic, one with a datagram in IP fragments.
        QVector<QByteArray> frames;
        for (int i = 0; i < packets.size(); ++i) {
            const QByteArray datagram = i == 2 ? replyOf(model) + packets[i] : packets[i];
            switch (m) {
            case 0:
                frames << ethernet(udp4(2368, datagram));
                break;
            case 1:
                frames << linuxSll2(udp6(2368, datagram));
                break;
            case 2:
                frames << ethernet(udp4(2368, datagram), {0x8100}) << ethernet(udp4(2369, "other"));
                break;
            case 3:
                frames << (i == 1 ? ipv4Fragments(udp4(2368, datagram, 9), 48) : QVector<QByteArray>{udp4(2368, datagram)});
                break;
            case 4:
                frames << linuxSll(udp4(2368, datagram)) << linuxSll(tcp4(2368, "tcp"));
                break;
            default:
                frames << bsdLoopback(udp6(2368, datagram), true);
            }
        }
        const CaptureFormat formats[] = {CaptureFormat::PcapMicroseconds, CaptureFormat::PcapNg,
                                         CaptureFormat::PcapNanoseconds, CaptureFormat::PcapMicroseconds,
                                         CaptureFormat::PcapNg, CaptureFormat::PcapMicroseconds};
        const int links[] = {kLinkEthernet, kLinkLinuxSll2, kLinkEthernet, kLinkRaw, kLinkLinuxSll, kLinkLoop};
        const QByteArray capture = captureFile(formats[m], m % 2 == 1, links[m], frames);
        ok = write(dir, "capture", model, captureInput(capture, m)) && ok;
    }
    const QByteArray file = recordingOf(QVector<QByteArray>{"Tern", QByteArray(), ""} + closingPackets("Tern"));
    ok = write(dir, "record_file", "truncated", recordInput(file.left(file.size() - 40), 7)) && ok;
    return ok ? 0 : 1;
}
