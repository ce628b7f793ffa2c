#pragma once
// The folder of the last file opened or saved, kept in the settings file
// (top-level key "last folder") so that every file dialog starts there, also
// after a restart.

#include <QString>

class IniSettings;

namespace recentfolder {

// The remembered folder while it still exists, otherwise `fallback`.
QString folder(const IniSettings& settings, const QString& fallback);
// Remembers the folder of `filePath` (made absolute); an empty path is ignored.
void remember(IniSettings& settings, const QString& filePath);
// `fileName` in the remembered folder, or `fallbackFolder` + fileName.
QString proposedPath(const IniSettings& settings, const QString& fileName, const QString& fallbackFolder);

}  // namespace recentfolder
