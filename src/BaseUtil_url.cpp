#include "BaseUtil.h"

#include "CQSString.h"
#include "CQWString.h"
#include "HexDigits.h"
#include "TextUnits.h"
#include "Utf8Unit.h"

#include <algorithm>
#include <array>
#include <limits>
#include <memory>
#include <new>
#include <string_view>

namespace
{

/// One flag for each byte, so that a text is classified by a load a byte.
using ByteSet = std::array<bool, 256>;

constexpr ByteSet BytesOf(std::string_view bytes)
{
    ByteSet set{};
    for (const char c : bytes) {
        set[static_cast<unsigned char>(c)] = true;
    }
    return set;
}

constexpr ByteSet SafeBytes = BytesOf("!'()*-._0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ"
                                      "abcdefghijklmnopqrstuvwxyz");

constexpr ByteSet EscapedBytes = [] {
    ByteSet set = BytesOf("?><%#\"");
    for (std::size_t byte = 1; byte <= 32; ++byte) {
        set[byte] = true;
    }
    return set;
}();

bool IsIn(const ByteSet& set, char c)
{
    return set[static_cast<unsigned char>(c)];
}

/// Size of what UrlEncode() makes of \a bytes. Throws when it passes 2^31 - 1.
int EncodedSize(const QByteArray& bytes)
{
    qint64 size = 0;
    for (const char c : bytes) {
        size = IsIn(SafeBytes, c) ? size + 1 : size * 3;
        if (size > std::numeric_limits<int>::max()) {
            throw std::bad_alloc();
        }
    }
    return static_cast<int>(size);
}

/// Writes the hexadecimal form of [first, last) at last; returns the end of it.
char* AppendHexOf(const char* first, char* last)
{
    char* write = last;
    for (const char* read = first; read != last; ++read) {
        write = PutHexByte(write, static_cast<unsigned char>(*read));
    }
    return write;
}

/// The character of an escape: what wtoh() makes of its two units.
QChar DecodedByte(char16_t first, char16_t second)
{
    const int high = HexDigit(first);
    const int low = HexDigit(second);
    if (high >= 0 && low >= 0) {
        return QChar(static_cast<char16_t>(high << 4 | low));
    }
    const wchar_t digits[] = {first, second};
    return QChar(static_cast<char16_t>(CBaseUtil::wtoh(digits, 2)));
}

/// Number of wide units that EscapeString() makes of \a unit.
int EscapedSize(wchar_t unit)
{
    const auto value = static_cast<std::uint32_t>(unit);
    if (value < 0x80) {
        return 1 + 2 * int{EscapedBytes[value]};
    }
    return value < 0x10000 ? Utf8UnitSize(value) : 0;
}

/// Writes those units at \a p and returns the place behind them.
wchar_t* PutEscaped(wchar_t* p, wchar_t unit)
{
    const auto value = static_cast<std::uint32_t>(unit);
    if (value < 0x80) {
        *p = L'%';
        return PutHexByte(p + 1, static_cast<unsigned char>(value));
    }
    if (value < 0x10000) {
        char bytes[4]{};
        p = std::transform(bytes, PutUtf8Unit(bytes, value), p, [](char c) {
            return static_cast<wchar_t>(static_cast<unsigned char>(c));
        });
    }
    return p;
}

bool IsPlain(wchar_t unit)
{
    const auto value = static_cast<std::uint32_t>(unit);
    return value < 0x80 && !EscapedBytes[value];
}

/// The text between the "=" at or behind \a index and the next "&", else all behind \a index;
/// without blanks at its ends.
std::string_view ArgumentValue(std::string_view url, std::size_t index)
{
    constexpr std::string_view Blanks = "\n\r \t";
    constexpr auto None = std::string_view::npos;
    if (index + 1 >= url.size()) {
        return {};
    }
    const std::size_t sign = url.find('=', index);
    const std::size_t end = sign == None ? None : url.find('&', sign + 1);
    std::string_view value = end == None ? "" : url.substr(sign + 1, end - sign - 1);
    if (value.empty()) {
        value = url.substr(index + 1);
    }
    value.remove_prefix(std::min(value.find_first_not_of(Blanks), value.size()));
    return value.substr(0, value.find_last_not_of(Blanks) + 1);
}

} // namespace

bool CBaseUtil::IsCharSafe(char c)
{
    // A client whose char is signed extends the argument with its sign, and a compiler for which it
    // is unsigned may take all of the register for the index. The byte in memory is but a byte.
    const volatile char byte = c;
    return IsIn(SafeBytes, byte);
}

