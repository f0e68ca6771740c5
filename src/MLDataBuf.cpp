#include "MLDataBuf.h"

#include "OrvoAssert.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace
{

enum StorageMode : quint16 { NoStorage = 0, OwnStorage = 1, CallerStorage = 2 };

// Clients that were built when the appends of one item stood here still find them.
[[gnu::used]] int (CMLDataBuf::*const appendByte)(unsigned char) = &CMLDataBuf::Append;
[[gnu::used]] int (CMLDataBuf::*const appendShort)(unsigned short) = &CMLDataBuf::Append;
[[gnu::used]] int (CMLDataBuf::*const appendLong)(unsigned long) = &CMLDataBuf::Append;

} // namespace

CMLDataBuf::CMLDataBuf() : m_wMode(NoStorage), m_dwMaxSize(0), m_dwUsedSize(0), m_pData(nullptr) {}

CMLDataBuf::~CMLDataBuf()
{
    if (m_wMode == OwnStorage) {
        delete[] m_pData;
    }
}

int CMLDataBuf::Create(unsigned long size)
{
    if (size == 0 || size != static_cast<quint32>(size)) {
        return 0;
    }
    auto* data = new (std::nothrow) unsigned char[size]();
    if (Create(data, size) == 0) {
        return 0;
    }
    m_wMode = OwnStorage;
    return 1;
}

int CMLDataBuf::Create(unsigned char* data, unsigned long size)
{
    if (data == nullptr || size == 0 || size != static_cast<quint32>(size)) {
        return 0;
    }
    m_wMode = CallerStorage;
    m_pData = data;
    m_dwMaxSize = static_cast<quint32>(size);
    return 1;
}

unsigned char* CMLDataBuf::GetBuf() const
{
    return m_pData;
}

unsigned long CMLDataBuf::GetFreeSize() const
{
    return m_dwMaxSize - m_dwUsedSize;
}

unsigned long CMLDataBuf::GetUsedSize() const
{
    return m_dwUsedSize;
}

unsigned long CMLDataBuf::GetMaxSize() const
{
    return m_dwMaxSize;
}

unsigned long CMLDataBuf::Append(unsigned char const* data, unsigned long len)
{
    if (data == nullptr || len == 0 || !HasRoom(len)) {
        return 0;
    }
    std::memmove(m_pData + m_dwUsedSize, data, len);
    m_dwUsedSize += static_cast<quint32>(len);
    return len;
}

void CMLDataBuf::Zero()
{
    m_dwUsedSize = 0;
    if (m_pData != nullptr) {
        std::memset(m_pData, 0, m_dwMaxSize);
    }
}

void CMLDataBuf::MoveDataToHead(int nStartPos)
{
    OrvoAssert(nStartPos >= 0 && nStartPos <= static_cast<qint32>(m_dwUsedSize),
               "(nStartPos >= 0) && (nStartPos <= (QINT)m_dwUsedSize)", "src/MLDataBuf", 88);
    if (nStartPos <= 0 || static_cast<quint32>(nStartPos) > m_dwUsedSize) {
        return;
    }
    const auto dropped = static_cast<quint32>(nStartPos);
    // A second Create() may have left less storage than the used size tells.
    const quint32 held = std::min(m_dwUsedSize, m_dwMaxSize);
    const quint32 kept = held - std::min(dropped, held);
    std::memmove(m_pData, m_pData + (held - kept), kept);
    std::memset(m_pData + kept, 0, held - kept);
    m_dwUsedSize -= dropped;
}
