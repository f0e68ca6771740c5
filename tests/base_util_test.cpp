#include "AssertRecorder.h"

#include <BaseUtil.h>
#include <CQSString.h>
#include <CQWString.h>

#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <ctime>
#include <set>
#include <string>

namespace
{

std::string Text(const CQSString& s)
{
    return {s.GetDataPtr() != nullptr ? s.GetDataPtr() : "",
            static_cast<std::size_t>(s.GetLength())};
}

std::wstring Text(const CQWString& s)
{
    return {s.GetDataPtr() != nullptr ? s.GetDataPtr() : L"",
            static_cast<std::size_t>(s.GetLength())};
}

} // namespace

TEST(FormatString, FollowsPrintfAndTurnsEveryBackslash)
{
    CQSString out;
    CBaseUtil::FormatString(out, "%s\\%d", "dir", 5);
    EXPECT_EQ("dir/5", Text(out));
    CBaseUtil::FormatString(out, "%c|%05u|%-4s|%x|%lld|%s", 'D', 42U, "ab", 255, -1LL, "C:\\\\x");
    EXPECT_EQ("D|00042|ab  |ff|-1|C://x", Text(out));
    // Byte text is UTF-8 on the way in and out; a formatted zero is a byte like any other.
    CBaseUtil::FormatString(out, "%s%c-", "\xE4\xB8\xAD\xF0\x9F\x98\x80", 0);
    EXPECT_EQ(std::string("\xE4\xB8\xAD\xF0\x9F\x98\x80\0-", 9), Text(out));
}

TEST(FormatString, WideFormGivesOneUnitACharacter)
{
    CQWString out;
    CBaseUtil::FormatString(out, L"\x4E2D\\%s\x1F600%u", "\xC3\xA9", 7U);
    EXPECT_EQ(L"\x4E2D/\xE9\x1F600"
              L"7",
              Text(out));
    CBaseUtil::FormatString(out, L"a%cb", 0);
    EXPECT_EQ(std::wstring(L"a\0b", 3), Text(out));
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
    wide.SetData(L"%1-%2");
    CBaseUtil::FormatStringArg(wide, wide.GetDataPtr(), wide.GetDataPtr(), L"x",
                               static_cast<wchar_t*>(nullptr));
    // QString::arg() sees the markers that the first argument brought, too.
    EXPECT_EQ(L"x-%2-%2", Text(wide));
    CBaseUtil::FormatString(wide, L"");
    EXPECT_TRUE(wide.IsEmpty());
}

TEST(FormatStringArg, FillsMarkersInOrderUpToTheNull)
{
    CQWString out;
    const wchar_t* const end = nullptr;
    CBaseUtil::FormatStringArg(out, L"%2\\%1 %3", L"one", L"t\x1F600o", end, L"not reached");
    EXPECT_EQ(L"t\x1F600o/one %3", Text(out));
    CBaseUtil::FormatStringArg(out, L"%1\\", end);
    EXPECT_EQ(L"%1/", Text(out));
}

TEST(Numbers, StrToULReadsBase16WhateverTheBase)
{
    // Expected values: strtoul(text, NULL, 16) of a 32-bit C library.
    const struct {
        const char* text;
        unsigned long expected;
    } rows[] = {
        {"#ff", 255},
        {" \t+0x1Fg", 31},
        {"-1", 0xFFFFFFFF},
        {"-FFFFFFFF", 1},
        {"100000000", ~0U},
        {"-123456789AB", ~0U},
        {"ffffffffffffffffffff", ~0U},
        {"--1", 0},
        {"0x", 0},
        {"#", 0},
        {"##1", 0},
    };
    for (const auto& row : rows) {
        std::string text = row.text;
        unsigned long out = 7;
        EXPECT_EQ(1, CBaseUtil::StrToUL(text.data(), static_cast<int>(text.size()), 10, out));
        EXPECT_EQ(row.expected, out) << row.text;
    }
    char digits[] = "#123";
    unsigned long out = 7;
    CBaseUtil::StrToUL(digits, 3, 16, out);
    EXPECT_EQ(0x12U, out) << "the length ends the text";
}

