#pragma once

// What both string classes do, against a plain text and a note of what the buffer holds. Arguments
// come from outside or lie in one of the strings, the one that changes too.

#include "Model.h"
#include "Texts.h"

#include <CQSString.h>
#include <CQWString.h>
#include <OrvoAssert.h>

#include <climits>
#include <functional>
#include <type_traits>
#include <utility>
#include <vector>

using namespace std::string_literals;

inline const std::string Blanks = "\n\r \t", HexDigits = "0123456789ABCDEF";

inline std::string reports, expectedReports;

template <class String>
using UnitOf = std::remove_cv_t<std::remove_pointer_t<decltype(String().GetDataPtr())>>;
template <class C>
using TextOf = std::basic_string<C>;
template <class C>
constexpr bool IsWide = sizeof(C) > 1;

inline int Index(std::size_t at)
{
    return at == std::string::npos ? -1 : static_cast<int>(at);
}

inline std::size_t Clip(long long n)
{
    return static_cast<std::size_t>(std::max(n, 0LL));
}

template <class C>
struct Reference {
    TextOf<C> held; // all the room of a wide string; a byte string's text up to the terminator,
                    // before which a filtered one's length ends
    int length = 0;
    bool hasBuffer = false;
    int changes = 0; // of the buffer

    TextOf<C> Text() const { return held.substr(0, Clip(length)); }
    void Release() { *this = {{}, 0, false, changes + (hasBuffer ? 1 : 0)}; }
    void Empty()
    {
        if constexpr (IsWide<C>) {
            held.replace(0, Clip(length), Clip(length), C());
            length = 0;
        } else {
            Release();
        }
    }
    // Of a wide string. What stands up to the length is carried over.
    bool MakeRoom(std::size_t wanted)
    {
        if (wanted <= held.size()) {
            return false;
        }
        const std::size_t room =
            held.empty() ? wanted : wanted + std::min<std::size_t>(wanted, 512);
        held.resize(Clip(length));
        held.resize(room);
        hasBuffer = true;
        ++changes;
        return true;
    }
    // Nothing leaves the old contents.
    int Set(const TextOf<C>& text)
    {
        if (text.empty()) {
            return 0;
        }
        if constexpr (IsWide<C>) {
            MakeRoom(text.size());
            held.replace(0, text.size(), text);
        } else {
            held = text;
            ++changes;
        }
        held[text.size()] = 0;
        length = static_cast<int>(text.size());
        hasBuffer = true;
        return 1;
    }
    // What is counted ends at its first zero unit all the same in a wide string.
    int SetCounted(const TextOf<C>& text)
    {
        const int result = Set(text);
        const TextOf<C> cut = held.c_str();
        length = IsWide<C> && result == 1 ? static_cast<int>(cut.size()) : length;
        return result;
    }
    void SetOrEmpty(const TextOf<C>& text) { text.empty() ? Empty() : void(Set(text)); }
};

// What each class does in its own way: MapCase(), Hex() and EqualFolded().
template <class String>
struct Rules;

using Operations = std::vector<std::function<void()>>;

auto Part(const auto& text, long long first, long long count)
{
    const std::size_t begin = Clip(first), end = std::min(Clip(first + count), text.size());
    return text.substr(std::min(begin, end), begin < end ? end - begin : 0);
}

auto Upper(auto c)
{
    return c >= 'a' && c <= 'z' ? static_cast<decltype(c)>(c - 'a' + 'A') : c;
}

unsigned Digit(auto c)
{
    const auto at = c < 128 ? HexDigits.find(static_cast<char>(Upper(c))) : HexDigits.npos;
    return static_cast<unsigned>(std::min<std::size_t>(at, 99));
}

// Of the digits at the end.
unsigned TrailingNumber(const auto& text, unsigned base)
{
    unsigned value = 0, place = 1;
    for (auto it = text.rbegin(); it != text.rend() && Digit(*it) < base; ++it, place *= base) {
        value += Digit(*it) * place;
    }
    return value;
}

