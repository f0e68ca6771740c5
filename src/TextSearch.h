#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <string_view>
#include <type_traits>

/// \file
/// Searching one text in another, in time linear in both lengths whatever they hold. The string
/// classes and the text utilities share it. Internal; not installed.

/// Lets units be compared as they are. What takes its place in a search maps each unit to the one
/// that stands for all that count as equal to it, such as its capital.
struct SameUnit {
    template <class Unit>
    constexpr Unit operator()(Unit c) const
    {
        return c;
    }
};

/// The two-way search of Crochemore and Perrin ("Two-way string-matching", Journal of the ACM 38,
/// 1991), linear in time and constant in space. Most of an ordinary text is jumped over besides,
/// by the distance at which the unit under the end of the sought text last stands in it.
template <class Unit, class Map = SameUnit>
class TwoWaySearch
{
public:
    using Text = std::basic_string_view<Unit>;

    /// Prepares the search for \a sub, which is not empty and outlives it.
    explicit TwoWaySearch(Text sub, Map map = {}) : m_sub(sub), m_map(map)
    {
        Factorize();
        MeasureSkips();
    }

    /// First occurrence in \a text at or after \a from, or npos.
    std::size_t FindIn(Text text, std::size_t from) const
    {
        const std::size_t size = m_sub.size();
        std::size_t known = 0; // units at `at` that are seen to match already
        for (std::size_t at = from; at + size <= text.size();) {
            const std::size_t skip = known == 0 ? GetSkip(text[at + size - 1]) : 0;
            if (skip > 0) {
                at += skip;
                continue;
            }
            const Text window = text.substr(at, size);
            const std::size_t right = MatchForward(window, std::max(m_split, known));
            if (right < size) {
                at += right - m_split + 1;
                known = 0;
            } else if (MatchesBetween(window, known, m_split)) {
                return at;
            } else {
                at += m_period;
                known = m_isPeriodic ? size - m_period : 0;
            }
        }
        return Text::npos;
    }

private:
    struct Suffix {
        std::size_t start, period;
    };

    /// The suffix of the sought text that comes last in the order \a isBefore, and its period.
    template <class IsBefore>
    Suffix FindLastSuffix(IsBefore isBefore) const
    {
        Suffix last{0, 1};
        std::size_t rival = 1;
        std::size_t same = 0;
        while (rival + same < m_sub.size()) {
            const Unit ours = m_map(m_sub[last.start + same]);
            const Unit theirs = m_map(m_sub[rival + same]);
            if (ours == theirs) {
                ++same;
                if (same == last.period) {
                    rival += same;
                    same = 0;
                }
            } else if (isBefore(theirs, ours)) {
                rival += same + 1;
                same = 0;
                last.period = rival - last.start;
            } else {
                last = {rival, 1};
                ++rival;
                same = 0;
            }
        }
        return last;
    }

    /// Splits the sought text where its local period is that of the whole: behind the shorter of
    /// what the last suffixes in the two opposite orders leave.
    void Factorize()
    {
        const Suffix up = FindLastSuffix([](Unit a, Unit b) { return a < b; });
        const Suffix down = FindLastSuffix([](Unit a, Unit b) { return b < a; });
        const Suffix& last = up.start > down.start ? up : down;
        m_split = last.start;
        m_isPeriodic = MatchesBetween(m_sub.substr(last.period), 0, m_split);
        m_period = m_isPeriodic ? last.period : std::max(m_split, m_sub.size() - m_split) + 1;
    }

    static constexpr std::size_t LongestSkip = 255; // what a table of bytes holds

    // Units that share a place in the table take the shortest of their distances.
    void MeasureSkips()
    {
        const std::size_t size = m_sub.size();
        m_skips.fill(static_cast<unsigned char>(std::min(size, LongestSkip)));
        for (std::size_t i = size - std::min(size, LongestSkip + 1); i < size; ++i) {
            m_skips[GetPlace(m_sub[i])] = static_cast<unsigned char>(size - 1 - i);
        }
        if constexpr (sizeof(Unit) == 1) {
            // Bytes are few: the table answers for each as it is, without a mapping on the way.
            const auto mapped = m_skips;
            for (std::size_t c = 0; c < m_skips.size(); ++c) {
                m_skips[c] = mapped[GetPlace(static_cast<Unit>(c))];
            }
        }
    }

    std::size_t GetPlace(Unit c) const { return static_cast<unsigned char>(m_map(c)); }

    std::size_t GetSkip(Unit c) const
    {
        return m_skips[sizeof(Unit) == 1 ? static_cast<unsigned char>(c) : GetPlace(c)];
    }

    /// End of the match of \a window with the sought text that begins at \a i in both.
    std::size_t MatchForward(Text window, std::size_t i) const
    {
        while (i < m_sub.size() && m_map(window[i]) == m_map(m_sub[i])) {
            ++i;
        }
        return i;
    }

    bool MatchesBetween(Text window, std::size_t first, std::size_t last) const
    {
        while (last > first && m_map(window[last - 1]) == m_map(m_sub[last - 1])) {
            --last;
        }
        return last <= first;
    }

    Text m_sub;
    Map m_map;
    std::size_t m_split = 0;
    std::size_t m_period = 1;
    bool m_isPeriodic = false;
    std::array<unsigned char, 256> m_skips;
};

/// Whether \a Map leaves units as they are, so that the platform's searches for units serve.
template <class Map>
constexpr bool IsExact = std::is_same_v<Map, SameUnit>;

