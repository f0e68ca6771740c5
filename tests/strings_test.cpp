#include "AssertRecorder.h"

#include <CQSString.h>

#include <gtest/gtest.h>

#include <functional>
#include <numeric>
#include <string>
#include <utility>
#include <vector>

using namespace std::string_literals;

namespace
{

void ExpectAll(int expected, const std::vector<int>& results)
{
    EXPECT_EQ(std::vector<int>(results.size(), expected), results);
}

// The whole content, zero bytes included.
std::string Bytes(const CQSString& s)
{
    return {s.GetDataPtr() != nullptr ? s.GetDataPtr() : "", static_cast<size_t>(s.GetLength())};
}

unsigned char* Raw(std::string& bytes)
{
    return reinterpret_cast<unsigned char*>(bytes.data());
}

CQSString Make(std::string bytes)
{
    CQSString s;
    s.SetData(Raw(bytes), static_cast<int>(bytes.size()));
    return s;
}

// What an operation makes of a string that holds `text`.
std::string After(const std::function<void(CQSString&)>& operation, std::string text = "kept")
{
    CQSString s = Make(std::move(text));
    operation(s);
    EXPECT_EQ(s.IsEmpty(), s.GetDataPtr() == nullptr);
    return Bytes(s);
}

// The result of a delimited GetSubString() and behind it the output, which held "kept".
std::string Between(const char* text, const char* start, const char* end, int from,
                    bool keepStart = false, bool keepEnd = false)
{
    int index = 0;
    const std::string output = After([&](CQSString& out) {
        index = Make(text).GetSubString(out, start, end, from, keepStart, keepEnd);
    });
    return std::to_string(index) + ' ' + output;
}

// The result of Replace() and behind it the text.
std::string Replaced(std::string text, const char* oldText, const char* newText)
{
    int count = 0;
    text = After([&](CQSString& s) { count = s.Replace(oldText, newText); }, text);
    return std::to_string(count) + ' ' + text;
}

void ExpectReports(AssertRecorder& recorder, const std::vector<const char*>& expressions)
{
    const auto reports = recorder.Take();
    ASSERT_EQ(expressions.size(), reports.size());
    for (size_t i = 0; i < reports.size(); ++i) {
        EXPECT_TRUE(reports[i].Is(expressions[i], "src/CQSString")) << reports[i];
    }
}

const char* const NoText = nullptr;

} // namespace

TEST(ByteStringStorage, AllocatesZeroBytesAndTreatsNothingAsKeep)
{
    AssertRecorder recorder;
    EXPECT_EQ("\0\0\0\0\0"s, Bytes(CQSString(5)));
    EXPECT_EQ(nullptr, CQSString(-3).GetDataPtr());
    CQSString s = Make("abc");
    s.AllocBuffer(0);
    s = CQSString();
    std::string bytes = "xy";
    ExpectAll(0, {s.SetData(""), s.SetData(NoText), s.SetData(nullptr, 3), s.SetData(Raw(bytes), 0),
                  s.SetData(Raw(bytes), -1)});
    ExpectReports(recorder, {});
    s.AllocBuffer(-1);
    ExpectReports(recorder, {"nLen >= 0"});
    EXPECT_EQ("abc", Bytes(s));
    s.Empty();
    EXPECT_EQ(nullptr, s.GetDataPtr());
}

TEST(ByteStringStorage, EveryChangeMakesAFreshTerminatedBuffer)
{
    CQSString s = Make(" a ");
    const std::function<void()> changes[] = {
        [&] { s.AllocBuffer(3); },  [&] { s.SetData(" b "); },  [&] { s = Make(" c "); },
        [&] { s.AppendChar(' '); }, [&] { s.AppendData("d"); }, [&] { s.Replace("d", "e"); },
        [&] { s.TrimLeft(); },      [&] { s.TrimRight(); },     [&] { s.TrimRightAndLeft(); },
    };
    for (const auto& change : changes) {
        const char* const before = s.GetDataPtr();
        change();
        EXPECT_NE(before, s.GetDataPtr());
        EXPECT_EQ('\0', s.GetDataPtr()[s.GetLength()]);
    }
    const char* const before = s.GetDataPtr();
    s = *&s;
    const CQSString moved(std::move(s));
    EXPECT_EQ(before, moved.GetDataPtr());
    EXPECT_TRUE(s.IsEmpty()); // NOLINT(bugprone-use-after-move): the emptied state is promised
}

