#include "RecentFolder.h"

#include "IniSettings.h"

#include <QDir>
#include <QFileInfo>

namespace recentfolder {
namespace {
const QString kKey = QStringLiteral("last folder");
}

QString folder(const IniSettings& settings, const QString& fallback)
{
    const QString stored = settings.value(QString(), kKey);
    if (stored.isEmpty() || !QFileInfo(stored).isDir())
        return fallback;
    return stored;
}

void remember(IniSettings& settings, const QString& filePath)
{
    if (filePath.isEmpty())
        return;
    const QString dir = QFileInfo(filePath).absolutePath();
    if (settings.value(QString(), kKey) != dir)
        settings.setValue(QString(), kKey, dir);
}

QString proposedPath(const IniSettings& settings, const QString& fileName, const QString& fallbackFolder)
{
    const QString dir = folder(settings, QString());
    if (dir.isEmpty())
        return fallbackFolder + fileName;
    return QDir(dir).filePath(fileName);
}

}  // namespace recentfolder
