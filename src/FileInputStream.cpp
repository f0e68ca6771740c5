#include "FileInputStream.h"

#include "CQFile.h"

#include <algorithm>

namespace OrvoStream
{

FileInputStream::FileInputStream(const CQWString& path) : m_strPath(path) {}

FileInputStream::~FileInputStream()
{
    FileInputStream::Close();
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
}

int FileInputStream::LoadBuffer(char* dest, int len)
{
    if (!m_pFile) {
        auto file = std::make_unique<CQFile>();
        if (!file->Open(m_strPath.GetDataPtr(), 0)) {
            return 0;
        }
        m_pFile = std::move(file);
    }
    return m_pFile->Read(dest, static_cast<unsigned int>(std::max(len, 0)));
}

} // namespace OrvoStream
