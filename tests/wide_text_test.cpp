#include "AssertRecorder.h"

#include <CQWString.h>

#include <gtest/gtest.h>

#include <utility>

namespace
{

constexpr char kSource[] = "src/CQWString";

CQWString Text(const wchar_t* text)
{
    CQWString s;
    s.SetData(text);
    return s;
}

} // namespace

TEST(WideText, TrimmingTakesFourBlanksAndKeepsTheBuffer)
{
    const wchar_t* rows[][2] = {
        {L" \t\r\na b\n", L"a b"}, {L"\v a\u00A0", L"\v a\u00A0"}, {L" \n", L""}};
    for (const auto& [text, trimmed] : rows) {
        CQWString s = Text(text);
        const wchar_t* buffer = s.GetDataPtr();
        s.TrimRightAndLeft();
        EXPECT_STREQ(trimmed, s);
        EXPECT_EQ(CQWString::SafeStrlen(trimmed), s.GetLength());
        EXPECT_EQ(buffer, s.GetDataPtr());
    }
}

// Mappings from the Unicode character database (UnicodeData.txt, SpecialCasing.txt).
TEST(WideText, CaseMappingIsFullUnicodeWithinTheOldLength)
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
        CQWString s = Text(text);
        s.MakeUpper();
        EXPECT_STREQ(upper, s);
        EXPECT_EQ(CQWString::SafeStrlen(text), s.GetLength());
        s.SetData(text);
        s.MakeLower();
        EXPECT_STREQ(lower, s);
    }
}

TEST(WideText, DelimitedSubstrings)
{
    const struct {
        const wchar_t *text, *start, *end;
        int from;
        bool keepStart, keepEnd;
        int result;
        const wchar_t* out;
    } rows[] = {
        {L"xabcd", L"a", L"c", 0, false, false, 2, L"b"},
        {L"xabcd", L"a", L"c", -4, true, true, 1, L"abc"},
        {L"ac", L"a", L"c", 0, false, false, 1, L"kept"},
        {L"\U0001F600<<k>>", L"<<", L">>", 0, false, true, 3, L"k>>"},
        {L"xab", L"ab", L"", 0, false, false, -1, L"kept"}, // nothing behind the first one
        {L"xabc", L"ab", L"", 0, true, false, 1, L"ab"},
        {L"xabcd", L"a", L"c", 2, false, false, -1, L"kept"},
        {L"xab", L"", L"b", 2, false, false, -1, L"kept"},
        {L"xabcd", nullptr, L"c", 0, false, false, -1, L"kept"},
        {L"xabcd", L"a", nullptr, 0, false, false, -1, L"kept"},
    };
    for (const auto& row : rows) {
        CQWString out = Text(L"kept");
        EXPECT_EQ(row.result, Text(row.text).GetSubString(out, row.start, row.end, row.from,
                                                          row.keepStart, row.keepEnd));
        EXPECT_STREQ(row.out, out);
    }
    CQWString out;
    EXPECT_EQ(1, Text(L"xabcd").GetSubString(out, L'a', L'c', 0, true, false));
    EXPECT_STREQ(L"ab", out);
}

TEST(WideText, EmptyStringsAreAsserted)
{
    CQWString s(3);
    AssertRecorder recorder;
    EXPECT_EQ(-1, CQWString().GetSubString(s, L"a", L"b", 0, true, true));
    EXPECT_EQ(-1, s.GetSubString(s, L'a', L'b', 0, true, true));
    s.MakeUpper();
    s.MakeLower();
    ASSERT_EQ(4U, recorder.Reports().size());
    for (const AssertReport& report : recorder.Take()) {
        EXPECT_TRUE(report.Is("m_pData != NULL && m_nDataLen > 0", kSource)) << report;
    }
    EXPECT_EQ(-2, CQWString().ToINT() + CQWString().ToINT(10));
    EXPECT_EQ(-1, CQWString().ToHEX());
    ASSERT_EQ(6U, recorder.Reports().size());
    EXPECT_TRUE(recorder.Reports()[0].Is("m_pData != NULL", kSource));
    EXPECT_TRUE(recorder.Reports()[1].Is("m_nDataLen > 0", kSource));
}

TEST(WideText, ReplacingGoesLeftToRightAndNeverShrinksTheBuffer)
{
    const struct {
        const wchar_t *text, *from, *to;
        int count;
        const wchar_t* result;
    } rows[] = {{L"aXa", L"a", L"bc", 2, L"bcXbc"}, {L"aaa", L"aa", L"b", 1, L"ba"},
                {L"aXa", L"X", nullptr, 1, L"aa"},  {L"aaa", L"a", L"", 3, L""},
                {L"aXa", L"x", L"b", 0, L"aXa"},    {L"aXa", L"a", L"a", 0, L"aXa"},
                {L"aXa", L"", L"b", 0, L"aXa"},     {L"aXa", nullptr, L"b", 0, L"aXa"}};
    for (const auto& row : rows) {
        CQWString s = Text(row.text);
        const wchar_t* buffer = s.GetDataPtr();
        EXPECT_EQ(row.count, s.Replace(row.from, row.to));
        EXPECT_STREQ(row.result, s);
        EXPECT_EQ(CQWString::SafeStrlen(row.result), s.GetLength());
        EXPECT_EQ(s.GetLength() <= CQWString::SafeStrlen(row.text), buffer == s.GetDataPtr());
    }
    CQWString s = Text(L"aXa");
    s.Replace(L"a", L"bc");
    EXPECT_EQ(0, s.PrepareBufferToWrite(10)) << "twice the new length";
    EXPECT_EQ(2, s.DeleteSubString(L"bc"));
    EXPECT_EQ(0, s.DeleteSubString(nullptr) + s.DeleteSubString(L""));
    EXPECT_STREQ(L"X", s);

    CQWString own = Text(L"abcab");
    EXPECT_EQ(2, own.Replace(L"ab", own));
    EXPECT_STREQ(L"abcabcabcab", own);
    EXPECT_EQ(3, own.Replace(own.GetDataPtr() + 8, own.GetDataPtr() + 10)); // "cab" by "b"
    EXPECT_STREQ(L"abbbb", own);
}

