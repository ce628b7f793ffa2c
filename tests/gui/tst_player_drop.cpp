// Which drags the 3D view accepts for offline playback and which file a drop
// names.

#include "OfflineDrop.h"

#include <QMimeData>
#include <QtTest>

class PlayerDropTest : public QObject {
    Q_OBJECT
private slots:
    void drops_data();
    void drops();
};

void PlayerDropTest::drops_data()
{
    QTest::addColumn<QStringList>("urls");
    QTest::addColumn<QString>("text");  // plain text, set only when not empty
    QTest::addColumn<bool>("accepted");
    QTest::addColumn<QString>("path");

    QTest::newRow("local recording") << QStringList{"file:///tmp/rec.txt"} << "" << true << "/tmp/rec.txt";
    QTest::newRow("escaped space") << QStringList{"file:///tmp/my%20rec.txt"} << "" << true << "/tmp/my rec.txt";
    QTest::newRow("first counts") << QStringList{"file:///tmp/a.txt", "file:///tmp/b.csv"} << "" << true
                                  << "/tmp/a.txt";
    QTest::newRow("first not txt") << QStringList{"file:///tmp/a.csv", "file:///tmp/b.txt"} << "" << false
                                   << "/tmp/a.csv";
    QTest::newRow("upper case") << QStringList{"file:///tmp/REC.TXT"} << "" << false << "/tmp/REC.TXT";
    QTest::newRow("text only") << QStringList{} << "file:///tmp/rec.txt" << false << "tmp/rec.txt";
    QTest::newRow("nothing") << QStringList{} << "" << false << "";
}

void PlayerDropTest::drops()
{
    QFETCH(QStringList, urls);
    QFETCH(QString, text);
    QFETCH(bool, accepted);
    QFETCH(QString, path);

    QMimeData data;
    QList<QUrl> list;
    for (const QString& u : urls)
        list.append(QUrl(u));
    if (!list.isEmpty())
        data.setUrls(list);
    if (!text.isEmpty())
        data.setText(text);

    QCOMPARE(offline::isAcceptableDrag(&data), accepted);
    QCOMPARE(offline::droppedFilePath(&data), path);
    QVERIFY(!offline::isAcceptableDrag(nullptr));
}

QTEST_GUILESS_MAIN(PlayerDropTest)
#include "tst_player_drop.moc"