bool EqualNoCase(const auto& a, const auto& b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](auto x, auto y) { return Upper(x) == Upper(y); });
}

template <class C>
TextOf<C> TakeText(ByteSource& source)
{
    const int kind = source.Between(0, 7);
    std::string text = kind < 4 ? source.Text(kind < 2   ? 2
                                              : kind < 3 ? 9
                                                         : 3,
                                              "aAb")
                       : kind == 4 ? source.Text(5, " \t\r\n  \n\t\v\0\x7F~"s)
                       : kind == 5 ? source.Text(24, "0123456789-afAFx")
                       : kind == 6 ? source.Text(9, "@[`{\xB5\xBF\xC0\xD7\xDE\xDF\xE0\xF7\xFE\xFF")
                                   : source.Bytes(24);
    // Periodic texts with a flaw lead a plain search astray.
    const auto size = Clip(kind == 3 ? source.Between(0, 1200) : 0);
    while (!text.empty() && text.size() < size) {
        text += text;
    }
    text += size > 0 ? source.Text(1, "b") : "";
    TextOf<C> units;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        static constexpr std::uint32_t Edges[] = {
            0xDF,   0xE9,   0x416,   0x1F80,  0xFB03,   0x130,      0x4E2D, 0xD801,
            0xDC28, 0xD800, 0x10428, 0x1F600, 0x110000, 0xFFFFFFFF, 0x3A3,  0x3C2};
        units += static_cast<C>(IsWide<C> && byte > 127 ? Edges[byte % 16] : byte);
    }
    return units;
}

// A C string argument: none, one from outside, or one that lies in a string.
template <class String>
struct Argument {
    using C = UnitOf<String>;
    Argument(ByteSource& source, const String& s)
    {
        const int kind = source.Between(0, 5);
        const bool isInside = kind < 2 && s.GetDataPtr() != nullptr;
        outside = kind == 2 || isInside ? TextOf<C>() : TakeText<C>(source);
        const int at = isInside ? source.Between(0, s.GetLength()) : 0;
        p = isInside ? s.GetDataPtr() + at : kind == 2 ? nullptr : outside.c_str();
        text = p == nullptr ? TextOf<C>() : p;
        size = isInside ? s.GetLength() - at : static_cast<int>(outside.size());
    }
    // What comes from outside may stand at any address.
    unsigned char* Bytes()
    {
        const auto* const bytes = reinterpret_cast<const char*>(p);
        shifted = '-' + std::string(bytes, outside.empty() ? 0 : sizeof(C) * (outside.size() + 1));
        char* const taken = outside.empty() ? const_cast<char*>(bytes) : shifted.data() + 1;
        return reinterpret_cast<unsigned char*>(taken);
    }

    std::string shifted;
    TextOf<C> outside, text;
    const C* p;
    int size; // zeros within count
};

// Changes `s`, for which `r` stands; `o` and `q` are the same pair or another.
template <class String>
struct Step {
    using C = UnitOf<String>;
    using Text = TextOf<C>;

    ByteSource& source;
    String& s;
    Reference<C>& r;
    String& o;
    Reference<C>& q;
    int choice = source.Byte();
    Argument<String> a{source, o}, b{source, s};
    int n = TakeNumber(), m = TakeNumber();
    int count = source.Between(-1, a.p == nullptr ? 0 : a.size + 1), few = source.Between(-1, 40);
    bool keepStart = source.Flag(), keepEnd = source.Flag();
    Text counted = a.p == nullptr ? Text() : Text(a.p, Clip(count)), text = r.Text(),
         otherText = q.Text();
    C c = a.text.c_str()[0], d = b.text.c_str()[0];
    unsigned number = source.Word();

    int TakeNumber()
    {
        const int taken = source.Between(-40, 200);
        return taken == 200   ? INT_MAX
               : taken == -40 ? INT_MIN
               : taken < 0    ? taken % 4
                              : taken % (q.length + 3);
    }

