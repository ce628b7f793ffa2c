// The settings file: case-insensitive keys, file order, writes that change one
// line only, agreement with QSettings both ways, and the file we ship.

#include "IniSettings.h"

#include <QDir>
#include <QFile>
#include <QSettings>
#include <QTemporaryDir>
#include <QtTest>

namespace {

QString writeFile(const QTemporaryDir& dir, const QByteArray& content, const QString& name = "ini/connect_type.ini")
{
    const QString path = dir.filePath(name);
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return QString();
    file.write(content);
    return path;
}

QByteArray readFile(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

}  // namespace

class SettingsFileTest : public QObject {
    Q_OBJECT
private slots:
    void lookup_data();
    void lookup();
    void writesUpdateTheEntryInPlace();
    void newKeysLandInTheirGroup();
    void keysAndGroupsInFileOrder();
    void valuesRoundTripThroughQSettings_data();
    void valuesRoundTripThroughQSettings();
    void readsWhatQSettingsWrites();
    void missingOrUnwritableFile();
    void shippedFile();
};

void SettingsFileTest::lookup_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("group");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("expected");

    const QByteArray file = "; comment line\n"
                            "LiDAR IP=127.0.0.1\n"
                            "Data Port = 2368 \n"
                            "\n"
                            "[Tern]\n"
                            "serial%20port%20function=false\n"
                            "lidar filter function=a/b/c ; trailing comment\n"
                            "quoted=\"x, y;z\"\n"
                            "escaped=\"say \\\"hi\\\"\\tnow\"\n"
                            "twice=first\n"
                            "TWICE=second\n"
                            "[General]\n"
                            "language=Chinese\n";
    QTest::newRow("top-level key, other case") << file << "" << "lidar ip" << "127.0.0.1";
    QTest::newRow("blanks around = and value") << file << "" << "DATA PORT" << "2368";
    QTest::newRow("group name, other case") << file << "tern" << "Serial Port Function" << "false";
    QTest::newRow("comment after value") << file << "Tern" << "lidar filter function" << "a/b/c";
    QTest::newRow("quoted comma and semicolon") << file << "Tern" << "quoted" << "x, y;z";
    QTest::newRow("escapes") << file << "Tern" << "escaped" << "say \"hi\"\tnow";
    QTest::newRow("last spelling wins") << file << "Tern" << "twice" << "second";
    QTest::newRow("[General] is the top level") << file << "" << "language" << "Chinese";
    QTest::newRow("key of another group") << file << "" << "twice" << "<none>";
    QTest::newRow("missing group") << file << "Wren_Plus" << "lidar ip" << "<none>";
    QTest::newRow("CRLF line ends") << QByteArray("[A]\r\nkey=v\r\n") << "a" << "KEY" << "v";
    QTest::newRow("byte order mark") << QByteArray("\xEF\xBB\xBFk=v\n") << "" << "k" << "v";
}

void SettingsFileTest::lookup()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, group);
    QFETCH(QString, key);
    QFETCH(QString, expected);
    QTemporaryDir dir;
    const IniSettings settings(writeFile(dir, content));
    QCOMPARE(settings.value(group, key, "<none>"), expected);
    QCOMPARE(settings.contains(group, key), expected != "<none>");
}

void SettingsFileTest::writesUpdateTheEntryInPlace()
{
    QTemporaryDir dir;
    const QByteArray before = "; keep me\n"
                              "LiDAR IP = 127.0.0.1\n"
                              "Data IP=127.0.0.1\n"
                              "\n"
                              "[connect_type]\n"
                              "model1=Tern\n";
    const QString path = writeFile(dir, before);
    IniSettings settings(path);

    QVERIFY(settings.setValue("", "lidar ip", "127.0.0.2"));
    QCOMPARE(settings.value("", "LiDAR IP"), QString("127.0.0.2"));
    QCOMPARE(settings.childKeys(""), QStringList({"LiDAR IP", "Data IP"}));
    QByteArray expected = before;
    expected.replace("LiDAR IP = 127.0.0.1", "LiDAR IP = 127.0.0.2");
    QCOMPARE(readFile(path), expected);  // spelling, spacing, comment, order kept

    // A second instance sees the change at once; a key written twice in the
    // file under two spellings gets both lines updated.
    writeFile(dir, "k=1\nK=2\n");
    QVERIFY(IniSettings(path).setValue("", "k", "3"));
    QCOMPARE(readFile(path), QByteArray("k=3\nK=3\n"));
}

