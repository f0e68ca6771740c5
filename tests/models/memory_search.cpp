// Searching memory, and formatting by printf's rules and by place markers.

#include "Model.h"

#include <BaseUtil.h>
#include <CQSString.h>
#include <CQWString.h>

#include <QString>

#include <algorithm>
#include <cstring>
#include <variant>
#include <vector>

namespace
{

char Lower(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
}

void CheckSearch(const std::string& text, const std::string& pattern)
{
    // Copies on the heap of exactly their size, for the sanitizers; none of them is null.
    std::vector<unsigned char> mem(text.begin(), text.end());
    std::vector<char> sought(pattern.begin(), pattern.end());
    mem.reserve(1);
    sought.reserve(1);
    const auto check = [&](auto search, auto mapped, bool isRefused) {
        const auto at = std::search(text.begin(), text.end(), pattern.begin(), pattern.end(),
                                    [=](char a, char b) { return mapped(a) == mapped(b); });
        const bool isNone = isRefused || (at == text.end() && !pattern.empty());
        MODEL_CHECK(search(mem.data(), static_cast<int>(mem.size()), sought.data(),
                           static_cast<int>(sought.size())) ==
                    (isNone ? nullptr : mem.data() + (at - text.begin())));
    };
    check(
        CBaseUtil::SearchMem, [](char c) { return c; }, false);
    check(CBaseUtil::SearchMemNoCase, Lower, pattern.empty());
}

// Flaws in the middle lead a search by the first and one by both ends of the pattern astray.
void CheckFlawedPeriod(ByteSource& source)
{
    const std::string period = source.Text(3, "aAb") + "a";
    const auto pieces = [&](int count) {
        std::string text;
        for (; count > 0; --count) {
            text += period;
            text += source.Between(0, 3) == 0 ? "b" : "";
        }
        return text;
    };
    const std::string pattern = pieces(source.Between(2, 6));
    CheckSearch(pieces(60) + pattern, pattern);
}

template <class String>
auto Content(const String& s)
{
    return std::basic_string(s.GetDataPtr(), static_cast<std::size_t>(s.GetLength()));
}

QString Utf16(const std::wstring& text)
{
    QString result;
    for (const wchar_t c : text) {
        const auto unit = static_cast<char32_t>(c);
        const char32_t known = unit > 0x10FFFF ? 0xFFFD : unit;
        result += known > 0xFFFF ? QString::fromUcs4(&known, 1) : QString(QChar(char16_t(known)));
    }
    return result;
}

QString Slashed(QString text)
{
    return text.replace('\\', '/');
}

// A format is TEXT CONVERSION TEXT CONVERSION TEXT, and perhaps what looks like a conversion and is
// none. The narrow one means what the platform makes of it. The wide one differs in this: a U+FEFF
// that begins a text is kept. Lone surrogates become '?' on the way through 8-bit text, which a
// character in front protects from losing a U+FEFF.
QString WideLiteral(const std::wstring& text)
{
    return QString::fromUtf8(("x" + Utf16(text)).toUtf8()).mid(1).replace("%%", "%");
}

// A width with which some versions of the platform end; any beyond 2^31 - 2 counts as 0.
const char* const TooLarge = "99999999999999999999";

QByteArray Safe(QByteArray format)
{
    return format.replace(TooLarge, "2147483647");
}

// A precision of a point alone is 0, which Qt 5 does not know.
std::string WithPrecision(const std::string& conversion)
{
    const std::size_t point = conversion.find('.');
    if (point == conversion.npos ||
        conversion.find_first_of("0123456789*", point) != conversion.npos) {
        return conversion;
    }
    std::string known(conversion, 0, point + 1);
    known.push_back('0');
    known.append(conversion, point + 1);
    return known;
}

std::wstring Widened(const std::string& ascii)
{
    return {ascii.begin(), ascii.end()};
}

struct Format {
    std::wstring texts[3], behind;
    std::string secondConversion, broken;
};

// `first` are the arguments of the first conversion: numbers for its stars and its value.
template <class Second, class... First>
void CheckFormat(const Format& format, const std::string& conversion, Second second, First... first)
{
    const auto& [texts, behind, secondConversion, broken] = format;
    const std::wstring rest =
        texts[1] + Widened(secondConversion) + texts[2] + Widened(broken) + behind;
    const std::wstring wideFormat = texts[0] + Widened(conversion) + rest;
    const QByteArray narrowFormat = Utf16(wideFormat).toUtf8();
    const std::string sameConversion = WithPrecision(conversion);
    const QByteArray known = Utf16(texts[0] + Widened(sameConversion) + rest).toUtf8();
    const QString narrow = QString::asprintf(Safe(known), first..., second);
    CQSString out;
    CBaseUtil::FormatString(out, narrowFormat.constData(), first..., second);
    MODEL_CHECK(Content(out) == Slashed(narrow).toStdString());

    const QString wide =
        WideLiteral(texts[0]) + QString::asprintf(Safe(sameConversion.c_str()), first...) +
        WideLiteral(texts[1]) + QString::asprintf(Safe(secondConversion.c_str()), second) +
        WideLiteral(texts[2]) + QString::fromStdString(broken) + WideLiteral(behind);
    CQWString wideOut;
    CBaseUtil::FormatString(wideOut, wideFormat.c_str(), first..., second);
    MODEL_CHECK(Content(wideOut) == Slashed(wide).toStdWString());
}

using Value = std::variant<int, long, long long, double, std::string, QString>;

// A value as it is passed to a function of printf's kind.
template <class Number>
Number Passed(Number number)
{
    return number;
}

const char* Passed(const std::string& text)
{
    return text.c_str();
}

const ushort* Passed(const QString& text)
{
    return text.utf16();
}

std::string Pick(ByteSource& source, std::initializer_list<const char*> choices)
{
    return choices.begin()[source.Between(0, static_cast<int>(choices.size()) - 1)];
}

// Modifier and letter for a value of that kind.
std::string Conversion(ByteSource& source, const Value& value)
{
    const std::string whole = Pick(source, {"d", "i", "u", "x", "X", "o"});
    const auto kind = value.index();
    return kind == 0   ? source.Between(0, 5) == 0 ? Pick(source, {"c", "lc"})
                                                   : Pick(source, {"", "", "h", "hh"}) + whole
           : kind == 1 ? "l" + whole
           : kind == 2 ? "ll" + whole
           : kind == 3 ? Pick(source, {"f", "e", "g", "G"})
           : kind == 4 ? "s"
                       : "ls";
}

std::wstring Text(ByteSource& source)
{
    static const std::wstring units[] = {L"a",       L"\\",         L"\xFEFF", L"\xFEFF", L"\x4E2D",
                                         L"\x1F600", L"\xE9",       L"Z",      L"\xD83D", L"\xDE00",
                                         L"\xFFFE",  L"\xFFFE0000", L"%%",     L"%%"};
    std::wstring text;
    for (int left = source.Between(0, 5); left > 0; --left) {
        text += units[source.Between(0, 13)];
    }
    return text;
}

std::string Flags(ByteSource& source)
{
    return Pick(source,
                {"%", "%", "%", "%", "%0", "%-", "%+", "% ", "%#", "%0-", "%-0", "%+0", "%'"});
}

Value NextValue(ByteSource& source)
{
    const auto number = static_cast<std::int32_t>(source.Word() << source.Between(0, 31));
    const int kind = source.Between(0, 7);
    return kind == 0   ? Value(number)
           : kind == 1 ? Value(long{number})
           : kind == 2 ? Value(static_cast<long long>(number) << source.Between(0, 20))
           : kind == 3 ? Value(number / 64.0)
           : kind == 4 ? Value(Utf16(Text(source)))
                       : Value(source.Text(9, "abc\\\\%\xC3\xA9\xEF\xBB\xBF\xF0\x9F\x98\x80"));
}

void CheckFormats(ByteSource& source)
{
    Format format;
    for (std::wstring& text : format.texts) {
        text = Text(source);
    }
    const Value first = NextValue(source), second = NextValue(source);
    const auto size = [&] {
        return Pick(source, {"", "", "1", "12", "300", "2147483647", TooLarge});
    };
    format.secondConversion = Flags(source) + size() + Conversion(source, second);
    if (source.Between(0, 3) == 0) {
        format.broken = Flags(source) + Pick(source, {"", "1", "12"}) +
                        Pick(source, {"", ".", ".2"}) +
                        Pick(source, {"", "h", "ll", "L", "z", "t", "j"});
        format.behind =
            source.Flag() ? L"" : L"y\xFEFF\x4E2D!"[source.Between(0, 3)] + Text(source);
    }
    const int stars = source.Between(0, 4);
    const int width = source.Between(-3, 40), precision = source.Between(-3, 12);
    const std::string letter = Conversion(source, first), flags = Flags(source), fixed = size();
    const std::string digits = Pick(source, {"", "", "", "", ".", ".0", ".2", ".30"});
    std::visit(
        [&](const auto& a, const auto& b) {
            if (stars == 0) {
                CheckFormat(format, flags + "*.*" + letter, Passed(b), width, precision, Passed(a));
            } else if (stars == 1) {
                CheckFormat(format, flags + "*" + digits + letter, Passed(b), width, Passed(a));
            } else {
                CheckFormat(format, flags + fixed + digits + letter, Passed(b), Passed(a));
            }
        },
        first, second);
}

void CheckMarkers(ByteSource& source)
{
    const std::string marks = source.Text(12, "%%%123L\\a ");
    const std::wstring format = Text(source) + Widened(marks);
    const std::wstring a = Text(source), b = Text(source);
    const wchar_t* const end = nullptr;
    CQWString out;
    CBaseUtil::FormatStringArg(out, format.c_str(), a.c_str(), b.c_str(), end, L"not reached");
    const QString expected = Utf16(format).arg(Utf16(a)).arg(Utf16(b));
    MODEL_CHECK(Content(out) == Slashed(expected).toStdWString());
}

} // namespace

void DriveModel(ByteSource& source)
{
    // QString::arg() tells when there are more texts than markers; here there often are.
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    while (!source.IsEmpty()) {
        const int operation = source.Between(0, 3);
        if (operation == 0) {
            CheckSearch(source.Text(60, "aAbB"), source.Text(5, "aAbB"));
            CheckSearch(source.Text(255, "aaaA") + source.Text(9, "ab"),
                        source.Text(40, "aA") + "b");
            CheckSearch(source.Bytes(40), source.Text(1, "Z[{z@`\xC4\xE4"));
            CheckFlawedPeriod(source);
        } else if (operation == 1) {
            CheckMarkers(source);
        } else {
            CheckFormats(source);
        }
    }
}
