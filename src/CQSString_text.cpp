// The text operations of the byte string. Storage, access, comparing and searching are in
// CQSString.cpp.

#include "CQSString.h"

#include "OrvoAssert.h"

#include <algorithm>
#include <charconv>
#include <climits>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace
{

constexpr char Source[] = "src/CQSString";

std::string_view View(const CQSString& s)
{
    return {s.GetDataPtr(), static_cast<std::size_t>(s.GetLength())};
}

constexpr bool IsBlank(char c)
{
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

// Index of the first byte that is no blank; the length when there is none.
int FirstNonBlank(std::string_view text)
{
    return static_cast<int>(std::find_if_not(text.begin(), text.end(), IsBlank) - text.begin());
}

// One past the last byte that is no blank; 0 when there is none.
int EndOfNonBlanks(std::string_view text)
{
    return static_cast<int>(text.rend() - std::find_if_not(text.rbegin(), text.rend(), IsBlank));
}

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

constexpr bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}

constexpr bool IsHexLetter(char c)
{
    return (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

// Value of the digits at the end of `text`, modulo 2^32.
std::uint32_t TrailingDecimal(std::string_view text)
{
    std::uint32_t value = 0;
    std::uint32_t place = 1;
    for (auto it = text.rbegin(); it != text.rend() && IsDigit(*it); ++it, place *= 10) {
        value += place * static_cast<std::uint32_t>(*it - '0');
    }
    return value;
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

int CountOccurrences(std::string_view text, std::string_view sub)
{
    int count = 0;
    for (std::size_t at = text.find(sub); at != std::string_view::npos;
         at = text.find(sub, at + sub.size())) {
        ++count;
    }
    return count;
}

char* Put(char* p, std::string_view text)
{
    return std::copy(text.begin(), text.end(), p);
}

// Writes `text` with every `oldText` replaced and returns the place behind it.
char* PutReplaced(char* p, std::string_view text, std::string_view oldText,
                  std::string_view newText)
{
    std::size_t from = 0;
    for (std::size_t at = text.find(oldText); at != std::string_view::npos;
         at = text.find(oldText, from)) {
        p = Put(p, text.substr(from, at - from));
        p = Put(p, newText);
        from = at + oldText.size();
    }
    return Put(p, text.substr(from));
}

// Both forms of the delimited GetSubString().
int CopyBetween(const CQSString& source, CQSString& out, std::string_view startMark,
                std::string_view endMark, int nStart, bool bKeepStart, bool bKeepEnd)
{
    const int start = std::max(nStart, 0);
    if (start >= source.GetLength() - 1) {
        return -1;
    }
    const std::string_view text = View(source);
    const std::size_t at = text.find(startMark, static_cast<std::size_t>(start));
    if (at == std::string_view::npos) {
        return -1;
    }
    const std::size_t inside = at + startMark.size();
    // An empty end mark would be found behind the last byte too, where nothing may match.
    const std::size_t end = inside < text.size() ? text.find(endMark, inside) : text.npos;
    if (end == std::string_view::npos) {
        return -1;
    }
    const std::size_t first = bKeepStart ? at : inside;
    const std::size_t last = bKeepEnd ? end + endMark.size() : end;
    source.AllocCopy(out, static_cast<int>(last - first), static_cast<int>(first));
    return static_cast<int>(first);
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
    OrvoAssert(m_nLen > 0, "m_pData != NULL && m_nLen > 0", Source);
    if (lpszStart == nullptr || lpszEnd == nullptr) {
        return -1;
    }
    return CopyBetween(*this, out, lpszStart, lpszEnd, nStart, bKeepStart, bKeepEnd);
}

int CQSString::GetSubString(CQSString& out, char cStart, char cEnd, int nStart, bool bKeepStart,
                            bool bKeepEnd) const
{
    OrvoAssert(m_nLen > 0, "m_pData != NULL && m_nLen > 0", Source);
    return CopyBetween(*this, out, {&cStart, 1}, {&cEnd, 1}, nStart, bKeepStart, bKeepEnd);
}

int CQSString::FindFirstValidChar(int nStart) const
{
    if (nStart < 0 || nStart >= m_nLen) {
        return -1;
    }
    const int index = nStart + FirstNonBlank(View(*this).substr(static_cast<std::size_t>(nStart)));
    return index < m_nLen ? index : -1;
}

// Trimming

void CQSString::KeepRange(int nStartPos, int nEndPos)
{
    char* const pFresh = NewCopy(m_pData + nStartPos, nEndPos - nStartPos);
    if (pFresh != nullptr) {
        Adopt(pFresh, nEndPos - nStartPos);
    }
}

void CQSString::TrimLeft()
{
    if (m_nLen < 1) {
        return;
    }
    const int start = FirstNonBlank(View(*this));
    if (start == m_nLen) {
        Empty();
    } else {
        KeepRange(start, m_nLen);
    }
}

void CQSString::TrimRight()
{
    if (m_nLen < 1) {
        return;
    }
    const int end = EndOfNonBlanks(View(*this));
    if (end == 0) {
        Empty();
    } else {
        KeepRange(0, end);
    }
}

void CQSString::TrimRightAndLeft()
{
    if (m_nLen < 1) {
        return;
    }
    const int start = FirstNonBlank(View(*this));
    const int end = EndOfNonBlanks(View(*this));
    if (end == 0) {
        Empty();
    } else if (OrvoAssert(end >= start, "nEndPos >= nStartPos", Source)) {
        KeepRange(start, end);
    }
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
    if (OrvoAssert(m_nLen > 0, "m_pData != NULL && m_nLen > 0", Source)) {
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
    const int count = CountOccurrences(text, oldText);
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
    char* const pFresh = NewBuffer(newLength);
    if (pFresh == nullptr) {
        return 0;
    }
    const auto nDstStart = PutReplaced(pFresh, text, oldText, newText) - pFresh;
    Adopt(pFresh, newLength);
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

bool CQSString::AssertText() const
{
    const bool hasBuffer = OrvoAssert(m_pData != nullptr, "m_pData != NULL", Source);
    const bool hasBytes = OrvoAssert(m_nLen > 0, "m_nLen > 0", Source);
    return hasBuffer && hasBytes;
}

int CQSString::ToINT() const
{
    if (!AssertText()) {
        return -1;
    }
    const std::uint32_t value = TrailingDecimal(View(*this));
    return static_cast<int>(m_pData[0] == '-' ? 0U - value : value);
}

unsigned int CQSString::ToUINT() const
{
    return AssertText() ? TrailingDecimal(View(*this)) : 0U;
}

int CQSString::ToHEX() const
{
    if (!AssertText()) {
        return -1;
    }
    std::uint32_t value = 0;
    for (const char c : View(*this)) {
        if (IsDigit(c)) {
            value = value << 4 | static_cast<std::uint32_t>(c - '0');
        } else if (IsHexLetter(c)) {
            value = value << 4 | static_cast<std::uint32_t>((c | 0x20) - 'a' + 10);
        }
    }
    return static_cast<int>(value);
}

int CQSString::SetHexUnits(const char* pText, int nLen)
{
    const long long nUnitBytes = 2LL * nLen;
    char* const pFresh = NewBuffer(nUnitBytes);
    if (pFresh == nullptr) {
        return 0;
    }
    for (std::ptrdiff_t i = 0; i < nLen; ++i) {
        pFresh[2 * i] = '\0';
        pFresh[2 * i + 1] = IsHexLetter(pText[i]) ? Latin1Upper(pText[i]) : pText[i];
    }
    return Adopt(pFresh, nUnitBytes);
}

int CQSString::ToHexString()
{
    // Callers rely on the first byte alone deciding.
    const char first = m_nLen > 0 ? m_pData[0] : '\0';
    if (IsHexLetter(first)) {
        return SetHexUnits(m_pData, m_nLen);
    }
    if (!IsDigit(first) || first == '0') {
        return 0;
    }
    char text[16];
    const char* const end =
        std::to_chars(text, text + sizeof text, WholeDecimal(View(*this)), 16).ptr;
    return SetHexUnits(text, static_cast<int>(end - text));
}

unsigned int CQSString::GetHashCode(CQSString& s)
{
    return HashOf(View(s));
}

void CQSString::ToHashString(CQSString& out) const
{
    out.ToString(static_cast<int>(HashOf(View(*this))));
}
