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
    const std::unique_ptr<QByteArray> owned(out);
    return owned->toStdString();
}

QString Unescaped(QString text)
{
    CBaseUtil::DecodeCgi(&text);
    return text;
}

std::wstring Escaped(const std::wstring& text)
{
    CQWString in;
    in.SetData(text.data(), static_cast<int>(text.size()));
    in.SetStrEnding(static_cast<int>(text.size()));
    const CQWString out = CBaseUtil::EscapeString(in, true);
    return {out.GetDataPtr() != nullptr ? out.GetDataPtr() : L"",
            static_cast<std::size_t>(out.GetLength())};
}

/// What GetArgumentFormURL() leaves in a value that held "old"; in parentheses when it is false.
std::string Argument(const char* url, const char* name)
{
    CQSString text;
    text.SetData(url);
    CQSString value;
    value.SetData("old");
    const bool found = CBaseUtil::GetArgumentFormURL(text, name, value);
    const std::string result = value.IsEmpty() ? "" : value.GetDataPtr();
    return found ? result : "(" + result + ")";
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
    EXPECT_EQ("abc", Encoded("abc"));
    EXPECT_EQ("a61b", Encoded("a b"));
    EXPECT_EQ("x", Encoded(" x"));
    EXPECT_EQ("", Encoded(""));
    // Two unsafe bytes of one character: '~61' behind 'a', then the form of all three.
    EXPECT_EQ("a61613631.", Encoded(QString::fromUtf8("a\xC3\xA9.")));
}

TEST(UrlText, EncodingRefusesWhatNoByteArrayHolds)
{
    // 3 to the power of 20 is above 2^31 - 1.
    QByteArray* out = nullptr;
    EXPECT_THROW(CBaseUtil::UrlEncode("a" + QString(20, QLatin1Char(' ')), &out), std::bad_alloc);
    EXPECT_EQ(nullptr, out);
    EXPECT_EQ("", Encoded(QString(5000, QLatin1Char(' ')))) << "nothing times anything";
}

TEST(UrlText, DecodingOnlyChecksTheEscapes)
{
    for (const char* const good : {"", "a%41", "%zz\r\n%%%", "%00"}) {
        QString* out = nullptr;
        EXPECT_EQ(1, CBaseUtil::UrlDecode(good, &out)) << good;
        const std::unique_ptr<QString> owned(out);
        ASSERT_NE(nullptr, owned);
        EXPECT_EQ("", *owned);
    }
    QString untouched;
    for (const char* const bad : {"ab%4", "%", "%41%", "%%%%", "%%4%1"}) {
        QString* out = &untouched;
        EXPECT_EQ(0, CBaseUtil::UrlDecode(bad, &out)) << bad;
        EXPECT_EQ(&untouched, out);
    }
}

TEST(UrlText, DecodeCgiReplacesEachEscapeOnce)
{
    EXPECT_EQ("A-b", Unescaped("%41-%62"));
    EXPECT_EQ(QString::fromUtf8("\xC3\xA9!\xE4\xB8\xAD"),
              Unescaped(QString::fromUtf8("%E9%21\xE4\xB8\xAD")));
    EXPECT_EQ("%41", Unescaped("%2541")) << "a decoded percent sign is no escape";
    EXPECT_EQ("abc%", Unescaped("abc%"));
    EXPECT_EQ("A%4", Unescaped("%41%4"));
    // No digits give the character 0; a minus counts, and the value keeps 16 bits.
    EXPECT_EQ(QString(1, QChar(u'\0')) + "1", Unescaped("%%41"));
    EXPECT_EQ(QString(QChar(u'\uFFFF')), Unescaped("%-1"));
    const QString longest = QString(2045, QLatin1Char('x')) + "%41";
    EXPECT_EQ(QString(2045, QLatin1Char('x')) + "A", Unescaped(longest));
    EXPECT_EQ("x" + longest, Unescaped("x" + longest)) << "2049 characters stay";
    CBaseUtil::DecodeCgi(nullptr);
}

TEST(UrlText, EscapeStringGivesAUnitAByte)
{
    EXPECT_EQ(L"a%20b%3f", Escaped(L"a b?"));
    EXPECT_EQ(L"%3e%3c%25%23%22%01%20!~\x7F", Escaped(L"><%#\"\x01 !~\x7F"));
    // Bytes above 127 and zeros are units of their own; what is beyond U+FFFF is dropped.
    EXPECT_EQ(std::wstring(L"\xC3\xA9\0\xE4\xB8\xAD", 6),
              Escaped(std::wstring(L"\xE9\0\x1F600\x4E2D", 4)));
    EXPECT_EQ(L"", Escaped(L""));
}

TEST(UrlText, ArgumentOfAUrl)
{
    const struct {
        const char* url;
        const char* name;
        const char* expected;
    } rows[] = {
        {"http://h/p?a=1&Key=Val&b=2", "key", "Val"},
        {"x?key \t=  v w \r\n&b", "key", "v w"},
        {"x?key=last", "key", "last"},
        // An empty value takes the rest with its "&".
        {"x?key=&b=1", "key", "&b=1"},
        // The name is not lower-cased, the first text that is searched is.
        {"x?Key=1", "Key", "(old)"},
        // "=" and nothing behind it.
        {"x?key=", "key", "()"},
        {"x?key= & b", "key", "()"},
        {"x?key", "key", "(old)"},
        {"x?kex=1", "key", "(old)"},
        {"", "key", "(old)"},
        {"x?key=1", "", "(old)"},
        {"x?key=1", nullptr, "(old)"},
        // A later occurrence is found in the rest behind the first, but its offset is used on
        // the whole, where "=" is sought from there on (computed by a model in Python).
        {"akeyb=0&key=5", "key", "y=5"},
        {"keyb&a=1&key=5&z=9", "key", "5"},
        {"ab&a=&x", "a", "=&x"},
        {"keyb key= &a=1&c=2", "key", "()"},
        // Later occurrences mind the case.
        {"keyb&Key=5", "key", "(old)"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.expected, Argument(row.url, row.name)) << row.url;
    }
}

TEST(UrlText, ArgumentValueMayBeTheUrlItself)
{
    CQSString url;
    url.SetData("x?a=1&b=2");
    EXPECT_TRUE(CBaseUtil::GetArgumentFormURL(url, "a", url));
    EXPECT_STREQ("1", url.GetDataPtr());
}
