// Both string classes. What they have in common is tested with the same rows, and what differs
// between them on purpose stands beside it.

#include "AssertRecorder.h"
#include "StringContent.h"
#include "TestPrelude.h"

using namespace std::string_literals;

namespace
{

constexpr int IntMax = 0x7FFFFFFF;

// A C string of the class's units, or null; rows are written in ASCII.
template <class String>
struct Arg {
    Arg(const char* text)
        : isNull(text == nullptr), units(text, text + (isNull ? 0 : std::strlen(text)))
    {
    }
    operator const Unit<String>*() const { return isNull ? nullptr : units.c_str(); }

    bool isNull;
    std::basic_string<Unit<String>> units;
};

// What an operation makes of a string that holds `text`.
template <class String, class Run>
void ExpectAfter(const std::string& text, const std::string& expected, const Run& operation)
{
    auto s = Make<String>(text);
    operation(s);
    EXPECT_EQ(expected, Content(s)) << text;
}

// What an operation makes of a string that holds something already.
template <class String, class Run>
void ExpectOutput(const std::string& expected, const Run& operation)
{
    ExpectAfter<String>("kept", expected, operation);
}

// `expressions` name the length as the byte string does.
template <class String>
void ExpectReports(std::vector<std::string> expressions)
{
    AssertReports reports;
    for (std::string& expression : expressions) {
        const auto length = expression.find("m_nLen");
        if (IsWide<String> && length != std::string::npos) {
            expression.insert(length + 3, "Data"); // m_nDataLen
        }
        reports.push_back({expression, IsWide<String> ? "src/CQWString" : "src/CQSString"});
    }
    EXPECT_EQ(reports, AssertRecorder::Take());
}

template <class String>
struct EitherString : testing::Test {
};
using BothStrings = testing::Types<CQSString, CQWString>;
TYPED_TEST_SUITE(EitherString, BothStrings);

} // namespace

TYPED_TEST(EitherString, RefusesNothingAndCountsAppendedUnits)
{
    auto s = Make<TypeParam>("old");
    const Arg<TypeParam> none(nullptr), empty(""), text("ab");
    unsigned char* const noUnits = nullptr;
    unsigned char units[] = "units";
    ExpectAll(0, {s.SetData(none), s.SetData(empty), s.SetData(noUnits, 1), s.SetData(units, 0),
                  s.SetData(units, -1), s.AppendData(none), s.AppendData(empty),
                  s.AppendData(noUnits, 1), s.AppendData(units, -1)});
    ExpectAll(1, {s.AppendChar('\0'), s.AppendData(text)});
    EXPECT_EQ("old\0ab"s, Content(s));
}

TYPED_TEST(EitherString, TakesArgumentsFromItself)
{
    ExpectAfter<TypeParam>("abc", "abcabc", [](auto& s) { s.AppendData(s.GetDataPtr()); });
    ExpectAfter<TypeParam>("abcabc", "bc", [](auto& s) { s.SetData(s.GetDataPtr() + 4); });
    ExpectAfter<TypeParam>("bc", "bbc",
                           [](auto& s) { s.Replace(s.GetDataPtr() + 1, s.GetDataPtr()); });
    ExpectAfter<TypeParam>("bbc", "bc", [](auto& s) { s.GetSubString(s, 1, 2); });
    ExpectAfter<TypeParam>("cbc", "bc", [](auto& s) {
        s.GetSubString(s, s.GetDataPtr() + 2, s.GetDataPtr() + 1, 0, false, true);
    });
}

TYPED_TEST(EitherString, OutsideElementsAreAssertedAndReadAsZero)
{
    AssertRecorder recorder;
    auto s = Make<TypeParam>("abc");
    s.SetAt(1, 'x');
    EXPECT_EQ('c', s.GetAt(2));
    ExpectReports<TypeParam>({});
    ExpectAll(0, {static_cast<int>(s.GetAt(-1)), static_cast<int>(s[3])});
    s.SetAt(3, 'y');
    ExpectReports<TypeParam>({"nIndex >= 0", "nIndex < m_nLen", "nIndex < m_nLen"});
    EXPECT_EQ("axc", Content(s));
}

