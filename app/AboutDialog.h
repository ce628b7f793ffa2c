#pragma once
// "About": the program's version text and, when a lidar is connected, the
// firmware version text it reported; below them the keyboard shortcuts (F1
// opens it).

#include <QDialog>
#include <QPair>
#include <QVector>

class QLabel;

class AboutDialog : public QDialog {
    Q_OBJECT
public:
    explicit AboutDialog(QWidget* parent = nullptr);

    // An empty firmware text hides the firmware line.
    void setTexts(const QString& versionText, const QString& firmwareText);
    QString versionText() const;
    QString firmwareText() const;
    // (keys, what they do) pairs, listed in this order.
    void setShortcuts(const QVector<QPair<QString, QString>>& shortcuts);

protected:
    void changeEvent(QEvent* event) override;

private:
    void retranslate();

    QLabel* m_version;
    QLabel* m_firmwareCaption;
    QLabel* m_firmware;
    QLabel* m_shortcutsCaption;
    QLabel* m_shortcuts;
};
