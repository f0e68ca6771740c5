#include "AssertRecorder.h"

#include <BaseUtil.h>
#include <CQSString.h>
#include <CQWString.h>

#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <ctime>
#include <string>

namespace
{

std::string Text(const CQSString& s)
{
    return s.IsEmpty() ? "" : std::string(s.GetDataPtr(), static_cast<std::size_t>(s.GetLength()));
}

std::wstring Text(const CQWString& s)
{
    return s.IsEmpty() ? L"" : std::wstring(s, static_cast<std::size_t>(s.GetLength()));
}

} // namespace

TEST(FormatString, FollowsPrintfAndTurnsEveryBackslash)
{
    CQSString out;
    CBaseUtil::FormatString(out, "%c\\%05u|%-4s|%x|%lld|%s", 'D', 42U, "ab", 255, -1LL, "C:\\\\x");
    EXPECT_EQ("D/00042|ab  |ff|-1|C://x", Text(out));
    // Byte text is UTF-8 on the way in and out; a formatted zero is a byte like any other.
    CBaseUtil::FormatString(out, "%s%c-", "\xE4\xB8\xAD\xF0\x9F\x98\x80", 0);
    EXPECT_EQ(std::string("\xE4\xB8\xAD\xF0\x9F\x98\x80\0-", 9), Text(out));
    CQWString wide;
    CBaseUtil::FormatString(wide, L"\x4E2D\\%s\x1F600%c%u", "\xC3\xA9", 0, 7U);
    EXPECT_EQ(std::wstring(L"\x4E2D/\xE9\x1F600\0007", 6), Text(wide)) << "one unit a character";
}

TEST(FormatString, EmptyResultEmptiesAndArgumentsMayLieInTheResult)
{
    CQSString out;
    out.SetData("old");
    CBaseUtil::FormatString(out, "%s\\%s", out.GetDataPtr(), out.GetDataPtr());
    EXPECT_EQ("old/old", Text(out));
    CBaseUtil::FormatString(out, "%s", "");
    EXPECT_TRUE(out.IsEmpty());
    CQWString wide;
    wide.SetData(L"old");
    CBaseUtil::FormatString(wide, L"");
    EXPECT_TRUE(wide.IsEmpty());
}

TEST(FormatString, ArgFillsMarkersInOrderUpToTheNull)
{
    CQWString out;
    const wchar_t* const end = nullptr;
    CBaseUtil::FormatStringArg(out, L"%2\\%1 %3", L"one", L"t\x1F600o", end, L"not reached");
    EXPECT_EQ(L"t\x1F600o/one %3", Text(out));
    CBaseUtil::FormatStringArg(out, out, end);
    EXPECT_EQ(L"t\x1F600o/one %3", Text(out));
    out.SetData(L"\\%1-%2");
    CBaseUtil::FormatStringArg(out, out, out.GetDataPtr(), L"x", end);
    EXPECT_EQ(L"//x-%2-%2", Text(out)) << "markers that an argument brings are filled, too";
}

TEST(Numbers, StrToULReadsBase16WhateverTheBase)
{
    // Expected values: strtoul(text, NULL, 16) of a 32-bit C library, without the first "#".
    const struct {
        std::string text;
        unsigned long expected;
    } rows[] = {{"#ff", 255},       {" \t+0x1Fg", 31},     {"-1", 0xFFFFFFFF}, {"-FFFFFFFF", 1},
                {"100000000", ~0U}, {"-123456789AB", ~0U}, {"--1", 0},         {"##1", 0}};
    for (const auto& row : rows) {
        unsigned long out = 7;
        const int length = static_cast<int>(row.text.size());
        EXPECT_EQ(1, CBaseUtil::StrToUL(std::string(row.text + "1").data(), length, 10, out));
        EXPECT_EQ(row.expected, out) << row.text;
    }
}