TYPED_TEST(EitherString, ComparesWithoutOrderWhereCaseIsIgnored)
{
    const auto against = [](const char* text, const char* other) {
        return Make<TypeParam>(text).CompareNoCase(Arg<TypeParam>(other));
    };
    ExpectAll(0, {against("Abc", "aBC"), against("[Zz", "[zZ")});
    ExpectAll(-1, {against("abc", "abd"), against("b", "a"), against("a", "ab"), against("[", "{"),
                   against("", ""), against("a", nullptr)});
    EXPECT_TRUE(Make<TypeParam>("abc") == Make<TypeParam>("abc"));
    EXPECT_EQ(IsWide<TypeParam>, TypeParam() == TypeParam()) << "differs on purpose";
    EXPECT_EQ(IsWide<TypeParam> ? 0 : -1, TypeParam().Compare(nullptr));
    EXPECT_EQ(IsWide<TypeParam> ? 1 : -1, Make<TypeParam>("a").Compare(nullptr));
    EXPECT_EQ(-1, TypeParam().Compare(Arg<TypeParam>("")));
}

TYPED_TEST(EitherString, FindsWithinRangesAndAcrossZeros)
{
    AssertRecorder recorder;
    const auto s = Make<TypeParam>("a\0bcbc"s);
    const auto sub = [&](const char* text, int at) { return s.Find(Arg<TypeParam>(text), at); };
    ExpectAll(5, {s.Find('c', 4), sub("", 5), s.FindBefore('c', 5)});
    ExpectAll(4, {sub("bc", 3), s.FindBefore('b', 5), s.Find('b', 3)});
    ExpectAll(2, {s.Find('b'), s.Find('b', 2), sub("bc", 2), sub("bc", -7), s.FindBefore('b', 3)});
    ExpectAll(0, {sub("", -7), s.FindBefore('a', 0)});
    ExpectAll(-1, {s.Find('c', 6), s.Find('a', 1), sub("bcd", 0), sub("", 6), s.FindBefore('b', 1),
                   s.FindBefore('c', 6), s.FindBefore('a', -1), TypeParam().Find('\0'),
                   TypeParam().Find(Arg<TypeParam>(""), -1)});
    EXPECT_EQ(IsWide<TypeParam> ? 0 : -1, s.Find('a', -1)) << "differs on purpose";
    ExpectReports<TypeParam>({});
    EXPECT_EQ(-1, sub(nullptr, 0));
    ExpectReports<TypeParam>({"lpszSub != NULL"});
}

TYPED_TEST(EitherString, RangesAreClippedAndEmptyOnesChangeNothing)
{
    AssertRecorder recorder;
    const auto s = Make<TypeParam>("hello");
    const struct {
        int first, count;
        const char *copied, *substring; // negatives clip AllocCopy(), but count as 0 for the other
    } rows[] = {{2, 100, "llo", "llo"}, {-2, 4, "he", "hell"},   {1, IntMax, "ello", "ello"},
                {5, 1, "kept", "kept"}, {1, -1, "kept", "kept"}, {-2, 2, "kept", "he"},
                {6, 1, "kept", "kept"}};
    for (const auto& row : rows) {
        ExpectOutput<TypeParam>(row.copied,
                                [&](auto& out) { s.AllocCopy(out, row.count, row.first); });
        ExpectOutput<TypeParam>(row.substring,
                                [&](auto& out) { s.GetSubString(out, row.first, row.count); });
    }
    ExpectReports<TypeParam>({"nFirst + nCount <= m_nLen"});
}

