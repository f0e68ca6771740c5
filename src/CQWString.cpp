#include "CQWString.h"

#include "OrvoAssert.h"
#include "TextUnits.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <cwchar>
#include <new>
#include <utility>

namespace
{

constexpr char Source[] = "src/CQWString";

// A buffer has to fit a 32-bit host, so that every host refuses the same lengths.
constexpr qint64 MaxCapacity = INT_MAX / sizeof(wchar_t) - 1;

bool AssertIndex(int nIndex, int nLen)
{
    return OrvoAssert(nIndex >= 0, "nIndex >= 0", Source) &&
           OrvoAssert(nIndex < nLen, "nIndex < m_nDataLen", Source);
}

} // namespace

CQWString::CQWString() : m_pData(nullptr), m_nDataLen(0), m_nMAXLen(0), m_pUtf16(nullptr) {}

CQWString::CQWString(int nLen) : CQWString()
{
    AllocBuffer(std::max(nLen, 0));
}

CQWString::CQWString(const CQWString& other) : CQWString()
{
    *this = other;
}

CQWString::CQWString(CQWString&& other) noexcept
    : m_pData(std::exchange(other.m_pData, nullptr)),
      m_nDataLen(std::exchange(other.m_nDataLen, 0)), m_nMAXLen(std::exchange(other.m_nMAXLen, 0)),
      m_pUtf16(nullptr)
{
}

CQWString::~CQWString()
{
    Destroy();
}

// Storage

CQWString::Units CQWString::NewUnits(qint64 nCapacity)
{
    if (nCapacity > MaxCapacity) {
        return nullptr;
    }
    return Units(new (std::nothrow) wchar_t[static_cast<std::size_t>(nCapacity) + 1]());
}

qint64 CQWString::CapacityFor(qint64 nLen) const
{
    if (m_nMAXLen == 0) {
        return nLen;
    }
    return nLen <= 512 ? nLen * 2 : nLen + 512;
}

// Makes room for nLen units, at least one, and carries the first nKeep over. A replaced buffer
// goes to the caller, so that an argument that lies in it outlives the growth. False without
// memory; the string then has no buffer.
bool CQWString::MakeRoom(qint64 nLen, int nKeep, Units& replaced)
{
    if (nLen <= m_nMAXLen) {
        return true;
    }
    const qint64 nCapacity = CapacityFor(nLen);
    Units fresh = NewUnits(nCapacity);
    replaced.reset(m_pData);
    m_pData = fresh.release();
    if (m_pData == nullptr) {
        m_nDataLen = 0;
        m_nMAXLen = 0;
        return false;
    }
    if (nKeep > 0) {
        std::wmemcpy(m_pData, replaced.get(), static_cast<std::size_t>(nKeep));
    }
    m_nDataLen = nKeep;
    m_nMAXLen = static_cast<int>(nCapacity);
    return true;
}

void CQWString::AllocBuffer(int nLen)
{
    if (nLen < 0) {
        return;
    }
    Destroy();
    if (nLen == 0) {
        return;
    }
    m_pData = NewUnits(nLen).release();
    m_nMAXLen = m_pData == nullptr ? 0 : nLen;
}

int CQWString::PrepareBufferToWrite(int nLen)
{
    if (!OrvoAssert(nLen >= 0, "nLen >= 0", Source)) {
        return 0;
    }
    if (nLen == 0) {
        Destroy();
        return 0;
    }
    if (nLen <= m_nMAXLen) {
        return 0;
    }
    Units replaced;
    return MakeRoom(nLen, m_nDataLen, replaced) ? 1 : 0;
}

void CQWString::SetStrEnding(int nLen)
{
    if (m_pData == nullptr || nLen < 0) {
        return;
    }
    if (!OrvoAssert(m_nMAXLen >= nLen, "nLen >= 0&& m_nMAXLen >= nLen", Source)) {
        return;
    }
    m_nDataLen = nLen;
    m_pData[nLen] = 0;
}

void CQWString::Destroy()
{
    delete[] std::exchange(m_pData, nullptr);
    delete[] std::exchange(m_pUtf16, nullptr);
    m_nDataLen = 0;
    m_nMAXLen = 0;
}

void CQWString::Empty()
{
    if (m_pData != nullptr) {
        std::fill_n(m_pData, m_nDataLen + 1, L'\0');
        m_nDataLen = 0;
    }
}

int CQWString::SafeStrlen(const wchar_t* lpszStr)
{
    if (lpszStr == nullptr) {
        return 0;
    }
    return static_cast<int>(std::min<std::size_t>(std::wcslen(lpszStr), INT_MAX));
}

void CQWString::AllocCopy(CQWString& dest, int nCopyLen, int nCopyIndex) const
{
    const int nFirst = std::max(nCopyIndex, 0);
    const qint64 nEnd = std::min<qint64>(qint64{nCopyIndex} + nCopyLen, m_nDataLen);
    if (nCopyLen >= 1 && nFirst < nEnd) {
        dest.SetData(m_pData + nFirst, static_cast<int>(nEnd - nFirst));
    }
}

// Setting

