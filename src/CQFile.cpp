#include "CQFile.h"

#include "DiskSync.h"
#include "MLDataBuf.h"
#include "OrvoAssert.h"
#include "PathText.h"

#include <QFileInfo>

#include <algorithm>
#include <climits>
#include <iterator>
#include <memory>
#include <new>
#include <utility>

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

// The directories that get a new entry when the missing file \a path is made with its parents.
QStringList DirsWithNewEntries(const QString& path)
{
    QStringList dirs;
    QString dir = QFileInfo(path).absolutePath();
    while (!dir.isEmpty() && !dirs.contains(dir)) {
        dirs << dir;
        if (QFileInfo::exists(dir)) {
            break;
        }
        dir = QFileInfo(dir).absolutePath();
    }
    return dirs;
}

bool OpenOrReplace(QFile& file, QIODevice::OpenMode flags, bool& removed, QStringList& dirsToSync)
{
    if (file.open(flags)) {
        return true;
    }
    removed = QFile::remove(file.fileName());
    if (removed) {
        dirsToSync << QFileInfo(file.fileName()).absolutePath();
    }
    return file.open(flags);
}

bool OpenMissing(QFile& file, const OpenModeRow& row, QStringList& dirsToSync)
{
    if (row.stored == StoredRead) {
        return false;
    }
    dirsToSync = DirsWithNewEntries(file.fileName());
    return CQFile::MakeDir(ParentPath(file.fileName())) && file.open(row.flags);
}

bool HasCache(quint8 enabled, const CMLDataBuf* cache)
{
    return enabled != 0 && cache != nullptr;
}

void WriteOut(CMLDataBuf& cache, CQFile& file)
{
    if (cache.GetUsedSize() > 0) {
        file.WriteData(cache.GetBuf(), static_cast<unsigned int>(cache.GetUsedSize()));
        cache.Zero();
    }
}

void Drop(CMLDataBuf*& cache, quint8& enabled)
{
    delete cache;
    cache = nullptr;
    enabled = 0;
}

// -1 also where the platform has no memory for what it reads ahead.
qint64 ReadSome(QFile& file, char* buffer, qint64 wanted)
{
    try {
        return file.read(buffer, wanted);
    } catch (const std::bad_alloc&) {
        return -1;
    }
}

// -1 also where the platform has no memory for what it gathers.
qint64 WriteThrough(QFile& file, const void* data, qint64 length, bool& failed)
{
    try {
        const qint64 written = file.write(static_cast<const char*>(data), length);
        const bool flushed = file.flush();
        failed = failed || !flushed;
        return written;
    } catch (const std::bad_alloc&) {
        return -1;
    }
}

// Reads until \a wanted bytes are there, the end is reached or the platform fails. The platform
// stops short without an error where a failure follows some bytes; only asking again tells that
// from the end.
qint64 ReadAll(QFile& file, char* buffer, qint64 wanted, bool& failed)
{
    qint64 total = 0;
    qint64 count = 0;
    do {
        count = ReadSome(file, buffer + total, wanted - total);
        total += std::max<qint64>(count, 0);
    } while (count > 0 && total < wanted && !file.isSequential());
    failed = failed || count < 0;
    return total;
}

} // namespace

CQFile::CQFile()
    : m_dwMode(StoredRead), m_bCacheEnabled(0), m_pCache(nullptr), m_bOpened(0), m_bFailed(false)
{
}

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
    m_bFailed = true;
    path = PathText::Slashed(path);
    if (mode >= std::size(OpenModes)) {
        return 0;
    }
    const OpenModeRow& row = OpenModes[mode];
    m_dwMode = row.stored;
    m_file.setFileName(path);
    m_dirsToSync.clear();
    bool removed = false;
    // To read, a look at whether it exists is saved where it opens: that cost a fifth of the time.
    bool opened = false;
    try {
        opened = (row.stored == StoredRead && m_file.open(row.flags)) ||
                 (QFile::exists(path) ? OpenOrReplace(m_file, row.flags, removed, m_dirsToSync)
                                      : OpenMissing(m_file, row, m_dirsToSync));
    } catch (const std::bad_alloc&) {
        m_file.close(); // Qt 5 throws behind the system's open
        throw;
    }
    if (!opened) {
        return 0;
    }
    m_bFailed = removed && m_dwMode != StoredWrite;
    m_bOpened = 1;
    return 1;
}

