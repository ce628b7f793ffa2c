#pragma once
// The program's INI settings file ("./ini/connect_type.ini", or the
// operator's own for an installed program, see ProgramFiles.h): model list,
// per-model capabilities and the last network parameters.
//
// Keys and group names are matched without regard to case ("LiDAR IP" and
// "lidar ip" are one entry), which Qt's own INI reader does not do on Linux.
// Keys are listed in the order they appear in the file. Every call reads the
// file afresh and every write goes straight to disk, so several instances
// (dialog, main window, settings panel) always agree. A write changes only the
// line it concerns: comments, order and spelling of the other lines stay.
//
// The format stays readable by QSettings (IniFormat): top-level keys come
// before the first [section] (or under [General]), "%20"-style escapes in keys
// and quoted or backslash-escaped values are understood. Values are plain
// text: a comma is part of the value, not a list separator.

#include <QString>
#include <QStringList>

class IniSettings {
public:
    // Where the program looks for its settings (ProgramFiles::settingsFile()).
    static QString defaultPath();

    explicit IniSettings(const QString& path = defaultPath());

    QString path() const { return m_path; }
    bool exists() const;

    // The value of key in group ("" = the top level, outside any section);
    // fallback when the file, the group or the key is missing.
    QString value(const QString& group, const QString& key,
                  const QString& fallback = QString()) const;
    bool contains(const QString& group, const QString& key) const;

    // Updates the entry in place when the key exists under any spelling, else
    // adds it (creating the group, the file and its folder when needed).
    // Returns false when the file cannot be written.
    bool setValue(const QString& group, const QString& key, const QString& value);

    // Keys of a group in file order (each key once, first spelling kept) and
    // their values in the same order.
    QStringList childKeys(const QString& group) const;
    QStringList childValues(const QString& group) const;
    // Section names in file order (each once).
    QStringList childGroups() const;

private:
    QString m_path;
};
