#pragma once
// Synthetic packet streams for the benchmark: whole revolutions of 24
// packets of 15 degrees for each model, every measurement valid, GPS time
// advancing by 1/240 s a packet (10 revolutions a second).

#include <QByteArray>
#include <QString>
#include <QVector>

namespace bench {

struct Stream {
    QVector<QByteArray> packets;  // one datagram each
    // Elements a recording carries before the packets (Tern_P: its version).
    QVector<QByteArray> recordPrefix;
    int versionNumber = 0;  // for a live Tern_P session
};

// Whether packets of this model can be made here.
bool canBuild(const QString& model);
// `revolutions` turns of `model`; empty for a model canBuild() rejects.
Stream buildStream(const QString& model, int revolutions);

}  // namespace bench
