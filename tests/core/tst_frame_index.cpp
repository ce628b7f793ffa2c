// Recordings and captures read frame by frame from disk: every frame the
// index and the reader give, in any order, is the frame a parse of the
// whole file gives, for every model, for sound and damaged files, and for a
// file whose first turn was begun by the file opened before it. The index
// can be read while it grows, stopped half way, and outlives a file that
// changes under it.

#include "CaptureBuilders.h"
#include "CaptureFrames.h"
#include "CaptureIndexer.h"
#include "FrameDescription.h"
#include "FrameIndex.h"
#include "IndexedFrameReader.h"
#include "LIdarFactory.h"
#include "OfflineParseState.h"
#include "PacketBuilders.h"
#include "RecordFile.h"
#include "RecordingIndexer.h"
#include "SlowOfflineParser.h"

#include <QElapsedTimer>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QThread>
#include <QtTest>
#include <algorithm>
#include <atomic>
#include <numeric>

using namespace testing;
using Frame = lidar::LidarDataPoint_V4;
using Elements = QVector<QByteArray>;

namespace {

Elements prefixOf(const QString& model)
{
    return lidar::recordPrefixElements(model) ? Elements{"215"} : Elements{};
}

QString writeRecording(const QString& path, const Elements& elements, int cutBytes = 0, bool unfinished = false)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || !lidar::writeRecordElements(file, elements))
        return {};
    if (unfinished) {
        file.seek(0);
        file.write(QByteArray(4, '\xFF'));
    }
    file.close();
    if (cutBytes > 0)
        QFile::resize(path, QFileInfo(path).size() - cutBytes);
    return path;
}

struct Indexed {
    std::shared_ptr<lidar::FrameIndex> index = std::make_shared<lidar::FrameIndex>();
    std::unique_ptr<lidar::RecordingIndexer> indexer;
};

// Starts indexing `path` from the registry's parser, as the player does.
Indexed startIndex(const QString& path)
{
    Indexed result;
    auto cursor = std::make_unique<lidar::RecordingCursor>(path);
    if (!cursor->open() || !cursor->startFromRegistry())
        return result;
    result.indexer = std::make_unique<lidar::RecordingIndexer>(std::move(cursor), result.index);
    result.indexer->start();
    return result;
}

bool waitFinished(const lidar::FrameIndex& index)
{
    QElapsedTimer clock;
    clock.start();
    while (!index.isFinished() && clock.elapsed() < 20000)
        QThread::msleep(2);
    return index.isFinished();
}

// Reads every frame through a reader: front to back, back to front, and
// in a shuffled order, each pass with a fresh reader.
QVector<Frame> readAll(const QString& path, const std::shared_ptr<lidar::FrameIndex>& index, int order)
{
    const int n = int(index->frames());
    QVector<int> numbers(n);
    std::iota(numbers.begin(), numbers.end(), 0);
    if (order == 1)
        std::reverse(numbers.begin(), numbers.end());
    if (order == 2)
        std::shuffle(numbers.begin(), numbers.end(), *QRandomGenerator::global());
    lidar::IndexedFrameReader reader(path, index);
    QVector<Frame> frames(n);
    for (int k : numbers)
        if (!reader.frame(k, frames[k]))
            return {};
    return frames;
}

// The whole-file parse of the elements a damaged file still holds whole.
QVector<Frame> parseWhole(const QString& model, const Elements& packets)
{
    return LIdarFactory::GetInstance()->parseMap.value(model)(prefixOf(model) + packets);
}

}  // namespace

class FrameIndexTest : public QObject {
    Q_OBJECT
private slots:
    void framesAreThoseOfTheWholeParse_data();
    void framesAreThoseOfTheWholeParse();
    void aTurnLeftOpenByTheFileBeforeCarriesOn_data();
    void aTurnLeftOpenByTheFileBeforeCarriesOn();
    void readWhileIndexingStopAndReopen();
    void aFileThatChangesUnderTheIndex();
    void captureFramesComeBackFromDisk_data();
    void captureFramesComeBackFromDisk();

private:
    QTemporaryDir dir_;
};

