#pragma once

#include "CIStream.h"
#include "CQWString.h"
#include "OrvoExport.h"

#include <memory>

class CQFile;

namespace OrvoStream
{

/// Reads a file through the buffer of CIStream.
///
/// The file is opened at the first read, not by the constructor: a path that cannot be opened
/// shows as refused reads, and the open is tried again at each of them. The reads of a stream whose
/// first open failed are refused for good, though, even when a later one succeeds: it asks only for
/// as many bytes as had been read. Opening goes through CQFile::Open(), which removes a file that
/// exists and cannot be opened. Nothing throws.
class ORVO_EXPORT FileInputStream : public CIStream
{
public:
    /// Keeps a copy of \a path; see CQFile for the form of paths.
    explicit FileInputStream(const CQWString& path);
    /// Closes the file.
    ~FileInputStream() override;

    /// As CIStream::Read(); what is refused for want of memory is kept for HasFailed().
    int Read(char* dest, int len) override;
    /// Always 0, whatever is left: callers cannot learn the remaining length from this stream.
    int Available() override;
    /// Closes the file. What is buffered stays readable; a later load opens the file again and
    /// starts at its first byte.
    void Close() override;
    /// The result of CQFile::Read() from the current position; 0 when the file cannot be opened,
    /// for want of memory too.
    int LoadBuffer(char* dest, int len) override;

    /// True once the file could not be opened or read, also for want of memory, or is longer than
    /// what the first load brought and was read on from there: what Read() gives then is not what
    /// the file holds. It stays so after Close(), until the file is opened anew. The end of the
    /// file is no failure.
    bool HasFailed() const { return m_record.hasFailed; }

private:
    std::unique_ptr<CQFile> m_pFile; // null unless open
    CQWString m_strPath;
    struct {
        bool isClosed = false; // the next load begins a new record
        bool hasFailed = false;
    } m_record;
};

} // namespace OrvoStream
