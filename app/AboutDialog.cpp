#include "AboutDialog.h"

#include <QDialogButtonBox>
#include <QEvent>
#include <QGridLayout>
#include <QIcon>
#include <QLabel>

AboutDialog::AboutDialog(QWidget* parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("AboutDialog"));
    auto* icon = new QLabel(this);
    icon->setPixmap(QIcon(QStringLiteral(":/images/images/Tern_2.png")).pixmap(64, 64));
    icon->setAlignment(Qt::AlignTop);

    m_version = new QLabel(this);
    m_version->setObjectName(QStringLiteral("label_version"));
    m_version->setTextInteractionFlags(Qt::TextSelectableByMouse);
    QFont bold = m_version->font();
    bold.setBold(true);
    m_version->setFont(bold);

    m_firmwareCaption = new QLabel(this);
    m_firmware = new QLabel(this);
    m_firmware->setObjectName(QStringLiteral("label_firmware"));
    m_firmware->setTextInteractionFlags(Qt::TextSelectableByMouse);

    m_shortcutsCaption = new QLabel(this);
    m_shortcuts = new QLabel(this);
    m_shortcuts->setObjectName(QStringLiteral("label_shortcuts"));
    m_shortcuts->setTextFormat(Qt::RichText);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);

    auto* layout = new QGridLayout(this);
    layout->addWidget(icon, 0, 0, 2, 1);
    layout->addWidget(m_version, 0, 1, 1, 2);
    layout->addWidget(m_firmwareCaption, 1, 1);
    layout->addWidget(m_firmware, 1, 2);
    layout->addWidget(m_shortcutsCaption, 2, 1, 1, 2);
    layout->addWidget(m_shortcuts, 3, 1, 1, 2);
    layout->addWidget(buttons, 4, 0, 1, 3);
    layout->setColumnStretch(2, 1);
    layout->setHorizontalSpacing(12);
    retranslate();
}

void AboutDialog::setTexts(const QString& versionText, const QString& firmwareText)
{
    m_version->setText(versionText);
    m_firmware->setText(firmwareText);
    m_firmwareCaption->setVisible(!firmwareText.isEmpty());
    m_firmware->setVisible(!firmwareText.isEmpty());
    adjustSize();
}

QString AboutDialog::versionText() const
{
    return m_version->text();
}

QString AboutDialog::firmwareText() const
{
    return m_firmware->text();
}

void AboutDialog::setShortcuts(const QVector<QPair<QString, QString>>& shortcuts)
{
    QString rows;
    for (const auto& shortcut : shortcuts)
        rows += QStringLiteral("<tr><td><b>%1</b></td><td>&nbsp;&nbsp;%2</td></tr>")
                    .arg(shortcut.first.toHtmlEscaped(), shortcut.second.toHtmlEscaped());
    m_shortcuts->setText(QStringLiteral("<table>") + rows + QStringLiteral("</table>"));
    m_shortcutsCaption->setVisible(!shortcuts.isEmpty());
    m_shortcuts->setVisible(!shortcuts.isEmpty());
    adjustSize();
}

void AboutDialog::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::LanguageChange)
        retranslate();
    QDialog::changeEvent(event);
}

void AboutDialog::retranslate()
{
    setWindowTitle(tr("About"));
    m_firmwareCaption->setText(tr("Lidar firmware:"));
    m_shortcutsCaption->setText(tr("Keyboard shortcuts:"));
}
