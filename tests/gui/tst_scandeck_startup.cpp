// The main window as it starts: which controls exist and are live, the
// language taken from the settings file, the language switch, the panel
// button and tab animation, messages, About, restart and closing.

#include "AboutDialog.h"
#include "OffinePlayWidget.h"
#include "tst_scandeck_support.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QHeaderView>
#include <QLabel>
#include <QProgressBar>
#include <QPropertyAnimation>
#include <QSpinBox>
#include <QSplitter>
#include <QStandardItemModel>
#include <QStatusBar>
#include <QTableView>
#include <QTabWidget>

using namespace testing;

class ScanDeckStartupTest : public QObject {
    Q_OBJECT
private slots:
    void controlsAtStart_data();
    void controlsAtStart();
    void startDetails();
    void startLanguage_data();
    void startLanguage();
    void languageSwitch();
    void panelButtonAndTabSlide();
    void messagesProgressAndAbout();
    void restartDeclined();
    void closeAsksAboutRecordingAndExport();  // last: it asks the application to exit
};

void ScanDeckStartupTest::controlsAtStart_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("enabled");
    const QStringList live{"btn_ranging", "spinBox_point_size", "btn_tabWidget_hide", "cob_language",
                           "btn_auto_connect", "btn_connect", "spinbox_min_angle", "spinbox_max_angle", "btn_grid",
                           "btn_polar", "btn_set_grid_polar", "btn_table", "btn_axis", "btn_front_view",
                           "btn_left_view", "btn_right_view", "btn_top_view", "btn_reboot", "btn_about", "btn_clear",
                           "btn_point_cloud_select", "offline", "btn_network_interface_setting",
                           "comboBox_color_mode", "tabWidget", "tableView_point_cloud", "openGLWidget",
                           "checkBox_all_data", "spinBox_rows", "spinBox_precision"};
    const QStringList dead{"btn_GPS_test", "btn_export_csv", "btn_disconnect", "btn_save_data", "btn_play_pause",
                           "btn_motor_state", "comboBox_motor_filter", "comboBox_motor_frequency",
                           "btn_resize_range"};
    for (const QString& name : live)
        QTest::newRow(qPrintable(name)) << name << true;
    for (const QString& name : dead)
        QTest::newRow(qPrintable(name)) << name << false;
}

void ScanDeckStartupTest::controlsAtStart()
{
    QFETCH(QString, name);
    QFETCH(bool, enabled);
    ScratchWorkingDir dir;
    auto window = openWindow();
    QWidget* widget = control(window.get(), qPrintable(name));
    QVERIFY2(widget, qPrintable(name + " is missing"));
    QCOMPARE(widget->isEnabled(), enabled);
}

void ScanDeckStartupTest::startDetails()
{
    ScratchWorkingDir dir;
    auto window = openWindow();
    ScanDeck* w = window.get();

    // The spin box shows 3 while the cloud is drawn with 4 until it changes.
    QCOMPARE(control<QSpinBox>(w, "spinBox_point_size")->value(), 3);
    QCOMPARE(w->pointSize(), 4);
    QCOMPARE(w->minAngle(), 0.0f);
    QCOMPARE(w->maxAngle(), 360.0f);
    QCOMPARE(w->tableRows(), 30);
    QCOMPARE(w->tablePrecision(), 2);

    QVERIFY(control(w, "btn_reboot")->isHidden());
    QVERIFY(control<QAbstractButton>(w, "btn_motor_state")->isChecked());
    QVERIFY(!control<QAbstractButton>(w, "btn_play_pause")->isChecked());
    QVERIFY(!control<QAbstractButton>(w, "btn_disconnect")->isChecked());
    QVERIFY(qobject_cast<OffinePlayWidget*>(control(w, "offline")));

    auto* tabs = control<QTabWidget>(w, "tabWidget");
    QCOMPARE(tabs->count(), 3);
    QCOMPARE(tabs->tabText(0), QStringLiteral("Lidar"));
    QCOMPARE(tabs->tabText(1), QStringLiteral("offline"));
    QCOMPARE(tabs->tabText(2), QStringLiteral("Setting"));

    QCOMPARE(control<QSplitter>(w, "splitter")->sizes().value(0), 0);  // table pane collapsed
    QStandardItemModel* model = w->tableModel();
    QCOMPARE(model->columnCount(), 6);
    QCOMPARE(model->horizontalHeaderItem(1)->text(), QStringLiteral("    Points_XYZ    "));
    QCOMPARE(model->horizontalHeaderItem(5)->text(), QStringLiteral("  Timestamp"));
    auto* table = control<QTableView>(w, "tableView_point_cloud");
    QCOMPARE(table->model(), static_cast<QAbstractItemModel*>(model));
    QCOMPARE(table->editTriggers(), QAbstractItemView::NoEditTriggers);
    QVERIFY(table->alternatingRowColors());
    QVERIFY(table->horizontalHeader()->stretchLastSection());

    QStringList readouts;
    for (QLabel* label : w->statusBar()->findChildren<QLabel*>())
        readouts << label->text();
    for (const char* text : {"motor speed:", "Δx:", "Δy:", "Δdistance:", "azimuth:", "distance"})
        QVERIFY2(readouts.contains(QString::fromUtf8(text)), text);
    auto* progress = w->statusBar()->findChild<QProgressBar*>();
    QVERIFY(progress && progress->isHidden());
    QCOMPARE(progress->minimum(), 1);
    QCOMPARE(progress->maximum(), 100);
}