    // Expects the report of an assertion that does not hold; returns whether it holds.
    static bool Asserted(bool holds, std::string expression)
    {
        const std::size_t at = expression.find("m_nLen");
        IsWide<C>&& at != expression.npos ? void(expression.insert(at + 3, "Data")) : void();
        const auto source = IsWide<C> ? " in src/CQWString\n"s : " in src/CQSString\n"s;
        expectedReports += holds ? "" : expression + source;
        return holds;
    }

    static bool HasText(const Reference<C>& r)
    {
        return Asserted(r.length > 0, "m_pData != NULL && m_nLen > 0");
    }

    bool HasNumber() const
    {
        const bool hasBuffer = Asserted(r.hasBuffer, "m_pData != NULL");
        return Asserted(r.length > 0, "m_nLen > 0") && hasBuffer;
    }

    C UnitAtN() const
    {
        const bool isInside =
            Asserted(n >= 0, "nIndex >= 0") && Asserted(n < r.length, "nIndex < m_nLen");
        return isInside ? r.held[Clip(n)] : C();
    }

    int CutBetween(const Text& start, const Text& end)
    {
        const std::size_t at = otherText.find(start, Clip(n)), inside = at + start.size();
        if (Clip(n) + 1 >= otherText.size() || at == Text::npos || inside >= otherText.size()) {
            return -1;
        }
        const std::size_t close = otherText.find(end, inside), first = keepStart ? at : inside;
        if (close == Text::npos) {
            return -1;
        }
        r.SetCounted(otherText.substr(first, close + (keepEnd ? end.size() : 0) - first));
        return static_cast<int>(first);
    }

    int Replace(const Text& from, const Text& to)
    {
        Text changed;
        std::size_t done = 0;
        int hits = 0;
        for (std::size_t at; (at = text.find(from, done)) != text.npos; ++hits) {
            changed += text.substr(done, at - done) + to;
            done = at + from.size();
        }
        hits > 0 ? r.SetOrEmpty(changed + text.substr(done)) : void();
        return hits;
    }

    void Trim(bool left, bool right)
    {
        const Text blanks = Widened<C>(Blanks);
        const std::size_t first = left ? text.find_first_not_of(blanks) : 0;
        const std::size_t end = right ? text.find_last_not_of(blanks) + 1 : text.size();
        text.empty() ? void()
                     : r.SetOrEmpty(first < end ? text.substr(first, end - first) : Text());
    }

    int Append(const Text& more) { return more.empty() ? 0 : r.Set(text + more); }

    // What moves looks like a copy.
    void CopyAndMove()
    {
        Reference<C> expected;
        expected.Set(text);
        const String copy(s);
        Check(copy, expected);
        MODEL_CHECK(copy.GetDataPtr() == nullptr || copy.GetDataPtr() != s.GetDataPtr());
        Check(String(std::move(s)), expected);
        if (!IsWide<C> || r.held.size() == Clip(r.length)) {
            MODEL_CHECK(s.IsEmpty()); // NOLINT(bugprone-use-after-move): the state is promised
            s.Empty();
            r.Release();
        }
    }

