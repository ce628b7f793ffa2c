#pragma once
// "About": the program's version text and, when a lidar is connected, the
// firmware version text it reported.

#include <QDialog>

class QLabel;

class AboutDialog : public QDialog {
    Q_OBJECT
public:
    explicit AboutDialog(QWidget* parent = nullptr);

    // An empty firmware text hides the firmware line.
    void setTexts(const QString& versionText, const QString& firmwareText);
    QString versionText() const;
    QString firmwareText() const;

protected:
    void changeEvent(QEvent* event) override;

private:
    void retranslate();

    QLabel* m_version;
    QLabel* m_firmwareCaption;
    QLabel* m_firmware;
};
