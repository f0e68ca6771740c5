#pragma once

#include <cstdint>

/// \file
/// UTF-8 encoding (RFC 3629) of single units, shared by the converter and the byte string.
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
    std::int64_t size = 0;
    for (int i = 0; i < nLen; ++i) {
        const auto unit = static_cast<std::uint32_t>(p[i]);
        size += unit < 0x10000 ? Utf8UnitSize(unit) : 0;
    }
    return size;
}
