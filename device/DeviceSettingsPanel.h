#pragma once
// The "Setting" tab's device controls: the motor switch, the filter and
// frequency boxes and the GPS test button. Which of them a model offers, and
// with which choices, comes from the model's group in the settings file; the
// panel is configured for each new session and again after a language
// change. It forwards the controls to the session's commands:
//
// - motor switch and filter box: delivered in the session's own thread
//   (queued, as the session lives on its worker thread);
// - frequency box: called directly here, on the user interface thread, so
//   the command's send-and-wait happens there.
//
// An action while no session is connected sends nothing.

#include "IniSettings.h"
#include "LidarAnalysis.h"

#include <QList>
#include <QObject>
#include <QString>
#include <memory>

class GPSTest;
class QAbstractButton;
class QComboBox;
class SwitchButton;

class DeviceSettingsPanel : public QObject {
    Q_OBJECT
public:
    struct Controls {
        SwitchButton* motorSwitch = nullptr;
        QComboBox* filter = nullptr;
        QComboBox* frequency = nullptr;
        QAbstractButton* gpsTestButton = nullptr;
    };

    DeviceSettingsPanel(const Controls& controls, QObject* parent = nullptr);
    ~DeviceSettingsPanel() override;

    // Sets the controls up for the settings group `group` (a model's class
    // name); `param` chooses the selected filter (value1) and frequency
    // (value2).
    void configure(const QString& group, const LidarParam& param, const IniSettings& settings = IniSettings());

    // The controls now drive this session (those of an earlier one are cut
    // off), and its GPS time stamps go to the GPS test window.
    void bindSession(const std::shared_ptr<LidarAnalysis>& session);

    // The frequency box's choice: the text as a decimal number, low 8 bits
    // (a non-number sends 0), to the session's device parameter command.
    void sendFrequency(const QString& text);

    // The one GPS test window, made on first use; it lives as long as the panel.
    GPSTest* gpsTest();
    // Shows the GPS test window, or hides it when it is visible.
    void toggleGpsTest();

private:
    Controls m_controls;
    std::weak_ptr<LidarAnalysis> m_session;
    QList<QMetaObject::Connection> m_connections;
    std::unique_ptr<GPSTest> m_gpsTest;
};
