// Conversions between wide text and bytes, where the model of the converters leaves them out.

#include "StringContent.h"
#include "TestPrelude.h"

#include <CStrConvertor.h>
#include <OrvoDebug.h>

#include <QDebug>

#include <sstream>

using namespace std::string_literals;

namespace
{

const unsigned char* Raw(const char* bytes)
{
    return reinterpret_cast<const unsigned char*>(bytes);
}

} // namespace

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

TEST(Encoding, SettersRefuseNullAndNegativeLengths)
{
    CQWString s = Wide(L"old");
    const unsigned char* const text = Raw("text");
    ExpectAll(1, {s.SeASCIIData(nullptr, 3), s.SeASCIIData(text, -1)});
    ExpectAll(0, {s.SetGBKByteData(nullptr, 3), s.SetUTF8Data(nullptr, 3), s.SetUTF8Data(text, -1),
                  s.SetByteData(nullptr, 1), s.SetByteData(text, -1), s.SetUTF16Data(nullptr, 1),
                  s.SetUTF16Data(text, -1),
                  CQSString().SetData(static_cast<const CQWString*>(nullptr))});
    s = CQSString();
    s = CQSString(4);
    EXPECT_STREQ(L"old", s);
}

TEST(Encoding, PackedSettersMissBytesBehindTheCountAndReadAFilteredTextToItsTerminator)
{
    CQWString s;
    EXPECT_EQ(1, s.SeASCIIData(Raw("\xE4\xB8\xAD"), 1));
    EXPECT_STREQ(L"\u4000", s) << "missing bytes count as zero bits";
    CQSString filtered = Make<CQSString>("\1A\1B\1C\1D");
    filtered.FilterInvisibleChar(); // ABCD and four more D
    s = filtered;
    EXPECT_EQ((std::wstring{0x00420041, 0x00440043, 0x00440044, 0x00440044}), s.GetDataPtr());
}

// All leads and second bytes and, behind them, what tells third and fourth bytes apart.
TEST(Encoding, MalformedUtf8IsReplacedAsThePlatformDoes)
{
    const std::string others = "a\x7F\x80\x8F\x90\x9F\xA0\xBF\xC0\xC2\xE0\xED\xF0\xF4\xFF";
    for (int lead = 1; lead < 256; ++lead) {
        std::string text;
        for (int second = 1; second < 256; ++second) {
            for (size_t i = 0; i < others.size() * others.size(); ++i) {
                text += {static_cast<char>(lead), static_cast<char>(second),
                         others[i / others.size()], others[i % others.size()], '-'};
            }
        }
        text += static_cast<char>(lead);
        const std::wstring expected = QString::fromUtf8(text.c_str()).toStdWString();
        ASSERT_TRUE(expected == CQWString(Make<CQSString>(text)).GetDataPtr()) << lead;
    }
}

// Bytes and units that are no text, or do not print, are escaped; the rest is UTF-8.
TEST(DebugOutput, TellsTextFromBytes)
{
    const std::pair<std::string, const char*> narrow[] = {
        {"", R"("")"},
        {"a\"\\\n\r\t", R"("a\"\\\n\r\t")"},
        {std::string("\0\x7F\x1B", 3), R"("\x00\x7F\x1B")"},
        {"\u00E4\u660E\U0001F600", "\"\u00E4\u660E\U0001F600\""},
        {"\xC3", R"("\xC3")"},
        {"\xC0\x80\xED\xA0\x80\xF5", R"("\xC0\x80\xED\xA0\x80\xF5")"},
        {"\xE6\x98z", R"("\xE6\x98z")"}};
    for (const auto& [bytes, expected] : narrow) {
        std::ostringstream out;
        out << Make<CQSString>(bytes);
        EXPECT_EQ(expected, out.str());
    }
    const std::pair<std::wstring, const char*> wide[] = {
        {L"b\u00E4\U0001F600\"", "\"b\u00E4\U0001F600\\\"\""},
        {{0xD83D, 0xDE00, 1, 0x110000}, R"("\uD83D\uDE00\u0001\U00110000")"}};
    for (const auto& [units, expected] : wide) {
        QString text;
        QDebug(&text).nospace() << Wide(units) << 5;
        EXPECT_EQ(std::string(expected) + '5', text.toStdString());
    }
}
