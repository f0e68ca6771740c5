#include "FileOutputStream.h"

#include "CQFile.h"

#include <new>

namespace OrvoStream
{

namespace
{

// Opens the file, if that is still to be done, and writes one block. False when it was not written
// whole, for want of memory too.
bool WriteBlock(std::unique_ptr<CQFile>& file, const CQWString& path, char const* data,
                unsigned int len)
{
    try {
        if (!file) {
            file = std::make_unique<CQFile>();
            if (!file->Open(path.GetDataPtr(), 1)) {
                return false;
            }
        }
        file->WriteData(data, len);
        return !file->HasFailed();
    } catch (const std::bad_alloc&) {
        return false;
    }
}

// False when not all of it reached the system, for want of memory too.
bool CloseFile(CQFile& file)
{
    try {
        file.Close();
        return !file.HasFailed();
    } catch (const std::bad_alloc&) {
        return false;
    }
}

} // namespace

FileOutputStream::FileOutputStream(const CQWString& path) : m_strPath(path) {}

FileOutputStream::~FileOutputStream()
{
    FileOutputStream::Close();
}

int FileOutputStream::Write(char const* data, int len)
{
    const int position = COStream::Write(data, len);
    if (position <= 0 && !HasTaken(*this, position, len)) {
        if (m_record.isClosed) {
            m_record = {};
        }
        m_record.hasFailed = true;
    }
    return position;
}

void FileOutputStream::Close()
{
    if (m_pFile) {
        m_record.hasFailed |= !CloseFile(*m_pFile);
        m_pFile.reset();
    }
    m_record.isClosed = true;
}

void FileOutputStream::SaveBuffer(char const* data, int len)
{
    if (data == nullptr || len <= 0) {
        return;
    }
    if (m_record.isClosed) {
        m_record = {};
    }
    if (!m_record.hasLost &&
        !WriteBlock(m_pFile, m_strPath, data, static_cast<unsigned int>(len))) {
        m_record.hasLost = m_record.hasFailed = true;
    }
}

} // namespace OrvoStream
