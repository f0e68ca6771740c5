#include "AssertRecorder.h"

#include <CQWString.h>

#include <gtest/gtest.h>

#include <cstring>

namespace
{

constexpr char Source[] = "src/CQWString";

// The largest length that may be set without an assertion.
int CapacityOf(CQWString& s)
{
    const int length = s.GetLength();
    int capacity = length;
    AssertRecorder recorder;
    while (s.SetStrEnding(capacity + 1), recorder.Reports().empty()) {
        ++capacity;
    }
    s.SetStrEnding(length);
    return capacity;
}

unsigned char* Bytes(const wchar_t* units)
{
    return reinterpret_cast<unsigned char*>(const_cast<wchar_t*>(units));
}

CQWString Text(const wchar_t* text)
{
    CQWString s;
    s.SetData(text);
    return s;
}

} // namespace

TEST(WideString, FirstBufferIsExactAndLaterOnesKeepAReserve)
{
    CQWString s;
    for (const int capacity : {1, 4, 4, 4, 10, 10, 10, 10, 10, 10, 22}) {
        EXPECT_EQ(1, s.AppendChar(L'x'));
        EXPECT_EQ(capacity, CapacityOf(s)) << s.GetLength();
    }
    EXPECT_STREQ(L"xxxxxxxxxxx", s) << "growth keeps the contents";
    const struct {
        int first, then, capacity;
    } rows[] = {{512, 600, 1112}, {5, 512, 1024}, {5, 513, 1025}, {5, 5, 5}, {600, 3, 600}};
    for (const auto& row : rows) {
        CQWString t(row.first);
        EXPECT_EQ(0, t.GetLength());
        EXPECT_EQ(row.capacity > row.first ? 1 : 0, t.PrepareBufferToWrite(row.then));
        ASSERT_EQ(row.capacity, CapacityOf(t));
        for (int i = 0; i <= row.capacity; ++i) {
            ASSERT_EQ(0, t.GetDataPtr()[i]);
        }
    }
}

TEST(WideString, ZeroSizesReleaseTheBufferAndBadOnesChangeNothing)
{
    CQWString s = Text(L"abc");
    AssertRecorder recorder;
    EXPECT_EQ(0, s.PrepareBufferToWrite(-1));
    EXPECT_TRUE(recorder.Take().at(0).Is("nLen >= 0", Source));
    s.SetStrEnding(4);
    EXPECT_TRUE(recorder.Take().at(0).Is("nLen >= 0&& m_nMAXLen >= nLen", Source));
    s.SetStrEnding(-1);
    s.AllocBuffer(-1);
    CQWString(-5).SetStrEnding(1);
    EXPECT_STREQ(L"abc", s);
    EXPECT_EQ(0, s.PrepareBufferToWrite(0));
    EXPECT_EQ(nullptr, s.GetDataPtr());
    s.SetData(L"abc");
    s.AllocBuffer(0);
    EXPECT_EQ(nullptr, s.GetDataPtr()) << "unlike the byte string's, which keeps the contents";
    EXPECT_TRUE(recorder.Reports().empty());
}

TEST(WideString, NoHostTriesWhatA32BitHostCouldNotHold)
{
    CQWString s = Text(L"abc");
    EXPECT_EQ(0, s.PrepareBufferToWrite(0x1FFFFFFF));
    EXPECT_EQ(nullptr, s.GetDataPtr());
}

