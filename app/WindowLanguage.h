#pragma once
// The interface language: English as the forms are written, Chinese from
// the program's translation and Qt's own (OK, Cancel, the file dialogs).
// The choice is kept in the settings file's top-level "language" key.

#include <QObject>
#include <QString>

class QTranslator;

class WindowLanguage : public QObject {
public:
    // The language box's items.
    static const QString kChinese;  // "中文"
    static const QString kEnglish;  // "English"

    explicit WindowLanguage(QObject* parent);
    // Whether the settings file asks for Chinese.
    static bool startsInChinese();
    // Installs or removes the translators for a language box item and
    // keeps the choice; other texts change nothing.
    void switchTo(const QString& item);

private:
    QTranslator* m_translator = nullptr;
    QTranslator* m_qtTranslator = nullptr;
};
