#pragma once

#include "Utf8Unit.h"

#include <cstddef>

/// \file
/// UTF-8 into 32-bit units as the platform's decoder reads it: a byte that belongs to no
/// well-formed sequence (RFC 3629) becomes one U+FFFD. Internal; not installed.

/// What DecodeUtf8() did.
struct DecodedUtf8 {
    wchar_t* end;             ///< behind the last unit
    std::ptrdiff_t beyondBmp; ///< number of units above U+FFFF
    bool isWellFormed;
};

/// The text behind the byte-order mark that may stand at its start.
inline const unsigned char* SkipByteOrderMark(const unsigned char* p, const unsigned char* end)
{
    return end - p >= 3 && p[0] == 0xEF && p[1] == 0xBB && p[2] == 0xBF ? p + 3 : p;
}

namespace Utf8Detail
{

constexpr bool IsContinuation(unsigned char byte)
{
    return (byte & 0xC0) == 0x80;
}

// The sequence at `p`, or no character of length 1 for a byte that begins none.
struct Sequence {
    static constexpr std::uint32_t None = 0xFFFFFFFF;
    std::uint32_t character;
    std::ptrdiff_t length;
};

inline Sequence ReadSequence(const unsigned char* p, const unsigned char* end)
{
    constexpr Sequence Malformed{Sequence::None, 1};
    const unsigned char lead = *p;
    if (lead < 0x80) {
        return {lead, 1};
    }
    const std::ptrdiff_t length = lead < 0xC2 || lead > 0xF4 ? 0
                                  : lead < 0xE0              ? 2
                                  : lead < 0xF0              ? 3
                                                             : 4;
    if (length == 0 || end - p < length) {
        return Malformed;
    }
    std::uint32_t character = lead & (0x7FU >> length);
    for (std::ptrdiff_t i = 1; i < length; ++i) {
        if (!IsContinuation(p[i])) {
            return Malformed;
        }
        character = character << 6 | (p[i] & 0x3FU);
    }
    const bool isSurrogate = character - 0xD800 < 0x800;
    const bool isOverlong = Utf8UnitSize(character) != length;
    return isSurrogate || isOverlong || character > 0x10FFFF ? Malformed
                                                             : Sequence{character, length};
}

template <std::ptrdiff_t Size>
wchar_t* WidenAscii(wchar_t* out, const unsigned char* p)
{
    for (std::ptrdiff_t i = 0; i < Size; ++i) {
        out[i] = p[i];
    }
    return out + Size;
}

// What an array of sequences of three bytes holds, gathered so that one look at the end tells
// whether all are well-formed.
class TripleCheck
{
public:
    // The character at `p`, whatever stands there. A fourth byte is read as well.
    std::uint32_t Read(const unsigned char* p)
    {
        const std::uint32_t bytes = std::uint32_t{p[0]} | std::uint32_t{p[1]} << 8 |
                                    std::uint32_t{p[2]} << 16 | std::uint32_t{p[3]} << 24;
        const std::uint32_t character =
            (bytes & 0x0F) << 12 | (bytes >> 2 & 0xFC0) | (bytes >> 16 & 0x3F);
        m_foreignBits |= (bytes ^ 0x8080E0) & 0xC0C0F0;
        m_ranges |= 1U << (character >> 11);
        return character;
    }

    bool IsWellFormed() const
    {
        constexpr std::uint32_t Overlong = 1U << 0;
        constexpr std::uint32_t Surrogates = 1U << (0xD800 >> 11);
        return m_foreignBits == 0 && (m_ranges & (Overlong | Surrogates)) == 0;
    }

private:
    std::uint32_t m_foreignBits = 0;
    std::uint32_t m_ranges = 0; // a bit for each 2048 characters
};

// Decodes well-formed sequences of up to three bytes, those that begin before `last`, and stops at
// anything else; three more bytes can be read behind `safe`, which is not before `last`. One branch
// a length, where ReadSequence() has several, saves a third of the time.
inline const unsigned char* DecodeCommon(wchar_t*& out, const unsigned char* p,
                                         const unsigned char* last, const unsigned char* safe)
{
    wchar_t* unit = out;
    while (p < last) {
        const unsigned char lead = *p;
        if (lead < 0x80) {
            *unit++ = lead;
            ++p;
        } else if (lead < 0xE0) {
            const std::uint32_t second = p[1] ^ 0x80U;
            if (lead < 0xC2 || second > 0x3F) {
                break;
            }
            *unit++ = static_cast<wchar_t>((lead & 0x1FU) << 6 | second);
            p += 2;
        } else if (safe - p > 9 && (lead & p[3] & p[6] & p[9] & 0xF0) == 0xE0) {
            TripleCheck check;
            for (int i = 0; i < 4; ++i) {
                unit[i] = static_cast<wchar_t>(check.Read(p + 3 * i));
            }
            if (!check.IsWellFormed()) {
                break;
            }
            unit += 4;
            p += 12;
        } else {
            TripleCheck check;
            *unit = static_cast<wchar_t>(check.Read(p));
            if (!check.IsWellFormed()) {
                break;
            }
            ++unit;
            p += 3;
        }
    }
    out = unit;
    return p;
}

} // namespace Utf8Detail

/// Decodes the text up to \a end. \a out has room for a unit for each byte, or, when \a strict, for
/// each byte that is no continuation: decoding then stops at the first malformed sequence.
/// Blocks of ASCII and four Chinese characters a step make it twice as fast as the platform's.
inline DecodedUtf8 DecodeUtf8(wchar_t* out, const unsigned char* p, const unsigned char* end,
                              bool strict)
{
    constexpr std::ptrdiff_t BlockSize = 32;
    constexpr std::ptrdiff_t ShortBlockSize = 8;
    DecodedUtf8 result{out, 0, true};
    while (p < end) {
        if (end - p >= BlockSize && IsAscii<BlockSize>(p)) {
            out = Utf8Detail::WidenAscii<BlockSize>(out, p);
            p += BlockSize;
            continue;
        }
        if (end - p >= ShortBlockSize && IsAscii<ShortBlockSize>(p)) {
            out = Utf8Detail::WidenAscii<ShortBlockSize>(out, p);
            p += ShortBlockSize;
            continue;
        }
        if (end - p > 3) {
            const unsigned char* const last = p + std::min(end - p - 3, BlockSize);
            p = Utf8Detail::DecodeCommon(out, p, last, end - 3);
            if (p >= last) {
                continue;
            }
        }
        const Utf8Detail::Sequence next = Utf8Detail::ReadSequence(p, end);
        const bool isMalformed = next.character == Utf8Detail::Sequence::None;
        if (isMalformed && strict) {
            return {out, result.beyondBmp, false};
        }
        result.isWellFormed = result.isWellFormed && !isMalformed;
        result.beyondBmp += !isMalformed && next.character > 0xFFFF ? 1 : 0;
        *out++ = static_cast<wchar_t>(isMalformed ? 0xFFFD : next.character);
        p += next.length;
    }
    result.end = out;
    return result;
}
