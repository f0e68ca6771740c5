#include "PrintfText.h"

#include "Utf16Unit.h"

#include <QString>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>

namespace
{

using Count = PrintfText::size_type;

/// Conversions with a larger width or precision are left to the platform.
constexpr int enLargestOwnSize = 999;

/// Makes room for \a count more units and returns its beginning.
char16_t* Extend(PrintfText& out, std::size_t count)
{
    const Count oldSize = out.size();
    out.resize(oldSize + static_cast<Count>(count));
    return out.data() + oldSize;
}

template <class Unit>
void AppendAscii(PrintfText& out, const Unit* first, const Unit* last)
{
    std::transform(first, last, Extend(out, static_cast<std::size_t>(last - first)),
                   [](Unit c) { return static_cast<char16_t>(c); });
}

void AppendQt(PrintfText& out, const QString& text)
{
    const auto* const units = reinterpret_cast<const char16_t*>(text.utf16());
    std::copy_n(units, text.size(), Extend(out, static_cast<std::size_t>(text.size())));
}

void AppendUtf8(PrintfText& out, const char* text, std::size_t length)
{
    const bool isAscii = std::all_of(text, text + length,
                                     [](char c) { return static_cast<unsigned char>(c) < 0x80; });
    if (isAscii) {
        AppendAscii(out, text, text + length);
    } else {
        AppendQt(out, QString::fromUtf8(text, static_cast<int>(length)));
    }
}

// The literal text of a format, either kind.

void AppendLiteral(PrintfText& out, const char* first, const char* last)
{
    AppendUtf8(out, first, static_cast<std::size_t>(last - first));
}

void AppendLiteral(PrintfText& out, const wchar_t* first, const wchar_t* last)
{
    const std::wstring_view text(first, static_cast<std::size_t>(last - first));
    char16_t* unit = Extend(out, Utf16Size(text));
    char16_t* const end = PutUtf16(unit, text);
    for (; unit != end; ++unit) {
        if (!QChar::isSurrogate(*unit)) {
            continue;
        }
        if (QChar::isHighSurrogate(*unit) && unit + 1 != end && QChar::isLowSurrogate(unit[1])) {
            ++unit;
        } else {
            *unit = u'?';
        }
    }
}

/// Appends \a append's text with blanks up to \a width units.
template <class Append>
void AppendJustified(PrintfText& out, int width, bool isLeft, Append append)
{
    const Count start = out.size();
    append();
    const Count length = out.size() - start;
    if (length < width) {
        const auto missing = static_cast<std::size_t>(width - length);
        std::fill_n(Extend(out, missing), missing, u' ');
        if (!isLeft) {
            std::rotate(out.data() + start, out.data() + start + length, out.data() + out.size());
        }
    }
}

/// Appends \a value in base 10 or 16, with zeros in front up to \a width units.
void AppendNumber(PrintfText& out, std::uint64_t value, bool isNegative, unsigned base, int width)
{
    char digits[20];
    char* const last = digits + sizeof digits;
    char* first = last;
    do {
        *--first = "0123456789abcdef"[value % base];
        value /= base;
    } while (value != 0);
    const auto zeros = width - (last - first) - (isNegative ? 1 : 0);
    if (isNegative) {
        out.append(u'-');
    }
    if (zeros > 0) {
        std::fill_n(Extend(out, static_cast<std::size_t>(zeros)), zeros, u'0');
    }
    AppendAscii(out, first, last);
}

/// A va_list that functions can take in turns, as it may not be passed on by value.
struct Arguments {
    explicit Arguments(std::va_list source) { va_copy(list, source); }
    ~Arguments() { va_end(list); }
    Arguments(const Arguments&) = delete;
    Arguments& operator=(const Arguments&) = delete;

    std::va_list list;
};

enum class Modifier { None, Char, Short, Long, LongLong, LongDouble, IntMax, Size, Difference };

/// Walks a format once. Common conversions are written in place; for the others the platform is
/// asked, one conversion at a time.
template <class Unit>
class Formatter
{
public:
    Formatter(PrintfText& out, const Unit* format, std::va_list arguments)
        : m_out(out), m_next(format), m_arguments(arguments)
    {
    }

