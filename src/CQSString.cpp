#include "CQSString.h"

#include "CQSStringBuffer.h"
#include "OrvoAssert.h"
#include "TextUnits.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <utility>

namespace
{

constexpr char Source[] = "src/CQSString";

// Reports the line of the operation that asks.
bool AssertIndex(int nIndex, int nLen, int line = __builtin_LINE())
{
    return OrvoAssert(nIndex >= 0, "nIndex >= 0", Source, line) &&
           OrvoAssert(nIndex < nLen, "nIndex < m_nLen", Source, line);
}

int SetBytes(CQSString& s, const char* pData, std::int64_t nLen)
{
    return CQSStringBuffer::Adopt(s, CQSStringBuffer::NewCopy(pData, nLen), nLen);
}

int AppendBytes(CQSString& s, const char* pData, std::int64_t nLen)
{
    const int old = s.GetLength();
    const std::int64_t total = old + nLen;
    char* const pFresh = CQSStringBuffer::New(total);
    if (pFresh != nullptr) {
        std::copy_n(s.GetDataPtr(), old, pFresh);
        std::copy_n(pData, nLen, pFresh + old);
    }
    return CQSStringBuffer::Adopt(s, pFresh, total);
}

} // namespace

CQSString::CQSString() : m_pData(nullptr), m_nLen(0) {}

CQSString::CQSString(int nLen) : CQSString()
{
    AllocBuffer(std::max(nLen, 0));
}

CQSString::CQSString(const CQSString& other) : CQSString()
{
    if (other.m_nLen > 0) {
        m_pData = CQSStringBuffer::NewCopy(other.m_pData, other.m_nLen);
        m_nLen = m_pData != nullptr ? other.m_nLen : 0;
    }
}

CQSString::CQSString(CQSString&& other) noexcept : CQSString()
{
    // A string that was filtered down to nothing still has its buffer, which a copy has not, and
    // any other filtered string lacks the terminator of a copy.
    if (other.m_nLen > 0) {
        std::swap(m_pData, other.m_pData);
        std::swap(m_nLen, other.m_nLen);
        m_pData[m_nLen] = '\0';
    }
}

CQSString::~CQSString()
{
    delete[] m_pData;
}

void CQSString::AllocBuffer(int nLen)
{
    if (!OrvoAssert(nLen >= 0, "nLen >= 0", Source) || nLen == 0) {
        return;
    }
    char* const pFresh = CQSStringBuffer::New(nLen);
    if (pFresh != nullptr) {
        std::memset(pFresh, 0, static_cast<std::size_t>(nLen));
    }
    CQSStringBuffer::Adopt(*this, pFresh, nLen);
}

void CQSString::AllocCopy(CQSString& dest, int nCopyLen, int nCopyIndex) const
{
    const int first = std::max(nCopyIndex, 0);
    const std::int64_t end = std::min(std::int64_t{nCopyIndex} + nCopyLen, std::int64_t{m_nLen});
    if (end > first) {
        SetBytes(dest, m_pData + first, end - first);
    }
}

void CQSString::Empty()
{
    CQSStringBuffer::Adopt(*this, nullptr, 0);
}

int CQSString::SafeStrlen(const char* lpszStr)
{
    return lpszStr == nullptr
               ? 0
               : static_cast<int>(std::min<std::size_t>(std::strlen(lpszStr), INT_MAX));
}

int CQSString::SetData(unsigned char* pData, int nLen)
{
    if (pData == nullptr || nLen < 1) {
        return 0;
    }
    return SetBytes(*this, reinterpret_cast<const char*>(pData), nLen);
}

int CQSString::SetData(const char* lpszStr)
{
    if (lpszStr == nullptr || *lpszStr == '\0') {
        return 0;
    }
    return SetBytes(*this, lpszStr, static_cast<std::int64_t>(std::strlen(lpszStr)));
}

CQSString& CQSString::operator=(const CQSString& other)
{
    if (m_pData != other.m_pData && other.m_nLen > 0) {
        SetBytes(*this, other.m_pData, other.m_nLen);
    }
    return *this;
}

