#include "FileInputStream.h"

#include "CQFile.h"

#include <algorithm>
#include <new>

namespace OrvoStream
{

namespace
{

// Null when the file does not open, for want of memory too.
std::unique_ptr<CQFile> Open(const CQWString& path)
{
    try {
        auto file = std::make_unique<CQFile>();
        return file->Open(path.GetDataPtr(), 0) ? std::move(file) : nullptr;
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

} // namespace

FileInputStream::FileInputStream(const CQWString& path) : m_strPath(path) {}

FileInputStream::~FileInputStream()
{
    FileInputStream::Close();
}

int FileInputStream::Read(char* dest, int len)
{
    const int count = CIStream::Read(dest, len);
    if (count < len && dest != nullptr && !HasBuffer(*this)) {
        m_record = {false, true};
    }
    return count;
}

int FileInputStream::Available()
{
    // The length of the file is no answer: it is not what is left, and callers count on 0.
    return 0;
}

void FileInputStream::Close()
{
    if (m_pFile) {
        m_pFile->Close();
        m_pFile.reset();
    }
    m_record.isClosed = true;
}

int FileInputStream::LoadBuffer(char* dest, int len)
{
    if (m_record.isClosed) {
        m_record = {};
    }
    if (!m_pFile) {
        m_pFile = Open(m_strPath);
    }
    if (!m_pFile) {
        m_record.hasFailed = true;
        return 0;
    }
    const int count = m_pFile->Read(dest, static_cast<unsigned int>(std::max(len, 0)));
    // The base does not serve the bytes of a refill from where they are put.
    const bool isMisread = count > 0 && IsRefill(*this, dest);
    m_record.hasFailed |= isMisread || m_pFile->HasFailed();
    return count;
}

} // namespace OrvoStream
