#include "RecordingCheck.h"

#include "LIdarFactory.h"

#include <QDataStream>
#include <QFile>

namespace {

RecordingCheck failure(const QString& problem)
{
    RecordingCheck check;
    check.problem = problem;
    return check;
}

}  // namespace

RecordingCheck checkRecording(const QString& fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return failure(QStringLiteral("cannot open: %1").arg(file.errorString()));
    const qint64 size = file.size();
    if (size == 0)
        return failure(QStringLiteral("empty file"));
    if (size < 4)
        return failure(QStringLiteral("%1 bytes, too short for the element count").arg(size));

    QDataStream in(&file);
    quint32 count = 0;
    in >> count;
    if (count == 0)
        return failure(QStringLiteral("the recording holds no elements"));

    RecordingCheck check;
    check.elementCount = count;
    qint64 position = 4;
    for (quint32 i = 0; i < count; ++i) {
        if (position + 4 > size)
            return failure(QStringLiteral("truncated or damaged: the file announces %1 elements but ends after %2")
                               .arg(count)
                               .arg(i));
        quint32 length = 0;
        in >> length;
        position += 4;
        if (length == 0xFFFFFFFFu)  // a null byte array: no bytes follow
            length = 0;
        if (position + qint64(length) > size)
            return failure(QStringLiteral("truncated or damaged: element %1 claims %2 bytes, only %3 remain")
                               .arg(i)
                               .arg(length)
                               .arg(size - position));
        if (i == 0) {
            const QByteArray name = file.read(length);
            check.model = QString::fromUtf8(name);
        } else {
            file.seek(position + length);
        }
        position += length;
    }

    const QStringList models = LIdarFactory::GetInstance()->ModelNames();
    if (!LIdarFactory::GetInstance()->parseMap.contains(check.model)) {
        QString shown = check.model.left(40);
        for (QChar& c : shown)
            if (!c.isPrint())
                c = QLatin1Char('?');
        return failure(QStringLiteral("recording of an unknown model \"%1\" (known: %2)")
                           .arg(shown, models.join(QStringLiteral(", "))));
    }
    check.ok = true;
    return check;
}
