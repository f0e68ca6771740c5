#include "SafeSave.h"

#include "DiskSync.h"

#include <QFileInfo>
#include <QSaveFile>

bool SafeSave::Open(QSaveFile& file, const QString& path)
{
    const QFileInfo present(path);
    if (present.exists() && !present.isFile()) {
        return false;
    }
    file.setFileName(path);
    return file.open(QIODevice::WriteOnly);
}

bool SafeSave::Commit(QSaveFile& file)
{
    // The platform's commit() goes on when its last flush or the sync has failed.
    if (!file.flush() || file.error() != QFileDevice::NoError || !DiskSync::File(file.handle())) {
        file.cancelWriting();
    }
    if (!file.commit()) {
        return false;
    }
    // Where the path is a link, what it leads to was replaced.
    const QString replaced = QFileInfo(file.fileName()).canonicalFilePath();
    return DiskSync::Directory(QFileInfo(replaced).path());
}
