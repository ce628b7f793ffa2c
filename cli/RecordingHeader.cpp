#include "RecordingHeader.h"

#include "LIdarFactory.h"

#include <QDataStream>
#include <QFile>

namespace cli {
namespace {

// The longest model name is far below this; a longer first element is no name.
constexpr quint32 kLongestModelName = 64;

}  // namespace

bool beginsLikeRecording(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return true;
    QDataStream in(&file);
    quint32 count = 0, length = 0;
    in >> count >> length;
    if (in.status() != QDataStream::Ok || count == 0 || length == 0 || length > kLongestModelName)
        return false;
    const QByteArray name = file.read(length);
    return name.size() == int(length) && LIdarFactory::GetInstance()->parseMap.contains(QString::fromLatin1(name));
}

}  // namespace cli
