#pragma once

#include <QString>

/// Empties the directory \a path, which may be a link to one: removes its files, its directories
/// with everything in them, and hidden ones too, by name and ignoring case. Links, special files
/// and names that are not UTF-8 are left, and their directories with them. Stops at the first
/// entry that cannot be removed.
///
/// Goes from directory to directory by descriptors and never through a link, so nothing outside
/// is touched, whatever others do to the tree meanwhile.
void RemoveContents(const QString& path);