int CQFile::Open(const wchar_t* path, unsigned int mode)
{
    m_bFailed = true; // before memory is asked for
    if (path == nullptr) {
        return 0;
    }
    QString converted = PathText::FromWide(path);
    return Open(converted, mode);
}

int CQFile::Open(CQSString& path, unsigned int mode)
{
    m_bFailed = true; // before memory is asked for
    QString converted = QString::fromUtf8(path.GetDataPtr());
    return Open(converted, mode);
}

int CQFile::OpenWithWriteCache(const wchar_t* path, unsigned int mode, int cacheSize)
{
    if (!Open(path, mode)) {
        return 0;
    }
    if (HasCache(m_bCacheEnabled, m_pCache)) {
        m_bFailed = m_bFailed || m_pCache->GetUsedSize() > 0;
        Drop(m_pCache, m_bCacheEnabled);
    }
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

void CQFile::Close()
{
    if (HasCache(m_bCacheEnabled, m_pCache)) {
        WriteOut(*m_pCache, *this);
        Drop(m_pCache, m_bCacheEnabled);
    }
    if (m_bOpened) {
        m_bOpened = 0;
        m_file.close();
        m_bFailed = m_bFailed || m_file.error() != QFileDevice::NoError;
    }
}

bool CQFile::Sync()
{
    if (!m_bOpened) {
        return false;
    }
    if (HasCache(m_bCacheEnabled, m_pCache)) {
        WriteOut(*m_pCache, *this);
    }
    const bool hadFailed = std::exchange(m_bFailed, true); // an exception is a failure too
    if (m_file.flush() && DiskSync::File(m_file.handle()) && DiskSync::Directories(m_dirsToSync)) {
        m_dirsToSync.clear();
        m_bFailed = hadFailed;
    }
    return !m_bFailed;
}

bool CQFile::HasFailed() const
{
    return m_bFailed;
}

int CQFile::Read(void* buffer, unsigned int length)
{
    if (buffer == nullptr || length == 0) {
        return -1;
    }
    if (!m_bOpened || m_dwMode == StoredWrite) {
        m_bFailed = true;
        return -1;
    }
    return static_cast<int>(
        ReadAll(m_file, static_cast<char*>(buffer), Bounded(length), m_bFailed));
}

int CQFile::Write(const void* data, unsigned int length)
{
    const bool canBeCached = HasCache(m_bCacheEnabled, m_pCache) && m_bOpened &&
                             m_dwMode != StoredRead && data != nullptr && length > 0;
    if (!canBeCached) {
        return static_cast<int>(WriteData(data, length));
    }
    if (length >= m_pCache->GetFreeSize()) {
        WriteOut(*m_pCache, *this);
        if (length > m_pCache->GetMaxSize()) {
            return static_cast<int>(WriteData(data, length));
        }
    }
    m_pCache->Append(static_cast<const unsigned char*>(data), length);
    return static_cast<int>(length);
}

unsigned int CQFile::WriteData(const void* data, unsigned int length)
{
    const bool isEmpty = data == nullptr || length == 0;
    if (!m_bOpened || m_dwMode == StoredRead) {
        m_bFailed = m_bFailed || !isEmpty;
        return static_cast<unsigned int>(-1);
    }
    if (isEmpty) {
        return 0;
    }
    const qint64 written = WriteThrough(m_file, data, Bounded(length), m_bFailed);
    m_bFailed = m_bFailed || written != length;
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
    if (!m_bOpened) {
        return 0;
    }
    // The platform moves a position beyond the new end, and keeps what it has read ahead until
    // the position goes back.
    const qint64 position = m_file.pos();
    const bool resized = m_file.resize(size);
    m_file.seek(0);
    m_file.seek(position);
    return resized;
}

int CQFile::GetModifiedTime(QTime&) const
{
    OrvoAssert(false, "0", "src/CQFile", 710);
    return 0;
}
