#include <CQSString.h>
#include <CQWString.h>

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace
{

const unsigned char* Bytes(const char* bytes)
{
    return reinterpret_cast<const unsigned char*>(bytes);
}

CQWString Text(const wchar_t* text)
{
    CQWString s;
    s.SetData(text);
    return s;
}

CQSString ByteText(const char* text)
{
    CQSString s;
    s.SetData(text);
    return s;
}

// The same text in three encodings, from Python's str.encode() and, for the packed form, from
// its UTF-16LE bytes read as 32-bit numbers.
struct Sample {
    const char* utf8;
    const wchar_t* wide;
    std::wstring packed;
};

const Sample Samples[] = {
    {"A", L"A", {0x41}},
    {"AB", L"AB", {0x00420041}},
    {"A\xC3\xA9\xE4\xB8\xAD", L"A\u00E9\u4E2D", {0x00E90041, 0x4E2D}},
    {"\xE4\xB8\xAD\xE6\x96\x87", L"\u4E2D\u6587", {0x65874E2D}},
};

} // namespace

TEST(WideEncoding, LegacySettersDecodeUtf8IntoPackedUnits)
{
    for (const Sample& sample : Samples) {
        const int size = static_cast<int>(std::strlen(sample.utf8));
        CQWString ascii, gbk, assigned;
        EXPECT_EQ(1, ascii.SeASCIIData(Bytes(sample.utf8), size));
        EXPECT_EQ(1, gbk.SetGBKByteData(Bytes(sample.utf8), size));
        assigned = ByteText(sample.utf8);
        for (const CQWString* s : {&ascii, &gbk, &assigned}) {
            EXPECT_EQ(sample.packed, s->GetDataPtr());
            EXPECT_EQ(static_cast<int>(sample.packed.size()), s->GetLength());
        }
    }
}

TEST(WideEncoding, LegacySettersThatDecodeNothingLeaveTheText)
{
    CQWString s = Text(L"old");
    EXPECT_EQ(1, s.SeASCIIData(nullptr, 3));
    EXPECT_EQ(1, s.SeASCIIData(Bytes("A"), 0) & s.SeASCIIData(Bytes("A"), -1));
    EXPECT_EQ(1, s.SetGBKByteData(Bytes("\xF0\x9F\x98\x80"), 4)) << "beyond the decoder's plane";
    EXPECT_EQ(0, s.SetGBKByteData(nullptr, 3));
    s = CQSString();
    s = CQSString(4);
    EXPECT_STREQ(L"old", s);
    // Bytes behind the count are not looked at: the lead byte's missing ones count as zero bits.
    EXPECT_EQ(1, s.SeASCIIData(Bytes("\xE4\xB8\xAD"), 1));
    EXPECT_STREQ(L"\u4000", s);
    // A filtered byte string is read to its terminator, behind its length, and not beyond that.
    CQSString filtered = ByteText("\1A\1B\1C\1D");
    filtered.FilterInvisibleChar(); // ABCD and four more D
    s = filtered;
    EXPECT_EQ((std::wstring{0x00420041, 0x00440043, 0x00440044, 0x00440044}), s.GetDataPtr());
}

TEST(WideEncoding, OtherFormsGiveOneUnitACodePoint)
{
    for (const Sample& sample : Samples) {
        const int size = static_cast<int>(std::strlen(sample.utf8));
        CQWString utf8, bytes;
        EXPECT_EQ(1, utf8.SetUTF8Data(Bytes(sample.utf8), size));
        EXPECT_EQ(1, bytes.SetByteData(Bytes(sample.utf8), size));
        EXPECT_STREQ(sample.wide, utf8);
        EXPECT_STREQ(sample.wide, bytes);
        EXPECT_STREQ(sample.wide, CQWString(ByteText(sample.utf8)));
    }
    // Beyond U+FFFF only the constructor goes, and its length counts code points.
    const CQWString emoji(ByteText("\xF0\x9F\x98\x80!"));
    EXPECT_STREQ(L"\U0001F600!", emoji);
    EXPECT_EQ(2, emoji.GetLength());
    EXPECT_STREQ(L"\uFEFF", CQWString(ByteText("\xEF\xBB\xBF"))) << "the assignment's result";
}

TEST(WideEncoding, RefusedTextsChangeNothing)
{
    CQWString s = Text(L"old");
    const unsigned char* emoji = Bytes("\xF0\x9F\x98\x80");
    EXPECT_EQ(0, s.SetUTF8Data(emoji, 4));
    EXPECT_EQ(1, s.SetByteData(emoji, 4)) << "refused all the same";
    EXPECT_EQ(0, s.SetUTF16Data(Bytes("\x3D\xD8\x00\xDE"), 2));
    EXPECT_EQ(0, s.SetUTF8Data(emoji, -1) + s.SetByteData(emoji, 0) + s.SetUTF16Data(emoji, -1));
    EXPECT_EQ(0, s.SetByteData(nullptr, 1));
    EXPECT_STREQ(L"old", s);
}

TEST(WideEncoding, Utf16IsCountedInUnitsAndBelongsToTheString)
{
    const char16_t units[] = u"A\u00E9\u4E2D\0x";
    unsigned char shifted[sizeof units + 1];
    std::memcpy(shifted + 1, units, sizeof units);
    CQWString s;
    EXPECT_EQ(1, s.SetUTF16Data(shifted + 1, 5));
    EXPECT_STREQ(L"A\u00E9\u4E2D", s);

    const wchar_t wide[] = {L'A', 0x1F600, 0xD800, 0x110000, 0x10FFFF, 0};
    const unsigned short expected[] = {0x41, 0xD83D, 0xDE00, 0xD800, 0xFFFD, 0xDBFF, 0xDFFF, 0};
    s.SetData(wide);
    EXPECT_EQ(0, std::memcmp(expected, s.WCharToUtf16(), sizeof expected));
    EXPECT_EQ(0, std::memcmp(expected, s.WCharToUtf16(), sizeof expected)) << "asked again";
    EXPECT_EQ(0, *CQWString().WCharToUtf16());
}
