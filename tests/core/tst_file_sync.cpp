// Putting written files on the disk: the periodic sync of a file being
// written, a recording's syncs while it runs and when it ends, and files
// that appear under their name only complete. Every sync is counted by a
// wrapper around the system's calls.

#include "AtomicFileWrite.h"
#include "CloudFileWriter.h"
#include "FileSync.h"
#include "PacketBuilders.h"
#include "PeriodicSync.h"
#include "RecordFile.h"
#include "RecordingWriter.h"
#include "Tern.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include <cerrno>
#include <mutex>

using namespace testing;

namespace {

// The syncs made, in order: 'd' a file's data, 'f' a folder. A sync may be
// made to fail.
std::mutex callsMutex;
QByteArray calls;
int failWith = 0;

int countedData(int fd)
{
    {
        std::lock_guard<std::mutex> lock(callsMutex);
        calls.append('d');
        if (failWith)
            return failWith;
    }
    return lidar::filesync::systemCalls().data(fd);
}

int countedFolder(int fd)
{
    {
        std::lock_guard<std::mutex> lock(callsMutex);
        calls.append('f');
    }
    return lidar::filesync::systemCalls().folder(fd);
}

QByteArray callsSoFar()
{
    std::lock_guard<std::mutex> lock(callsMutex);
    return calls;
}

void failSyncs(int error)
{
    std::lock_guard<std::mutex> lock(callsMutex);
    failWith = error;
}

QByteArray readAll(const QString& path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

}  // namespace

class FileSyncTest : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() { lidar::filesync::setCalls({&countedData, &countedFolder}); }
    void cleanupTestCase() { lidar::filesync::setCalls(lidar::filesync::systemCalls()); }
    void init()
    {
        std::lock_guard<std::mutex> lock(callsMutex);
        calls.clear();
        failWith = 0;
    }

    void roundsSyncOnlyWhatWasWritten_data();
    void roundsSyncOnlyWhatWasWritten();
    void aFailedSyncIsReportedAndEndsTheSyncing();
    void theThreadSyncsWhileTheFileGrows();
    void recordingIsSyncedWhileItRunsAndAtItsEnd();
    void aRecordingWhoseSyncFailsStopsWithTheReason();
    void sessionSyncsBeforeReportingTheFileSaved();
    void fileAppearsOnlyComplete_data();
    void fileAppearsOnlyComplete();
    void cloudFilesAreOnTheDiskWhenEnded_data();
    void cloudFilesAreOnTheDiskWhenEnded();

private:
    QTemporaryDir dir_;
};

// A script of what happens: 'w' the writer writes more, 'r' a round.
void FileSyncTest::roundsSyncOnlyWhatWasWritten_data()
{
    QTest::addColumn<QByteArray>("script");
    QTest::addColumn<QByteArray>("expected");
    QTest::newRow("nothing written, nothing synced") << QByteArray("rrr") << QByteArray();
    // The first sync also puts the new file's name in its folder on the disk.
    QTest::newRow("written once") << QByteArray("wrr") << QByteArray("df");
    QTest::newRow("written before each round") << QByteArray("wrwrwr") << QByteArray("dfdd");
    QTest::newRow("idle rounds between") << QByteArray("wrrrwrr") << QByteArray("dfd");
    QTest::newRow("many writes, one round") << QByteArray("wwwwr") << QByteArray("df");
}

