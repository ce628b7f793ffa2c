// The main window without a lidar: its state at start, the language taken
// from and written to the settings file, hand-made frames through showFrame
// (rounding, angle range, colours, box, table), the colour legend, camera
// views, live frames when drawing falls behind, the offline player in the
// window (an unusable file, the open dialog's folder and filter, the title,
// connecting refused while loaded) and the keyboard shortcuts.

#include "AboutDialog.h"
#include "ColourLegendOverlay.h"
#include "ExportDataDialog.h"
#include "LiveFrameQueue.h"
#include "OffinePlayWidget.h"
#include "SimRecording.h"
#include "Tern.h"
#include "tst_scandeck_support.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QStandardItemModel>
#include <QTabWidget>
#include <QThread>

#include <vtkCamera.h>
#include <vtkRenderer.h>

#include <limits>

using namespace testing;

namespace {

QList<QList<int>> colours(const ScanDeck::Cloud& cloud)
{
    QList<QList<int>> all;
    for (const pcl::PointXYZRGB& p : cloud.points)
        all << QList<int>{p.r, p.g, p.b};
    return all;
}

QStringList tableColumn(QStandardItemModel* model, int column)
{
    QStringList cells;
    for (int row = 0; row < model->rowCount(); ++row)
        cells << model->item(row, column)->text();
    return cells;
}

}  // namespace

class ScanDeckWindowTest : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() { m_dir = std::make_unique<ScratchWorkingDir>(QStringLiteral("English")); }
    void cleanupTestCase() { m_dir.reset(); }

    void startState_data();
    void startState();
    void languageSwitch();
    void viewControlsReachThePipeline();
    void boxSelection();
    void cameraViews_data();
    void cameraViews();
    void liveFramesSkipOnlyWhenDrawingFallsBehind();
    void playerInTheWindow();
    void colourLegend_data();
    void colourLegend();
    void keyboardShortcuts_data();
    void keyboardShortcuts();

private:
    std::unique_ptr<ScratchWorkingDir> m_dir;
};

void ScanDeckWindowTest::startState_data()
{
    QTest::addColumn<QString>("setting");
    QTest::addColumn<int>("index");
    QTest::newRow("Chinese") << QStringLiteral("Chinese") << 0;
    QTest::newRow("English") << QStringLiteral("English") << 1;
    QTest::newRow("absent") << QString() << 1;
    QTest::newRow("lower case is not Chinese") << QStringLiteral("chinese") << 1;
}

void ScanDeckWindowTest::startState()
{
    QFETCH(QString, setting);
    QFETCH(int, index);
    ScratchWorkingDir dir(setting);
    auto w = openWindow();
    for (const char* name : {"btn_ranging", "spinBox_point_size", "cob_language", "btn_auto_connect", "btn_connect",
                             "spinbox_min_angle", "spinbox_max_angle", "btn_table", "btn_axis", "btn_top_view",
                             "btn_about", "btn_clear", "offline", "comboBox_color_mode", "checkBox_all_data"})
        QVERIFY2(control(w.get(), name) && control(w.get(), name)->isEnabled(), name);
    for (const char* name : {"btn_GPS_test", "btn_export_csv", "btn_disconnect", "btn_save_data", "btn_play_pause",
                             "btn_motor_state", "comboBox_motor_frequency", "btn_resize_range"})
        QVERIFY2(control(w.get(), name) && !control(w.get(), name)->isEnabled(), name);
    // The spin box shows 3 while the cloud is drawn with 4 until it changes.
    QCOMPARE(control<QSpinBox>(w.get(), "spinBox_point_size")->value(), 3);
    QCOMPARE(w->pointSize(), 4);
    QCOMPARE(control<QComboBox>(w.get(), "cob_language")->currentIndex(), index);
    QCOMPARE(control<QAbstractButton>(w.get(), "btn_connect")->text(), QString::fromUtf8(index == 0 ? "连接" : "Connect"));
}

