#pragma once

#include "HexDigits.h"

#include <algorithm>
#include <cstdint>
#include <string_view>
#include <type_traits>

/// \file
/// What the byte string, the wide string and the text utilities share, for units of either kind.
/// Internal; not installed.

/// The units of a string of either class, zero units included.
template <class String>
auto View(const String& s)
{
    using Unit = std::remove_cv_t<std::remove_pointer_t<decltype(s.GetDataPtr())>>;
    return std::basic_string_view<Unit>(s.GetDataPtr(), static_cast<std::size_t>(s.GetLength()));
}

/// A position as the string classes report it: -1 for none.
constexpr int IndexOrNone(std::size_t position)
{
    return position == std::string_view::npos ? -1 : static_cast<int>(position);
}

/// toupper() of the C locale, whatever locale the program has set.
template <class Unit>
constexpr Unit AsciiUpper(Unit c)
{
    return c >= 'a' && c <= 'z' ? static_cast<Unit>(c - 'a' + 'A') : c;
}

/// Whether the texts are equal but for the case of ASCII letters.
template <class Unit>
bool EqualNoCase(std::basic_string_view<Unit> a, std::basic_string_view<Unit> b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](Unit x, Unit y) { return AsciiUpper(x) == AsciiUpper(y); });
}

/// Value of the digits of \a base, at most 16, that end \a text, modulo 2^32.
template <class Unit>
std::uint32_t TrailingNumber(std::basic_string_view<Unit> text, int base)
{
    std::uint32_t value = 0;
    std::uint32_t place = 1;
    for (auto it = text.rbegin(); it != text.rend(); ++it) {
        const int digit = HexDigit(*it);
        if (digit < 0 || digit >= base) {
            break;
        }
        value += static_cast<std::uint32_t>(digit) * place;
        place *= static_cast<std::uint32_t>(base);
    }
    return value;
}

/// The same with a sign: negated when \a text, which is not empty, begins with '-'.
template <class Unit>
int SignedTrailingNumber(std::basic_string_view<Unit> text, int base)
{
    const std::uint32_t value = TrailingNumber(text, base);
    return static_cast<int>(text.front() == '-' ? 0U - value : value);
}

/// Number of times that \a sub, which is not empty, stands in \a text without overlap.
template <class Unit>
int CountOccurrences(std::basic_string_view<Unit> text, std::basic_string_view<Unit> sub)
{
    int count = 0;
    for (std::size_t at = text.find(sub); at != text.npos; at = text.find(sub, at + sub.size())) {
        ++count;
    }
    return count;
}

/// Writes \a text with every \a oldText replaced at \a p and returns the place behind it.
template <class Unit>
Unit* PutReplaced(Unit* p, std::basic_string_view<Unit> text, std::basic_string_view<Unit> oldText,
                  std::basic_string_view<Unit> newText)
{
    std::size_t done = 0;
    for (std::size_t at = text.find(oldText); at != text.npos; at = text.find(oldText, done)) {
        p += text.copy(p, at - done, done);
        p += newText.copy(p, newText.size());
        done = at + oldText.size();
    }
    return p + text.copy(p, text.size() - done, done);
}

/// The delimited GetSubString() of either string class, as described there.
template <class String>
int CopyBetween(const String& source, String& out, decltype(View(source)) startMark,
                decltype(View(source)) endMark, int nStart, bool bKeepStart, bool bKeepEnd)
{
    const int start = std::max(nStart, 0);
    if (start >= source.GetLength() - 1) {
        return -1;
    }
    const auto text = View(source);
    const std::size_t at = text.find(startMark, static_cast<std::size_t>(start));
    // An empty end mark would be found behind the last unit too, where nothing may match.
    if (at == text.npos || at + startMark.size() >= text.size()) {
        return -1;
    }
    const std::size_t inside = at + startMark.size();
    const std::size_t end = text.find(endMark, inside);
    if (end == text.npos) {
        return -1;
    }
    const std::size_t first = bKeepStart ? at : inside;
    const std::size_t last = bKeepEnd ? end + endMark.size() : end;
    source.AllocCopy(out, static_cast<int>(last - first), static_cast<int>(first));
    return static_cast<int>(first);
}
