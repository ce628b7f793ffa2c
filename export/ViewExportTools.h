#pragma once
// What the 3D view itself can save: a picture of the view as PNG, at the
// window's resolution (button or Ctrl+S), and the current frame as a PCD or
// PLY cloud (the button's menu). The main window gives it the view, the
// frame to save and the model name for the proposed file names.

#include "CloudFileWriter.h"
#include "LidarRecords.h"

#include <QObject>
#include <QString>
#include <functional>

class QAction;
class QBoxLayout;
class QOpenGLWidget;
class QToolButton;
class QWidget;

class ViewExportTools : public QObject {
    Q_OBJECT
public:
    using FrameSource = std::function<lidar::LidarDataPoint_V4()>;
    using ModelName = std::function<QString()>;
    // (parent, caption, proposed name, filter); empty means cancelled.
    using SaveFileHook = std::function<QString(QWidget* parent, const QString& caption, const QString& proposed,
                                               const QString& filter)>;

    ViewExportTools(QWidget* window, QOpenGLWidget* view, FrameSource currentFrame, ModelName modelName);

    // Puts the two buttons into the tool column at `index`; the Ctrl+S
    // action works anywhere in the window.
    void addButtons(QBoxLayout* column, int index);
    void setSaveFileHook(SaveFileHook hook) { saveFileHook_ = std::move(hook); }

    // What the buttons do once they have a path; false when nothing could
    // be written (the user has been told).
    bool saveViewImage(const QString& path);
    bool saveFrameCloud(cloudfile::Format format, const QString& path);

public slots:
    void saveView();
    void exportPcd() { exportCloud(cloudfile::Format::Pcd); }
    void exportPly() { exportCloud(cloudfile::Format::Ply); }

private:
    void exportCloud(cloudfile::Format format);
    QString askPath(const QString& suffix);
    void retranslate();
    bool eventFilter(QObject* watched, QEvent* event) override;

    QWidget* window_;
    QOpenGLWidget* view_;
    FrameSource currentFrame_;
    ModelName modelName_;
    SaveFileHook saveFileHook_;
    QToolButton* viewButton_ = nullptr;
    QToolButton* cloudButton_ = nullptr;
    QAction* saveViewAction_ = nullptr;
    QAction* pcdAction_ = nullptr;
    QAction* plyAction_ = nullptr;
};