// An empty delimiter is found at once, but nothing is where the text ends behind the first one or
// starts less than two units before its end. The end is looked for behind the start.
TYPED_TEST(EitherString, SubstringsBetweenDelimiters)
{
    AssertRecorder recorder;
    const struct {
        const char *text, *start, *end;
        int from;
        bool keepStart, keepEnd;
        const char* expected; // the result and behind it the output
    } rows[] = {
        {"xabcd", "a", "c", 0, 0, 0, "2 b"},       {"xabcd", "a", "c", -4, 1, 1, "1 abc"},
        {"ac", "a", "c", 0, 0, 0, "1 kept"},       {"aXa", "a", "a", 0, 0, 0, "1 X"},
        {"xxa", "a", "", 0, 1, 1, "-1 kept"},      {"xabc", "ab", "", 0, 1, 0, "1 ab"},
        {"xab", "", "b", 1, 0, 0, "1 a"},          {"xab", "", "b", 2, 0, 0, "-1 kept"},
        {"abc", "a", "d", 0, 1, 1, "-1 kept"},     {"abc", nullptr, "c", 0, 0, 0, "-1 kept"},
        {"abc", "a", nullptr, 0, 0, 0, "-1 kept"}, {"[[a]][[b]]", "[[", "]]", 1, 1, 0, "5 [[b"},
        {"", "", "", -1, 0, 0, "-1 kept"}};
    for (const auto& row : rows) {
        auto out = Make<TypeParam>("kept");
        const int result = Make<TypeParam>(row.text).GetSubString(out, Arg<TypeParam>(row.start),
                                                                  Arg<TypeParam>(row.end), row.from,
                                                                  row.keepStart, row.keepEnd);
        EXPECT_EQ(row.expected, std::to_string(result) + ' ' + Content(out));
    }
    const Unit<TypeParam> zero = 0;
    TypeParam out;
    EXPECT_EQ(2, Make<TypeParam>("a\0b\0c"s).GetSubString(out, zero, zero, 0, false, false));
    EXPECT_EQ("b", Content(out));
    EXPECT_EQ(-1, TypeParam().GetSubString(out, zero, zero, -1, true, true));
    ExpectReports<TypeParam>({2, "m_pData != NULL && m_nLen > 0"});
}

TYPED_TEST(EitherString, TrimsFourBlanksAndNoOthers)
{
    const std::string rows[][2] = {
        {" \t\r\n x y\n ", "x y"}, {"\v x \f", "\v x \f"}, {"\0 \0"s, "\0 \0"s}, {" \t\r\n", ""}};
    for (const auto& [text, trimmed] : rows) {
        auto s = Make<TypeParam>(text);
        const auto* const before = s.GetDataPtr();
        s.TrimRightAndLeft();
        EXPECT_EQ(trimmed, Content(s));
        EXPECT_EQ(IsWide<TypeParam>, before == s.GetDataPtr()) << "differs on purpose";
        EXPECT_EQ(!IsWide<TypeParam> && trimmed.empty(), s.GetDataPtr() == nullptr);
    }
}

TYPED_TEST(EitherString, ReplacesLeftToRight)
{
    const char* const ofNull = IsWide<TypeParam> ? "0 xa" : "-1 xa";
    // What is expected is the count and behind it the text.
    const std::tuple<std::string, const char*, const char*, std::string> rows[] = {
        {"aaaaa", "aa", "b", "2 bba"}, {"\0x\0"s, "x", "yz", "1 \0yz\0"s},
        {"axbxc", "x", "", "2 abc"},   {"aaa", "aa", "aaa", "1 aaaa"},
        {"xa", "x", "x", "0 xa"},      {"aaa", "a", nullptr, "3 "},
        {"xa", "", "y", "0 xa"},       {"xa", nullptr, "", ofNull},
        {"", nullptr, "", "0 "}};
    for (const auto& [text, oldText, newText, expected] : rows) {
        auto s = Make<TypeParam>(text);
        const auto* const before = s.GetDataPtr();
        const int count = s.Replace(Arg<TypeParam>(oldText), Arg<TypeParam>(newText));
        EXPECT_EQ(expected, std::to_string(count) + ' ' + Content(s));
        // The byte string then has another buffer, the wide string only where the old is too small.
        const bool grows = s.GetLength() > static_cast<int>(text.size());
        EXPECT_EQ(IsWide<TypeParam> ? grows : count > 0, before != s.GetDataPtr());
    }
}