void ScanDeckWindowTest::languageSwitch()
{
    ScratchWorkingDir dir(QStringLiteral("English"));
    auto w = openWindow();
    w->setWindowTitle(QStringLiteral("Tern"));
    auto* language = control<QComboBox>(w.get(), "cob_language");
    language->setCurrentIndex(0);
    QVERIFY(dir.settingsText().contains(QStringLiteral("language=Chinese\n")));
    QCOMPARE(w->windowTitle(), QStringLiteral("Tern"));
    language->setCurrentIndex(1);
    const QString settings = dir.settingsText();
    QVERIFY(settings.contains(QStringLiteral("language=English\n")) && !settings.contains(QStringLiteral("Chinese")));
    QVERIFY(settings.contains(QStringLiteral("LiDAR IP=127.0.0.1\n")));  // the rest stays as it was
    QCOMPARE(control<QAbstractButton>(w.get(), "btn_connect")->text(), QStringLiteral("Connect"));
    QCOMPARE(w->windowTitle(), QStringLiteral("Tern"));
}

// The view's controls reach the display pipeline (tested on its own for
// what it makes of a frame): rows, precision, "All Data", angle range and
// colour mode; an empty frame empties the view and leaves the table.
void ScanDeckWindowTest::viewControlsReachThePipeline()
{
    auto w = openWindow();
    QStandardItemModel* model = w->tableModel();
    w->showFrame(ringFrame(50));
    QCOMPARE(model->rowCount(), 30);
    control<QCheckBox>(w.get(), "checkBox_all_data")->setChecked(true);
    w->showFrame(ringFrame(50));
    QCOMPARE(model->rowCount(), 50);
    control<QCheckBox>(w.get(), "checkBox_all_data")->setChecked(false);
    control<QSpinBox>(w.get(), "spinBox_rows")->setValue(5);
    control<QSpinBox>(w.get(), "spinBox_precision")->setValue(0);
    w->showFrame(ringFrame(50));
    QCOMPARE(tableColumn(model, 2), (QStringList{"0", "7", "14", "22", "29"}));
    // "All Data" partly checked keeps the spin box's rows but locks the spin box.
    control<QCheckBox>(w.get(), "checkBox_all_data")->setCheckState(Qt::PartiallyChecked);
    w->showFrame(ringFrame(50));
    QCOMPARE(model->rowCount(), 5);
    QVERIFY(!control<QSpinBox>(w.get(), "spinBox_rows")->isEnabled());

    w->showFrame(Frame());
    QCOMPARE(int(w->frameCloud().size()), 0);
    QVERIFY(w->lastFrame().points.isEmpty());
    QCOMPARE(model->rowCount(), 5);

    control<QDoubleSpinBox>(w.get(), "spinbox_min_angle")->setValue(90);
    control<QDoubleSpinBox>(w.get(), "spinbox_max_angle")->setValue(180);
    control<QComboBox>(w.get(), "comboBox_color_mode")->setCurrentIndex(2);
    w->showFrame(ringFrame(360));
    QCOMPARE(int(w->frameCloud().size()), 91);
    QCOMPARE(colours(w->frameCloud()).first(), (QList<int>{255, 255, 255}));
}

void ScanDeckWindowTest::boxSelection()
{
    auto w = openWindow();
    w->showFrame(makeFrame({{0, 0.0f, 1.0f, 0, 10}, {0, 0.5f, 1.5f, 18, 10}, {0, 3.0f, 3.0f, 45, 10}}));
    w->areaPicked({0, 1, 99});  // the rubber band caught the first two points
    QVERIFY(w->isBoxActive());
    const BoxRange box = w->getBoxRange();
    QCOMPARE((QList<float>{box.min.x, box.min.y, box.max.x, box.max.y}), (QList<float>{0.0f, 1.0f, 0.5f, 1.5f}));

    // From the next frame on the points inside (after rounding) are drawn white and are the table.
    w->showFrame(makeFrame({{0, 0.004f, 1.0f, 0, 10}, {0, 3.0f, 3.0f, 45, 10}, {2, 0.5f, 1.5f, 18, 10},
                            {2, 0.506f, 1.2f, 22, 10}}));
    QCOMPARE(int(w->frameCloud().size()), 4);
    QCOMPARE(colours(w->boxCloud()), (QList<QList<int>>{{255, 255, 255}, {255, 255, 255}}));
    QCOMPARE(tableColumn(w->tableModel(), 0), (QStringList{"0", "2"}));

    // Nothing inside: the table keeps the frame's rows.
    w->showFrame(makeFrame({{0, 3.0f, 3.0f, 45, 10}, {1, 4.0f, 4.0f, 45, 10}}));
    QCOMPARE(int(w->boxCloud().size()), 0);
    QCOMPARE(tableColumn(w->tableModel(), 0), (QStringList{"0", "1"}));
}

