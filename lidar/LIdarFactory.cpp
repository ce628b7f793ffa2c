#include "LIdarFactory.h"

#include "RecordingParse.h"
#include "Tern.h"
#include "Tern_GPS.h"
#include "Tern_P.h"
#include "Tern_Plus.h"
#include "Wren_Kite.h"
#include "Wren_Plus.h"

#include <QCoreApplication>
#include <QThread>

namespace {
// Built before main() so that every model is known from the start.
LIdarFactory g_factory;
}

LIdarFactory* LIdarFactory::GetInstance()
{
    return &g_factory;
}

QString LIdarFactory::VersionText()
{
    return QStringLiteral("RQ ScanDeck ：System64-Version 1.0.2");
}

LIdarFactory::LIdarFactory() : QObject(nullptr)
{
    workerThread = new QThread();
    const QMetaObject* models[] = {
        &Wren_Kite::staticMetaObject, &Wren_Plus::staticMetaObject, &Tern::staticMetaObject,
        &Tern_GPS::staticMetaObject,  &Tern_P::staticMetaObject,    &Tern_Plus::staticMetaObject,
    };
    const ParseFunction parsers[] = {
        &Wren_Kite::ParseRecordedPackets, &Wren_Plus::ParseRecordedPackets, &Tern::ParseRecordedPackets,
        &Tern_GPS::ParseRecordedPackets,  &Tern_P::ParseRecordedPackets,    &Tern_Plus::ParseRecordedPackets,
    };
    for (const QMetaObject* mo : models)
        RegisterClass(mo);
    const BatchParseFunction batchParsers[] = {
        &Wren_Kite::ParseRecordedBatch, &Wren_Plus::ParseRecordedBatch, &Tern::ParseRecordedBatch,
        &Tern_GPS::ParseRecordedBatch,  &Tern_P::ParseRecordedBatch,    &Tern_Plus::ParseRecordedBatch,
    };
    for (size_t i = 0; i < sizeof(parsers) / sizeof(parsers[0]); ++i)
        RegisterParseFunction(QString::fromLatin1(models[i]->className()), parsers[i]);
    for (size_t i = 0; i < sizeof(batchParsers) / sizeof(batchParsers[0]); ++i)
        RegisterBatchParseFunction(QString::fromLatin1(models[i]->className()), batchParsers[i]);
    lidar::OfflineParser* offline[] = {
        &lidar::ModelOfflineParser<Wren_Kite>::shared(), &lidar::ModelOfflineParser<Wren_Plus>::shared(),
        &lidar::ModelOfflineParser<Tern>::shared(),      &lidar::ModelOfflineParser<Tern_GPS>::shared(),
        &lidar::ModelOfflineParser<Tern_P>::shared(),    &lidar::ModelOfflineParser<Tern_Plus>::shared(),
    };
    for (size_t i = 0; i < sizeof(offline) / sizeof(offline[0]); ++i)
        RegisterOfflineParser(QString::fromLatin1(models[i]->className()), offline[i]);
}

LIdarFactory::~LIdarFactory()
{
    Shutdown();
}

void LIdarFactory::Shutdown()
{
    stopWorker();
    currentLidar.reset();
    retireThread();
    workerThread = nullptr;
}

void LIdarFactory::RegisterClass(const QMetaObject* metaObject)
{
    classMap.insert(metaObject->className(), metaObject);
    const QString name = QString::fromLatin1(metaObject->className());
    if (!registrationOrder_.contains(name))
        registrationOrder_.append(name);
}

void LIdarFactory::RegisterParseFunction(const QString& name, const ParseFunction& function)
{
    parseMap.insert(name, function);
    // A batch form or a parser object would bypass the new function.
    batchParseMap.remove(name);
    offlineParsers.remove(name);
}

void LIdarFactory::RegisterBatchParseFunction(const QString& name, const BatchParseFunction& function)
{
    batchParseMap.insert(name, function);
}

void LIdarFactory::RegisterOfflineParser(const QString& name, lidar::OfflineParser* parser)
{
    offlineParsers.insert(name, parser);
}

std::unique_ptr<lidar::OfflineParser> LIdarFactory::CopyOfflineParser(const QString& name) const
{
    lidar::OfflineParser* parser = offlineParsers.value(name);
    if (!parser)
        return nullptr;
    std::lock_guard<std::mutex> lock(lidar::sharedOfflineParserMutex());
    return parser->clone();
}

void LIdarFactory::KeepOfflineParserState(const QString& name, const lidar::OfflineParser& parser)
{
    lidar::OfflineParser* shared = offlineParsers.value(name);
    if (!shared)
        return;
    std::lock_guard<std::mutex> lock(lidar::sharedOfflineParserMutex());
    shared->assign(parser);
}

QStringList LIdarFactory::ModelNames() const
{
    return registrationOrder_;
}

void LIdarFactory::stopWorker()
{
    if (!workerThread || !workerThread->isRunning())
        return;
    // Bring the session home first so that its sockets are destroyed on the
    // thread that owns them rather than on a stopped one.
    if (currentLidar && currentLidar->thread() == workerThread) {
        QThread* home = thread();
        LidarAnalysis* session = currentLidar.get();
        QMetaObject::invokeMethod(
            session, [session, home] { session->moveToThread(home); }, Qt::BlockingQueuedConnection);
    }
    workerThread->quit();
    workerThread->wait();
}

void LIdarFactory::retireThread()
{
    // A started thread deletes itself once finished; one never started is ours.
    if (workerThread && !workerThread->isFinished())
        delete workerThread;
}

std::shared_ptr<LidarAnalysis> LIdarFactory::CreateLidar(const QString& className)
{
    if (currentLidar)
        currentLidar->WaitDisconnect();
    if (className == currentName)
        return currentLidar;

    stopWorker();
    retireThread();
    workerThread = new QThread();

    const QList<const char*> keys = classMap.keys();
    const char* key = nullptr;
    for (const char* candidate : keys) {
        if (QString::fromLatin1(candidate) == className) {
            key = candidate;
            break;
        }
    }
    if (!key)
        return nullptr;

    QObject* object = classMap.value(key)->newInstance();
    currentLidar.reset(qobject_cast<LidarAnalysis*>(object));
    connect(workerThread, &QThread::finished, workerThread, &QObject::deleteLater);
    currentLidar->moveToThread(workerThread);
    workerThread->start(QThread::InheritPriority);
    currentName = className;
    return currentLidar;
}

std::shared_ptr<LidarAnalysis> LIdarFactory::ChangeLidar(const QString& className)
{
    std::shared_ptr<LidarAnalysis> created = CreateLidar(className);
    currentLidar = created;
    return currentLidar;
}

std::shared_ptr<LidarAnalysis> LIdarFactory::GetCurrentLidar()
{
    return currentLidar;
}

QPair<QString, QVector<lidar::LidarDataPoint_V4>> LIdarFactory::ParseFile(const QString& fileName)
{
    // A file that cannot be read or holds no element ("File has no data")
    // gives an empty name; an unregistered model its name and no frames.
    const lidar::ParsedRecording parsed = lidar::parseRecording(fileName);
    return {parsed.model, parsed.frames};
}
