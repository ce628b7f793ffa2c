// Recording a live stream and reading recordings back, including files that
// are damaged or are not recordings at all.

#include "LIdarFactory.h"
#include "PacketBuilders.h"
#include "RecordFile.h"
#include "Tern.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

using namespace testing;

namespace {

QByteArray be32(quint32 v)
{
    QByteArray b(4, '\0');
    b[0] = char(v >> 24);
    b[1] = char(v >> 16);
    b[2] = char(v >> 8);
    b[3] = char(v);
    return b;
}

void writeFile(const QString& path, const QByteArray& bytes)
{
    QFile f(path);
    QVERIFY(f.open(QIODevice::WriteOnly));
    f.write(bytes);
}

}  // namespace

class RecordFileTest : public QObject {
    Q_OBJECT
private slots:
    void recordingParsesToTheFramesShownLive();
    void recordingsStartEmptyAndDoNotCarryOver();
    void unwritablePathIsRefused();
    void damagedFiles_data();
    void damagedFiles();
    void truncatedFileIsRefusedWhole();

private:
    QTemporaryDir dir_;
};

void RecordFileTest::recordingParsesToTheFramesShownLive()
{
    Tern session;
    session.connected = 1;
    QVector<lidar::LidarDataPoint_V4> live;
    connect(&session, &LidarAnalysis::SendleLidarDataSignal, this,
            [&](const lidar::LidarDataPoint_V4& f) { live.append(f); });
    QSignalSpy saved(&session, &LidarAnalysis::SendEndSaveDataSignal);

    const QString path = dir_.filePath("live.txt");
    QVERIFY(session.StartSaveData(path));
    const QVector<QByteArray> packets = ternRevolutions(3, 1200, 300);
    QByteArray stream = QByteArray("junk");
    for (const QByteArray& p : packets)
        stream += p;
    stream.insert(92 * 5 + 4, ternReply({0x18, 1, 2, 3, 4, 5}, 11));  // replies are not recorded
    for (int at = 0; at < stream.size(); at += 500) {
        session.receiveBuffer.append(stream.mid(at, 500));
        session.ParseLidarData();
    }
    session.EndSaveData();
    QCOMPARE(saved.count(), 1);
    QCOMPARE(saved.at(0).at(0).toString(), path);
    QCOMPARE(live.size(), 2);

    const QVector<QByteArray> elements = lidar::readRecordFile(path);
    QCOMPARE(elements.size(), 1 + packets.size());
    QCOMPARE(elements.first(), QByteArray("Tern"));
    QCOMPARE(elements.mid(1), packets);

    // Point-for-point agreement of live and offline decoding is the decoder
    // conformance test's business; here the file must reach the right parser.
    const auto parsed = LIdarFactory::GetInstance()->ParseFile(path);
    QCOMPARE(parsed.first, QString("Tern"));
    QCOMPARE(parsed.second.size(), live.size());
}

void RecordFileTest::recordingsStartEmptyAndDoNotCarryOver()
{
    Tern session;
    const QString first = dir_.filePath("first.txt");
    QVERIFY(session.StartSaveData(first));
    session.EndSaveData();
    QCOMPARE(lidar::readRecordFile(first), QVector<QByteArray>{"Tern"});

    const QVector<QByteArray> packets = ternRevolutions(1);
    QVERIFY(session.StartSaveData(dir_.filePath("a.txt")));
    session.receiveBuffer = packets[0];
    session.ParseLidarData();
    session.EndSaveData();
    QVERIFY(session.StartSaveData(dir_.filePath("b.txt")));
    session.receiveBuffer = packets[1];
    session.ParseLidarData();
    session.EndSaveData();
    QCOMPARE(lidar::readRecordFile(dir_.filePath("b.txt")), (QVector<QByteArray>{"Tern", packets[1]}));
}

void RecordFileTest::unwritablePathIsRefused()
{
    Tern session;
    QVERIFY(!session.StartSaveData(dir_.filePath("no/such/dir/x.txt")));
    QCOMPARE(int(session.saving), 0);
}

void RecordFileTest::damagedFiles_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("frames");

    QTest::newRow("zero-length") << QByteArray() << QString() << 0;
    QTest::newRow("text file") << QByteArray("hello, this is not a recording\n") << QString() << 0;
    // A count of 0x7FFFFFF0 in a 20-byte file must not allocate gigabytes.
    QTest::newRow("huge count") << be32(0x7FFFFFF0) + be32(4) + "Tern" + be32(0x00100000) + "abcd"
                                << QString() << 0;
    QTest::newRow("huge element") << be32(2) + be32(0xFFFFFFF0) + "Tern" << QString() << 0;
    QTest::newRow("unregistered model") << be32(2) + be32(4) + "Nope" + be32(92) + ternPacketFilled(0, 0, 5)
                                        << QString("Nope") << 0;
}

void RecordFileTest::damagedFiles()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, name);
    QFETCH(int, frames);
    const QString path = dir_.filePath(QString("damaged-%1.txt").arg(QTest::currentDataTag()));
    writeFile(path, bytes);
    const auto parsed = LIdarFactory::GetInstance()->ParseFile(path);
    QCOMPARE(parsed.first, name);
    QCOMPARE(parsed.second.size(), frames);
}

void RecordFileTest::truncatedFileIsRefusedWhole()
{
    const QVector<QByteArray> packets = ternRevolutions(2);
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    QVector<QByteArray> elements{"Tern"};
    elements += packets;
    QVERIFY(lidar::writeRecordElements(buffer, elements));
    const QByteArray whole = buffer.data();
    // Cut in the middle of the eleventh packet.
    QByteArray cut = whole.left(4 + 8 + 10 * 96 + 50);
    QBuffer in(&cut);
    in.open(QIODevice::ReadOnly);
    QVERIFY(lidar::readRecordElements(in).isEmpty());
    QBuffer complete;
    complete.setData(whole);
    complete.open(QIODevice::ReadOnly);
    QCOMPARE(lidar::readRecordElements(complete), elements);

    QCOMPARE(lidar::readRecordFile(dir_.filePath("missing.txt")).size(), 0);
}

QTEST_MAIN(RecordFileTest)
#include "tst_record_file.moc"
