#include "ProgramFiles.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

namespace {

const QString kSettingsInData = QStringLiteral("/ini/connect_type.ini");

}  // namespace

bool ProgramFiles::installed_ = false;
QString ProgramFiles::dataDir_ = QStringLiteral(".");
QString ProgramFiles::settingsFile_ = QStringLiteral("./ini/connect_type.ini");
QString ProgramFiles::problem_;

bool ProgramFiles::locate(UserSettings userSettings)
{
    return locate(QCoreApplication::applicationDirPath(),
                  QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation), userSettings);
}

bool ProgramFiles::locate(const QString& programDir, const QString& configHome, UserSettings userSettings)
{
    problem_.clear();
    const QString dataDir = QDir::cleanPath(programDir + QLatin1Char('/') + QLatin1String(kInstalledDataDir));
    const QString shipped = dataDir + kSettingsInData;
    installed_ = QFileInfo(shipped).isFile();
    if (!installed_) {
        dataDir_ = QStringLiteral(".");
        settingsFile_ = QStringLiteral(".") + kSettingsInData;
        return true;
    }
    dataDir_ = dataDir;
    const QString userDir = configHome + QStringLiteral("/scandeck");
    settingsFile_ = userDir + QStringLiteral("/connect_type.ini");
    if (QFileInfo::exists(settingsFile_))
        return true;
    if (userSettings == UserSettings::ReadShippedIfNone) {
        settingsFile_ = shipped;
        return true;
    }
    QFile copy(shipped);
    if (configHome.isEmpty() || !QDir().mkpath(userDir) || !copy.copy(settingsFile_)) {
        problem_ = QStringLiteral("cannot make %1 (%2): the settings are read from %3 and changes are not kept")
                       .arg(settingsFile_, configHome.isEmpty() ? QStringLiteral("no home folder") : copy.errorString(),
                            shipped);
        settingsFile_ = shipped;
        return false;
    }
    // The shipped file belongs to root and may be read-only; the copy is the operator's.
    QFile::setPermissions(settingsFile_, QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup | QFile::ReadOther);
    return true;
}

QString ProgramFiles::styleSheetText()
{
    QFile file(styleSheet());
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QByteArray sheet = file.readAll();
    const int end = sheet.indexOf('\0');
    if (end >= 0)
        sheet.truncate(end);
    return QString::fromUtf8(sheet);
}