TEST(WideString, CountsAreOfWideUnitsAndCountedDataEndsAtAZeroUnit)
{
    CQWString s;
    EXPECT_EQ(1, s.SetData(L"a\0b", 3));
    EXPECT_EQ(1, s.GetLength());
    unsigned char shifted[4 * sizeof(wchar_t) + 1];
    std::memcpy(shifted + 1, L"wide", 4 * sizeof(wchar_t));
    EXPECT_EQ(1, s.SetData(shifted + 1, 4));
    EXPECT_EQ(1, s.AppendData(shifted + 1, 2));
    EXPECT_EQ(1, s.AppendNum(-7));
    EXPECT_STREQ(L"widewi-7", s);
    EXPECT_EQ(1, s.AppendData(Bytes(L"\0z"), 2));
    EXPECT_EQ(10, s.GetLength()) << "appending does not cut";

    s.SetData(L"old");
    EXPECT_EQ(0, s.SetData(static_cast<const wchar_t*>(nullptr)) + s.SetData(L""));
    EXPECT_EQ(0, s.SetData(L"x", 0) + s.SetData(L"x", -1) + s.AppendData(shifted, -1));
    EXPECT_EQ(0, s.AppendData(static_cast<unsigned char*>(nullptr), 1) + s.AppendData(L""));
    EXPECT_STREQ(L"old", s);
}

TEST(WideString, PlatformStringsComeWithTheirCountOfUtf16Units)
{
    const CQWString pair(QString::fromUtf8("\xF0\x9F\x98\x80!"));
    ASSERT_EQ(3, pair.GetLength());
    EXPECT_EQ(0, std::memcmp(L"\U0001F600!\0", pair.GetDataPtr(), 4 * sizeof(wchar_t)));
    EXPECT_EQ(nullptr, CQWString(QString()).GetDataPtr());

    CQWString s = Text(L"old");
    QString refused[] = {QString::fromUtf8("ab\xF0\x9F\x98\x80"), QString(), QString(QChar(0))};
    for (QString& text : refused) {
        EXPECT_EQ(0, s.SetData(text));
        EXPECT_STREQ(L"old", s);
    }
    QString zeroInside = QString::fromUtf8("\xC3\xA9\0x", 4);
    EXPECT_EQ(1, s.SetData(zeroInside));
    EXPECT_STREQ(L"\u00E9", s);
    EXPECT_EQ(1, s.GetLength());
}

TEST(WideString, EmptyingAndAssigningKeepTheBufferWhileCopiesAreExact)
{
    CQWString s = Text(L"secret");
    const wchar_t* buffer = s.GetDataPtr();
    s = CQWString();
    EXPECT_TRUE(s.IsEmpty());
    ASSERT_EQ(buffer, s.GetDataPtr());
    EXPECT_EQ(0, std::memcmp(buffer, L"\0\0\0\0\0", 6 * sizeof(wchar_t)));
    EXPECT_EQ(nullptr, CQWString(s).GetDataPtr());
    const_cast<wchar_t*>(buffer)[0] = L'x';
    s.Empty();
    EXPECT_EQ(0, *buffer) << "the unit at the length goes too";
    s = Text(L"abc");
    s.SetAt(1, 0);
    CQWString copy(s);
    EXPECT_EQ(3, copy.GetLength()) << "copies do not cut at a zero unit";
    EXPECT_EQ(3, CapacityOf(copy));
    EXPECT_EQ(buffer, CQWString(std::move(s)).GetDataPtr());
    EXPECT_EQ(nullptr, s.GetDataPtr());
}

TEST(WideString, ComparingTellsNoBufferFromAnEmptyOne)
{
    const CQWString none;
    const CQWString emptied(3);
    EXPECT_TRUE(none == CQWString());
    EXPECT_FALSE(none == emptied);
    EXPECT_LT(Text(L"a\u4E2D").Compare(L"a\u4E2E"), 0);
    EXPECT_EQ(-1, none.CompareNoCase(L""));
    EXPECT_EQ(0, emptied.CompareNoCase(L""));
    EXPECT_EQ(0, Text(L"[Az]").CompareNoCase(L"[aZ]"));
    EXPECT_EQ(-1, Text(L"[Az]").CompareNoCase(L"{Az]"));
    EXPECT_EQ(-1, Text(L"b").CompareNoCase(L"a")) << "there is no order";
    EXPECT_EQ(-1, Text(L"\u00E9").CompareNoCase(L"\u00C9")) << "ASCII only";
}

