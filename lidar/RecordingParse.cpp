#include "RecordingParse.h"

#include "RecordFile.h"
#include "RecordReader.h"
#include "RecordingDecoder.h"

#include <QFile>
#include <algorithm>

namespace lidar {
namespace {

// Reading takes about a tenth of the time decoding does.
constexpr int kReadShare = 100;
constexpr int kReportEvery = RecordingDecoder::kBatchPackets;

}  // namespace

ParsedRecording parseRecording(const QString& fileName, const ParseProgress& progress)
{
    ParsedRecording cancelled;
    cancelled.cancelled = true;
    auto goOn = [&](qint64 done, qint64 total, int from, int share) {
        return !progress || progress(from + int(share * done / std::max<qint64>(total, 1)));
    };

    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    RecordReader reader(file);
    QVector<QByteArray> elements;
    QByteArray element;
    while (reader.next(element)) {
        elements.append(element);
        if (elements.size() % kReportEvery == 0 && !goOn(reader.position(), file.size(), 0, kReadShare))
            return cancelled;
    }
    // An element that cannot be read voids the whole recording ("File has no data").
    if (reader.status() != RecordReader::Status::Complete || elements.isEmpty())
        return {};

    ParsedRecording result;
    result.model = QString::fromUtf8(elements.first());
    const int first = 1 + std::min(recordPrefixElements(result.model), elements.size() - 1);
    RecordingDecoder decoder(result.model, elements.mid(1, first - 1));
    if (!decoder.isKnownModel())
        return result;
    const int packets = elements.size() - first;
    for (int i = first; i < elements.size(); ++i) {
        decoder.add(elements[i], result.frames);
        elements[i] = QByteArray();  // decoded packets give their memory back
        const int done = i - first + 1;
        if (done % kReportEvery == 0 && !goOn(done, packets, kReadShare, 1000 - kReadShare))
            return cancelled;
    }
    decoder.finish(result.frames);
    if (progress)
        progress(1000);
    return result;
}

}  // namespace lidar
