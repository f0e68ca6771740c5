#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

/// \file
/// UTF-8 (RFC 3629) unit by unit, as the converter and the strings read and write it.
/// Internal; not installed.

/// Number of bytes that \a unit takes. It is not checked: surrogates take three.
constexpr int Utf8UnitSize(std::uint32_t unit)
{
    return unit < 0x80 ? 1 : unit < 0x800 ? 2 : unit < 0x10000 ? 3 : 4;
}

/// Writes \a unit, at most 0x1FFFFF, at \a p and returns the place behind it.
inline char* PutUtf8Unit(char* p, std::uint32_t unit)
{
    static constexpr unsigned char LeadMark[] = {0, 0, 0xC0, 0xE0, 0xF0};
    const int size = Utf8UnitSize(unit);
    for (int i = size - 1; i > 0; --i) {
        p[i] = static_cast<char>(0x80 | (unit & 0x3F));
        unit >>= 6;
    }
    p[0] = static_cast<char>(LeadMark[size] | unit);
    return p + size;
}

/// Number of bytes that CStrConvertor::Unicode2Utf8() makes of the \a nLen units at \a p, which
/// drops those above U+FFFF. 0 for a length below 1.
inline std::int64_t BmpUtf8Size(const wchar_t* p, int nLen)
{
    // Summed up in 32 bits and without branches, so that the compiler vectorises the loop.
    constexpr int SumsFit = 1 << 20;
    std::int64_t size = 0;
    for (int done = 0; done < nLen;) {
        const int count = std::min(nLen - done, SumsFit);
        std::uint32_t sum = 0;
        for (int i = 0; i < count; ++i) {
            const auto unit = static_cast<std::uint32_t>(p[done + i]);
            const std::uint32_t bytes = 1U + (unit >= 0x80 ? 1U : 0U) + (unit >= 0x800 ? 1U : 0U);
            sum += unit < 0x10000 ? bytes : 0U;
        }
        size += sum;
        done += count;
    }
    return size;
}

/// Length of the sequence that \a lead opens for CStrConvertor::Utf82Unicode(), 0 for a byte that
/// opens none. Leads of four-byte sequences count among the latter: that decoder knows the Basic
/// Multilingual Plane only.
constexpr int BmpSequenceLength(unsigned char lead)
{
    if (lead < 0x80) {
        return 1;
    }
    if ((lead & 0xE0) == 0xC0) {
        return 2;
    }
    return (lead & 0xF0) == 0xE0 ? 3 : 0;
}

/// Number of units that CStrConvertor::Utf82Unicode() makes of the text up to \a end, room given.
inline std::int64_t CountBmpUnits(const unsigned char* p, const unsigned char* end)
{
    std::int64_t count = 0;
    while (p < end) {
        const int length = BmpSequenceLength(*p);
        count += length > 0 ? 1 : 0;
        p += std::min<std::ptrdiff_t>(std::max(length, 1), end - p);
    }
    return count;
}

/// Whether \a Size bytes, a multiple of eight, are ASCII: eight of them, or a vector, at once.
template <std::ptrdiff_t Size>
bool IsAscii(const unsigned char* p)
{
    static_assert(Size % 8 == 0);
    std::uint64_t bits = 0;
    for (std::ptrdiff_t i = 0; i < Size; i += 8) {
        std::uint64_t word;
        std::memcpy(&word, p + i, sizeof word);
        bits |= word;
    }
    return (bits & 0x8080808080808080U) == 0;
}