TYPED_TEST(EitherString, OnlyTheWideStringsNoCaseTestsIgnoreCase)
{
    AssertRecorder recorder;
    const int wide = IsWide<TypeParam> ? 1 : 0;
    const std::tuple<std::string, const char*, std::vector<int>> rows[] = {
        {"a.txt", "a.", {1, 0, 1, 0}},  {"a.txt", "A.", {0, 0, wide, 0}},
        {"a.txt", "txt", {0, 1, 0, 1}}, {"a.txt", "TXT", {0, 0, 0, wide}},
        {"txt", "txt", {1, 1, 1, 1}},   {"", "", {1, 1, 1, 1}},
        {"txt", "a.txt", {0, 0, 0, 0}}, {"a\0b"s, "ab", {0, 0, 0, 0}},
        {"a", nullptr, {0, 0, 0, 0}}};
    for (const auto& [text, subText, expected] : rows) {
        const auto s = Make<TypeParam>(text);
        const Arg<TypeParam> sub(subText);
        EXPECT_EQ(expected, (std::vector{s.IsStartWith(sub), s.IsEndWith(sub),
                                         s.IsStartWithNoCase(sub), s.IsEndWithNoCase(sub)}));
    }
    ExpectReports<TypeParam>({4, "lpszSub != NULL"});
}

// Foreign units of a hexadecimal number are skipped by the byte string and end the wide string's.
TYPED_TEST(EitherString, ReadsAndWritesNumbersModulo32Bits)
{
    AssertRecorder recorder;
    const std::tuple<const char*, int, unsigned, unsigned> rows[] = {
        {"-45", -45, 0x45, 0U - 0x45},
        {"12a3", 3, 0x12A3, 0x12A3},
        {"-1-2", -2, 0x12, 0U - 2},
        {"0x1F", 0, 0x1F, 0x1F},
        {"fg", 0, 15, 0},
        {"@G`g/:", 0, 0, 0},
        {"4294967297", 1, 0x94967297, 0x94967297}};
    for (const auto& [text, decimal, byteHex, wideHex] : rows) {
        const auto s = Make<TypeParam>(text);
        EXPECT_EQ(decimal, s.ToINT());
        EXPECT_EQ(IsWide<TypeParam> ? wideHex : byteHex, static_cast<unsigned>(s.ToHEX())) << text;
    }
    ExpectOutput<TypeParam>("-2147483648", [](auto& s) { s.ToString(-IntMax - 1); });
    ExpectOutput<TypeParam>("4294967295", [](auto& s) { s.ToString(4294967295U); });
    EXPECT_EQ(4294967251U, Make<CQSString>("-4294967251").ToUINT()) << "no sign";
    ExpectReports<TypeParam>({});
    EXPECT_EQ(0U, CQSString().ToUINT());
    ExpectReports<CQSString>({"m_pData != NULL", "m_nLen > 0"});
    ExpectAll(-1, {TypeParam().ToINT(), TypeParam().ToHEX()});
    ExpectReports<TypeParam>({"m_pData != NULL", "m_nLen > 0", "m_pData != NULL", "m_nLen > 0"});
}

TEST(ByteString, EveryChangeMakesAFreshBufferAndNothingIsTreatedAsKeep)
{
    EXPECT_EQ("\0\0\0\0\0"s, Content(CQSString(5)));
    EXPECT_EQ(nullptr, CQSString(-3).GetDataPtr());
    auto s = Make<CQSString>(" a ");
    const char* before = s.GetDataPtr();
    const auto expectFresh = [&](auto...) {
        EXPECT_NE(before, std::exchange(before, s.GetDataPtr()));
    };
    expectFresh((s.AllocBuffer(3), 0));
    expectFresh(s.SetData("abc"), 0);
    expectFresh((s = Make<CQSString>("xyz"), 0));
    expectFresh(s.AppendChar('d'));
    expectFresh((s.TrimLeft(), 0));
    expectFresh((s.TrimRight(), 0));
    AssertRecorder recorder;
    s.AllocBuffer(0);
    s = CQSString();
    s = *&s;
    s.AllocBuffer(-1);
    ExpectReports<CQSString>({"nLen >= 0"});
    EXPECT_EQ("xyzd", Content(s));
    EXPECT_EQ(before, CQSString(std::move(s)).GetDataPtr());
    EXPECT_TRUE(s.IsEmpty()); // NOLINT(bugprone-use-after-move): the emptied state is promised
}