TEST(ByteStringStorage, ArgumentsMayLieInTheStringItself)
{
    CQSString s = Make("abc");
    s.AppendData(s.GetDataPtr());
    EXPECT_EQ("abcabc", Bytes(s));
    s.SetData(s.GetDataPtr() + 4);
    EXPECT_EQ("bc", Bytes(s));
    s.Replace(s.GetDataPtr() + 1, s.GetDataPtr());
    EXPECT_EQ("bbc", Bytes(s));
    s.GetSubString(s, 1, 2);
    EXPECT_EQ("bc", Bytes(s));
    s.TrimLeft(1, s);
    EXPECT_EQ("c", Bytes(s));
}

TEST(ByteStringStorage, AppendsAnyByteButNoEmptyText)
{
    CQSString s;
    std::string tail = "c\0"s;
    ExpectAll(1, {s.AppendChar('\0'), s.AppendData("ab"), s.AppendData(Raw(tail), 2)});
    ExpectAll(0, {s.AppendData(""), s.AppendData(NoText), s.AppendData(Raw(tail), -1),
                  s.AppendData(nullptr, 1)});
    EXPECT_EQ("\0abc\0"s, Bytes(s));
}

TEST(ByteStringAccess, OutsideIndexIsAssertedAndTouchesNothing)
{
    AssertRecorder recorder;
    CQSString s = Make("ab\xFF");
    EXPECT_EQ('\xFF', s.GetAt(2));
    s.SetAt(1, 'x');
    ExpectReports(recorder, {});
    ExpectAll('\0', {s.GetAt(-1), s[3]});
    s.SetAt(3, 'y');
    ExpectReports(recorder, {"nIndex >= 0", "nIndex < m_nLen", "nIndex < m_nLen"});
    EXPECT_STREQ("ax\xFF", s.GetDataPtr());
}

TEST(ByteStringCompare, NoBufferEqualsNothingAndNoCaseHasNoOrder)
{
    EXPECT_FALSE(CQSString() == CQSString());
    EXPECT_TRUE(Make("abc") == Make("abc"));
    EXPECT_GT(Make("\x80").Compare("\x7F"), 0);
    CQSString other = Make("aBC\0x"s);
    ExpectAll(0, {Make("Abc\0X"s).CompareNoCase(other), Make("zA").CompareNoCase("Za")});
    ExpectAll(-1, {CQSString().Compare(""), Make("b").Compare(nullptr),
                   Make("Abc\0Y"s).CompareNoCase(other), Make("b").CompareNoCase("a"),
                   Make("a").CompareNoCase("ab"), Make("[").CompareNoCase("{"),
                   Make("\xE9").CompareNoCase("\xC9"), CQSString().CompareNoCase(""),
                   Make("a").CompareNoCase(NoText)});
}

TEST(ByteStringFind, HonoursRangesAndCrossesZeroBytes)
{
    AssertRecorder recorder;
    const CQSString s = Make("abcb");
    const CQSString binary = Make("a\0bcbc"s);
    ExpectAll(3, {s.Find('b', 2), binary.Find("", 3), Make("\n\r\tx").FindFirstValidChar(0)});
    ExpectAll(2, {binary.Find("bc"), binary.Find("bc", 2), binary.Find("bc", -7)});
    ExpectAll(1, {s.Find('b', 1, 100), s.FindBefore('b', 2), s.Find("bcb")});
    ExpectAll(0, {s.FindBefore('a', 0), Make("\v ").FindFirstValidChar(0)});
    ExpectAll(-1, {s.Find('b', -1), s.Find('b', 4), s.Find('\0', 0), s.Find('b', 2, 2),
                   s.Find('b', 2, 3), s.Find('b', -1, 3), s.FindBefore('c', 1),
                   s.FindBefore('b', 4), binary.Find("bcd"), binary.Find("", 6),
                   CQSString().Find('a'), CQSString().Find("", -1), s.FindFirstValidChar(-1),
                   s.FindFirstValidChar(4), Make("x \t").FindFirstValidChar(1)});
    ExpectReports(recorder, {});
    EXPECT_EQ(-1, s.Find(NoText, 0));
    ExpectReports(recorder, {"lpszSub != NULL"});
}

