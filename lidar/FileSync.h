#pragma once
// The calls that put written data on the disk rather than only in the
// system's page cache, where a power cut or a kernel crash would lose it:
// a file's data (fdatasync) and a folder's entries (fsync of the folder, so
// that a file just created or renamed is found under its name afterwards).
//
// Every sync in the program goes through here, so a test can count them
// and a benchmark can leave them out to measure what they cost.

#include <QString>

namespace lidar {
namespace filesync {

// Syncs the data of the open file `fd`. On failure `error` says why.
bool syncData(int fd, QString* error = nullptr);
// Opens the file at `path` and syncs its data (a file another library wrote).
bool syncFile(const QString& path, QString* error = nullptr);
// Syncs the entries of `folder`.
bool syncFolder(const QString& folder, QString* error = nullptr);
// Syncs the entries of the folder that holds `path`.
bool syncFolderOf(const QString& path, QString* error = nullptr);

// What syncData and the folder sync call; the defaults are the system's.
// Each returns 0 or an errno value.
struct Calls {
    int (*data)(int fd);
    int (*folder)(int folderFd);
};
Calls systemCalls();
// Replaces the calls (a counting wrapper, or none at all for a benchmark).
// Set it while no file is being written: it is read without a lock.
void setCalls(const Calls& calls);

}  // namespace filesync
}  // namespace lidar
