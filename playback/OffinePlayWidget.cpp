#include "OffinePlayWidget.h"

#include "CaptureFrames.h"
#include "CaptureModelDialog.h"
#include "FlowLayout.h"
#include "IniSettings.h"
#include "LIdarFactory.h"
#include "PlayerHealth.h"
#include "RecentFolder.h"
#include "UserMessages.h"
#include "ui_OffinePlayWidget.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFileDialog>
#include <QKeyEvent>
#include <QProgressBar>
#include <QThread>
#include <QTimer>
#include <QTimerEvent>

namespace {

// Timer interval of each speed in the combo box: X0.5, X1, X2, X3.
constexpr int kSpeedIntervals[] = {200, 100, 50, 33};

lidar::LidarDataPoint_V4 emptyFrame()
{
    return lidar::LidarDataPoint_V4{};  // ambient and motor speed -1, no points
}

// How often the growing index is looked at, and how long opening waits for
// the first frame before it lets the window go on (a file that takes longer
// is followed from then on).
constexpr int kFollowIndexMs = 100;
constexpr int kFirstFrameWaitMs = 300;

void waitForFirstFrame(const PlayerFrames& frames, int ms)
{
    QElapsedTimer clock;
    clock.start();
    while (frames.count() == 0 && !frames.isFinal() && clock.elapsed() < ms)
        QThread::msleep(1);
}

}  // namespace

OffinePlayWidget::OffinePlayWidget(QWidget* parent) : QWidget(parent), ui(new Ui::OffinePlayWidget)
{
    ui->setupUi(this);
    indexProgress = new QProgressBar(this);
    indexProgress->setObjectName(QStringLiteral("progressBar_index"));
    indexProgress->setRange(0, 1000);
    indexProgress->setMaximumWidth(140);
    indexProgress->hide();
    exportBagButton = new QPushButton(this);
    exportBagButton->setObjectName(QStringLiteral("btn_export_bag"));
    health = std::make_unique<PlayerHealth>(ui->horizontalSlider, this);
    indexTimer = new QTimer(this);
    indexTimer->setInterval(kFollowIndexMs);
    connect(indexTimer, &QTimer::timeout, this, &OffinePlayWidget::followIndex);
    arrangeControls();
    setMessageHook(nullptr);
    setOpenFileHook(nullptr);
    setCaptureModelHook(nullptr);
    setControlsLoaded(false);
    ui->spinBox_progress->installEventFilter(this);
    connectControls();
    retranslate();
}

OffinePlayWidget::~OffinePlayWidget()
{
    delete ui;
}

// Four groups that wrap into a second row on a narrow window instead of
// squeezing the buttons; the position slider takes the room its row leaves.
void OffinePlayWidget::arrangeControls()
{
    const QMargins margins = ui->horizontalLayout->contentsMargins();
    delete ui->horizontalLayout;  // its widgets stay, to be placed anew
    ui->horizontalLayout = nullptr;
    auto* flow = new FlowLayout(this);
    flow->setContentsMargins(margins);
    flow->addWidget(FlowLayout::group(
        {ui->btn_open_file, ui->btn_last, ui->btn_play, ui->btn_next, ui->btn_circulation, ui->btn_stop}, this));
    flow->addWidget(FlowLayout::group({ui->label, ui->comboBox}, this));
    flow->addWidget(FlowLayout::group(
        {health->sliderColumn(), ui->spinBox_progress, ui->label_maxNum, health->label(), indexProgress}, this, true));
    flow->addWidget(FlowLayout::group({ui->btn_table, ui->btn_export_csv, exportBagButton}, this));
}

void OffinePlayWidget::setMessageHook(MessageHook hook)
{
    if (hook) {
        messageHook = std::move(hook);
        return;
    }
    messageHook = [this](const QString& title, const QString& text) { usermessages::information(this, title, text); };
}

void OffinePlayWidget::setOpenFileHook(OpenFileHook hook)
{
    if (hook) {
        openFileHook = std::move(hook);
        return;
    }
    openFileHook = [this](const QString& caption, const QString& directory, const QString& filter) {
        return QFileDialog::getOpenFileName(this, caption, directory, filter);
    };
}