void SettingsFileTest::newKeysLandInTheirGroup()
{
    QTemporaryDir dir;
    const QString path = writeFile(dir,
                                   "; header\n"
                                   "[Tern]\n"
                                   "a=1\n"
                                   "\n"
                                   "[Wren_Plus]\n"
                                   "b=2\n");
    IniSettings settings(path);
    QVERIFY(settings.setValue("", "language", "Chinese"));
    QVERIFY(settings.setValue("tern", "c", "3"));
    QVERIFY(settings.setValue("Tern_P", "d", "4"));
    QCOMPARE(readFile(path), QByteArray("; header\n"
                                        "language=Chinese\n"
                                        "\n"
                                        "[Tern]\n"
                                        "a=1\n"
                                        "c=3\n"
                                        "\n"
                                        "[Wren_Plus]\n"
                                        "b=2\n"
                                        "\n"
                                        "[Tern_P]\n"
                                        "d=4\n"));

    // QSettings reads the result the same way.
    QSettings qt(path, QSettings::IniFormat);
    QCOMPARE(qt.value("language").toString(), QString("Chinese"));
    QCOMPARE(qt.value("Tern/c").toString(), QString("3"));
    QCOMPARE(qt.value("Tern_P/d").toString(), QString("4"));
}

void SettingsFileTest::keysAndGroupsInFileOrder()
{
    QTemporaryDir dir;
    const IniSettings settings(writeFile(dir,
                                         "[connect_type]\n"
                                         "zeta=Tern_Plus\n"
                                         "alpha=Wren_Kite\n"
                                         "Mid=Tern\n"
                                         "ZETA=Tern_P\n"
                                         "[Tern]\n"
                                         "x=1\n"
                                         "[Connect_Type]\n"
                                         "beta=Wren_Plus\n"));
    QCOMPARE(settings.childKeys("connect_type"), QStringList({"zeta", "alpha", "Mid", "beta"}));
    QCOMPARE(settings.childValues("CONNECT_TYPE"), QStringList({"Tern_P", "Wren_Kite", "Tern", "Wren_Plus"}));
    QCOMPARE(settings.childGroups(), QStringList({"connect_type", "Tern"}));
    QVERIFY(settings.childKeys("nothing").isEmpty());
}

void SettingsFileTest::valuesRoundTripThroughQSettings_data()
{
    QTest::addColumn<QString>("value");
    QTest::newRow("plain") << "Normal filtering/No filtering";
    QTest::newRow("comma") << "a, b";
    QTest::newRow("semicolon and equals") << "x;y=z";
    QTest::newRow("quotes and backslash") << "C:\\dir \"q\"";
    QTest::newRow("outer blanks") << "  padded ";
    QTest::newRow("at sign") << "@value";
    QTest::newRow("empty") << "";
    QTest::newRow("non-ASCII") << QString::fromUtf8("中文");
}

void SettingsFileTest::valuesRoundTripThroughQSettings()
{
    QFETCH(QString, value);
    QTemporaryDir dir;
    const QString path = writeFile(dir, "[Tern]\nkey=old\n");
    IniSettings settings(path);
    QVERIFY(settings.setValue("Tern", "Key", value));
    QVERIFY(settings.setValue("Tern", "new key", value));
    QCOMPARE(settings.value("tern", "key"), value);
    QCOMPARE(settings.value("tern", "NEW KEY"), value);

    QSettings qt(path, QSettings::IniFormat);
    qt.setIniCodec("UTF-8");
    QCOMPARE(qt.value("Tern/key").toString(), value);
    QCOMPARE(qt.value("Tern/new key").toString(), value);
}