TEST(WideText, PrefixAndSuffixTests)
{
    const wchar_t noCodePoint[] = {0x7FFFFFFF, L'a', 0};
    const struct {
        const wchar_t *text, *sub;
        int start, startNoCase, end, endNoCase;
    } rows[] = {
        {L"file.txt", L"TXT", 0, 0, 0, 1},
        {L"file.txt", L"txt", 0, 0, 1, 1},
        {L"file.txt", L"FILE", 0, 1, 0, 0},
        {L"file.txt", L"file.txt", 1, 1, 1, 1},
        {L"txt", L"a.txt", 0, 0, 0, 0},
        {L"", L"", 1, 1, 1, 1},
        {L"\u0416\u03A3", L"\u03C2", 0, 0, 0, 1}, // final sigma folds to sigma
        {L"\U00010400\u00DF", L"\U00010428", 0, 1, 0, 0},
        {L"a\u00DF", L"SS", 0, 0, 0, 0}, // folding goes unit by unit
        {noCodePoint, noCodePoint, 1, 1, 1, 1},
    };
    for (const auto& row : rows) {
        const CQWString s = Text(row.text);
        EXPECT_EQ(row.start, s.IsStartWith(row.sub));
        EXPECT_EQ(row.startNoCase, s.IsStartWithNoCase(row.sub));
        EXPECT_EQ(row.end, s.IsEndWith(row.sub));
        EXPECT_EQ(row.endNoCase, s.IsEndWithNoCase(row.sub));
    }
    AssertRecorder recorder;
    const CQWString s = Text(L"a");
    EXPECT_EQ(0, s.IsStartWith(nullptr) + s.IsEndWithNoCase(nullptr));
    ASSERT_EQ(2U, recorder.Reports().size());
    EXPECT_TRUE(recorder.Reports()[1].Is("lpszSub != NULL", kSource));
}

TEST(WideText, ReadingNumbers)
{
    const wchar_t beforeZero[] = {static_cast<wchar_t>(0xFFFFFFF0), L'1', 0};
    const struct {
        const wchar_t* text;
        int decimal, hex, base16, base8;
    } rows[] = {
        {L"-45", -45, -0x45, 0x45, 045}, // no sign in the form with a base
        {L"12a3", 3, 0x12A3, 0x12A3, 723},
        {L"-1-2", -2, -2, 0x102, 0102},
        {L"4294967297", 1, static_cast<int>(0x94967297), static_cast<int>(0x94967297), 590671567},
        {L"0x1F", 0, 0x1F, 0x1F, 1 * 8 + 15},
        {L"-ff", 0, -255, 255, 15 * 8 + 15},
        {L"fg", 0, 0, 0xF0, 15 * 8},
        {L"19", 19, 0x19, 0x19, 17}, // a digit need not belong to the base
        {L"@:`/\u0661", 0, 0, 0, 0},
        {beforeZero, 1, 1, 1, 1},
    };
    for (const auto& row : rows) {
        const CQWString s = Text(row.text);
        EXPECT_EQ(row.decimal, s.ToNum(CQWString::enDecNum)) << row.decimal;
        EXPECT_EQ(row.hex, s.ToNum(CQWString::enHexNum)) << row.decimal;
        EXPECT_EQ(row.base16, s.ToINT(16)) << row.decimal;
        EXPECT_EQ(row.base8, s.ToINT(8)) << row.decimal;
    }
    EXPECT_EQ(-1, Text(L"5").ToNum(static_cast<CQWString::enNumType>(2)));
    EXPECT_EQ(-1, Text(L"5").ToINT(1));
}

TEST(WideText, WritingNumbers)
{
    CQWString s;
    s.ToString(static_cast<int>(0x80000000U));
    EXPECT_STREQ(L"-2147483648", s);
    s.ToString(0xFFFFFFFFU);
    EXPECT_STREQ(L"4294967295", s);
    s.ToStringEx(0x0EDCBA98);
    EXPECT_STREQ(L"EDCBA98", s);
}

// The sums of (byte % 10) x 10^k modulo 2^32, computed in Python.
TEST(WideText, TextMapsToTheDigitsOfItsBytes)
{
    const std::pair<const wchar_t*, int> rows[] = {{L"AB", 56},
                                                   {L"", 0},
                                                   {L"abcdefghijkl", -1261636786},
                                                   {L"\u00E9\u20AC\U0001F600", 596020928}};
    for (const auto& [text, value] : rows) {
        CQWString s = Text(text);
        EXPECT_EQ(value, CQWString::EncryptStrToInt(s));
    }
}
