#include "FileOutputStream.h"

#include "CQFile.h"

namespace OrvoStream
{

FileOutputStream::FileOutputStream(const CQWString& path) : m_strPath(path) {}

FileOutputStream::~FileOutputStream()
{
    FileOutputStream::Close();
}

void FileOutputStream::Close()
{
    if (m_pFile) {
        m_pFile->Close();
        m_pFile.reset();
    }
}

void FileOutputStream::SaveBuffer(char const* data, int len)
{
    if (data == nullptr || len <= 0) {
        return;
    }
    if (!m_pFile) {
        m_pFile = std::make_unique<CQFile>();
        // A file that did not open stays and refuses what follows: a stream that has lost one
        // block must not go on with the next.
        if (!m_pFile->Open(m_strPath.GetDataPtr(), 1)) {
            return;
        }
    }
    m_pFile->WriteData(data, static_cast<unsigned int>(len));
}

} // namespace OrvoStream
