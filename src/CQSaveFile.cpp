#include "CQSaveFile.h"

#include "PathText.h"
#include "SafeSave.h"

#include <QSaveFile>

#include <new>

namespace
{

// False also where the platform has no memory for what it gathers.
bool TakesWhole(QSaveFile& file, const void* data, unsigned int length)
{
    try {
        return file.write(static_cast<const char*>(data), length) == length;
    } catch (const std::bad_alloc&) {
        return false;
    }
}

bool IsCommitted(QSaveFile& file)
{
    try {
        return SafeSave::Commit(file);
    } catch (const std::bad_alloc&) {
        return false;
    }
}

} // namespace

CQSaveFile::CQSaveFile() : m_bFailed(false) {}

CQSaveFile::~CQSaveFile() = default;

int CQSaveFile::Open(const wchar_t* path)
{
    m_bFailed = true;
    m_pFile.reset();
    if (path == nullptr) {
        return 0;
    }
    auto file = std::make_unique<QSaveFile>();
    if (!SafeSave::Open(*file, PathText::SlashedFromWide(path))) {
        return 0;
    }
    m_pFile = std::move(file);
    m_bFailed = false;
    return 1;
}

int CQSaveFile::Write(const void* data, unsigned int length)
{
    if (length == 0 && m_pFile != nullptr) {
        return 1;
    }
    const bool written =
        m_pFile != nullptr && data != nullptr && TakesWhole(*m_pFile, data, length);
    m_bFailed = m_bFailed || !written;
    return written ? 1 : 0;
}

int CQSaveFile::Commit()
{
    const bool committed = m_pFile != nullptr && !m_bFailed && IsCommitted(*m_pFile);
    m_pFile.reset();
    m_bFailed = m_bFailed || !committed;
    return committed ? 1 : 0;
}

bool CQSaveFile::HasFailed() const
{
    return m_bFailed;
}