void FileSyncTest::roundsSyncOnlyWhatWasWritten()
{
    QFETCH(QByteArray, script);
    QFETCH(QByteArray, expected);
    QFile file(dir_.filePath(QStringLiteral("rounds.bin")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    lidar::PeriodicSync sync;
    QVERIFY(sync.start(int(file.handle()), file.fileName(), 0));  // rounds only when asked
    quint64 written = 0;
    for (char step : script) {
        if (step == 'w') {
            QCOMPARE(file.write("0123456789"), qint64(10));
            QVERIFY(file.flush());
            sync.wrote(written += 10);
        } else {
            QVERIFY(sync.round());
        }
    }
    QCOMPARE(callsSoFar(), expected);
    QCOMPARE(sync.syncs(), quint64(expected.count('d')));
    sync.stop();
    QCOMPARE(callsSoFar(), expected);  // stopping syncs nothing: the last sync is the writer's
}

void FileSyncTest::aFailedSyncIsReportedAndEndsTheSyncing()
{
    QFile file(dir_.filePath(QStringLiteral("failing.bin")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    lidar::PeriodicSync sync;
    QVERIFY(sync.start(int(file.handle()), file.fileName(), 0));
    failSyncs(EIO);
    sync.wrote(10);
    QVERIFY(!sync.round());
    QVERIFY(sync.failed());
    QVERIFY2(sync.errorString().contains(QString::fromLocal8Bit(strerror(EIO))), qPrintable(sync.errorString()));
    sync.wrote(20);
    QVERIFY(!sync.round());
    QCOMPARE(callsSoFar(), QByteArray("d"));
}

// The thread's own rounds: a sync after each write, none while nothing is
// written. Waits for rounds to happen, never for a time.
void FileSyncTest::theThreadSyncsWhileTheFileGrows()
{
    QFile file(dir_.filePath(QStringLiteral("thread.bin")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    lidar::PeriodicSync sync;
    QVERIFY(sync.start(int(file.handle()), file.fileName(), 2));
    file.write("abc");
    file.flush();
    sync.wrote(3);
    QTRY_COMPARE_WITH_TIMEOUT(sync.syncs(), quint64(1), 10000);
    const quint64 rounds = sync.rounds();
    QTRY_VERIFY_WITH_TIMEOUT(sync.rounds() >= rounds + 3, 10000);
    QCOMPARE(sync.syncs(), quint64(1));
    sync.wrote(6);
    QTRY_COMPARE_WITH_TIMEOUT(sync.syncs(), quint64(2), 10000);
    sync.stop();
    QCOMPARE(callsSoFar(), QByteArray("dfd"));
    // The writer's descriptor is its own: closing it after stop() is fine,
    // and the file is whole.
    file.close();
    QCOMPARE(readAll(file.fileName()), QByteArray("abc"));
}

void FileSyncTest::recordingIsSyncedWhileItRunsAndAtItsEnd()
{
    QFile file;
    lidar::RecordingWriter writer(file);
    const QString path = dir_.filePath(QStringLiteral("synced.txt"));
    QVERIFY(writer.start(path, {"Tern"}));
    const QVector<QByteArray> packets = ternRevolutions(2);
    for (const QByteArray& packet : packets) {
        writer.append(packet.constData(), packet.size());
        QVERIFY(writer.writePending());
    }
    // While it runs, its own thread puts it on the disk.
    QTRY_VERIFY_WITH_TIMEOUT(writer.periodicSync().syncs() >= 1, 10000);
    QVERIFY(callsSoFar().startsWith("df"));
    const int before = callsSoFar().size();
    QVERIFY(writer.finish({"Tern"}));
    // Ended: the count at the front and the rest synced, then the folder
    // (a round that was under way may have synced just before).
    QVERIFY(callsSoFar().size() >= before + 2);
    QVERIFY(callsSoFar().endsWith("df"));
    QCOMPARE(lidar::readRecordFile(path), QVector<QByteArray>{"Tern"} + packets);
}

void FileSyncTest::aRecordingWhoseSyncFailsStopsWithTheReason()
{
    QFile file;
    lidar::RecordingWriter writer(file);
    const QString path = dir_.filePath(QStringLiteral("eio.txt"));
    QVERIFY(writer.start(path, {"Tern"}, 2));
    const QByteArray packet = ternRevolutions(1).first();
    writer.append(packet.constData(), packet.size());
    QVERIFY(writer.writePending());
    QTRY_VERIFY_WITH_TIMEOUT(writer.periodicSync().syncs() >= 1, 10000);
    failSyncs(EIO);
    writer.append(packet.constData(), packet.size());
    QVERIFY(writer.writePending());
    QTRY_VERIFY_WITH_TIMEOUT(writer.periodicSync().failed(), 10000);
    // The next write finds out: the disk lost what it was given.
    writer.append(packet.constData(), packet.size());
    QVERIFY(!writer.writePending());
    QVERIFY(writer.failed());
    QVERIFY2(writer.errorString().startsWith(QStringLiteral("cannot sync to disk")), qPrintable(writer.errorString()));
    QVERIFY(!writer.finish({"Tern"}));
}

// The window and 'listen --record' say "File saved" when the session reports
// the end: by then the file and its folder are on the disk.
void FileSyncTest::sessionSyncsBeforeReportingTheFileSaved()
{
    Tern session;
    const QString path = dir_.filePath(QStringLiteral("session.txt"));
    QByteArray callsAtReport;
    connect(&session, &LidarAnalysis::SendEndSaveDataSignal, this, [&] { callsAtReport = callsSoFar(); },
            Qt::DirectConnection);
    QVERIFY(session.StartSaveData(path));
    for (const QByteArray& packet : ternRevolutions(3)) {
        session.receiveBuffer.append(packet);
        session.ParseLidarData();
    }
    session.EndSaveData();
    QVERIFY(callsAtReport.endsWith("df"));
    QVERIFY(lidar::scanRecordFile(path).isWhole());
}

void FileSyncTest::fileAppearsOnlyComplete_data()
{
    QTest::addColumn<bool>("existed");   // the name held an older file
    QTest::addColumn<QString>("ending");  // "commit", "discard", "failed sync"
    QTest::addColumn<QByteArray>("expectedCalls");
    QTest::newRow("new file") << false << "commit" << QByteArray("df");
    QTest::newRow("replacing a file") << true << "commit" << QByteArray("df");
    QTest::newRow("discarded") << true << "discard" << QByteArray();
    QTest::newRow("discarded, no file before") << false << "discard" << QByteArray();
    QTest::newRow("sync fails") << true << "failed sync" << QByteArray("d");
}

void FileSyncTest::fileAppearsOnlyComplete()
{
    QFETCH(bool, existed);
    QFETCH(QString, ending);
    QFETCH(QByteArray, expectedCalls);
    const QString path = dir_.filePath(QStringLiteral("out-%1.csv").arg(QTest::currentDataTag()));
    if (existed) {
        QFile old(path);
        QVERIFY(old.open(QIODevice::WriteOnly) && old.write("old\n") == 4);
    }
    const QByteArray before = existed ? QByteArray("old\n") : QByteArray();
    {
        lidar::AtomicFileWrite out(path);
        QVERIFY(out.open());
        QCOMPARE(out.file().write("new, "), qint64(5));
        QVERIFY(out.file().flush());
        // Half-written: the name still holds what it held.
        QCOMPARE(QFile::exists(path), existed);
        QCOMPARE(readAll(path), before);
        out.file().write("whole\n");
        if (ending == QLatin1String("discard")) {
            out.discard();
        } else {
            if (ending == QLatin1String("failed sync"))
                failSyncs(EIO);
            QString error;
            QCOMPARE(out.commit(&error), ending == QLatin1String("commit"));
            QCOMPARE(error.isEmpty(), ending == QLatin1String("commit"));
        }
    }
    QCOMPARE(callsSoFar(), expectedCalls);
    QCOMPARE(readAll(path), ending == QLatin1String("commit") ? QByteArray("new, whole\n") : before);
    QVERIFY(!QFile::exists(path + QStringLiteral(".part")));
}

void FileSyncTest::cloudFilesAreOnTheDiskWhenEnded_data()
{
    QTest::addColumn<int>("format");
    QTest::addColumn<bool>("merge");
    QTest::addColumn<QByteArray>("expectedCalls");
    // Each frame's file, then the folder's entries and the folder's own name.
    QTest::newRow("pcd, a file per frame") << int(cloudfile::Format::Pcd) << false << QByteArray("dddff");
    QTest::newRow("ply, a file per frame") << int(cloudfile::Format::Ply) << false << QByteArray("dddff");
    QTest::newRow("pcd, one file") << int(cloudfile::Format::Pcd) << true << QByteArray("df");
    QTest::newRow("ply, one file") << int(cloudfile::Format::Ply) << true << QByteArray("df");
}

void FileSyncTest::cloudFilesAreOnTheDiskWhenEnded()
{
    QFETCH(int, format);
    QFETCH(bool, merge);
    QFETCH(QByteArray, expectedCalls);
    cloudfile::Options options;
    options.format = cloudfile::Format(format);
    options.merge = merge;
    options.output = dir_.filePath(QStringLiteral("cloud-%1").arg(QTest::currentDataTag()).replace(' ', '_'));
    const std::unique_ptr<FrameWriter> writer = cloudfile::makeWriter(options);
    lidar::LidarDataPoint_V4 frame;
    lidar::LidarPoint point;
    point.x = 1.0f;
    point.azimuth = 90.0f;
    point.distance = 1000;
    frame.points[0].push_back(point);
    QString error;
    QVERIFY(writer->begin(error));
    for (int number = 1; number <= 3; ++number)
        QVERIFY2(writer->frame(number, frame, error), qPrintable(error));
    QCOMPARE(callsSoFar(), QByteArray());  // nothing is synced frame by frame
    if (merge)
        QVERIFY(!QFile::exists(options.output));
    QVERIFY2(writer->end(error), qPrintable(error));
    QCOMPARE(callsSoFar(), expectedCalls);
    QVERIFY(QFileInfo::exists(merge ? options.output : QDir(options.output).filePath(cloudfile::frameFileName(options.format, 3))));
    QVERIFY(!QFile::exists(options.output + QStringLiteral(".part")));
}

QTEST_GUILESS_MAIN(FileSyncTest)
#include "tst_file_sync.moc"