// Store() and Append() take their units at any alignment and from within the own buffer.
int CQWString::Store(const void* pUnits, qint64 nLen)
{
    Units replaced;
    if (!MakeRoom(nLen, 0, replaced)) {
        return 0;
    }
    std::memmove(m_pData, pUnits, static_cast<std::size_t>(nLen) * sizeof(wchar_t));
    SetStrEnding(static_cast<int>(nLen));
    return 1;
}

int CQWString::Append(const void* pUnits, qint64 nLen)
{
    Units replaced;
    const qint64 nNewLen = m_nDataLen + nLen;
    if (!MakeRoom(nNewLen, m_nDataLen, replaced)) {
        return 0;
    }
    std::memmove(m_pData + m_nDataLen, pUnits, static_cast<std::size_t>(nLen) * sizeof(wchar_t));
    SetStrEnding(static_cast<int>(nNewLen));
    return 1;
}

// Counted data is text all the same: it ends at its first zero unit.
int CQWString::StoreCut(const void* pUnits, int nLen)
{
    if (pUnits == nullptr || nLen < 1 || Store(pUnits, nLen) == 0) {
        return 0;
    }
    m_nDataLen = SafeStrlen(m_pData);
    return 1;
}

int CQWString::SetData(const wchar_t* pData, int nLen)
{
    return StoreCut(pData, nLen);
}

int CQWString::SetData(unsigned char* pData, int nLen)
{
    return StoreCut(pData, nLen);
}

int CQWString::SetData(const wchar_t* lpszStr)
{
    const int nLen = SafeStrlen(lpszStr);
    return nLen < 1 ? 0 : Store(lpszStr, nLen);
}

CQWString& CQWString::operator=(const CQWString& other)
{
    if (m_pData == other.m_pData) {
        return *this;
    }
    if (other.IsEmpty()) {
        Empty();
    } else {
        Store(other.m_pData, other.m_nDataLen);
    }
    return *this;
}

// Appending

int CQWString::AppendData(const wchar_t* lpszStr)
{
    const int nLen = SafeStrlen(lpszStr);
    return nLen < 1 ? 0 : Append(lpszStr, nLen);
}

int CQWString::AppendData(unsigned char* pData, int nLen)
{
    return pData == nullptr || nLen < 1 ? 0 : Append(pData, nLen);
}

int CQWString::AppendChar(wchar_t c)
{
    return Append(&c, 1);
}

// Access

int CQWString::GetLength() const
{
    return m_nDataLen;
}

bool CQWString::IsEmpty() const
{
    return m_nDataLen == 0;
}

const wchar_t* CQWString::GetDataPtr() const
{
    return m_pData;
}

CQWString::operator const wchar_t*() const
{
    return m_pData;
}

wchar_t CQWString::GetAt(int nIndex) const
{
    return AssertIndex(nIndex, m_nDataLen) ? m_pData[nIndex] : L'\0';
}

wchar_t CQWString::operator[](int nIndex) const
{
    return GetAt(nIndex);
}

void CQWString::SetAt(int nIndex, wchar_t c)
{
    if (AssertIndex(nIndex, m_nDataLen)) {
        m_pData[nIndex] = c;
    }
}

// Comparing

int CQWString::Compare(const wchar_t* lpszStr) const
{
    if (lpszStr == nullptr) {
        return m_pData == nullptr ? 0 : 1;
    }
    return m_pData == nullptr ? -1 : std::wcscmp(m_pData, lpszStr);
}

bool CQWString::operator==(const CQWString& other) const
{
    return Compare(other.m_pData) == 0;
}

int CQWString::CompareNoCase(const wchar_t* lpszStr) const
{
    const bool isText = m_pData != nullptr && lpszStr != nullptr;
    return isText && EqualNoCase<wchar_t>(View(*this), lpszStr) ? 0 : -1;
}

// Searching

int CQWString::Find(wchar_t c, int nStart) const
{
    return IndexOrNone(View(*this).find(c, static_cast<std::size_t>(std::max(nStart, 0))));
}

int CQWString::Find(wchar_t c) const
{
    return Find(c, 0);
}

int CQWString::Find(const wchar_t* lpszSub, int nStart) const
{
    // Even an empty text is not found at the end.
    const int start = std::max(nStart, 0);
    if (!OrvoAssert(lpszSub != nullptr, "lpszSub != NULL", Source) || start >= m_nDataLen) {
        return -1;
    }
    return IndexOrNone(View(*this).find(lpszSub, static_cast<std::size_t>(start)));
}

int CQWString::Find(const wchar_t* lpszSub) const
{
    return Find(lpszSub, 0);
}

int CQWString::FindBefore(wchar_t c, int nStart) const
{
    if (nStart < 0 || nStart >= m_nDataLen) {
        return -1;
    }
    return IndexOrNone(View(*this).rfind(c, static_cast<std::size_t>(nStart)));
}

int CQWString::FindofLast(wchar_t c) const
{
    return IndexOrNone(View(*this).rfind(c));
}

void CQWString::GetSubString(CQWString& out, int nFirst, int nCount) const
{
    nFirst = std::max(nFirst, 0);
    if (OrvoAssert(nFirst <= m_nDataLen, "nFirst + nCount <= m_nDataLen", Source)) {
        AllocCopy(out, nCount, nFirst);
    }
}
