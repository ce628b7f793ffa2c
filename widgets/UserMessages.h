#pragma once
// Every message box of the viewer goes through here. By default the real
// QMessageBox is shown; a test or a headless run installs a handler that
// records the message and answers it, so nothing ever waits for a click.

#include <QMessageBox>
#include <QString>
#include <functional>

struct UserMessage {
    enum Kind { Information, Warning, Question, Critical };
    Kind kind = Information;
    QString title;
    QString text;
    QMessageBox::StandardButtons buttons = QMessageBox::Ok;
};

namespace usermessages {

// Answers one message; returns the button the user "pressed".
using Handler = std::function<QMessageBox::StandardButton(QWidget* parent, const UserMessage& message)>;

// Replaces the handler for the whole program; an empty handler restores the
// real message boxes. Returns the handler that was installed before.
Handler setHandler(Handler handler);

QMessageBox::StandardButton show(QWidget* parent, const UserMessage& message);

QMessageBox::StandardButton information(QWidget* parent, const QString& title, const QString& text);
QMessageBox::StandardButton warning(QWidget* parent, const QString& title, const QString& text);
QMessageBox::StandardButton critical(QWidget* parent, const QString& title, const QString& text);
// Yes/No question; true when the answer is Yes.
bool question(QWidget* parent, const QString& title, const QString& text);

}  // namespace usermessages
