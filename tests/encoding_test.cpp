// Conversions between wide text and bytes: the converter, and both string classes on top of it.

#include "StringContent.h"
#include "TestPrelude.h"

#include <CStrConvertor.h>

using namespace std::string_literals;

namespace
{

// What stands in a destination beforehand, and stays where nothing is written.
std::string Padded(std::string bytes)
{
    bytes.resize(32, '\x55');
    return bytes;
}

const unsigned char* Raw(const char* bytes)
{
    return reinterpret_cast<const unsigned char*>(bytes);
}

std::string Assigned(const CQWString& wide)
{
    CQSString assigned = Make<CQSString>("kept"), set = assigned;
    assigned = wide;
    EXPECT_EQ(1, set.SetData(&wide));
    EXPECT_EQ(Content(assigned), Content(set));
    return Content(assigned);
}

} // namespace

// Expected bytes from Python's str.encode(), with 'surrogatepass' for U+D800.
TEST(Encoding, Unicode2Utf8EncodesTheBasicPlaneAndDropsTheRest)
{
    const std::pair<std::vector<wchar_t>, std::string> rows[] = {
        {{0x41, 0xE9, 0x4E2D}, "\x41\xC3\xA9\xE4\xB8\xAD"},
        {{0x7F, 0x80, 0x7FF, 0x800, 0xFFFF}, "\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF"},
        {{0x61, 0x1F600, 0, 0x62}, "a\0b"s},
        {{0xD800}, "\xED\xA0\x80"},
        {{static_cast<wchar_t>(0xFFFFFFFF)}, ""}};
    for (const auto& [units, expected] : rows) {
        const int size = static_cast<int>(expected.size());
        for (int capacity : {size, size + 1, INT_MAX, size - 1}) {
            std::string bytes = Padded("");
            const bool fits = capacity >= size;
            EXPECT_EQ(fits ? size : -1,
                      CStrConvertor::Unicode2Utf8(bytes.data(), capacity, units.data(),
                                                  static_cast<int>(units.size())));
            EXPECT_EQ(Padded(fits ? expected : ""), bytes);
        }
    }
}

// Two characters share one wide unit, low bytes first; callers rely on the packed layout.
TEST(Encoding, Utf82UnicodePacksSixteenBitUnitsAndMeasuresInSteps)
{
    const struct {
        std::string text;
        int steps, capacity, result;
        std::string expected;
    } rows[] = {
        {"\xE4\xB8\xAD\x41", 4, 4, 2, "\x2D\x4E\x41\x00"s},
        {"\xE4\xB8\xAD\x41", 4, 3, -1, ""},
        {"\xE4\xB8\xAD\x41", 2, 2, 2, "\x2D\x4E\x41\x00"s},
        {"", 0, -1, -1, ""},
        {"\xF0\x9F\x98\x80", 4, 0, 0, ""},        // a four-byte lead stops the count
        {"a\x80\xC3\xA9", 4, 1, 2, "a\0\xE9\0"s}, // but is skipped in decoding
        {"\xC3\x41", 2, 2, 1, "\xC1\0"s},         // continuations are masked, not checked
        {"\xC3", 1, 1, 1, "\xC0\0"s},             // cut off: the rest counts as zero bits
        {"\xE4", 50, 50, 1, "\x00\x40"s},         // the walk ends with the text
        {"\xE4", 50, 49, -1, ""},
        {"abcd", 1, 1, 2, "a\0b\0"s}, // decoding stops at 2 x the capacity
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::PrintToString(row.text));
        // Heap copies of the exact size, so that a sanitizer sees every step outside.
        std::vector<char> src(row.text.c_str(), row.text.c_str() + row.text.size() + 1);
        std::vector<wchar_t> dst(8);
        std::memset(dst.data(), Padded("")[0], 32);
        EXPECT_EQ(row.result,
                  CStrConvertor::Utf82Unicode(dst.data(), row.capacity, src.data(), row.steps));
        const std::string written(reinterpret_cast<const char*>(dst.data()), 32);
        EXPECT_EQ(Padded(row.expected), written);
    }
}

TEST(Encoding, ConvertersRefuseNullAndNegativeLengths)
{
    const auto encode = CStrConvertor::Unicode2Utf8;
    const auto decode = CStrConvertor::Utf82Unicode;
    char utf8[] = "a";
    wchar_t wide[] = L"a";
    int room = 2, noRoom = -1;
    ExpectAll(-1, {encode(nullptr, room, wide, 1), encode(utf8, room, nullptr, 0),
                   encode(utf8, room, wide, -1), encode(utf8, noRoom, wide, 0),
                   decode(nullptr, 1, utf8, 1), decode(wide, 1, nullptr, 0),
                   decode(wide, 1, utf8, -1)});
}

