#include "ViewExportTools.h"

#include "AtomicFileWrite.h"
#include "UserMessages.h"

#include <QAction>
#include <QBoxLayout>
#include <QDateTime>
#include <QEvent>
#include <QFileDialog>
#include <QImage>
#include <QMenu>
#include <QOpenGLWidget>
#include <QToolButton>

ViewExportTools::ViewExportTools(QWidget* window, QOpenGLWidget* view, FrameSource currentFrame,
                                 ModelName modelName)
    : QObject(window),
      window_(window),
      view_(view),
      currentFrame_(std::move(currentFrame)),
      modelName_(std::move(modelName))
{
    saveViewAction_ = new QAction(QIcon(QStringLiteral(":/images/images/screenshot.png")), QString(), window);
    saveViewAction_->setObjectName(QStringLiteral("act_save_view"));
    saveViewAction_->setShortcut(QKeySequence::Save);
    saveViewAction_->setShortcutContext(Qt::WindowShortcut);
    window->addAction(saveViewAction_);
    connect(saveViewAction_, &QAction::triggered, this, &ViewExportTools::saveView);

    pcdAction_ = new QAction(window);
    pcdAction_->setObjectName(QStringLiteral("act_export_pcd"));
    connect(pcdAction_, &QAction::triggered, this, &ViewExportTools::exportPcd);
    plyAction_ = new QAction(window);
    plyAction_->setObjectName(QStringLiteral("act_export_ply"));
    connect(plyAction_, &QAction::triggered, this, &ViewExportTools::exportPly);
    window->installEventFilter(this);  // language changes
    retranslate();
}

void ViewExportTools::addButtons(QBoxLayout* column, int index)
{
    auto makeButton = [&](const char* name, const char* icon) {
        auto* button = new QToolButton(window_);
        button->setObjectName(QLatin1String(name));
        button->setIcon(QIcon(QString::fromLatin1(icon)));
        button->setIconSize(QSize(24, 24));
        button->setAutoRaise(true);
        button->setToolButtonStyle(Qt::ToolButtonIconOnly);
        return button;
    };
    viewButton_ = makeButton("btn_save_view", ":/images/images/screenshot.png");
    viewButton_->setDefaultAction(saveViewAction_);
    cloudButton_ = makeButton("btn_export_cloud", ":/images/images/cloud_export.png");
    auto* menu = new QMenu(cloudButton_);
    menu->addAction(pcdAction_);
    menu->addAction(plyAction_);
    cloudButton_->setMenu(menu);
    cloudButton_->setPopupMode(QToolButton::InstantPopup);
    column->insertWidget(index, viewButton_);
    column->insertWidget(index + 1, cloudButton_);
    retranslate();
}

void ViewExportTools::retranslate()
{
    saveViewAction_->setText(tr("Save view"));
    saveViewAction_->setToolTip(tr("Save the view as a PNG picture (Ctrl+S)"));
    pcdAction_->setText(tr("Export PCD"));
    plyAction_->setText(tr("Export PLY"));
    if (cloudButton_) {
        cloudButton_->setText(tr("Export point cloud"));
        cloudButton_->setToolTip(tr("Save the current frame as a PCD or PLY point cloud"));
    }
}

bool ViewExportTools::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == window_ && event->type() == QEvent::LanguageChange)
        retranslate();
    return QObject::eventFilter(watched, event);
}

QString ViewExportTools::askPath(const QString& suffix)
{
    const QString proposed = QStringLiteral("./") + modelName_() + QLatin1Char('_')
                             + QDateTime::currentDateTime().toString(QStringLiteral("yyyy_MM_dd hh.mm.ss"))
                             + QLatin1Char('.') + suffix;
    const QString caption = tr("Setting a save path");
    const QString filter = QStringLiteral("%1(*.%1)").arg(suffix);
    return saveFileHook_ ? saveFileHook_(window_, caption, proposed, filter)
                         : QFileDialog::getSaveFileName(window_, caption, proposed, filter);
}

void ViewExportTools::saveView()
{
    const QString path = askPath(QStringLiteral("png"));
    if (!path.isEmpty())
        saveViewImage(path);
}

bool ViewExportTools::saveViewImage(const QString& path)
{
    // The frame buffer as drawn: the view's size times the screen's pixel ratio.
    const QImage image = view_->grabFramebuffer();
    lidar::AtomicFileWrite file(path);
    if (image.isNull() || !file.open() || !image.save(&file.file(), "PNG") || !file.commit()) {
        usermessages::warning(window_, tr("warning"), tr("File save failed!"));
        return false;
    }
    usermessages::information(window_, tr("File saved"), tr("File save path:%1").arg(path));
    return true;
}

void ViewExportTools::exportCloud(cloudfile::Format format)
{
    if (currentFrame_().points.isEmpty()) {
        usermessages::information(window_, tr("information"), tr("There is no frame to export"));
        return;
    }
    const QString path = askPath(cloudfile::suffix(format));
    if (!path.isEmpty())
        saveFrameCloud(format, path);
}

bool ViewExportTools::saveFrameCloud(cloudfile::Format format, const QString& path)
{
    cloudfile::Options options;
    options.format = format;
    options.merge = true;  // the one frame as one file
    options.output = path;
    const std::unique_ptr<FrameWriter> writer = cloudfile::makeWriter(options);
    QString error;
    if (!writer->begin(error) || !writer->frame(1, currentFrame_(), error) || !writer->end(error)) {
        writer->discard();
        usermessages::warning(window_, tr("warning"), tr("File save failed!"));
        return false;
    }
    usermessages::information(window_, tr("File saved"), tr("File save path:%1").arg(path));
    return true;
}