int CQSString::AppendChar(char c)
{
    return AppendBytes(*this, &c, 1);
}

int CQSString::AppendData(char* lpszStr)
{
    return AppendData(static_cast<const char*>(lpszStr));
}

int CQSString::AppendData(const char* lpszStr)
{
    if (lpszStr == nullptr || *lpszStr == '\0') {
        return 0;
    }
    return AppendBytes(*this, lpszStr, static_cast<std::int64_t>(std::strlen(lpszStr)));
}

int CQSString::AppendData(unsigned char* pData, int nLen)
{
    if (pData == nullptr || nLen < 1) {
        return 0;
    }
    return AppendBytes(*this, reinterpret_cast<const char*>(pData), nLen);
}

int CQSString::GetLength() const
{
    return m_nLen;
}

bool CQSString::IsEmpty() const
{
    return m_nLen == 0;
}

const char* CQSString::GetDataPtr() const
{
    return m_pData;
}

CQSString::operator const char*() const
{
    return m_pData;
}

char CQSString::GetAt(int nIndex) const
{
    return AssertIndex(nIndex, m_nLen) ? m_pData[nIndex] : '\0';
}

char CQSString::operator[](int nIndex) const
{
    return AssertIndex(nIndex, m_nLen) ? m_pData[nIndex] : '\0';
}

void CQSString::SetAt(int nIndex, char c)
{
    if (AssertIndex(nIndex, m_nLen)) {
        m_pData[nIndex] = c;
    }
}

int CQSString::Compare(const char* lpszStr) const
{
    return lpszStr == nullptr || m_pData == nullptr ? -1 : std::strcmp(m_pData, lpszStr);
}

bool CQSString::operator==(const CQSString& other) const
{
    if (m_pData == nullptr || other.m_pData == nullptr) {
        return false;
    }
    // Equal bytes with their terminators make equal C strings: the usual case, and quicker seen
    // than by looking for a zero in each of them.
    const bool hasEqualBytes =
        m_nLen == other.m_nLen &&
        std::memcmp(m_pData, other.m_pData, static_cast<std::size_t>(m_nLen)) == 0;
    return (hasEqualBytes && m_pData[m_nLen] == '\0' && other.m_pData[m_nLen] == '\0') ||
           std::strcmp(m_pData, other.m_pData) == 0;
}

int CQSString::CompareNoCase(CQSString& other) const
{
    return m_pData != nullptr && EqualNoCase(View(*this), View(other)) ? 0 : -1;
}

int CQSString::CompareNoCase(char* lpszStr) const
{
    return CompareNoCase(static_cast<const char*>(lpszStr));
}

int CQSString::CompareNoCase(const char* lpszStr) const
{
    const bool isText = m_pData != nullptr && lpszStr != nullptr;
    return isText && EqualNoCase<char>(View(*this), lpszStr) ? 0 : -1;
}

int CQSString::Find(char c, int nStart) const
{
    return Find(c, nStart, m_nLen);
}

int CQSString::Find(char c) const
{
    return Find(c, 0);
}

int CQSString::Find(char c, int nStart, int nEnd) const
{
    if (nStart < 0 || nEnd <= nStart) {
        return -1;
    }
    const auto position = static_cast<std::size_t>(nStart);
    return IndexOrNone(View(*this).substr(0, static_cast<std::size_t>(nEnd)).find(c, position));
}

int CQSString::Find(const char* lpszSub, int nStart) const
{
    const int start = std::max(nStart, 0);
    if (!OrvoAssert(lpszSub != nullptr, "lpszSub != NULL", Source) || start >= m_nLen) {
        return -1;
    }
    return IndexOrNone(FindText<char>(View(*this), lpszSub, static_cast<std::size_t>(start)));
}

int CQSString::Find(const char* lpszSub) const
{
    return Find(lpszSub, 0);
}

int CQSString::FindBefore(char c, int nStart) const
{
    if (nStart < 0 || nStart >= m_nLen) {
        return -1;
    }
    return IndexOrNone(View(*this).rfind(c, static_cast<std::size_t>(nStart)));
}