/// First unit at or after \a from that counts as equal to \a c, or npos.
template <class Unit, class Map>
std::size_t FindUnit(std::basic_string_view<Unit> text, Unit c, std::size_t from, Map map)
{
    if constexpr (IsExact<Map>) {
        return text.find(c, from);
    } else {
        const auto hit = std::find_if(text.begin() + static_cast<std::ptrdiff_t>(from), text.end(),
                                      [map, wanted = map(c)](Unit u) { return map(u) == wanted; });
        return hit == text.end() ? text.npos : static_cast<std::size_t>(hit - text.begin());
    }
}

/// Whether two texts of the same length are equal.
template <class Unit, class Map>
bool IsSameText(std::basic_string_view<Unit> a, std::basic_string_view<Unit> b, Map map)
{
    if constexpr (IsExact<Map>) {
        return a == b;
    } else {
        return std::equal(a.begin(), a.end(), b.begin(),
                          [map](Unit x, Unit y) { return map(x) == map(y); });
    }
}

/// Whether the compiler has vector registers to compare several units at once with.
#if defined(__SSE2__) || defined(__ARM_NEON)
constexpr bool HasVectors = true;
#else
constexpr bool HasVectors = false;
#endif

/// First place at or after \a from where \a sub fits by its first and its last unit, or npos.
/// Blocks without one are passed over by vector instructions, and few false starts are left: three
/// times as fast as the linear search in an ordinary text.
template <class Unit, class Map>
std::size_t FindEnds(std::basic_string_view<Unit> text, std::basic_string_view<Unit> sub,
                     std::size_t from, Map map)
{
    constexpr std::size_t Block = 32;
    const std::size_t starts = text.size() - sub.size() + 1;
    const Unit* const begins = text.data();
    const Unit* const ends = begins + (sub.size() - 1);
    const auto fits = [begins, ends, map, first = map(sub.front()),
                       last = map(sub.back())](std::size_t at) {
        return static_cast<int>(map(begins[at]) == first) & static_cast<int>(map(ends[at]) == last);
    };
    std::size_t at = from;
    for (; starts - at >= Block; at += Block) {
        int found = 0;
        for (std::size_t i = 0; i < Block; ++i) {
            found |= fits(at + i);
        }
        if (found != 0) {
            break;
        }
    }
    while (at < starts && fits(at) == 0) {
        ++at;
    }
    return at < starts ? at : text.npos;
}

/// What false starts of a search may cost beyond the way that it made, before a linear one takes
/// over, and what each of them costs besides the length of the sought text.
constexpr std::size_t Allowance = 256;
constexpr std::size_t FalseStart = 16;

/// First occurrence of \a sub, which is not empty, at or after \a from, or npos: what is worth its
/// preparation in a long text. The platform's own search for bytes is linear too, and faster.
/// One copy serves all its callers: a call is little beside what it does.
template <class Unit, class Map>
[[gnu::noinline]] std::size_t FindInLongText(std::basic_string_view<Unit> text,
                                             std::basic_string_view<Unit> sub, std::size_t from,
                                             Map map)
{
    if constexpr (IsExact<Map> && sizeof(Unit) == 1) {
        const void* const hit =
            memmem(text.data() + from, text.size() - from, sub.data(), sub.size());
        return hit == nullptr
                   ? text.npos
                   : static_cast<std::size_t>(static_cast<const Unit*>(hit) - text.data());
    } else {
        // The same bargain as in FindText(), with the better guess at a start.
        std::size_t at = from;
        for (std::size_t spent = 0; HasVectors && spent <= Allowance + (at - from); ++at) {
            at = FindEnds(text, sub, at, map);
            if (at == text.npos || IsSameText({text.data() + at, sub.size()}, sub, map)) {
                return at;
            }
            spent += FalseStart + sub.size();
        }
        return TwoWaySearch<Unit, Map>(sub, map).FindIn(text, at);
    }
}

/// First occurrence of \a sub at or after \a from, or npos; find() of std::basic_string_view, but
/// linear. Units that \a map makes the same count as equal.
template <class Unit, class Map = SameUnit>
std::size_t FindText(std::basic_string_view<Unit> text, std::basic_string_view<Unit> sub,
                     std::size_t from = 0, Map map = {})
{
    if (from > text.size() || sub.size() > text.size() - from) {
        return text.npos;
    }
    if (sub.empty()) {
        return from;
    }
    if (sub.size() == 1) {
        return FindUnit(text, sub.front(), from, map);
    }
    // Most searches end before a linear one would be prepared, so a plain one goes first: as long
    // as its false starts cost no more than the way it made, and a mapped one no further than that.
    const std::size_t starts = text.size() - sub.size() + 1;
    const std::size_t plainEnd = IsExact<Map> ? starts : std::min(starts, from + Allowance);
    const std::basic_string_view<Unit> plain = text.substr(0, plainEnd);
    std::size_t spent = 0;
    std::size_t at = FindUnit(plain, sub.front(), from, map);
    while (at != text.npos) {
        if (IsSameText({text.data() + at, sub.size()}, sub, map)) {
            return at;
        }
        ++at;
        spent += FalseStart + sub.size();
        if (spent > Allowance + (at - from)) {
            return FindInLongText(text, sub, at, map);
        }
        at = FindUnit(plain, sub.front(), at, map);
    }
    return plainEnd == starts ? text.npos : FindInLongText(text, sub, plainEnd, map);
}
