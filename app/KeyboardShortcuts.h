#pragma once
// The window's keyboard shortcuts: each key sequence with what it does (a
// source text, translated when listed) and the action it runs. They work
// anywhere in the window, except where a text field uses the key itself
// (Space, the arrows, Home and End while typing in a box).

#include <QKeySequence>
#include <QObject>
#include <QPair>
#include <QString>
#include <QVector>
#include <functional>

class QWidget;

class KeyboardShortcuts : public QObject {
    Q_OBJECT
public:
    explicit KeyboardShortcuts(QWidget* window);

    // `description` is an untranslated text of the context "KeyboardShortcuts"
    // (mark it with QT_TRANSLATE_NOOP). Without an action the keys are only
    // listed: something else (the view, an action) handles them.
    void add(const QKeySequence& keys, const char* description, std::function<void()> action);

    // (keys as the user reads them, translated description), in the order added.
    QVector<QPair<QString, QString>> list() const;

private:
    QWidget* m_window;
    QVector<QPair<QKeySequence, const char*>> m_entries;
};