void ScanDeckWindowTest::cameraViews_data()
{
    QTest::addColumn<QString>("button");
    QTest::addColumn<QList<double>>("direction");
    QTest::addColumn<QList<double>>("viewUp");
    const double s = 1 / std::sqrt(5.0);
    QTest::newRow("top") << "btn_top_view" << QList<double>{0, 0, 1} << QList<double>{0, 1, 0};
    QTest::newRow("left") << "btn_left_view" << QList<double>{-2 * s, 0, s} << QList<double>{0, 0, 1};
    QTest::newRow("front") << "btn_front_view" << QList<double>{0, -2 * s, s} << QList<double>{0, 0, 1};
}

void ScanDeckWindowTest::cameraViews()
{
    QFETCH(QString, button);
    QFETCH(QList<double>, direction);
    QFETCH(QList<double>, viewUp);
    auto w = openWindow();
    w->showFrame(ringFrame(100));
    click(w.get(), qPrintable(button));
    vtkCamera* camera = w->renderer()->GetActiveCamera();
    const double *toFocal = camera->GetDirectionOfProjection(), *up = camera->GetViewUp();
    for (int i = 0; i < 3; ++i)
        QVERIFY(std::abs(toFocal[i] + direction[i]) < 1e-6 && std::abs(up[i] - viewUp[i]) < 1e-6);
}

// Frames are told apart by their motor speed: 0, 1, 2, ...
void ScanDeckWindowTest::liveFramesSkipOnlyWhenDrawingFallsBehind()
{
    auto w = openWindow();
    Tern session;
    LiveFrameQueue* queue = w->liveFrames();
    const QMetaObject::Connection attached = queue->attach(&session);
    QList<int> drawn, skipped;
    connect(queue, &LiveFrameQueue::frameReady, w.get(), [&](const Frame& f) { drawn << f.motorSpeed; });
    connect(queue, &LiveFrameQueue::frameSkipped, w.get(), [&](const Frame& f) { skipped << f.motorSpeed; });
    auto* label = w->findChild<QLabel*>(QStringLiteral("label_display_behind"));
    const auto send = [&](int number) {
        Frame frame = ringFrame(200);
        frame.motorSpeed = number;
        emit session.SendleLidarDataSignal(frame);
    };

    // Drawing keeps up: every frame, in order.
    QList<int> expected;
    for (int i = 0; i < 30; ++i) {
        send(i);
        expected << i;
        QCoreApplication::processEvents();
    }
    QVERIFY(waitFor([&] { return drawn.size() == 30; }));
    QCOMPARE(drawn, expected);
    QVERIFY(skipped.isEmpty() && label->isHidden());

    // The window is busy for 1.3 s while frames keep coming: the view goes
    // straight to the newest, the others are skipped and counted. A CSV
    // export running meanwhile still writes every one of them.
    QTemporaryDir files;
    w->setExportDialogHook([&](ExportDataDialog& d) {
        d.findChild<QSpinBox*>("spinBox_frame_count")->setValue(1000);
        d.findChild<QLineEdit*>("lineEdit_path")->setText(files.filePath("live.csv"));
        d.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok)->click();
        return d.result() == QDialog::Accepted;
    });
    auto* exportButton = control<QAbstractButton>(w.get(), "btn_export_csv");
    exportButton->setEnabled(true);  // it waits for a lidar otherwise
    exportButton->click();
    QVERIFY(w->csvExport().isActive());
    drawn.clear();
    for (int i = 0; i < 130; ++i) {
        send(100 + i);
        QThread::msleep(10);
    }
    QVERIFY(waitFor([&] { return drawn.size() + skipped.size() == 130; }));
    QCOMPARE(drawn, QList<int>{229});
    QCOMPARE(skipped, [] { QList<int> all; for (int i = 0; i < 129; ++i) all << 100 + i; return all; }());
    QCOMPARE(queue->skippedFrames(), quint64(skipped.size()));
    QVERIFY(label->isVisible());
    QCOMPARE(label->text(), QString("display behind: %1 frames skipped").arg(skipped.size()));
    QCOMPARE(w->lastFrame().motorSpeed, 229);
    QCOMPARE(w->csvExport().framesWritten(), 130);
    disconnect(attached);
}