TEST(Numbers, StrToULAndMakeLowerCaseAssertTheirArguments)
{
    AssertRecorder recorder;
    unsigned long out = 7;
    EXPECT_EQ(0, CBaseUtil::StrToUL(nullptr, 1, 16, out));
    EXPECT_EQ(0U, out);
    CBaseUtil::MakeLowerCase(nullptr, 1);
    ASSERT_EQ(2U, recorder.Reports().size());
    EXPECT_TRUE(recorder.Reports()[0].Is("str != NULL && len > 0", "src/BaseUtil", 493));
    EXPECT_TRUE(recorder.Reports()[1].Is("pSrc != NULL && iLen > 0", "src/BaseUtil", 203));
}

TEST(Numbers, WtohStopsAtTheFirstForeignUnit)
{
    const struct {
        const wchar_t* text;
        int length;
        int expected;
    } rows[] = {{L"-1A", 3, -26}, {L"G1", 2, 0},        {L"12 34", 5, 18},    {L"aBcD", 2, 0xAB},
                {L"-1A", 2, -1},  {L"--1", 3, 0},       {L"1", 9, 1},         {L"1\xFF11", 2, 1},
                {L"12", -1, 0},   {L"FFFFFFFF", 8, -1}, {L"100000002", 9, 2}, {nullptr, 3, 0}};
    for (const auto& row : rows) {
        EXPECT_EQ(row.expected, CBaseUtil::wtoh(row.text, row.length)) << &row - rows;
    }
}

TEST(Random, RandIsTheMinimalStandardGenerator)
{
    unsigned long seed = 1;
    EXPECT_EQ(16807, CBaseUtil::Rand(seed));
    // Park and Miller's own check: the 10,001st number of the sequence that begins with 1.
    for (int i = 1; i < 10000; ++i) {
        CBaseUtil::Rand(seed);
    }
    EXPECT_EQ(1043618065U, seed);
    for (const unsigned long stuck : {0UL, 2147483647UL}) {
        seed = stuck;
        EXPECT_EQ(2147483647, CBaseUtil::Rand(seed));
        EXPECT_EQ(2147483647, CBaseUtil::Rand(seed));
    }
    // Outside the generator's range the rule holds modulo 2^32 (computed in Python).
    seed = 0xFFFFFFF0;
    EXPECT_EQ(2147248349, CBaseUtil::Rand(seed));
}

TEST(Random, RangeLiesAboveTheFirstBound)
{
    unsigned int seen = 0;
    for (int i = 0; i < 200; ++i) {
        seen |= 1U << CBaseUtil::Random(5, 8);
        seen |= 1U << (CBaseUtil::Random(8, 5) + 8);
    }
    EXPECT_EQ(0x700E0U, seen) << "5 to 7, and 8 to 10 shifted by 8";
    EXPECT_EQ(-3, CBaseUtil::Random(-3, -3));
    EXPECT_LT(CBaseUtil::Random(INT_MIN, INT_MAX), 0);
}

TEST(Memory, SearchFindsTheFirstPlace)
{
    unsigned char text[] = "Hello World, hello world [\xC4";
    char lower[] = "world";
    char upper[] = "WORLD";
    EXPECT_EQ(text + 19, CBaseUtil::SearchMem(text, 24, lower, 5));
    EXPECT_EQ(nullptr, CBaseUtil::SearchMem(text, 23, lower, 5));
    EXPECT_EQ(text + 6, CBaseUtil::SearchMemNoCase(text, 24, upper, 5));
    EXPECT_EQ(nullptr, CBaseUtil::SearchMemNoCase(text, 10, upper, 5));
    // Only A to Z fold, no other bytes that are 32 apart.
    char others[] = "{\xE4";
    EXPECT_EQ(nullptr, CBaseUtil::SearchMemNoCase(text, 27, others, 1));
    EXPECT_EQ(nullptr, CBaseUtil::SearchMemNoCase(text, 27, others + 1, 1));

    EXPECT_EQ(text, CBaseUtil::SearchMem(text, 0, lower, 0));
    EXPECT_EQ(nullptr, CBaseUtil::SearchMemNoCase(text, 24, lower, 0));
    EXPECT_EQ(nullptr, CBaseUtil::SearchMem(text, 24, lower, -1));
    EXPECT_EQ(nullptr, CBaseUtil::SearchMem(nullptr, 24, lower, 0));
    EXPECT_EQ(nullptr, CBaseUtil::SearchMemNoCase(text, 24, nullptr, 5));
}

