#pragma once
// The window's side of the CSV export, started from the window's button or
// the player's: the dialog (its proposed name carries the model, whatever
// the title shows), a file that cannot be opened refused before anything
// starts, the next frames shown written through CsvExport with the
// progress bar following, stopping by hand with its question, and an end
// that keeps what was written when the link goes or the player stops.

#include "CsvExport.h"
#include "LidarRecords.h"

#include <QCoreApplication>
#include <QPointer>
#include <QString>
#include <functional>

class ExportDataDialog;
class QAbstractButton;
class QProgressBar;
class QWidget;

class CsvExportControl {
    Q_DECLARE_TR_FUNCTIONS(ScanDeck)
public:
    using DialogHook = std::function<bool(ExportDataDialog& dialog)>;
    using SavePath = std::function<QString(QWidget* parent, const QString& caption, const QString& proposed,
                                           const QString& filter)>;
    struct Hooks {
        std::function<QString()> modelName;          // of the live lidar or the recording played
        std::function<void(float)> progress;         // the window's progress signal
        std::function<void(const QString&)> saved;   // the "File saved" signal of the window or player
        SavePath savePath;
    };

    CsvExportControl(QWidget* window, QProgressBar* progressBar, Hooks hooks);

    void setDialogHook(DialogHook hook) { m_dialogHook = std::move(hook); }
    // The export buttons' click: start with the dialog, or stop by hand.
    void toggle(QAbstractButton* button, bool checked);
    // A frame shown (or skipped by the display): written while an export runs.
    void frameShown(const lidar::LidarDataPoint_V4& csvFrame);
    // Ends a running export keeping what was written: the file completed,
    // the button and progress bar reset, "File saved".
    void endKeeping();
    // The window closes: what was written is kept, nothing is shown.
    void finishQuietly();
    // "File saved" reached the window: the bar and the window's button rest.
    void restButton(QAbstractButton* button);

    bool isActive() const { return m_export.isActive(); }
    const CsvExport& csvExport() const { return m_export; }

private:
    void ended(const QString& path);
    void releaseButton();

    QWidget* m_window;
    QProgressBar* m_progressBar;
    Hooks m_hooks;
    DialogHook m_dialogHook;
    CsvExport m_export;
    QPointer<QAbstractButton> m_button;  // the export button that started the export
};
