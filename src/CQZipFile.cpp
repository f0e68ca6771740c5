#include "CQZipFile.h"

#include "BlockReader.h"
#include "DiskSync.h"
#include "PathText.h"
#include "SafeSave.h"

#include <QByteArray>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <algorithm>
#include <limits>
#include <memory>
#include <new>

#include <sys/stat.h>

namespace
{

std::unique_ptr<QFile> MakeFile(wchar_t const* path)
{
    try {
        return std::make_unique<QFile>(PathText::FromWide(path));
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

QByteArray CompressedOrEmpty(const unsigned char* data, int length)
{
    try {
        return qCompress(data, length);
    } catch (const std::bad_alloc&) {
        return QByteArray();
    }
}

// Only a file has an end to read to.
bool MayBeRead(wchar_t const* path)
{
    try {
        struct stat info;
        return stat(QFile::encodeName(PathText::FromWide(path)).constData(), &info) != 0 ||
               S_ISREG(info.st_mode);
    } catch (const std::bad_alloc&) {
        return false;
    }
}

// Makes pFile the current one. The one before it stays open, as callers know it, and becomes a
// child of the new one. When it is closed already it goes, and only its own child moves up: the
// chain never gets longer than the list of open files.
void Adopt(QFile*& pCurrent, QFile* pFile)
{
    if (pCurrent != nullptr && pCurrent->isOpen()) {
        pCurrent->setParent(pFile);
    } else if (pCurrent != nullptr) {
        const QObjectList earlierFiles = pCurrent->children();
        for (QObject* earlier : earlierFiles) {
            earlier->setParent(pFile);
        }
        delete pCurrent;
    }
    pCurrent = pFile;
}

} // namespace

CQZipFile::CQZipFile() : m_pFile(nullptr), m_bFailed(false) {}

CQZipFile::~CQZipFile()
{
    delete m_pFile;
}

void CQZipFile::Close()
{
    if (m_pFile != nullptr && m_pFile->isOpen()) {
        m_pFile->close();
        m_bFailed = m_bFailed || m_pFile->error() != QFileDevice::NoError;
    }
}

bool CQZipFile::Sync()
{
    if (m_pFile == nullptr || !m_pFile->isOpen()) {
        return false;
    }
    if (!m_pFile->flush() || !DiskSync::File(m_pFile->handle()) ||
        !DiskSync::Directories(m_dirsToSync)) {
        m_bFailed = true;
    } else {
        m_dirsToSync.clear();
    }
    return !m_bFailed;
}

bool CQZipFile::HasFailed() const
{
    return m_bFailed;
}

int CQZipFile::Open(wchar_t const* path)
{
    m_bFailed = true;
    m_dirsToSync.clear();
    std::unique_ptr<QFile> file = path != nullptr ? MakeFile(path) : nullptr;
    if (file == nullptr) {
        return 0;
    }
    Adopt(m_pFile, file.release());
    // Not QIODevice::Text, which drops bytes of the value 0x0D on reading.
    if (!m_pFile->open(QIODevice::ReadWrite)) {
        return 0;
    }
    if (m_pFile->size() == 0) { // it may be new
        m_dirsToSync << QFileInfo(*m_pFile).absolutePath();
    }
    m_bFailed = false;
    return 1;
}

int CQZipFile::Read(unsigned char** data, int* length, wchar_t const* path)
{
    if (data == nullptr || length == nullptr || !MayBeRead(path) || Open(path) == 0) {
        m_bFailed = true;
        return 0;
    }
    QByteArray block;
    const BlockResult result = ReadBlock(*m_pFile, std::numeric_limits<int>::max(), block);
    m_bFailed = result != BlockResult::Whole;
    if (result == BlockResult::NoMemory) {
        return 0;
    }
    if (*data != nullptr) {
        std::copy(block.cbegin(), block.cend(), *data);
    }
    *length = static_cast<int>(block.size());
    return 1;
}

int CQZipFile::Read(QByteArray& data, wchar_t const* path, int maxLength)
{
    if (!MayBeRead(path) || Open(path) == 0) {
        m_bFailed = true;
        return 0;
    }
    const BlockResult result = ReadBlock(*m_pFile, maxLength, data);
    m_bFailed = result != BlockResult::Whole;
    if (result == BlockResult::NoBlock) {
        data = QByteArray();
    }
    return m_bFailed ? 0 : 1;
}

int CQZipFile::Read(unsigned char* data, int size, int* length, wchar_t const* path)
{
    QByteArray block;
    if (data == nullptr || length == nullptr || Read(block, path, size) == 0) {
        m_bFailed = true;
        return 0;
    }
    std::copy(block.cbegin(), block.cend(), data);
    *length = static_cast<int>(block.size());
    return 1;
}

int CQZipFile::Write(unsigned char** data, int* length, wchar_t const* path)
{
    if (data == nullptr || *data == nullptr || length == nullptr || *length < 0) {
        m_bFailed = true;
        return 0;
    }
    const QByteArray compressed = CompressedOrEmpty(*data, *length);
    if (compressed.isEmpty() || Open(path) == 0) {
        m_bFailed = true;
        return 0;
    }
    const qint64 written = m_pFile->write(compressed);
    const bool flushed = m_pFile->flush();
    m_bFailed = written != compressed.size() || !flushed;
    return 1;
}

int CQZipFile::Replace(const unsigned char* data, int length, wchar_t const* path)
{
    m_bFailed = true;
    if (data == nullptr || length < 0 || path == nullptr) {
        return 0;
    }
    const QByteArray compressed = CompressedOrEmpty(data, length);
    QSaveFile file;
    m_bFailed = compressed.isEmpty() || !SafeSave::Open(file, PathText::FromWide(path)) ||
                file.write(compressed) != compressed.size() || !SafeSave::Commit(file);
    return m_bFailed ? 0 : 1;
}