TEST(ByteStringSubstring, RangesAreClippedAndEmptyOnesChangeNothing)
{
    AssertRecorder recorder;
    const CQSString s = Make("hello");
    const struct {
        int first, count;
        const char *copied, *substring; // negatives clip AllocCopy(), but count as 0 for the other
    } rows[] = {
        {2, 100, "llo", "llo"}, {-2, 4, "he", "hell"},   {1, 0x7FFFFFFF, "ello", "ello"},
        {5, 1, "kept", "kept"}, {1, -1, "kept", "kept"}, {-2, 2, "kept", "he"},
        {6, 1, "kept", "kept"},
    };
    for (const auto& [first, count, copied, substring] : rows) {
        EXPECT_EQ(copied, After([&](CQSString& out) { s.AllocCopy(out, count, first); }));
        EXPECT_EQ(substring, After([&](CQSString& out) { s.GetSubString(out, first, count); }));
    }
    ExpectReports(recorder, {"nFirst + nCount <= m_nLen"});
}

TEST(ByteStringSubstring, BetweenDelimiters)
{
    AssertRecorder recorder;
    EXPECT_EQ("2 b", Between("xabcd", "a", "c", 0));
    EXPECT_EQ("1 abc", Between("xabcd", "a", "c", 0, true, true));
    EXPECT_EQ("2 bc", Between("xabcd", "a", "c", 0, false, true));
    EXPECT_EQ("1 kept", Between("ac", "a", "c", 0));
    EXPECT_EQ("11 y", Between("<b>x</b><b>y</b>", "<b>", "</b>", 1));
    EXPECT_EQ("3 x", Between("<b>x</b>", "<b>", "</b>", -3));
    EXPECT_EQ("1 X", Between("aXa", "a", "a", 0));    // the end is looked for behind the start
    EXPECT_EQ("-1 kept", Between("xxa", "a", "", 0)); // nothing follows the start
    EXPECT_EQ("-1 kept", Between("abc", "c", "", 2)); // a start this close to the end
    EXPECT_EQ("-1 kept", Between("abc", "a", "d", 0));
    EXPECT_EQ("-1 kept", Between("abc", nullptr, "c", 0));
    CQSString out;
    EXPECT_EQ(1, Make("a\0b\0c"s).GetSubString(out, '\0', '\0', 0, true, false));
    EXPECT_EQ("\0b"s, Bytes(out));
    ExpectReports(recorder, {});
    EXPECT_EQ(-1, CQSString().GetSubString(out, 'a', 'b', -1, true, true));
    EXPECT_EQ(-1, CQSString().GetSubString(out, "", "", -1, true, true));
    ExpectReports(recorder, {"m_pData != NULL && m_nLen > 0", "m_pData != NULL && m_nLen > 0"});
}

TEST(ByteStringTrim, OnlyFourBytesAreBlanks)
{
    const auto left = [](CQSString& s) { s.TrimLeft(); };
    const auto right = [](CQSString& s) { s.TrimRight(); };
    const auto both = [](CQSString& s) { s.TrimRightAndLeft(); };
    EXPECT_EQ("x y\n ", After(left, " \t\r\n x y\n "));
    EXPECT_EQ(" \t\r\n x y", After(right, " \t\r\n x y\n "));
    EXPECT_EQ("x y", After(both, " \t\r\n x y\n "));
    for (const auto& trim : {+left, +right, +both}) {
        EXPECT_EQ("\v x \f", After(trim, "\v x \f"));
        EXPECT_EQ("\0"s, After(trim, "\0"s));
        EXPECT_EQ("", After(trim, "  \t\r\n"));
    }
}

