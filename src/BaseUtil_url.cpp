#include "BaseUtil.h"

#include "CQSString.h"
#include "CQWString.h"
#include "HexDigits.h"
#include "TextUnits.h"

#include <cstring>
#include <limits>
#include <memory>
#include <new>
#include <string_view>

namespace
{

/// Size of what UrlEncode() makes of \a bytes. Throws when it passes 2^31 - 1.
int EncodedSize(const QByteArray& bytes)
{
    qint64 size = 0;
    for (const char c : bytes) {
        size = CBaseUtil::IsCharSafe(c) ? size + 1 : size * 3;
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

bool IsEscaped(unsigned char byte)
{
    return (byte >= 1 && byte <= 32) || (byte != 0 && std::strchr("?><%#\"", byte) != nullptr);
}

/// The text between the "=" at or behind \a index and the next "&", else all behind \a index;
/// without blanks at its ends.
CQSString ArgumentValue(const CQSString& url, int index)
{
    CQSString value;
    url.GetSubString(value, '=', '&', index, false, false);
    const int rest = url.GetLength() - index - 1;
    if (value.IsEmpty() && rest > 0) {
        url.GetSubString(value, index + 1, rest);
    }
    value.TrimRightAndLeft();
    return value;
}

} // namespace

bool CBaseUtil::IsCharSafe(char c)
{
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') ||
           (c != 0 && std::strchr("!'()*-._", c) != nullptr);
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
        if (IsCharSafe(c)) {
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
    for (auto i = in.indexOf('%'); i >= 0; i = in.indexOf('%', i + 3)) {
        if (in.size() - i < 3) {
            return 0;
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
    QString decoded;
    int done = 0;
    for (auto i = s->indexOf(QLatin1Char('%')); i >= 0 && i < s->size() - 2;
         i = s->indexOf(QLatin1Char('%'), done)) {
        const wchar_t digits[] = {s->at(i + 1).unicode(), s->at(i + 2).unicode()};
        decoded += s->mid(done, i - done);
        decoded += QChar(static_cast<char16_t>(wtoh(digits, 2)));
        done = static_cast<int>(i) + 3;
    }
    if (done > 0) {
        *s = decoded + s->mid(done);
    }
}

CQWString CBaseUtil::EscapeString(CQWString& in, bool)
{
    CQSString bytes;
    bytes = in;
    const std::string_view text = View(bytes);
    qint64 length = 0;
    for (const char c : text) {
        length += IsEscaped(static_cast<unsigned char>(c)) ? 3 : 1;
    }
    CQWString escaped;
    if (length > std::numeric_limits<int>::max()) {
        return escaped;
    }
    escaped.AllocBuffer(static_cast<int>(length));
    if (escaped.GetDataPtr() == nullptr) {
        return escaped;
    }
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (IsEscaped(byte)) {
            wchar_t digits[2];
            PutHexByte(digits, byte);
            escaped.AppendChar(L'%');
            escaped.AppendChar(digits[0]);
            escaped.AppendChar(digits[1]);
        } else {
            escaped.AppendChar(static_cast<wchar_t>(byte));
        }
    }
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
    std::size_t found = searched.find(wanted);
    std::size_t next = found + 1;
    bool foundEmpty = false;
    while (found != None) {
        const std::size_t sign = searched.find_first_not_of("\n\r \t", found + wanted.size());
        if (sign == None) {
            break;
        }
        if (searched[sign] == '=') {
            const CQSString candidate = ArgumentValue(url, static_cast<int>(sign));
            if (!candidate.IsEmpty()) {
                value = candidate;
                return !value.IsEmpty();
            }
            foundEmpty = true;
            found = sign;
        } else {
            if (next >= original.size()) {
                break;
            }
            searched = original.substr(next);
            found = searched.find(wanted);
            next += 1 + found;
        }
    }
    if (foundEmpty) {
        // Only now: `value` may be `url`, or hold `name`.
        value.Empty();
    }
    return false;
}
