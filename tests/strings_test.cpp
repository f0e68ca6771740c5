#include "AssertRecorder.h"

#include <CQSString.h>

#include <gtest/gtest.h>

#include <functional>
#include <ostream>
#include <string>
#include <utility>

using namespace std::string_literals;

namespace
{

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

void ExpectReports(AssertRecorder& recorder, std::initializer_list<const char*> expressions)
{
    const auto reports = recorder.Take();
    ASSERT_EQ(expressions.size(), reports.size());
    size_t i = 0;
    for (const char* expression : expressions) {
        EXPECT_TRUE(reports[i].Is(expression, "src/CQSString")) << reports[i];
        ++i;
    }
}

std::string AllBytes()
{
    std::string all;
    for (int b = 0; b < 256; ++b) {
        all.push_back(static_cast<char>(b));
    }
    return all;
}

} // namespace

TEST(ByteStringStorage, LengthConstructorMakesZeroBytesNotRoom)
{
    EXPECT_EQ("\0\0\0\0\0"s, Bytes(CQSString(5)));
    EXPECT_EQ(nullptr, CQSString(-3).GetDataPtr());
    EXPECT_EQ(nullptr, CQSString().GetDataPtr());
}

TEST(ByteStringStorage, AllocatingNothingKeepsTheContents)
{
    AssertRecorder recorder;
    CQSString s = Make("abc");
    s.AllocBuffer(0);
    EXPECT_EQ("abc", Bytes(s));
    EXPECT_TRUE(recorder.Reports().empty());
    s.AllocBuffer(-1);
    ExpectReports(recorder, {"nLen >= 0"});
    EXPECT_EQ("abc", Bytes(s));
    s.AllocBuffer(2);
    EXPECT_EQ("\0\0"s, Bytes(s));
}

TEST(ByteStringStorage, AssigningAnEmptyStringKeepsTheContents)
{
    CQSString s = Make("abc");
    s = CQSString();
    EXPECT_EQ(0, s.SetData(""));
    EXPECT_EQ(0, s.SetData(static_cast<const char*>(nullptr)));
    EXPECT_EQ(0, s.SetData(nullptr, 3));
    std::string bytes = "xy";
    EXPECT_EQ(0, s.SetData(Raw(bytes), 0));
    EXPECT_EQ(0, s.SetData(Raw(bytes), -1));
    EXPECT_EQ("abc", Bytes(s));
    s.Empty();
    EXPECT_EQ(nullptr, s.GetDataPtr());
    EXPECT_TRUE(s.IsEmpty());
}