void FrameIndexTest::framesAreThoseOfTheWholeParse_data()
{
    QTest::addColumn<QString>("model");
    QTest::addColumn<Elements>("packets");
    QTest::addColumn<int>("cutBytes");     // bytes cut off the end of the file
    QTest::addColumn<bool>("unfinished");  // the count of a recording still being written
    QTest::addColumn<int>("outcome");
    const int complete = int(lidar::FrameIndex::Outcome::Complete);
    const int cutShort = int(lidar::FrameIndex::Outcome::CutShort);
    for (const QString& model : LIdarFactory::GetInstance()->ModelNames()) {
        // Long enough for many checkpoints, odd so the last is not on a boundary.
        const Elements clean = revolutionPackets(model, lidar::FrameIndex::kCheckpointEvery * 3 + 5);
        QTest::addRow("%s", qPrintable(model)) << model << clean << 0 << false << complete;
        // Junk among the packets: pieces of no packet's size, a packet
        // with its middle spoilt (header, length and trailer kept).
        Elements junk = clean;
        const bool tern = model.startsWith("Tern");
        junk.insert(40, tern ? QByteArray("\xA5\x5A\x00\x06\xFA\xFB", 6) : QByteArray("\xA5\x5A", 2));
        junk.insert(90, tern ? QByteArray("\xA5\x5A", 2) + QByteArray(88, '\x01') + QByteArray("\xFA\xFB", 2)
                             : QByteArray(7, '\0'));
        QByteArray& spoilt = junk[150];
        spoilt.replace(8, spoilt.size() - 20, QByteArray(spoilt.size() - 20, '\x77'));
        QTest::addRow("%s, junk among the packets", qPrintable(model)) << model << junk << 0 << false << complete;
        QTest::addRow("%s, cut short in a packet", qPrintable(model)) << model << clean << 20 << false << cutShort;
        QTest::addRow("%s, still being written", qPrintable(model)) << model << clean << 3 << true << cutShort;
    }
    // A Tern packet without trailer ends the parse: nothing after it plays.
    Elements ended = revolutionPackets("Tern", 100);
    ended[1500].chop(2);
    QTest::newRow("Tern, a packet without trailer") << "Tern" << ended << 0 << false
                                                    << int(lidar::FrameIndex::Outcome::Ended);
}

void FrameIndexTest::framesAreThoseOfTheWholeParse()
{
    QFETCH(QString, model);
    QFETCH(Elements, packets);
    QFETCH(int, cutBytes);
    QFETCH(bool, unfinished);
    QFETCH(int, outcome);
    const QString path = writeRecording(dir_.filePath("recording.txt"),
                                        Elements{model.toLatin1()} + prefixOf(model) + packets, cutBytes, unfinished);
    QVERIFY(!path.isEmpty());
    // A damaged file's parse: the packets that are still whole.
    const Elements whole = cutBytes > 0 ? packets.mid(0, packets.size() - 1) : packets;
    settleOfflineParse(model);
    const QVector<Frame> expected = parseWhole(model, whole);
    QVERIFY(expected.size() > 50);

    settleOfflineParse(model);
    Indexed indexed = startIndex(path);
    QVERIFY(indexed.indexer && waitFinished(*indexed.index));
    QCOMPARE(int(indexed.index->progress().outcome), outcome);
    QCOMPARE(indexed.index->frames(), qint64(expected.size()));
    for (int order = 0; order < 3; ++order)
        QCOMPARE(describe(readAll(path, indexed.index, order)), describe(expected));
}

void FrameIndexTest::aTurnLeftOpenByTheFileBeforeCarriesOn_data()
{
    QTest::addColumn<QString>("model");
    for (const QString& model : LIdarFactory::GetInstance()->ModelNames())
        QTest::addRow("%s", qPrintable(model)) << model;
}

// The registry's parse keeps the turn a recording leaves open and ends it
// with the next recording's first packets: read on demand, the second file
// opened must begin with the same frame.
void FrameIndexTest::aTurnLeftOpenByTheFileBeforeCarriesOn()
{
    QFETCH(QString, model);
    const Elements all = revolutionPackets(model, 60);
    const Elements first = all.mid(0, 24 * 30 + 10);  // ends in the middle of a turn
    const Elements second = all.mid(24 * 30 + 10);
    const QString a = writeRecording(dir_.filePath("a.txt"), Elements{model.toLatin1()} + prefixOf(model) + first);
    const QString b = writeRecording(dir_.filePath("b.txt"), Elements{model.toLatin1()} + prefixOf(model) + second);

    settleOfflineParse(model);
    parseWhole(model, first);
    const QVector<Frame> expected = parseWhole(model, second);

    settleOfflineParse(model);
    Indexed indexedA = startIndex(a);
    QVERIFY(waitFinished(*indexedA.index));
    Indexed indexedB = startIndex(b);
    QVERIFY(waitFinished(*indexedB.index));
    QCOMPARE(describe(readAll(b, indexedB.index, 2)), describe(expected));
    settleOfflineParse(model);
}

