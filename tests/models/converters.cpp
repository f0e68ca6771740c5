// The converter both ways, its wrappers, and what the strings make of encoded text.

#include "Model.h"

#include <BaseUtil.h>
#include <CQSString.h>
#include <CQWString.h>
#include <CStrConvertor.h>

#include <QString>
#include <QVector>

#include <cstring>
#include <string>
#include <vector>

namespace
{

using Units = std::wstring;

// Texts of edge cases, repeated so that they fill blocks.
Units MakeUnits(ByteSource& source)
{
    static constexpr std::uint32_t Edges[] = {
        'a',    'z',    0x7F,   0x80,   0x7FF,  0x800,  0x4E2D,  0xD7FF,     0xD800,    0xDBFF,
        0xDC00, 0xDFFF, 0xE000, 0xFEFF, 0xFFFE, 0xFFFF, 0x10000, 0x1F600,    0x10FFFF,  0x110000,
        'b',    0,      0xE9,   0x4E00, 'c',    0x439,  'd',     0x7FFFFFFF, 0xFFFFFFFF};
    Units units;
    for (int pieces = source.Between(0, 9); pieces > 0; --pieces) {
        const auto edge = static_cast<std::size_t>(source.Between(0, 28));
        const auto times = static_cast<std::size_t>(source.Flag() ? 1 : source.Between(1, 90));
        units.append(times, static_cast<wchar_t>(Edges[edge]));
    }
    return units;
}

std::string MakeBytes(ByteSource& source)
{
    static constexpr const char* Pieces[] = {"a",
                                             "\x7F",
                                             "\xC3\xA9",
                                             "\xE4\xB8\xAD",
                                             "\xF0\x9F\x98\x80",
                                             "\xEF\xBB\xBF",
                                             "\x80",
                                             "\xF8",
                                             "\xFB",
                                             "\xFF",
                                             "\xC0\x80",
                                             "\xE4\xB8",
                                             "\xC3",
                                             "\xE4",
                                             "\xF0\x9F\x98",
                                             "\xED\xA0\x80",
                                             "\xED\x9F\xBF",
                                             "\xEE\x80\x80",
                                             "\xF4\x90\x80\x80",
                                             "\xE0\x80\x80",
                                             "\xEF\xBF\xBF",
                                             "\xED\xB0\x80",
                                             ""};
    std::string bytes;
    for (int pieces = source.Between(0, 9); pieces > 0; --pieces) {
        const std::string text = Pieces[source.Between(0, 22)];
        const std::string piece = text.empty() ? std::string(1, '\0') : text;
        for (int times = source.Flag() ? 1 : source.Between(1, 40); times > 0; --times) {
            bytes += piece;
        }
    }
    return bytes + source.Bytes(3);
}

std::string Encoded(const Units& units)
{
    std::string bytes;
    for (const wchar_t c : units) {
        const auto u = static_cast<std::uint32_t>(c);
        if (u < 0x80) {
            bytes += static_cast<char>(u);
        } else if (u < 0x800) {
            bytes += {static_cast<char>(0xC0 | u >> 6), static_cast<char>(0x80 | (u & 0x3F))};
        } else if (u < 0x10000) {
            bytes += {static_cast<char>(0xE0 | u >> 12), static_cast<char>(0x80 | (u >> 6 & 0x3F)),
                      static_cast<char>(0x80 | (u & 0x3F))};
        }
    }
    return bytes;
}

int LengthAt(const std::string& text, std::size_t at)
{
    const auto lead = static_cast<unsigned char>(text[at]);
    return lead < 0x80 ? 1 : lead < 0xC0 ? 0 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 0;
}

// `text` without its terminator.
int Steps(const std::string& text)
{
    std::size_t at = 0;
    int steps = 0;
    for (; at < text.size(); ++steps) {
        if (LengthAt(text, at) == 0) {
            return steps;
        }
        at += static_cast<std::size_t>(LengthAt(text, at));
    }
    return static_cast<int>(text.size());
}

std::u16string Decoded(std::string text, std::size_t room)
{
    text = text.c_str();
    std::u16string units;
    for (std::size_t at = 0; at < text.size() && units.size() < room;) {
        const int length = LengthAt(text, at);
        unsigned unit = static_cast<unsigned char>(text[at++]) & (length == 2   ? 0x1F
                                                                  : length == 3 ? 0x0F
                                                                                : 0x7F);
        for (int i = 1; i < length; ++i) {
            unit = unit << 6 |
                   (at < text.size() ? static_cast<unsigned char>(text[at++]) & 0x3FU : 0U);
        }
        if (length > 0) {
            units += static_cast<char16_t>(unit);
        }
    }
    return units;
}

void CheckEncoder(ByteSource& source)
{
    const Units units = MakeUnits(source);
    const std::string expected = Encoded(units);
    const int size = static_cast<int>(expected.size());
    for (int capacity : {size - 1, size, size + 1, 3 * static_cast<int>(units.size())}) {
        std::vector<char> out(static_cast<std::size_t>(std::max(capacity, 0)), '\x55');
        std::vector<char> same = out;
        const int result = capacity < size ? -1 : size;
        const auto encode = [&](auto converter, auto& into) {
            return converter(into.data(), capacity, units.data(), static_cast<int>(units.size()));
        };
        MODEL_CHECK(out.empty() || encode(CStrConvertor::Unicode2Utf8, out) == result);
        std::copy_n(expected.data(), out.empty() ? 0 : std::max(result, 0), same.data());
        MODEL_CHECK(out == same);
        MODEL_CHECK(out.empty() || encode(CBaseUtil::UnicodeToUTF8, out) == result);
        MODEL_CHECK(out.empty() || encode(CBaseUtil::Unicode2Char, out) == 1);
        MODEL_CHECK(out.empty() || capacity == result);
    }
}

void CheckDecoder(ByteSource& source)
{
    const std::string text = MakeBytes(source);
    const int size = static_cast<int>(text.size());
    const int steps = Steps(text);
    // Of the exact size, so that a sanitizer sees every access outside.
    std::vector<char> bytes(text.c_str(), text.c_str() + text.size() + 1);
    for (const int capacity : {steps - 1, steps, size + 1, source.Between(0, 20)}) {
        std::vector<wchar_t> out(static_cast<std::size_t>(std::max(capacity, 0)), 0x55555555);
        std::vector<wchar_t> same = out;
        const std::u16string units =
            capacity < steps ? std::u16string() : Decoded(text, 2 * out.size());
        if (!units.empty()) {
            std::memcpy(same.data(), units.data(), 2 * units.size());
        }
        const int result = capacity < steps ? -1 : static_cast<int>(units.size());
        for (auto* const decode :
             {CStrConvertor::Utf82Unicode, CBaseUtil::UTF8ToUnicode, CBaseUtil::Char2Unicode}) {
            MODEL_CHECK(out.empty() || decode(out.data(), capacity, bytes.data(), size) == result);
            MODEL_CHECK(out == same);
        }
    }
}

// The platform's own conversion, which counts the units of a pair twice.
Units FromPlatform(const QString& text)
{
    Units units = text.toStdWString();
    units.resize(static_cast<std::size_t>(text.size()));
    return units;
}

Units Content(const CQWString& s)
{
    MODEL_CHECK(s.GetDataPtr() == nullptr || s.GetDataPtr()[s.GetLength()] == 0);
    return {s.GetDataPtr(), static_cast<std::size_t>(s.GetLength())};
}

// What a refusing setter makes of a string that holds "old".
Units Stored(const QString& text, int& result)
{
    const Units units = FromPlatform(text);
    const bool hasPair = static_cast<int>(text.toUcs4().size()) != text.size();
    result = hasPair || units.empty() || units[0] == 0 ? 0 : 1;
    return result == 0 ? L"old" : units.c_str();
}

Units Packed(const std::string& text, std::size_t room)
{
    std::u16string packed = Decoded(text, 2 * room);
    const std::size_t count = std::min(packed.size(), room);
    packed.resize(2 * (room + 1));
    Units units(room + 1, L'\0');
    std::memcpy(units.data(), packed.data(), 2 * packed.size());
    return count == 0 ? L"old" : units.substr(0, count).c_str();
}

template <class Set>
void CheckSetter(const Units& expected, int expectedResult, Set set)
{
    CQWString s;
    s.SetData(L"old");
    MODEL_CHECK(set(s) == expectedResult);
    MODEL_CHECK(Content(s) == expected);
}

std::u16string Utf16(const Units& units, char16_t foreign)
{
    std::u16string utf16;
    for (const wchar_t c : units) {
        const auto unit = static_cast<char32_t>(c);
        if (unit > 0xFFFF && unit <= 0x10FFFF) {
            utf16 += static_cast<char16_t>(QChar::highSurrogate(unit));
            utf16 += static_cast<char16_t>(QChar::lowSurrogate(unit));
        } else {
            utf16 += unit > 0xFFFF ? foreign : static_cast<char16_t>(unit);
        }
    }
    return utf16;
}

void CheckWideSetters(ByteSource& source)
{
    const std::string text = MakeBytes(source);
    const int size = static_cast<int>(text.size());
    const std::vector<unsigned char> exact(text.begin(), text.end());
    const auto* const bytes = exact.data();
    CQSString narrow;
    narrow.AppendData(const_cast<unsigned char*>(bytes), size);

    const Units packed = text.empty() ? L"old" : Packed(text, text.size() + 1);
    CheckSetter(packed, 1, [&](CQWString& s) { return s.SeASCIIData(bytes, size); });
    CheckSetter(packed, bytes == nullptr ? 0 : 1,
                [&](CQWString& s) { return s.SetGBKByteData(bytes, size); });
    CheckSetter(packed, 1, [&](CQWString& s) { return s = narrow, 1; });

    int result = 0;
    Units stored = Stored(QString::fromUtf8(text.data(), size), result);
    CheckSetter(stored, result, [&](CQWString& s) { return s.SetUTF8Data(bytes, size); });
    CheckSetter(stored, size > 0 ? 1 : 0, [&](CQWString& s) { return s.SetByteData(bytes, size); });
    const Units whole = FromPlatform(QString::fromUtf8(text.c_str()));
    const Units constructed = Content(CQWString(narrow));
    MODEL_CHECK(constructed ==
                (whole.empty() ? packed == L"old" ? L"" : packed : Units(whole.c_str())));

    const std::u16string utf16 = Utf16(MakeUnits(source), u'\uFFFE');
    const int count = static_cast<int>(utf16.size());
    QString platform = QString::fromUtf16(utf16.data(), count);
    const auto* const raw = reinterpret_cast<const unsigned char*>(utf16.data());
    stored = Stored(platform, result);
    CheckSetter(stored, result, [&](CQWString& s) { return s.SetUTF16Data(raw, count); });
    CheckSetter(stored, result, [&](CQWString& s) { return s.SetData(platform); });
    MODEL_CHECK(Content(CQWString(platform)) == FromPlatform(platform));
}

void CheckNarrowSetters(ByteSource& source)
{
    const Units units = MakeUnits(source);
    CQWString wide;
    wide.AppendData(reinterpret_cast<unsigned char*>(const_cast<wchar_t*>(units.data())),
                    static_cast<int>(units.size()));
    CQSString set, assigned;
    set.SetData("old");
    MODEL_CHECK(set.SetData(&wide) == 1);
    assigned = wide;
    const std::string encoded = Encoded(units);
    const std::string expected = encoded.empty() ? "old" : encoded;
    const auto content = [](const CQSString& s) {
        return std::string(s.GetDataPtr() == nullptr ? "" : s.GetDataPtr(),
                           static_cast<std::size_t>(s.GetLength()));
    };
    MODEL_CHECK(content(set) == expected);
    MODEL_CHECK(content(assigned) == encoded);
    // Two units that form a pair are one character; what is no code point becomes a question mark.
    const std::u16string text = Utf16(units.c_str(), u'?');
    const QByteArray joined =
        QString(reinterpret_cast<const QChar*>(text.data()), static_cast<int>(text.size()))
            .toUtf8();
    MODEL_CHECK(content(CQSString(wide)) == (joined.isEmpty() ? encoded : joined.toStdString()));
    const std::u16string utf16 = Utf16(units, u'\uFFFD');
    for (int asked = 0; asked < 2; ++asked) {
        MODEL_CHECK(std::memcmp(wide.WCharToUtf16(), utf16.c_str(), 2 * utf16.size() + 2) == 0);
    }
}

} // namespace

void DriveModel(ByteSource& source)
{
    constexpr void (*Checks[])(ByteSource&) = {CheckEncoder, CheckDecoder, CheckWideSetters,
                                               CheckNarrowSetters};
    for (int rounds = 0; rounds < 8 && !source.IsEmpty(); ++rounds) {
        Checks[source.Between(0, 3)](source);
    }
}
