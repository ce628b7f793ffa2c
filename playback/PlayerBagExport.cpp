#include "PlayerBagExport.h"

#include "BagWriter.h"
#include "FileScanGeometry.h"
#include "PlayerFrames.h"
#include "PointRounding.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QProgressDialog>
#include <QPushButton>
#include <QSpinBox>

BagExportDialog::BagExportDialog(const QString& model, int frames, QWidget* parent)
    : QDialog(parent), first_(new QSpinBox(this)), last_(new QSpinBox(this)), path_(new QLineEdit(this))
{
    setWindowTitle(tr("Export bag"));
    setObjectName(QStringLiteral("BagExportDialog"));
    first_->setObjectName(QStringLiteral("spinBox_first_frame"));
    last_->setObjectName(QStringLiteral("spinBox_last_frame"));
    path_->setObjectName(QStringLiteral("lineEdit_path"));
    first_->setRange(1, frames);
    last_->setRange(1, frames);
    last_->setValue(frames);
    path_->setText(QStringLiteral("./%1_%2.bag")
                       .arg(model, QDateTime::currentDateTime().toString(QStringLiteral("yyyy_MM_dd hh.mm.ss"))));
    path_->setMinimumWidth(320);
    auto* browse = new QPushButton(tr("Browse"), this);
    connect(browse, &QPushButton::clicked, this, [this] {
        const QString chosen =
            QFileDialog::getSaveFileName(this, tr("Export bag"), path_->text(), tr("ROS bags (*.bag)"));
        if (!chosen.isEmpty())
            path_->setText(chosen);
    });
    auto* pathRow = new QHBoxLayout;
    pathRow->addWidget(path_);
    pathRow->addWidget(browse);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* form = new QFormLayout(this);
    form->addRow(tr("First frame"), first_);
    form->addRow(tr("Last frame"), last_);
    form->addRow(tr("File"), pathRow);
    form->addRow(buttons);
}

BagExportRequest BagExportDialog::request() const
{
    return {first_->value(), last_->value(), path_->text()};
}

bool exportBag(QWidget* parent, PlayerFrames& frames, const BagSource& source, const BagExportRequest& request,
               QString& error, bool& cancelled)
{
    cancelled = false;
    if (request.first < 1 || request.last > frames.count() || request.first > request.last) {
        error = QCoreApplication::translate("OffinePlayWidget", "Frames %1 to %2 are not in the file (1 to %3)")
                    .arg(request.first)
                    .arg(request.last)
                    .arg(frames.count());
        return false;
    }
    BagOptions options;
    options.geometry = source.capture ? lidar::captureScanGeometry(source.path, source.model, source.port)
                                      : lidar::recordingScanGeometry(source.path);
    // Models without GPS time: the first frame written carries the file's time.
    options.startTimeNs = QFileInfo(source.path).lastModified().toMSecsSinceEpoch() * 1000000LL;
    BagWriter bag;
    if (!bag.open(request.path, options, error))
        return false;
    QProgressDialog progress(QCoreApplication::translate("OffinePlayWidget", "Writing the bag..."),
                             QCoreApplication::translate("OffinePlayWidget", "Cancel"), request.first - 1,
                             request.last, parent);
    progress.setWindowTitle(QCoreApplication::translate("OffinePlayWidget", "Export bag"));
    progress.setWindowModality(Qt::WindowModal);
    progress.setMinimumDuration(300);
    for (int number = request.first; number <= request.last; ++number) {
        lidar::LidarDataPoint_V4 frame;
        if (!frames.frame(number - 1, frame)) {
            error = QCoreApplication::translate("OffinePlayWidget", "Frame %1 cannot be read").arg(number);
            bag.discard();
            return false;
        }
        // Rounded as the CSV export rounds, so that both hold the same numbers.
        display::roundFrameCoordinates(frame);
        if (!bag.writeFrame(number, frame, error)) {
            bag.discard();
            return false;
        }
        progress.setValue(number);
        if (progress.wasCanceled()) {
            cancelled = true;
            bag.discard();
            return false;
        }
    }
    return bag.finish(error);
}
