#pragma once

#include "OrvoExport.h"

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
/// opened, which stays open until the object is destroyed. Use an object on one thread.
class ORVO_EXPORT CQZipFile
{
public:
    CQZipFile();
    /// Closes every file that is still open.
    virtual ~CQZipFile();
    CQZipFile(const CQZipFile&) = delete;
    CQZipFile& operator=(const CQZipFile&) = delete;

    /// Closes the file of the last Open(), Write() or Read(); nothing when there is none.
    virtual void Close();

    /// Reads the block into the buffer at \a *data, which the caller has made large enough for
    /// it: the size of the buffer is not known here and not checked. Where the content does not
    /// come from a trusted source use Read(QByteArray&, const wchar_t*). A null \a *data takes
    /// nothing, and only the length is told.
    ///
    /// A missing file is created, empty. A file that does not hold a compressed block gives
    /// \a *length 0 and, like an empty block, the result 1; so does a length field that is
    /// beyond 2^31 - 1 or beyond what the stream could expand to, whatever the stream holds.
    /// \param length  receives the length of the block.
    /// \return  1; 0, with nothing changed, when the file cannot be opened, or when \a data or
    ///          \a length is null.
    virtual int Read(unsigned char** data, int* length, wchar_t const* path);

    /// Writes the \a *length bytes at \a *data in compressed form from the start of the file,
    /// which is created when it is missing and not cut when it was longer: old bytes may stay
    /// behind the new content, and readers ignore them. The bytes have reached the platform when
    /// the call returns, but a write that failed (a full disk) is not reported.
    /// \return  1; 0, with nothing changed, when the file cannot be opened, for null and for a
    ///          negative length.
    virtual int Write(unsigned char** data, int* length, wchar_t const* path);

    /// Reads the block into \a data, which takes exactly its length. A missing file is created,
    /// empty.
    /// \return  1; 0 with \a data unchanged when the file cannot be opened; 0 with \a data empty
    ///          when it does not hold a compressed block, which an empty file does not.
    int Read(QByteArray& data, wchar_t const* path);

    /// Opens \a path for reading and writing and makes it the current file; creates it when it is
    /// missing, but not its directory.
    /// \return  1 when it is open, else 0.
    int Open(wchar_t const* path);

private:
    void Adopt(QFile* pFile);

    QFile* m_pFile; // file of the last Open, or null; earlier ones are its children
};
