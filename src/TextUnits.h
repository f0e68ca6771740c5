#pragma once

#include "HexDigits.h"
#include "TextSearch.h"

#include <algorithm>
#include <array>
#include <cstddef>
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
    using Bits = std::make_unsigned_t<Unit>; // one comparison instead of two
    const bool isLower = static_cast<Bits>(static_cast<Bits>(c) - Bits{'a'}) < 26;
    return static_cast<Unit>(c - (isLower ? 'a' - 'A' : 0));
}

/// Whether the texts are equal but for the case of ASCII letters.
template <class Unit>
bool EqualNoCase(std::basic_string_view<Unit> a, std::basic_string_view<Unit> b)
{
    // Blocks without a way out in their middle: the compiler compares several units at once.
    constexpr std::size_t Block = 64;
    if (a.size() != b.size()) {
        return false;
    }
    const Unit* x = a.data();
    const Unit* y = b.data();
    std::size_t left = a.size();
    for (; left >= Block; left -= Block, x += Block, y += Block) {
        Unit difference = 0;
        for (std::size_t i = 0; i < Block; ++i) {
            difference = static_cast<Unit>(difference | (AsciiUpper(x[i]) ^ AsciiUpper(y[i])));
        }
        if (difference != 0) {
            return false;
        }
    }
    return std::equal(x, x + left, y,
                      [](Unit c, Unit d) { return AsciiUpper(c) == AsciiUpper(d); });
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

/// The places at which a text, which is not empty, stands in another without overlap.
template <class Unit>
class Occurrences
{
public:
    using Text = std::basic_string_view<Unit>;

    Occurrences(Text text, Text sub) : m_text(text), m_sub(sub)
    {
        for (std::size_t at = FindText(text, sub); at != text.npos;
             at = FindText(text, sub, at + sub.size())) {
            if (m_count < m_places.size()) {
                m_places[m_count] = at;
            }
            ++m_count;
        }
    }

    int GetCount() const { return static_cast<int>(m_count); }

    /// Writes the text with \a newText in all these places at \a p; returns the place behind it.
    Unit* PutReplaced(Unit* p, Text newText) const
    {
        std::size_t done = 0;
        for (std::size_t i = 0; i < m_count; ++i) {
            const std::size_t at =
                i < m_places.size() ? m_places[i] : FindText(m_text, m_sub, done);
            p += m_text.copy(p, at - done, done);
            p += newText.copy(p, newText.size());
            done = at + m_sub.size();
        }
        return p + m_text.copy(p, m_text.size() - done, done);
    }

private:
    Text m_text, m_sub;
    std::size_t m_count = 0;
    std::array<std::size_t, 512> m_places; // the first ones, which need not be found again
};

/// What ReplaceWithin() did.
struct Replaced {
    int count;
    std::size_t length; ///< of the text afterwards
};

/// Puts \a newText, which is no longer than \a sub, into its places in the text at \a data from the
/// one at \a at on, and moves up what follows: one search, and no copy where the lengths are the
/// same. Neither text lies in the data.
template <class Unit>
Replaced ReplaceWithin(Unit* data, std::size_t size, std::size_t at,
                       std::basic_string_view<Unit> sub, std::basic_string_view<Unit> newText)
{
    const std::basic_string_view<Unit> text(data, size);
    Unit* end = data; // of the result so far
    const auto keep = [&end, data](std::size_t first, std::size_t last) {
        if (end != data + first) {
            std::char_traits<Unit>::move(end, data + first, last - first);
        }
        end += last - first;
    };
    Replaced result{0, 0};
    std::size_t done = 0;
    for (; at != text.npos; at = FindText(text, sub, done)) {
        keep(done, at);
        end += newText.copy(end, newText.size());
        done = at + sub.size();
        ++result.count;
    }
    keep(done, size);
    result.length = static_cast<std::size_t>(end - data);
    return result;
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
    const std::size_t at = FindText(text, startMark, static_cast<std::size_t>(start));
    // An empty end mark would be found behind the last unit too, where nothing may match.
    if (at == text.npos || at + startMark.size() >= text.size()) {
        return -1;
    }
    const std::size_t inside = at + startMark.size();
    const std::size_t end = FindText(text, endMark, inside);
    if (end == text.npos) {
        return -1;
    }
    const std::size_t first = bKeepStart ? at : inside;
    const std::size_t last = bKeepEnd ? end + endMark.size() : end;
    source.AllocCopy(out, static_cast<int>(last - first), static_cast<int>(first));
    return static_cast<int>(first);
}
