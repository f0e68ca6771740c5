#include "WideCase.h"

#include <QChar>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <iterator>

namespace
{

// The mappings to several units, from the Unicode character database (SpecialCasing.txt, the
// unconditional ones). The platform has them only in operations that ask for memory.
struct Expansion {
    char16_t unit;
    char16_t mapped[3]; // a zero ends a shorter one
};

constexpr Expansion UpperExpansions[] = {
    {0x00DF, {0x0053, 0x0053}},         {0x0149, {0x02BC, 0x004E}},
    {0x01F0, {0x004A, 0x030C}},         {0x0390, {0x0399, 0x0308, 0x0301}},
    {0x03B0, {0x03A5, 0x0308, 0x0301}}, {0x0587, {0x0535, 0x0552}},
    {0x1E96, {0x0048, 0x0331}},         {0x1E97, {0x0054, 0x0308}},
    {0x1E98, {0x0057, 0x030A}},         {0x1E99, {0x0059, 0x030A}},
    {0x1E9A, {0x0041, 0x02BE}},         {0x1F50, {0x03A5, 0x0313}},
    {0x1F52, {0x03A5, 0x0313, 0x0300}}, {0x1F54, {0x03A5, 0x0313, 0x0301}},
    {0x1F56, {0x03A5, 0x0313, 0x0342}}, {0x1FB2, {0x1FBA, 0x0399}},
    {0x1FB3, {0x0391, 0x0399}},         {0x1FB4, {0x0386, 0x0399}},
    {0x1FB6, {0x0391, 0x0342}},         {0x1FB7, {0x0391, 0x0342, 0x0399}},
    {0x1FBC, {0x0391, 0x0399}},         {0x1FC2, {0x1FCA, 0x0399}},
    {0x1FC3, {0x0397, 0x0399}},         {0x1FC4, {0x0389, 0x0399}},
    {0x1FC6, {0x0397, 0x0342}},         {0x1FC7, {0x0397, 0x0342, 0x0399}},
    {0x1FCC, {0x0397, 0x0399}},         {0x1FD2, {0x0399, 0x0308, 0x0300}},
    {0x1FD3, {0x0399, 0x0308, 0x0301}}, {0x1FD6, {0x0399, 0x0342}},
    {0x1FD7, {0x0399, 0x0308, 0x0342}}, {0x1FE2, {0x03A5, 0x0308, 0x0300}},
    {0x1FE3, {0x03A5, 0x0308, 0x0301}}, {0x1FE4, {0x03A1, 0x0313}},
    {0x1FE6, {0x03A5, 0x0342}},         {0x1FE7, {0x03A5, 0x0308, 0x0342}},
    {0x1FF2, {0x1FFA, 0x0399}},         {0x1FF3, {0x03A9, 0x0399}},
    {0x1FF4, {0x038F, 0x0399}},         {0x1FF6, {0x03A9, 0x0342}},
    {0x1FF7, {0x03A9, 0x0342, 0x0399}}, {0x1FFC, {0x03A9, 0x0399}},
    {0xFB00, {0x0046, 0x0046}},         {0xFB01, {0x0046, 0x0049}},
    {0xFB02, {0x0046, 0x004C}},         {0xFB03, {0x0046, 0x0046, 0x0049}},
    {0xFB04, {0x0046, 0x0046, 0x004C}}, {0xFB05, {0x0053, 0x0054}},
    {0xFB06, {0x0053, 0x0054}},         {0xFB13, {0x0544, 0x0546}},
    {0xFB14, {0x0544, 0x0535}},         {0xFB15, {0x0544, 0x053B}},
    {0xFB16, {0x054E, 0x0546}},         {0xFB17, {0x0544, 0x053D}}};

constexpr Expansion LowerExpansions[] = {{0x0130, {0x0069, 0x0307}}};

bool IsCodePoint(std::uint32_t unit)
{
    return unit <= QChar::LastValidCodePoint && !QChar::isSurrogate(unit);
}

// What the platform's tables say about units below `Size`, which cost a call each otherwise: that
// made mapping Latin, Greek and Cyrillic text three times as fast.
template <char32_t (*Map)(char32_t)>
struct CachedMap {
    static constexpr std::uint32_t Size = 0x600;