void OffinePlayWidget::setCaptureModelHook(CaptureModelHook hook)
{
    if (hook) {
        captureModelHook = std::move(hook);
        return;
    }
    captureModelHook = [this](QString& model, quint16& port) {
        CaptureModelDialog dialog(model, port, this);
        if (dialog.exec() != QDialog::Accepted)
            return false;
        model = dialog.model();
        port = dialog.port();
        return true;
    };
}

std::unique_ptr<PlayerFrames> OffinePlayWidget::openSource(const QString& path, QString& name)
{
    QString refusal;
    std::unique_ptr<PlayerFrames> source;
    if (capture::looksLikeCaptureFile(path)) {
        capture::CaptureOptions options;
        CaptureModelDialog::lastChoice(options.model, options.port);
        if (!captureModelHook(options.model, options.port))
            return nullptr;
        CaptureModelDialog::rememberChoice(options.model, options.port);
        source = openCaptureFrames(path, options, refusal);
        name = options.model;
    } else {
        source = openRecordingFrames(path, name, refusal);
    }
    if (!source) {
        inform(tr("information"), refusal);
        return nullptr;
    }
    waitForFirstFrame(*source, kFirstFrameWaitMs);
    if (source->count() == 0 && source->isFinal()) {
        inform(tr("information"), source->refusal());
        return nullptr;
    }
    return source;
}

void OffinePlayWidget::inform(const QString& title, const QString& text)
{
    messageHook(title, text);
}

void OffinePlayWidget::connectControls()
{
    connect(ui->btn_open_file, &QPushButton::clicked, this, &OffinePlayWidget::openFile);
    connect(ui->btn_last, &QPushButton::clicked, this, &OffinePlayWidget::previousFrame);
    connect(ui->btn_play, &QPushButton::clicked, this, &OffinePlayWidget::playPause);
    connect(ui->btn_next, &QPushButton::clicked, this, &OffinePlayWidget::nextFrame);
    connect(ui->btn_circulation, &QPushButton::toggled, this, [this](bool checked) { loop = checked; });
    connect(ui->btn_stop, &QPushButton::clicked, this, &OffinePlayWidget::stop);
    connect(ui->comboBox, QOverload<int>::of(&QComboBox::currentIndexChanged), this, &OffinePlayWidget::setSpeed);

    // Dragging reports through sliderMoved; clicks on the groove and keys
    // only through actionTriggered, before the value itself moves.
    connect(ui->horizontalSlider, &QSlider::sliderMoved, this, &OffinePlayWidget::seekFromSlider);
    connect(ui->horizontalSlider, &QSlider::actionTriggered, this, [this](int action) {
        if (action != QAbstractSlider::SliderNoAction && action != QAbstractSlider::SliderMove)
            seekFromSlider(ui->horizontalSlider->sliderPosition());
    });

    connect(ui->btn_table, &QPushButton::clicked, this, &OffinePlayWidget::SendShowTableWidgetSignal);
    connect(ui->btn_export_csv, &QPushButton::clicked, this, [this](bool checked) {
        if (exportAction)
            exportAction(ui->btn_export_csv, checked);
        else
            ui->btn_export_csv->setChecked(false);  // nothing would ever end it
    });
    connect(this, &OffinePlayWidget::SendEndSaveDataSignal, this, &OffinePlayWidget::showFileSaved);
    connect(exportBagButton, &QPushButton::clicked, this, &OffinePlayWidget::exportBag);
}

void OffinePlayWidget::setControlsLoaded(bool isLoaded)
{
    ui->btn_open_file->setEnabled(!isLoaded);
    for (QWidget* control : {static_cast<QWidget*>(ui->btn_export_csv), static_cast<QWidget*>(ui->comboBox),
                             static_cast<QWidget*>(ui->btn_stop), static_cast<QWidget*>(ui->btn_last),
                             static_cast<QWidget*>(ui->btn_next), static_cast<QWidget*>(ui->btn_play),
                             static_cast<QWidget*>(ui->spinBox_progress),
                             static_cast<QWidget*>(ui->horizontalSlider)})
        control->setEnabled(isLoaded);
    ui->btn_circulation->setEnabled(true);
    ui->btn_table->setEnabled(true);
    exportBagButton->setEnabled(isLoaded);
}

