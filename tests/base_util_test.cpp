#include "AssertRecorder.h"
#include "FailingAllocator.h"
#include "StringContent.h"
#include "TestPrelude.h"

#include <BaseUtil.h>

#include <ctime>
#include <cwchar>
#include <new>

using B = CBaseUtil;
using namespace std::string_literals;

TEST(FormatString, FollowsPrintfAndTurnsEveryBackslash)
{
    CQSString out;
    B::FormatString(out, "%c\\%05u|%-4s|%x|%lld|%s", 'D', 42U, "ab", 255, -1LL, "C:\\\\x");
    EXPECT_STREQ("D/00042|ab  |ff|-1|C://x", out);
    // Byte text is UTF-8 on the way in and out; a formatted zero is a byte like any other.
    B::FormatString(out, "%s%c-", "\xE4\xB8\xAD\xF0\x9F\x98\x80", 0);
    EXPECT_EQ("\xE4\xB8\xAD\xF0\x9F\x98\x80\0-"s, Content(out));
    CQWString wide;
    B::FormatString(wide, L"\x4E2D\\%s\x1F600%c%u", "\xC3\xA9", 0, 7U);
    ASSERT_EQ(6, wide.GetLength()) << "one unit a character";
    EXPECT_EQ(0, std::wmemcmp(L"\x4E2D/\xE9\x1F600\0007", wide.GetDataPtr(), 7));
}

TEST(FormatString, EmptyResultEmptiesAndArgumentsMayLieInTheResult)
{
    auto out = Make<CQSString>("old");
    B::FormatString(out, "%s\\%s", out.GetDataPtr(), out.GetDataPtr());
    EXPECT_STREQ("old/old", out);
    B::FormatString(out, "%s", "");
    CQWString wide = Wide(L"old");
    B::FormatString(wide, L"");
    EXPECT_TRUE(out.IsEmpty() && wide.IsEmpty());
}

TEST(FormatString, ArgFillsMarkersInOrderUpToTheNull)
{
    CQWString out;
    const wchar_t* const end = nullptr;
    B::FormatStringArg(out, L"%2\\%1 %3", L"one", L"t\x1F600o", end, L"not reached");
    EXPECT_STREQ(L"t\x1F600o/one %3", out);
    out.SetData(L"\\%1-%2");
    B::FormatStringArg(out, out, out.GetDataPtr(), L"x", end);
    EXPECT_STREQ(L"//x-%2-%2", out) << "markers that an argument brings are filled, too";
    B::FormatStringArg(out, L"\\%1", end);
    EXPECT_STREQ(L"/%1", out);
}

TEST(Numbers, StrToULReadsBase16WhateverTheBase)
{
    // Expected values: strtoul(text, NULL, 16) of a 32-bit C library, without the first "#".
    const std::pair<std::string, unsigned long> rows[] = {
        {"#ff", 255},       {" \t+0x1Fg", 31},     {"-1", 0xFFFFFFFF}, {"-FFFFFFFF", 1},
        {"100000000", ~0U}, {"-123456789AB", ~0U}, {"--1", 0},         {"##1", 0}};
    unsigned long out = 7;
    for (const auto& [text, expected] : rows) {
        const auto length = static_cast<int>(text.size());
        EXPECT_EQ(1, B::StrToUL(std::string(text + "1").data(), length, 10, out));
        EXPECT_EQ(expected, out) << text;
    }
    AssertRecorder recorder;
    out = 7;
    EXPECT_EQ(0, B::StrToUL(nullptr, 1, 16, out));
    EXPECT_EQ(0U, out);
    B::MakeLowerCase(nullptr, 1);
    EXPECT_EQ((AssertReports{{"str != NULL && len > 0", "src/BaseUtil", 493},
                             {"pSrc != NULL && iLen > 0", "src/BaseUtil", 203}}),
              recorder.Take());
}

