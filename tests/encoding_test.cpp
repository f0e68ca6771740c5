#include <CStrConvertor.h>

#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

using namespace std::string_literals;

namespace
{

constexpr char Untouched = '\x55';

// The result and behind it the whole destination, Untouched where nothing was written.
std::pair<int, std::string> Encode(const std::vector<wchar_t>& units, int capacity)
{
    std::string bytes(16, Untouched);
    const int result = CStrConvertor::Unicode2Utf8(bytes.data(), capacity, units.data(),
                                                   static_cast<int>(units.size()));
    return {result, bytes};
}

std::string Padded(std::string bytes, size_t size = 16)
{
    bytes.resize(size, Untouched);
    return bytes;
}

} // namespace

// Expected bytes from Python's str.encode(), with 'surrogatepass' for U+D800.
TEST(Unicode2Utf8, EncodesTheBasicPlaneAndDropsTheRest)
{
    const struct {
        std::vector<wchar_t> units;
        std::string expected;
    } rows[] = {
        {{0x41, 0xE9, 0x4E2D}, "\x41\xC3\xA9\xE4\xB8\xAD"},
        {{0x7F, 0x80, 0x7FF, 0x800, 0xFFFF}, "\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF"},
        {{0x61, 0x1F600, 0x62}, "ab"},
        {{0xD800}, "\xED\xA0\x80"},
        {{0x61, 0, 0x62}, "a\0b"s},
        {{static_cast<wchar_t>(0xFFFFFFFF)}, ""},
    };
    for (const auto& row : rows) {
        const int size = static_cast<int>(row.expected.size());
        for (const int capacity : {size, size + 1, INT_MAX}) {
            EXPECT_EQ(std::pair(size, Padded(row.expected)), Encode(row.units, capacity));
        }
        EXPECT_EQ(std::pair(-1, Padded("")), Encode(row.units, size - 1));
    }
}

// Two characters share one wide unit, low bytes first; callers rely on the packed layout.
TEST(Utf82Unicode, PacksSixteenBitUnitsAndMeasuresInSteps)
{
    const struct {
        std::string text;
        int steps, capacity, result;
        std::string expected;
    } rows[] = {
        {"\xE4\xB8\xAD\x41", 4, 4, 2, "\x2D\x4E\x41\x00"s},
        {"\xE4\xB8\xAD\x41", 4, 3, -1, ""},
        {"\xE4\xB8\xAD\x41", 2, 2, 2, "\x2D\x4E\x41\x00"s},
        {"AB", 2, 2, 2, "A\0B\0"s},
        {"", 0, 0, 0, ""},
        {"", 3, 2, -1, ""},
        {"", 0, -1, -1, ""},
        {"\xF0\x9F\x98\x80", 4, 0, 0, ""},        // a four-byte lead stops the count
        {"a\x80\xC3\xA9", 4, 1, 2, "a\0\xE9\0"s}, // but is skipped in decoding
        {"\xC3\x41", 2, 2, 1, "\xC1\0"s},         // continuations are masked, not checked
        {"\xC3", 1, 1, 1, "\xC0\0"s},             // cut off: the rest counts as zero bits
        {"\xE4", 1, 1, 1, "\x00\x40"s},
        {"\xE4\xB8", 2, 2, 1, "\x00\x4E"s},
        {"\xE4", 50, 50, 1, "\x00\x40"s}, // the walk ends with the text
        {"\xE4", 50, 49, -1, ""},
        {"abcd", 1, 1, 2, "a\0b\0"s}, // decoding stops at 2 x the capacity
        {"abcd", 0, 0, 0, ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::PrintToString(row.text));
        // Heap copies of the exact size, so that a sanitizer sees every step outside.
        std::vector<char> src(row.text.c_str(), row.text.c_str() + row.text.size() + 1);
        std::vector<wchar_t> dst(8);
        std::memset(dst.data(), Untouched, dst.size() * sizeof(wchar_t));
        EXPECT_EQ(row.result,
                  CStrConvertor::Utf82Unicode(dst.data(), row.capacity, src.data(), row.steps));
        const std::string written(reinterpret_cast<const char*>(dst.data()), 32);
        EXPECT_EQ(Padded(row.expected, 32), written);
    }
}

TEST(StrConvertor, RefusesNullAndNegativeLengths)
{
    char utf8[] = "a";
    wchar_t wide[] = L"a";
    int room = 2;
    int noRoom = -1;
    for (const int result : {
             CStrConvertor::Unicode2Utf8(nullptr, room, wide, 1),
             CStrConvertor::Unicode2Utf8(utf8, room, nullptr, 0),
             CStrConvertor::Unicode2Utf8(utf8, room, wide, -1),
             CStrConvertor::Unicode2Utf8(utf8, noRoom, wide, 0),
             CStrConvertor::Utf82Unicode(nullptr, 1, utf8, 1),
             CStrConvertor::Utf82Unicode(wide, 1, nullptr, 0),
             CStrConvertor::Utf82Unicode(wide, 1, utf8, -1),
         }) {
        EXPECT_EQ(-1, result);
    }
}