void OffinePlayWidget::openFile()
{
    if (loaded || frames_)
        return;  // a click that slipped in while a file opens
    // A paused live display clears the session's connected flag, but the
    // link is still up: its connection type says so.
    const auto session = LIdarFactory::GetInstance()->GetCurrentLidar();
    if (session && (session->connected || session->GetConnectionType() != -1)) {
        inform(tr("information"), tr("Please disconnect first!"));
        return;
    }
    IniSettings settings;
    const QString filter = tr("Recordings (*.txt)") + QStringLiteral(";;") + tr("Captures (*.pcap *.pcapng)")
                           + QStringLiteral(";;") + tr("All files (*)");
    const QString path =
        openFileHook(tr("Open File"), recentfolder::folder(settings, QDir::homePath() + "/"), filter);
    if (path.isEmpty())
        return;
    recentfolder::remember(settings, path);
    QString name;
    std::unique_ptr<PlayerFrames> source = openSource(path, name);
    if (source)
        loadSource(name, std::move(source), path);
}

void OffinePlayWidget::loadFrames(const QString& name, const QVector<lidar::LidarDataPoint_V4>& newFrames,
                                  const QString& path)
{
    if (newFrames.isEmpty()) {
        inform(tr("information"), tr("Unable to parse this file"));
        return;
    }
    loadSource(name, std::make_unique<MemoryFrames>(newFrames), path);
}

void OffinePlayWidget::loadSource(const QString& name, std::unique_ptr<PlayerFrames> source, const QString& path)
{
    if (loaded || frames_)
        stop();
    frames_ = std::move(source);
    model = name;
    file = path;
    bagSource = BagSource{name, path, capture::looksLikeCaptureFile(path), capture::kDefaultDataPort};
    if (bagSource.capture) {
        QString chosenModel;
        CaptureModelDialog::lastChoice(chosenModel, bagSource.port);
    }
    unreadableReported = false;
    health->setSource(frames_.get());
    indexing = true;
    followIndex();
    if (indexing)
        indexTimer->start();
}

void OffinePlayWidget::followIndex()
{
    if (!frames_) {
        indexing = false;
        indexTimer->stop();
        return;
    }
    const bool final = frames_->isFinal();
    const int available = frames_->count();
    if (!loaded) {
        if (available > 0) {
            becomeLoaded();
        } else if (final) {
            // Nothing in the whole file could be played.
            const QString refusal = frames_->refusal();
            health->setSource(nullptr);
            frames_.reset();
            file.clear();
            indexing = false;
            indexTimer->stop();
            showIndexProgress();
            inform(tr("information"), refusal);
            return;
        }
    } else if (available != count) {
        count = available;
        ui->horizontalSlider->setRange(1, count);
        ui->spinBox_progress->setRange(1, count);
        ui->label_maxNum->setText(QStringLiteral("/") + QString::number(count));
    }
    health->follow(count);
    if (final) {
        indexing = false;
        indexTimer->stop();
        showIndexProgress();
        const QString note = frames_->note();
        if (!note.isEmpty())
            inform(tr("information"), note);
        return;
    }
    showIndexProgress();
}

void OffinePlayWidget::showIndexProgress()
{
    indexProgress->setVisible(indexing);
    if (indexing && frames_) {
        indexProgress->setValue(frames_->progressPermille());
        indexProgress->setFormat(tr("Indexing %1%").arg(frames_->progressPermille() / 10));
    }
}