    CachedMap()
    {
        for (std::uint32_t unit = 0; unit < Size; ++unit) {
            m_mapped[unit] = static_cast<char16_t>(Map(unit));
        }
    }

    wchar_t operator()(wchar_t c) const
    {
        const auto unit = static_cast<std::uint32_t>(c);
        if (unit < Size) {
            return static_cast<wchar_t>(m_mapped[unit]);
        }
        // Chinese, Japanese and Korean have no case.
        const bool isCaseless = (unit >= 0x2E80 && unit < 0xA640) || (unit - 0xAC00 < 0x2C00);
        return isCaseless || !IsCodePoint(unit) ? c : static_cast<wchar_t>(Map(unit));
    }

private:
    std::array<char16_t, Size> m_mapped;
};

char32_t ToUpper(char32_t c)
{
    return QChar::toUpper(c);
}

char32_t ToLower(char32_t c)
{
    return QChar::toLower(c);
}

char32_t Fold(char32_t c)
{
    return QChar::toCaseFolded(c);
}

template <char32_t (*Map)(char32_t)>
const CachedMap<Map>& Cached()
{
    static const CachedMap<Map> map;
    return map;
}

// The character that begins at `p`, which moves behind it: a surrogate pair in two units is one.
wchar_t NextCharacter(const wchar_t*& p, const wchar_t* end)
{
    const auto unit = static_cast<char32_t>(*p++);
    if (QChar::isHighSurrogate(unit) && p != end &&
        QChar::isLowSurrogate(static_cast<char32_t>(*p))) {
        const auto low = static_cast<char16_t>(*p++);
        return static_cast<wchar_t>(QChar::surrogateToUcs4(static_cast<char16_t>(unit), low));
    }
    return static_cast<wchar_t>(unit);
}

constexpr int BlockSize = 16;

bool IsAsciiBlock(const wchar_t* p)
{
    std::uint32_t allBits = 0;
    for (int i = 0; i < BlockSize; ++i) {
        allBits |= static_cast<std::uint32_t>(p[i]);
    }
    return allBits < 0x80;
}

// Whether a block is of Chinese or Japanese, which a plain look at its range tells.
bool IsCaselessBlock(const wchar_t* p)
{
    bool isCaseless = true;
    for (int i = 0; i < BlockSize; ++i) {
        isCaseless &= static_cast<std::uint32_t>(p[i]) - 0x2E80 < 0xA640 - 0x2E80;
    }
    return isCaseless;
}

// One direction of case mapping.
template <char32_t (*Map)(char32_t), char FirstLetter>
struct CaseMapping {
    const Expansion* expansions;
    const Expansion* expansionsEnd;

    // The units that `c` maps to beside the first, and all of them at `mapped`.
    int Expand(wchar_t c, char16_t (&mapped)[3]) const
    {
        if (FirstLetter == 'a' && c >= 0x1F80 && c < 0x1FB0) {
            // Greek with iota subscript: the capital and a capital iota.
            constexpr char16_t Capitals[] = {0x1F08, 0x1F28, 0x1F68};
            mapped[0] = static_cast<char16_t>(Capitals[(c - 0x1F80) >> 4] | (c & 7));
            mapped[1] = 0x0399;
            return 1;
        }
        const auto isBefore = [](const Expansion& e, wchar_t unit) { return e.unit < unit; };
        const Expansion* const hit = std::lower_bound(expansions, expansionsEnd, c, isBefore);
        if (hit == expansionsEnd || hit->unit != c) {
            return 0;
        }
        std::copy_n(hit->mapped, 3, mapped);
        return mapped[2] == 0 ? 1 : 2;
    }

