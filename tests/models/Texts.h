#pragma once

// Strings of any units, and wide text in other encodings, unit by unit: the platform's own
// conversions take a U+FEFF in front for a byte-order mark.

#include "Model.h"

#include <QChar>
#include <QString>

#include <cstdint>
#include <string>

/// The bytes of a text, to be written too.
unsigned char* Unsigned(auto& text)
{
    return reinterpret_cast<unsigned char*>(text.data());
}

/// A string of either class that holds all of \a text, zeros too.
template <class String>
String Holding(auto text)
{
    String s;
    s.AppendData(Unsigned(text), static_cast<int>(text.size()));
    return s;
}

/// All that a string of either class holds, in front of its terminator.
auto Content(const auto& s)
{
    MODEL_CHECK(s.GetDataPtr() == nullptr || s.GetDataPtr()[s.GetLength()] == 0);
    return std::basic_string(s.GetDataPtr(), static_cast<std::size_t>(s.GetLength()));
}

/// Each byte as a unit.
template <class Unit>
std::basic_string<Unit> Widened(const std::string& text)
{
    return {text.begin(), text.end()};
}

/// UTF-8 of the units below 0x10000, surrogates too; the others are left out.
inline std::string BmpUtf8(const std::wstring& units)
{
    std::string bytes;
    for (const wchar_t c : units) {
        const auto unit = static_cast<std::uint32_t>(c);
        const auto next = [=](int bits) { return static_cast<char>(0x80 | (unit >> bits & 0x3F)); };
        bytes += unit > 0xFFFF ? std::string()
                 : unit > 0x7FF
                     ? std::string{static_cast<char>(0xE0 | unit >> 12), next(6), next(0)}
                 : unit > 0x7F ? std::string{static_cast<char>(0xC0 | unit >> 6), next(0)}
                               : std::string{static_cast<char>(unit)};
    }
    return bytes;
}

/// UTF-16, with \a foreign in place of what is no code point.
inline QString Utf16(const std::wstring& units, char16_t foreign = 0xFFFD)
{
    QString text;
    for (const wchar_t c : units) {
        const auto unit = static_cast<char32_t>(c);
        const char32_t known = unit > 0x10FFFF ? foreign : unit;
        text += known > 0xFFFF ? QString::fromUcs4(&known, 1) : QString(QChar(char16_t(known)));
    }
    return text;
}
