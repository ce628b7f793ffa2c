#pragma once
// The offline player: the "offline" page of the main window. It opens a
// recording (or a tcpdump/Wireshark capture of a lidar's stream), has it
// parsed into frames and sends them one by one, on a precise timer or step
// by step, through SendLidarDataSignal into the same display slot that live
// frames reach.

#include "LidarRecords.h"

#include <QByteArray>
#include <QString>
#include <QVector>
#include <QWidget>
#include <functional>

class QPushButton;

namespace Ui {
class OffinePlayWidget;
}

class OffinePlayWidget : public QWidget {
    Q_OBJECT
public:
    // The main window's CSV export operation, called with the player's own
    // export button and its new checked state.
    using ExportAction = std::function<void(QPushButton* button, bool checked)>;
    // Every message box of the player goes through this (title, text).
    using MessageHook = std::function<void(const QString& title, const QString& text)>;
    // The open-file dialog (caption, start directory, filter); an empty
    // result means the user cancelled.
    using OpenFileHook = std::function<QString(const QString& caption, const QString& directory,
                                               const QString& filter)>;
    // Asks which model sent a capture and to which data port, starting from
    // the last choice; false when the user cancels.
    using CaptureModelHook = std::function<bool(QString& model, quint16& port)>;

    explicit OffinePlayWidget(QWidget* parent = nullptr);
    ~OffinePlayWidget() override;

    // True while a file is loaded; the main window refuses live connections then.
    bool isLoaded() const { return loaded; }
    // Takes over the frames of a parsed recording of model `name` (read from
    // `path`, if known) and shows the first one. No frames: "Unable to parse
    // this file", nothing changes.
    void loadFrames(const QString& name, const QVector<lidar::LidarDataPoint_V4>& newFrames,
                    const QString& path = QString());
    // The file being played; empty when none is loaded or it came without a path.
    QString currentFile() const { return file; }

    void setExportAction(ExportAction action) { exportAction = std::move(action); }
    // Empty hooks restore the defaults (QMessageBox::information, QFileDialog).
    void setMessageHook(MessageHook hook);
    void setOpenFileHook(OpenFileHook hook);
    void setCaptureModelHook(CaptureModelHook hook);

    // Reads a tcpdump/Wireshark capture after asking for its model: the
    // model's name and its frames. false when the user cancelled or nothing
    // could be played (the user has been told why).
    bool readCapture(const QString& path, QString& model, QVector<lidar::LidarDataPoint_V4>& captured);

    // Playback state, read by the main window and by tests.
    int currentPosition() const { return current; }
    int frameCount() const { return count; }
    int playbackInterval() const { return interval; }
    int playbackTimerId() const { return timerId; }
    bool isPlaying() const { return playing; }
    bool isLooping() const { return loop; }

signals:
    void SendLidarDataSignal(lidar::LidarDataPoint_V4 frame);
    void SendLidarTypeSignal(QString name);
    void SendShowTableWidgetSignal(bool bShow);
    void SendExportCsvDataSianal(bool checked);
    void SendEndSaveDataSignal(QString fileName);
    // The file now being played, or an empty path once Stop unloads it.
    void SendPlaybackFileSignal(QString path);

public slots:
    // Asks for a recording and loads it; a progress dialog shows while it is
    // parsed. Returns once the frames are loaded, refused or cancelled.
    void openFile();
    void playPause();
    void previousFrame();
    void nextFrame();
    void firstFrame();
    void lastFrame();
    // What the buttons do, unless they are disabled (keyboard shortcuts).
    void openIfAllowed();
    void toggleExportIfAllowed();
    // Unloads the file and empties the display with an empty frame.
    void stop();
    void setSpeed(int index);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void timerEvent(QTimerEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void arrangeControls();
    void connectControls();
    // The one place that enables or disables the controls for a state.
    void setControlsLoaded(bool isLoaded);
    void showFrameAt(int position);  // 1-based; moves slider and spin box too
    void seekFromSlider(int value);
    void seekFromSpinBox();
    void startPlaybackTimer();
    void stopPlaybackTimer();
    void retranslate();
    void showFileSaved(const QString& fileName);
    void inform(const QString& title, const QString& text);

    Ui::OffinePlayWidget* ui;

    QVector<lidar::LidarDataPoint_V4> frames;
    // The registry hands over frames only; kept so that Stop releases
    // everything a loaded file holds.
    QVector<QByteArray> packets;
    int current = 0;  // frame current - 1 was the last one shown
    int count = 0;
    int timerId = -1;
    bool loop = false;
    bool playing = false;
    int interval = 100;  // ms
    bool loaded = false;
    QString file;
    ExportAction exportAction;

    MessageHook messageHook;
    OpenFileHook openFileHook;
    CaptureModelHook captureModelHook;
};
