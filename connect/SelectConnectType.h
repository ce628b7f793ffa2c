#pragma once
// The modal dialog in which the user picks the lidar model and the link
// (serial port or network) and asks the main window to connect. The dialog
// never connects by itself: it fills a link record and calls IConnectLiDAR.

#include "IConnectLiDAR.h"
#include "IniSettings.h"

#include <QDialog>
#include <memory>

namespace Ui {
class SelectConnectType;
}

class SelectConnectType : public QDialog {
    Q_OBJECT

public:
    // settingsPath: the INI file with the model list, the models' capabilities
    // and the last network parameters (tests pass a temporary one).
    explicit SelectConnectType(IConnectLiDAR* connector, QWidget* parent = nullptr,
                               const QString& settingsPath = IniSettings::defaultPath());
    ~SelectConnectType() override;

    // The records handed to the connector by the last OK.
    SerialPortParam serialParam() const { return m_serialParam; }
    NetworkParam networkParam() const { return m_networkParam; }

public slots:
    // Lists the serial ports the system offers, in the order it gives them.
    void refreshPorts();
    // Applies a model's section (transport choice, default baud rate) and the
    // saved network parameters to the form.
    void loadModelSettings(const QString& model);

protected:
    // Every message of the dialog goes through here (by default the viewer's
    // message hook, usermessages::information); tests override it so that
    // nothing waits for a click.
    virtual void showInformation(const QString& title, const QString& text);
    void showEvent(QShowEvent* event) override;
    void changeEvent(QEvent* event) override;

private slots:
    void onOkClicked();

private:
    std::unique_ptr<Ui::SelectConnectType> ui;
    IConnectLiDAR* m_connector;
    SerialPortParam m_serialParam;
    NetworkParam m_networkParam;
    IniSettings m_settings;
};