int CBaseUtil::UrlEncode(QString const& in, QByteArray** out)
{
    if (out == nullptr) {
        return 1;
    }
    const QByteArray bytes = in.toUtf8();
    auto encoded = std::make_unique<QByteArray>(EncodedSize(bytes), Qt::Uninitialized);
    char* const first = encoded->data();
    char* last = first;
    for (const char c : bytes) {
        if (IsIn(SafeBytes, c)) {
            *last++ = c;
        } else {
            last = AppendHexOf(first, last);
        }
    }
    *out = encoded.release();
    return 1;
}

int CBaseUtil::UrlDecode(QByteArray const& in, QString** out)
{
    // Only an escape that begins in the last two bytes is cut off. Whether a "%" there begins one
    // depends on those right before it, so the walk starts behind the last two other bytes.
    const char* const first = in.constData();
    const char* const end = first + in.size();
    const char* start = end;
    for (int others = 0; start != first && others < 2; --start) {
        others = start[-1] == '%' ? 0 : others + 1;
    }
    while (start != end) {
        if (*start != '%') {
            ++start;
        } else if (end - start < 3) {
            return 0;
        } else {
            start += 3;
        }
    }
    if (out != nullptr) {
        *out = new QString;
    }
    return 1;
}

void CBaseUtil::DecodeCgi(QString* s)
{
    constexpr int LongestText = 2048;
    if (s == nullptr || s->size() > LongestText) {
        return;
    }
    const auto escape = s->indexOf(QLatin1Char('%'));
    if (escape < 0 || escape >= s->size() - 2) {
        return;
    }
    // In place: what is decoded is never longer than what was read for it.
    QChar* write = s->data() + escape;
    const QChar* const end = s->data() + s->size();
    for (const QChar* read = write; read != end;) {
        if (*read == QLatin1Char('%') && end - read > 2) {
            *write++ = DecodedByte(read[1].unicode(), read[2].unicode());
            read += 3;
        } else {
            *write++ = *read++;
        }
    }
    s->truncate(static_cast<decltype(s->size())>(write - s->constData()));
}

CQWString CBaseUtil::EscapeString(CQWString& in, bool)
{
    const std::wstring_view text = View(in);
    qint64 length = 0;
    for (const wchar_t unit : text) {
        length += EscapedSize(unit);
    }
    CQWString escaped;
    if (length > std::numeric_limits<int>::max()) {
        return escaped;
    }
    escaped.AllocBuffer(static_cast<int>(length));
    auto* place = const_cast<wchar_t*>(escaped.GetDataPtr());
    if (place == nullptr) {
        return escaped;
    }
    for (const wchar_t unit : text) {
        if (IsPlain(unit)) {
            *place++ = unit;
        } else {
            place = PutEscaped(place, unit);
        }
    }
    escaped.SetStrEnding(static_cast<int>(length));
    return escaped;
}

bool CBaseUtil::GetArgumentFormURL(CQSString const& url, char const* name, CQSString& value)
{
    if (name == nullptr || *name == '\0') {
        return false;
    }
    constexpr auto None = std::string_view::npos;
    const std::string_view wanted(name);
    const std::string_view original = View(url);
    CQSString lower(url);
    lower.MakeLower();

    // The searched text is the lower-cased URL at first, later the URL from index `next` on. The
    // positions found in either are used on the URL unshifted: see the header.
    std::string_view searched = View(lower);
    std::size_t at = searched.find(wanted);
    std::size_t next = at + 1;
    bool foundEmpty = false;
    while (at != None) {
        const std::size_t sign = searched.find_first_not_of("\n\r \t", at + wanted.size());
        if (sign == None) {
            break;
        }
        if (searched[sign] == '=') {
            const std::string_view found = ArgumentValue(original, sign);
            if (!found.empty()) {
                auto* const bytes =
                    reinterpret_cast<unsigned char*>(const_cast<char*>(found.data()));
                return value.SetData(bytes, static_cast<int>(found.size())) == 1;
            }
            foundEmpty = true;
            at = sign;
        } else {
            searched = original.substr(next);
            at = searched.find(wanted);
            next += 1 + at;
        }
    }
    if (foundEmpty) {
        // Only now: `value` may be `url`, or hold `name`.
        value.Empty();
    }
    return false;
}
