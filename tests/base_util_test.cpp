#include "AssertRecorder.h"
#include "StringContent.h"
#include "TestPrelude.h"

#include <BaseUtil.h>

#include <cstdint>
#include <ctime>

using B = CBaseUtil;

TEST(FormatString, ReadsEveryKindOfArgumentAsThePlatformDoes)
{
    const auto* const format = "\\%jd|%zu|%td|%.2Lf|%p|%d%n|%hhn|%s";
    int length = 0, expectedLength = 0;
    signed char small = -1, expectedSmall = -1;
    // The platform takes %jd for a long, which is shorter than an intmax_t on the handset.
    const auto expected = QString::asprintf(
        QByteArray(format).replace("%jd", "%lld"), -5LL, sizeof(int), std::ptrdiff_t{-7}, 1.5L,
        static_cast<void*>(&small), 3, &expectedLength, &expectedSmall, "end");
    CQSString out;
    B::FormatString(out, QByteArray(format).constData(), std::intmax_t{-5}, sizeof(int),
                    std::ptrdiff_t{-7}, 1.5L, static_cast<void*>(&small), 3, &length, &small,
                    "end");
    EXPECT_EQ('/' + expected.toStdString().substr(1), Content(out));
    EXPECT_EQ(expectedLength, length);
    EXPECT_EQ(expectedSmall, small);
}

TEST(FormatString, EmptyResultEmptiesAndArgumentsMayLieInTheResult)
{
    auto out = Make<CQSString>("old");
    B::FormatString(out, "%s\\%s", out.GetDataPtr(), out.GetDataPtr());
    EXPECT_STREQ("old/old", out);
    B::FormatString(out, "%s", "");
    EXPECT_TRUE(out.IsEmpty());
    CQWString wide = Wide(L"\\%1-%2");
    B::FormatStringArg(wide, wide, wide.GetDataPtr(), L"x", static_cast<wchar_t*>(nullptr));
    EXPECT_STREQ(L"//x-%2-%2", wide) << "markers that an argument brings are filled, too";
    B::FormatString(wide, static_cast<wchar_t*>(nullptr));
    EXPECT_TRUE(wide.IsEmpty());
}

TEST(Numbers, NothingToReadGivesZero)
{
    AssertRecorder recorder;
    unsigned long out = 7;
    EXPECT_EQ(0, B::StrToUL(nullptr, 1, 16, out));
    EXPECT_EQ(0U, out);
    B::MakeLowerCase(nullptr, 1);
    EXPECT_EQ((AssertReports{{"str != NULL && len > 0", "src/BaseUtil", 493},
                             {"pSrc != NULL && iLen > 0", "src/BaseUtil", 203}}),
              recorder.Take());
    EXPECT_EQ(0, B::wtoh(nullptr, 3));
    EXPECT_EQ(0, B::wtoh(L"12", -1));
    EXPECT_EQ(1, B::wtoh(L"1", 9)) << "the terminator ends the number";
}

// The rule holds modulo 2^32 (computed in Python).
TEST(Random, RandTakesSeedsOutsideItsRange)
{
    for (const auto& [from, next] :
         {std::pair(0xFFFFFFF0UL, 2147248349), {0UL, 2147483647}, {2147483647UL, 2147483647}}) {
        unsigned long seed = from;
        EXPECT_EQ(next, B::Rand(seed));
        EXPECT_EQ(static_cast<unsigned long>(next), seed);
    }
}

TEST(Random, RangeLiesAboveTheFirstBound)
{
    unsigned int seen = 0;
    for (int i = 0; i < 200; ++i) {
        seen |= 1U << B::Random(5, 8) | 1U << (B::Random(8, 5) + 8);
    }
    EXPECT_EQ(0x700E0U, seen) << "5 to 7, and 8 to 10 shifted by 8";
    EXPECT_EACH(B::Random(-3, -3) == -3, B::Random(INT_MIN, INT_MAX) < 0);
}

TEST(Memory, SearchRefusesWhatIsNotThere)
{
    unsigned char text[] = "Hello World";
    char pattern[] = "world";
    EXPECT_EQ(text, B::SearchMem(text, 0, pattern, 0));
    ExpectAll<unsigned char*>(
        nullptr,
        {B::SearchMem(text, 11, pattern, -1), B::SearchMem(nullptr, 11, pattern, 0),
         B::SearchMemNoCase(text, 11, pattern, -1), B::SearchMemNoCase(nullptr, 11, pattern, 5),
         B::SearchMemNoCase(text, 11, nullptr, 5), B::SearchMemNoCase(text, -1, pattern, 5)});
    B::CheckErrorWords(nullptr, 4);
}

TEST(ByteSwap, SwapsWholePairsAndLeavesAnOddByte)
{
    AssertRecorder recorder;
    for (const auto swap : {SetUTF8, GetUTF8}) {
        unsigned char to[] = "-----";
        const unsigned char from[] = "abcde";
        swap(to, from, 5);
        swap(to, to, 2);
        swap(to, nullptr, 0);
        swap(to, from, -1);
        EXPECT_STREQ("abdc-", reinterpret_cast<char*>(to));
    }
    EXPECT_EQ(AssertReports(4, {"false", "src/BaseUtil"}), recorder.Take());
    char bytes[] = "abcdef";
    ChangeUnicodeEnd(bytes, 3);
    ChangeUnicodeEnd(nullptr, 4);
    EXPECT_STREQ("badcef", bytes) << "an odd length takes in the byte behind it";
}

TEST(Packing, OfSignedNumbersExtendsTheSign)
{
    unsigned char bytes[] = "-----";
    long doubleWord = 0;
    short word = 0;
    B::SetLong(bytes, -0x10003);
    B::GetLong(&doubleWord, bytes);
    B::GetShort(&word, bytes);
    B::SetShort(bytes + 3, -4);
    EXPECT_STREQ("\xFF\xFE\xFF\xFF\xFC", reinterpret_cast<char*>(bytes));
    EXPECT_EQ(std::pair(-0x10003L, short{-2}), std::pair(doubleWord, word));
}

TEST(UrlText, EncodingThatWouldNotFitThrows)
{
    // 3 to the power of 20 is above 2^31 - 1.
    QByteArray* out = nullptr;
    EXPECT_THROW(B::UrlEncode("a" + QString(20, ' '), &out), std::bad_alloc);
    EXPECT_EQ(nullptr, out);
    EXPECT_EQ(1, B::UrlEncode("a", nullptr));
    EXPECT_EQ(1, B::UrlDecode("a", nullptr));
    B::DecodeCgi(nullptr);
    CQSString value;
    EXPECT_FALSE(B::GetArgumentFormURL(Make<CQSString>("x?key=v"), nullptr, value));
}

TEST(Time, SecondsRunAndTheOldServicesStandStill)
{
    QSleep(4000000000U);
    EXPECT_NEAR(static_cast<double>(std::time(nullptr)), GetCurTime(), 2);
    CQWString out = Wide(L"old");
    EXPECT_EACH(B::FormatDate(out, L"%Y", 1) == 0, B::GetTickCount() == 0);
    EXPECT_STREQ(L"old", out);
}
