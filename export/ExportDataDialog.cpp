#include "ExportDataDialog.h"

#include "UserMessages.h"
#include "ui_ExportDataDialog.h"

#include <QDateTime>
#include <QFileDialog>
#include <QPushButton>

ExportDataDialog::ExportDataDialog(const QString& modelName, QWidget* parent)
    : QDialog(parent), ui(new Ui::ExportDataDialog), modelName_(modelName)
{
    ui->setupUi(this);
    // Ready to go as it opens: the proposed file is already filled in.
    ui->lineEdit_path->setText(proposedFileName());
    connect(ui->btn_browse, &QPushButton::clicked, this, &ExportDataDialog::browse);
    connect(ui->buttonBox, &QDialogButtonBox::accepted, this, &ExportDataDialog::accept);
    connect(ui->buttonBox, &QDialogButtonBox::rejected, this, &ExportDataDialog::reject);
}

ExportDataDialog::~ExportDataDialog()
{
    delete ui;
}

QString ExportDataDialog::proposedFileName() const
{
    return QStringLiteral("./") + modelName_ + QLatin1Char('_')
           + QDateTime::currentDateTime().toString(QStringLiteral("yyyy_MM_dd hh.mm.ss")) + QStringLiteral(".csv");
}

void ExportDataDialog::browse()
{
    const QString caption = tr("Setting a save path");
    const QString filter = QStringLiteral("csv(*.csv)");
    const QString chosen = saveFileHook_ ? saveFileHook_(this, caption, proposedFileName(), filter)
                                         : QFileDialog::getSaveFileName(this, caption, proposedFileName(), filter);
    if (!chosen.isEmpty())
        ui->lineEdit_path->setText(chosen);
}

void ExportDataDialog::accept()
{
    // The typed text counts, not the spin box's last accepted value.
    bool isNumber = false;
    const int count = ui->spinBox_frame_count->cleanText().toInt(&isNumber, 10);
    if (!isNumber || count <= 0) {
        usermessages::critical(this, tr("critical"), tr("The number of saves must be greater than zero"));
        return;
    }
    frameCount_ = count;
    path_ = ui->lineEdit_path->text();
    QDialog::accept();
}

int ExportDataDialog::frameCount() const
{
    return frameCount_;
}

float ExportDataDialog::startAngle() const
{
    return float(ui->spinBox_start_angle->value());
}

float ExportDataDialog::endAngle() const
{
    return float(ui->spinBox_end_angle->value());
}
