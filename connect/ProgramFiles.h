#pragma once
// Where the program's own files are and where the operator's settings file
// is kept.
//
// Run from a build folder, as always: everything relative to the working
// directory (./ini/connect_type.ini, ./qss/MacOS.qss, ./scandeck_zh.qm).
//
// Installed (cmake --install or the .deb), the program lies in <prefix>/bin
// and its own files in <prefix>/share/scandeck, found from where the program
// is, whatever the working directory. The settings file is then the
// operator's own: connect_type.ini in the per-user configuration folder
// ($XDG_CONFIG_HOME/scandeck, usually ~/.config/scandeck), made from the
// shipped one on the first start, same keys and format.
//
// Until locate() runs, the build folder's layout holds.

#include <QString>

class ProgramFiles {
public:
    enum class UserSettings {
        CreateFromShipped,   // the viewer: the operator's file, made on the first start
        ReadShippedIfNone,   // tools that only read it: the operator's file, else the shipped one
    };

    // Looks where the running program lies; call once at start-up, after
    // the application object exists. Returns false when the operator's
    // settings file cannot be made (problem() says why): the shipped one is
    // then read, and changes are not kept.
    static bool locate(UserSettings userSettings);
    // The same for a program in `programDir` with per-user configuration
    // folders under `configHome`.
    static bool locate(const QString& programDir, const QString& configHome, UserSettings userSettings);

    static bool installed() { return installed_; }
    static QString settingsFile() { return settingsFile_; }
    static QString styleSheet() { return dataDir_ + QStringLiteral("/qss/MacOS.qss"); }
    // The style sheet's text, up to a NUL byte if it holds one; empty when
    // it cannot be read.
    static QString styleSheetText();
    static QString translation() { return dataDir_ + QStringLiteral("/scandeck_zh.qm"); }
    static QString problem() { return problem_; }

    // Relative to the program's folder: where an installation keeps its files.
    static constexpr const char* kInstalledDataDir = "../share/scandeck";

private:
    static bool installed_;
    static QString dataDir_;
    static QString settingsFile_;
    static QString problem_;
};
