// The text operations of the byte string. Storage, access, comparing and searching are in
// CQSString.cpp.

#include "CQSString.h"

#include "CQSStringBuffer.h"
#include "OrvoAssert.h"
#include "TextUnits.h"

#include <algorithm>
#include <charconv>
#include <climits>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace
{

constexpr char Source[] = "src/CQSString";

constexpr std::string_view Blanks = "\n\r \t";

// Latin-1 case pairs lie 0x20 apart. Multiplication and division sign (0xD7, 0xF7) stand among
// the letters without being any; micro sign, sharp s and y with diaeresis have no upper case
// within Latin-1.
constexpr char Latin1Upper(char c)
{
    const auto b = static_cast<unsigned char>(c);
    const bool isLower = (b >= 'a' && b <= 'z') || (b >= 0xE0 && b <= 0xFE && b != 0xF7);
    return isLower ? static_cast<char>(b - 0x20) : c;
}

constexpr char Latin1Lower(char c)
{
    const auto b = static_cast<unsigned char>(c);
    const bool isUpper = (b >= 'A' && b <= 'Z') || (b >= 0xC0 && b <= 0xDE && b != 0xD7);
    return isUpper ? static_cast<char>(b + 0x20) : c;
}

// Value of the decimal number that makes up the whole text before any zero byte; 0 when that is
// no number or one beyond 64 bits.
std::uint64_t WholeDecimal(std::string_view text)
{
    text = text.substr(0, text.find('\0'));
    std::uint64_t value = 0;
    const char* const end = text.data() + text.size();
    return std::from_chars(text.data(), end, value).ptr == end ? value : 0;
}

// 32-bit FNV-1a (Fowler, Noll, Vo) and behind it the usual avalanche of shifts and additions.
std::uint32_t HashOf(std::string_view text)
{
    std::uint32_t h = 0x811C9DC5U;
    for (const char c : text) {
        h = (h ^ static_cast<unsigned char>(c)) * 16777619U;
    }
    h += h << 13;
    h ^= h >> 7;
    h += h << 3;
    h ^= h >> 17;
    h += h << 5;
    return h;
}

// The assertions report the line of the operation that asks.
bool AssertText(const CQSString& s, int line = __builtin_LINE())
{
    const bool hasText = s.GetDataPtr() != nullptr && s.GetLength() > 0;
    return OrvoAssert(hasText, "m_pData != NULL && m_nLen > 0", Source, line);
}

bool AssertNumber(const CQSString& s, int line = __builtin_LINE())
{
    const bool hasBuffer = OrvoAssert(s.GetDataPtr() != nullptr, "m_pData != NULL", Source, line);
    const bool hasBytes = OrvoAssert(s.GetLength() > 0, "m_nLen > 0", Source, line);
    return hasBuffer && hasBytes;
}

void KeepRange(CQSString& s, std::size_t nStartPos, std::size_t nEndPos)
{
    if (nStartPos >= nEndPos) {
        s.Empty();
        return;
    }
    const auto nKept = static_cast<std::int64_t>(nEndPos - nStartPos);
    char* const pFresh = CQSStringBuffer::NewCopy(s.GetDataPtr() + nStartPos, nKept);
    if (pFresh != nullptr) {
        CQSStringBuffer::Adopt(s, pFresh, nKept);
    }
}

// Replace() of what keeps its length: in a copy of the text.
int ReplaceSameLength(CQSString& s, std::string_view oldText, std::string_view newText)
{
    const std::string_view text = View(s);
    const std::size_t first = FindText(text, oldText);
    const auto length = static_cast<std::int64_t>(text.size());
    char* const pFresh =
        first != text.npos ? CQSStringBuffer::NewCopy(text.data(), length) : nullptr;
    if (pFresh == nullptr) {
        return 0;
    }
    const Replaced replaced = ReplaceWithin(pFresh, text.size(), first, oldText, newText);
    CQSStringBuffer::Adopt(s, pFresh, length);
    return replaced.count;
}

int SetHexUnits(CQSString& s, const char* pText, int nLen)
{
    const std::int64_t nUnitBytes = std::int64_t{2} * nLen;
    char* const pFresh = CQSStringBuffer::New(nUnitBytes);
    if (pFresh == nullptr) {
        return 0;
    }
    for (std::ptrdiff_t i = 0; i < nLen; ++i) {
        pFresh[2 * i] = '\0';
        pFresh[2 * i + 1] = HexDigit(pText[i]) >= 0 ? AsciiUpper(pText[i]) : pText[i];
    }
    return CQSStringBuffer::Adopt(s, pFresh, nUnitBytes);
}

} // namespace

