// The converter both ways, its wrappers, and what the strings make of encoded text.

#include "Model.h"
#include "Texts.h"

#include <BaseUtil.h>
#include <CQSString.h>
#include <CQWString.h>
#include <CStrConvertor.h>

#include <QList>
#include <QVector>

#include <optional>
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
    static const auto Pieces =
        QByteArray(
            "61 7F C3A9 E4B8AD F09F9880 EFBBBF 80 F8 FB FF C080 E4B8 C3 E4 F09F98 EDA080 "
            "ED9FBF EE8080 F4908080 E08080 EFBFBF EDB080 C1BF C280 DFBF E09FBF E0A080 ECBFBF "
            "F0808080 F08FBFBF F0908080 F48FBFBF F5808080 F09F F0 F7BFBFBF EDBFBF 00")
            .split(' ');
    std::string bytes;
    for (int pieces = source.Between(0, 9); pieces > 0; --pieces) {
        const QByteArray piece = QByteArray::fromHex(Pieces[source.Between(0, 37)]);
        bytes += piece.repeated(source.Flag() ? 1 : source.Between(1, 40)).toStdString();
    }
    return bytes + source.Bytes(3);
}

std::size_t LengthAt(const std::string& text, std::size_t at)
{
    const auto lead = static_cast<unsigned char>(text[at]);
    return lead < 0x80 ? 1 : lead < 0xC0 ? 0 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 0;
}

// `text` without its terminator.
int Steps(const std::string& text)
{
    std::size_t at = 0;
    for (int steps = 0; at < text.size(); at += LengthAt(text, at), ++steps) {
        if (LengthAt(text, at) == 0) {
            return steps;
        }
    }
    return static_cast<int>(text.size());
}

// What the terminator cuts off counts as zero bits.
std::u16string Decoded(const std::string& bytes, std::size_t room)
{
    const std::string text = bytes.c_str() + std::string(2, '\0');
    std::u16string units;
    for (std::size_t at = 0; text[at] != 0 && units.size() < room;) {
        const auto bits = [&](std::size_t i, int mask) { return text[at + i] & mask; };
        const std::size_t length = LengthAt(text, at);
        const int unit = length == 1   ? bits(0, 0x7F)
                         : length == 2 ? bits(0, 0x1F) << 6 | bits(1, 0x3F)
                                       : bits(0, 0x0F) << 12 | bits(1, 0x3F) << 6 | bits(2, 0x3F);
        units.append(length > 0 ? 1 : 0, static_cast<char16_t>(unit));
        at = std::min(at + std::max<std::size_t>(length, 1), text.size() - 2);
    }
    return units;
}

// Buffers are on the heap and of the exact size, so that a sanitizer sees every access outside.
void CheckEncoder(ByteSource& source)
{
    const Units units = MakeUnits(source);
    const std::string encoded = BmpUtf8(units);
    const int size = static_cast<int>(encoded.size());
    for (const int capacity : {size - 1, size, size + 1, 3 * static_cast<int>(units.size())}) {
        if (capacity < 1) {
            continue; // no room would be null
        }
        const int result = capacity < size ? -1 : size;
        std::vector<char> expected(static_cast<std::size_t>(capacity), '\x55');
        const std::vector<char> before = expected;
        std::copy_n(encoded.data(), std::max(result, 0), expected.data());
        const auto encode = [&](auto converter) {
            std::vector<char> out = before;
            int room = capacity;
            const int returned =
                converter(out.data(), room, units.data(), static_cast<int>(units.size()));
            MODEL_CHECK(out == expected);
            return std::pair(returned, room);
        };
        MODEL_CHECK(encode(CStrConvertor::Unicode2Utf8) == std::pair(result, capacity));
        MODEL_CHECK(encode(CBaseUtil::UnicodeToUTF8) == std::pair(result, capacity));
        MODEL_CHECK(encode(CBaseUtil::Unicode2Char) == std::pair(1, result));
    }
}

