#pragma once

#include "CQSString.h"
#include "OrvoExport.h"

#include <QFile>
#include <QString>
#include <QStringList>

class CMLDataBuf;
class CQWString;
class QTime;

/// Record of CQFile::GetFileUID(), which this platform does not support.
struct CQFileUID {
};

/// One open file with an optional write cache, and the operations on the file system that need
/// no open file.
///
/// The object keeps the calling style of the older platform: mode codes for opening, origin codes
/// for seeking, and plain integer results, 1 for success and 0 for failure where nothing else is
/// said. Nothing throws but std::bad_alloc, out of the platform's own handling of paths and names.
/// Backslashes in a path count as slashes where nothing else is said. Wide paths are 32-bit units,
/// 8-bit paths UTF-8, both zero-terminated.
///
/// A path that begins with a colon names a resource built into the program, as everywhere in Qt:
/// it can be read and asked about, and nothing else; write "./:name" for such a file. Names on the
/// disk that are not UTF-8 cannot be named, do not appear in listings, and keep the directory that
/// they stand in from being removed.
///
/// | Mode | Opens for | Missing file | Existing file |
/// |---|---|---|---|
/// | 0 | reading | fails | kept |
/// | 1 | writing | made | emptied |
/// | 2 | reading and writing | made | kept |
/// | 3 | appending | made | kept, writes go to its end |
///
/// Close an object before it is opened again: an open does not look at what is open already.
///
/// Positions and lengths are signed 32-bit numbers; of a file of 2 GiB or more they carry the low
/// 32 bits. One object must not be used from two threads at once; the static operations keep no
/// state.
class ORVO_EXPORT CQFile
{
public:
    /// An object without an open file.
    CQFile();
    /// Closes the file, and drops what the write cache still holds: callers that use one call
    /// Close() themselves.
    virtual ~CQFile();

    /// Opens \a path in \a mode (see the table). To write, missing parent directories are made
    /// with MakeDir(). 0 for null, for a mode above 3 and when the file cannot be opened.
    ///
    /// An existing file that cannot be opened is removed and the open is tried again, in every
    /// mode: to write, a new and empty file takes its place; to read, the open fails and the file
    /// stays deleted. Callers rely on getting rid of damaged files this way. It also hits a healthy
    /// file that may only be read, in the modes that write, and any file while the process has no
    /// descriptor left: what must not be lost is asked about first, or kept with CQSaveFile.
    ///
    /// Parents of a relative path are made as MakeDir() makes them, inside the directory that the
    /// path leads to: "a/b/file" fails where a/b is missing, and where only the file is, it leaves
    /// a/b/a/b behind.
    /// @{
    virtual int Open(const wchar_t* path, unsigned int mode);
    virtual int Open(CQSString& path, unsigned int mode);
    /// @}
    /// Opens \a path as Open() does and then gathers writes in a cache of \a cacheSize bytes,
    /// unless the mode is 0, the size is below 1 or there is no memory for it. A cache left from
    /// an earlier open is dropped unwritten. 1 when the file is open, with a cache or without.
    virtual int OpenWithWriteCache(const wchar_t* path, unsigned int mode, int cacheSize);
    /// Writes out and frees the cache, then closes the file. Harmless when nothing is open.
    virtual void Close();
    /// Reads up to \a length bytes, at most 2^31 - 1.
    /// \return  the number of bytes read; 0 at the end, for a platform error, of which want of
    ///          memory is one, and always from a file opened to append; -1 for null, for a length
    ///          of 0, when the file is not open or was opened with mode 1.
    virtual int Read(void* buffer, unsigned int length);
    /// Writes through the cache if there is one.
    ///
    /// Data that would fill or overflow the cache first sends what it holds to the file, and that
    /// write is not reported when it fails; data larger than the whole cache then goes to the
    /// file directly. So a write of exactly the free space starts the cache anew.
    /// \return  the number of bytes accepted; 0 for null or a length of 0; -1 when the file is
    ///          not open or was opened with mode 0, or when the direct write failed, for want of
    ///          memory too.
    virtual int Write(const void* data, unsigned int length);
    /// Moves the position to \a offset from the start (\a origin 0), the current position (1) or
    /// the end (2). The sum is formed in 32 bits and wraps. Bytes in the cache do not count. 0
    /// when the file is not open, for another origin and for a target before the start.
    virtual int Seek(int offset, unsigned int origin);
    /// Length of the file, without what the cache holds; 0 when not open.
    virtual int GetLength() const;
    /// Not supported: asserts "0" and returns 0 with \a time untouched.
    virtual int GetModifiedTime(QTime& time) const;
    /// Cuts or extends the file to \a size bytes and leaves the position where it is. 0 when not
    /// open or refused by the platform.
    virtual int SetSize(int size);

    /// The open that the other forms end in. Backslashes in \a path become slashes in place, also
    /// when the open is refused.
    int Open(QString& path, unsigned int mode);
    /// Writes past the cache and flushes to the system, at most 2^31 - 1 bytes. The results of
    /// Write(), but unsigned: -1 is all bits set. A short block on a full disk counts as written:
    /// what the flush reports is not part of the result.
    unsigned int WriteData(const void* data, unsigned int length);
    /// Moves the position to the start; 0 when not open.
    int SeekToBegin();
    /// Moves the position to the end; 0 when not open.
    int SeekToEnd();

