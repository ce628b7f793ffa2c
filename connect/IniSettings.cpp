#include "IniSettings.h"

#include "ProgramFiles.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QVector>

namespace {

struct Entry {
    int line;       // index into IniDocument::lines
    QString group;  // "" for the top level
    QString key;
    QString value;
};

struct Section {
    int line;
    QString group;
};

// The file as lines plus what each line means. Lines are kept verbatim so a
// write can change one of them and leave the rest of the file untouched.
struct IniDocument {
    QStringList lines;
    QString eol = QStringLiteral("\n");
    QVector<Entry> entries;
    QVector<Section> sections;
};

bool sameName(const QString& a, const QString& b)
{
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

int hexValue(QChar c)
{
    const ushort u = c.unicode();
    if (u >= '0' && u <= '9') return u - '0';
    if (u >= 'a' && u <= 'f') return u - 'a' + 10;
    if (u >= 'A' && u <= 'F') return u - 'A' + 10;
    return -1;
}

// Keys and section names: "%XX" and "%UXXXX" escapes, "\" standing for "/".
QString unescapeKey(const QString& text)
{
    QString out;
    out.reserve(text.size());
    for (int i = 0; i < text.size(); ++i) {
        const QChar c = text.at(i);
        if (c == QLatin1Char('\\')) {
            out += QLatin1Char('/');
            continue;
        }
        if (c == QLatin1Char('%')) {
            const bool wide = i + 1 < text.size() && text.at(i + 1) == QLatin1Char('U');
            const int digits = wide ? 4 : 2;
            const int start = i + (wide ? 2 : 1);
            if (start + digits <= text.size()) {
                int code = 0;
                bool ok = true;
                for (int k = 0; k < digits && ok; ++k) {
                    const int h = hexValue(text.at(start + k));
                    ok = h >= 0;
                    code = code * 16 + h;
                }
                if (ok) {
                    out += QChar(code);
                    i = start + digits - 1;
                    continue;
                }
            }
        }
        out += c;
    }
    return out;
}

QString escapeKey(const QString& name)
{
    QString out;
    for (int i = 0; i < name.size(); ++i) {
        const QChar c = name.at(i);
        const ushort u = c.unicode();
        const bool edgeSpace = u == ' ' && (i == 0 || i == name.size() - 1);
        const bool plain = (u >= 'a' && u <= 'z') || (u >= 'A' && u <= 'Z') || (u >= '0' && u <= '9')
                           || u == '_' || u == '-' || u == '.' || (u == ' ' && !edgeSpace);
        if (plain)
            out += c;
        else if (u <= 0xFF)
            out += QStringLiteral("%%1").arg(u, 2, 16, QLatin1Char('0')).toUpper();
        else
            out += QStringLiteral("%U%1").arg(u, 4, 16, QLatin1Char('0')).toUpper();
    }
    return out;
}

// Values: double quotes group text, backslash escapes as QSettings writes
// them, an unquoted ';' starts a comment, surrounding blanks are dropped.
QString unescapeValue(const QString& raw)
{
    const QString text = raw.trimmed();
    QString out;
    bool quoted = false;
    int unquotedEnd = 0;  // to trim blanks that precede a comment or the end
    for (int i = 0; i < text.size(); ++i) {
        const QChar c = text.at(i);
        if (c == QLatin1Char('"')) {
            quoted = !quoted;
            unquotedEnd = out.size();
            continue;
        }
        if (!quoted && c == QLatin1Char(';'))
            break;
        if (c == QLatin1Char('\\') && i + 1 < text.size()) {
            const QChar e = text.at(++i);
            switch (e.unicode()) {
            case 'a': out += QChar(7); break;
            case 'b': out += QChar(8); break;
            case 'f': out += QChar(12); break;
            case 'n': out += QLatin1Char('\n'); break;
            case 'r': out += QLatin1Char('\r'); break;
            case 't': out += QLatin1Char('\t'); break;
            case 'v': out += QChar(11); break;
            case 'x': {
                uint code = 0;
                int n = 0;
                while (i + 1 < text.size() && hexValue(text.at(i + 1)) >= 0 && n < 4) {
                    code = code * 16 + uint(hexValue(text.at(++i)));
                    ++n;
                }
                out += QChar(code);
                break;
            }
            case '0': out += QChar(0); break;
            default: out += e; break;  // \\ \" \' \? \; \, and anything else
            }
            unquotedEnd = out.size();
            continue;
        }
        out += c;
        if (quoted || !c.isSpace())
            unquotedEnd = out.size();
    }
    out.truncate(unquotedEnd);
    if (out.startsWith(QLatin1String("@@")))
        out.remove(0, 1);
    return out;
}

QString escapeValue(const QString& value)
{
    bool needsQuotes = value.startsWith(QLatin1Char(' ')) || value.endsWith(QLatin1Char(' '));
    QString body;
    if (value.startsWith(QLatin1Char('@')))
        body += QLatin1Char('@');
    for (const QChar c : value) {
        const ushort u = c.unicode();
        if (u == ';' || u == ',' || u == '=')
            needsQuotes = true;
        if (u == '"' || u == '\\') {
            body += QLatin1Char('\\');
            body += c;
        } else if (u == '\n') {
            body += QLatin1String("\\n");
        } else if (u == '\r') {
            body += QLatin1String("\\r");
        } else if (u == '\t') {
            body += QLatin1String("\\t");
        } else if (u < 0x20) {
            body += QStringLiteral("\\x%1").arg(u, 4, 16, QLatin1Char('0'));
        } else {
            body += c;
        }
    }
    return needsQuotes ? QLatin1Char('"') + body + QLatin1Char('"') : body;
}

IniDocument load(const QString& path)
{
    IniDocument doc;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return doc;
    QString text = QString::fromUtf8(file.readAll());
    if (text.startsWith(QChar(0xFEFF)))
        text.remove(0, 1);
    if (text.contains(QLatin1String("\r\n")))
        doc.eol = QStringLiteral("\r\n");
    doc.lines = text.split(QLatin1Char('\n'));
    if (!doc.lines.isEmpty() && doc.lines.last().isEmpty())
        doc.lines.removeLast();  // the final line break

    QString group;
    for (int i = 0; i < doc.lines.size(); ++i) {
        QString& line = doc.lines[i];
        if (line.endsWith(QLatin1Char('\r')))
            line.chop(1);
        const QString t = line.trimmed();
        if (t.isEmpty() || t.startsWith(QLatin1Char(';')) || t.startsWith(QLatin1Char('#')))
            continue;
        if (t.startsWith(QLatin1Char('['))) {
            const int close = t.lastIndexOf(QLatin1Char(']'));
            const QString name = unescapeKey(t.mid(1, close > 0 ? close - 1 : t.size() - 1).trimmed());
            // QSettings keeps top-level keys under [General]; a real group of
            // that name is written as [%General].
            if (sameName(name, QLatin1String("General")))
                group.clear();
            else if (sameName(name, QLatin1String("%General")))
                group = name.mid(1);
            else
                group = name;
            doc.sections.append({i, group});
            continue;
        }
        const int eq = t.indexOf(QLatin1Char('='));
        if (eq <= 0)
            continue;
        doc.entries.append({i, group, unescapeKey(t.left(eq).trimmed()), unescapeValue(t.mid(eq + 1))});
    }
    return doc;
}

bool save(const IniDocument& doc, const QString& path)
{
    const QFileInfo info(path);
    if (!QDir().mkpath(info.absolutePath()))
        return false;
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    QString text = doc.lines.join(doc.eol);
    if (!doc.lines.isEmpty())
        text += doc.eol;
    file.write(text.toUtf8());
    return file.commit();
}

// The last entry wins, as with QSettings when a key is written twice.
const Entry* find(const IniDocument& doc, const QString& group, const QString& key)
{
    const Entry* found = nullptr;
    for (const Entry& e : doc.entries)
        if (sameName(e.group, group) && sameName(e.key, key))
            found = &e;
    return found;
}

// Where a new key of group goes: after the group's last entry, else after its
// last header; -1 when the group does not exist.
int insertionLine(const IniDocument& doc, const QString& group)
{
    int line = -1;
    for (const Entry& e : doc.entries)
        if (sameName(e.group, group))
            line = qMax(line, e.line + 1);
    if (line >= 0)
        return line;
    for (const Section& s : doc.sections)
        if (sameName(s.group, group))
            line = qMax(line, s.line + 1);
    if (line >= 0 || !group.isEmpty())
        return line;
    // Top-level keys must stand before the first section.
    return doc.sections.isEmpty() ? doc.lines.size() : doc.sections.first().line;
}

}  // namespace

QString IniSettings::defaultPath()
{
    return ProgramFiles::settingsFile();
}

IniSettings::IniSettings(const QString& path) : m_path(path) {}

bool IniSettings::exists() const
{
    return QFileInfo(m_path).isFile();
}

QString IniSettings::value(const QString& group, const QString& key, const QString& fallback) const
{
    const IniDocument doc = load(m_path);
    const Entry* e = find(doc, group, key);
    return e ? e->value : fallback;
}

bool IniSettings::contains(const QString& group, const QString& key) const
{
    return find(load(m_path), group, key) != nullptr;
}

bool IniSettings::setValue(const QString& group, const QString& key, const QString& value)
{
    IniDocument doc = load(m_path);
    bool updated = false;
    for (const Entry& e : doc.entries) {
        if (!sameName(e.group, group) || !sameName(e.key, key))
            continue;
        // Keep the key as spelled in the file and the spacing around '='.
        QString& line = doc.lines[e.line];
        const int eq = line.indexOf(QLatin1Char('='));
        const bool spaced = eq + 1 < line.size() && line.at(eq + 1) == QLatin1Char(' ');
        line = line.left(eq + 1) + (spaced ? QStringLiteral(" ") : QString()) + escapeValue(value);
        updated = true;
    }
    if (!updated) {
        const QString entry = escapeKey(key) + QLatin1Char('=') + escapeValue(value);
        const int at = insertionLine(doc, group);
        if (at >= 0) {
            doc.lines.insert(at, entry);
            // A top-level key put in front of the first section: keep a blank
            // line between them.
            if (group.isEmpty() && !doc.sections.isEmpty() && at == doc.sections.first().line)
                doc.lines.insert(at + 1, QString());
        } else {
            if (!doc.lines.isEmpty() && !doc.lines.last().trimmed().isEmpty())
                doc.lines.append(QString());
            doc.lines.append(QLatin1Char('[') + escapeKey(group) + QLatin1Char(']'));
            doc.lines.append(entry);
        }
    }
    return save(doc, m_path);
}

QStringList IniSettings::childKeys(const QString& group) const
{
    QStringList keys;
    for (const Entry& e : load(m_path).entries) {
        if (!sameName(e.group, group))
            continue;
        if (!keys.contains(e.key, Qt::CaseInsensitive))
            keys.append(e.key);
    }
    return keys;
}

QStringList IniSettings::childValues(const QString& group) const
{
    const IniDocument doc = load(m_path);
    QStringList keys;
    QStringList values;
    for (const Entry& e : doc.entries) {
        if (!sameName(e.group, group) || keys.contains(e.key, Qt::CaseInsensitive))
            continue;
        keys.append(e.key);
        values.append(find(doc, group, e.key)->value);
    }
    return values;
}

QStringList IniSettings::childGroups() const
{
    QStringList groups;
    for (const Section& s : load(m_path).sections)
        if (!s.group.isEmpty() && !groups.contains(s.group, Qt::CaseInsensitive))
            groups.append(s.group);
    return groups;
}