TEST(WideString, ElementsOutsideAreAssertedAndReadAsZero)
{
    CQWString s = Text(L"ab");
    AssertRecorder recorder;
    EXPECT_EQ(0, s.GetAt(2));
    EXPECT_TRUE(recorder.Take().at(0).Is("nIndex < m_nDataLen", Source));
    EXPECT_EQ(0, s[-1]);
    EXPECT_TRUE(recorder.Take().at(0).Is("nIndex >= 0", Source));
    s.SetAt(2, L'x');
    EXPECT_TRUE(recorder.Take().at(0).Is("nIndex < m_nDataLen", Source));
    EXPECT_EQ(0, s.GetDataPtr()[2]);
}

TEST(WideString, SearchesCountIn32BitUnits)
{
    const CQWString s = Text(L"\U0001F600ab-ab");
    EXPECT_EQ(4, s.Find(L'a', 2));
    EXPECT_EQ(4, s.Find(L"ab", 2));
    EXPECT_EQ(1, s.Find(L"ab", -9));
    EXPECT_EQ(1, s.Find(L'a', -9));
    EXPECT_EQ(0, s.Find(L'\U0001F600'));
    EXPECT_EQ(5, s.Find(L"", 5));
    EXPECT_EQ(-1, s.Find(L"", 6));
    EXPECT_EQ(-1, CQWString(3).Find(L"", -1));
    EXPECT_EQ(2, s.FindBefore(L'b', 4));
    EXPECT_EQ(-1, s.FindBefore(L'b', 6));
    EXPECT_EQ(-1, s.FindBefore(L'b', -1));
    EXPECT_EQ(5, s.FindofLast(L'b'));
    AssertRecorder recorder;
    EXPECT_EQ(-1, s.Find(static_cast<const wchar_t*>(nullptr)));
    EXPECT_TRUE(recorder.Take().at(0).Is("lpszSub != NULL", Source));
}

TEST(WideString, SubstringsAreClippedAndAnEmptyOneLeavesTheTarget)
{
    const struct {
        int first, count;
        const wchar_t* out;
    } rows[] = {{1, 2, L"el"},   {2, 100, L"llo"}, {-3, 2, L"he"}, {1, 0x7FFFFFFF, L"ello"},
                {5, 1, L"kept"}, {0, -1, L"kept"}, {6, 0, L"kept"}};
    const CQWString s = Text(L"hello");
    AssertRecorder recorder;
    CQWString out;
    for (const auto& row : rows) {
        out.SetData(L"kept");
        s.GetSubString(out, row.first, row.count);
        EXPECT_STREQ(row.out, out) << row.first << ", " << row.count;
    }
    ASSERT_EQ(1U, recorder.Reports().size());
    EXPECT_TRUE(recorder.Take().at(0).Is("nFirst + nCount <= m_nDataLen", Source));
    s.AllocCopy(out, 2, -2);
    EXPECT_STREQ(L"kept", out);
    s.AllocCopy(out, 3, -1);
    EXPECT_STREQ(L"he", out) << "the part inside the string";
}

TEST(WideString, ArgumentsMayLieInTheString)
{
    CQWString s = Text(L"abc");
    EXPECT_EQ(1, s.AppendData(s.GetDataPtr()));
    EXPECT_EQ(1, s.AppendData(Bytes(s.GetDataPtr() + 2), 4));
    EXPECT_STREQ(L"abcabccabc", s);
    s.GetSubString(s, 5, 3);
    EXPECT_STREQ(L"cca", s);
    EXPECT_EQ(1, s.SetData(s.GetDataPtr() + 1));
    EXPECT_STREQ(L"ca", s);
    CQWString grown = Text(L"de");
    EXPECT_EQ(1, grown.SetData(grown.GetDataPtr(), 3)) << "the terminator makes it grow";
    EXPECT_STREQ(L"de", grown);
}
