#pragma once
// A file that appears under its name only complete and on the disk. It is
// written under a temporary name beside the final one ("<name>.part");
// commit() syncs it, renames it over the name and syncs the folder, so that
// after a crash or a power cut the name holds either the whole new file or
// what it held before, never a part. Until then nothing changes under the
// name; discarding (or destroying without a commit) removes the part.
//
// Writers that take a device write through file(); a library that writes
// by path writes to temporaryPath() itself.

#include <QFile>
#include <QString>

namespace lidar {

class AtomicFileWrite {
public:
    explicit AtomicFileWrite(const QString& path);
    ~AtomicFileWrite();
    AtomicFileWrite(const AtomicFileWrite&) = delete;
    AtomicFileWrite& operator=(const AtomicFileWrite&) = delete;

    QString path() const { return path_; }
    QString temporaryPath() const { return path_ + QStringLiteral(".part"); }

    // Creates the temporary file (truncating one left behind) for file().
    bool open(QString* error = nullptr);
    QFile& file() { return file_; }

    // Syncs the temporary file (file() if open, else the one at
    // temporaryPath()), renames it to path() and syncs the folder. On
    // failure the part is removed and path() is as it was.
    bool commit(QString* error = nullptr);
    void discard();
    bool isCommitted() const { return committed_; }

private:
    QString path_;
    QFile file_;
    bool committed_ = false;
};

}  // namespace lidar