TEST(Numbers, WtohStopsAtTheFirstForeignUnit)
{
    const std::tuple<const wchar_t*, int, int> rows[] = {
        {L"-1A", 3, -26}, {L"G1", 2, 0},        {L"12 34", 5, 18},    {L"aBcD", 2, 0xAB},
        {L"-1A", 2, -1},  {L"--1", 3, 0},       {L"1", 9, 1},         {L"1\xFF11", 2, 1},
        {L"12", -1, 0},   {L"FFFFFFFF", 8, -1}, {L"100000002", 9, 2}, {nullptr, 3, 0}};
    for (const auto& [text, length, expected] : rows) {
        EXPECT_EQ(expected, B::wtoh(text, length));
    }
}

TEST(Random, RandIsTheMinimalStandardGenerator)
{
    // Park and Miller's own check: the 10,001st number of the sequence that begins with 1.
    unsigned long seed = 1;
    EXPECT_EQ(16807, B::Rand(seed));
    for (int i = 1; i < 10000; ++i) {
        B::Rand(seed);
    }
    EXPECT_EQ(1043618065U, seed);
    // 0 and the modulus are stuck. Outside the generator's range the rule holds modulo 2^32
    // (computed in Python).
    for (auto [next, number] :
         {std::pair(0UL, 2147483647), {2147483647UL, 2147483647}, {0xFFFFFFF0UL, 2147248349}}) {
        EXPECT_EQ(number, B::Rand(next));
        EXPECT_EQ(static_cast<unsigned long>(number), next);
    }
}

TEST(Random, RangeLiesAboveTheFirstBound)
{
    unsigned int seen = 0;
    for (int i = 0; i < 200; ++i) {
        seen |= 1U << B::Random(5, 8);
        seen |= 1U << (B::Random(8, 5) + 8);
    }
    EXPECT_EQ(0x700E0U, seen) << "5 to 7, and 8 to 10 shifted by 8";
    EXPECT_TRUE(B::Random(-3, -3) == -3 && B::Random(INT_MIN, INT_MAX) < 0);
}

TEST(Memory, SearchFindsTheFirstPlace)
{
    unsigned char text[] = "Hello World, hello world [\xC4";
    char lower[] = "world", upper[] = "WORLD";
    char others[] = "{\xE4"; // not folded, although 32 apart from what the text ends with
    EXPECT_EQ(text + 19, B::SearchMem(text, 24, lower, 5));
    EXPECT_EQ(text + 6, B::SearchMemNoCase(text, 24, upper, 5));
    EXPECT_EQ(text, B::SearchMem(text, 0, lower, 0));
    ExpectAll<unsigned char*>(
        nullptr,
        {B::SearchMem(text, 23, lower, 5), B::SearchMemNoCase(text, 10, upper, 5),
         B::SearchMemNoCase(text, 27, others, 1), B::SearchMemNoCase(text, 27, others + 1, 1),
         B::SearchMemNoCase(text, 24, lower, 0), B::SearchMem(text, 24, lower, -1),
         B::SearchMem(nullptr, 24, lower, 0), B::SearchMemNoCase(text, 24, nullptr, 5)});
}

TEST(Memory, CheckErrorWordsLeavesOneKindOfLineBreak)
{
    const auto checked = [](std::u16string text, unsigned short bytes) {
        B::CheckErrorWords(reinterpret_cast<unsigned char*>(text.data()), bytes);
        return text;
    };
    EXPECT_EQ(u"a \fb \f\f\f \f", checked(u"a\r\nb\t\n\r\r\r\n", 20));
    EXPECT_EQ(u"\u010D\u0A0D\f\u010A", checked(u"\u010D\u0A0D\r\u010A", 8)) << "other units stay";
    EXPECT_EQ(u"\f\n", checked(u"\r\n", 3)) << "the line feed is cut off";
    B::CheckErrorWords(nullptr, 4);
}

