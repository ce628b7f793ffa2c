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
#include <algorithm>

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
    return QStringLiteral("RQ ScanDeck ：System64-Version " SCANDECK_VERSION);
}

LIdarFactory::LIdarFactory() : QObject(nullptr)
{
    workerThread = new QThread();
    // The order in which the models are offered wherever a list is shown.
    RegisterModel(Wren_Kite::Descriptor());
    RegisterModel(Wren_Plus::Descriptor());
    RegisterModel(Tern::Descriptor());
    RegisterModel(Tern_GPS::Descriptor());
    RegisterModel(Tern_P::Descriptor());
    RegisterModel(Tern_Plus::Descriptor());
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

void LIdarFactory::RegisterModel(const lidar::ModelDescriptor& model)
{
    const QString name = model.name();
    RegisterClass(model.metaObject);
    RegisterParseFunction(name, model.parseRecording);
    RegisterBatchParseFunction(name, model.parseBatch);
    RegisterOfflineParser(name, &model.offlineParser());
    const auto registered = std::find_if(models_.begin(), models_.end(),
                                         [&](const lidar::ModelDescriptor* m) { return m->name() == name; });
    if (registered != models_.end())
        *registered = &model;
    else
        models_.append(&model);
}

const lidar::ModelDescriptor* LIdarFactory::FindModel(const QString& name) const
{
    for (const lidar::ModelDescriptor* model : models_)
        if (QLatin1String(model->metaObject->className()) == name)
            return model;
    return nullptr;
}

QVector<const lidar::ModelDescriptor*> LIdarFactory::Models() const
{
    return models_;
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