TEST(ByteStringTrim, CountedFormsDifferWhereNothingIsLeft)
{
    const CQSString s = Make("hello");
    EXPECT_EQ("llo", After([&](CQSString& out) { s.TrimLeft(2, out); }));
    EXPECT_EQ("kept", After([&](CQSString& out) { s.TrimLeft(5, out); }));
    EXPECT_EQ("hel", After([&](CQSString& out) { s.TrimRight(2, out); }));
    EXPECT_EQ("hello", After([&](CQSString& out) { s.TrimRight(-2, out); }));
    EXPECT_EQ("kept", After([&](CQSString& out) { s.TrimRight(5, out); }));
    EXPECT_EQ("el", After([&](CQSString& out) { s.TrimRightAndLeft(1, 2, out); }));
    EXPECT_EQ("h", After([&](CQSString& out) { s.TrimRightAndLeft(-1, 4, out); }));
    EXPECT_EQ("", After([&](CQSString& out) { s.TrimRightAndLeft(2, 0x7FFFFFFF, out); }));
    EXPECT_EQ("kept", After([&](CQSString& out) { CQSString().TrimRightAndLeft(1, 1, out); }));
}

// As Python's str.upper() and str.lower() on Latin-1, but where those leave Latin-1 (0xB5, 0xFF)
// or change the length (0xDF) the byte stays.
TEST(ByteStringCase, FollowsLatin1AndOnlyMakeLowerToleratesNothing)
{
    AssertRecorder recorder;
    std::string all(256, '\0');
    std::iota(all.begin(), all.end(), '\0');
    std::string upper = all;
    std::string lower = all;
    for (size_t b = 'a'; b <= 0xFE; ++b) {
        if (b <= 'z' || (b >= 0xE0 && b != 0xF7)) {
            upper[b] = all[b - 32];
            lower[b - 32] = all[b];
        }
    }
    EXPECT_EQ(upper, After([](CQSString& s) { s.MakeUpper(); }, all));
    EXPECT_EQ(lower, After([](CQSString& s) { s.MakeLower(); }, all));
    CQSString::MakeLower(all.data() + 'A', 1);
    CQSString().MakeLower();
    ExpectReports(recorder, {});
    CQSString().MakeUpper();
    CQSString::MakeLower(all.data() + 'B', 0);
    CQSString::MakeLower(nullptr, 1);
    ExpectReports(recorder, {"m_pData != NULL && m_nLen > 0", "lpszStart != NULL && nLen > 0",
                             "lpszStart != NULL && nLen > 0"});
    EXPECT_EQ("@aB", all.substr('@', 3));
}

TEST(ByteStringReplace, CountsAndRebuildsLeftToRight)
{
    EXPECT_EQ("2 bb", Replaced("aaaa", "aa", "b"));
    EXPECT_EQ("1 aaaa", Replaced("aaa", "aa", "aaa"));
    EXPECT_EQ("3 ", Replaced("aaa", "a", nullptr));
    EXPECT_EQ("2 abc", Replaced("axbxc", "x", ""));
    EXPECT_EQ("1 \0yz\0"s, Replaced("\0x\0"s, "x", "yz"));
    EXPECT_EQ("0 xa", Replaced("xa", "x", "x"));
    EXPECT_EQ("0 xa", Replaced("xa", "", "y"));
    EXPECT_EQ("0 xa", Replaced("xa", "b", "y"));
    EXPECT_EQ("-1 xa", Replaced("xa", nullptr, ""));
    EXPECT_EQ("0 ", Replaced("", nullptr, ""));
}

// Each removal lets the next byte slip past the check, and nothing behind the new end is reset.
TEST(ByteStringFilter, SkipsTheByteAfterARemovedOneAndDoesNotTerminate)
{
    const struct {
        const char *text, *kept, *behind;
    } rows[] = {
        {"\x41\x01\x02\x42", "\x41\x02\x42", "\x42"},
        {"\x01\x02\x03\x04\x7F", "\x02\x04", "\x7F\x7F\x7F"},
        {"~\xE9 \x1F", "~ ", "\x1F\x1F"},
        {"\n", "", "\n"},
    };
    for (const auto& [text, kept, behind] : rows) {
        CQSString s = Make(text);
        const char* const before = s.GetDataPtr();
        s.FilterInvisibleChar();
        EXPECT_EQ(before, s.GetDataPtr());
        EXPECT_EQ(kept, Bytes(s));
        EXPECT_STREQ(behind, s.GetDataPtr() + s.GetLength());
    }
}

