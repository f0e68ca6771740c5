// URL and CGI text: the escapes, the query arguments, and the line breaks of UTF-16 text.

#include "Model.h"
#include "Texts.h"

#include <BaseUtil.h>
#include <CQSString.h>
#include <CQWString.h>

#include <memory>

using namespace std::string_literals;

namespace
{

const std::string Alphabet = "%%%%++=&& \r\n\taAbBfF0129?><#\"!'()*-._~:/\x7F\x80\xC3\xA9\xFF\1";

const QByteArray Safe = "!'()*-._0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";

void CheckEncode(const QString& text)
{
    QByteArray expected;
    for (const char c : text.toUtf8()) {
        MODEL_CHECK(CBaseUtil::IsCharSafe(c) == Safe.contains(c));
        expected += Safe.contains(c) ? QByteArray(1, c) : expected.toHex();
        if (expected.size() > 100000) {
            return;
        }
    }
    QByteArray* encoded = nullptr;
    MODEL_CHECK(CBaseUtil::UrlEncode(text, &encoded) == 1);
    MODEL_CHECK(*std::unique_ptr<QByteArray>(encoded) == expected);
}

void CheckDecode(const QByteArray& text)
{
    bool isWhole = true;
    for (auto i = text.indexOf('%'); i >= 0; i = text.indexOf('%', i + 3)) {
        isWhole = isWhole && i + 2 < text.size();
    }
    QString* decoded = nullptr;
    MODEL_CHECK(CBaseUtil::UrlDecode(text, &decoded) == (isWhole ? 1 : 0));
    const std::unique_ptr<QString> owned(decoded);
    MODEL_CHECK(isWhole ? owned != nullptr && owned->isEmpty() : owned == nullptr);
}

// As it was stated at first: the working copy keeps the places and hides what is decoded.
void CheckCgi(const QString& text)
{
    QString expected = text, working = text;
    while (text.size() <= 2048) {
        const auto at = static_cast<int>(working.indexOf('%'));
        if (at < 0 || at >= working.size() - 2) {
            break;
        }
        const wchar_t digits[] = {working[at + 1].unicode(), working[at + 2].unicode()};
        expected.replace(at, 3, QChar(static_cast<ushort>(CBaseUtil::wtoh(digits, 2))));
        working.replace(at, 3, "*");
    }
    QString decoded = text;
    const QString shared = decoded;
    CBaseUtil::DecodeCgi(&decoded);
    MODEL_CHECK(decoded == expected);
    MODEL_CHECK(shared == text);
}

void CheckEscape(const std::wstring& text)
{
    QByteArray expected;
    for (const char c : BmpUtf8(text)) {
        const bool isEscaped = (c >= 1 && c <= 32) || QByteArray("?><%#\"").contains(c);
        expected += isEscaped ? '%' + QByteArray(1, c).toHex() : QByteArray(1, c);
    }
    auto in = Holding<CQWString>(text);
    const CQWString escaped = CBaseUtil::EscapeString(in, true);
    MODEL_CHECK(QString::fromWCharArray(escaped.GetDataPtr(), escaped.GetLength()) ==
                QString::fromLatin1(expected.constData(), expected.size()));
}

// Places of the shifted text `w` are used on the URL as they are: so it is stated.
std::pair<bool, QByteArray> FindArgument(const QByteArray& url, const QByteArray& name,
                                         QByteArray value)
{
    QByteArray w = url.toLower();
    auto p = name.isEmpty() ? -1 : w.indexOf(name);
    auto k = p + 1;
    while (p >= 0) {
        auto q = p + name.size();
        while (q < w.size() && QByteArray("\n\r \t").contains(w.at(q))) {
            ++q;
        }
        if (q < w.size() && w.at(q) == '=') {
            const auto sign = url.indexOf('=', q);
            const auto end = sign < 0 ? -1 : url.indexOf('&', sign + 1);
            const QByteArray text = end < 0 ? "" : url.mid(sign + 1, end - sign - 1);
            value = (text.isEmpty() ? url.mid(q + 1) : text).trimmed();
            if (!value.isEmpty()) {
                return {true, value};
            }
            p = q;
        } else if (q < w.size() && k < url.size()) {
            w = url.mid(k);
            p = w.indexOf(name);
            k += 1 + p;
        } else {
            break;
        }
    }
    return {false, value};
}

// The result may be the URL itself.
void CheckArgument(const QByteArray& url, const QByteArray& name)
{
    for (const bool isSame : {false, true}) {
        const auto [found, expected] = FindArgument(url, name, isSame ? url : "old");
        auto text = Holding<CQSString>(url), other = Holding<CQSString>("old"s);
        CQSString& value = isSame ? text : other;
        MODEL_CHECK(CBaseUtil::GetArgumentFormURL(text, name.constData(), value) == found);
        MODEL_CHECK(Content(value) == expected.toStdString());
    }
}

void CheckLineBreaks(std::string text, std::size_t cut)
{
    std::string expected = text;
    const auto bytes = text.size() - std::min(text.size(), cut);
    const auto has = [&](std::size_t i, char c) {
        return i + 1 < bytes && expected[i] == c && expected[i + 1] == 0;
    };
    for (std::size_t i = 0; i < bytes; i += 2) {
        const bool isBlank = has(i, '\t') || (has(i, '\r') && has(i + 2, '\n'));
        expected[i] = isBlank ? ' ' : has(i, '\r') || has(i, '\n') ? 12 : expected[i];
    }
    CBaseUtil::CheckErrorWords(Unsigned(text), static_cast<unsigned short>(bytes));
    MODEL_CHECK(text == expected);
}

} // namespace

void DriveModel(ByteSource& source)
{
    const auto text = [&](int longest, const std::string& alphabet) {
        return QByteArray::fromStdString(source.Text(longest, alphabet));
    };
    while (!source.IsEmpty()) {
        const int operation = source.Between(0, 4);
        if (operation == 0) { // every unsafe byte triples the text, so there are few of them
            CheckEncode(text(80, "abcXYZ019!'()*-._") + QString::fromUtf8(text(7, Alphabet)) +
                        text(20, "abz~"));
        } else if (operation == 1) {
            CheckDecode(text(12, "%%%a\n") + text(4, "%a"));
            const std::string plain = source.Text(60, Alphabet);
            CheckEscape(std::wstring(plain.begin(), plain.end()) +
                        static_cast<wchar_t>(source.Word() >> source.Between(0, 31)));
        } else if (operation == 2) {
            const QByteArray escapes = text(80, Alphabet + "%4%-xX");
            CheckCgi(QString::fromLatin1(escapes));
            CheckCgi(QString(2040, 'x') + QString::fromUtf8(escapes));
        } else if (operation == 3) {
            const QByteArray name = text(2, "ka"), start = text(9, "kKaA= \t\r\n&");
            CheckArgument(start + text(40, "kKaA==&& \t\r\nb"), name);
        } else {
            const std::string units = source.Text(40, std::string("\r\n\t\0\0\0\0a\v\f", 10));
            CheckLineBreaks(units, source.Byte() % 4);
        }
    }
}
