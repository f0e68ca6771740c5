// What the models of the string classes leave out.

#include "AssertRecorder.h"
#include "StringContent.h"
#include "TestPrelude.h"

#include <BaseUtil.h>

#include <ctime>
#include <set>

using namespace std::string_literals;

TEST(BothStrings, AssertionsReportTheLineOfTheirOperation)
{
    const auto countLines = [](auto s) {
        const AssertRecorder recorder;
        s.GetAt(-1);
        s.SetAt(-1, 'x');
        static_cast<void>(s[-1]);
        s.MakeUpper();
        s.Find(nullptr);
        s.IsStartWith(nullptr);
        s.IsStartWithNoCase(nullptr);
        s.IsEndWith(nullptr);
        s.IsEndWithNoCase(nullptr);
        std::set<int> lines;
        for (const AssertReport& report : AssertRecorder::Take()) {
            lines.insert(report.line);
        }
        return lines.size();
    };
    EXPECT_EQ(7U, countLines(CQSString())) << "two call others";
    EXPECT_EQ(9U, countLines(CQWString()));
}

// Expected values computed in Python from the published FNV-1a constants and the mix.
TEST(ByteString, HashIsMixedFnv1aOverUnsignedBytes)
{
    for (const auto& [text, hash] :
         {std::pair(""s, 1493338014), {"hello"s, -350039927}, {"\xFF\0\x80"s, 1646029255}}) {
        auto s = Make<CQSString>(text);
        EXPECT_EQ(hash, static_cast<int>(CQSString::GetHashCode(s)));
        CQSString out;
        s.ToHashString(out);
        EXPECT_EQ(std::to_string(hash), Content(out));
    }
}

TEST(WideString, GrowthDoublesUpTo512Units)
{
    for (const auto& [requested, capacity] : {std::pair(512, 1024), {513, 1025}}) {
        CQWString s(1);
        EXPECT_EQ(1, s.PrepareBufferToWrite(requested));
        EXPECT_EQ(0, s.PrepareBufferToWrite(capacity));
        EXPECT_EQ(1, s.PrepareBufferToWrite(capacity + 1));
    }
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

// Each character behind a capital, where the platform maps the text as a whole.
TEST(WideString, CaseMappingFollowsThePlatformForEveryCharacter)
{
    for (char32_t c = 1; c <= QChar::LastValidCodePoint; c += c == 0xD7FF ? 0x801 : 1) {
        const std::wstring units = {L'a', static_cast<wchar_t>(c), L'Z', L'Z', L'Z'};
        const QString text = QString::fromStdWString(units);
        for (const bool upper : {true, false}) {
            CQWString s = Wide(units);
            upper ? s.MakeUpper() : s.MakeLower();
            const std::wstring mapped = (upper ? text.toUpper() : text.toLower()).toStdWString();
            ASSERT_EQ(mapped.substr(0, 5), s.GetDataPtr()) << static_cast<unsigned>(c);
        }
    }
}

// Where every place of the text is a false start: a search that begins anew at each takes minutes.
TEST(TextSearch, StaysLinearOnPeriodicText)
{
    const std::string text(2000000, 'a'), half(500000, 'a');
    const auto narrow = Make<CQSString>(text);
    const auto wide = Make<CQWString>(text);
    auto* const bytes = reinterpret_cast<unsigned char*>(const_cast<char*>(narrow.GetDataPtr()));
    const std::clock_t start = std::clock();
    for (std::string sub : {half + half + 'b', half + 'b' + half, 'b' + half + half}) {
        EXPECT_EQ(-1, narrow.Find(sub.c_str()));
        EXPECT_EQ(-1, wide.Find(Make<CQWString>(sub).GetDataPtr()));
        EXPECT_EQ(nullptr, CBaseUtil::SearchMemNoCase(bytes, 2000000, sub.data(), 1000001));
    }
    EXPECT_LT(std::clock() - start, 30 * CLOCKS_PER_SEC);
}