TEST(ByteStringTests, PrefixAndSuffixAlwaysMindTheCase)
{
    AssertRecorder recorder;
    const CQSString s = Make("file.txt");
    ExpectAll(1, {s.IsStartWith("file"), s.IsStartWithNoCase("file"), s.IsEndWith(".txt"),
                  s.IsEndWithNoCase(".txt"), s.IsEndWith(""), CQSString().IsStartWith("")});
    ExpectAll(0, {s.IsStartWith("File"), s.IsStartWithNoCase("FILE"), s.IsEndWith("file."),
                  s.IsEndWithNoCase("TXT"), s.IsStartWith("file.txt~"),
                  Make("a\0b"s).IsStartWith("ab")});
    ExpectReports(recorder, {});
    ExpectAll(0, {s.IsStartWith(nullptr), s.IsStartWithNoCase(nullptr), s.IsEndWith(nullptr),
                  s.IsEndWithNoCase(nullptr)});
    ExpectReports(recorder, std::vector<const char*>(4, "lpszSub != NULL"));
}

TEST(ByteStringNumbers, DecimalStopsAtTheFirstForeignByteAndHexSkipsIt)
{
    AssertRecorder recorder;
    const struct {
        const char* text;
        int decimal;
        unsigned int unsignedDecimal, hex;
    } rows[] = {
        {"123", 123, 123, 0x123},
        {"-45", -45, 45, 0x45},
        {"12a3", 3, 3, 0x12A3},
        {"-1-2", -2, 2, 0x12},
        {"0x1F", 0, 0, 0x1F},
        {"ff", 0, 0, 255},
        {"g", 0, 0, 0},
        {"B:EF", 0, 0, 0xBEF},
        {"4294967297", 1, 1, 0x94967297},
        {"-4294967295", 1, 0xFFFFFFFF, 0x94967295},
    };
    for (const auto& [text, decimal, unsignedDecimal, hex] : rows) {
        EXPECT_EQ(decimal, Make(text).ToINT()) << text;
        EXPECT_EQ(unsignedDecimal, Make(text).ToUINT()) << text;
        EXPECT_EQ(hex, static_cast<unsigned int>(Make(text).ToHEX())) << text;
    }
    ExpectReports(recorder, {});
    ExpectAll(-1, {CQSString().ToINT(), CQSString().ToHEX()});
    EXPECT_EQ(0U, CQSString().ToUINT());
    ExpectReports(recorder, {"m_pData != NULL", "m_nLen > 0", "m_pData != NULL", "m_nLen > 0",
                             "m_pData != NULL", "m_nLen > 0"});
    EXPECT_EQ("-2147483648", After([](CQSString& s) { s.ToString(-2147483647 - 1); }));
    EXPECT_EQ("4294967295", After([](CQSString& s) { s.ToString(4294967295U); }));
}

TEST(ByteStringNumbers, HexStringLooksAtTheFirstByteAlone)
{
    const std::pair<std::string, std::string> converted[] = {
        {"a1", "A1"},
        {"Fg z", "Fg z"},
        {"255", "FF"},
        {"2 5", "0"},
        {"255 ", "0"},
        {"9\0z"s, "9"},
        {"18446744073709551616", "0"},
        {"18446744073709551615", "FFFFFFFFFFFFFFFF"},
    };
    for (const auto& [text, hex] : converted) {
        CQSString s = Make(text);
        EXPECT_EQ(1, s.ToHexString());
        std::string units;
        for (const char c : hex) {
            units += {'\0', c};
        }
        EXPECT_EQ(units, Bytes(s));
    }
    for (const char* const refused : {"0A", "g", " 1", ""}) {
        EXPECT_EQ(refused, After([](CQSString& s) { EXPECT_EQ(0, s.ToHexString()); }, refused));
    }
}

// Expected values computed in Python from the published FNV-1a constants and the mix.
TEST(ByteStringNumbers, HashIsMixedFnv1aOverUnsignedBytes)
{
    for (const auto& [text, hash] : {std::pair(""s, 1493338014), std::pair("hello"s, -350039927),
                                     std::pair("\xFF\0\x80"s, 1646029255)}) {
        CQSString s = Make(text);
        EXPECT_EQ(hash, static_cast<int>(CQSString::GetHashCode(s)));
        EXPECT_EQ(std::to_string(hash), After([&](CQSString& out) { s.ToHashString(out); }));
    }
}
