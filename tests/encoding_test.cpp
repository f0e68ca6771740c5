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

TEST(Encoding, NullAndNegativeLengthsAreRefused)
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
    CQWString s = Wide(L"old");
    const unsigned char* const text = Raw("text");
    ExpectAll(1, {s.SeASCIIData(nullptr, 3), s.SeASCIIData(text, -1)});
    ExpectAll(0, {s.SetGBKByteData(nullptr, 3), s.SetUTF8Data(nullptr, 3), s.SetUTF8Data(text, -1),
                  s.SetByteData(nullptr, 1), s.SetByteData(text, -1), s.SetUTF16Data(nullptr, 1),
                  s.SetUTF16Data(text, -1),
                  CQSString().SetData(static_cast<const CQWString*>(nullptr))});
    EXPECT_STREQ(L"old", s);
}

TEST(Encoding, PackedSettersMissBytesBehindTheCountAndReadAFilteredTextToItsTerminator)
{
    CQWString s;
    EXPECT_EQ(1, s.SeASCIIData(Raw("\xE4\xB8\xAD"), 1));
    EXPECT_STREQ(L"\u4000", s) << "missing bytes count as zero bits";
    CQSString filtered = Make<CQSString>("\1A\1B\1C\1D\1");
    filtered.FilterInvisibleChar(); // ABCD, and behind its length five times 1
    s = filtered;
    EXPECT_EQ((std::wstring{0x00420041, 0x00440043, 0x00010001, 0x00010001, 1}), s.GetDataPtr());
}

// All sequences of up to two bytes and, behind them, what tells third and fourth bytes apart.
TEST(Encoding, MalformedUtf8IsReplacedAsThePlatformDoes)
{
    const std::string others = "a\x7F\x80\x8F\x90\x9F\xA0\xBF\xC0\xC2\xE0\xED\xF0\xF4\xFF";
    for (int lead = 1; lead < 256; ++lead) {
        std::string text;
        for (int second = 1; second < 256; ++second) {
            text += {'-', static_cast<char>(lead), static_cast<char>(second)};
            for (const char third : others) {
                text += {'-', static_cast<char>(lead), static_cast<char>(second), third};
                for (const char fourth : others) {
                    text +=
                        {'-', static_cast<char>(lead), static_cast<char>(second), third, fourth};
                }
            }
        }
        for (const std::string& all : {text, std::string(1, static_cast<char>(lead))}) {
            CQSString bytes;
            bytes.SetData(all.c_str());
            const std::wstring expected = QString::fromUtf8(all.c_str()).toStdWString();
            ASSERT_TRUE(expected == CQWString(bytes).GetDataPtr()) << lead;
        }
    }
}

// Bytes and units that are no text, or do not print, are escaped; the rest is UTF-8.
TEST(DebugOutput, TellsTextFromBytes)
{
    const auto narrow = [](const std::string& bytes) {
        std::ostringstream out;
        out << Make<CQSString>(bytes);
        return out.str();
    };
    const auto wide = [](const std::wstring& units) {
        QString text;
        QDebug(&text).nospace() << Wide(units) << 5;
        return text.toStdString();
    };
    const std::pair<std::string, const char*> rows[] = {
        {narrow(""), R"("")"},
        {narrow("a\"\\\n\r\t"), R"("a\"\\\n\r\t")"},
        {narrow(std::string("\0\x7F\x1B", 3)), R"("\x00\x7F\x1B")"},
        {narrow("\u00E4\u660E\U0001F600"), "\"\u00E4\u660E\U0001F600\""},
        {narrow("\xC3"), R"("\xC3")"},
        {narrow("\xC0\x80\xED\xA0\x80\xF5"), R"("\xC0\x80\xED\xA0\x80\xF5")"},
        {narrow("\xE6\x98z"), R"("\xE6\x98z")"},
        {wide(L"b\u00E4\U0001F600\""), "\"b\u00E4\U0001F600\\\"\"5"},
        {wide({0xD83D, 0xDE00, 1, 0x110000}), R"("\uD83D\uDE00\u0001\U00110000"5)"}};
    for (const auto& [shown, expected] : rows) {
        EXPECT_EQ(expected, shown);
    }
}