// Substrings

void CQSString::GetSubString(CQSString& out, int nFirst, int nCount) const
{
    const int first = std::max(nFirst, 0);
    const int count = std::min(std::max(nCount, 0), std::max(m_nLen - first, 0));
    OrvoAssert(first <= m_nLen, "nFirst + nCount <= m_nLen", Source);
    AllocCopy(out, count, first);
}

int CQSString::GetSubString(CQSString& out, const char* lpszStart, const char* lpszEnd, int nStart,
                            bool bKeepStart, bool bKeepEnd) const
{
    if (!AssertText(*this) || lpszStart == nullptr || lpszEnd == nullptr) {
        return -1;
    }
    return CopyBetween(*this, out, lpszStart, lpszEnd, nStart, bKeepStart, bKeepEnd);
}

int CQSString::GetSubString(CQSString& out, char cStart, char cEnd, int nStart, bool bKeepStart,
                            bool bKeepEnd) const
{
    if (!AssertText(*this)) {
        return -1;
    }
    return CopyBetween(*this, out, {&cStart, 1}, {&cEnd, 1}, nStart, bKeepStart, bKeepEnd);
}

int CQSString::FindFirstValidChar(int nStart) const
{
    if (nStart < 0 || nStart >= m_nLen) {
        return -1;
    }
    return IndexOrNone(View(*this).find_first_not_of(Blanks, static_cast<std::size_t>(nStart)));
}

// Trimming

void CQSString::TrimLeft()
{
    if (m_nLen > 0) {
        KeepRange(*this, View(*this).find_first_not_of(Blanks), static_cast<std::size_t>(m_nLen));
    }
}

void CQSString::TrimRight()
{
    if (m_nLen > 0) {
        KeepRange(*this, 0, View(*this).find_last_not_of(Blanks) + 1);
    }
}

void CQSString::TrimRightAndLeft()
{
    if (m_nLen < 1) {
        return;
    }
    const std::size_t nStartPos = View(*this).find_first_not_of(Blanks);
    const std::size_t nEndPos = View(*this).find_last_not_of(Blanks) + 1;
    OrvoAssert(nEndPos >= nStartPos || nEndPos == 0, "nEndPos >= nStartPos", Source);
    KeepRange(*this, nStartPos, nEndPos);
}

void CQSString::TrimLeft(int n, CQSString& out) const
{
    const int count = std::max(n, 0);
    AllocCopy(out, m_nLen - count, count);
}

void CQSString::TrimRight(int n, CQSString& out) const
{
    AllocCopy(out, m_nLen - std::max(n, 0), 0);
}

void CQSString::TrimRightAndLeft(int nLeft, int nRight, CQSString& out) const
{
    if (m_nLen < 1) {
        return;
    }
    const int left = std::max(nLeft, 0);
    const std::int64_t kept = std::int64_t{m_nLen} - left - std::max(nRight, 0);
    if (kept < 1) {
        out.Empty();
    } else {
        AllocCopy(out, static_cast<int>(kept), left);
    }
}

// Changing the text

void CQSString::MakeUpper()
{
    if (AssertText(*this)) {
        std::transform(m_pData, m_pData + m_nLen, m_pData, Latin1Upper);
    }
}

void CQSString::MakeLower()
{
    std::transform(m_pData, m_pData + m_nLen, m_pData, Latin1Lower);
}

void CQSString::MakeLower(const char* lpszStart, int nLen)
{
    if (OrvoAssert(lpszStart != nullptr && nLen > 0, "lpszStart != NULL && nLen > 0", Source)) {
        std::transform(lpszStart, lpszStart + nLen, const_cast<char*>(lpszStart), Latin1Lower);
    }
}

