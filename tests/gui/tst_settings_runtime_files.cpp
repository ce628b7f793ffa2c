// What the viewer reads at start-up besides its settings: the files placed
// next to the programs (style sheet, translation, settings copy) and the
// icons compiled in. Runs in the build directory, like the programs.

#include "IniSettings.h"
#include "SelectConnectType.h"

#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QIcon>
#include <QImage>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTranslator>
#include <QtTest>

namespace {

QStringList g_warnings;

void collectWarnings(QtMsgType type, const QMessageLogContext&, const QString& text)
{
    if (type != QtDebugMsg && type != QtInfoMsg)
        g_warnings << text;
}

}  // namespace

class RuntimeFilesTest : public QObject {
    Q_OBJECT
private slots:
    void icons_data();
    void icons();
    void styleSheetParses();
    void translationCoversTheDialog_data();
    void translationCoversTheDialog();
    void dialogFollowsTheLanguage();
    void settingsCopyNextToThePrograms();
};

void RuntimeFilesTest::icons_data()
{
    QTest::addColumn<QString>("path");
    const QStringList named{"Chinese", "Color", "Csv", "GPSTest", "Green", "Grid", "Pause", "Play", "Tern_2", "USA",
                            "Yellow", "circulation", "connect", "disconnect", "down2", "file", "last",
                            "network interface", "next", "reboot", "stop", "tabulation", "up2", "polar", "ranging",
                            "box_select", "resize_range", "axis", "view_top", "view_front", "view_left", "view_right",
                            "clear", "record", "auto_connect", "settings", "about", "table", "export", "point_size",
                            "arrow_down", "arrow_up", "check"};
    for (const QString& name : named)
        QTest::newRow(qPrintable(name)) << ":/images/images/" + name + ".png";
    QTest::newRow("gps_test") << ":/Draibaire/Resources/images/gps_test.png";
}

void RuntimeFilesTest::icons()
{
    QFETCH(QString, path);
    const QImage image(path);
    QVERIFY2(!image.isNull(), qPrintable(path));
    QVERIFY(image.width() >= 64 && image.width() == image.height());
    QVERIFY(image.hasAlphaChannel());
    // Something is drawn: enough opaque pixels, not a blank square.
    int opaque = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            opaque += qAlpha(image.pixel(x, y)) > 128;
    QVERIFY2(opaque > image.width() * image.height() / 20, qPrintable(path));
}

void RuntimeFilesTest::styleSheetParses()
{
    QFile file("./qss/MacOS.qss");
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QString sheet = QString::fromUtf8(file.readAll());
    QVERIFY(sheet.contains("QTableView") && sheet.contains("QToolButton:checked"));

    g_warnings.clear();
    const QtMessageHandler previous = qInstallMessageHandler(collectWarnings);
    qApp->setStyleSheet(sheet);
    QWidget window;
    auto* combo = new QComboBox(&window);
    combo->addItem("x");
    new QPushButton("Ok", &window);
    window.show();
    window.ensurePolished();
    combo->ensurePolished();
    QApplication::processEvents();
    qInstallMessageHandler(previous);
    qApp->setStyleSheet(QString());
    QVERIFY2(g_warnings.isEmpty(), qPrintable(g_warnings.join('\n')));  // "Could not parse ..." and the like
}

void RuntimeFilesTest::translationCoversTheDialog_data()
{
    QTest::addColumn<QString>("context");
    QTest::addColumn<QString>("source");
    QTest::addColumn<QString>("chinese");
    QTest::newRow("title") << "SelectConnectType" << "Select the connection" << QString::fromUtf8("选择连接");
    QTest::newRow("failure") << "SelectConnectType" << "Lidar connection failed" << QString::fromUtf8("雷达连接失败");
    QTest::newRow("form label") << "SelectConnectType" << "Baud Rate:" << QString::fromUtf8("波特率：");
}

void RuntimeFilesTest::translationCoversTheDialog()
{
    QFETCH(QString, context);
    QFETCH(QString, source);
    QFETCH(QString, chinese);
    QTranslator translator;
    QVERIFY(translator.load("./scandeck_zh.qm"));
    QCOMPARE(translator.translate(qPrintable(context), qPrintable(source)), chinese);
}

// The connection dialog is kept between showings: a language switch while it
// exists retranslates it.
void RuntimeFilesTest::dialogFollowsTheLanguage()
{
    QTemporaryDir dir;
    SelectConnectType dialog(nullptr, nullptr, dir.filePath("connect_type.ini"));
    auto* ok = dialog.findChild<QPushButton*>("btn_ok");
    auto* parity = dialog.findChild<QComboBox*>("cob_parity");
    parity->setCurrentIndex(1);

    QTranslator translator;
    QVERIFY(translator.load("./scandeck_zh.qm"));
    QApplication::installTranslator(&translator);
    QApplication::processEvents();
    QCOMPARE(dialog.windowTitle(), QString::fromUtf8("选择连接"));
    QCOMPARE(ok->text(), QString::fromUtf8("确定"));
    QCOMPARE(parity->currentText(), QString::fromUtf8("奇校验"));

    QApplication::removeTranslator(&translator);
    QApplication::processEvents();
    QCOMPARE(dialog.windowTitle(), QString("Select the connection"));
    QCOMPARE(ok->text(), QString("Ok"));
    QCOMPARE(parity->currentIndex(), 1);
}

void RuntimeFilesTest::settingsCopyNextToThePrograms()
{
    const IniSettings settings;  // ./ini/connect_type.ini
    QVERIFY(settings.exists());
    QCOMPARE(settings.childValues("connect_type").size(), 6);
}

QTEST_MAIN(RuntimeFilesTest)
#include "tst_settings_runtime_files.moc"
