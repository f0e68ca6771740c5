#pragma once

#include "OrvoExport.h"

#include <memory>

class QSaveFile;

/// Replaces the content of a file so that a fault at any point, a loss of power included, leaves
/// the old content or the new one, never a mixture and never nothing: it writes to a new file
/// beside the old one, waits until that has reached the disk, and renames it over the old one.
///
///     CQSaveFile file;
///     file.Open(path);
///     file.Write(data, length);
///     if (file.Commit() == 0) {
///         // the old content stands
///     }
///
/// Results of single steps need not be looked at: after any failure Commit() refuses. CQFile
/// writes in place instead, which is what logs and large files want.
///
/// Use an object on one thread. Nothing throws but std::bad_alloc, from Open().
class ORVO_EXPORT CQSaveFile
{
public:
    /// An object that holds no new content yet.
    CQSaveFile();
    /// Gives up what was not committed.
    virtual ~CQSaveFile();
    CQSaveFile(const CQSaveFile&) = delete;
    CQSaveFile& operator=(const CQSaveFile&) = delete;

    /// Begins a new content for the file at \a path, zero-terminated wide text in which
    /// backslashes count as slashes. The directory must exist and be writable; the file need not
    /// exist. Where \a path is a link, the file that it leads to is meant. The new file takes the
    /// permissions of the old one. What an earlier Open() began is given up.
    /// \return  1; 0 for null, for anything at \a path that is not a file or may not be written,
    ///          and when no file can be made beside it.
    int Open(const wchar_t* path);
    /// Adds \a length bytes.
    /// \return  1; 0 when not open, for null with a length, and when they were not taken whole.
    int Write(const void* data, unsigned int length);
    /// Ends the new content and puts it in the place of the old one.
    /// \return  1 when the new content stands on the disk under its name; 0 when not open and
    ///          after any failure since Open(). The old content then stands untouched, but where
    ///          only the last wait for the disk has failed: then either may be found after a loss
    ///          of power. Want of memory may leave the new content behind, under another name.
    int Commit();
    /// Whether anything has failed since the last Open(), that open included.
    bool HasFailed() const;

private:
    std::unique_ptr<QSaveFile> m_pFile; // null while not open
    bool m_bFailed;
};
