#pragma once

#include <QString>

/// Renames or moves the file or directory \a from. Whatever stands at \a to, a dangling link too,
/// is neither replaced nor written through.
///
/// Only a file goes to another file system: it is copied, and the source removed once every byte
/// and the permissions have reached the disk there. Otherwise the result is false, the source
/// untouched and no target left.
bool MoveFile(const QString& from, const QString& to);
