// Searching memory, and formatting by printf's rules and by place markers.

#include "Model.h"
#include "Texts.h"

#include <BaseUtil.h>
#include <CQSString.h>
#include <CQWString.h>

#include <algorithm>
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

QString Slashed(QString text)
{
    return text.replace('\\', '/');
}

// What a wide format's text comes out as. Lone surrogates become '?' on the way through 8-bit text,
// which a character in front protects from losing a U+FEFF.
QString WideLiteral(const std::wstring& text)
{
    return QString::fromUtf8(("x" + Utf16(text)).toUtf8()).mid(1).replace("%%", "%");
}

// A conversion is drawn in a form that every version of the platform knows. The other form of it
// means the same to the library: a point alone is a precision of 0, and any width beyond 2^31 - 2
// counts as 0.
std::string OtherForm(const std::string& conversion)
{
    return QByteArray::fromStdString(conversion)
        .replace(".0", ".")
        .replace("2147483647", "99999999999999999999")
        .toStdString();
}

constexpr char PlainOnes[] = "%4d%s";

// A format of texts, a conversion, two plain ones, and perhaps what looks like one and is none.
struct Format {
    std::wstring before, between, behind, end;
    std::string conversion, broken;
    bool isOtherForm;

    std::wstring Whole(const std::string& form) const
    {
        return before + Widened<wchar_t>(form) + between + Widened<wchar_t>(PlainOnes) + behind +
               Widened<wchar_t>(broken) + end;
    }
};

// The arguments are numbers for the stars of the conversion, and its value. The narrow format means
// what the platform makes of it; a wide one also keeps a U+FEFF that begins a text.
void CheckFormat(const Format& format, auto... arguments)
{
    const std::string& conversion = format.conversion;
    const char* const text = "-\xC3\xA9";
    const std::wstring wideFormat =
        format.Whole(format.isOtherForm ? OtherForm(conversion) : conversion);
    const QByteArray known = Utf16(format.Whole(conversion)).toUtf8();
    const QString narrow = QString::asprintf(known, arguments..., -7, text);
    CQSString out;
    CBaseUtil::FormatString(out, Utf16(wideFormat).toUtf8().constData(), arguments..., -7, text);
    MODEL_CHECK(Content(out) == Slashed(narrow).toStdString());

    const QString wide = WideLiteral(format.before) +
                         QString::asprintf(conversion.c_str(), arguments...) +
                         WideLiteral(format.between) + QString::asprintf(PlainOnes, -7, text) +
                         WideLiteral(format.behind) + QString::fromStdString(format.broken) +
                         WideLiteral(format.end);
    CQWString wideOut;
    CBaseUtil::FormatString(wideOut, wideFormat.c_str(), arguments..., -7, text);
    MODEL_CHECK(Content(wideOut) == Slashed(wide).toStdWString());
}

std::string Pick(ByteSource& source, std::initializer_list<const char*> choices)
{
    return choices.begin()[source.Between(0, static_cast<int>(choices.size()) - 1)];
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

// Values as they are passed to a function of printf's kind.
using Value = std::variant<int, long, long long, double, const ushort*, const char*>;

// Modifier and letter for a value of that kind.
std::string TakeLetter(ByteSource& source, std::size_t kind)
{
    const std::string whole = Pick(source, {"d", "i", "u", "x", "X", "o"});
    return kind == 0   ? source.Between(0, 5) == 0 ? Pick(source, {"c", "lc"})
                                                   : Pick(source, {"", "", "h", "hh"}) + whole
           : kind == 1 ? "l" + whole
           : kind == 2 ? "ll" + whole
           : kind == 3 ? Pick(source, {"f", "e", "g", "G"})
           : kind == 4 ? "ls"
                       : "s";
}

void CheckFormats(ByteSource& source)
{
    Format format{Text(source), Text(source), Text(source), L"", "", "", source.Flag()};
    const auto number = static_cast<std::int32_t>(source.Word() << source.Between(0, 31));
    const QString wide = Utf16(Text(source));
    const std::string narrow = source.Text(9, "abc\\%\xC3\xA9\xEF\xBB\xBF\xF0\x9F\x98\x80");
    const Value values[] = {number,        long{number}, number * (1LL << source.Between(0, 20)),
                            number / 64.0, wide.utf16(), narrow.c_str()};
    const Value value = values[std::min(source.Between(0, 7), 5)];
    const int stars = source.Between(0, 4), width = source.Between(-3, 40);
    const std::string letter = TakeLetter(source, value.index()), flags = Flags(source);
    const std::string size =
        stars < 2 ? "*" : Pick(source, {"", "", "1", "12", "300", "2147483647"});
    const std::string digits = Pick(source, {"", "", "", "", ".0", ".0", ".2", ".30"});
    format.conversion = flags + size + (stars == 0 ? ".*" : digits) + letter;
    if (source.Between(0, 3) == 0) {
        format.broken = Flags(source) + Pick(source, {"", "1", "12"}) +
                        Pick(source, {"", ".", ".2"}) +
                        Pick(source, {"", "h", "ll", "L", "z", "t", "j"});
        format.end = source.Flag() ? L"" : L"y\xFEFF\x4E2D!"[source.Between(0, 3)] + Text(source);
    }
    std::visit(
        [&](const auto& a) {
            if (stars == 0) {
                CheckFormat(format, width, source.Between(-3, 12), a);
            } else if (stars == 1) {
                CheckFormat(format, width, a);
            } else {
                CheckFormat(format, a);
            }
        },
        value);
}

void CheckMarkers(ByteSource& source)
{
    const std::string marks = source.Text(12, "%%%123L\\a ");
    const std::wstring format = Text(source) + Widened<wchar_t>(marks);
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
