#pragma once

#include "OrvoExport.h"

#include <QStringList>

class QByteArray;
class QFile;

/// One block of bytes, kept in a file in compressed form: history archives and the like.
///
/// The whole file is what qCompress() makes of the block at zlib's default level: the length of
/// the block as an unsigned 32-bit big-endian number, then one zlib stream (RFC 1950), which any
/// zlib reads and writes. There is no other header.
///
/// Write() and Read() name the file, open it and move the block at once. Paths are zero-terminated
/// wide text and used as they stand; a backslash is part of a name.
///
/// Use one object per file: Open(), Write() and Read() do not close the file that an earlier one
/// opened, which stays open until the object is destroyed. Use an object on one thread. Every
/// file is opened for reading and writing, so one that cannot be written cannot be read either.
///
/// Nothing throws but std::bad_alloc out of the platform's handling of paths, which Replace() takes
/// for a failure like others.
class ORVO_EXPORT CQZipFile
{
public:
    /// An object without a file.
    CQZipFile();
    /// Closes every file that is still open.
    virtual ~CQZipFile();
    CQZipFile(const CQZipFile&) = delete;
    CQZipFile& operator=(const CQZipFile&) = delete;

    /// Closes the file of the last Open(), Write() or Read(); nothing when there is none.
    virtual void Close();

    /// Reads the block into the buffer at \a *data, which the caller has made large enough for
    /// it: the size of the buffer is not known here and not checked. Where the content does not
    /// come from a trusted source use one of the other two forms. A null \a *data takes
    /// nothing, and only the length is told.
    ///
    /// A missing file is created, empty. A file that does not hold a compressed block gives
    /// \a *length 0 and, like an empty block, the result 1; so does a length field that is
    /// beyond 2^31 - 1 or beyond what the stream could expand to, whatever the stream holds.
    /// \param length  receives the length of the block.
    /// \return  1; 0, with nothing changed, when the file cannot be opened, when it is a device, a
    ///          pipe or the like, without memory, or when \a data or \a length is null.
    virtual int Read(unsigned char** data, int* length, wchar_t const* path);

    /// Writes the \a *length bytes at \a *data in compressed form from the start of the file,
    /// which is created when it is missing and not cut when it was longer: old bytes may stay
    /// behind the new content, and readers ignore them. The bytes have reached the platform when
    /// the call returns; whether all of them have, only HasFailed() tells.
    /// \return  1; 0, with nothing changed, when the file cannot be opened, also where it may be
    ///          read but not written, without memory, for null and for a negative length.
    virtual int Write(unsigned char** data, int* length, wchar_t const* path);

    /// The longest block that is read where nothing else is said: 128 MB.
    static constexpr int enMaxBlockLength = 128 * 1024 * 1024;
    /// Reads the block into \a data, which takes exactly its length. A missing file is created,
    /// empty. Whatever the file holds, no more memory is taken than \a maxLength bytes and a MiB.
    /// \return  1; 0 with \a data unchanged when the file cannot be opened and without memory; 0
    ///          with \a data empty when the file does not hold a compressed block, which an empty
    ///          file does not, or one of more than \a maxLength bytes.
    int Read(QByteArray& data, wchar_t const* path, int maxLength = enMaxBlockLength);
    /// The same into the \a size bytes at \a data; \a length receives the length of the block.
    /// \return  1; 0 with nothing changed for null, when the file cannot be opened, and when it
    ///          does not hold a compressed block, or one of more than \a size bytes.
    int Read(unsigned char* data, int size, int* length, wchar_t const* path);

    /// Makes the \a length bytes at \a data, compressed, the whole content of the file at
    /// \a path, in such a way that a fault at any point leaves the old content or the new one:
    /// see CQSaveFile. The current file is not concerned. HasFailed() tells the same as the result.
    /// \return  1 when the new content stands on the disk; else 0, also for null and for a
    ///          negative length.
    int Replace(const unsigned char* data, int length, wchar_t const* path);

    /// Opens \a path for reading and writing and makes it the current file; creates it when it is
    /// missing, but not its directory.
    /// \return  1 when it is open, else 0.
    int Open(wchar_t const* path);

    /// Whether, since the last open, anything handed over did not reach the platform or anything
    /// asked for could not be read; stays true after Close(). It counts refused arguments, an
    /// open that gave 0, a file that holds no compressed block (an empty one does not), and what
    /// writing, Sync() and Close() report, also where the result is 1.
    bool HasFailed() const;
    /// Waits until what was written to the current file has reached the disk, and with it the
    /// name of a file that was created.
    /// \return  false when no file is open and when HasFailed().
    bool Sync();

private:
    QFile* m_pFile; // file of the last Open, or null; it owns earlier ones
    bool m_bFailed;
    QStringList m_dirsToSync; // absolute; they got new entries when the file was made
};
