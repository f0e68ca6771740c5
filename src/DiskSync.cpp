#include "DiskSync.h"

#include <QFile>

#include <algorithm>
#include <cerrno>

#include <fcntl.h>
#include <unistd.h>

bool DiskSync::File(int descriptor)
{
    int result = 0;
    do {
        result = fsync(descriptor);
    } while (result != 0 && errno == EINTR);
    return result == 0;
}

bool DiskSync::Directory(const QString& path)
{
    const int descriptor =
        open(QFile::encodeName(path).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0) {
        return false;
    }
    const bool synced = File(descriptor);
    close(descriptor);
    return synced;
}

bool DiskSync::Directories(const QStringList& paths)
{
    return std::all_of(paths.cbegin(), paths.cend(), Directory);
}