void FrameIndexTest::readWhileIndexingStopAndReopen()
{
    const Elements packets = ternRevolutions(400);
    const QString path = writeRecording(dir_.filePath("slow.txt"), Elements{"Tern"} + packets);
    settleOfflineParse("Tern");
    const QVector<Frame> expected = parseWhole("Tern", packets);

    settleOfflineParse("Tern");
    SlowParsing slow("Tern", 300);
    Indexed indexed = startIndex(path);
    QVERIFY(indexed.indexer);
    lidar::IndexedFrameReader reader(path, indexed.index);

    // Frames are read, anywhere below the count, while the count grows.
    QTRY_VERIFY_WITH_TIMEOUT(indexed.index->frames() > 20, 10000);
    Frame frame;
    for (qint64 k : {qint64(0), indexed.index->frames() - 1, qint64(3), indexed.index->frames() - 2}) {
        QVERIFY(reader.frame(k, frame));
        QCOMPARE(describe(frame), describe(expected[int(k)]));
    }
    QVERIFY(!indexed.index->isFinished());
    QVERIFY(!reader.frame(indexed.index->frames() + 5, frame));

    // Stopped half way: what was found stays readable.
    indexed.indexer->stop();
    const qint64 found = indexed.index->frames();
    QCOMPARE(int(indexed.index->progress().outcome), int(lidar::FrameIndex::Outcome::Stopped));
    QVERIFY(found < expected.size());
    QVERIFY(reader.frame(found - 1, frame));
    QCOMPARE(describe(frame), describe(expected[int(found - 1)]));
    indexed.indexer.reset();

    // Opened again, at full speed, the file indexes to its end.
    slow.setDelay(0);
    Indexed again = startIndex(path);
    QVERIFY(waitFinished(*again.index));
    QCOMPARE(again.index->frames(), qint64(expected.size()));
}

void FrameIndexTest::aFileThatChangesUnderTheIndex()
{
    const Elements packets = ternRevolutions(200);
    const QString path = writeRecording(dir_.filePath("changing.txt"), Elements{"Tern"} + packets);
    Indexed indexed = startIndex(path);
    QVERIFY(waitFinished(*indexed.index));
    const qint64 frames = indexed.index->frames();
    lidar::IndexedFrameReader reader(path, indexed.index);
    Frame early, frame;
    QVERIFY(reader.frame(1, early));

    // Cut to half: the frames beyond cannot be read, and say so; the early
    // ones still can.
    QVERIFY(QFile::resize(path, QFileInfo(path).size() / 2));
    QVERIFY(!reader.frame(frames - 1, frame));
    QVERIFY(!reader.frame(frames - 40, frame));
    for (int k : {1, 10, 2}) {
        QVERIFY(reader.frame(k, frame));
        if (k == 1)
            QCOMPARE(describe(frame), describe(early));
    }
    // Emptied altogether: nothing reads, nothing breaks.
    QVERIFY(QFile::resize(path, 0));
    lidar::IndexedFrameReader fresh(path, indexed.index);
    QVERIFY(!fresh.frame(0, frame));
}

void FrameIndexTest::captureFramesComeBackFromDisk_data()
{
    QTest::addColumn<QString>("model");
    for (const QString& model : LIdarFactory::GetInstance()->ModelNames())
        QTest::addRow("%s", qPrintable(model)) << model;
}

// A capture is decoded once into a temporary file: every frame read back
// is the frame the capture's whole pass gives.
void FrameIndexTest::captureFramesComeBackFromDisk()
{
    QFETCH(QString, model);
    QVector<CapturedPacket> records;
    for (const QByteArray& packet : revolutionPackets(model, 40))
        records.append({ethernet(udp4(capture::kDefaultDataPort, packet)), -1});
    const QString path = dir_.filePath("capture.pcap");
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(captureFile(CaptureFormat::PcapMicroseconds, false, 1, records));
    file.close();

    capture::CaptureOptions options;
    options.model = model;
    options.versionNumber = 215;
    // The first pass leaves the model's program-wide state where the next
    // passes find it.
    capture::parseCaptureFile(path, options, nullptr);
    const QVector<Frame> expected = capture::parseCaptureFile(path, options, nullptr);
    QVERIFY(expected.size() >= 39);

    lidar::CaptureIndexer indexer(path, options);
    QVERIFY(indexer.start());
    QTRY_VERIFY_WITH_TIMEOUT(indexer.isFinished(), 20000);
    QVERIFY(indexer.result().ok);
    QVector<Frame> read(int(indexer.frames().count()));
    for (int k = read.size() - 1; k >= 0; --k)
        QVERIFY(indexer.frames().read(k, read[k]));
    QCOMPARE(describe(read), describe(expected));
}

QTEST_GUILESS_MAIN(FrameIndexTest)
#include "tst_frame_index.moc"
