#include "FileMove.h"

#include "DiskSync.h"

#include <QFile>
#include <QFileInfo>

#include <array>
#include <cerrno>
#include <cstdio>
#include <new>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

bool IsSameFile(const char* one, const char* other)
{
    struct stat a;
    struct stat b;
    return stat(one, &a) == 0 && stat(other, &b) == 0 && a.st_dev == b.st_dev &&
           a.st_ino == b.st_ino;
}

bool IsTaken(const char* path)
{
    struct stat info;
    return lstat(path, &info) == 0;
}

// Leaves errno as the system set it.
bool RenameInPlace(const char* from, const char* to)
{
    if (renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE) == 0) {
        return true;
    }
    // Not every file system can refuse to replace; the caller has seen that nothing is there.
    return errno == EINVAL && rename(from, to) == 0;
}

bool CopyContent(QFile& from, QFile& to)
{
    std::array<char, 16384> block;
    qint64 copied = 0;
    qint64 count = 0;
    while ((count = from.read(block.data(), static_cast<qint64>(block.size()))) > 0) {
        if (to.write(block.data(), count) != count) {
            return false;
        }
        copied += count;
    }
    return copied == from.size() && to.flush() && DiskSync::File(to.handle());
}

// The permissions come first: what only its owner may read is never open to others.
bool CopyWhole(QFile& from, QFile& to)
{
    struct stat info;
    return fstat(from.handle(), &info) == 0 && fchmod(to.handle(), info.st_mode & 0777U) == 0 &&
           CopyContent(from, to) && DiskSync::Directory(QFileInfo(to).absolutePath());
}

// A file that fails to close is not removed, and one with bytes that cannot be written fails to.
void RemoveUnfinished(QFile& file)
{
    file.close();
    file.remove();
}

bool MoveAcross(const QString& from, const QString& to)
{
    QFile source(from);
    QFile target(to);
    if (!QFileInfo(from).isFile() || !source.open(QIODevice::ReadOnly) ||
        !target.open(QIODevice::WriteOnly | QIODevice::NewOnly)) {
        return false;
    }
    try {
        if (CopyWhole(source, target) && source.remove()) {
            return true;
        }
    } catch (const std::bad_alloc&) {
        RemoveUnfinished(target);
        throw;
    }
    RemoveUnfinished(target);
    return false;
}

} // namespace

bool MoveFile(const QString& from, const QString& to)
{
    const QByteArray source = QFile::encodeName(from);
    const QByteArray target = QFile::encodeName(to);
    // A change of case only, where names differ by more than that or not at all.
    if (from.compare(to, Qt::CaseInsensitive) == 0 && IsSameFile(source, target)) {
        return QFile::rename(from, to);
    }
    if (!QFile::exists(from) || IsTaken(target)) {
        return false;
    }
    return RenameInPlace(source, target) || (errno == EXDEV && MoveAcross(from, to));
}