TEST(ByteString, ComparesAndFindsBytes)
{
    EXPECT_GT(Make<CQSString>("\x80").Compare("\x7F"), 0);
    EXPECT_EQ(-1, Make<CQSString>("\xE9").CompareNoCase("\xC9")) << "ASCII only";
    auto other = Make<CQSString>("a\0x"s);
    EXPECT_EQ(0, Make<CQSString>("A\0X"s).CompareNoCase(other));
    EXPECT_EQ(-1, Make<CQSString>("A\0Y"s).CompareNoCase(other));
    const auto s = Make<CQSString>("abcb");
    ExpectAll(1,
              {s.Find('b', 1, 100), s.Find('b', 0, 2), Make<CQSString>(" \v").FindFirstValidChar(0),
               Make<CQSString>("x\n").FindFirstValidChar(0) + 1});
    ExpectAll(-1, {s.Find('b', 2, 2), s.Find('b', 2, 3), s.Find('b', -1, 3), s.Find('b', 4, 9),
                   s.FindFirstValidChar(-1), s.FindFirstValidChar(4),
                   Make<CQSString>("x \t\r").FindFirstValidChar(1)});
}

TEST(ByteString, OneSidedAndCountedTrimsDifferWhereNothingIsLeft)
{
    ExpectAfter<CQSString>(" \n", "", [](auto& s) { s.TrimLeft(); });
    ExpectAfter<CQSString>(" \n", "", [](auto& s) { s.TrimRight(); });
    const auto s = Make<CQSString>("hello");
    const struct {
        int n;
        const char *left, *right, *both;
    } rows[] = {{2, "llo", "hel", "l"},
                {-2, "hello", "hello", "hello"},
                {5, "kept", "kept", ""},
                {IntMax, "kept", "kept", ""}};
    for (const auto& row : rows) {
        ExpectOutput<CQSString>(row.left, [&](auto& out) { s.TrimLeft(row.n, out); });
        ExpectOutput<CQSString>(row.right, [&](auto& out) { s.TrimRight(row.n, out); });
        ExpectOutput<CQSString>(row.both,
                                [&](auto& out) { s.TrimRightAndLeft(row.n, row.n, out); });
    }
    ExpectOutput<CQSString>("el", [&](auto& out) { s.TrimRightAndLeft(1, 2, out); });
    ExpectOutput<CQSString>("pt", [](auto& out) { out.TrimLeft(2, out); });
}

// Edges of the letter ranges, from Python's str.upper() and str.lower() on Latin-1. Where those
// leave Latin-1 (0xB5, 0xFF) or change the length (0xDF) the byte stays.
TEST(ByteString, MapsLatin1AndOnlyMakeLowerToleratesNothing)
{
    AssertRecorder recorder;
    ExpectAfter<CQSString>("`az{\xB5\xDF\xE0\xF6\xF7\xF8\xFE\xFF",
                           "`AZ{\xB5\xDF\xC0\xD6\xF7\xD8\xDE\xFF", [](auto& s) { s.MakeUpper(); });
    ExpectAfter<CQSString>("@AZ[\0\xBF\xC0\xD6\xD7\xD8\xDE\xDF"s,
                           "@az[\0\xBF\xE0\xF6\xD7\xF8\xFE\xDF"s, [](auto& s) { s.MakeLower(); });
    ExpectAfter<CQSString>("", "", [](auto& s) { s.MakeLower(); });
    char text[] = "ABC";
    CQSString::MakeLower(text, 2);
    ExpectReports<CQSString>({});
    CQSString().MakeUpper();
    CQSString::MakeLower(text + 2, 0);
    CQSString::MakeLower(nullptr, 1);
    const std::string ofRange = "lpszStart != NULL && nLen > 0";
    ExpectReports<CQSString>({"m_pData != NULL && m_nLen > 0", ofRange, ofRange});
    EXPECT_STREQ("abC", text);
}

