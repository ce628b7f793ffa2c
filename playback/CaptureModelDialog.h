#pragma once
// A capture does not say which lidar sent it: this asks for the model and
// the data port its stream went to. The last choice is kept in the
// settings file, to be offered the next time.

#include <QDialog>
#include <QString>

class QComboBox;
class QSpinBox;

class CaptureModelDialog : public QDialog {
    Q_OBJECT
public:
    CaptureModelDialog(const QString& model, quint16 port, QWidget* parent = nullptr);

    QString model() const;
    quint16 port() const;

    // The last choice from the settings file (the first model and 2368
    // without one), and storing a new one.
    static void lastChoice(QString& model, quint16& port);
    static void rememberChoice(const QString& model, quint16 port);

private:
    QComboBox* comboBox_model;
    QSpinBox* spinBox_port;
};