void SettingsFileTest::readsWhatQSettingsWrites()
{
    QTemporaryDir dir;
    const QString path = dir.filePath("qt.ini");
    {
        QSettings qt(path, QSettings::IniFormat);
        qt.setValue("LiDAR IP", "127.0.0.1");
        qt.setValue("Tern/lidar filter function", "a/b/c");
        qt.setValue("Tern/quoted", "1, 2");
        qt.setValue("General/x", "group named General");
    }
    const IniSettings settings(path);
    QCOMPARE(settings.value("", "lidar ip"), QString("127.0.0.1"));
    QCOMPARE(settings.value("tern", "LIDAR FILTER FUNCTION"), QString("a/b/c"));
    QCOMPARE(settings.value("Tern", "quoted"), QString("1, 2"));
    QCOMPARE(settings.value("General", "x"), QString("group named General"));
}

void SettingsFileTest::missingOrUnwritableFile()
{
    QTemporaryDir dir;
    IniSettings missing(dir.filePath("ini/connect_type.ini"));
    QVERIFY(!missing.exists());
    QCOMPARE(missing.value("", "LiDAR IP", "fallback"), QString("fallback"));
    QVERIFY(missing.childValues("connect_type").isEmpty());
    QVERIFY(missing.setValue("", "LiDAR IP", "127.0.0.1"));  // creates folder and file
    QVERIFY(missing.exists());
    QCOMPARE(readFile(missing.path()), QByteArray("LiDAR IP=127.0.0.1\n"));

    // A path whose folder is a file cannot be written.
    writeFile(dir, "x", "blocker");
    IniSettings blocked(dir.filePath("blocker/connect_type.ini"));
    QVERIFY(!blocked.setValue("", "k", "v"));
}

// The file we ship: every model listed in the registry's order, each with a
// section consistent with what its decoder implements, loopback addresses.
void SettingsFileTest::shippedFile()
{
    const IniSettings settings(SCANDECK_SHIPPED_INI);
    QVERIFY(settings.exists());
    const QStringList models{"Wren_Kite", "Wren_Plus", "Tern", "Tern_GPS", "Tern_P", "Tern_Plus"};
    QCOMPARE(settings.childValues("connect_type"), models);
    QCOMPARE(settings.value("", "lidar ip"), QString("127.0.0.1"));
    QCOMPARE(settings.value("", "data ip"), QString("127.0.0.1"));
    QCOMPARE(settings.value("", "lidar port"), QString("2369"));
    QCOMPARE(settings.value("", "data port"), QString("2368"));
    QCOMPARE(settings.value("", "language"), QString("English"));

    const QStringList bauds{"115200", "230400", "460800", "512000", "921600"};
    const QStringList withGps{"Tern_GPS", "Tern_P", "Tern_Plus"};
    const QStringList withSpeed{"Wren_Kite", "Wren_Plus", "Tern_Plus"};  // the SetDeviceParam models
    for (const QString& model : models) {
        QVERIFY2(bauds.contains(settings.value(model, "default baud rate")), qPrintable(model));
        QCOMPARE(settings.value(model, "GPS test function"), QString(withGps.contains(model) ? "true" : "false"));
        QCOMPARE(settings.value(model, "motor on-off switch function"), QString("true"));
        const int filterModes = settings.value(model, "lidar filter function").split('/').size();
        QCOMPARE(filterModes, model.startsWith("Wren") ? 2 : 3);  // Wren lidars know two modes
        const QString speeds = settings.value(model, "motor frequenc function");
        if (withSpeed.contains(model)) {
            for (const QString& item : speeds.split('_')) {
                bool ok = false;
                const int hz = item.toInt(&ok);
                QVERIFY2(ok && hz > 0 && hz < 256, qPrintable(model + ": " + item));
            }
        } else {
            QCOMPARE(speeds, QString("false"));
        }
    }

    // QSettings agrees on what the file says.
    QSettings qt(SCANDECK_SHIPPED_INI, QSettings::IniFormat);
    QCOMPARE(qt.status(), QSettings::NoError);
    QCOMPARE(qt.value("LiDAR IP").toString(), QString("127.0.0.1"));
    QCOMPARE(qt.value("Tern/lidar filter function").toString(),
             QString("Normal filtering/No filtering/Within three meters"));
}

QTEST_GUILESS_MAIN(SettingsFileTest)
#include "tst_settings_file.moc"
