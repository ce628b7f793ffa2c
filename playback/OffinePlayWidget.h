#pragma once
// The offline player: the "offline" page of the main window. It opens a
// recording (or a tcpdump/Wireshark capture of a lidar's stream) and sends
// its frames one by one, on a precise timer or step by step, through
// SendLidarDataSignal into the same display slot that live frames reach.
// A file is not decoded whole: an index of it grows on a thread of its own
// while the first frames already play, and each frame is read from disk
// when it is shown, so that recordings of hours cost little memory.

#include "LidarRecords.h"
#include "PlayerBagExport.h"
#include "PlayerFrames.h"

#include <QByteArray>
#include <QString>
#include <QVector>
#include <QWidget>
#include <functional>

class PlayerHealth;
class QProgressBar;
class QPushButton;
class QTimer;

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
    // The bag export's dialog: fills the request and returns true for OK.
    using BagExportHook = std::function<bool(BagExportDialog& dialog)>;

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
    void setBagExportHook(BagExportHook hook) { bagExportHook = std::move(hook); }

    // Opens a recording, or a capture after asking for its model, and
    // waits a moment for its first frame. Null when the user cancelled or
    // nothing can be played (the user has been told why).
    std::unique_ptr<PlayerFrames> openSource(const QString& path, QString& model);
    // Plays frames from `source` (from openSource), the first one at once
    // if it is there, the others as the index finds them.
    void loadSource(const QString& name, std::unique_ptr<PlayerFrames> source, const QString& path);
    // True from the moment a file is loaded until the player has taken in
    // the end of its index (the final count, any note).
    bool isIndexing() const { return indexing; }

    // The loaded file's frames for tools that read ahead of the display
    // (statistics over many frames), null when nothing is loaded; and its model.
    PlayerFrames* frameSource() const { return loaded ? frames_.get() : nullptr; }
    QString modelName() const { return loaded ? model : QString(); }

    // Playback state, read by the main window and by tests.
    int currentPosition() const { return current; }
    int frameCount() const { return count; }
    int playbackInterval() const { return interval; }
    int playbackTimerId() const { return timerId; }
    bool isPlaying() const { return playing; }
    bool isLooping() const { return loop; }

signals:
    void SendLidarDataSignal(lidar::LidarDataPoint_V4 frame);
    // The health of the frame SendLidarDataSignal sends next; a default
    // (whole) one when the file keeps none, and as Stop empties the display.
    void SendFrameHealthSignal(const lidar::FrameHealth& health);
    void SendLidarTypeSignal(QString name);
    void SendShowTableWidgetSignal(bool bShow);
    void SendExportCsvDataSianal(bool checked);
    void SendEndSaveDataSignal(QString fileName);
    // The file now being played, or an empty path once Stop unloads it.
    void SendPlaybackFileSignal(QString path);

public slots:
    // Asks for a recording or a capture and loads it. Returns once its first
    // frame is shown, or it was refused or cancelled, or (a file that takes
    // long to give a frame) while its index grows.
    void openFile();
    void playPause();
    void previousFrame();
    void nextFrame();
    void firstFrame();
    void lastFrame();
    // The next / previous frame that came in with gaps (N, Shift+N); none
    // further: the frame stays.
    void nextIncompleteFrame();
    void previousIncompleteFrame();
    // What the buttons do, unless they are disabled (keyboard shortcuts).
    void openIfAllowed();
    void toggleExportIfAllowed();
    // Unloads the file and empties the display with an empty frame.
    void stop();
    void setSpeed(int index);
    // "Export bag": a range of the frames to a ROS bag.
    void exportBag();

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
    // Follows the growing index: the first frame, the count, the end.
    void followIndex();
    void becomeLoaded();
    void showIndexProgress();
    // Frame `index` (0-based) to the display; false when it cannot be read.
    bool emitFrame(int index);

    Ui::OffinePlayWidget* ui;
    QProgressBar* indexProgress = nullptr;
    QPushButton* exportBagButton = nullptr;
    QTimer* indexTimer = nullptr;
    std::unique_ptr<PlayerHealth> health;

    // The loaded file's frames (or the one being opened).
    std::unique_ptr<PlayerFrames> frames_;
    QString model;
    bool unreadableReported = false;
    bool indexing = false;
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
    BagExportHook bagExportHook;
    BagSource bagSource;
};