    void Compare() const
    {
        const bool isText = r.hasBuffer && a.p != nullptr;
        const int none = IsWide<C> && a.p == nullptr ? (r.hasBuffer ? 1 : 0) : -1;
        // With the terminators: a wide unit may be less than 0.
        const int expected = isText ? (Text(r.held.c_str()) + C()).compare(a.text + C()) : none;
        const int result = s.Compare(a.p);
        MODEL_CHECK((result < 0) == (expected < 0) && (result > 0) == (expected > 0));
        const int noCase = isText && EqualNoCase(text, a.text) ? 0 : -1;
        MODEL_CHECK(s.CompareNoCase(a.p) == noCase);
        MODEL_CHECK(s.CompareNoCase(const_cast<C*>(a.p)) == noCase);
        const Text other = IsWide<C> ? q.held.c_str() : otherText;
        const bool areTexts = r.hasBuffer && (q.hasBuffer || !IsWide<C>);
        MODEL_CHECK(s.CompareNoCase(o) == (areTexts && EqualNoCase(text, other) ? 0 : -1));
        const bool isEqual = r.hasBuffer && q.hasBuffer ? Text(r.held.c_str()) == q.held.c_str()
                                                        : IsWide<C> && !r.hasBuffer && !q.hasBuffer;
        MODEL_CHECK((s == o) == isEqual && (s != o) == !isEqual);
        // Another unit, or another case, anywhere: long texts are compared in blocks.
        for (std::size_t at = 0; at < text.size(); ++at) {
            Text close = text;
            close[at] ^= keepStart ? 0x20 : 1;
            auto changed = Holding<String>(close);
            close = IsWide<C> ? close.c_str() : close;
            MODEL_CHECK(s.CompareNoCase(changed) == (EqualNoCase(text, close) ? 0 : -1));
        }
    }

    void Find() const
    {
        const std::size_t at = Clip(n);
        const bool isInside = n >= 0 && n < r.length;
        MODEL_CHECK(s.Find(c) == Index(text.find(c)));
        MODEL_CHECK(s.Find(c, n) == (isInside || IsWide<C> ? Index(text.find(c, at)) : -1));
        MODEL_CHECK(s.FindBefore(c, n) == (isInside ? Index(text.rfind(c, at)) : -1));
        const auto isText = [&] { return Asserted(a.p != nullptr, "lpszSub != NULL"); };
        MODEL_CHECK(s.Find(a.p) == (isText() && !text.empty() ? Index(text.find(a.text)) : -1));
        MODEL_CHECK(s.Find(a.p, n) ==
                    (isText() && at < text.size() ? Index(text.find(a.text, at)) : -1));
        const std::size_t size = std::min(a.text.size(), text.size());
        const Text start = text.substr(0, size), end = text.substr(text.size() - size);
        const bool fits = size == a.text.size();
        const auto isSame = Rules<String>::EqualFolded;
        MODEL_CHECK(s.IsStartWith(a.p) == (isText() && start == a.text));
        MODEL_CHECK(s.IsStartWithNoCase(a.p) == (isText() && fits && isSame(start, a.text)));
        MODEL_CHECK(s.IsEndWith(a.p) == (isText() && end == a.text));
        MODEL_CHECK(s.IsEndWithNoCase(a.p) == (isText() && fits && isSame(end, a.text)));
    }

    void MapCase(bool upper)
    {
        upper ? s.MakeUpper() : s.MakeLower();
        if ((!IsWide<C> && !upper) || HasText(r)) {
            r.held.replace(0, text.size(), Rules<String>::MapCase(text, upper));
        }
    }

    void CheckNumbers() const
    {
        const unsigned digits = TrailingNumber(text, 10);
        const unsigned value = text[0] == '-' ? 0 - digits : digits;
        MODEL_CHECK(s.ToINT() == (HasNumber() ? static_cast<int>(value) : -1));
        const unsigned hex = Rules<String>::Hex(text);
        MODEL_CHECK(s.ToHEX() == (HasNumber() ? static_cast<int>(hex) : -1));
    }

