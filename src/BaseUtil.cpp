#include "BaseUtil.h"

#include "CStrConvertor.h"
#include "HexDigits.h"
#include "OrvoAssert.h"
#include "SystemTime.h"
#include "TextSearch.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <utility>

namespace
{

constexpr char Source[] = "src/BaseUtil";

bool IsSpace(char c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

struct LowerUnit {
    constexpr unsigned char operator()(unsigned char c) const
    {
        return c >= 'A' && c <= 'Z' ? static_cast<unsigned char>(c + ('a' - 'A')) : c;
    }
};

void CopySwapped(unsigned char* dst, const unsigned char* src, int length)
{
    if (!OrvoAssert(dst != nullptr && src != nullptr && length >= 0, "false", Source)) {
        return;
    }
    for (int i = 0; i + 1 < length; i += 2) {
        const unsigned char first = src[i];
        dst[i] = src[i + 1];
        dst[i + 1] = first;
    }
}

/// Magnitude of the hexadecimal digits at [p, end); anything above 32 bits comes out as 2^32.
std::uint64_t ParseHex(const char* p, const char* end)
{
    std::uint64_t value = 0;
    for (; p != end && HexDigit(*p) >= 0; ++p) {
        value = std::min<std::uint64_t>(value << 4 | static_cast<unsigned>(HexDigit(*p)),
                                        UINT64_C(0x100000000));
    }
    return value;
}

} // namespace

void SetUTF8(unsigned char* pDst, const unsigned char* pSrc, int nLen)
{
    CopySwapped(pDst, pSrc, nLen);
}

void GetUTF8(unsigned char* pDst, const unsigned char* pSrc, int nLen)
{
    CopySwapped(pDst, pSrc, nLen);
}

void ChangeUnicodeEnd(char* p, int nLen)
{
    if (p == nullptr) {
        return;
    }
    for (std::int64_t i = 0; i < nLen; i += 2) {
        std::swap(p[i], p[i + 1]);
    }
}

int GetCurTime()
{
    return SystemTime::Seconds(QDateTime::currentDateTimeUtc());
}

void QSleep(unsigned int) {}

int CBaseUtil::StrToUL(char* str, int len, int, unsigned long& out)
{
    out = 0;
    if (!OrvoAssert(str != nullptr && len > 0, "str != NULL && len > 0", Source, 493)) {
        return 0;
    }
    const char* p = str;
    const char* const end = str + len;
    if (*p == '#') {
        ++p;
    }
    p = std::find_if_not(p, end, IsSpace);
    const bool negative = p != end && *p == '-';
    if (p != end && (*p == '-' || *p == '+')) {
        ++p;
    }
    if (end - p > 2 && p[0] == '0' && (p[1] == 'x' || p[1] == 'X')) {
        p += 2;
    }
    const std::uint64_t value = ParseHex(p, end);
    if (value > UINT32_MAX) {
        out = UINT32_MAX;
    } else {
        out = static_cast<std::uint32_t>(negative ? 0U - value : value);
    }
    return 1;
}

int CBaseUtil::wtoh(wchar_t const* s, int len)
{
    if (s == nullptr || len <= 0) {
        return 0;
    }
    const bool negative = *s == L'-';
    std::uint32_t value = 0;
    for (int i = negative ? 1 : 0; i < len && HexDigit(s[i]) >= 0; ++i) {
        value = value << 4 | static_cast<std::uint32_t>(HexDigit(s[i]));
    }
    return static_cast<std::int32_t>(negative ? 0U - value : value);
}

int CBaseUtil::Rand(unsigned long& seed)
{
    // Park and Miller, "Random number generators: good ones are hard to find" (1988): multiplier
    // 16807, modulus 2^31 - 1, with Schrage's factors. The seed is taken as it is, also outside
    // the generator's range.
    const auto old = static_cast<std::uint32_t>(seed);
    std::uint32_t next = 16807U * (old % 127773U) - 2836U * (old / 127773U);
    if (static_cast<std::int32_t>(next) <= 0) {
        next += 2147483647U;
    }
    seed = next;
    return static_cast<int>(next & 0x7FFFFFFFU);
}

int CBaseUtil::Random()
{
    return std::rand();
}

int CBaseUtil::Random(int a, int b)
{
    const std::int64_t distance = std::abs(static_cast<std::int64_t>(b) - a);
    if (distance == 0) {
        return a;
    }
    return static_cast<std::int32_t>(a + std::rand() % distance);
}

unsigned char* CBaseUtil::SearchMem(unsigned char* mem, int memLen, char* pattern, int patLen)
{
    if (mem == nullptr || pattern == nullptr || memLen < 0 || patLen < 0) {
        return nullptr;
    }
    return static_cast<unsigned char*>(
        memmem(mem, static_cast<std::size_t>(memLen), pattern, static_cast<std::size_t>(patLen)));
}

unsigned char* CBaseUtil::SearchMemNoCase(unsigned char* mem, int memLen, char* pattern, int patLen)
{
    if (mem == nullptr || pattern == nullptr || memLen <= 0 || patLen <= 0) {
        return nullptr;
    }
    using Bytes = std::basic_string_view<unsigned char>;
    const Bytes text(mem, static_cast<std::size_t>(memLen));
    const Bytes sought(reinterpret_cast<const unsigned char*>(pattern),
                       static_cast<std::size_t>(patLen));
    const std::size_t at = FindText(text, sought, 0, LowerUnit());
    return at != Bytes::npos ? mem + at : nullptr;
}

void CBaseUtil::MakeLowerCase(unsigned char* p, int len)
{
    if (OrvoAssert(p != nullptr && len > 0, "pSrc != NULL && iLen > 0", Source, 203)) {
        std::transform(p, p + len, p, LowerUnit());
    }
}

void CBaseUtil::CheckErrorWords(unsigned char* text, unsigned short len)
{
    constexpr unsigned char LineBreak = 12;
    if (text == nullptr) {
        return;
    }
    for (int i = 0; i + 1 < len; i += 2) {
        if (text[i + 1] != 0) {
            continue;
        }
        if (text[i] == '\r' && i + 3 < len && text[i + 2] == '\n' && text[i + 3] == 0) {
            text[i] = ' ';
            text[i + 2] = LineBreak;
        } else if (text[i] == '\r' || text[i] == '\n') {
            text[i] = LineBreak;
        } else if (text[i] == '\t') {
            text[i] = ' ';
        }
    }
}

int CBaseUtil::UnicodeToUTF8(char* pDst, int nDstLen, const wchar_t* pSrc, int nSrcLen)
{
    return CStrConvertor::Unicode2Utf8(pDst, nDstLen, pSrc, nSrcLen);
}

int CBaseUtil::Unicode2Char(char* pDst, int& nLen, const wchar_t* pSrc, int nSrcLen)
{
    nLen = CStrConvertor::Unicode2Utf8(pDst, nLen, pSrc, nSrcLen);
    return 1;
}

int CBaseUtil::UTF8ToUnicode(wchar_t* pDst, int nDstLen, char* pSrc, int nSrcLen)
{
    return CStrConvertor::Utf82Unicode(pDst, nDstLen, pSrc, nSrcLen);
}

int CBaseUtil::Char2Unicode(wchar_t* pDst, int nDstLen, char* pSrc, int nSrcLen)
{
    return CStrConvertor::Utf82Unicode(pDst, nDstLen, pSrc, nSrcLen);
}

void CBaseUtil::SetShort(unsigned char* p, short v)
{
    SetWORD(p, static_cast<unsigned short>(v));
}

void CBaseUtil::SetLong(unsigned char* p, long v)
{
    SetDWORD(p, static_cast<unsigned long>(v));
}

void CBaseUtil::GetShort(short* v, unsigned char* p)
{
    unsigned short word = 0;
    GetWORD(word, p);
    *v = static_cast<short>(word);
}

void CBaseUtil::GetLong(long* v, unsigned char* p)
{
    unsigned long doubleWord = 0;
    GetDWORD(doubleWord, p);
    *v = static_cast<std::int32_t>(doubleWord);
}

unsigned int CBaseUtil::GetTickCount()
{
    return 0;
}

int CBaseUtil::FormatDate(CQWString&, wchar_t const*, int)
{
    return 0;
}