void ScanDeckStartupTest::startLanguage_data()
{
    QTest::addColumn<QString>("setting");
    QTest::addColumn<int>("index");
    QTest::newRow("Chinese") << QStringLiteral("Chinese") << 0;
    QTest::newRow("English") << QStringLiteral("English") << 1;
    QTest::newRow("absent") << QString() << 1;
    QTest::newRow("lower case is not Chinese") << QStringLiteral("chinese") << 1;
    QTest::newRow("anything else") << QStringLiteral("Klingon") << 1;
}

void ScanDeckStartupTest::startLanguage()
{
    QFETCH(QString, setting);
    QFETCH(int, index);
    ScratchWorkingDir dir(setting);
    const QString before = dir.settingsText();
    auto window = openWindow();
    QCOMPARE(control<QComboBox>(window.get(), "cob_language")->currentIndex(), index);
    auto* connectButton = control<QAbstractButton>(window.get(), "btn_connect");
    if (index == 0 && dir.hasTranslation())
        QCOMPARE(connectButton->text(), QStringLiteral("连接"));
    else if (index == 1)
        QCOMPARE(connectButton->text(), QStringLiteral("Connect"));
    if (index == 1)
        QCOMPARE(dir.settingsText(), before);  // starting in English writes nothing
}

void ScanDeckStartupTest::languageSwitch()
{
    ScratchWorkingDir dir(QStringLiteral("English"));
    auto window = openWindow();
    window->setWindowTitle(QStringLiteral("Tern"));
    auto* language = control<QComboBox>(window.get(), "cob_language");
    auto* connectButton = control<QAbstractButton>(window.get(), "btn_connect");

    language->setCurrentIndex(0);
    QVERIFY(dir.settingsText().contains(QStringLiteral("language=Chinese\n")));
    QCOMPARE(window->windowTitle(), QStringLiteral("Tern"));
    if (dir.hasTranslation()) {
        QCOMPARE(connectButton->text(), QStringLiteral("连接"));
        QCOMPARE(control<QTabWidget>(window.get(), "tabWidget")->tabText(0), QStringLiteral("雷达"));
    }

    language->setCurrentIndex(1);
    const QString settings = dir.settingsText();
    QVERIFY(settings.contains(QStringLiteral("language=English\n")));
    QVERIFY(!settings.contains(QStringLiteral("Chinese")));
    QVERIFY(settings.contains(QStringLiteral("LiDAR IP=127.0.0.1\n")));  // the rest stays as it was
    QCOMPARE(connectButton->text(), QStringLiteral("Connect"));
    QCOMPARE(window->windowTitle(), QStringLiteral("Tern"));
}

