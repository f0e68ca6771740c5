#include <BaseUtil.h>
#include <CQSString.h>
#include <CQWString.h>

#include <gtest/gtest.h>

#include <memory>
#include <new>
#include <string>

namespace
{

std::string Encoded(const QString& text)
{
    QByteArray* out = nullptr;
    EXPECT_EQ(1, CBaseUtil::UrlEncode(text, &out));
    return std::unique_ptr<QByteArray>(out)->toStdString();
}

QString Unescaped(QString text)
{
    CBaseUtil::DecodeCgi(&text);
    return text;
}

} // namespace

TEST(UrlText, SafeCharacters)
{
    std::string safe;
    for (int c = 0; c < 256; ++c) {
        if (CBaseUtil::IsCharSafe(static_cast<char>(c))) {
            safe += static_cast<char>(c);
        }
    }
    EXPECT_EQ("!'()*-.0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ_abcdefghijklmnopqrstuvwxyz", safe);
}

TEST(UrlText, EncodingRepeatsInHexWhatWasWritten)
{
    EXPECT_EQ("a61b", Encoded("a b"));
    EXPECT_EQ("x", Encoded(" x"));
    // Two unsafe bytes of one character: '61' behind 'a', then the form of all three.
    EXPECT_EQ("a61613631.", Encoded(QString::fromUtf8("a\xC3\xA9.")));
    EXPECT_EQ("", Encoded(QString(5000, QLatin1Char(' ')))) << "nothing times anything";
    // 3 to the power of 20 is above 2^31 - 1.
    QByteArray* out = nullptr;
    EXPECT_THROW(CBaseUtil::UrlEncode("a" + QString(20, QLatin1Char(' ')), &out), std::bad_alloc);
    EXPECT_EQ(nullptr, out);
}

TEST(UrlText, DecodingOnlyChecksTheEscapes)
{
    for (const char* const good : {"", "a%41", "%zz\r\n%%%"}) {
        QString* out = nullptr;
        EXPECT_EQ(1, CBaseUtil::UrlDecode(good, &out)) << good;
        const std::unique_ptr<QString> owned(out);
        EXPECT_TRUE(owned != nullptr && owned->isEmpty()) << good;
    }
    for (const char* const bad : {"ab%4", "%", "%41%", "%%%%"}) {
        QString* out = nullptr;
        EXPECT_EQ(0, CBaseUtil::UrlDecode(bad, &out)) << bad;
        EXPECT_EQ(nullptr, out);
    }
}

TEST(UrlText, DecodeCgiReplacesEachEscapeOnce)
{
    EXPECT_EQ(QString::fromUtf8("A-\xC3\xA9!"), Unescaped("%41-%E9%21"));
    EXPECT_EQ("%41", Unescaped("%2541")) << "a decoded percent sign is no escape";
    EXPECT_EQ("A%4", Unescaped("%41%4"));
    // No digits give the character 0; a minus counts, and the value keeps 16 bits.
    EXPECT_EQ(QString(1, QChar(u'\0')) + "1", Unescaped("%%41"));
    EXPECT_EQ(QString(QChar(u'\uFFFF')), Unescaped("%-1"));
    const QString longest = QString(2045, QLatin1Char('x')) + "%41";
    EXPECT_EQ(2046, Unescaped(longest).size());
    EXPECT_EQ("x" + longest, Unescaped("x" + longest)) << "2049 characters stay";
    CBaseUtil::DecodeCgi(nullptr);
}

TEST(UrlText, EscapeStringGivesAUnitAByte)
{
    // Bytes above 127 and zeros are units of their own; what is beyond U+FFFF is dropped.
    CQWString in;
    in.SetData(L"a b?><%#\"\x01!~\x7F\xE9 \x1F600\x4E2D");
    in.SetAt(14, 0);
    const CQWString out = CBaseUtil::EscapeString(in, true);
    const std::wstring expected(L"a%20b%3f%3e%3c%25%23%22%01!~\x7F\xC3\xA9\0\xE4\xB8\xAD", 35);
    EXPECT_EQ(expected, std::wstring(out.GetDataPtr(), static_cast<std::size_t>(out.GetLength())));
    EXPECT_TRUE(CBaseUtil::EscapeString(*std::make_unique<CQWString>(), false).IsEmpty());
}

TEST(UrlText, ArgumentOfAUrl)
{
    const struct {
        const char* url;
        const char* name;
        bool found;
        const char* value;
    } rows[] = {
        {"http://h/p?a=1&Key=Val&b=2", "key", true, "Val"},
        {"x?key \t=  v w \r\n&b", "key", true, "v w"},
        {"x?key=last", "key", true, "last"},
        // An empty value takes the rest with its "&".
        {"x?key=&b=1", "key", true, "&b=1"},
        // The text that is searched first is lower-cased, the name is not.
        {"x?Key=1", "Key", false, "old"},
        // "=" and nothing behind it; no "="; no name.
        {"x?key= & b", "key", false, nullptr},
        {"x?key=", "key", false, nullptr},
        {"x?key", "key", false, "old"},
        {"x?key=1", "", false, "old"},
        {"x?key=1", nullptr, false, "old"},
        // A later occurrence minds the case. It is found in the rest behind the first, but its
        // offset is used on the whole, where "=" is sought from there on (from a Python model).
        {"keyb&Key=5", "key", false, "old"},
        {"akeyb=0&key=5", "key", true, "y=5"},
        {"keyb&a=1&key=5&z=9", "key", true, "5"},
        {"keyb key= &a=1&c=2", "key", false, nullptr},
    };
    CQSString url;
    for (const auto& row : rows) {
        CQSString value;
        value.SetData("old");
        url.SetData(row.url);
        const bool found = CBaseUtil::GetArgumentFormURL(url, row.name, value);
        EXPECT_STREQ(row.value, value) << row.url;
        EXPECT_EQ(row.found, found) << row.url;
    }
    url.SetData("x?a=1&b=2");
    EXPECT_TRUE(CBaseUtil::GetArgumentFormURL(url, "a", url));
    EXPECT_STREQ("1", url.GetDataPtr());
}
