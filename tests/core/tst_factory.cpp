// The model registry: that it holds what the models' descriptors name and
// that no descriptor lacks a part, which sessions and threads model changes
// produce, and how recorded files reach the registered parse functions.

#include "LIdarFactory.h"
#include "RecordFile.h"

#include <QTemporaryDir>
#include <QThread>
#include <QtTest>

class FactoryTest : public QObject {
    Q_OBJECT
private slots:
    void registryListsComeFromTheDescriptors();
    void everyModelDescribesEveryPart_data();
    void everyModelDescribesEveryPart();
    void versionTextCarriesTheProjectVersion();
    void changeLidarSequences();
    void parseFileHandsPacketsToTheModelsFunction();
    void cleanupTestCase() { LIdarFactory::GetInstance()->Shutdown(); }
};

namespace {

// What a registered model's descriptor lacks, by part; empty when complete.
QStringList missingParts(const lidar::ModelDescriptor& d)
{
    QStringList missing;
    const auto need = [&](bool present, const char* part) {
        if (!present)
            missing << QString::fromLatin1(part);
    };
    const QMetaObject* mo = d.metaObject;
    need(mo && mo->inherits(&LidarAnalysis::staticMetaObject) && mo->constructorCount() > 0,
         "a session class with an invokable constructor");
    need(d.parseRecording && d.parseBatch && d.offlineParser, "offline parse functions and parser");

    const lidar::PacketSizes& p = d.packets;
    const bool lengthField = p.framing == lidar::PacketFraming::LengthField;
    need(lengthField ? p.dataSize == 0 : p.dataSize > 0, "data packet size");
    need((p.framing == lidar::PacketFraming::TypedChecksum) == (p.packetType != 0), "packet type");
    need((p.replySize == 186 || p.replySize == 188) && p.replyVersionAt > 2 && p.replyVersionAt + 6 <= p.replySize - 2,
         "parameters reply");
    need((d.family == lidar::ModelFamily::Wren) == (p.framing == lidar::PacketFraming::TypedChecksum), "family");

    need(!d.gps.stamped || d.gps.calendarAt != -1, "where the GPS calendar lies");
    need(d.baudRate > 0, "baud rate");
    const lidar::CommandSet& c = d.commands;
    need(c.readParamClass != 0 && c.setFilterClass != 0, "command classes");
    need(c.filterModes == 2 || c.filterModes == 3, "filter modes");

    const lidar::PacketGeometry& g = d.geometry;
    const bool startToEnd = g.span == lidar::PacketSpan::StartToEnd;
    need(g.startAngleAt >= 2 && g.measurementsAt > g.startAngleAt && g.channels > 0, "packet layout");
    need(startToEnd ? g.endAngleAt > g.measurementsAt && g.groups > 1 : g.spanDegrees > 0.0 && g.endAngleAt == -1,
         "packet span");
    need(startToEnd || lengthField || g.groups > 0, "words of a fixed-size packet");
    need(d.distanceBits == 15 || d.distanceBits == 16, "distance width");
    return missing;
}

}  // namespace

// Every map of the registry holds exactly the registered descriptors'
// parts, in their registration order, and each name makes its session.
void FactoryTest::registryListsComeFromTheDescriptors()
{
    auto* factory = LIdarFactory::GetInstance();
    const QVector<const lidar::ModelDescriptor*> models = factory->Models();
    QVERIFY(!models.isEmpty());
    QStringList names;
    for (const lidar::ModelDescriptor* model : models)
        names << model->name();
    QCOMPARE(factory->ModelNames(), names);
    QCOMPARE(factory->classMap.size(), models.size());
    QCOMPARE(factory->parseMap.size(), models.size());
    QCOMPARE(factory->batchParseMap.size(), models.size());
    QCOMPARE(factory->offlineParsers.size(), models.size());

    for (const lidar::ModelDescriptor* model : models) {
        const QString name = model->name();
        QCOMPARE(factory->FindModel(name), model);
        QVERIFY(!factory->FindModel(name.toLower()));  // names are exact
        QVERIFY(factory->classMap.values().contains(model->metaObject));
        // The maps hand out copies: keep them alive while their targets are compared.
        const auto parseFunction = factory->parseMap.value(name);
        const auto* parse = parseFunction.target<lidar::ParseRecording>();
        QVERIFY(parse && *parse == model->parseRecording);
        const auto batchFunction = factory->batchParseMap.value(name);
        const auto* parseBatch = batchFunction.target<lidar::decode::BatchParse>();
        QVERIFY(parseBatch && *parseBatch == model->parseBatch);
        QCOMPARE(factory->offlineParsers.value(name), &model->offlineParser());

        QVERIFY(factory->CreateLidar(name) != nullptr);
        QCOMPARE(factory->currentName, name);
        QCOMPARE(QString(factory->currentLidar->metaObject()->className()), name);
    }
}

void FactoryTest::everyModelDescribesEveryPart_data()
{
    QTest::addColumn<QString>("model");
    for (const QString& name : LIdarFactory::GetInstance()->ModelNames())
        QTest::newRow(qPrintable(name)) << name;
}

void FactoryTest::everyModelDescribesEveryPart()
{
    QFETCH(QString, model);
    const lidar::ModelDescriptor* described = LIdarFactory::GetInstance()->FindModel(model);
    QVERIFY(described);
    QCOMPARE(missingParts(*described), QStringList());
}

// The about box's text names the version the project is built as.
void FactoryTest::versionTextCarriesTheProjectVersion()
{
    QVERIFY(LIdarFactory::VersionText().endsWith(QStringLiteral("-Version " SCANDECK_VERSION)));
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