// Bytes from Python's str.encode(), with 'surrogatepass' in the assignment's column.
TEST(Encoding, ByteStringConstructorKeepsWhatTheAssignmentDrops)
{
    const std::tuple<std::wstring, std::string, std::string> rows[] = {
        {L"a\u00E9\u4E2D", "a\xC3\xA9\xE4\xB8\xAD", "a\xC3\xA9\xE4\xB8\xAD"},
        {L"\U0001F600z", "\xF0\x9F\x98\x80z", "z"},
        {L"\U0010FFFF", "\xF4\x8F\xBF\xBF", "kept"},
        {L"\uFEFFz", "\xEF\xBB\xBFz", "\xEF\xBB\xBFz"},
        {{0xD83D, 0xDE00}, "\xF0\x9F\x98\x80", "\xED\xA0\xBD\xED\xB8\x80"},
        {{0xDE00, 0xD83D, 'z', 0xD83D}, "??z?", "\xED\xB8\x80\xED\xA0\xBDz\xED\xA0\xBD"},
        {{'a', 0x110000, static_cast<wchar_t>(0xFFFFFFFF)}, "a??", "a"},
        {{}, "", "kept"}};
    for (const auto& [units, constructed, assigned] : rows) {
        EXPECT_EQ(constructed, Content(CQSString(Wide(units))));
        EXPECT_EQ(assigned, Assigned(Wide(units)));
    }
    EXPECT_EQ(0, CQSString().SetData(static_cast<const CQWString*>(nullptr)));
    // Zero units are content for the assignment; the constructor stops at them, unless that leaves
    // nothing.
    const CQWString inside(QString::fromLatin1("a\0b", 3));
    EXPECT_EQ("a", Content(CQSString(inside)));
    EXPECT_EQ("a\0b"s, Assigned(inside));
    EXPECT_EQ("\0b"s, Content(CQSString(CQWString(QString::fromLatin1("\0b", 2)))));
}

// The same text in three encodings, from Python's str.encode() and, for the packed form, from
// its UTF-16LE bytes read as 32-bit numbers.
TEST(Encoding, WideStringsLegacySettersPackAndTheOthersDoNot)
{
    const std::tuple<const char*, std::wstring, std::wstring> rows[] = {
        {"AB", L"AB", {0x00420041}},
        {"A\xC3\xA9\xE4\xB8\xAD", L"A\u00E9\u4E2D", {0x00E90041, 0x4E2D}}};
    for (const auto& [utf8, wide, packed] : rows) {
        const int size = static_cast<int>(std::strlen(utf8));
        CQWString s[6] = {{}, {}, {}, {}, {}, CQWString(Make<CQSString>(utf8))};
        EXPECT_EQ(1, s[0].SeASCIIData(Raw(utf8), size));
        EXPECT_EQ(1, s[1].SetGBKByteData(Raw(utf8), size));
        s[2] = Make<CQSString>(utf8);
        EXPECT_EQ(1, s[3].SetUTF8Data(Raw(utf8), size));
        EXPECT_EQ(1, s[4].SetByteData(Raw(utf8), size));
        for (int i = 0; i < 6; ++i) {
            EXPECT_EQ(i < 3 ? packed : wide, std::wstring(+s[i], s[i] + s[i].GetLength())) << i;
        }
    }
    // Beyond U+FFFF only the constructor goes, and its length counts code points.
    const CQWString emoji(Make<CQSString>("\xF0\x9F\x98\x80!"));
    EXPECT_STREQ(L"\U0001F600!", emoji);
    EXPECT_EQ(2, emoji.GetLength());
    EXPECT_STREQ(L"\uFEFF", CQWString(Make<CQSString>("\xEF\xBB\xBF"))) << "as assigned";
}

TEST(Encoding, WideStringKeepsItsTextWhereNothingIsDecodedOrItIsRefused)
{
    CQWString s = Wide(L"old");
    const unsigned char* const emoji = Raw("\xF0\x9F\x98\x80");
    ExpectAll(1, {s.SeASCIIData(nullptr, 3), s.SeASCIIData(emoji, 0), s.SeASCIIData(emoji, -1),
                  s.SetGBKByteData(emoji, 4), s.SetByteData(emoji, 4)});
    ExpectAll(0, {s.SetGBKByteData(nullptr, 3), s.SetUTF8Data(emoji, 4), s.SetUTF8Data(emoji, -1),
                  s.SetByteData(emoji, 0), s.SetByteData(nullptr, 1), s.SetUTF16Data(emoji, -1),
                  s.SetUTF16Data(Raw("\x3D\xD8\x00\xDE"), 2)});
    s = CQSString();
    s = CQSString(4);
    EXPECT_STREQ(L"old", s);
    // Bytes behind the count are not looked at: the lead byte's missing ones count as zero bits.
    EXPECT_EQ(1, s.SeASCIIData(Raw("\xE4\xB8\xAD"), 1));
    EXPECT_STREQ(L"\u4000", s);
    // A filtered byte string is read to its terminator, behind its length, and not beyond that.
    CQSString filtered = Make<CQSString>("\1A\1B\1C\1D");
    filtered.FilterInvisibleChar(); // ABCD and four more D
    s = filtered;
    EXPECT_EQ((std::wstring{0x00420041, 0x00440043, 0x00440044, 0x00440044}), s.GetDataPtr());
}

TEST(Encoding, Utf16IsCountedInUnitsAndBelongsToTheString)
{
    const char16_t units[] = u"A\u00E9\u4E2D\0x";
    unsigned char shifted[sizeof units + 1];
    std::memcpy(shifted + 1, units, sizeof units);
    CQWString s;
    EXPECT_EQ(1, s.SetUTF16Data(shifted + 1, 5));
    EXPECT_STREQ(L"A\u00E9\u4E2D", s);
    s = Wide({L'A', 0x1F600, 0xD800, 0x110000, 0x10FFFF});
    const unsigned short expected[] = {0x41, 0xD83D, 0xDE00, 0xD800, 0xFFFD, 0xDBFF, 0xDFFF, 0};
    EXPECT_EQ(0, std::memcmp(expected, s.WCharToUtf16(), sizeof expected));
    EXPECT_EQ(0, std::memcmp(expected, s.WCharToUtf16(), sizeof expected)) << "asked again";
    EXPECT_EQ(0, *CQWString().WCharToUtf16());
}