TEST(ByteSwap, SwapsWholePairsAndLeavesAnOddByte)
{
    AssertRecorder recorder;
    for (const auto swap : {SetUTF8, GetUTF8}) {
        unsigned char to[] = "-----";
        const unsigned char from[] = "abcde";
        swap(to, from, 5);
        EXPECT_EQ(0, std::memcmp("badc-", to, 5));
        swap(to, to, 4);
        swap(to, nullptr, 0);
        swap(to, from, -1);
        EXPECT_EQ(0, std::memcmp("abcd-", to, 5));
    }
    EXPECT_EQ(AssertReports(4, {"false", "src/BaseUtil"}), recorder.Take());
    char bytes[] = "abcdef";
    ChangeUnicodeEnd(bytes, 3);
    ChangeUnicodeEnd(nullptr, 4);
    EXPECT_STREQ("badcef", bytes) << "an odd length takes in the byte behind it";
}

TEST(Wrappers, ConvertAndPackLikeTheFunctionsBehindThem)
{
    char utf8[8] = {};
    EXPECT_EQ(6, B::UnicodeToUTF8(utf8, 6, L"A\xE9\x4E2D", 3));
    EXPECT_STREQ("A\xC3\xA9\xE4\xB8\xAD", utf8);
    int capacity = 5;
    EXPECT_EQ(1, B::Unicode2Char(utf8, capacity, L"A\xE9\x4E2D", 3));
    EXPECT_EQ(-1, capacity);
    for (const auto decode : {B::UTF8ToUnicode, B::Char2Unicode}) {
        wchar_t packed[6] = {};
        EXPECT_EQ(3, decode(packed, 6, utf8, 6));
        EXPECT_EQ(0, std::memcmp("A\0\xE9\0\x2D\x4E\0", packed, 7));
    }
    unsigned char bytes[4];
    long doubleWord = 0;
    short word = 0;
    B::SetLong(bytes, -0x10003);
    EXPECT_EQ(0, std::memcmp("\xFF\xFE\xFF\xFD", bytes, 4));
    B::GetLong(&doubleWord, bytes);
    EXPECT_EQ(-0x10003, doubleWord) << "the sign is extended where long has 64 bits";
    B::GetShort(&word, bytes);
    EXPECT_EQ(-2, word);
    B::SetShort(bytes, -4);
    EXPECT_EQ(0, std::memcmp("\xFF\xFC\xFF", bytes, 3));
}

TEST(UrlText, SafeCharacters)
{
    std::string safe;
    for (int c = 0; c < 256; ++c) {
        if (B::IsCharSafe(static_cast<char>(c))) {
            safe += static_cast<char>(c);
        }
    }
    EXPECT_EQ("!'()*-.0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ_abcdefghijklmnopqrstuvwxyz", safe);
}

TEST(UrlText, EncodingRepeatsInHexWhatWasWritten)
{
    // Two unsafe bytes of one character: '61' behind 'a', then the form of all three.
    for (const auto& [text, encoded] : {std::pair(QString("a b"), "a61b"),
                                        {" x", "x"},
                                        {QStringLiteral("a\u00E9."), "a61613631."},
                                        {QString(5000, ' '), ""}}) {
        QByteArray* out = nullptr;
        EXPECT_EQ(1, B::UrlEncode(text, &out));
        EXPECT_EQ(encoded, *std::unique_ptr<QByteArray>(out));
    }
    // 3 to the power of 20 is above 2^31 - 1.
    QByteArray* out = nullptr;
    EXPECT_THROW(B::UrlEncode("a" + QString(20, ' '), &out), std::bad_alloc);
    EXPECT_EQ(nullptr, out);
}

TEST(UrlText, DecodingOnlyChecksTheEscapes)
{
    const std::pair<const char*, int> rows[] = {{"", 1},     {"a%41", 1}, {"%zz\r\n%%%", 1},
                                                {"ab%4", 0}, {"%", 0},    {"%%%%", 0}};
    for (const auto& [text, result] : rows) {
        QString* out = nullptr;
        EXPECT_EQ(result, B::UrlDecode(text, &out)) << text;
        const std::unique_ptr<QString> owned(out);
        EXPECT_EQ(result == 1, owned != nullptr && owned->isEmpty()) << text;
    }
}

