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
/// constructor, so a stream that is never flushed leaves an existing file as it is. Nothing is
/// reported when it cannot be opened or written: callers that must know look at the file
/// afterwards.
class ORVO_EXPORT FileOutputStream : public COStream
{
public:
    /// Keeps a copy of \a path; see CQFile for the form of paths. Missing directories are made
    /// when the file is.
    explicit FileOutputStream(const CQWString& path);
    /// Closes the file without a flush.
    ~FileOutputStream() override;

    /// Closes the file without a flush. A later flush makes it anew, empty.
    void Close() override;
    /// Writes \a len bytes past all buffers; nothing for null and for a length below 1. An open
    /// that failed is not tried again before Close().
    void SaveBuffer(char const* data, int len) override;

private:
    std::unique_ptr<CQFile> m_pFile; // null before the first save
    CQWString m_strPath;
};

} // namespace OrvoStream
