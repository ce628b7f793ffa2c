// ScanDeck's exports: the CSV export of the next frames shown (from the
// window's button or the player's), and the view's picture and current
// cloud. The export state is CsvExport's, the files ViewExportTools'; this
// file decides what the window shows.

#include "ScanDeck.h"

#include "ExportDataDialog.h"
#include "FrameSelection.h"
#include "OffinePlayWidget.h"
#include "UserMessages.h"
#include "ViewExportTools.h"
#include "ui_ScanDeck.h"

#include <QFileDialog>
#include <QProgressBar>

void ScanDeck::initExportTools()
{
    m_viewExport = new ViewExportTools(
        this, ui->openGLWidget, [this] { return frameToExport(); }, [this] { return windowTitle(); });
    // Below the point table's button in the view's tool column.
    QBoxLayout* column = ui->verticalLayout_view_tools;
    m_viewExport->addButtons(column, column->indexOf(ui->btn_table) + 1);
    m_viewExport->setSaveFileHook([this](QWidget* parent, const QString& caption, const QString& proposed,
                                         const QString& filter) {
        return askSavePath(parent, caption, proposed, filter);
    });
}

QString ScanDeck::askSavePath(QWidget* parent, const QString& caption, const QString& proposed, const QString& filter)
{
    if (m_saveFileHook)
        return m_saveFileHook(parent, caption, proposed, filter);
    return QFileDialog::getSaveFileName(parent, caption, proposed, filter);
}

lidar::LidarDataPoint_V4 ScanDeck::frameToExport() const
{
    return m_boxActive ? display::selectInBox(m_lastFrame, m_boxRange) : m_lastFrame;
}

void ScanDeck::exportCsv(QAbstractButton* button, bool checked)
{
    if (checked) {
        ExportDataDialog dialog(windowTitle(), this);
        dialog.setSaveFileHook([this](QWidget* parent, const QString& caption, const QString& proposed,
                                      const QString& filter) {
            return askSavePath(parent, caption, proposed, filter);
        });
        const bool accepted = m_exportDialogHook ? m_exportDialogHook(dialog) : dialog.exec() == QDialog::Accepted;
        if (!accepted) {
            button->setChecked(false);
            button->setText(tr("Export CSV"));
            return;
        }
        // A file that cannot be opened is reported; the export still runs
        // through its frames, writing nothing.
        if (!m_csvExport.start(dialog.path(), dialog.frameCount(), dialog.startAngle(), dialog.endAngle()))
            emit SendMessageSignal(tr("File save failed!"));
        m_csvButton = button;
        m_progressBar->reset();
        m_progressBar->show();
        button->setText(tr("Exporting data"));
        return;
    }

    // Stopped by hand: no frame is written while the question is open.
    m_csvExport.setActive(false);
    if (!usermessages::question(this, tr("inquiry"), tr("Do you want to cancel exporting CSV files?"))) {
        m_csvExport.setActive(true);
        button->setChecked(true);
        return;
    }
    button->setText(tr("Export CSV"));
    m_csvExport.cancel();  // the partial file is thrown away
    m_progressBar->hide();
}

void ScanDeck::writeCsvFrame(const lidar::LidarDataPoint_V4& frame)
{
    const CsvExport::Step step =
        m_csvExport.frameShown(frame, [this](float progress) { emit SendDataSavingProgressSianal(progress); });
    if (step != CsvExport::Step::Finished)
        return;
    m_progressBar->hide();
    const QString path = m_csvExport.path();
    if (!m_csvExport.saveError().isEmpty())
        emit SendMessageSignal(tr("File save failed!"));
    else if (ui->offline->isLoaded())
        emit ui->offline->SendEndSaveDataSignal(path);
    else
        emit SendEndSaveDataSignal(path);
    // The player may have been stopped since its button started the export.
    if (m_csvButton && m_csvButton->isChecked()) {
        m_csvButton->setChecked(false);
        m_csvButton->setText(tr("Export CSV"));
    }
}

void ScanDeck::exportSkippedFrame(lidar::LidarDataPoint_V4 frame)
{
    if (!m_csvExport.isActive())
        return;
    // Rounded and cut to the box exactly as a drawn frame would be.
    const lidar::LidarDataPoint_V4 boxFrame = display::roundAndSelect(frame, m_boxActive ? &m_boxRange : nullptr);
    writeCsvFrame(m_boxActive ? boxFrame : frame);
}

void ScanDeck::showExportSaved(const QString& fileName)
{
    usermessages::information(this, tr("File saved"), tr("File save path:%1").arg(fileName));
    m_progressBar->hide();
    ui->btn_export_csv->setChecked(false);
    ui->btn_export_csv->setText(tr("Export CSV"));
}
