#pragma once

#include "COStream.h"
#include "CQWString.h"
#include "OrvoExport.h"

#include <memory>

class CQFile;

namespace OrvoStream
{

/// Writes a file through the buffer of COStream.
///
/// The order of use is: write, Flush(), then Close() or destruction. What was written after the
/// last flush is lost.
///
/// The file is made, or emptied, at the first flush that has something to write, not by the
/// constructor, so a stream that is never flushed leaves an existing file as it is. Write(),
/// Flush() and Close() report nothing when it cannot be opened or written: HasFailed() does.
///
/// Once a block is lost, no later one is written before Close(): what is in the file is the
/// beginning of what was written, without a gap. Nothing throws after the constructor.
class ORVO_EXPORT FileOutputStream : public COStream
{
public:
    /// Keeps a copy of \a path; see CQFile for the form of paths. Missing directories are made
    /// when the file is.
    explicit FileOutputStream(const CQWString& path);
    /// Closes the file without a flush.
    ~FileOutputStream() override;

    /// As COStream::Write(), whose refusals it keeps for HasFailed().
    int Write(char const* data, int len) override;
    /// Closes the file without a flush. A later flush makes it anew, empty.
    void Close() override;
    /// Writes \a len bytes past all buffers; nothing for null and for a length below 1. An open
    /// that failed is not tried again before Close(), nor is anything written behind a lost block.
    void SaveBuffer(char const* data, int len) override;

    /// True once a Write() was refused, the file could not be opened, or a block did not reach the
    /// system whole. It stays so after Close(), until the stream is used for a file anew. What was
    /// written after the last Flush() does not count.
    bool HasFailed() const { return m_record.hasFailed; }

private:
    std::unique_ptr<CQFile> m_pFile; // null before the first save
    CQWString m_strPath;
    struct {
        bool isClosed = false; // the next use begins a new record
        bool hasLost = false;  // a block
        bool hasFailed = false;
    } m_record;
};

} // namespace OrvoStream