void CheckDecoder(ByteSource& source)
{
    const std::string text = MakeBytes(source);
    const int size = static_cast<int>(text.size());
    const int steps = Steps(text);
    std::vector<char> bytes(text.c_str(), text.c_str() + text.size() + 1);
    for (const int capacity : {steps - 1, steps, size + 1, source.Between(0, 20)}) {
        std::vector<wchar_t> out(static_cast<std::size_t>(std::max(capacity, 0)), 0x55555555);
        std::vector<wchar_t> expected = out;
        out.reserve(1);
        const std::u16string units =
            capacity < steps ? std::u16string() : Decoded(text, 2 * out.size());
        std::copy_n(reinterpret_cast<const char*>(units.data()), 2 * units.size(),
                    reinterpret_cast<char*>(expected.data()));
        const int result = capacity < steps ? -1 : static_cast<int>(units.size());
        for (auto* const decode :
             {CStrConvertor::Utf82Unicode, CBaseUtil::UTF8ToUnicode, CBaseUtil::Char2Unicode}) {
            MODEL_CHECK(decode(out.data(), capacity, bytes.data(), size) == result);
            MODEL_CHECK(out == expected);
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

// What a setter stores, unless it refuses.
std::optional<Units> Stored(const QString& text)
{
    const Units units = FromPlatform(text).c_str();
    const bool hasPair = text.toUcs4().size() != text.size();
    return hasPair || units.empty() ? std::nullopt : std::optional(units);
}

// Two characters a unit, up to the first zero one.
std::optional<Units> Packed(const std::string& text)
{
    const std::u16string decoded = Decoded(text, text.size()) + u'\0';
    Units units;
    for (std::size_t i = 0; i + 1 < decoded.size(); i += 2) {
        units += static_cast<wchar_t>(decoded[i] | decoded[i + 1] << 16);
    }
    return units.empty() ? std::nullopt : std::optional<Units>(units.c_str());
}

void CheckSetter(const std::optional<Units>& stored, bool isAccepted, auto set)
{
    CQWString s;
    s.SetData(L"old");
    MODEL_CHECK(set(s) == (isAccepted ? 1 : 0));
    MODEL_CHECK(Content(s) == stored.value_or(L"old"));
}

void CheckWideSetters(ByteSource& source)
{
    const std::string text = MakeBytes(source);
    const int size = static_cast<int>(text.size());
    const std::vector<unsigned char> exact(text.begin(), text.end());
    const auto* const bytes = exact.data();
    const auto narrow = Holding<CQSString>(text);

    const auto packed = Packed(text);
    CheckSetter(packed, true, [&](CQWString& s) { return s.SeASCIIData(bytes, size); });
    CheckSetter(packed, size > 0, [&](CQWString& s) { return s.SetGBKByteData(bytes, size); });
    CheckSetter(packed, true, [&](CQWString& s) { return s = narrow, 1; });

    auto stored = Stored(QString::fromUtf8(text.data(), size));
    CheckSetter(stored, stored.has_value(),
                [&](CQWString& s) { return s.SetUTF8Data(bytes, size); });
    CheckSetter(stored, size > 0, [&](CQWString& s) { return s.SetByteData(bytes, size); });
    const Units whole = FromPlatform(QString::fromUtf8(text.c_str()));
    CQWString constructed(narrow);
    MODEL_CHECK(Content(constructed) ==
                (whole.empty() ? packed.value_or(L"") : Units(whole.c_str())));
    // Stored twice, first with a count of 16-bit units: the room tells of both.
    const auto first = Decoded(text, text.size()).size(), second = whole.size();
    const std::size_t room = second <= first ? first
                             : first == 0    ? second
                                             : second + std::min<std::size_t>(second, 512);
    MODEL_CHECK(room == 0 || constructed.PrepareBufferToWrite(static_cast<int>(room)) == 0);
    MODEL_CHECK(constructed.PrepareBufferToWrite(static_cast<int>(room) + 1) == 1);

    const QString utf16 = Utf16(MakeUnits(source), u'\uFFFE');
    const int count = static_cast<int>(utf16.size());
    QString platform = QString::fromUtf16(reinterpret_cast<const char16_t*>(utf16.data()), count);
    const std::string shifted = '-' + std::string(reinterpret_cast<const char*>(utf16.data()),
                                                  2 * static_cast<std::size_t>(count));
    const auto* const raw = reinterpret_cast<const unsigned char*>(shifted.data()) + 1;
    stored = Stored(platform);
    const bool isAccepted = stored.has_value();
    CheckSetter(stored, isAccepted, [&](CQWString& s) { return s.SetUTF16Data(raw, count); });
    CheckSetter(stored, isAccepted, [&](CQWString& s) { return s.SetData(platform); });
    MODEL_CHECK(Content(CQWString(platform)) == FromPlatform(platform));
}

void CheckNarrowSetters(ByteSource& source)
{
    const Units units = MakeUnits(source);
    const auto wide = Holding<CQWString>(units);
    CQSString set, assigned;
    set.SetData("old");
    MODEL_CHECK(set.SetData(&wide) == 1);
    assigned = wide;
    const std::string encoded = BmpUtf8(units);
    MODEL_CHECK(Content(set) == (encoded.empty() ? "old" : encoded));
    MODEL_CHECK(Content(assigned) == encoded);
    // Two units that form a pair are one character; what is no code point becomes a question mark.
    const QByteArray joined = Utf16(units.c_str(), u'?').toUtf8();
    MODEL_CHECK(Content(CQSString(wide)) == (joined.isEmpty() ? encoded : joined.toStdString()));
    const QString utf16 = Utf16(units);
    wide.WCharToUtf16(); // asked twice, it answers anew
    MODEL_CHECK(std::equal(utf16.utf16(), utf16.utf16() + utf16.size() + 1, wide.WCharToUtf16()));
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
