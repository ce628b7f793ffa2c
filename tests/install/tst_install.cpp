// The installed program: where it finds its own files and keeps the
// operator's settings file (ProgramFiles, on made-up layouts), then the real
// thing: `cmake --install` into a folder of its own, the installed programs
// run from another folder, the viewer started twice with a home of its own.

#include "IniSettings.h"
#include "ProgramFiles.h"

#include <QDirIterator>
#include <QElapsedTimer>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>
#include <functional>

namespace {

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<unreadable>");
}

bool writeFile(const QString& path, const QByteArray& content)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

// Every file under `dir`, relative to it, sorted.
QStringList filesUnder(const QString& dir)
{
    QStringList files;
    QDirIterator it(dir, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext())
        files << QDir(dir).relativeFilePath(it.next());
    files.sort();
    return files;
}

bool waitFor(const std::function<bool()>& condition, int timeoutMs)
{
    QElapsedTimer waited;
    waited.start();
    while (!condition()) {
        if (waited.elapsed() > timeoutMs)
            return false;
        QTest::qWait(100);
    }
    return true;
}

const QByteArray kShipped = "; shipped\nLiDAR IP=127.0.0.1\n[connect_type]\nmodel1=Tern\n";

}  // namespace

class InstallTest : public QObject {
    Q_OBJECT
private slots:
    void cleanup();
    void programFiles_data();
    void programFiles();
    void installedProgramsRunFromAnyFolder();
};

void InstallTest::cleanup()
{
    // Back to the build folder's layout for whatever follows.
    ProgramFiles::locate(QStringLiteral("/nonexistent/bin"), QString(), ProgramFiles::UserSettings::ReadShippedIfNone);
}

void InstallTest::programFiles_data()
{
    using Mode = ProgramFiles::UserSettings;
    QTest::addColumn<bool>("installed");            // share/scandeck beside bin/
    QTest::addColumn<int>("mode");
    QTest::addColumn<QByteArray>("operatorsFile");  // already in the configuration folder; empty: none
    QTest::addColumn<bool>("configBlocked");        // a file stands where the configuration folder would go
    QTest::addColumn<bool>("located");
    QTest::addColumn<QString>("settings");          // "build", "operator" or "shipped"
    QTest::addColumn<QByteArray>("settingsContent");
    const int create = int(Mode::CreateFromShipped), read = int(Mode::ReadShippedIfNone);
    QTest::newRow("a build folder") << false << create << QByteArray() << false << true << "build" << QByteArray();
    QTest::newRow("installed, first start: the shipped file copied")
        << true << create << QByteArray() << false << true << "operator" << kShipped;
    QTest::newRow("installed, later starts: the operator's file kept")
        << true << create << QByteArray("LiDAR IP=127.0.0.9\n") << false << true << "operator"
        << QByteArray("LiDAR IP=127.0.0.9\n");
    QTest::newRow("installed, a reading tool before any start: the shipped file")
        << true << read << QByteArray() << false << true << "shipped" << kShipped;
    QTest::newRow("installed, a reading tool: the operator's file")
        << true << read << QByteArray("mine\n") << false << true << "operator" << QByteArray("mine\n");
    QTest::newRow("installed, no configuration folder possible: the shipped file, said so")
        << true << create << QByteArray() << true << false << "shipped" << kShipped;
}

void InstallTest::programFiles()
{
    QFETCH(bool, installed);
    QFETCH(int, mode);
    QFETCH(QByteArray, operatorsFile);
    QFETCH(bool, configBlocked);
    QFETCH(bool, located);
    QFETCH(QString, settings);
    QFETCH(QByteArray, settingsContent);
    QTemporaryDir prefix, home;
    const QString config = home.filePath(".config");
    const QString shipped = prefix.filePath("share/scandeck/ini/connect_type.ini");
    const QString operators = config + "/scandeck/connect_type.ini";
    QVERIFY(QDir().mkpath(prefix.filePath("bin")));
    if (installed) {
        QVERIFY(writeFile(shipped, kShipped));
        // Installed files belong to root and cannot be written by the operator.
        QVERIFY(QFile::setPermissions(shipped, QFile::ReadOwner | QFile::ReadGroup | QFile::ReadOther));
    }
    if (!operatorsFile.isEmpty())
        QVERIFY(writeFile(operators, operatorsFile));
    if (configBlocked)
        QVERIFY(writeFile(config, "a file, not a folder"));

    QCOMPARE(ProgramFiles::locate(prefix.filePath("bin"), config, ProgramFiles::UserSettings(mode)), located);
    QCOMPARE(ProgramFiles::installed(), installed);
    QCOMPARE(ProgramFiles::problem().isEmpty(), located);
    if (!installed) {
        QCOMPARE(ProgramFiles::settingsFile(), QStringLiteral("./ini/connect_type.ini"));
        QCOMPARE(ProgramFiles::styleSheet(), QStringLiteral("./qss/MacOS.qss"));
        QCOMPARE(ProgramFiles::translation(), QStringLiteral("./scandeck_zh.qm"));
        return;
    }
    QCOMPARE(ProgramFiles::styleSheet(), prefix.filePath("share/scandeck/qss/MacOS.qss"));
    QCOMPARE(ProgramFiles::translation(), prefix.filePath("share/scandeck/scandeck_zh.qm"));
    QCOMPARE(ProgramFiles::settingsFile(), settings == "operator" ? operators : shipped);
    QCOMPARE(IniSettings::defaultPath(), ProgramFiles::settingsFile());
    QCOMPARE(contentOf(ProgramFiles::settingsFile()), settingsContent);
    if (settings == "operator")  // the operator's to change
        QVERIFY(QFile::permissions(operators) & QFile::WriteOwner);
    else
        QCOMPARE(QFileInfo::exists(operators), false);
}

