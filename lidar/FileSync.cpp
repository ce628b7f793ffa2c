#include "FileSync.h"

#include <QFile>
#include <QFileInfo>

#include <atomic>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace lidar {
namespace filesync {
namespace {

int systemDataSync(int fd)
{
    return ::fdatasync(fd) == 0 ? 0 : errno;
}

int systemFolderSync(int folderFd)
{
    return ::fsync(folderFd) == 0 ? 0 : errno;
}

std::atomic<int (*)(int)> dataCall{&systemDataSync};
std::atomic<int (*)(int)> folderCall{&systemFolderSync};

bool failed(int code, const QString& what, QString* error)
{
    if (error)
        *error = QStringLiteral("%1: %2").arg(what, QString::fromLocal8Bit(std::strerror(code)));
    return false;
}

// Opens read-only and retries an interrupted open; -1 with errno set on failure.
int openForSync(const QString& path, int flags)
{
    const QByteArray name = QFile::encodeName(path);
    int fd;
    do {
        fd = ::open(name.constData(), O_RDONLY | O_CLOEXEC | flags);
    } while (fd < 0 && errno == EINTR);
    return fd;
}

}  // namespace

bool syncData(int fd, QString* error)
{
    const int code = dataCall.load(std::memory_order_relaxed)(fd);
    return code == 0 || failed(code, QStringLiteral("cannot sync to disk"), error);
}

bool syncFile(const QString& path, QString* error)
{
    const int fd = openForSync(path, 0);
    if (fd < 0)
        return failed(errno, QStringLiteral("cannot open %1 to sync it").arg(path), error);
    const bool ok = syncData(fd, error);
    ::close(fd);
    return ok;
}

bool syncFolderOf(const QString& path, QString* error)
{
    return syncFolder(QFileInfo(path).absolutePath(), error);
}

bool syncFolder(const QString& folder, QString* error)
{
    const int fd = openForSync(folder, O_DIRECTORY);
    if (fd < 0)
        return failed(errno, QStringLiteral("cannot open the folder %1 to sync it").arg(folder), error);
    const int code = folderCall.load(std::memory_order_relaxed)(fd);
    ::close(fd);
    return code == 0 || failed(code, QStringLiteral("cannot sync the folder %1").arg(folder), error);
}

Calls systemCalls()
{
    return {&systemDataSync, &systemFolderSync};
}

void setCalls(const Calls& calls)
{
    dataCall.store(calls.data, std::memory_order_relaxed);
    folderCall.store(calls.folder, std::memory_order_relaxed);
}

}  // namespace filesync
}  // namespace lidar
