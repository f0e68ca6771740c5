#include "CQFile.h"

#include "MLDataBuf.h"
#include "OrvoAssert.h"
#include "PathText.h"

#include <algorithm>
#include <climits>
#include <iterator>
#include <memory>
#include <new>

namespace
{

constexpr quint32 StoredRead = 0;
constexpr quint32 StoredWrite = 1;

struct OpenModeRow {
    quint32 stored;
    QIODevice::OpenMode flags;
};

// Indexed by the callers' mode code. Append is stored as 4: the other operations refuse by the
// stored codes 0 and 1 only, so that an appending file passes both tests.
constexpr OpenModeRow OpenModes[] = {
    {StoredRead, QIODevice::ReadOnly},
    {StoredWrite, QIODevice::WriteOnly | QIODevice::Truncate},
    {2, QIODevice::ReadWrite},
    {4, QIODevice::Append},
};

// Counts reach callers as int.
qint64 Bounded(unsigned int length)
{
    return std::min<qint64>(length, INT_MAX);
}

quint32 Low32(qint64 value)
{
    return static_cast<quint32>(value);
}

QString ParentPath(const QString& path)
{
    return path.left(std::max<int>(0, static_cast<int>(path.lastIndexOf(QLatin1Char('/')))));
}

} // namespace

CQFile::CQFile() : m_dwMode(StoredRead), m_bCacheEnabled(0), m_pCache(nullptr), m_bOpened(0) {}

CQFile::~CQFile()
{
    // Before Close(), which would write it out: a file that its user did not close loses what was
    // cached.
    delete m_pCache;
    m_pCache = nullptr;
    CQFile::Close();
}

int CQFile::Open(QString& path, unsigned int mode)
{
    path = PathText::Slashed(path);
    if (mode >= std::size(OpenModes)) {
        return 0;
    }
    const OpenModeRow& row = OpenModes[mode];
    m_dwMode = row.stored;
    m_file.setFileName(path);
    const bool opened =
        QFile::exists(path) ? OpenOrReplace(path, row.flags) : OpenMissing(path, row.flags);
    if (!opened) {
        return 0;
    }
    m_bOpened = 1;
    return 1;
}

bool CQFile::OpenOrReplace(const QString& path, QIODevice::OpenMode flags)
{
    if (m_file.open(flags)) {
        return true;
    }
    QFile::remove(path);
    return m_file.open(flags);
}

bool CQFile::OpenMissing(const QString& path, QIODevice::OpenMode flags)
{
    return m_dwMode != StoredRead && MakeDir(ParentPath(path)) && m_file.open(flags);
}

int CQFile::Open(const wchar_t* path, unsigned int mode)
{
    if (path == nullptr) {
        return 0;
    }
    QString converted = PathText::FromWide(path);
    return Open(converted, mode);
}

int CQFile::Open(CQSString& path, unsigned int mode)
{
    QString converted = QString::fromUtf8(path.GetDataPtr());
    return Open(converted, mode);
}

int CQFile::OpenWithWriteCache(const wchar_t* path, unsigned int mode, int cacheSize)
{
    if (!Open(path, mode)) {
        return 0;
    }
    DropCache();
    if (mode == 0 || cacheSize <= 0) {
        return 1;
    }
    std::unique_ptr<CMLDataBuf> cache(new (std::nothrow) CMLDataBuf);
    if (cache && cache->Create(static_cast<unsigned long>(cacheSize))) {
        m_pCache = cache.release();
        m_bCacheEnabled = 1;
    }
    return 1;
}

void CQFile::DropCache()
{
    delete m_pCache;
    m_pCache = nullptr;
    m_bCacheEnabled = 0;
}

void CQFile::Close()
{
    if (HasCache()) {
        WriteOutCache();
        DropCache();
    }
    if (m_bOpened) {
        m_bOpened = 0;
        m_file.close();
    }
}

bool CQFile::HasCache() const
{
    return m_bCacheEnabled != 0 && m_pCache != nullptr;
}

void CQFile::WriteOutCache()
{
    if (m_pCache->GetUsedSize() > 0) {
        WriteData(m_pCache->GetBuf(), static_cast<unsigned int>(m_pCache->GetUsedSize()));
        m_pCache->Zero();
    }
}

int CQFile::Read(void* buffer, unsigned int length)
{
    if (buffer == nullptr || length == 0 || !m_bOpened || m_dwMode == StoredWrite) {
        return -1;
    }
    const qint64 count = m_file.read(static_cast<char*>(buffer), Bounded(length));
    return static_cast<int>(std::max<qint64>(count, 0));
}

int CQFile::Write(const void* data, unsigned int length)
{
    const bool canBeCached = HasCache() && MayWrite() && data != nullptr && length > 0;
    if (!canBeCached) {
        return static_cast<int>(WriteData(data, length));
    }
    if (length >= m_pCache->GetFreeSize()) {
        WriteOutCache();
        if (length > m_pCache->GetMaxSize()) {
            return static_cast<int>(WriteData(data, length));
        }
    }
    m_pCache->Append(static_cast<const unsigned char*>(data), length);
    return static_cast<int>(length);
}

bool CQFile::MayWrite() const
{
    return m_bOpened && m_dwMode != StoredRead;
}

unsigned int CQFile::WriteData(const void* data, unsigned int length)
{
    if (!MayWrite()) {
        return static_cast<unsigned int>(-1);
    }
    if (data == nullptr || length == 0) {
        return 0;
    }
    const qint64 written = m_file.write(static_cast<const char*>(data), Bounded(length));
    m_file.flush();
    return Low32(written);
}

int CQFile::Seek(int offset, unsigned int origin)
{
    if (!m_bOpened || origin > 2) {
        return 0;
    }
    const qint64 base = origin == 0 ? 0 : origin == 1 ? m_file.pos() : m_file.size();
    const quint32 target = Low32(base) + static_cast<quint32>(offset);
    return m_file.seek(static_cast<qint32>(target));
}

int CQFile::SeekToBegin()
{
    return m_bOpened && m_file.seek(0);
}

int CQFile::SeekToEnd()
{
    return m_bOpened && m_file.seek(m_file.size());
}

int CQFile::GetLength() const
{
    return m_bOpened == 1 ? static_cast<int>(Low32(m_file.size())) : 0;
}

int CQFile::SetSize(int size)
{
    return m_bOpened && m_file.resize(size);
}

int CQFile::GetModifiedTime(QTime&) const
{
    OrvoAssert(false, "0", "src/CQFile", 710);
    return 0;
}
