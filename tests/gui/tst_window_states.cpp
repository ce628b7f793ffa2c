// What the window shows for its state, at the moments an operator meets
// it: the start, a connection and a disconnect, a language switch while
// frames flow and a recording runs, closing while recording, an export that
// a disconnect or Stop ends, the names proposed for files, the view's texts
// in Chinese, the point table's columns, the combo boxes and the status bar
// on a small screen, and the view's own keys.

#include "ExportDataDialog.h"
#include "OffinePlayWidget.h"
#include "RecordFile.h"
#include "StatusReadouts.h"
#include "SwitchButton.h"
#include "tst_scandeck_support.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QRegularExpression>
#include <QSpinBox>
#include <QTabWidget>
#include <QHeaderView>
#include <QLineEdit>
#include <QProgressBar>
#include <QStandardItemModel>
#include <QStatusBar>
#include <QTableView>

#include <QVTKOpenGLNativeWidget.h>
#include <pcl/visualization/pcl_visualizer.h>
#include <vtkTextActor.h>
#include <vtkTextProperty.h>

using namespace testing;

namespace {

QString text(QWidget* window, const char* name)
{
    if (auto* label = window->findChild<QLabel*>(QLatin1String(name)))
        return label->text();
    return control<QAbstractButton>(window, name)->text();
}

QString scanDeckText(const char* source)
{
    return QCoreApplication::translate("ScanDeck", source);
}

// Starts a CSV export of `frames` frames into `path` from `button`.
void startExport(ScanDeck* w, QAbstractButton* button, const QString& path, int frames = 100)
{
    w->setExportDialogHook([=](ExportDataDialog& dialog) {
        dialog.findChild<QSpinBox*>("spinBox_frame_count")->findChild<QLineEdit*>()->setText(QString::number(frames));
        dialog.findChild<QLineEdit*>("lineEdit_path")->setText(path);
        dialog.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok)->click();
        return dialog.result() == QDialog::Accepted;
    });
    button->setEnabled(true);
    button->click();
}

}  // namespace

class WindowStatesTest : public QObject {
    Q_OBJECT
private slots:
    void cleanup() { quietRegistry(); }

    void startConnectAndDisconnect();
    void languageSwitchKeepsEachControlsState();
    void closingWhileRecording_data();
    void closingWhileRecording();
    void disconnectOrStopEndsAnExport_data();
    void disconnectOrStopEndsAnExport();
    void proposedNamesCarryTheModel();
    void viewTextsDrawChinese();
    void tableColumnsFitTheirContents_data();
    void tableColumnsFitTheirContents();
    void smallScreenShowsWholeItemsAndKeepsItsLayout();
    void viewKeysMoveThePointSizeBox();
};

// Before anything happens, and again after a disconnect: the motor switch
// on and disabled, the readouts with the window's own texts.
void WindowStatesTest::startConnectAndDisconnect()
{
    ScratchWorkingDir dir;
    auto window = openWindow();
    ScanDeck* w = window.get();
    auto* motor = control<SwitchButton>(w, "btn_motor_state");
    // Seen for the first time, the switch is on: no knob still on its way.
    control<QTabWidget>(w, "tabWidget")->setCurrentWidget(control<QWidget>(w, "tab_setting"));
    QApplication::processEvents();
    QVERIFY(motor->isVisible() && motor->isChecked() && !motor->isEnabled() && !motor->isAnimating());
    QCOMPARE(motor->knobX(), double(motor->width() - motor->height() + 1));
    QStringList labels;
    for (const char* name : {"label_motor_speed", "label_delta_x", "label_delta_y", "label_delta_distance",
                             "label_azimuth", "label_distance"})
        labels << text(w, name);
    QCOMPARE(labels, QStringList({"motor speed:", "Δx:", "Δy:", "Δdistance:", "azimuth:", "distance"}));

    SimulatedLidarRig lidar;
    QVERIFY(lidar.start(QStringLiteral("Tern"), sim::Transport::Udp));
    QVERIFY(connectWindow(*w, QStringLiteral("Tern"), lidar));
    motor->setChecked(false);  // the motor was stopped
    click(w, "btn_disconnect");
    QVERIFY(motor->isChecked() && !motor->isEnabled());
}

// A switch of language retranslates the form, whose texts are those of the
// start state: every control then shows the text of its own state.
void WindowStatesTest::languageSwitchKeepsEachControlsState()
{
    ScratchWorkingDir dir;
    MessageRecorder messages;
    QTemporaryDir files;
    SimulatedLidarRig lidar;
    QVERIFY(lidar.start(QStringLiteral("Tern"), sim::Transport::Udp));
    auto window = openWindow();
    ScanDeck* w = window.get();
    w->setSaveFileHook([&](QWidget*, const QString&, const QString&, const QString&) { return files.filePath("r.txt"); });
    QVERIFY(connectWindow(*w, QStringLiteral("Tern"), lidar));
    click(w, "btn_save_data");
    auto* language = control<QComboBox>(w, "cob_language");
    for (const QString& item : {QStringLiteral("中文"), QStringLiteral("English")}) {
        language->setCurrentText(item);
        QCOMPARE(text(w, "btn_play_pause"), scanDeckText("pause"));
        QCOMPARE(text(w, "btn_save_data"), scanDeckText("Recording data"));
    }
    QCOMPARE(text(w, "btn_save_data"), QStringLiteral("Recording data"));
    click(w, "btn_save_data");
    click(w, "btn_disconnect");
}

