#pragma once

#include <QStringList>

/// Waits until what the system holds in memory has reached the disk. All say whether it has.
namespace DiskSync
{

/// The file or directory behind an open descriptor.
bool File(int descriptor);
/// The entries of the directory at \a path.
bool Directory(const QString& path);
/// The entries of each of \a paths.
bool Directories(const QStringList& paths);

} // namespace DiskSync
