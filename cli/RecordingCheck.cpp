#include "RecordingCheck.h"

#include "LIdarFactory.h"

QString damageText(const lidar::RecordingStream& stream)
{
    const lidar::RecordReader::Damage damage = stream.damage();
    if (damage.length < 0)
        return QStringLiteral("truncated or damaged: the file announces %1 elements but ends after %2")
            .arg(stream.announcedCount())
            .arg(damage.element);
    return QStringLiteral("truncated or damaged: element %1 claims %2 bytes, only %3 remain")
        .arg(damage.element)
        .arg(damage.length)
        .arg(damage.remaining);
}

bool openRecording(lidar::RecordingStream& stream, QString& problem)
{
    if (!stream.open()) {
        switch (stream.problem()) {
        case lidar::RecordingStream::Problem::CannotOpen:
            problem = QStringLiteral("cannot open: %1").arg(stream.errorString());
            break;
        case lidar::RecordingStream::Problem::NoElements:
            problem = QStringLiteral("the recording holds no elements");
            break;
        default:
            if (stream.fileSize() == 0)
                problem = QStringLiteral("empty file");
            else if (stream.fileSize() < 4)
                problem = QStringLiteral("%1 bytes, too short for the element count")
                              .arg(stream.fileSize());
            else
                problem = damageText(stream);
        }
        return false;
    }
    if (!stream.isKnownModel()) {
        QString shown = stream.model().left(40);
        for (QChar& c : shown)
            if (!c.isPrint())
                c = QLatin1Char('?');
        problem = QStringLiteral("recording of an unknown model \"%1\" (known: %2)")
                      .arg(shown, LIdarFactory::GetInstance()->ModelNames().join(QStringLiteral(", ")));
        return false;
    }
    return true;
}