void WindowStatesTest::closingWhileRecording_data()
{
    QTest::addColumn<bool>("save");
    QTest::newRow("saved: a whole recording") << true;
    QTest::newRow("not saved: an empty file") << false;
}

void WindowStatesTest::closingWhileRecording()
{
    QFETCH(bool, save);
    ScratchWorkingDir dir;
    QTemporaryDir files;
    const QString path = files.filePath("closing.txt");
    const usermessages::Handler previous = usermessages::setHandler([save](QWidget*, const UserMessage& m) {
        return m.kind == UserMessage::Question && save ? QMessageBox::Yes : QMessageBox::No;
    });
    SimulatedLidarRig lidar;
    QVERIFY(lidar.start(QStringLiteral("Tern"), sim::Transport::Udp));
    auto window = openWindow();
    ScanDeck* w = window.get();
    w->setSaveFileHook([&](QWidget*, const QString&, const QString&, const QString&) { return path; });
    QVERIFY(connectWindow(*w, QStringLiteral("Tern"), lidar));
    click(w, "btn_save_data");
    LidarAnalysis* session = w->session().get();
    QVERIFY(waitFor([&] { return session->recordingCounts().packets > 50; }, 10000));
    w->close();
    usermessages::setHandler(previous);
    if (save)
        QVERIFY(lidar::scanRecordFile(path).isWhole() && lidar::readRecordFile(path).size() > 50);
    else
        QCOMPARE(QFileInfo(path).size(), 0);
}

void WindowStatesTest::disconnectOrStopEndsAnExport_data()
{
    QTest::addColumn<bool>("live");
    QTest::newRow("live, disconnected") << true;
    QTest::newRow("playing, stopped") << false;
}

// Ending the link or the file ends the export as its last frame would:
// what was written is kept and said so, the controls are at rest.
void WindowStatesTest::disconnectOrStopEndsAnExport()
{
    QFETCH(bool, live);
    ScratchWorkingDir dir;
    MessageRecorder messages;
    QTemporaryDir files;
    const QString path = files.filePath("ended.csv");
    SimulatedLidarRig lidar;
    auto window = openWindow();
    ScanDeck* w = window.get();
    auto* player = control<OffinePlayWidget>(w, "offline");
    QAbstractButton* button = live ? control<QAbstractButton>(w, "btn_export_csv")
                                   : player->findChild<QAbstractButton*>("btn_export_csv");
    if (live) {
        QVERIFY(lidar.start(QStringLiteral("Tern"), sim::Transport::Udp));
        QVERIFY(connectWindow(*w, QStringLiteral("Tern"), lidar));
    } else {
        player->loadFrames("Tern", QVector<Frame>(5, ringFrame(8)));
    }
    startExport(w, button, path);
    QVERIFY(w->csvExport().isActive());
    w->showFrame(ringFrame(8));
    w->showFrame(ringFrame(8));
    if (live)
        click(w, "btn_disconnect");
    else
        clickPlayer(player, "btn_stop");
    QVERIFY(!w->csvExport().isActive());
    QVERIFY(messages.texts.contains("File saved: File save path:" + path));
    QVERIFY(!button->isChecked() && button->text() == QLatin1String("Export CSV"));
    QVERIFY(w->findChild<QProgressBar*>("progressBar_export")->isHidden());
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QVERIFY(file.readAll().count('\n') >= 1 + 2 * 8);  // the header and the frames shown
}

// Whatever the title shows, the proposed file names carry the model.
void WindowStatesTest::proposedNamesCarryTheModel()
{
    ScratchWorkingDir dir;
    MessageRecorder messages;
    auto window = openWindow();
    ScanDeck* w = window.get();
    auto* player = control<OffinePlayWidget>(w, "offline");
    player->loadFrames("Wren_Plus", {ringFrame(4)}, QDir::current().filePath("hall.txt"));
    QCOMPARE(w->windowTitle(), QStringLiteral("Wren_Plus — hall.txt"));
    QString proposed;
    w->setExportDialogHook([&](ExportDataDialog& dialog) {
        proposed = dialog.findChild<QLineEdit*>("lineEdit_path")->text();
        return false;
    });
    clickPlayer(player, "btn_export_csv");
    QVERIFY2(QRegularExpression(R"(^\./Wren_Plus_\d{4}_\d\d_\d\d \d\d\.\d\d\.\d\d\.csv$)").match(proposed).hasMatch(),
             qPrintable(proposed));
}