void OffinePlayWidget::becomeLoaded()
{
    loaded = true;
    current = 0;
    count = frames_->count();

    ui->horizontalSlider->setValue(0);
    ui->spinBox_progress->setValue(1);
    ui->horizontalSlider->setRange(1, count);
    ui->spinBox_progress->setRange(1, count);
    ui->label_maxNum->setText(QStringLiteral("/") + QString::number(count));

    setControlsLoaded(true);
    emit SendLidarTypeSignal(model);
    emit SendPlaybackFileSignal(file);
    emitFrame(0);
}

bool OffinePlayWidget::emitFrame(int index)
{
    lidar::LidarDataPoint_V4 frame;
    if (!frames_ || !frames_->frame(index, frame)) {
        if (!unreadableReported) {
            unreadableReported = true;  // once: a changed file would say so on every tick
            inform(tr("information"), tr("Frame %1 cannot be read: the file has changed since it was opened. "
                                         "The frames before it still play.")
                                          .arg(index + 1));
        }
        return false;
    }
    lidar::FrameHealth frameHealth;
    health->frameRead(*frames_, frameHealth);
    emit SendFrameHealthSignal(frameHealth);
    emit SendLidarDataSignal(frame);
    return true;
}

void OffinePlayWidget::startPlaybackTimer()
{
    timerId = startTimer(interval, Qt::PreciseTimer);
}

void OffinePlayWidget::stopPlaybackTimer()
{
    if (timerId != -1)
        killTimer(timerId);
    timerId = -1;
}

void OffinePlayWidget::playPause()
{
    const bool wasPlaying = playing;
    playing = !playing;
    if (count == 0)
        return;
    if (wasPlaying) {
        ui->btn_play->setChecked(false);
        stopPlaybackTimer();
        return;
    }
    if (current == count && !indexing)
        current = 0;  // played to the end: start over
    ui->btn_play->setChecked(true);
    stopPlaybackTimer();  // never leave a second timer running
    startPlaybackTimer();
}

void OffinePlayWidget::timerEvent(QTimerEvent* event)
{
    if (event->timerId() != timerId || timerId == -1) {
        QWidget::timerEvent(event);
        return;
    }
    if (current >= count) {
        if (indexing)
            return;  // the index has not got this far yet: wait for it
        if (!loop) {
            // The end of the file stops playback on the last frame.
            playing = false;
            stopPlaybackTimer();
            ui->btn_play->setChecked(false);
        } else {
            current = 0;  // the first frame comes with the next tick
        }
        return;
    }
    emitFrame(current);
    ++current;
    ui->horizontalSlider->setValue(current);
    ui->spinBox_progress->setValue(current);
    // Read ahead once this tick has been drawn, not before.
    if (current < count)
        QTimer::singleShot(0, this, [this, next = current] {
            if (frames_)
                frames_->readAhead(next);
        });
}

void OffinePlayWidget::setSpeed(int index)
{
    if (index < 0 || index >= int(sizeof(kSpeedIntervals) / sizeof(kSpeedIntervals[0])))
        return;
    interval = kSpeedIntervals[index];
    if (playing && timerId != -1) {
        stopPlaybackTimer();
        startPlaybackTimer();
    }
}

void OffinePlayWidget::showFrameAt(int position)
{
    current = position;
    emitFrame(current - 1);
    ui->horizontalSlider->setValue(current);
    ui->spinBox_progress->setValue(current);
}

void OffinePlayWidget::previousFrame()
{
    if (count == 0)
        return;
    showFrameAt(qMax(current - 1, 1));
}

void OffinePlayWidget::nextFrame()
{
    if (count == 0)
        return;
    showFrameAt(qMin(current + 1, count));
}

void OffinePlayWidget::firstFrame()
{
    if (count > 0)
        showFrameAt(1);
}

void OffinePlayWidget::lastFrame()
{
    if (count > 0)
        showFrameAt(count);
}

void OffinePlayWidget::nextIncompleteFrame()
{
    const qint64 next = health->nextIncomplete(current - 1, count);
    if (next >= 0)
        showFrameAt(int(next) + 1);
}

void OffinePlayWidget::previousIncompleteFrame()
{
    const qint64 previous = health->previousIncomplete(current - 1);
    if (previous >= 0)
        showFrameAt(int(previous) + 1);
}