TEST(Numbers, StrToULAndMakeLowerCaseAssertTheirArguments)
{
    AssertRecorder recorder;
    char text[] = "A";
    unsigned long out = 7;
    EXPECT_EQ(0, CBaseUtil::StrToUL(nullptr, 1, 16, out));
    EXPECT_EQ(0U, out);
    EXPECT_EQ(0, CBaseUtil::StrToUL(text, 0, 16, out));
    CBaseUtil::MakeLowerCase(nullptr, 1);
    CBaseUtil::MakeLowerCase(reinterpret_cast<unsigned char*>(text), -1);
    const auto reports = recorder.Take();
    ASSERT_EQ(4U, reports.size());
    EXPECT_TRUE(reports[0].Is("str != NULL && len > 0", "src/BaseUtil", 493));
    EXPECT_TRUE(reports[1].Is("str != NULL && len > 0", "src/BaseUtil", 493));
    EXPECT_TRUE(reports[2].Is("pSrc != NULL && iLen > 0", "src/BaseUtil", 203));
    EXPECT_TRUE(reports[3].Is("pSrc != NULL && iLen > 0", "src/BaseUtil", 203));
    EXPECT_STREQ("A", text);
}

TEST(Numbers, WtohStopsAtTheFirstForeignUnit)
{
    const struct {
        const wchar_t* text;
        int length;
        int expected;
    } rows[] = {
        {L"-1A", 3, -26}, {L"G1", 2, 0},      {L"12 34", 5, 18},    {L"aBcD", 2, 0xAB},
        {L"-1A", 2, -1},  {L"-", 1, 0},       {L"--1", 3, 0},       {L"fg", 2, 15},
        {L"1", 9, 1},     {L"1\xFF11", 2, 1}, {L"100000002", 9, 2}, {L"FFFFFFFF", 8, -1},
        {L"12", -1, 0},   {nullptr, 3, 0},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.expected, CBaseUtil::wtoh(row.text, row.length)) << &row - rows;
    }
}

TEST(Random, RandIsTheMinimalStandardGenerator)
{
    unsigned long seed = 1;
    EXPECT_EQ(16807, CBaseUtil::Rand(seed));
    EXPECT_EQ(16807U, seed);
    // Park and Miller's own check: the 10,001st number of the sequence that begins with 1.
    for (int i = 1; i < 10000; ++i) {
        CBaseUtil::Rand(seed);
    }
    EXPECT_EQ(1043618065U, seed);
    for (const unsigned long stuck : {0UL, 2147483647UL}) {
        seed = stuck;
        EXPECT_EQ(2147483647, CBaseUtil::Rand(seed));
        EXPECT_EQ(2147483647, CBaseUtil::Rand(seed));
        EXPECT_EQ(2147483647U, seed);
    }
    // Outside the generator's range the rule holds modulo 2^32 (computed in Python).
    seed = 0xFFFFFFF0;
    EXPECT_EQ(2147248349, CBaseUtil::Rand(seed));
}

TEST(Random, RangeLiesAboveTheFirstBound)
{
    std::set<int> upwards;
    std::set<int> downwards;
    for (int i = 0; i < 200; ++i) {
        upwards.insert(CBaseUtil::Random(5, 8));
        downwards.insert(CBaseUtil::Random(8, 5));
        EXPECT_GE(CBaseUtil::Random(), 0);
    }
    EXPECT_EQ((std::set<int>{5, 6, 7}), upwards);
    EXPECT_EQ((std::set<int>{8, 9, 10}), downwards);
    EXPECT_EQ(-3, CBaseUtil::Random(-3, -3));
    EXPECT_LT(CBaseUtil::Random(INT_MIN, INT_MAX), 0);
}

TEST(Memory, SearchFindsTheFirstPlace)
{
    unsigned char text[] = "Hello World, hello world";
    char lower[] = "world";
    char upper[] = "WORLD";
    EXPECT_EQ(text + 19, CBaseUtil::SearchMem(text, 24, lower, 5));
    EXPECT_EQ(nullptr, CBaseUtil::SearchMem(text, 23, lower, 5));
    EXPECT_EQ(text + 6, CBaseUtil::SearchMemNoCase(text, 24, upper, 5));
    EXPECT_EQ(nullptr, CBaseUtil::SearchMemNoCase(text, 10, upper, 5));
    EXPECT_EQ('H', text[0]) << "the searched text is left as it is";
    // Only A to Z fold: '[' and '{', and the Latin-1 letters, are the same letter to no one.
    unsigned char latin[] = "[\xC4";
    char folded[] = "{\xE4";
    EXPECT_EQ(nullptr, CBaseUtil::SearchMemNoCase(latin, 2, folded, 1));
    EXPECT_EQ(nullptr, CBaseUtil::SearchMemNoCase(latin, 2, folded + 1, 1));

    EXPECT_EQ(text, CBaseUtil::SearchMem(text, 0, lower, 0));
    EXPECT_EQ(nullptr, CBaseUtil::SearchMemNoCase(text, 24, lower, 0));
    EXPECT_EQ(nullptr, CBaseUtil::SearchMem(text, 24, lower, -1));
    EXPECT_EQ(nullptr, CBaseUtil::SearchMem(text, -1, lower, 5));
    EXPECT_EQ(nullptr, CBaseUtil::SearchMem(nullptr, 24, lower, 0));
    EXPECT_EQ(nullptr, CBaseUtil::SearchMemNoCase(text, 24, nullptr, 5));
}

