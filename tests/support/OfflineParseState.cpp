#include "OfflineParseState.h"

#include "LIdarFactory.h"
#include "PacketBuilders.h"
#include "RecordFile.h"

#include <QMap>

namespace testing {

void settleOfflineParse(const QString& model)
{
    static QMap<QString, QVector<QByteArray>> wraps;  // built once per model: fuzzers call this per input
    QVector<QByteArray>& elements = wraps[model];
    if (elements.isEmpty()) {
        const QVector<QByteArray> turn = revolutionPackets(model, 1);
        if (lidar::recordPrefixElements(model) > 0)
            elements.append("215");
        for (int twice = 0; twice < 2; ++twice)
            elements << turn[turn.size() - 2] << turn.last();
    }
    LIdarFactory::GetInstance()->parseMap.value(model)(elements);
}

}  // namespace testing
