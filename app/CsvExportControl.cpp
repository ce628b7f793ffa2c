#include "CsvExportControl.h"

#include "ExportDataDialog.h"
#include "UserMessages.h"

#include <QAbstractButton>
#include <QProgressBar>

CsvExportControl::CsvExportControl(QWidget* window, QProgressBar* progressBar, Hooks hooks)
    : m_window(window), m_progressBar(progressBar), m_hooks(std::move(hooks))
{
}

void CsvExportControl::toggle(QAbstractButton* button, bool checked)
{
    if (checked) {
        ExportDataDialog dialog(m_hooks.modelName(), m_window);
        dialog.setSaveFileHook(m_hooks.savePath);
        const bool accepted = m_dialogHook ? m_dialogHook(dialog) : dialog.exec() == QDialog::Accepted;
        if (accepted && !m_export.start(dialog.path(), dialog.frameCount(), dialog.startAngle(), dialog.endAngle())) {
            usermessages::warning(m_window, tr("warning"),
                                  tr("File save failed!") + QStringLiteral("\n%1: %2").arg(dialog.path(), m_export.openError()));
        }
        if (!m_export.isActive()) {
            button->setChecked(false);
            button->setText(tr("Export CSV"));
            return;
        }
        m_button = button;
        m_progressBar->reset();
        m_progressBar->show();
        button->setText(tr("Exporting data"));
        return;
    }

    // Stopped by hand: no frame is written while the question is open.
    m_export.setActive(false);
    if (!usermessages::question(m_window, tr("inquiry"), tr("Do you want to cancel exporting CSV files?"))) {
        m_export.setActive(true);
        button->setChecked(true);
        return;
    }
    button->setText(tr("Export CSV"));
    m_export.cancel();  // the partial file is thrown away
    m_progressBar->hide();
}

void CsvExportControl::frameShown(const lidar::LidarDataPoint_V4& csvFrame)
{
    if (!m_export.isActive())
        return;
    if (m_export.frameShown(csvFrame, m_hooks.progress) == CsvExport::Step::Finished)
        ended(m_export.path());
}

void CsvExportControl::endKeeping()
{
    if (!m_export.isActive())
        return;
    m_export.finish();
    ended(m_export.path());
}

void CsvExportControl::finishQuietly()
{
    m_export.finish();
    m_progressBar->hide();
}

void CsvExportControl::ended(const QString& path)
{
    m_progressBar->hide();
    if (!m_export.saveError().isEmpty())
        usermessages::warning(m_window, tr("warning"),
                              tr("File save failed!") + QStringLiteral("\n%1: %2").arg(path, m_export.saveError()));
    else
        m_hooks.saved(path);
    releaseButton();
}

// The player may have been stopped since its button started the export.
void CsvExportControl::releaseButton()
{
    if (m_button && m_button->isChecked()) {
        m_button->setChecked(false);
        m_button->setText(tr("Export CSV"));
    }
}

void CsvExportControl::restButton(QAbstractButton* button)
{
    m_progressBar->hide();
    button->setChecked(false);
    button->setText(tr("Export CSV"));
}