// Each removal lets the next byte slip past the check, and nothing behind the new end is reset.
TEST(ByteString, FilterSkipsTheByteAfterARemovedOneAndDoesNotTerminate)
{
    const std::string rows[][3] = {{"\x41\x01\x02\x42", "\x41\x02\x42", "\x42"},
                                   {"\x01\x02\x03\x04\x7F", "\x02\x04", "\x7F\x7F\x7F"},
                                   {"~\xE9 \x1F", "~ ", "\x1F\x1F"},
                                   {"\n", "", "\n"}};
    for (const auto& [text, kept, behind] : rows) {
        auto s = Make<CQSString>(text);
        const char* const before = s.GetDataPtr();
        s.FilterInvisibleChar();
        EXPECT_EQ(before, s.GetDataPtr());
        EXPECT_EQ(static_cast<int>(kept.size()), s.GetLength());
        EXPECT_EQ(kept + behind, before);
    }
}

TEST(ByteString, HexStringLooksAtTheFirstByteAlone)
{
    for (const auto& [text, hex] : {std::pair("a1"s, "A1"s),
                                    {"Fg z"s, "Fg z"s},
                                    {"255"s, "FF"s},
                                    {"255 "s, "0"s},
                                    {"9\0z"s, "9"s},
                                    {"18446744073709551616"s, "0"s},
                                    {"18446744073709551615"s, "FFFFFFFFFFFFFFFF"s}}) {
        std::string units;
        for (const char c : hex) {
            units += {'\0', c};
        }
        ExpectAfter<CQSString>(text, units, [](auto& s) { EXPECT_EQ(1, s.ToHexString()); });
    }
    for (const char* const text : {"0A", "g", " 1", ""}) {
        ExpectAfter<CQSString>(text, text, [](auto& s) { EXPECT_EQ(0, s.ToHexString()); });
    }
}

// Expected values computed in Python from the published FNV-1a constants and the mix.
TEST(ByteString, HashIsMixedFnv1aOverUnsignedBytes)
{
    for (const auto& [text, hash] :
         {std::pair(""s, 1493338014), {"hello"s, -350039927}, {"\xFF\0\x80"s, 1646029255}}) {
        auto s = Make<CQSString>(text);
        EXPECT_EQ(hash, static_cast<int>(CQSString::GetHashCode(s)));
        ExpectOutput<CQSString>(std::to_string(hash), [&](auto& out) { s.ToHashString(out); });
    }
}

TEST(WideString, FirstBufferIsExactAndLaterOnesKeepAReserve)
{
    const int rows[][3] = {
        {1, 2, 4}, {512, 600, 1112}, {5, 512, 1024}, {5, 513, 1025}, {600, 3, 600}};
    for (const auto& [first, requested, capacity] : rows) {
        CQWString s(first);
        EXPECT_EQ(0, s.GetLength());
        EXPECT_EQ(requested > first ? 1 : 0, s.PrepareBufferToWrite(requested));
        EXPECT_EQ(0, s.PrepareBufferToWrite(capacity));
        const auto size = static_cast<size_t>(capacity) + 1;
        EXPECT_EQ(std::wstring(size, 0), std::wstring(+s, size));
        EXPECT_EQ(1, s.PrepareBufferToWrite(capacity + 1));
    }
    auto s = Make<CQWString>("aXa");
    s.AppendChar('a');
    EXPECT_EQ(0, s.PrepareBufferToWrite(8)) << "twice the new length";
    EXPECT_EQ(3, s.Replace(L"a", L"bcd"));
    EXPECT_EQ(0, s.PrepareBufferToWrite(20)) << "twice the new length";
    EXPECT_EQ(3, s.DeleteSubString(L"bcd"));
    ExpectAll(0, {s.DeleteSubString(nullptr), s.DeleteSubString(L"")});
    EXPECT_EQ(1, s.PrepareBufferToWrite(21));
    EXPECT_EQ("X", Content(s));
}