void OffinePlayWidget::openIfAllowed()
{
    if (ui->btn_open_file->isEnabled())
        ui->btn_open_file->click();
}

void OffinePlayWidget::toggleExportIfAllowed()
{
    if (ui->btn_export_csv->isEnabled())
        ui->btn_export_csv->click();
}

void OffinePlayWidget::seekFromSlider(int value)
{
    if (value < 1 || value > count)
        return;
    current = value;
    ui->spinBox_progress->setValue(value);
    emitFrame(value - 1);
}

bool OffinePlayWidget::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == ui->spinBox_progress && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Return || key == Qt::Key_Enter) {
            seekFromSpinBox();
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

void OffinePlayWidget::seekFromSpinBox()
{
    if (count == 0)
        return;
    // Judge the typed text, not value(): text the range rejects (0, an empty
    // box) never becomes the value, and silently showing the old position
    // instead would hide the mistake.
    FrameNumberBox* box = ui->spinBox_progress;
    bool isNumber = false;
    const int typed = box->cleanText().toInt(&isNumber);
    if (!isNumber || typed < 1 || typed > count) {
        inform(tr("information"), tr("There is an error in the input. Please enter it again"));
        box->resetTo(qBound(1, current, count));
        box->selectAll();
        return;
    }
    box->setValue(typed);
    current = typed;
    ui->horizontalSlider->setValue(current);
    emitFrame(current - 1);
}

void OffinePlayWidget::stop()
{
    playing = false;
    const bool wasLoaded = loaded;
    loaded = false;
    file.clear();
    stopPlaybackTimer();
    indexTimer->stop();
    health->setSource(nullptr);
    frames_.reset();  // stops the index and releases the file
    indexing = false;
    showIndexProgress();
    current = 0;
    count = 0;
    ui->label_maxNum->setText(QStringLiteral("0"));
    ui->btn_play->setChecked(false);
    ui->spinBox_progress->clear();
    setControlsLoaded(false);
    if (wasLoaded)
        emit SendPlaybackFileSignal(QString());
    emit SendFrameHealthSignal(lidar::FrameHealth());
    emit SendLidarDataSignal(emptyFrame());
}

void OffinePlayWidget::exportBag()
{
    if (count == 0)
        return;
    BagExportDialog dialog(model, count, this);
    const bool accepted = bagExportHook ? bagExportHook(dialog) : dialog.exec() == QDialog::Accepted;
    if (!accepted)
        return;
    const bool wasPlaying = playing;
    if (wasPlaying)
        playPause();  // the frames are read in turn while the bag is written
    QString error;
    bool cancelled = false;
    const BagExportRequest request = dialog.request();
    if (::exportBag(this, *frames_, bagSource, request, error, cancelled))
        inform(tr("File saved"), tr("File save path:%1").arg(request.path));
    else if (!cancelled)
        inform(tr("warning"), tr("File save failed!") + QLatin1Char('\n') + error);
}

void OffinePlayWidget::showFileSaved(const QString& fileName)
{
    inform(tr("File saved"), tr("File save path:%1").arg(fileName));
    ui->btn_export_csv->setChecked(false);
    ui->btn_export_csv->setText(tr("Export CSV"));
}

void OffinePlayWidget::retranslate()
{
    // A running export keeps the state text the main window gave the button.
    const bool exporting = ui->btn_export_csv->isChecked();
    const QString exportText = ui->btn_export_csv->text();
    ui->retranslateUi(this);
    exportBagButton->setText(tr("Export bag"));
    exportBagButton->setToolTip(tr("Writes frames of the file to a ROS bag"));
    if (exporting)
        ui->btn_export_csv->setText(exportText);
    ui->label_maxNum->setText(QStringLiteral("/") + QString::number(count));
    showIndexProgress();
}

void OffinePlayWidget::showEvent(QShowEvent* event)
{
    retranslate();
    QWidget::showEvent(event);
}

void OffinePlayWidget::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::LanguageChange)
        retranslate();
    QWidget::changeEvent(event);
}