TEST(UrlText, DecodeCgiReplacesEachEscapeOnce)
{
    // No digits give the character 0; a minus counts, and the value keeps 16 bits.
    const QString xs(2045, 'x'), longest = xs + "%41";
    const std::pair<QString, QString> rows[] = {{"%41-%E9%21", QStringLiteral("A-\u00E9!")},
                                                {"%2541%4", "%41%4"},
                                                {"%%41", QString(1, u'\0') + "1"},
                                                {"%-1", QStringLiteral("\uFFFF")},
                                                {longest, xs + "A"},
                                                {"x" + longest, "x" + longest}};
    for (const auto& [escaped, expected] : rows) {
        QString text = escaped;
        B::DecodeCgi(&text);
        EXPECT_EQ(expected, text);
    }
    B::DecodeCgi(nullptr);
}

TEST(UrlText, EscapeStringGivesAUnitAByte)
{
    // Bytes above 127 and zeros are units of their own; what is beyond U+FFFF is dropped.
    CQWString in = Wide(L"a b?><%#\"\x01!~\x7F\xE9 \x1F600\x4E2D");
    in.SetAt(14, 0);
    const CQWString out = B::EscapeString(in, true);
    const std::wstring expected(L"a%20b%3f%3e%3c%25%23%22%01!~\x7F\xC3\xA9\0\xE4\xB8\xAD", 35);
    EXPECT_EQ(expected, std::wstring(out.GetDataPtr(), static_cast<std::size_t>(out.GetLength())));
    CQWString empty;
    EXPECT_TRUE(B::EscapeString(empty, false).IsEmpty());
    for (int n = 1; n <= 3; ++n) {
        const FailingAllocator noMemory(n);
        const int length = B::EscapeString(in, true).GetLength();
        EXPECT_EQ(noMemory.HasFailed() ? 0 : 35, length) << n;
    }
}

TEST(UrlText, ArgumentOfAUrl)
{
    const auto* const none = "old";
    const struct {
        const char *url, *name, *value; // null: emptied
    } rows[] = {
        {"http://h/p?a=1&Key=Val&b=2", "key", "Val"},
        {"x?key \t=  v w \r\n&b", "key", "v w"},
        // An empty value takes the rest with its "&"; without a rest it empties the old one.
        {"x?key=&b=1", "key", "&b=1"},
        {"x?key= & b", "key", nullptr},
        {"x?key=", "key", nullptr},
        {"x?key", "key", none},
        {"x?key=1", "", none},
        {"x?key=1", nullptr, none},
        // The first search is in lower-cased text, a later one is not. Its offset, found in the
        // rest behind the first, is used on the whole (from a Python model).
        {"x?Key=1", "Key", none},
        {"keyb&Key=5", "key", none},
        {"akeyb=0&key=5", "key", "y=5"},
        {"keyb&a=1&key=5&z=9", "key", "5"},
        {"keyb key= &a=1&c=2", "key", nullptr}};
    for (const auto& row : rows) {
        CQSString url = Make<CQSString>(row.url), value = Make<CQSString>(none);
        const bool found = B::GetArgumentFormURL(url, row.name, value);
        EXPECT_EQ(row.value != nullptr && row.value != none, found) << row.url;
        EXPECT_STREQ(row.value, value) << row.url;
        B::GetArgumentFormURL(url, row.name, url);
        EXPECT_STREQ(row.value == none ? row.url : row.value, url) << "the result is the URL";
    }
}

TEST(Time, SecondsRunAndTheOldServicesStandStill)
{
    QSleep(4000000000U);
    EXPECT_NEAR(static_cast<double>(std::time(nullptr)), GetCurTime(), 2);
    CQWString out;
    EXPECT_TRUE(B::FormatDate(out, L"%Y", 1) == 0 && B::GetTickCount() == 0);
}