// The ambient value is drawn with a font that has Chinese glyphs, in both languages.
void WindowStatesTest::viewTextsDrawChinese()
{
    ScratchWorkingDir dir(QStringLiteral("Chinese"));
    auto window = openWindow();
    ScanDeck* w = window.get();
    Frame frame = ringFrame(4);
    frame.ambient = 12;
    w->showFrame(frame);
    const auto shape = w->viewer().getShapeActorMap()->find("Ambient");
    QVERIFY(shape != w->viewer().getShapeActorMap()->end());
    vtkTextProperty* font = vtkTextActor::SafeDownCast(shape->second)->GetTextProperty();
    QCOMPARE(QString::fromUtf8(vtkTextActor::SafeDownCast(shape->second)->GetInput()),
             QCoreApplication::translate("ReadoutTexts", "Ambient:%1").arg(12));
    QCOMPARE(font->GetFontFamily(), VTK_FONT_FILE);
    QVERIFY2(QString::fromLatin1(font->GetFontFile()).contains("wqy"), font->GetFontFile());
}

void WindowStatesTest::tableColumnsFitTheirContents_data()
{
    QTest::addColumn<int>("precision");
    QTest::addColumn<int>("width");  // of the window
    QTest::newRow("precision 2") << 2 << 1600;
    QTest::newRow("precision 4") << 4 << 1600;
    QTest::newRow("precision 4, small window") << 4 << 1024;
}

// No cell is cut off, negative coordinates and long precisions included.
void WindowStatesTest::tableColumnsFitTheirContents()
{
    QFETCH(int, precision);
    QFETCH(int, width);
    ScratchWorkingDir dir;
    auto window = openWindow();
    ScanDeck* w = window.get();
    w->setWindowState(Qt::WindowNoState);
    w->resize(width, 768);
    click(w, "btn_table");
    w->setTablePrecision(precision);
    w->showFrame(makeFrame({{0, -1.54f, -0.82f, 241.97f, 30}, {0, -12.345f, -20.5f, 211.06f, 255}}));
    auto* table = control<QTableView>(w, "tableView_point_cloud");
    QApplication::processEvents();
    const QFontMetrics metrics(table->font());
    for (int column = 0; column < w->tableModel()->columnCount(); ++column)
        for (int row = 0; row < w->tableModel()->rowCount(); ++row) {
            const QString cell = w->tableModel()->item(row, column)->text();
            QVERIFY2(table->horizontalHeader()->sectionSize(column) >= metrics.horizontalAdvance(cell),
                     qPrintable(QStringLiteral("column %1 cuts \"%2\"").arg(column).arg(cell)));
        }
}

// At 1024x768 every combo box shows its longest item (the filter box with
// a model's three modes among them), and an export's progress bar
// appearing changes neither the status bar nor the window.
void WindowStatesTest::smallScreenShowsWholeItemsAndKeepsItsLayout()
{
    ScratchWorkingDir dir;
    useShippedSettings();
    MessageRecorder messages;
    QTemporaryDir files;
    auto window = openWindow();
    ScanDeck* w = window.get();
    w->setWindowState(Qt::WindowNoState);
    w->resize(1024, 768);
    SimulatedLidarRig lidar;
    QVERIFY(lidar.start(QStringLiteral("Tern"), sim::Transport::Udp));
    QVERIFY(connectWindow(*w, QStringLiteral("Tern"), lidar));
    QCOMPARE(control<QComboBox>(w, "comboBox_motor_filter")->count(), 3);
    auto* tabs = control<QTabWidget>(w, "tabWidget");
    for (int page = 0; page < tabs->count(); ++page) {
        tabs->setCurrentIndex(page);
        waitFor([] { return false; }, 350);
        for (QComboBox* box : tabs->currentWidget()->findChildren<QComboBox*>()) {
            if (!box->isVisible())
                continue;
            const QFontMetrics metrics(box->font());
            for (int i = 0; i < box->count(); ++i)
                QVERIFY2(box->width() >= metrics.horizontalAdvance(box->itemText(i)) + 16,
                         qPrintable(box->objectName() + ": " + box->itemText(i)));
        }
    }
    const QSize before = w->size();
    const int barHeight = w->statusBar()->height();
    startExport(w, control<QAbstractButton>(w, "btn_export_csv"), files.filePath("layout.csv"));
    w->showFrame(ringFrame(8));
    waitFor([] { return false; }, 100);
    QVERIFY(w->findChild<QProgressBar*>("progressBar_export")->isVisible());
    QCOMPARE(w->statusBar()->height(), barHeight);
    QCOMPARE(w->size(), before);
}

// "+" and "-" in the view change the points' size, and the box shows it.
void WindowStatesTest::viewKeysMoveThePointSizeBox()
{
    ScratchWorkingDir dir;
    auto window = openWindow();
    ScanDeck* w = window.get();
    auto* box = control<QSpinBox>(w, "spinBox_point_size");
    auto* view = control<QVTKOpenGLNativeWidget>(w, "openGLWidget");
    const int start = w->pointSize();
    QTest::keyClick(view, Qt::Key_Plus, Qt::NoModifier);
    QTest::keyClick(view, Qt::Key_Plus, Qt::NoModifier);
    QTest::keyClick(view, Qt::Key_Minus, Qt::NoModifier);
    QCOMPARE(w->pointSize(), start + 1);
    QCOMPARE(box->value(), start + 1);
}

SCANDECK_TEST_MAIN(WindowStatesTest)
#include "tst_window_states.moc"