    static bool MayExpand(wchar_t c)
    {
        return c == 0xDF || (c >= 0x130 && c < 0x588) || (c >= 0x1E96 && c < 0x2000) ||
               (c >= 0xFB00 && c < 0xFB18);
    }

    static void MapAscii(wchar_t* out, const wchar_t* p)
    {
        wchar_t mapped[BlockSize];
        for (int i = 0; i < BlockSize; ++i) {
            const bool isLetter = static_cast<std::uint32_t>(p[i]) - FirstLetter < 26;
            mapped[i] = p[i] ^ (isLetter ? 0x20 : 0);
        }
        std::copy_n(mapped, BlockSize, out);
    }

    // Maps what stays one unit. Returns the place behind the text, which joined pairs make
    // shorter, and counts the units that are still to come.
    wchar_t* MapSingles(wchar_t* text, const wchar_t* end, int& nExtra) const
    {
        const CachedMap<Map>& map = Cached<Map>();
        wchar_t* out = text;
        for (const wchar_t* p = text; p != end;) {
            if (end - p >= BlockSize && IsAsciiBlock(p)) {
                MapAscii(out, p);
                p += BlockSize;
                out += BlockSize;
                continue;
            }
            if (end - p >= BlockSize && IsCaselessBlock(p)) {
                out = std::copy_n(p, BlockSize, out);
                p += BlockSize;
                continue;
            }
            for (const wchar_t* const last = p + std::min<std::ptrdiff_t>(end - p, BlockSize);
                 p < last;) {
                const wchar_t c = NextCharacter(p, end);
                char16_t mapped[3];
                nExtra += MayExpand(c) ? Expand(c, mapped) : 0;
                *out++ = map(c);
            }
        }
        return out;
    }

    // Writes out, from the end on, what maps to several units; what does not fit is lost.
    void WriteExpansions(wchar_t* text, const wchar_t* textEnd, const wchar_t* end,
                         int nExtra) const
    {
        for (const wchar_t* p = textEnd; nExtra > 0;) {
            const wchar_t c = *--p;
            char16_t mapped[3];
            const int nMore = MayExpand(c) ? Expand(c, mapped) : 0;
            nExtra -= nMore;
            const std::ptrdiff_t at = p - text + nExtra;
            for (int i = 0; i <= nMore && at + i < end - text; ++i) {
                text[at + i] = nMore == 0 ? c : static_cast<wchar_t>(mapped[i]);
            }
        }
    }

    void Run(wchar_t* text, int nLen) const
    {
        wchar_t* const end = text + nLen;
        int nExtra = 0;
        wchar_t* const textEnd = MapSingles(text, end, nExtra);
        std::fill(textEnd, end, L'\0');
        WriteExpansions(text, textEnd, end, nExtra);
    }
};

} // namespace

void WideCase::MakeUpper(wchar_t* text, int nLen)
{
    CaseMapping<ToUpper, 'a'>{std::begin(UpperExpansions), std::end(UpperExpansions)}.Run(text,
                                                                                          nLen);
}

void WideCase::MakeLower(wchar_t* text, int nLen)
{
    CaseMapping<ToLower, 'A'>{std::begin(LowerExpansions), std::end(LowerExpansions)}.Run(text,
                                                                                          nLen);
}

bool WideCase::EqualFolded(std::wstring_view a, std::wstring_view b)
{
    const CachedMap<Fold>& fold = Cached<Fold>();
    const wchar_t* p = a.data();
    const wchar_t* q = b.data();
    const wchar_t* const aEnd = p + a.size();
    const wchar_t* const bEnd = q + b.size();
    while (p != aEnd && q != bEnd) {
        if (fold(NextCharacter(p, aEnd)) != fold(NextCharacter(q, bEnd))) {
            return false;
        }
    }
    return p == aEnd && q == bEnd;
}
