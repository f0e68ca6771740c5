#include "CQWString.h"

#include "OrvoAssert.h"
#include "TextUnits.h"
#include "WideStore.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <cwchar>
#include <utility>

namespace
{

constexpr char Source[] = "src/CQWString";

// Reports the line of the operation.
bool AssertIndex(int nIndex, int nLen, int nLine = __builtin_LINE())
{
    return OrvoAssert(nIndex >= 0, "nIndex >= 0", Source, nLine) &&
           OrvoAssert(nIndex < nLen, "nIndex < m_nDataLen", Source, nLine);
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

// A buffer with a reserve stays: what is moved to looks like a copy, whose buffer is exact.
CQWString::CQWString(CQWString&& other) noexcept : CQWString()
{
    if (other.m_nMAXLen != other.m_nDataLen) {
        *this = other;
        return;
    }
    m_pData = std::exchange(other.m_pData, nullptr);
    m_nDataLen = std::exchange(other.m_nDataLen, 0);
    m_nMAXLen = std::exchange(other.m_nMAXLen, 0);
}

CQWString::~CQWString()
{
    Destroy();
}

// Storage

void CQWString::AllocBuffer(int nLen)
{
    if (nLen < 0) {
        return;
    }
    Destroy();
    if (nLen == 0) {
        return;
    }
    m_pData = WideStore::New(nLen, 0).release();
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
    WideStore::Units replaced;
    return WideStore::MakeRoom(*this, nLen, m_nDataLen, m_nDataLen, replaced) ? 1 : 0;
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

int CQWString::SetData(const wchar_t* pData, int nLen)
{
    return WideStore::SetCut(*this, pData, nLen);
}

int CQWString::SetData(unsigned char* pData, int nLen)
{
    return WideStore::SetCut(*this, pData, nLen);
}

int CQWString::SetData(const wchar_t* lpszStr)
{
    const int nLen = SafeStrlen(lpszStr);
    return nLen < 1 ? 0 : WideStore::Set(*this, lpszStr, nLen);
}

CQWString& CQWString::operator=(const CQWString& other)
{
    if (m_pData == other.m_pData) {
        return *this;
    }
    if (other.IsEmpty()) {
        Empty();
    } else {
        WideStore::Set(*this, other.m_pData, other.m_nDataLen);
    }
    return *this;
}

// Appending

int CQWString::AppendData(const wchar_t* lpszStr)
{
    const int nLen = SafeStrlen(lpszStr);
    return nLen < 1 ? 0 : WideStore::Put(*this, m_nDataLen, lpszStr, nLen);
}

int CQWString::AppendData(unsigned char* pData, int nLen)
{
    return pData == nullptr || nLen < 1 ? 0 : WideStore::Put(*this, m_nDataLen, pData, nLen);
}

int CQWString::AppendChar(wchar_t c)
{
    return WideStore::Put(*this, m_nDataLen, &c, 1);
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
    return AssertIndex(nIndex, m_nDataLen) ? m_pData[nIndex] : L'\0';
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

bool CQWString::operator!=(const CQWString& other) const
{
    return !(*this == other);
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
    return IndexOrNone(
        FindText(View(*this), std::wstring_view(lpszSub), static_cast<std::size_t>(start)));
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
