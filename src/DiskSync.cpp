#include "DiskSync.h"

#include <QFile>

#include <algorithm>
#include <cerrno>

#include <fcntl.h>
#include <unistd.h>

namespace
{

bool SyncDirectory(const QString& path)
{
    const int descriptor =
        open(QFile::encodeName(path).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0) {
        return false;
    }
    const bool synced = DiskSync::File(descriptor);
    close(descriptor);
    return synced;
}

} // namespace

bool DiskSync::File(int descriptor)
{
    int result = 0;
    do {
        result = fsync(descriptor);
    } while (result != 0 && errno == EINTR);
    return result == 0;
}

bool DiskSync::Directories(const QStringList& paths)
{
    return std::all_of(paths.cbegin(), paths.cend(), SyncDirectory);
}