int CQSString::Replace(const char* lpszOld, const char* lpszNew)
{
    if (m_nLen < 1) {
        return 0;
    }
    if (lpszOld == nullptr) {
        return -1;
    }
    const std::string_view text = View(*this);
    const std::string_view oldText = lpszOld;
    const std::string_view newText = lpszNew != nullptr ? lpszNew : "";
    if (oldText.empty() || newText == oldText || newText.size() > INT_MAX) {
        return 0;
    }
    if (newText.size() == oldText.size()) {
        return ReplaceSameLength(*this, oldText, newText);
    }
    const Occurrences places(text, oldText);
    const int count = places.GetCount();
    if (count == 0) {
        return 0;
    }
    const std::int64_t growth =
        static_cast<std::int64_t>(newText.size()) - static_cast<std::int64_t>(oldText.size());
    const std::int64_t newLength = m_nLen + count * growth;
    if (newLength < 1) {
        Empty();
        return count;
    }
    char* const pFresh = CQSStringBuffer::New(newLength);
    if (pFresh == nullptr) {
        return 0;
    }
    const auto nDstStart = places.PutReplaced(pFresh, newText) - pFresh;
    CQSStringBuffer::Adopt(*this, pFresh, newLength);
    OrvoAssert(m_nLen == nDstStart, "m_nLen == nDstStart", Source);
    return count;
}

void CQSString::FilterInvisibleChar()
{
    if (m_nLen < 1) {
        return;
    }
    const char lastByte = m_pData[m_nLen - 1];
    int kept = 0;
    for (int i = 0; i < m_nLen; ++i) {
        const bool isVisible = m_pData[i] >= 0x20 && m_pData[i] <= 0x7E;
        // The byte behind a removed one takes its place and escapes the check.
        if (!isVisible && ++i == m_nLen) {
            break;
        }
        m_pData[kept++] = m_pData[i];
    }
    // Each removal moved the bytes down by one and left the last one standing behind them.
    std::memset(m_pData + kept, lastByte, static_cast<std::size_t>(m_nLen - kept));
    m_nLen = kept;
}

// Tests

int CQSString::IsStartWith(const char* lpszSub) const
{
    const bool isText = OrvoAssert(lpszSub != nullptr, "lpszSub != NULL", Source);
    return isText && View(*this).starts_with(lpszSub) ? 1 : 0;
}

int CQSString::IsStartWithNoCase(const char* lpszSub) const
{
    return IsStartWith(lpszSub);
}

int CQSString::IsEndWith(const char* lpszSub) const
{
    const bool isText = OrvoAssert(lpszSub != nullptr, "lpszSub != NULL", Source);
    return isText && View(*this).ends_with(lpszSub) ? 1 : 0;
}

int CQSString::IsEndWithNoCase(const char* lpszSub) const
{
    return IsEndWith(lpszSub);
}

// Numbers

void CQSString::ToString(int n)
{
    char text[12] = {};
    std::to_chars(text, text + sizeof text, n);
    SetData(text);
}

void CQSString::ToString(unsigned int n)
{
    UToString(n);
}

void CQSString::UToString(unsigned int n)
{
    char text[12] = {};
    std::to_chars(text, text + sizeof text, n);
    SetData(text);
}

int CQSString::ToINT() const
{
    return AssertNumber(*this) ? SignedTrailingNumber(View(*this), 10) : -1;
}

unsigned int CQSString::ToUINT() const
{
    return AssertNumber(*this) ? TrailingNumber(View(*this), 10) : 0U;
}

int CQSString::ToHEX() const
{
    if (!AssertNumber(*this)) {
        return -1;
    }
    std::uint32_t value = 0;
    for (const char c : View(*this)) {
        const int digit = HexDigit(c);
        if (digit >= 0) {
            value = value << 4 | static_cast<std::uint32_t>(digit);
        }
    }
    return static_cast<int>(value);
}

int CQSString::ToHexString()
{
    // Callers rely on the first byte alone deciding.
    const int first = m_nLen > 0 ? HexDigit(m_pData[0]) : -1;
    if (first < 1) {
        return 0;
    }
    if (first >= 10) {
        return SetHexUnits(*this, m_pData, m_nLen);
    }
    char text[16];
    const char* const end =
        std::to_chars(text, text + sizeof text, WholeDecimal(View(*this)), 16).ptr;
    return SetHexUnits(*this, text, static_cast<int>(end - text));
}

unsigned int CQSString::GetHashCode(CQSString& s)
{
    return HashOf(View(s));
}

void CQSString::ToHashString(CQSString& out) const
{
    out.ToString(static_cast<int>(HashOf(View(*this))));
}
