// The byte string alone; StringModel.h has what it shares with the wide string.

#include "StringModel.h"

#include <QByteArray>
#include <QChar>

#include <cstring>

namespace
{

// The hexadecimal text that ToHexString() writes, or nothing.
std::string HexText(const std::string& text)
{
    if (text.empty() || text[0] == '0' || Digit(text[0]) > 15) {
        return "";
    }
    std::string hex = text;
    if (text[0] <= '9') {
        const QByteArray number = text.c_str();
        const bool isNumber = text.find_first_not_of("0123456789") >= Clip(number.size());
        hex = QByteArray::number(isNumber ? number.toULongLong() : 0, 16).toStdString();
    }
    std::string units;
    for (const char c : hex) {
        units += {'\0', Digit(c) < 16 ? Upper(c) : c};
    }
    return units;
}

// The bytes behind a removed one move down, and so does the end, but not the terminator.
void Filter(Reference<char>& s)
{
    for (int i = 0; i < s.length; ++i) {
        const auto c = static_cast<unsigned char>(s.held[Clip(i)]);
        if (c < 0x20 || c > 0x7E) {
            --s.length;
            s.held.insert(Clip(s.length), 1, s.held[Clip(s.length)]);
            s.held.erase(Clip(i), 1);
        }
    }
}

} // namespace

template <>
struct Rules<CQSString> {
    // What leaves Latin-1 stays.
    static std::string MapCase(std::string text, bool upper)
    {
        for (char& c : text) {
            const QChar old(static_cast<unsigned char>(c));
            const auto mapped = (upper ? old.toUpper() : old.toLower()).unicode();
            c = mapped < 0x100 ? static_cast<char>(mapped) : c;
        }
        return text;
    }

    // Of the digits among the bytes; others are skipped.
    static unsigned Hex(const std::string& text)
    {
        unsigned value = 0;
        for (const char c : text) {
            value = Digit(c) < 16 ? value * 16 + Digit(c) : value;
        }
        return value;
    }

    static bool EqualFolded(const std::string& a, const std::string& b) { return a == b; }
};

template <>
Operations Step<CQSString>::Own()
{
    return {
        [this] {
            s.AllocBuffer(few), Asserted(few >= 0, "nLen >= 0");
            r.Set(std::string(Clip(few), '\0'));
        },
        [this] { MODEL_CHECK(CQSString(few).GetLength() == std::max(few, 0)); },
        [this] {
            const bool isRange = n >= 0 && m > n;
            MODEL_CHECK(s.Find(c, n, m) ==
                        (isRange ? Index(text.substr(0, Clip(m)).find(c, Clip(n))) : -1));
            const bool isInside = n >= 0 && n < r.length;
            MODEL_CHECK(s.FindFirstValidChar(n) ==
                        (isInside ? Index(text.find_first_not_of(Blanks, Clip(n))) : -1));
        },
        [this] { o.TrimLeft(n, s), r.Set(Part(otherText, std::max(n, 0), INT_MAX)); },
        [this] { o.TrimRight(n, s), r.Set(Part(otherText, 0, 0LL + q.length - std::max(n, 0))); },
        [this] {
            o.TrimRightAndLeft(n, m, s);
            const auto kept = 0LL + q.length - std::max(n, 0) - std::max(m, 0);
            otherText.empty() ? void() : r.SetOrEmpty(Part(otherText, std::max(n, 0), kept));
        },
        [this] {
            s.FilterInvisibleChar(), Filter(r);
            const bool hasSameText = std::strcmp(r.Text().c_str(), r.held.c_str()) == 0;
            MODEL_CHECK((CQSString(s) == s) == (r.length > 0 && hasSameText));
        },
        [this] { keepStart ? s.TrimLeft() : s.TrimRight(), Trim(keepStart, !keepStart); },
        [this] {
            std::string range = text;
            const int size = std::min(few, r.length);
            CQSString::MakeLower(a.p == nullptr ? a.p : range.data(), size);
            const bool isRange =
                Asserted(a.p != nullptr && size > 0, "lpszStart != NULL && nLen > 0");
            const std::size_t end = isRange ? Clip(size) : 0;
            MODEL_CHECK(range ==
                        Rules<CQSString>::MapCase(text.substr(0, end), false) + text.substr(end));
        },
        [this] { MODEL_CHECK(s.ToUINT() == (HasNumber() ? TrailingNumber(text, 10) : 0)); },
        [this] { MODEL_CHECK(s.ToHexString() == r.Set(HexText(text))); },
    };
}

void DriveModel(ByteSource& source)
{
    DriveStrings<CQSString>(source);
}