TEST(Memory, CheckErrorWordsLeavesOneKindOfLineBreak)
{
    const auto checked = [](std::u16string text, unsigned short bytes) {
        CBaseUtil::CheckErrorWords(reinterpret_cast<unsigned char*>(text.data()), bytes);
        return text;
    };
    EXPECT_EQ(u"a \fb \f\f\f \f", checked(u"a\r\nb\t\n\r\r\r\n", 20));
    EXPECT_EQ(u"\u010D\u0A0D\f\u010A", checked(u"\u010D\u0A0D\r\u010A", 8)) << "other units stay";
    EXPECT_EQ(u"\f\n", checked(u"\r\n", 3)) << "the line feed is cut off";
    CBaseUtil::CheckErrorWords(nullptr, 4);
}

TEST(ByteSwap, SwapsWholePairsAndLeavesAnOddByte)
{
    for (const auto swap : {SetUTF8, GetUTF8}) {
        unsigned char to[] = "-----";
        const unsigned char from[] = "abcde";
        swap(to, from, 5);
        EXPECT_EQ(0, std::memcmp("badc-", to, 5));
        swap(to, to, 4);
        EXPECT_EQ(0, std::memcmp("abcd-", to, 5));
        AssertRecorder recorder;
        swap(to, nullptr, 0);
        swap(to, from, -1);
        ASSERT_EQ(2U, recorder.Reports().size());
        EXPECT_TRUE(recorder.Reports()[1].Is("false", "src/BaseUtil"));
    }
    char bytes[] = "abcdef";
    ChangeUnicodeEnd(bytes, 3);
    ChangeUnicodeEnd(nullptr, 4);
    EXPECT_STREQ("badcef", bytes) << "an odd length takes in the byte behind it";
}

TEST(Wrappers, ConvertAndPackLikeTheFunctionsBehindThem)
{
    const wchar_t wide[] = L"A\xE9\x4E2D";
    char utf8[8] = {};
    EXPECT_EQ(6, CBaseUtil::UnicodeToUTF8(utf8, 6, wide, 3));
    EXPECT_STREQ("A\xC3\xA9\xE4\xB8\xAD", utf8);
    int capacity = 5;
    EXPECT_EQ(1, CBaseUtil::Unicode2Char(utf8, capacity, wide, 3));
    EXPECT_EQ(-1, capacity);
    for (const auto decode : {CBaseUtil::UTF8ToUnicode, CBaseUtil::Char2Unicode}) {
        wchar_t packed[6] = {};
        EXPECT_EQ(3, decode(packed, 6, utf8, 6));
        EXPECT_EQ(0, std::memcmp("A\0\xE9\0\x2D\x4E\0", packed, 7));
    }
    unsigned char bytes[4];
    long doubleWord = 0;
    CBaseUtil::SetLong(bytes, -0x10003);
    EXPECT_EQ(0, std::memcmp("\xFF\xFE\xFF\xFD", bytes, 4));
    CBaseUtil::GetLong(&doubleWord, bytes);
    EXPECT_EQ(-0x10003, doubleWord) << "the sign is extended where long has 64 bits";
    short word = 0;
    CBaseUtil::GetShort(&word, bytes);
    EXPECT_EQ(-2, word);
}

TEST(Time, SecondsRunAndTheOldServicesStandStill)
{
    QSleep(4000000000U);
    EXPECT_NEAR(static_cast<double>(std::time(nullptr)), GetCurTime(), 2);
    CQWString out;
    EXPECT_EQ(0, CBaseUtil::FormatDate(out, L"%Y", 1));
    EXPECT_EQ(0U, CBaseUtil::GetTickCount());
}
