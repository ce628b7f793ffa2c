// One model's offline parse fed an arbitrary packet list: element lengths
// from the end of the input, their bytes from its front. The list is parsed
// whole, as the registry parses a recording, and again in batches of
// arbitrary size, as long recordings are streamed; both must give the same
// frames. Built once per model, SCANDECK_FUZZ_MODEL naming the class.

#include "FuzzChecks.h"
#include "LIdarFactory.h"
#include "OfflineParseState.h"
#include "RecordFile.h"

#define SCANDECK_STRING(name) #name
#define SCANDECK_NAME(name) SCANDECK_STRING(name)

namespace {

const QString kModel = QStringLiteral(SCANDECK_NAME(SCANDECK_FUZZ_MODEL));

// The parse keeps its unfinished turn for the next call: brought to the same
// point before each parse, so that memory cannot build up across inputs and
// the two parses of an input start alike.
void settle()
{
    testing::settleOfflineParse(kModel);
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    settle();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const LIdarFactory* registry = LIdarFactory::GetInstance();
    FuzzedDataProvider input(data, size);
    const int prefix = lidar::recordPrefixElements(kModel);
    const size_t batch = input.ConsumeIntegralInRange<size_t>(1, 16);
    QVector<QByteArray> elements;
    while (input.remaining_bytes() > 0) {
        const size_t length = input.ConsumeIntegralInRange<size_t>(0, 300);
        elements.append(fuzzing::takeBytes(input, length));
    }

    const QVector<lidar::LidarDataPoint_V4> whole = registry->parseMap.value(kModel)(elements);
    for (const lidar::LidarDataPoint_V4& frame : whole)
        fuzzing::checkFrame(frame);
    settle();

    QVector<lidar::LidarDataPoint_V4> batched;
    const auto parseBatch = registry->batchParseMap.value(kModel);
    const QVector<QByteArray> lead = elements.mid(0, prefix);
    for (int at = prefix; at < elements.size(); at += int(batch))
        if (!parseBatch(lead + elements.mid(at, int(batch)), batched))
            break;
    settle();
    fuzzing::require(fuzzing::sameFrames(whole, batched), "batches give the frames of one parse");
    return 0;
}