TEST(WideString, ZeroSizesReleaseTheBufferAndBadOnesChangeNothing)
{
    AssertRecorder recorder;
    auto s = Make<CQWString>("abc");
    s.SetStrEnding(-1);
    s.AllocBuffer(-1);
    CQWString(-5).SetStrEnding(1);
    ExpectReports<CQWString>({});
    EXPECT_EQ(0, s.PrepareBufferToWrite(-1));
    s.SetStrEnding(4);
    ExpectReports<CQWString>({"nLen >= 0", "nLen >= 0&& m_nMAXLen >= nLen"});
    EXPECT_EQ("abc", Content(s));
    for (const int size : {0, 0x1FFFFFFF}) { // more than a 32-bit host could hold
        s.SetData(L"abc");
        EXPECT_EQ(0, s.PrepareBufferToWrite(size));
        EXPECT_EQ(nullptr, s.GetDataPtr());
    }
    s.SetData(L"abc");
    s.AllocBuffer(0);
    EXPECT_EQ(nullptr, s.GetDataPtr()) << "unlike the byte string's, which keeps the contents";
}

TEST(WideString, SetDataEndsAtAZeroUnitAndPlatformStringsKeepTheirCount)
{
    auto s = Make<CQWString>("de");
    EXPECT_EQ(1, s.SetData(s.GetDataPtr(), 3)) << "the terminator makes it grow";
    EXPECT_EQ("de", Content(s));
    unsigned char shifted[4 * sizeof(wchar_t) + 1];
    std::memcpy(shifted + 1, L"wide", 4 * sizeof(wchar_t));
    ExpectAll(1, {s.SetData(shifted + 1, 4), s.AppendData(shifted + 1, 2), s.AppendNum(-7)});
    EXPECT_EQ("widewi-7", Content(s));
    for (QString text : {QString::fromUtf8("ab\xF0\x9F\x98\x80"), QString(), QString(QChar(0))}) {
        EXPECT_EQ(0, s.SetData(text));
        EXPECT_EQ("widewi-7", Content(s));
    }
    QString zeroInside = QString::fromLatin1("\xE9\0x", 3);
    EXPECT_EQ(1, s.SetData(zeroInside));
    EXPECT_EQ("\xE9", Content(s));
    const CQWString pair(QString::fromUtf8("\xF0\x9F\x98\x80!"));
    EXPECT_EQ(L"\U0001F600!\0"s, std::wstring(+pair, pair + pair.GetLength()));
}

TEST(WideString, EmptyingAndAssigningKeepTheBufferWhileCopiesAreExact)
{
    auto s = Make<CQWString>("secret");
    const wchar_t* const buffer = s.GetDataPtr();
    s = CQWString();
    ASSERT_EQ(buffer, s.GetDataPtr());
    EXPECT_EQ(std::wstring(6, 0), std::wstring(buffer, 6));
    EXPECT_FALSE(s == CQWString()) << "an empty buffer is not the same as none";
    EXPECT_EQ(0, s.CompareNoCase(L""));
    EXPECT_EQ(nullptr, CQWString(s).GetDataPtr());
    const_cast<wchar_t*>(buffer)[0] = L'x';
    s.Empty();
    EXPECT_EQ(0, *buffer) << "the unit at the length goes too";
    s = Make<CQWString>("a\0c"s);
    CQWString copy(s);
    EXPECT_EQ("a\0c"s, Content(copy)) << "copies do not cut at a zero unit";
    EXPECT_EQ(1, copy.PrepareBufferToWrite(4));
    EXPECT_EQ(buffer, CQWString(std::move(s)).GetDataPtr());
    EXPECT_EQ(nullptr, s.GetDataPtr()); // NOLINT(bugprone-use-after-move)
}

TEST(WideString, CountsIn32BitUnitsAndFoldsTheirCase)
{
    const CQWString s = Wide(L"\U0001F600ab\u4E2D-ab\u4E2E");
    ExpectAll(5, {s.Find(L"ab", 2), s.FindofLast(L'a')});
    ExpectAll(0, {s.Find(L'\U0001F600'), s.Find(L"\U0001F600")});
    ExpectAll(-1, {s.FindofLast(L'x'), CQWString().FindofLast(0)});
    EXPECT_LT(Wide(L"a\u4E2D").Compare(L"a\u4E2E"), 0);
    EXPECT_EQ(-1, Wide(L"\u00E9").CompareNoCase(L"\u00C9")) << "ASCII only";
    const wchar_t noCodePoint[] = {0x7FFFFFFF, L'a', 0};
    ExpectAll(1, {Wide(L"\u03A3\u0416").IsStartWithNoCase(L"\u03C2"), // final sigma
                  Wide(L"a\U00010400").IsEndWithNoCase(L"\U00010428"),
                  Wide(noCodePoint).IsStartWithNoCase(noCodePoint)});
    EXPECT_EQ(0, Wide(L"a\u00DF").IsEndWithNoCase(L"SS")) << "folding goes unit by unit";
}