void ScanDeckStartupTest::panelButtonAndTabSlide()
{
    ScratchWorkingDir dir;
    auto window = openWindow();
    auto* tabs = control<QTabWidget>(window.get(), "tabWidget");
    auto* hide = control<QAbstractButton>(window.get(), "btn_tabWidget_hide");
    hide->click();
    QVERIFY(tabs->isHidden());
    hide->click();
    QVERIFY(tabs->isVisible());

    tabs->setCurrentIndex(2);
    QWidget* page = tabs->widget(2);
    auto* slide = page->findChild<QPropertyAnimation*>();
    QVERIFY(slide);
    QCOMPARE(slide->propertyName(), QByteArray("geometry"));
    QCOMPARE(slide->duration(), 300);
    QCOMPARE(slide->easingCurve().type(), QEasingCurve::OutBack);
    QCOMPARE(slide->startValue().toRect().y(), -70);
    const QRect end = slide->endValue().toRect();
    QVERIFY(QTest::qWaitFor([&] { return page->findChild<QPropertyAnimation*>() == nullptr; }, 3000));
    QCOMPARE(page->geometry(), end);
}

void ScanDeckStartupTest::messagesProgressAndAbout()
{
    ScratchWorkingDir dir;
    MessageRecorder recorder;
    auto window = openWindow();
    ScanDeck* w = window.get();

    emit w->SendMessageSignal(QStringLiteral("Please connect the radar first"));
    QCOMPARE(recorder.messages.size(), 1);
    QCOMPARE(recorder.messages[0].kind, UserMessage::Warning);
    QCOMPARE(recorder.messages[0].title, QStringLiteral("warning"));
    QCOMPARE(recorder.messages[0].text, QStringLiteral("Please connect the radar first"));

    auto* progress = w->statusBar()->findChild<QProgressBar*>();
    progress->show();
    emit w->SendDataSavingProgressSianal(0.456f);
    QCOMPARE(progress->value(), 45);
    emit w->SendEndSaveDataSignal(QStringLiteral("/tmp/frames.csv"));
    QCOMPARE(recorder.messages.size(), 2);
    QCOMPARE(recorder.messages[1].title, QStringLiteral("File saved"));
    QCOMPARE(recorder.messages[1].text, QStringLiteral("File save path:/tmp/frames.csv"));
    QVERIFY(progress->isHidden());

    // Without a connected lidar the About box has no firmware line.
    control<QAbstractButton>(w, "btn_about")->click();
    auto* about = w->findChild<AboutDialog*>();
    QVERIFY(about && about->isVisible());
    QCOMPARE(about->versionText(), QStringLiteral("RQ ScanDeck ：System64-Version 1.0.2"));
    QVERIFY(about->firmwareText().isEmpty());
    about->close();
    control<QAbstractButton>(w, "btn_about")->click();
    QCOMPARE(w->findChildren<AboutDialog*>().size(), 1);  // made once, shown again
}

void ScanDeckStartupTest::restartDeclined()
{
    ScratchWorkingDir dir;
    MessageRecorder recorder;
    auto window = openWindow();
    control<QAbstractButton>(window.get(), "btn_reboot")->click();
    QCOMPARE(recorder.messages.size(), 1);
    QCOMPARE(recorder.messages[0].kind, UserMessage::Question);
    QCOMPARE(recorder.messages[0].title, QStringLiteral("restart"));
    QCOMPARE(recorder.messages[0].text, QStringLiteral("Confirm restarting the software?"));
    QVERIFY(window->isVisible());
}

void ScanDeckStartupTest::closeAsksAboutRecordingAndExport()
{
    ScratchWorkingDir dir;
    MessageRecorder recorder;
    {
        auto window = openWindow();
        window->close();
        QVERIFY(recorder.messages.isEmpty());  // nothing running, nothing asked
    }
    auto window = openWindow();
    for (const char* name : {"btn_save_data", "btn_export_csv"}) {
        auto* button = control<QAbstractButton>(window.get(), name);
        button->setEnabled(true);
        button->setChecked(true);
    }
    window->close();
    QCOMPARE(recorder.messages.size(), 2);
    QCOMPARE(recorder.messages[0].title, QStringLiteral("question"));
    QCOMPARE(recorder.messages[0].text, QStringLiteral("Data is being recorded. Do you want to save the data "
                                                       "before exiting the program?"));
    QCOMPARE(recorder.messages[1].text, QStringLiteral("Exporting csv data, do you want to save the data before "
                                                       "exiting the program?"));
    QVERIFY(!window->isVisible());  // No discards nothing; the window closes all the same
}

SCANDECK_TEST_MAIN(ScanDeckStartupTest)
#include "tst_scandeck_startup.moc"