    void Run()
    {
        while (*m_next != 0) {
            const Unit* const first = m_next;
            while (*m_next != 0 && *m_next != '%') {
                ++m_next;
            }
            AppendLiteral(m_out, first, m_next);
            if (*m_next == '%') {
                AppendConversion();
            }
        }
    }

private:
    void AppendConversion()
    {
        const Unit* const start = m_next++;
        if (*m_next == '%') {
            m_out.append(u'%');
            ++m_next;
            return;
        }
        ReadFlags();
        m_width = ReadSize();
        m_precision = -1;
        if (*m_next == '.') {
            ++m_next;
            m_precision = *m_next == '*' || IsDigit() ? ReadSize() : 0;
        }
        ReadModifier();
        if (AppendValue()) {
            ++m_next;
        } else {
            // No conversion, or one that the end of the format cuts off: text like any other.
            AppendAscii(m_out, start, m_next);
        }
    }

    bool IsDigit() const { return *m_next >= '0' && *m_next <= '9'; }

    void ReadFlags()
    {
        m_isZero = m_isLeft = m_hasOtherFlag = false;
        m_flags = m_next;
        for (;; ++m_next) {
            m_flagsEnd = m_next;
            switch (*m_next) {
            case '0':
                m_isZero = true;
                break;
            case '-':
                m_isLeft = true;
                break;
            case '#':
            case ' ':
            case '+':
            case '\'':
                m_hasOtherFlag = true;
                break;
            default:
                return;
            }
        }
    }

    // A width or a precision; -1 for none, which is also what a negative argument means. A number
    // of 2^31 - 1 and more counts as 0.
    int ReadSize()
    {
        if (*m_next == '*') {
            ++m_next;
            return std::max(va_arg(m_arguments.list, int), -1);
        }
        if (!IsDigit()) {
            return -1;
        }
        constexpr std::int64_t TooLarge = std::numeric_limits<int>::max();
        std::int64_t size = 0;
        for (; IsDigit(); ++m_next) {
            size = std::min(size * 10 + (*m_next - '0'), TooLarge);
        }
        return size < TooLarge ? static_cast<int>(size) : 0;
    }

    void ReadModifier()
    {
        const auto isDoubled = [this] { return m_next[1] == m_next[0]; };
        m_modifier = Modifier::None;
        m_modifierStart = m_next;
        switch (*m_next) {
        case 'h':
            m_modifier = isDoubled() ? Modifier::Char : Modifier::Short;
            break;
        case 'l':
            m_modifier = isDoubled() ? Modifier::LongLong : Modifier::Long;
            break;
        case 'L':
            m_modifier = Modifier::LongDouble;
            break;
        case 'j':
            m_modifier = Modifier::IntMax;
            break;
        case 'z':
        case 'Z':
            m_modifier = Modifier::Size;
            break;
        case 't':
            m_modifier = Modifier::Difference;
            break;
        default:
            return;
        }
        const bool isLong = m_modifier == Modifier::Char || m_modifier == Modifier::LongLong;
        m_next += isLong ? 2 : 1;
    }

    bool AppendValue()
    {
        switch (*m_next) {
        case 'd':
        case 'i':
        case 'u':
        case 'x':
        case 'X':
        case 'o':
            AppendInteger();
            return true;
        case 's':
            AppendText();
            return true;
        case 'c':
            AppendCharacter();
            return true;
        case 'e':
        case 'E':
        case 'f':
        case 'F':
        case 'g':
        case 'G':
        case 'a':
        case 'A':
            AppendReal();
            return true;
        case 'p':
            AppendByQt(va_arg(m_arguments.list, void*));
            return true;
        case 'n':
            StoreLength();
            return true;
        default:
            return false;
        }
    }

    // The cases differ in the type that they take. NOLINTBEGIN(bugprone-branch-clone)
    [[gnu::cold]] void AppendReal()
    {
        if (m_modifier == Modifier::LongDouble) {
            AppendByQt(va_arg(m_arguments.list, long double));
        } else {
            AppendByQt(va_arg(m_arguments.list, double));
        }
    }

    void AppendInteger()
    {
        switch (m_modifier) {
        case Modifier::Long:
            return AppendWhole(va_arg(m_arguments.list, long));
        case Modifier::LongLong:
            return AppendWhole(va_arg(m_arguments.list, long long));
        case Modifier::IntMax:
            return AppendByQt(va_arg(m_arguments.list, std::intmax_t));
        case Modifier::Size:
            return AppendByQt(va_arg(m_arguments.list, std::size_t));
        case Modifier::Difference:
            return AppendByQt(va_arg(m_arguments.list, std::ptrdiff_t));
        case Modifier::LongDouble:
            return AppendByQt(0); // takes no argument
        default:
            return AppendWhole(va_arg(m_arguments.list, int));
        }
    }
    // NOLINTEND(bugprone-branch-clone)

