// The model registry: which sessions and threads model changes produce, and
// how recorded files reach the registered parse functions.

#include "LIdarFactory.h"
#include "RecordFile.h"

#include <QTemporaryDir>
#include <QThread>
#include <QtTest>

class FactoryTest : public QObject {
    Q_OBJECT
private slots:
    void everyModelIsRegisteredInOrder();
    void changeLidarSequences();
    void parseFileHandsPacketsToTheModelsFunction();
    void cleanupTestCase() { LIdarFactory::GetInstance()->Shutdown(); }
};

void FactoryTest::everyModelIsRegisteredInOrder()
{
    auto* factory = LIdarFactory::GetInstance();
    const QStringList expected{"Wren_Kite", "Wren_Plus", "Tern", "Tern_GPS", "Tern_P", "Tern_Plus"};
    QCOMPARE(factory->ModelNames(), expected);
    QCOMPARE(QStringList(factory->parseMap.keys()).size(), expected.size());
    for (const QString& name : expected) {
        QVERIFY(factory->parseMap.contains(name));
        QVERIFY(factory->CreateLidar(name) != nullptr);
        QCOMPARE(factory->currentName, name);
        QCOMPARE(QString(factory->currentLidar->metaObject()->className()), name);
    }
    QCOMPARE(LIdarFactory::VersionText(), QString::fromUtf8("RQ ScanDeck ：System64-Version 1.0.2"));
}

void FactoryTest::changeLidarSequences()
{
    auto* factory = LIdarFactory::GetInstance();
    auto tern = factory->ChangeLidar("Tern");
    QVERIFY(tern);
    QThread* ternThread = factory->workerThread;
    QVERIFY(ternThread->isRunning());
    QCOMPARE(tern->thread(), ternThread);

    // The same model again reuses the session and its thread.
    QCOMPARE(factory->ChangeLidar("Tern").get(), tern.get());
    QCOMPARE(factory->workerThread, ternThread);

    // Another model: a new session on a new thread; the old thread stops.
    QPointer<QThread> oldThread(ternThread);
    auto kite = factory->ChangeLidar("Wren_Kite");
    QVERIFY(kite && kite.get() != tern.get());
    QVERIFY(factory->workerThread != ternThread);
    QCOMPARE(kite->thread(), factory->workerThread);
    QVERIFY(!oldThread || oldThread->isFinished());

    // An unknown name leaves no session but keeps the previous name, so that
    // asking for that name again returns the empty current session.
    QVERIFY(!factory->ChangeLidar("NoSuchModel"));
    QVERIFY(!factory->GetCurrentLidar());
    QCOMPARE(factory->currentName, QString("Wren_Kite"));
    QVERIFY(!factory->ChangeLidar("Wren_Kite"));

    QVERIFY(factory->ChangeLidar("Tern"));
    QVERIFY(factory->workerThread->isRunning());
}

void FactoryTest::parseFileHandsPacketsToTheModelsFunction()
{
    auto* factory = LIdarFactory::GetInstance();
    QVector<QVector<QByteArray>> calls;
    factory->RegisterParseFunction("FakeModel", [&](const QVector<QByteArray>& packets) {
        calls.append(packets);
        lidar::LidarDataPoint_V4 frame;
        frame.motorSpeed = packets.size();
        return QVector<lidar::LidarDataPoint_V4>{frame};
    });

    QTemporaryDir dir;
    QFile file(dir.filePath("fake.txt"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QVERIFY(lidar::writeRecordElements(file, {"FakeModel", "first", QByteArray(), "third"}));
    file.close();

    const auto parsed = factory->ParseFile(file.fileName());
    QCOMPARE(parsed.first, QString("FakeModel"));
    QCOMPARE(calls.size(), 1);
    QCOMPARE(calls[0], (QVector<QByteArray>{"first", QByteArray(), "third"}));
    QCOMPARE(parsed.second.size(), 1);
    QCOMPARE(parsed.second[0].motorSpeed, 3);
    factory->parseMap.remove("FakeModel");
}

QTEST_MAIN(FactoryTest)
#include "tst_factory.moc"