void ScanDeckWindowTest::playerInTheWindow()
{
    MessageRecorder messages;
    QTemporaryDir files;
    QString toOpen = files.filePath(QStringLiteral("bad.txt"));
    QFile bad(toOpen);
    QVERIFY(bad.open(QIODevice::WriteOnly) && bad.write("time,x,y,z\n0,1.5,2.5,0\n") > 0);
    bad.close();
    auto window = openWindow();
    ScanDeck* w = window.get();
    auto* player = control<OffinePlayWidget>(w, "offline");
    QStringList dialogs;  // "folder|filter" of each open dialog
    player->setOpenFileHook([&](const QString&, const QString& folder, const QString& filter) {
        dialogs << folder + "|" + filter;
        return toOpen;
    });
    const QString titleBefore = w->windowTitle();
    clickPlayer(player, "btn_open_file");
    QCOMPARE(messages.texts, QStringList{"information: Unable to parse this file"});
    QVERIFY(!player->isLoaded());
    QCOMPARE(w->windowTitle(), titleBefore);

    // A good recording loads after the bad one.
    messages.texts.clear();
    sim::SimOptions options;
    sim::modelFromName(QStringLiteral("Tern_Plus"), &options.model);
    toOpen = files.filePath(QStringLiteral("Tern_Plus.txt"));
    QString error;
    QVERIFY2(sim::writeRecording(options, 6, toOpen, &error), qPrintable(error));
    clickPlayer(player, "btn_open_file");
    QVERIFY(player->isLoaded() && w->frameCloud().size() > 100);
    QCOMPARE(w->windowTitle(), QStringLiteral("Tern_Plus — Tern_Plus.txt"));
    // The first dialog starts at home, the next in the folder of the file opened before.
    const QString filter = QStringLiteral("|Recordings (*.txt);;Captures (*.pcap *.pcapng);;All files (*)");
    QCOMPARE(dialogs, (QStringList{QDir::homePath() + "/" + filter, files.path() + filter}));

    // While a file is loaded the window will not connect.
    click(w, "btn_connect");
    click(w, "btn_auto_connect");
    const QString refusal = QStringLiteral("information: Please stop the offline playback first");
    QCOMPARE(messages.texts, (QStringList{refusal, refusal}));
    QVERIFY(!w->connectDialog() && !w->isLidarConnected());

    // Stop unloads and empties the display.
    clickPlayer(player, "btn_stop");
    QVERIFY(!player->isLoaded() && !player->isPlaying());
    QCOMPARE(w->frameCloud().size(), size_t(0));
    QCOMPARE(w->windowTitle(), QStringLiteral("ScanDeck"));
}

void ScanDeckWindowTest::colourLegend_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<QStringList>("labels");  // of the swatches, or the ramp's ticks
    QTest::newRow("Intensity") << 0 << QStringList{"0", "32", "64", "128", "255"};
    QTest::newRow("Azimuth") << 1 << QStringList{"0° – 90°", "90° – 180°", "180° – 270°", "270° – 360°"};
    QTest::newRow("Solid") << 2 << QStringList{"every point"};
}

