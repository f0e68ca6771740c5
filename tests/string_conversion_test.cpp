// Conversions between the two string classes, from wide text to UTF-8 bytes.

#include <CQSString.h>
#include <CQWString.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace std::string_literals;

namespace
{

std::string Bytes(const CQSString& s)
{
    return {s.GetDataPtr() != nullptr ? s.GetDataPtr() : "", static_cast<size_t>(s.GetLength())};
}

CQWString Wide(const std::vector<wchar_t>& units)
{
    CQWString wide;
    wide.SetData(units.data(), static_cast<int>(units.size()));
    return wide;
}

std::string Assigned(const CQWString& wide)
{
    CQSString assigned;
    CQSString set;
    assigned.SetData("kept");
    set.SetData("kept");
    assigned = wide;
    EXPECT_EQ(1, set.SetData(&wide));
    EXPECT_EQ(Bytes(assigned), Bytes(set));
    return Bytes(assigned);
}

} // namespace

// Bytes from Python's str.encode(), with 'surrogatepass' in the assignment's column.
TEST(WideToBytes, ConstructorKeepsWhatTheAssignmentDrops)
{
    const struct {
        std::vector<wchar_t> units;
        std::string constructed, assigned;
    } rows[] = {
        {{'a', 0xE9, 0x4E2D}, "a\xC3\xA9\xE4\xB8\xAD", "a\xC3\xA9\xE4\xB8\xAD"},
        {{0x1F600, 'b'}, "\xF0\x9F\x98\x80"s + "b", "b"},
        {{0x10FFFF}, "\xF4\x8F\xBF\xBF", "kept"},
        {{0xFEFF, 'a'}, "\xEF\xBB\xBF"s + "a", "\xEF\xBB\xBF"s + "a"},
        {{0xD83D, 0xDE00}, "\xF0\x9F\x98\x80", "\xED\xA0\xBD\xED\xB8\x80"},
        {{0xDE00, 0xD83D, 'a', 0xD83D}, "??a?", "\xED\xB8\x80\xED\xA0\xBD"s + "a" + "\xED\xA0\xBD"},
        {{'a', 0x110000, static_cast<wchar_t>(0xFFFFFFFF)}, "a??", "a"},
        {{}, "", "kept"},
    };
    for (const auto& row : rows) {
        const CQWString wide = Wide(row.units);
        EXPECT_EQ(row.constructed, Bytes(CQSString(wide)));
        EXPECT_EQ(row.assigned, Assigned(wide));
    }
    EXPECT_EQ(0, CQSString().SetData(static_cast<const CQWString*>(nullptr)));
}

// Zero units are content for the assignment; the constructor stops at them, unless that leaves
// nothing.
TEST(WideToBytes, ZeroUnitsEndTheTextInTheConstructorOnly)
{
    const CQWString inside(QString::fromLatin1("a\0b", 3));
    EXPECT_EQ("a", Bytes(CQSString(inside)));
    EXPECT_EQ("a\0b"s, Assigned(inside));
    const CQWString first(QString::fromLatin1("\0b", 2));
    EXPECT_EQ("\0b"s, Bytes(CQSString(first)));
}
