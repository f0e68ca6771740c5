#pragma once

#include <QString>

#include <cstddef>
#include <cstdint>
#include <string_view>

/// \file
/// UTF-16 encoding of wide units, one by one: the platform's own conversions take a leading
/// U+FEFF or FFFE0000 for a byte-order mark. Internal; not installed.

/// Number of 16-bit units that \a unit takes.
constexpr int Utf16UnitSize(wchar_t unit)
{
    const auto value = static_cast<std::uint32_t>(unit);
    return value > 0xFFFF && value <= 0x10FFFF ? 2 : 1;
}

/// Writes \a unit at \a p, a QChar or an integer of 16 bits, and returns the place behind it.
/// Surrogate values are kept, units beyond U+10FFFF become U+FFFD.
template <class Unit16>
constexpr Unit16* PutUtf16Unit(Unit16* p, wchar_t unit)
{
    static_assert(sizeof(wchar_t) == 4);
    const auto value = static_cast<std::uint32_t>(unit);
    if (value <= 0xFFFF) {
        *p++ = static_cast<Unit16>(static_cast<char16_t>(value));
    } else if (value <= 0x10FFFF) {
        *p++ = static_cast<Unit16>(static_cast<char16_t>(0xD7C0 + (value >> 10)));
        *p++ = static_cast<Unit16>(static_cast<char16_t>(0xDC00 | (value & 0x3FF)));
    } else {
        *p++ = static_cast<Unit16>(u'\xFFFD');
    }
    return p;
}

/// Number of 16-bit units that \a text takes.
inline std::size_t Utf16Size(std::wstring_view text)
{
    std::size_t size = 0;
    for (const wchar_t unit : text) {
        size += static_cast<std::size_t>(Utf16UnitSize(unit));
    }
    return size;
}

/// Writes \a text at \a p and returns the place behind it.
template <class Unit16>
Unit16* PutUtf16(Unit16* p, std::wstring_view text)
{
    for (const wchar_t unit : text) {
        p = PutUtf16Unit(p, unit);
    }
    return p;
}

/// \a text as Qt takes it.
inline QString ToQString(std::wstring_view text)
{
    QString result(static_cast<decltype(QString().size())>(Utf16Size(text)), Qt::Uninitialized);
    PutUtf16(result.data(), text);
    return result;
}
