#include "OrvoDebug.h"

#include "CQSString.h"
#include "CQWString.h"
#include "TextUnits.h"
#include "Utf8Unit.h"

#include <QChar>
#include <QDebug>

#include <cstdio>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>

namespace
{

void AppendHex(std::string& out, const char* format, unsigned value)
{
    char text[16];
    std::snprintf(text, sizeof text, format, value);
    out += text;
}

void AppendCharacter(std::string& out, char32_t character)
{
    char bytes[4];
    out.append(bytes, PutUtf8Unit(bytes, character));
}

// Appends what prints, or has a name of one letter; false for anything else.
bool AppendText(std::string& out, char32_t character)
{
    constexpr std::u32string_view named = U"\n\r\t\"\\";
    const auto name = named.find(character);
    if (name != named.npos) {
        out += '\\';
        out += "nrt\"\\"[name];
    } else if (character <= QChar::LastValidCodePoint && QChar::isPrint(character)) {
        AppendCharacter(out, character);
    } else {
        return false;
    }
    return true;
}

// Takes the UTF-8 character that begins \a bytes, and returns its size; 0 when none does.
int TakeCharacter(std::string_view bytes, char32_t& character)
{
    const auto lead = static_cast<unsigned char>(bytes[0]);
    const int size = lead < 0x80 ? 1 : lead < 0xC2 ? 0 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    if (size == 0 || lead > 0xF4 || bytes.size() < static_cast<size_t>(size)) {
        return 0;
    }
    character = size == 1 ? lead : lead & (0x7FU >> size);
    for (const char c : bytes.substr(1, static_cast<size_t>(size) - 1)) {
        if ((c & 0xC0) != 0x80) {
            return 0;
        }
        character = (character << 6) | (c & 0x3FU);
    }
    const bool isPlain = Utf8UnitSize(character) == size && !QChar::isSurrogate(character);
    return isPlain ? size : 0;
}

std::string Quoted(std::string_view bytes)
{
    std::string out = "\"";
    while (!bytes.empty()) {
        char32_t character = 0;
        auto size = static_cast<size_t>(TakeCharacter(bytes, character));
        if (size == 0 || !AppendText(out, character)) {
            size = 1;
            AppendHex(out, "\\x%02X", static_cast<unsigned char>(bytes[0]));
        }
        bytes.remove_prefix(size);
    }
    return out + '"';
}

std::string Quoted(std::wstring_view units)
{
    std::string out = "\"";
    for (const wchar_t wide : units) {
        const auto unit = static_cast<char32_t>(wide);
        if (!AppendText(out, unit)) {
            AppendHex(out, unit > 0xFFFF ? "\\U%08X" : "\\u%04X", unit);
        }
    }
    return out + '"';
}

// The text is quoted already.
QDebug Write(QDebug out, const std::string& text)
{
    const QDebugStateSaver saver(out);
    out.noquote() << QString::fromStdString(text);
    return out;
}

} // namespace

std::ostream& operator<<(std::ostream& out, const CQSString& text)
{
    return out << Quoted(View(text));
}

std::ostream& operator<<(std::ostream& out, const CQWString& text)
{
    return out << Quoted(View(text));
}

QDebug operator<<(QDebug out, const CQSString& text)
{
    return Write(std::move(out), Quoted(View(text)));
}

QDebug operator<<(QDebug out, const CQWString& text)
{
    return Write(std::move(out), Quoted(View(text)));
}