// The legend shows the colours the points are really drawn in, sits clear of
// the middle of the view, and goes away when switched off or when the view
// is too small to keep the middle free.
void ScanDeckWindowTest::colourLegend()
{
    QFETCH(int, mode);
    QFETCH(QStringList, labels);
    auto w = openWindow();
    auto* legend = w->findChild<ColourLegendOverlay*>();
    auto* modes = control<QComboBox>(w.get(), "comboBox_color_mode");
    modes->setCurrentIndex(mode);
    QCOMPARE(legend->title(), modes->currentText());

    // One point per band, at azimuths 45, 135, 225, 315 with intensities 0, 80, 200, 255.
    w->showFrame(makeFrame({{0, 1, 0, 45, 0}, {0, 1, 0, 135, 80}, {0, 1, 0, 225, 200}, {0, 1, 0, 315, 255}}));
    const auto drawn = colours(w->frameCloud());
    const display::ColourLegend& content = legend->legend();
    QStringList shownLabels;
    QList<QList<int>> legendColours;
    for (const display::LegendSwatch& swatch : content.swatches) {
        shownLabels << swatch.label;
        legendColours << QList<int>{swatch.colour.r, swatch.colour.g, swatch.colour.b};
    }
    if (!content.ramp.isEmpty()) {
        for (int tick : content.rampTicks)
            shownLabels << QString::number(tick);
        for (int intensity : {0, 80, 200, 255})
            legendColours << QList<int>{content.ramp[intensity].r, content.ramp[intensity].g, content.ramp[intensity].b};
    }
    QCOMPARE(shownLabels, labels);
    QCOMPARE(legendColours, mode == 2 ? drawn.mid(0, 1) : drawn);

    QWidget* view = control(w.get(), "openGLWidget");
    QVERIFY(legend->isVisible());
    QVERIFY(!legend->geometry().intersects(ColourLegendOverlay::middleOf(view->size())));
    click(w.get(), "btn_legend");
    QVERIFY(!legend->isVisible());
    click(w.get(), "btn_legend");
    QVERIFY(legend->isVisible());
    // A view too small to keep the middle free has no room for it.
    QVERIFY(ColourLegendOverlay::placement(legend->sizeHint(), QSize(320, 200)).isEmpty());
}

void ScanDeckWindowTest::keyboardShortcuts_data()
{
    QTest::addColumn<QList<int>>("keys");
    QTest::addColumn<int>("frame");  // the number of the frame shown last
    QTest::addColumn<bool>("playing");
    QTest::newRow("End") << QList<int>{Qt::Key_End} << 5 << false;
    QTest::newRow("End, Left") << QList<int>{Qt::Key_End, Qt::Key_Left} << 4 << false;
    QTest::newRow("End, Home") << QList<int>{Qt::Key_End, Qt::Key_Home} << 1 << false;
    QTest::newRow("Right, Right") << QList<int>{Qt::Key_Right, Qt::Key_Right} << 2 << false;
    QTest::newRow("Space plays") << QList<int>{Qt::Key_Space} << 1 << true;
    QTest::newRow("Space, Space pauses") << QList<int>{Qt::Key_Space, Qt::Key_Space} << 1 << false;
}

// Keys pressed where the keyboard focus is when the window opens.
void ScanDeckWindowTest::keyboardShortcuts()
{
    QFETCH(QList<int>, keys);
    QFETCH(int, frame);
    QFETCH(bool, playing);
    auto w = openWindow();
    w->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(w.get()));
    auto* player = control<OffinePlayWidget>(w.get(), "offline");
    QVector<Frame> frames(5, ringFrame(10));
    for (int i = 0; i < frames.size(); ++i)
        frames[i].motorSpeed = i + 1;
    player->loadFrames(QStringLiteral("Tern"), frames);
    const auto press = [&w](int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QWidget* focus = QApplication::focusWidget();
        QTest::keyClick(focus ? focus : w.get(), Qt::Key(key), modifiers);
    };
    for (int key : keys)
        press(key);
    QCOMPARE(w->lastFrame().motorSpeed, frame);
    QCOMPARE(player->isPlaying(), playing);
    player->stop();

    // Without a recording, Ctrl+O opens one (on the offline page) and F1
    // lists the keys.
    int opened = 0;
    player->setOpenFileHook([&opened](const QString&, const QString&, const QString&) { return ++opened, QString(); });
    press(Qt::Key_O, Qt::ControlModifier);
    QCOMPARE(opened, 1);
    QCOMPARE(control<QTabWidget>(w.get(), "tabWidget")->currentWidget(), control(w.get(), "tab_offline"));
    press(Qt::Key_F1);
    auto* about = w->findChild<AboutDialog*>();
    QVERIFY(about && about->isVisible());
    QVERIFY(about->findChild<QLabel*>("label_shortcuts")->text().contains("Space"));
    about->close();
}

SCANDECK_TEST_MAIN(ScanDeckWindowTest)
#include "tst_scandeck_window.moc"
