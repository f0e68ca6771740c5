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
#include <utility>

#include <sys/stat.h>

namespace
{

// A file and those that were opened before it and are open still. Not by means of parents and
// children, which take memory that there may not be.
struct OpenFile : QFile {
    using QFile::QFile;

    std::unique_ptr<OpenFile> earlier;
};

std::unique_ptr<OpenFile> MakeFile(wchar_t const* path)
{
    try {
        return std::make_unique<OpenFile>(PathText::FromWide(path));
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

// Makes the file the current one. The one before it stays open, as callers know it. When it is
// closed already it goes, and only those before it move up: the chain never gets longer than the
// list of open files.
void Adopt(QFile*& pCurrent, std::unique_ptr<OpenFile> file)
{
    std::unique_ptr<OpenFile> before(static_cast<OpenFile*>(pCurrent));
    const bool isKept = before != nullptr && before->isOpen();
    file->earlier = isKept || before == nullptr ? std::move(before) : std::move(before->earlier);
    pCurrent = file.release();
}

bool ReplaceContent(const QByteArray& content, const wchar_t* path)
{
    try {
        QSaveFile file;
        return SafeSave::Open(file, PathText::FromWide(path)) &&
               file.write(content) == content.size() && SafeSave::Commit(file);
    } catch (const std::bad_alloc&) {
        return false;
    }
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
    const bool hadFailed = std::exchange(m_bFailed, true); // an exception is a failure too
    if (m_pFile->flush() && DiskSync::File(m_pFile->handle()) &&
        DiskSync::Directories(m_dirsToSync)) {
        m_dirsToSync.clear();
        m_bFailed = hadFailed;
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
    std::unique_ptr<OpenFile> file = path != nullptr ? MakeFile(path) : nullptr;
    if (file == nullptr) {
        return 0;
    }
    Adopt(m_pFile, std::move(file));
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
    m_bFailed = true;
    try {
        const qint64 written = m_pFile->write(compressed);
        const bool flushed = m_pFile->flush();
        m_bFailed = written != compressed.size() || !flushed;
        return 1;
    } catch (const std::bad_alloc&) {
        return 0; // nothing was written: the platform had no memory for what it gathers
    }
}

int CQZipFile::Replace(const unsigned char* data, int length, wchar_t const* path)
{
    m_bFailed = true;
    if (data == nullptr || length < 0 || path == nullptr) {
        return 0;
    }
    const QByteArray compressed = CompressedOrEmpty(data, length);
    m_bFailed = compressed.isEmpty() || !ReplaceContent(compressed, path);
    return m_bFailed ? 0 : 1;
}
