#pragma once
// "Export Data": how many of the next frames to write to CSV, the azimuth
// range to keep and the file. It is made with the main window's title (the
// model's name once a lidar or a recording is there), which goes into the
// proposed file name.

#include <QDialog>
#include <QString>
#include <functional>

namespace Ui {
class ExportDataDialog;
}

class ExportDataDialog : public QDialog {
    Q_OBJECT
public:
    // The save-file dialog (parent, caption, proposed name, filter); an
    // empty result means the user cancelled.
    using SaveFileHook = std::function<QString(QWidget* parent, const QString& caption, const QString& proposed,
                                               const QString& filter)>;

    explicit ExportDataDialog(const QString& modelName, QWidget* parent = nullptr);
    ~ExportDataDialog() override;

    // An empty hook restores QFileDialog.
    void setSaveFileHook(SaveFileHook hook) { saveFileHook_ = std::move(hook); }

    int frameCount() const;
    float startAngle() const;
    float endAngle() const;
    QString path() const { return path_; }

    // "./<model>_<yyyy_MM_dd hh.mm.ss>.csv" for the current time.
    QString proposedFileName() const;

public slots:
    // OK: a frame count that is no number or not above zero is refused with
    // a message and the dialog stays open.
    void accept() override;
    void browse();

private:
    Ui::ExportDataDialog* ui;
    QString modelName_;
    int frameCount_ = 0;
    QString path_;
    SaveFileHook saveFileHook_;
};
