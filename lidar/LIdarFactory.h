#pragma once
// The registry of lidar models: for each class name the meta-object that
// creates a live session and the static function that parses a recording,
// both taken from the model's descriptor, and the descriptor itself. It owns
// the worker thread of the current session. One instance per process, built
// before main() runs.

#include "LidarAnalysis.h"
#include "LidarRecords.h"
#include "ModelDescriptor.h"
#include "OfflineParser.h"

#include <QByteArray>
#include <QMap>
#include <QObject>
#include <QPair>
#include <QString>
#include <QVector>
#include <functional>
#include <memory>

class QThread;

using ParseFunction = std::function<QVector<lidar::LidarDataPoint_V4>(const QVector<QByteArray>&)>;
// The same parse fed a recording's packets a batch at a time, for long
// recordings: appends the frames a batch completes and returns false once a
// packet ended the parse (lidar::decode::BatchParse).
using BatchParseFunction = std::function<bool(const QVector<QByteArray>&, QVector<lidar::LidarDataPoint_V4>&)>;

class LIdarFactory : public QObject {
    Q_OBJECT
public:
    static LIdarFactory* GetInstance();

    // Registers a model with every part its descriptor names: its class,
    // its parse functions and its offline parser, under its class name.
    void RegisterModel(const lidar::ModelDescriptor& model);
    // The descriptor of a model registered with RegisterModel; null for any
    // other name.
    const lidar::ModelDescriptor* FindModel(const QString& name) const;
    // The descriptors in registration order.
    QVector<const lidar::ModelDescriptor*> Models() const;

    void RegisterClass(const QMetaObject* metaObject);
    // A parse function registered on its own, without a batch form, is
    // called once with all packets of a recording.
    void RegisterParseFunction(const QString& name, const ParseFunction& function);
    void RegisterBatchParseFunction(const QString& name, const BatchParseFunction& function);
    // The process-wide offline parser behind a model's parse functions.
    void RegisterOfflineParser(const QString& name, lidar::OfflineParser* parser);
    // A copy of a model's process-wide offline parser, to decode a recording
    // on its own from where the parse functions stand now; null for a model
    // without one. KeepOfflineParserState hands a copy's state back, as if
    // the parse functions had decoded what it decoded.
    std::unique_ptr<lidar::OfflineParser> CopyOfflineParser(const QString& name) const;
    void KeepOfflineParserState(const QString& name, const lidar::OfflineParser& parser);

    std::shared_ptr<LidarAnalysis> CreateLidar(const QString& className);
    std::shared_ptr<LidarAnalysis> ChangeLidar(const QString& className);
    std::shared_ptr<LidarAnalysis> GetCurrentLidar();
    QPair<QString, QVector<lidar::LidarDataPoint_V4>> ParseFile(const QString& fileName);

    // Registered class names in registration order.
    QStringList ModelNames() const;
    // Stops the worker thread and releases the session; the process-wide
    // instance does this at exit, callers may do it earlier.
    void Shutdown();

    static QString VersionText();

    LIdarFactory();
    ~LIdarFactory() override;

    QString currentName;
    QThread* workerThread = nullptr;
    std::shared_ptr<LidarAnalysis> currentLidar;
    QMap<const char*, const QMetaObject*> classMap;
    QMap<QString, ParseFunction> parseMap;
    QMap<QString, BatchParseFunction> batchParseMap;
    QMap<QString, lidar::OfflineParser*> offlineParsers;

private:
    void stopWorker();
    void retireThread();
    QStringList registrationOrder_;
    QVector<const lidar::ModelDescriptor*> models_;
};
