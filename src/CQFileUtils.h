#pragma once

#include "OrvoExport.h"

#include <QFile>
#include <QString>

/// Makes and removes files and directories, and repairs a path that is blocked by a file where a
/// directory is wanted or by an empty directory where a file is wanted.
///
/// The results are the error numbers of the older platform, with 1 instead of 0 for success:
///
/// | Code | Meaning |
/// |---|---|
/// | 1 | success |
/// | -1 | not found, or failed for an unknown reason |
/// | -11 | something of the other kind stands at the path |
/// | -12 | the path is shorter than 4 characters, or could not be made and nothing is there |
/// | -21 | it exists and could not be removed, or it lies directly in the root directory |
///
/// Backslashes in a path count as slashes where nothing else is said. Nothing here throws but
/// std::bad_alloc, out of the platform's own handling of paths; the operations keep no state and
/// may be called on any thread. See CQFile on paths that begin with a colon and on names that are
/// not UTF-8.
class ORVO_EXPORT CQFileUtils
{
public:
    CQFileUtils() = delete;

    /// Whether \a path is a directory, or a link to one. Backslashes are taken as they are.
    static bool IsDir(const QString& path);
    /// Removes a file: 1; -21 when it is still there, -1 when nothing is.
    static int RmFile(const QString& path);
    /// Removes an empty directory: 1; -21 when it is still there, or when no directory is there
    /// and \a path lies directly in the root directory; else -1.
    static int RmDir(const QString& path);

    /// Clears the way for a file. Only for a \a code of -11 or -21 it removes the file or the
    /// empty directory at \a path and sets \a code to the result of that.
    /// \return  true when it removed something and \a code is now 1.
    static bool FileErrors(int& code, const QString& path);
    /// Clears the way for a directory. Only for a \a code of -11 or -21, and not for -11 with a
    /// directory at \a path, it removes the file there, one trailing slash ignored, and sets
    /// \a code to the result of that.
    ///
    /// A directory, and anything directly in the root directory, is left alone and \a code
    /// becomes 1 with the result false: callers go on as if the directory were there.
    /// \return  true when it removed the file and \a code is now 1.
    static bool DirErrors(int& code, const QString& path);

    /// Index of the first slash in \a path at or after \a from. The first three characters, a
    /// drive prefix like "c:/", are always skipped. Without a slash the last index; the length
    /// when the search would start at the end or beyond.
    static int ParseNextDir(const QString& path, int from);
    /// Makes the directory \a path with all its parents, and tries once more after DirErrors()
    /// cleared a file out of the way.
    /// \return  1, also when it existed before, and also, with nothing made, for a file directly
    ///          in the root directory; -12, -21 or -1.
    static int MkDir(const QString& path);
    /// Makes the directories that lead to the file \a path.
    ///
    /// It first tries to make all of \a path as a directory, and often succeeds: then the file
    /// name is a directory too, which MkFile() removes again. Otherwise it makes one directory
    /// after the other with MkDir(), and removes files in their way, but not the last component.
    /// \return  1, or the first other result of MkDir().
    static int EnsurePathExists(const QString& path);
    /// Opens \a file at \a path for reading and writing, and makes it and its directories when
    /// they are missing. An empty directory in its place is removed, and so is anything else that
    /// is no file: a pipe, a socket, a device. \a permissions are applied to what stands at the
    /// path before the file is opened: a file that is made here has those of the process, and a
    /// directory that is not empty, and so stays, has changed its own.
    /// \return  the result of EnsurePathExists(). Whether the file could be opened is no part of
    ///          it: callers ask \a file.
    static int MkFile(QFile& file, const QString& path, QFile::Permissions permissions);

    /// Everything after the first dot of the file name ("tar.gz" of "/x/a.tar.gz", "profile" of
    /// "/x/.profile"), or null when there is none. The caller deletes the result. Only slashes
    /// separate directories.
    static QString* Ext(const QString& path);
    /// The file name up to its first dot, or all of it; never null. The caller deletes the
    /// result. Only slashes separate directories.
    static QString* FileNameWithoutExt(const QString& path);
};