    /// Whether, since the last open, anything handed over did not reach the platform or anything
    /// asked for could not be read; stays true after Close(). It counts an open that gave 0 or
    /// that removed content it was to keep, refused and short writes, cached bytes that were
    /// dropped or did not get through, and what flushing, Sync() and Close() report, also where
    /// the result of the operation says nothing of it. The end of the file does not count, nor
    /// does a refused seek or size.
    bool HasFailed() const;
    /// Writes out the cache and waits until what was written since the open has reached the disk,
    /// and with it the names of the file and of the directories that the open has made.
    /// \return  false when not open and when HasFailed().
    bool Sync();

    // Asking about files

    /// 1 when \a path names a file or a directory, not a dangling link; 0 for null and empty.
    static int IsFileExist(const wchar_t* path);
    /// Not supported: asserts "0" and returns 0.
    static int IsFileExist(const wchar_t* dir, const wchar_t* name);
    /// 1 when \a path begins with a letter from C to Z of either case, a colon and a slash. A and
    /// B, which were floppy drives, do not count, nor does a backslash.
    static int IsLocalPath(const char* path);
    /// Sets \a name to what follows the last slash of \a path, or to all of it. 0 for null and
    /// empty, without memory, and, with \a name emptied, for a path that ends with a slash.
    static int GetFileName(const CQWString* path, CQWString& name);
    /// The same up to the last dot: "b.tar" of "/a/b.tar.gz". When the last dot of the whole path
    /// stands in a directory name, \a name is emptied and the result is 0.
    static int GetFileNameWithoutExtension(const CQWString* path, CQWString& name);
    /// Size of a file in bytes, -1 when it does not exist, for a dangling link and for null. Unlike
    /// everywhere else backslashes are taken as they are. The spelling is part of the interface.
    /// @{
    static int GetFileLenght(const wchar_t* path);
    static int GetFileLenght(const CQWString& path);
    /// Of \a dir and \a name put together; \a dir ends with its separator.
    static int GetFileLenght(const wchar_t* dir, const wchar_t* name);
    /// @}
    /// Not supported: each asserts "0" and returns 0.
    /// @{
    static int IsValidName(const wchar_t* name);
    static int IsValidFileName(const wchar_t* name);
    static int GetFileUID(const wchar_t* path, CQFileUID& uid);
    /// @}

    // Files

    /// Removes a file. 0 for null and when nothing was removed.
    static int DeleteFile(const wchar_t* path);
    /// Of \a dir and \a name put together; \a dir ends with its separator.
    static int DeleteFile(const wchar_t* dir, const wchar_t* name);
    /// Copies a file. Whatever stands at \a to, a dangling link too, is neither replaced nor
    /// written through. 0 for null, empty, and failure.
    static int CopyFile(const wchar_t* from, const wchar_t* to);
    /// The same with directory and name put together on each side; a missing \a toDir is made
    /// with its parents. -1 when any argument is null.
    static int CopyFile(const wchar_t* fromDir, const wchar_t* fromName, const wchar_t* toDir,
                        const wchar_t* toName);
    /// Renames or moves a file. Whatever stands at \a to, a dangling link too, is neither replaced
    /// nor written through. To another file system it is copied, and the source is removed only
    /// after content and permissions have reached the disk there; 0 leaves the source untouched
    /// and no target. 0 for null, empty, and failure.
    static int RenameFile(const wchar_t* from, const wchar_t* to);

    // Directories

    /// Makes a directory with all its parents; 1 also when it existed. 0 for null and failure.
    static int CreateDirectory(const wchar_t* path);
    /// Makes a directory with all its parents, one after the other. Meant for absolute paths: the
    /// parts of a relative one are looked up and made inside the directory that \a path names.
    /// 1 also for an empty path; 0 when a part could not be made.
    static int MakeDir(QString path);
    /// Removes an empty directory. 0 when it does not exist or is not empty.
    static int DelDir(const wchar_t* path);
    /// Removes a directory with everything in it; 1 when all of it is gone. Links, special files
    /// and names that are not UTF-8, most of which no listing shows a client, are left, and their
    /// directories with them; a \a path that is a link itself stays, but what it leads to is
    /// emptied. The walk stops at the first entry that cannot be removed; what was removed before
    /// stays removed. It never leaves the directory, even where others replace parts of it by
    /// links meanwhile. Want of memory stops it in the same way, or throws. 0 for null and empty.
    static int RecursiveDelDir(const wchar_t* path);
    /// Renames or moves a directory, not to another file system; a file as RenameFile() does. 0
    /// when \a from does not exist. The last argument is ignored.
    static int RenameDir(const wchar_t* from, const wchar_t* to, unsigned int);
    /// Lists the files of \a dir, and its directories when \a withDirs, by name and ignoring
    /// case; hidden ones, special files and links that lead nowhere are left out. An empty \a dir
    /// is the current directory.
    /// \param ext   when not empty, only names that end with a dot and this text, any case.
    /// \param list  receives an array of the names, without the directory, or null when there are
    ///              none. The caller frees it as an array.
    /// \return  the length of the array; 0 for null \a list and without memory. Where the platform
    ///          lacks memory meanwhile, and so this throws, it may lose a descriptor.
    static int GetDirFileList(CQWString& dir, CQWString& ext, bool withDirs, CQWString** list);

private:
    quint32 m_dwMode; // 0 read, 1 write, 2 read and write, 4 append, as last asked for
    QFile m_file;
    quint8 m_bCacheEnabled;
    CMLDataBuf* m_pCache; // owned, or null
    quint8 m_bOpened;
    CQSString m_strName; // unused; it keeps the places of what stands before
    bool m_bFailed;
    QStringList m_dirsToSync; // absolute; they got new entries when the file was made
};
