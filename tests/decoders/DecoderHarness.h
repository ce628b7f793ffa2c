#pragma once
// Driving decoder sessions directly in tests: sessions made as the registry
// makes them, bytes fed in, and what the sessions emit.

#include "LIdarFactory.h"

#include <QSignalSpy>
#include <memory>

namespace testing {

// A session of `model` from its registered meta-object, both addresses on 127.0.0.1.
inline std::unique_ptr<LidarAnalysis> makeSession(const QString& model)
{
    const auto& classes = LIdarFactory::GetInstance()->classMap;  // keyed by name pointers
    for (auto it = classes.constBegin(); it != classes.constEnd(); ++it) {
        if (QLatin1String(it.key()) != model)
            continue;
        std::unique_ptr<LidarAnalysis> session(qobject_cast<LidarAnalysis*>(it.value()->newInstance()));
        if (session)
            session->lidarIp = session->dataIp = QStringLiteral("127.0.0.1");
        return session;
    }
    return nullptr;
}

// Appends `bytes` and lets the session parse them once.
inline void feed(LidarAnalysis& session, const QByteArray& bytes)
{
    session.receiveBuffer.append(bytes);
    session.ParseLidarData();
}

// The first argument of every signal a spy caught.
template <typename T>
QList<T> spied(const QSignalSpy& spy)
{
    QList<T> values;
    for (const QList<QVariant>& call : spy)
        values.append(call.at(0).value<T>());
    return values;
}

}  // namespace testing
