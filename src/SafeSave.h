#pragma once

#include <QString>

class QSaveFile;

/// What both ways of replacing a file safely are made of.
namespace SafeSave
{

/// Begins a new content for \a path beside it. False also where something other than a file
/// stands there, which could not be replaced by a rename.
bool Open(QSaveFile& file, const QString& path);
/// Puts the new content in the place of the old one once all of it has reached the disk, and
/// waits until the name has, too. On failure what was written is given up.
bool Commit(QSaveFile& file);

} // namespace SafeSave
