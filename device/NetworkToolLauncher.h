#pragma once
// Starts the lidar's network module configuration tool, which ships apart
// from ScanDeck: an executable named like the folder that holds it, in a
// folder of the working directory ("./NetworkModuleTool/NetworkModuleTool").
// One process object serves the whole run; ScanDeck neither waits for the
// tool nor watches it, and a tool that is missing or cannot start is not an
// error. A tool still open when ScanDeck ends is closed with it.

#include <QObject>
#include <QString>

class QProcess;

class NetworkToolLauncher : public QObject {
    Q_OBJECT
public:
    static QString programPath() { return QStringLiteral("./NetworkModuleTool/NetworkModuleTool"); }

    explicit NetworkToolLauncher(QObject* parent = nullptr) : QObject(parent) {}

    // Starts the tool unless it is already running.
    void start();
    // The process object, once start() has made it.
    QProcess* process() const { return m_process; }

private:
    QProcess* m_process = nullptr;
};