// Mappings from the Unicode character database (UnicodeData.txt, SpecialCasing.txt).
TEST(WideString, CaseMappingIsFullUnicodeWithinTheOldLength)
{
    // Units that are no code point stay, in their order, behind a text that grew.
    const wchar_t opaque[] = {0xDF, 0x7FFFFFFF, 0xFFFF, 0xD800, L'a', 0};
    const wchar_t opaqueUpper[] = {L'S', L'S', 0x7FFFFFFF, 0xFFFF, 0xD800, 0};
    const wchar_t* rows[][3] = {
        {L"aZ\u00E9\u0416[", L"AZ\u00C9\u0416[", L"az\u00E9\u0436["},
        {L"stra\u00DFe", L"STRASS", L"stra\u00DFe"},
        {L"\U00010428\U00010400", L"\U00010400\U00010400", L"\U00010428\U00010428"},
        {opaque, opaqueUpper, opaque}};
    for (const auto& [text, upper, lower] : rows) {
        CQWString s = Wide(text);
        s.MakeUpper();
        EXPECT_STREQ(upper, s);
        EXPECT_EQ(CQWString::SafeStrlen(text), s.GetLength());
        s.SetData(text);
        s.MakeLower();
        EXPECT_STREQ(lower, s);
    }
    AssertRecorder recorder;
    CQWString().MakeUpper();
    CQWString(3).MakeLower();
    ExpectReports<CQWString>({2, "m_pData != NULL && m_nLen > 0"});
}

TEST(WideString, NumbersInABaseTakeEveryUnitForADigit)
{
    const auto numbers = [](const wchar_t* text) {
        return std::pair(Wide(text).ToINT(16), Wide(text).ToINT(8));
    };
    const wchar_t belowZero[] = {static_cast<wchar_t>(0xFFFFFFF0), L'1', 0};
    EXPECT_EQ(std::pair(0x102, 0102), numbers(L"-1-2")) << "no sign, and nothing stops it";
    EXPECT_EQ(std::pair(0x19, 17), numbers(L"19")) << "a digit need not belong to the base";
    EXPECT_EQ(std::pair(0, 0), numbers(L"@:`/g\u0661"));
    EXPECT_EQ(std::pair(1, 1), numbers(belowZero));
    EXPECT_EQ(std::pair(-1802079593, 590671567), numbers(L"4294967297")) << "modulo 2^32";
    const CQWString s = Wide(L"12");
    EXPECT_TRUE(s.ToNum(CQWString::enHexNum) == 0x12 && s.ToNum(CQWString::enDecNum) == 12);
    ExpectAll(-1, {s.ToNum(static_cast<CQWString::enNumType>(2)), s.ToINT(1), s.ToINT(-16)});
    AssertRecorder recorder;
    EXPECT_EQ(-1, CQWString(1).ToINT(10));
    ExpectReports<CQWString>({"m_nLen > 0"});
    ExpectOutput<CQWString>("EDCBA98", [](auto& out) { out.ToStringEx(0x0EDCBA98); });
}

// The sums of (byte % 10) x 10^k modulo 2^32, computed in Python.
TEST(WideString, TextMapsToTheDigitsOfItsBytes)
{
    for (const auto& [text, value] :
         {std::pair(L"AB", 56), std::pair(L"", 0), std::pair(L"abcdefghijkl", -1261636786),
          std::pair(L"\u00E9\u20AC\U0001F600", 596020928)}) {
        CQWString s = Wide(text);
        EXPECT_EQ(value, CQWString::EncryptStrToInt(s));
    }
}
