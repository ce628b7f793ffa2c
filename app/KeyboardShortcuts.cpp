#include "KeyboardShortcuts.h"

#include <QCoreApplication>
#include <QShortcut>
#include <QWidget>

KeyboardShortcuts::KeyboardShortcuts(QWidget* window) : QObject(window), m_window(window) {}

void KeyboardShortcuts::add(const QKeySequence& keys, const char* description, std::function<void()> action)
{
    if (action) {
        auto* shortcut = new QShortcut(keys, m_window);
        shortcut->setContext(Qt::WindowShortcut);
        connect(shortcut, &QShortcut::activated, this, std::move(action));
    }
    m_entries.append({keys, description});
}

QVector<QPair<QString, QString>> KeyboardShortcuts::list() const
{
    QVector<QPair<QString, QString>> entries;
    for (const auto& entry : m_entries)
        entries.append({entry.first.toString(QKeySequence::NativeText),
                        QCoreApplication::translate("KeyboardShortcuts", entry.second)});
    return entries;
}
