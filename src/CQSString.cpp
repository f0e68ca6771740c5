#include "CQSString.h"

#include "OrvoAssert.h"
#include "TextUnits.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstring>
#include <new>
#include <string_view>

namespace
{

constexpr char Source[] = "src/CQSString";

bool AssertIndex(int nIndex, int nLen)
{
    return OrvoAssert(nIndex >= 0, "nIndex >= 0", Source) &&
           OrvoAssert(nIndex < nLen, "nIndex < m_nLen", Source);
}

} // namespace

CQSString::CQSString() : m_pData(nullptr), m_nLen(0) {}

CQSString::CQSString(int nLen) : CQSString()
{
    AllocBuffer(std::max(nLen, 0));
}

CQSString::CQSString(const CQSString& other) : CQSString()
{
    *this = other;
}

CQSString::CQSString(CQSString&& other) noexcept : m_pData(other.m_pData), m_nLen(other.m_nLen)
{
    other.m_pData = nullptr;
    other.m_nLen = 0;
}

CQSString::~CQSString()
{
    delete[] m_pData;
}

char* CQSString::NewBuffer(long long nLen)
{
    if (nLen > INT_MAX) {
        return nullptr;
    }
    const auto length = static_cast<std::size_t>(nLen);
    char* const pFresh = new (std::nothrow) char[length + 1];
    if (pFresh != nullptr) {
        pFresh[length] = '\0';
    }
    return pFresh;
}

char* CQSString::NewCopy(const char* pData, long long nLen)
{
    char* const pFresh = NewBuffer(nLen);
    if (pFresh != nullptr) {
        std::memcpy(pFresh, pData, static_cast<std::size_t>(nLen));
    }
    return pFresh;
}

int CQSString::Adopt(char* pFresh, long long nLen)
{
    delete[] m_pData;
    m_pData = pFresh;
    m_nLen = pFresh != nullptr ? static_cast<int>(nLen) : 0;
    return pFresh != nullptr ? 1 : 0;
}

int CQSString::Append(const char* pData, long long nLen)
{
    const long long total = m_nLen + nLen;
    char* const pFresh = NewBuffer(total);
    if (pFresh != nullptr) {
        std::copy_n(m_pData, m_nLen, pFresh);
        std::copy_n(pData, nLen, pFresh + m_nLen);
    }
    return Adopt(pFresh, total);
}

void CQSString::AllocBuffer(int nLen)
{
    if (!OrvoAssert(nLen >= 0, "nLen >= 0", Source) || nLen == 0) {
        return;
    }
    char* const pFresh = NewBuffer(nLen);
    if (pFresh != nullptr) {
        std::memset(pFresh, 0, static_cast<std::size_t>(nLen));
    }
    Adopt(pFresh, nLen);
}

void CQSString::AllocCopy(CQSString& dest, int nCopyLen, int nCopyIndex) const
{
    const int first = std::max(nCopyIndex, 0);
    const std::int64_t end = std::min(std::int64_t{nCopyIndex} + nCopyLen, std::int64_t{m_nLen});
    if (nCopyLen >= 1 && end > first) {
        dest.Adopt(NewCopy(m_pData + first, end - first), end - first);
    }
}

void CQSString::Empty()
{
    Adopt(nullptr, 0);
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
    return Adopt(NewCopy(reinterpret_cast<const char*>(pData), nLen), nLen);
}

int CQSString::SetData(const char* lpszStr)
{
    if (lpszStr == nullptr || *lpszStr == '\0') {
        return 0;
    }
    const auto length = static_cast<long long>(std::strlen(lpszStr));
    return Adopt(NewCopy(lpszStr, length), length);
}

CQSString& CQSString::operator=(const CQSString& other)
{
    if (m_pData != other.m_pData && other.m_nLen > 0) {
        Adopt(NewCopy(other.m_pData, other.m_nLen), other.m_nLen);
    }
    return *this;
}

int CQSString::AppendChar(char c)
{
    return Append(&c, 1);
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
    return Append(lpszStr, static_cast<long long>(std::strlen(lpszStr)));
}

int CQSString::AppendData(unsigned char* pData, int nLen)
{
    if (pData == nullptr || nLen < 1) {
        return 0;
    }
    return Append(reinterpret_cast<const char*>(pData), nLen);
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
    return GetAt(nIndex);
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
    return Compare(other.m_pData) == 0;
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
    return IndexOrNone(View(*this).find(lpszSub, static_cast<std::size_t>(start)));
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
