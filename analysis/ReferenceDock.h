#pragma once
// "Reference and change": a dock window with the reference tool's controls
// (how many frames the reference is the median of, Set reference, the
// Change colouring and its tolerance, Save and Load) and the change readout
// of the frame on screen.

#include "ChangeComparison.h"

#include <QDockWidget>
#include <functional>

class QCheckBox;
class QDoubleSpinBox;
class QLabel;
class QPushButton;
class QSpinBox;
class ReferenceTool;

class ReferenceDock : public QDockWidget {
    Q_OBJECT
public:
    // The file dialog (saving or not, caption, filter); an empty answer is a cancel.
    using FileHook = std::function<QString(bool save, const QString& caption, const QString& filter)>;
    // The frame on screen, for a reference of one frame.
    using FrameQuery = std::function<const lidar::LidarDataPoint_V4&()>;

    ReferenceDock(ReferenceTool& tool, FrameQuery onScreen, QWidget* parent = nullptr);

    void setFileHook(FileHook hook) { m_fileHook = std::move(hook); }
    // Set reference with the frames the box says.
    void takeReference();
    void saveReference();
    void loadReference();

    // "Changed: 12 points (nearer 10, farther 2); largest -0.52 m at 45.0°".
    static QString changeText(const display::ChangeSummary& summary);

protected:
    void changeEvent(QEvent* event) override;

private:
    void retranslate();
    void showState();
    QString askFile(bool save, const QString& caption);

    ReferenceTool& m_tool;
    FrameQuery m_onScreen;
    FileHook m_fileHook;
    QLabel* m_framesLabel;
    QSpinBox* m_frames;
    QPushButton* m_take;
    QLabel* m_state;
    QCheckBox* m_change;
    QLabel* m_toleranceLabel;
    QDoubleSpinBox* m_toleranceCm;
    QPushButton* m_save;
    QPushButton* m_load;
    QLabel* m_readout;
    QString m_collecting;  // "Collecting 3 of 20 frames…" while it lasts
};
