// The files the viewer reads: its settings (case-insensitive keys, file order,
// writes that change one line only, the file we ship) and, from the build
// directory like the programs, the icons, style sheet and translation.

#include "IniSettings.h"
#include "LIdarFactory.h"

#include <QApplication>
#include <QComboBox>
#include <QFile>
#include <QImage>
#include <QTemporaryDir>
#include <QTranslator>
#include <QtTest>

namespace {

QStringList g_warnings;

QString writeFile(const QTemporaryDir& dir, const QByteArray& content)
{
    QFile file(dir.filePath("connect_type.ini"));
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size() ? file.fileName() : QString();
}

}  // namespace

class SettingsFileTest : public QObject {
    Q_OBJECT
private slots:
    void lookup_data();
    void lookup();
    void writesInPlaceAndFileOrder();
    void shippedFile();
    void iconsLoad();
    void styleSheetParses();
    void translation();
};

void SettingsFileTest::lookup_data()
{
    QTest::addColumn<QString>("group");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("expected");
    QTest::newRow("top-level key, other case") << "" << "lidar ip" << "127.0.0.1";
    QTest::newRow("blanks around = and value, CRLF") << "" << "DATA PORT" << "2368";
    QTest::newRow("group, other case, %20") << "tern" << "Serial Port Function" << "false";
    QTest::newRow("comment after value") << "Tern" << "lidar filter function" << "a/b/c";
    QTest::newRow("quoted, escapes") << "Tern" << "quoted" << "x, y;z \"hi\"\t";
    QTest::newRow("[General] is the top level") << "" << "language" << "Chinese";
    QTest::newRow("key of another group") << "" << "twice" << "<none>";
}

void SettingsFileTest::lookup()
{
    QFETCH(QString, group);
    QFETCH(QString, key);
    QFETCH(QString, expected);
    QTemporaryDir dir;
    const IniSettings settings(writeFile(dir, "; comment\r\nLiDAR IP=127.0.0.1\r\nData Port = 2368 \r\n[Tern]\n"
                                              "serial%20port%20function=false\n"
                                              "lidar filter function=a/b/c ; trailing comment\n"
                                              "quoted=\"x, y;z \\\"hi\\\"\\t\"\ntwice=1\n"
                                              "[General]\nlanguage=Chinese\n"));
    QCOMPARE(settings.value(group, key, "<none>"), expected);
}

void SettingsFileTest::writesInPlaceAndFileOrder()
{
    QTemporaryDir dir;
    const QByteArray before = "; keep me\nLiDAR IP = 127.0.0.1\nData IP=127.0.0.1\n\n"
                              "[connect_type]\nzeta=Tern_Plus\nalpha=Wren_Kite\nZETA=Tern_P\n"
                              "[Tern]\nx=1\n";
    const QString path = writeFile(dir, before);
    IniSettings settings(path);
    QCOMPARE(settings.childKeys("CONNECT_TYPE"), QStringList({"zeta", "alpha"}));
    QCOMPARE(settings.childValues("connect_type"), QStringList({"Tern_P", "Wren_Kite"}));
    QCOMPARE(settings.childGroups(), QStringList({"connect_type", "Tern"}));

    // One line changes, spelling, spacing, comment and order kept; new keys
    // land at the end of their group.
    QVERIFY(settings.setValue("", "LIDAR IP", "127.0.0.2"));
    QVERIFY(settings.setValue("tern", "c", "3"));
    QVERIFY(settings.setValue("Tern_P", "d", "a, b;c=\"d\""));
    QCOMPARE(IniSettings(path).value("tern_p", "D"), QString("a, b;c=\"d\""));  // quoted and read back
    QByteArray expected = before + "c=3\n\n[Tern_P]\n";
    expected.replace("LiDAR IP = 127.0.0.1", "LiDAR IP = 127.0.0.2");
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll().left(expected.size()), expected);
}

// The file we ship: every model in the registry's order, each with a section
// that agrees with the model's descriptor, loopback addresses.
void SettingsFileTest::shippedFile()
{
    const IniSettings settings(SCANDECK_SHIPPED_INI);
    const LIdarFactory* registry = LIdarFactory::GetInstance();
    QCOMPARE(settings.childValues("connect_type"), registry->ModelNames());
    QCOMPARE(settings.value("", "lidar ip") + " " + settings.value("", "data ip"), QString("127.0.0.1 127.0.0.1"));

    for (const lidar::ModelDescriptor* described : registry->Models()) {
        const QString model = described->name();
        QCOMPARE(settings.value(model, "default baud rate"), QString::number(described->baudRate));
        QCOMPARE(settings.value(model, "GPS test function"), QString(described->gps.stamped ? "true" : "false"));
        QCOMPARE(settings.value(model, "lidar filter function").split('/').size(), described->commands.filterModes);
        // Only the models that take SetDeviceParam can change speed (1..255 Hz).
        const QString speeds = settings.value(model, "motor frequenc function");
        if (described->commands.deviceParam != lidar::DeviceParam::None) {
            for (const QString& item : speeds.split('_'))
                QVERIFY2(item.toInt() > 0 && item.toInt() < 256, qPrintable(model + ": " + item));
        } else {
            QCOMPARE(speeds, QString("false"));
        }
    }
}

void SettingsFileTest::iconsLoad()
{
    const QStringList named{"Chinese", "Color", "Csv", "GPSTest", "Green", "Grid", "Pause", "Play", "Tern_2", "USA",
                            "Yellow", "circulation", "connect", "disconnect", "down2", "file", "last",
                            "network interface", "next", "reboot", "stop", "tabulation", "up2", "polar", "ranging",
                            "box_select", "resize_range", "axis", "view_top", "view_front", "view_left", "view_right",
                            "clear", "record", "auto_connect", "settings", "about", "table", "export", "point_size",
                            "arrow_down", "arrow_up", "check"};
    QStringList paths{":/Draibaire/Resources/images/gps_test.png"};
    for (const QString& name : named)
        paths << ":/images/images/" + name + ".png";
    for (const QString& path : paths) {
        const QImage image(path);
        QVERIFY2(!image.isNull() && image.width() >= 64 && image.width() == image.height(), qPrintable(path));
    }
}

void SettingsFileTest::styleSheetParses()
{
    QFile file("./qss/MacOS.qss");
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QtMessageHandler previous = qInstallMessageHandler([](QtMsgType type, const QMessageLogContext&, const QString& text) {
        if (type != QtDebugMsg && type != QtInfoMsg)
            g_warnings << text;
    });
    qApp->setStyleSheet(QString::fromUtf8(file.readAll()));
    QComboBox().ensurePolished();  // polishing a widget with the sheet reports parse errors
    qInstallMessageHandler(previous);
    qApp->setStyleSheet(QString());
    QVERIFY2(g_warnings.isEmpty(), qPrintable(g_warnings.join('\n')));  // "Could not parse ..."
}

void SettingsFileTest::translation()
{
    QTranslator translator;
    QVERIFY(translator.load("./scandeck_zh.qm"));
    QCOMPARE(translator.translate("SelectConnectType", "Lidar connection failed"), QString::fromUtf8("雷达连接失败"));
}

QTEST_MAIN(SettingsFileTest)
#include "tst_settings_file.moc"
