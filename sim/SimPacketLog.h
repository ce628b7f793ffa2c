#pragma once
// The simulator's ground truth for the stream-health accounting: one line
// per data packet it produced, in order, telling the revolution it belongs
// to, its place in that revolution, its start angle, what became of it and
// how many junk bytes went out just before it:
//
//   # revolution packet start_deg fate junk_bytes
//   0 0 0.00 sent 0
//   0 1 15.00 dropped 0
//   0 2 30.00 corrupted 12
//
// fate is sent, dropped (never sent) or corrupted (sent damaged, see
// SimFaultInjector.h). The file is written as the packets go out.

#include "SimFaultInjector.h"

#include <QFile>
#include <QString>

namespace sim {

class PacketLog {
public:
    // False with `error` when the file cannot be written.
    bool open(const QString& fileName, QString* error);
    bool isOpen() const { return file_.isOpen(); }
    void write(qint64 revolution, int packet, double startDegrees, const PacketFate& fate);
    void close();

    static QString fateName(PacketFate::Kind kind);

private:
    QFile file_;
};

}  // namespace sim