    Operations Common()
    {
        return {
            [&] { MODEL_CHECK(s.SetData(a.p) == r.Set(a.text)); },
            [&] { MODEL_CHECK(s.SetData(a.Bytes(), count) == r.SetCounted(counted)); },
            [&] { MODEL_CHECK(s.AppendData(a.p) == Append(a.text)); },
            [&] { MODEL_CHECK(s.AppendData(const_cast<C*>(a.p)) == Append(a.text)); },
            [&] { MODEL_CHECK(s.AppendData(a.Bytes(), count) == Append(counted)); },
            [&] { MODEL_CHECK(s.AppendChar(c) == Append({c})); },
            [&] {
                s = o;
                const bool isSame = &s == &o || (!r.hasBuffer && !q.hasBuffer);
                IsWide<C> && !isSame ? r.SetOrEmpty(otherText) : void(isSame || r.Set(otherText));
            },
            [&] { s.Empty(), r.Empty(); },
            [&] { MODEL_CHECK(String::SafeStrlen(a.p) == static_cast<int>(a.text.size())); },
            [&] { CopyAndMove(); },
            [&] { Compare(); },
            [&] { Find(); },
            [&] { o.AllocCopy(s, m, n), r.SetCounted(Part(otherText, n, m)); },
            [&] {
                o.GetSubString(s, n, m);
                Asserted(n <= q.length, "nFirst + nCount <= m_nLen");
                r.SetCounted(Part(otherText, std::max(n, 0), m));
            },
            [&] {
                const int result = o.GetSubString(s, a.p, b.p, n, keepStart, keepEnd);
                const bool isAsked = HasText(q) && a.p != nullptr && b.p != nullptr;
                MODEL_CHECK(result == (isAsked ? CutBetween(a.text, b.text) : -1));
            },
            [&] {
                const int result = o.GetSubString(s, c, d, n, keepStart, keepEnd);
                MODEL_CHECK(result == (HasText(q) ? CutBetween({c}, {d}) : -1));
            },
            [&] {
                const bool isAsked = !a.text.empty() && a.text != b.text;
                const int refused = !IsWide<C> && a.p == nullptr && !text.empty() ? -1 : 0;
                MODEL_CHECK(s.Replace(a.p, b.p) == (isAsked ? Replace(a.text, b.text) : refused));
            },
            [&] {
                s.SetAt(n, c);
                UnitAtN();
                n >= 0 && n < r.length ? void(r.held[Clip(n)] = c) : void();
                MODEL_CHECK(s.GetAt(n) == UnitAtN());
                MODEL_CHECK(s[n] == UnitAtN());
            },
            [&] { s.TrimRightAndLeft(), Trim(true, true); },
            [&] { MapCase(true); },
            [&] { MapCase(false); },
            [&] { CheckNumbers(); },
            [&] {
                const int i = static_cast<int>(number);
                keepStart ? s.ToString(i) : s.ToString(number);
                r.Set(Widened<C>(keepStart ? std::to_string(i) : std::to_string(number)));
            },
        };
    }

    Operations Own(); // those of the class alone

    void Run()
    {
        Operations operations = Common(), own = Own();
        operations.insert(operations.end(), own.begin(), own.end());
        operations[static_cast<std::size_t>(choice) % operations.size()]();
    }

    static void Check(const String& s, const Reference<C>& r)
    {
        MODEL_CHECK(s.GetLength() == r.length && s.IsEmpty() == (r.length == 0));
        MODEL_CHECK((s.GetDataPtr() != nullptr) == r.hasBuffer);
        MODEL_CHECK(!r.hasBuffer || Text(s.GetDataPtr(), r.held.size() + 1) ==
                                        Text(r.held.c_str(), r.held.size() + 1));
    }
};

template <class String>
void DriveStrings(ByteSource& source)
{
    OrvoSetAssertHandler([](const char* expression, const char* file, int) {
        reports += expression + " in "s + file + '\n';
    });
    String strings[3];
    Reference<UnitOf<String>> references[3];
    while (!source.IsEmpty()) {
        const int i = source.Between(0, 2), k = source.Between(0, 2);
        const auto* const before = strings[i].GetDataPtr();
        const int changesBefore = references[i].changes;
        Step<String>{source, strings[i], references[i], strings[k], references[k]}.Run();
        MODEL_CHECK(std::exchange(reports, "") == std::exchange(expectedReports, ""));
        const bool isOtherBuffer = references[i].changes != changesBefore;
        MODEL_CHECK((strings[i].GetDataPtr() != before) == isOtherBuffer);
        Step<String>::Check(strings[i], references[i]);
        Step<String>::Check(strings[k], references[k]);
        if (references[i].length > 3000) {
            strings[i].Empty();
            references[i].Empty();
        }
    }
}
