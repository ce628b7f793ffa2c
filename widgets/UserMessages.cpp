#include "UserMessages.h"

#include "MessageBoxFit.h"

namespace usermessages {
namespace {

QMessageBox::StandardButton showRealBox(QWidget* parent, const UserMessage& message)
{
    messagebox::fitAllMessageBoxes();
    switch (message.kind) {
    case UserMessage::Information:
        return QMessageBox::information(parent, message.title, message.text, message.buttons);
    case UserMessage::Warning:
        return QMessageBox::warning(parent, message.title, message.text, message.buttons);
    case UserMessage::Critical:
        return QMessageBox::critical(parent, message.title, message.text, message.buttons);
    case UserMessage::Question:
        return QMessageBox::question(parent, message.title, message.text, message.buttons);
    }
    return QMessageBox::NoButton;
}

Handler& currentHandler()
{
    static Handler handler;
    return handler;
}

}  // namespace

Handler setHandler(Handler handler)
{
    Handler previous = std::move(currentHandler());
    currentHandler() = std::move(handler);
    return previous;
}

QMessageBox::StandardButton show(QWidget* parent, const UserMessage& message)
{
    const Handler& handler = currentHandler();
    return handler ? handler(parent, message) : showRealBox(parent, message);
}

QMessageBox::StandardButton information(QWidget* parent, const QString& title, const QString& text)
{
    return show(parent, {UserMessage::Information, title, text, QMessageBox::Ok});
}

QMessageBox::StandardButton warning(QWidget* parent, const QString& title, const QString& text)
{
    return show(parent, {UserMessage::Warning, title, text, QMessageBox::Ok});
}

QMessageBox::StandardButton critical(QWidget* parent, const QString& title, const QString& text)
{
    return show(parent, {UserMessage::Critical, title, text, QMessageBox::Ok});
}

bool question(QWidget* parent, const QString& title, const QString& text)
{
    return show(parent, {UserMessage::Question, title, text, QMessageBox::Yes | QMessageBox::No})
           == QMessageBox::Yes;
}

}  // namespace usermessages