TEST(Memory, MakeLowerCaseChangesAToZOnly)
{
    unsigned char text[] = "@AZ[`az\xC4Q";
    CBaseUtil::MakeLowerCase(text, 8);
    EXPECT_STREQ("@az[`az\xC4Q", reinterpret_cast<char*>(text));
}

TEST(Memory, CheckErrorWordsLeavesOneKindOfLineBreak)
{
    const auto checked = [](std::u16string text, int bytes) {
        CBaseUtil::CheckErrorWords(reinterpret_cast<unsigned char*>(text.data()),
                                   static_cast<unsigned short>(bytes));
        return text;
    };
    EXPECT_EQ(u"a \fb ", checked(u"a\r\nb\t", 10));
    EXPECT_EQ(u"\f\f\f \f", checked(u"\n\r\r\r\n", 10));
    // Units whose low byte only looks like a control character stay.
    EXPECT_EQ(u"\u010D\u0A0D\f\u010A", checked(u"\u010D\u0A0D\r\u010A", 8));
    // The line feed is cut off by the length, whole or by half.
    EXPECT_EQ(u"\f\n", checked(u"\r\n", 2));
    EXPECT_EQ(u"\f\n", checked(u"\r\n", 3));
    CBaseUtil::CheckErrorWords(nullptr, 4);
}

TEST(ByteSwap, SwapsWholePairsAndLeavesAnOddByte)
{
    const unsigned char from[] = {1, 2, 3, 4, 5};
    for (const auto swap : {SetUTF8, GetUTF8}) {
        unsigned char to[] = {9, 9, 9, 9, 9};
        swap(to, from, 5);
        EXPECT_EQ(0, std::memcmp("\2\1\4\3\11", to, 5));
        swap(to, to, 4);
        EXPECT_EQ(0, std::memcmp("\1\2\3\4\11", to, 5));

        AssertRecorder recorder;
        swap(to, nullptr, 0);
        swap(nullptr, from, 2);
        swap(to, from, -1);
        ASSERT_EQ(3U, recorder.Reports().size());
        EXPECT_TRUE(recorder.Reports()[2].Is("false", "src/BaseUtil"));
    }
}

TEST(ByteSwap, ChangeUnicodeEndTakesInTheByteBehindAnOddLength)
{
    char bytes[] = "abcdef";
    ChangeUnicodeEnd(bytes, 3);
    EXPECT_STREQ("badcef", bytes);
    ChangeUnicodeEnd(bytes, 0);
    ChangeUnicodeEnd(nullptr, 4);
    EXPECT_STREQ("badcef", bytes);
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
    short word = 0;
    long doubleWord = 0;
    CBaseUtil::SetShort(bytes, -2);
    EXPECT_EQ(0, std::memcmp("\xFF\xFE", bytes, 2));
    CBaseUtil::GetShort(&word, bytes);
    EXPECT_EQ(-2, word);
    CBaseUtil::SetLong(bytes, -3);
    EXPECT_EQ(0, std::memcmp("\xFF\xFF\xFF\xFD", bytes, 4));
    CBaseUtil::GetLong(&doubleWord, bytes);
    EXPECT_EQ(-3, doubleWord) << "the sign is extended where long has 64 bits";
}

TEST(Time, SecondsRunAndTheOldServicesStandStill)
{
    const auto before = static_cast<int>(std::time(nullptr));
    const int now = GetCurTime();
    QSleep(4000000000U);
    EXPECT_LE(before, now);
    EXPECT_LE(now, static_cast<int>(std::time(nullptr)));
    EXPECT_EQ(0U, CBaseUtil::GetTickCount());
    CQWString out;
    out.SetData(L"kept");
    EXPECT_EQ(0, CBaseUtil::FormatDate(out, L"%Y", 1));
    EXPECT_EQ(L"kept", Text(out));
}