void InstallTest::installedProgramsRunFromAnyFolder()
{
    QTemporaryDir prefix, elsewhere, home;
    QProcess install;
    install.start(QStringLiteral(CMAKE_COMMAND), {"--install", QStringLiteral(SCANDECK_BUILD_DIR), "--prefix", prefix.path()});
    QVERIFY(install.waitForFinished(120000));
    QVERIFY2(install.exitCode() == 0, install.readAllStandardError().constData());
    QCOMPARE(filesUnder(prefix.path()),
             QStringList({"bin/scandeck", "bin/scandeck-cli", "bin/scandeck-sim",
                          "share/applications/scandeck.desktop", "share/icons/hicolor/scalable/apps/scandeck.svg",
                          "share/scandeck/ini/connect_type.ini", "share/scandeck/qss/MacOS.qss",
                          "share/scandeck/scandeck_zh.qm"}));
    const QByteArray desktop = contentOf(prefix.filePath("share/applications/scandeck.desktop"));
    for (const char* line : {"[Desktop Entry]\n", "\nType=Application\n", "\nExec=scandeck\n", "\nIcon=scandeck\n"})
        QVERIFY2(desktop.contains(line), line);

    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("HOME", home.path());
    environment.remove("XDG_CONFIG_HOME");
    const auto run = [&](const QString& program, const QStringList& arguments) {
        QProcess process;
        process.setWorkingDirectory(elsewhere.path());
        process.setProcessEnvironment(environment);
        process.start(prefix.filePath("bin/" + program), arguments);
        return process.waitForFinished(30000) && process.exitStatus() == QProcess::NormalExit
               && process.exitCode() == 0 && process.readAllStandardOutput().startsWith("Usage: ");
    };
    QVERIFY(run("scandeck-cli", {"--help"}));
    QVERIFY(run("scandeck-sim", {"--help"}));

    // The viewer, twice: the first start makes the operator's settings file
    // from the shipped one, the second keeps what the operator changed.
    const QString operators = home.filePath(".config/scandeck/connect_type.ini");
    const QString shipped = prefix.filePath("share/scandeck/ini/connect_type.ini");
    for (int start = 1; start <= 2; ++start) {
        QProcess viewer;
        viewer.setWorkingDirectory(elsewhere.path());
        viewer.setProcessEnvironment(environment);
        viewer.start(prefix.filePath("bin/scandeck"), QStringList());
        QVERIFY(viewer.waitForStarted(10000));
        QVERIFY(waitFor([&] { return QFileInfo::exists(operators); }, 30000));
        QTest::qWait(1500);  // the window comes up; a stop meanwhile is still a clean one
        QCOMPARE(viewer.state(), QProcess::Running);
        viewer.terminate();  // SIGTERM closes the window as its close button would
        QVERIFY(viewer.waitForFinished(30000));
        QCOMPARE(viewer.exitStatus(), QProcess::NormalExit);
        QVERIFY2(viewer.exitCode() == 0, viewer.readAllStandardError().constData());
        if (start == 1) {
            QCOMPARE(contentOf(operators), contentOf(shipped));
            QVERIFY(IniSettings(operators).setValue(QString(), "LiDAR IP", "127.0.0.2"));
        } else {
            QCOMPARE(IniSettings(operators).value(QString(), "lidar ip"), QStringLiteral("127.0.0.2"));
        }
    }
    QCOMPARE(filesUnder(elsewhere.path()), QStringList());  // nothing in the working directory
}

QTEST_MAIN(InstallTest)
#include "tst_install.moc"
