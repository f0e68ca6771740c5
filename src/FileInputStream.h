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
/// shows as refused reads only, and the open is tried again at each of them. Opening goes through
/// CQFile::Open(), which removes a file that exists and cannot be opened.
class ORVO_EXPORT FileInputStream : public CIStream
{
public:
    /// Keeps a copy of \a path; see CQFile for the form of paths.
    explicit FileInputStream(const CQWString& path);
    /// Closes the file.
    ~FileInputStream() override;

    /// Always 0, whatever is left: callers cannot learn the remaining length from this stream.
    int Available() override;
    /// Closes the file. What is buffered stays readable; a later load opens the file again and
    /// starts at its first byte.
    void Close() override;
    /// The result of CQFile::Read() from the current position; 0 when the file cannot be opened.
    int LoadBuffer(char* dest, int len) override;

private:
    std::unique_ptr<CQFile> m_pFile; // null unless open
    CQWString m_strPath;
};

} // namespace OrvoStream
