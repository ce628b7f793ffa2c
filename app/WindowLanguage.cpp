#include "WindowLanguage.h"

#include "IniSettings.h"
#include "ProgramFiles.h"

#include <QApplication>
#include <QLibraryInfo>
#include <QTranslator>

const QString WindowLanguage::kChinese = QStringLiteral("中文");
const QString WindowLanguage::kEnglish = QStringLiteral("English");

WindowLanguage::WindowLanguage(QObject* parent) : QObject(parent) {}

bool WindowLanguage::startsInChinese()
{
    return IniSettings().value(QString(), QStringLiteral("language")) == QLatin1String("Chinese");
}

void WindowLanguage::switchTo(const QString& item)
{
    if (!m_translator) {
        m_translator = new QTranslator(this);
        m_translator->load(ProgramFiles::translation());
        m_qtTranslator = new QTranslator(this);
        m_qtTranslator->load(QStringLiteral("qtbase_zh_CN"), QLibraryInfo::location(QLibraryInfo::TranslationsPath));
    }
    if (item == kChinese) {
        IniSettings().setValue(QString(), QStringLiteral("language"), QStringLiteral("Chinese"));
        for (QTranslator* translator : {m_qtTranslator, m_translator}) {
            QApplication::removeTranslator(translator);  // installed once only
            QApplication::installTranslator(translator);
        }
    } else if (item == kEnglish) {
        IniSettings().setValue(QString(), QStringLiteral("language"), QStringLiteral("English"));
        QApplication::removeTranslator(m_translator);
        QApplication::removeTranslator(m_qtTranslator);
    }
}