    template <class Whole>
    void AppendWhole(Whole value)
    {
        const bool isHex = *m_next == 'x';
        const bool isSigned = *m_next == 'd' || *m_next == 'i';
        const bool isNarrowed = m_modifier == Modifier::Char || m_modifier == Modifier::Short;
        if (m_hasOtherFlag || (m_isZero && m_isLeft) || m_precision >= 0 || isNarrowed ||
            m_width > enLargestOwnSize || !(isSigned || isHex || *m_next == 'u')) {
            AppendByQt(value);
            return;
        }
        const bool isNegative = isSigned && value < 0;
        const std::uint64_t magnitude = isNegative
                                            ? 0 - static_cast<std::uint64_t>(value)
                                            : static_cast<std::make_unsigned_t<Whole>>(value);
        AppendJustified(m_out, m_width, m_isLeft, [&] {
            AppendNumber(m_out, magnitude, isNegative, isHex ? 16 : 10, m_isZero ? m_width : 0);
        });
    }

    void AppendText()
    {
        const void* const text = va_arg(m_arguments.list, const void*);
        if (std::max(m_width, m_precision) > enLargestOwnSize) {
            AppendByQt(text != nullptr ? text : u"");
            return;
        }
        if (text == nullptr) {
            AppendJustified(m_out, m_width, m_isLeft, [] {});
        } else if (m_modifier == Modifier::Long) {
            const auto* const first = static_cast<const ushort*>(text);
            AppendJustified(m_out, m_width, m_isLeft,
                            [&] { AppendAscii(m_out, first, first + LengthOf(first)); });
        } else {
            const auto* const first = static_cast<const char*>(text);
            AppendJustified(m_out, m_width, m_isLeft,
                            [&] { AppendUtf8(m_out, first, LengthOf(first)); });
        }
    }

    // At most the precision, where there is one; what stands behind need not be terminated.
    template <class Char>
    std::size_t LengthOf(const Char* text) const
    {
        std::size_t length = 0;
        while (length != static_cast<std::size_t>(m_precision) && text[length] != 0) {
            ++length;
        }
        return length;
    }

    void AppendCharacter()
    {
        const int value = va_arg(m_arguments.list, int);
        if (m_width > enLargestOwnSize) {
            AppendByQt(value);
            return;
        }
        // A plain one is Latin-1.
        const int mask = m_modifier == Modifier::Long ? 0xFFFF : 0xFF;
        const auto unit = static_cast<char16_t>(value & mask);
        AppendJustified(m_out, m_width, m_isLeft, [&] { m_out.append(unit); });
    }

    // Rare, and slow at the platform's: the compiler is to spend no room on these.
    template <class Value>
    [[gnu::cold]] void AppendByQt(Value value)
    {
        AppendQt(m_out, QString::asprintf(GetConversion().c_str(), m_width, m_precision, value));
    }

    // The conversion at hand with its sizes as arguments; one copy serves all types of values.
    [[gnu::cold]] std::string GetConversion() const
    {
        std::string conversion("%");
        conversion.append(m_flags, m_flagsEnd);
        conversion += "*.*";
        conversion.append(m_modifierStart, m_next + 1);
        return conversion;
    }

    [[gnu::cold]] void StoreLength()
    {
        void* const place = va_arg(m_arguments.list, void*);
        const auto store = [&](auto type) {
            const auto length = static_cast<decltype(type)>(m_out.size());
            std::memcpy(place, &length, sizeof length);
        };
        switch (m_modifier) {
        case Modifier::Char:
            return store(static_cast<signed char>(0));
        case Modifier::Short:
            return store(static_cast<short>(0));
        case Modifier::Long:
            return store(0L);
        case Modifier::LongLong:
            return store(0LL);
        default:
            return store(0);
        }
    }

    PrintfText& m_out;
    const Unit* m_next;
    Arguments m_arguments;

    // The conversion at hand.
    const Unit* m_flags = nullptr;
    const Unit* m_flagsEnd = nullptr;
    const Unit* m_modifierStart = nullptr;
    bool m_isZero = false;
    bool m_isLeft = false;
    bool m_hasOtherFlag = false;
    int m_width = -1;
    int m_precision = -1;
    Modifier m_modifier = Modifier::None;
};

} // namespace

void FormatPrintf(PrintfText& out, const char* format, std::va_list arguments)
{
    if (format != nullptr) {
        Formatter<char>(out, format, arguments).Run();
    }
}

void FormatPrintf(PrintfText& out, const wchar_t* format, std::va_list arguments)
{
    if (format != nullptr) {
        Formatter<wchar_t>(out, format, arguments).Run();
    }
}