TEST(ByteStringStorage, EveryChangeMakesAFreshBuffer)
{
    CQSString s = Make(" a ");
    const std::pair<const char*, std::function<void()>> changes[] = {
        {"AllocBuffer", [&] { s.AllocBuffer(3); }},
        {"SetData", [&] { s.SetData(" b "); }},
        {"operator=", [&] { s = Make(" c "); }},
        {"AppendChar", [&] { s.AppendChar(' '); }},
        {"AppendData", [&] { s.AppendData("d"); }},
        {"Replace", [&] { s.Replace("d", "e"); }},
        {"TrimLeft", [&] { s.TrimLeft(); }},
        {"TrimLeft of nothing", [&] { s.TrimLeft(); }},
        {"TrimRight of nothing", [&] { s.TrimRight(); }},
        {"TrimRightAndLeft of nothing", [&] { s.TrimRightAndLeft(); }},
    };
    for (const auto& [name, change] : changes) {
        const char* const before = s.GetDataPtr();
        change();
        EXPECT_NE(before, s.GetDataPtr()) << name;
        EXPECT_EQ('\0', s.GetDataPtr()[s.GetLength()]) << name;
    }
    const char* const before = s.GetDataPtr();
    s = *&s;
    EXPECT_EQ(before, s.GetDataPtr());
    CQSString moved(std::move(s));
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

TEST(ByteStringStorage, AllocCopyTakesWhatLiesInTheSource)
{
    const CQSString s = Make("hello");
    const struct {
        int length, index;
        const char* expected;
    } rows[] = {{2, 1, "el"},    {9, 3, "lo"},   {4, -2, "he"},   {0, 1, "kept"},
                {-1, 1, "kept"}, {1, 5, "kept"}, {2, -2, "kept"}, {0x7FFFFFFF, 4, "o"}};
    for (const auto& row : rows) {
        CQSString dest = Make("kept");
        s.AllocCopy(dest, row.length, row.index);
        EXPECT_EQ(row.expected, Bytes(dest)) << row.length << ' ' << row.index;
    }
}

TEST(ByteStringAppend, KeepsZeroBytesAndRefusesNothing)
{
    CQSString s;
    EXPECT_EQ(1, s.AppendChar('\0'));
    EXPECT_EQ(1, s.AppendData("ab"));
    std::string tail = "c\0"s;
    EXPECT_EQ(1, s.AppendData(Raw(tail), 2));
    EXPECT_EQ("\0abc\0"s, Bytes(s));
    EXPECT_EQ(0, s.AppendData(""));
    EXPECT_EQ(0, s.AppendData(static_cast<char*>(nullptr)));
    EXPECT_EQ(0, s.AppendData(Raw(tail), -1));
    EXPECT_EQ(0, s.AppendData(nullptr, 1));
    EXPECT_EQ(5, s.GetLength());
}

TEST(ByteStringAccess, OutsideIndexIsAssertedAndTouchesNothing)
{
    AssertRecorder recorder;
    CQSString s = Make("ab\xFF");
    EXPECT_EQ('\xFF', s.GetAt(2));
    EXPECT_EQ('b', s[1]);
    s.SetAt(1, 'x');
    EXPECT_TRUE(recorder.Reports().empty());
    EXPECT_EQ('\0', s.GetAt(-1));
    EXPECT_EQ('\0', s[3]);
    s.SetAt(3, 'y');
    ExpectReports(recorder, {"nIndex >= 0", "nIndex < m_nLen", "nIndex < m_nLen"});
    EXPECT_EQ("ax\xFF", Bytes(s));
    EXPECT_EQ('\0', s.GetDataPtr()[3]);
}

TEST(ByteStringCompare, StringsWithoutBuffersEqualNothing)
{
    EXPECT_FALSE(CQSString() == CQSString());
    EXPECT_TRUE(Make("abc") == Make("abc"));
    EXPECT_EQ(-1, CQSString().Compare(""));
    EXPECT_EQ(-1, Make("b").Compare(nullptr));
    EXPECT_GT(Make("\x80").Compare("\x7F"), 0);
    EXPECT_EQ(0, Make("a\0b"s).Compare("a"));
}

TEST(ByteStringCompare, NoCaseKnowsAsciiLettersAndNoOrder)
{
    CQSString other = Make("aBC\0x"s);
    EXPECT_EQ(0, Make("Abc\0X"s).CompareNoCase(other));
    EXPECT_EQ(-1, Make("Abc\0Y"s).CompareNoCase(other));
    EXPECT_EQ(-1, Make("b").CompareNoCase("a"));
    EXPECT_EQ(-1, Make("a").CompareNoCase("ab"));
    EXPECT_EQ(-1, Make("[").CompareNoCase("{"));
    EXPECT_EQ(-1, Make("\xE9").CompareNoCase("\xC9"));
    EXPECT_EQ(-1, CQSString().CompareNoCase(""));
    EXPECT_EQ(-1, Make("a").CompareNoCase(static_cast<char*>(nullptr)));
}

TEST(ByteStringFind, ByteSearchesHonourTheirRanges)
{
    const CQSString s = Make("abcb");
    EXPECT_EQ(3, s.Find('b', 2));
    EXPECT_EQ(1, s.Find('b'));
    EXPECT_EQ(-1, s.Find('b', -1));
    EXPECT_EQ(-1, s.Find('b', 4));
    EXPECT_EQ(-1, s.Find('\0', 0)); // the terminator is no content
    EXPECT_EQ(1, s.Find('b', 1, 100));
    EXPECT_EQ(-1, s.Find('b', 2, 2));
    EXPECT_EQ(-1, s.Find('b', 2, 3));
    EXPECT_EQ(-1, s.Find('b', -1, 3));
    EXPECT_EQ(0, s.FindBefore('a', 0));
    EXPECT_EQ(-1, s.FindBefore('c', 1));
    EXPECT_EQ(1, s.FindBefore('b', 2));
    EXPECT_EQ(-1, s.FindBefore('b', 4));
    EXPECT_EQ(-1, CQSString().Find('a'));
    EXPECT_EQ(3, Make("\n\r\tx").FindFirstValidChar(0));
    EXPECT_EQ(0, Make("\v ").FindFirstValidChar(0));
    EXPECT_EQ(-1, Make("x \t").FindFirstValidChar(1));
    EXPECT_EQ(-1, s.FindFirstValidChar(-1));
    EXPECT_EQ(-1, s.FindFirstValidChar(4));
}

TEST(ByteStringFind, TextSearchCrossesZeroBytesAndClampsNegativeStarts)
{
    AssertRecorder recorder;
    const CQSString s = Make("a\0bcbc"s);
    EXPECT_EQ(2, s.Find("bc"));
    EXPECT_EQ(4, s.Find("bc", 3));
    EXPECT_EQ(2, s.Find("bc", -7));
    EXPECT_EQ(-1, s.Find("bcd"));
    EXPECT_EQ(3, s.Find("", 3));
    EXPECT_EQ(-1, s.Find("", 6));
    EXPECT_EQ(-1, CQSString().Find("", -1));
    EXPECT_TRUE(recorder.Reports().empty());
    EXPECT_EQ(-1, s.Find(nullptr, 0));
    ExpectReports(recorder, {"lpszSub != NULL"});
}

TEST(ByteStringSubstring, RangeIsClippedAndAnEmptyOneChangesNothing)
{
    AssertRecorder recorder;
    const CQSString s = Make("hello");
    const struct {
        int first, count;
        const char* expected;
    } rows[] = {{2, 100, "llo"}, {-4, 2, "he"},   {1, 0x7FFFFFFF, "ello"},
                {5, 1, "kept"},  {1, -1, "kept"}, {6, 1, "kept"}};
    for (const auto& row : rows) {
        CQSString out = Make("kept");
        s.GetSubString(out, row.first, row.count);
        EXPECT_EQ(row.expected, Bytes(out)) << row.first;
    }
    ExpectReports(recorder, {"nFirst + nCount <= m_nLen"});
}

TEST(ByteStringSubstring, BetweenDelimiters)
{
    AssertRecorder recorder;
    const struct {
        const char *text, *start, *end;
        int from;
        bool keepStart, keepEnd;
        int index;
        const char* expected;
    } rows[] = {
        {"xabcd", "a", "c", 0, false, false, 2, "b"},
        {"xabcd", "a", "c", 0, true, true, 1, "abc"},
        {"xabcd", "a", "c", 0, false, true, 2, "bc"},
        {"xabcd", "a", "c", 0, true, false, 1, "ab"},
        {"ac", "a", "c", 0, false, false, 1, "kept"},
        {"<b>x</b><b>y</b>", "<b>", "</b>", 1, false, false, 11, "y"},
        {"<b>x</b>", "<b>", "</b>", -3, false, false, 3, "x"},
        {"aXa", "a", "a", 0, false, false, 1, "X"},  // the end is looked for behind the start
        {"xxa", "a", "", 0, true, true, -1, "kept"}, // nothing follows the start
        {"abc", "", "", 1, true, true, 1, "kept"},
        {"abc", "c", "", 2, true, true, -1, "kept"}, // a start this close to the end
        {"abc", "a", "d", 0, true, true, -1, "kept"},
        {"abc", nullptr, "c", 0, true, true, -1, "kept"},
        {"abc", "a", nullptr, 0, true, true, -1, "kept"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        CQSString out = Make("kept");
        EXPECT_EQ(row.index, Make(row.text).GetSubString(out, row.start, row.end, row.from,
                                                         row.keepStart, row.keepEnd));
        EXPECT_EQ(row.expected, Bytes(out));
    }
    CQSString out;
    EXPECT_EQ(1, Make("a\0b\0c"s).GetSubString(out, '\0', '\0', 0, true, false));
    EXPECT_EQ("\0b"s, Bytes(out));
    EXPECT_TRUE(recorder.Reports().empty());
    EXPECT_EQ(-1, CQSString().GetSubString(out, 'a', 'b', -1, true, true));
    EXPECT_EQ(-1, CQSString().GetSubString(out, "", "", -1, true, true));
    ExpectReports(recorder, {"m_pData != NULL && m_nLen > 0", "m_pData != NULL && m_nLen > 0"});
}

TEST(ByteStringTrim, OnlyFourBytesAreBlanks)
{
    const struct {
        std::string text, left, right, both;
    } rows[] = {
        {" \t\r\n x y\n ", "x y\n ", " \t\r\n x y", "x y"},
        {"\v x \f", "\v x \f", "\v x \f", "\v x \f"},
        {"\0 "s, "\0 "s, "\0"s, "\0"s},
        {"x", "x", "x", "x"},
    };
    for (const auto& row : rows) {
        CQSString left = Make(row.text), right = Make(row.text), both = Make(row.text);
        left.TrimLeft();
        right.TrimRight();
        both.TrimRightAndLeft();
        EXPECT_EQ(row.left, Bytes(left));
        EXPECT_EQ(row.right, Bytes(right));
        EXPECT_EQ(row.both, Bytes(both));
    }
    for (auto trim : {+[](CQSString& s) { s.TrimLeft(); }, +[](CQSString& s) { s.TrimRight(); },
                      +[](CQSString& s) { s.TrimRightAndLeft(); }}) {
        CQSString blanks = Make("  \t\r\n");
        trim(blanks);
        trim(blanks);
        EXPECT_EQ(nullptr, blanks.GetDataPtr());
    }
}

TEST(ByteStringTrim, CountedFormsDifferWhereNothingIsLeft)
{
    const CQSString s = Make("hello");
    CQSString out = Make("kept");
    s.TrimLeft(5, out);
    s.TrimRight(5, out);
    CQSString().TrimRightAndLeft(1, 1, out);
    EXPECT_EQ("kept", Bytes(out));
    s.TrimLeft(2, out);
    EXPECT_EQ("llo", Bytes(out));
    s.TrimRight(2, out);
    EXPECT_EQ("hel", Bytes(out));
    s.TrimRight(-2, out);
    EXPECT_EQ("hello", Bytes(out));
    s.TrimRightAndLeft(1, 2, out);
    EXPECT_EQ("el", Bytes(out));
    s.TrimRightAndLeft(-1, 4, out);
    EXPECT_EQ("h", Bytes(out));
    s.TrimRightAndLeft(0x7FFFFFFF, 0x7FFFFFFF, out);
    EXPECT_EQ(nullptr, out.GetDataPtr());
}

// The expected tables are Python's str.upper() and str.lower() on Latin-1, which leaves Latin-1
// for 0xB5 and 0xFF and makes two letters of 0xDF: those three stay.
TEST(ByteStringCase, FollowsLatin1)
{
    std::string upper = AllBytes();
    std::string lower = AllBytes();
    for (int b = 0; b < 256; ++b) {
        if ((b >= 0x61 && b <= 0x7A) || (b >= 0xE0 && b <= 0xF6) || (b >= 0xF8 && b <= 0xFE)) {
            upper[static_cast<size_t>(b)] = static_cast<char>(b - 32);
            lower[static_cast<size_t>(b - 32)] = static_cast<char>(b);
        }
    }
    CQSString s = Make(AllBytes());
    s.MakeUpper();
    EXPECT_EQ(upper, Bytes(s));
    s = Make(AllBytes());
    s.MakeLower();
    EXPECT_EQ(lower, Bytes(s));
    std::string part = "ABC";
    CQSString::MakeLower(part.data() + 1, 1);
    EXPECT_EQ("AbC", part);
}

TEST(ByteStringCase, OnlyMakeLowerToleratesAnEmptyString)
{
    AssertRecorder recorder;
    CQSString empty;
    empty.MakeLower();
    EXPECT_TRUE(recorder.Reports().empty());
    empty.MakeUpper();
    std::string text = "A";
    CQSString::MakeLower(text.data(), 0);
    CQSString::MakeLower(nullptr, 1);
    ExpectReports(recorder, {"m_pData != NULL && m_nLen > 0", "lpszStart != NULL && nLen > 0",
                             "lpszStart != NULL && nLen > 0"});
    EXPECT_EQ("A", text);
}

TEST(ByteStringReplace, CountsAndRebuildsLeftToRight)
{
    const struct {
        const char *text, *oldText, *newText;
        int count;
        const char* expected;
    } rows[] = {
        {"aaaa", "aa", "b", 2, "bb"}, {"aaa", "aa", "aaa", 1, "aaaa"}, {"aaa", "a", nullptr, 3, ""},
        {"axbxc", "x", "", 2, "abc"}, {"axb", "x", "yyy", 1, "ayyyb"}, {"xa", "x", "x", 0, "xa"},
        {"xa", "", "y", 0, "xa"},     {"xa", nullptr, "y", -1, "xa"},  {"xa", "b", "y", 0, "xa"},
    };
    for (const auto& row : rows) {
        CQSString s = Make(row.text);
        EXPECT_EQ(row.count, s.Replace(row.oldText, row.newText)) << row.text;
        EXPECT_EQ(row.expected, Bytes(s));
        EXPECT_EQ(s.IsEmpty(), s.GetDataPtr() == nullptr);
    }
    EXPECT_EQ(0, CQSString().Replace(nullptr, nullptr));
    CQSString binary = Make("\0x\0"s);
    EXPECT_EQ(1, binary.Replace("x", "yz"));
    EXPECT_EQ("\0yz\0"s, Bytes(binary));
}

// Each removal lets the next byte slip past the check, and nothing behind the new end is reset.
TEST(ByteStringFilter, SkipsTheByteAfterARemovedOneAndDoesNotTerminate)
{
    const struct {
        std::string text, kept, behind;
    } rows[] = {
        {"\x41\x01\x02\x42", "\x41\x02\x42", "\x42"},
        {"\x01\x02\x03\x04\x7F", "\x02\x04", "\x7F\x7F\x7F"},
        {"a\xE9z\x1F", "az", "\x1F\x1F"},
        {" ~", " ~", ""},
        {"\n", "", "\n"},
    };
    for (const auto& row : rows) {
        CQSString s = Make(row.text);
        const char* const before = s.GetDataPtr();
        s.FilterInvisibleChar();
        EXPECT_EQ(before, s.GetDataPtr());
        EXPECT_EQ(row.kept, Bytes(s));
        EXPECT_EQ(row.behind, s.GetDataPtr() + s.GetLength());
    }
    CQSString().FilterInvisibleChar();
}

TEST(ByteStringTests, PrefixAndSuffixAlwaysMindTheCase)
{
    AssertRecorder recorder;
    const CQSString s = Make("file.txt");
    EXPECT_EQ(1, s.IsStartWith("file"));
    EXPECT_EQ(1, s.IsStartWithNoCase("file"));
    EXPECT_EQ(0, s.IsStartWithNoCase("FILE"));
    EXPECT_EQ(1, s.IsEndWith(".txt"));
    EXPECT_EQ(1, s.IsEndWithNoCase(".txt"));
    EXPECT_EQ(0, s.IsEndWithNoCase("TXT"));
    EXPECT_EQ(0, s.IsStartWith("file.txt.gz"));
    EXPECT_EQ(1, s.IsEndWith(""));
    EXPECT_EQ(1, CQSString().IsStartWith(""));
    EXPECT_EQ(0, Make("a\0b"s).IsStartWith("ab"));
    EXPECT_TRUE(recorder.Reports().empty());
    EXPECT_EQ(0, s.IsStartWith(nullptr) + s.IsStartWithNoCase(nullptr));
    EXPECT_EQ(0, s.IsEndWith(nullptr) + s.IsEndWithNoCase(nullptr));
    ExpectReports(recorder,
                  {"lpszSub != NULL", "lpszSub != NULL", "lpszSub != NULL", "lpszSub != NULL"});
}

TEST(ByteStringNumbers, ParseFromTheEnd)
{
    const struct {
        const char* text;
        int decimal;
        unsigned int unsignedDecimal;
        int hex;
    } rows[] = {
        {"123", 123, 123, 0x123},
        {"-45", -45, 45, 0x45},
        {"12a3", 3, 3, 0x12a3},
        {"-1-2", -2, 2, 0x12},
        {"4294967297", 1, 1, 0x94967297 - 0x100000000LL},
        {"0x1F", 0, 0, 0x1F},
        {"ff", 0, 0, 255},
        {"g", 0, 0, 0},
        {"-", 0, 0, 0},
        {" +7", 7, 7, 7},
        {"-4294967295", 1, 4294967295U, 0x94967295 - 0x100000000LL},
        {"DE:AD:BE:EF", 0, 0, 0xDEADBEEF - 0x100000000LL},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.decimal, Make(row.text).ToINT()) << row.text;
        EXPECT_EQ(row.unsignedDecimal, Make(row.text).ToUINT()) << row.text;
        EXPECT_EQ(row.hex, Make(row.text).ToHEX()) << row.text;
    }
}

TEST(ByteStringNumbers, AnEmptyStringHasNoValue)
{
    AssertRecorder recorder;
    EXPECT_EQ(-1, CQSString().ToINT());
    EXPECT_EQ(0U, CQSString().ToUINT());
    EXPECT_EQ(-1, CQSString().ToHEX());
    ExpectReports(recorder, {"m_pData != NULL", "m_nLen > 0", "m_pData != NULL", "m_nLen > 0",
                             "m_pData != NULL", "m_nLen > 0"});
}

TEST(ByteStringNumbers, FormatsBothKindsOfInteger)
{
    CQSString s = Make("old");
    s.ToString(-2147483647 - 1);
    EXPECT_EQ("-2147483648", Bytes(s));
    s.ToString(4294967295U);
    EXPECT_EQ("4294967295", Bytes(s));
    s.UToString(0);
    EXPECT_EQ("0", Bytes(s));
}

TEST(ByteStringNumbers, HexStringLooksAtTheFirstByteAlone)
{
    const struct {
        std::string text, expected; // an empty expectation: refused
    } rows[] = {
        {"a1", "\0A\0001"s},
        {"Fg z", "\0F\0g\0 \0z"s},
        {"255", "\0F\0F"s},
        {"2 5", "\0000"s},
        {"9\0z"s, "\0009"s},
        {"255 ", "\0000"s},
        {"18446744073709551615", "\0F\0F\0F\0F\0F\0F\0F\0F\0F\0F\0F\0F\0F\0F\0F\0F"s},
        {"18446744073709551616", "\0000"s},
        {"0A", ""},
        {"g", ""},
        {" 1", ""},
        {"", ""},
    };
    for (const auto& row : rows) {
        CQSString s = Make(row.text);
        EXPECT_EQ(row.expected.empty() ? 0 : 1, s.ToHexString()) << row.text;
        EXPECT_EQ(row.expected.empty() ? row.text : row.expected, Bytes(s)) << row.text;
    }
}

// Expected values computed in Python from the published FNV-1a constants and the mix.
TEST(ByteStringNumbers, HashIsMixedFnv1aOverUnsignedBytes)
{
    const struct {
        std::string text;
        unsigned int hash;
        const char* decimal;
    } rows[] = {
        {"", 0x5902879EU, "1493338014"},
        {"hello", 0xEB22D089U, "-350039927"},
        {"\xFF\0\x80"s, 0x621C69C7U, "1646029255"},
    };
    for (const auto& row : rows) {
        CQSString s = Make(row.text);
        EXPECT_EQ(row.hash, CQSString::GetHashCode(s));
        s.ToHashString(s);
        EXPECT_EQ(row.decimal, Bytes(s));
    }
}
