#include "SimPacketLog.h"

namespace sim {

bool PacketLog::open(const QString& fileName, QString* error)
{
    file_.setFileName(fileName);
    if (!file_.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Text)) {
        *error = QStringLiteral("cannot write %1: %2").arg(fileName, file_.errorString());
        return false;
    }
    file_.write("# revolution packet start_deg fate junk_bytes\n");
    return true;
}

QString PacketLog::fateName(PacketFate::Kind kind)
{
    switch (kind) {
    case PacketFate::Kind::Dropped: return QStringLiteral("dropped");
    case PacketFate::Kind::Corrupted: return QStringLiteral("corrupted");
    case PacketFate::Kind::Sent: break;
    }
    return QStringLiteral("sent");
}

void PacketLog::write(qint64 revolution, int packet, double startDegrees, const PacketFate& fate)
{
    if (!file_.isOpen())
        return;
    const QString line = QStringLiteral("%1 %2 %3 %4 %5\n")
                             .arg(revolution)
                             .arg(packet)
                             .arg(startDegrees, 0, 'f', 2)
                             .arg(fateName(fate.kind))
                             .arg(fate.junkBytes);
    file_.write(line.toLatin1());
}

void PacketLog::close()
{
    if (file_.isOpen())
        file_.close();
}

}  // namespace sim
