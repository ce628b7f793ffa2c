#include "AtomicFileWrite.h"

#include "FileSync.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace lidar {

AtomicFileWrite::AtomicFileWrite(const QString& path) : path_(path) {}

AtomicFileWrite::~AtomicFileWrite()
{
    if (!committed_)
        discard();
}

bool AtomicFileWrite::open(QString* error)
{
    committed_ = false;
    file_.setFileName(temporaryPath());
    if (file_.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return true;
    if (error)
        *error = file_.errorString();
    return false;
}

bool AtomicFileWrite::commit(QString* error)
{
    bool ok = true;
    QString why;
    if (file_.isOpen()) {
        ok = file_.flush();
        if (!ok)
            why = file_.errorString();
        ok = ok && filesync::syncData(file_.handle(), &why);
        file_.close();
    } else {
        ok = filesync::syncFile(temporaryPath(), &why);
    }
    // rename() replaces an existing file in one step, which QFile::rename does not.
    if (ok && std::rename(QFile::encodeName(temporaryPath()).constData(), QFile::encodeName(path_).constData()) != 0) {
        ok = false;
        why = QStringLiteral("cannot rename %1 to %2: %3")
                  .arg(temporaryPath(), path_, QString::fromLocal8Bit(std::strerror(errno)));
    }
    if (!ok) {
        discard();
        if (error)
            *error = why;
        return false;
    }
    committed_ = true;
    // The file is whole under its name; only the name's durability is left.
    if (!filesync::syncFolderOf(path_, &why)) {
        if (error)
            *error = why;
        return false;
    }
    return true;
}

void AtomicFileWrite::discard()
{
    if (file_.isOpen())
        file_.close();
    QFile::remove(temporaryPath());
}

}  // namespace lidar
