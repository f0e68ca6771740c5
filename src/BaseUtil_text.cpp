#include "BaseUtil.h"

#include "CQSString.h"
#include "CQWString.h"
#include "PathText.h"
#include "PrintfText.h"

#include <QStringView>

#include <algorithm>
#include <cstdarg>
#include <limits>
#include <new>

namespace
{

/// \a size as the strings count it: one beyond their 32 bits is memory that cannot be had.
int CountOf(qint64 size)
{
    if (size > std::numeric_limits<int>::max()) {
        throw std::bad_alloc();
    }
    return static_cast<int>(size);
}

bool IsAscii(QStringView text)
{
    return std::all_of(text.begin(), text.end(), [](QChar c) { return c.unicode() < 0x80; });
}

void SetSlashed(CQSString& out, char* bytes, int count)
{
    std::replace(bytes, bytes + count, '\\', '/');
    if (!out.SetData(reinterpret_cast<unsigned char*>(bytes), count)) {
        out.Empty();
    }
}

void StoreSlashed(CQSString& out, QStringView text)
{
    if (IsAscii(text)) {
        const int count = CountOf(text.size());
        QVarLengthArray<char, 256> bytes(count);
        std::transform(text.begin(), text.end(), bytes.begin(),
                       [](QChar c) { return static_cast<char>(c.unicode()); });
        SetSlashed(out, bytes.data(), count);
    } else {
        QByteArray bytes = text.toUtf8();
        SetSlashed(out, bytes.data(), CountOf(bytes.size()));
    }
}

void StoreSlashed(CQWString& out, QStringView text)
{
    QVarLengthArray<wchar_t, 256> units(CountOf(text.size()));
    const int count = static_cast<int>(text.toWCharArray(units.data()));
    std::replace(units.data(), units.data() + count, L'\\', L'/');
    out.Empty();
    if (out.SetData(units.data(), count)) {
        // SetData() ends the text at its first zero; what was formatted is kept whole.
        out.SetStrEnding(count);
    }
}

/// An empty text without memory, whichever part of the work lacked it.
template <class String, class Unit>
void StorePrintf(String& out, const Unit* format, std::va_list arguments)
{
    try {
        PrintfText text;
        FormatPrintf(text, format, arguments);
        StoreSlashed(out, QStringView(text.data(), text.size()));
    } catch (const std::bad_alloc&) {
        out.Empty();
    }
}

} // namespace

void CBaseUtil::FormatString(CQSString& out, char const* format, ...)
{
    std::va_list arguments;
    va_start(arguments, format);
    StorePrintf(out, format, arguments);
    va_end(arguments);
}

void CBaseUtil::FormatString(CQWString& out, wchar_t const* format, ...)
{
    std::va_list arguments;
    va_start(arguments, format);
    StorePrintf(out, format, arguments);
    va_end(arguments);
}

void CBaseUtil::FormatStringArg(CQWString& out, wchar_t const* format, wchar_t const* arg, ...)
{
    std::va_list arguments;
    va_start(arguments, arg);
    try {
        QString text = PathText::FromWide(format);
        for (const wchar_t* next = arg; next != nullptr; next = va_arg(arguments, const wchar_t*)) {
            text = text.arg(PathText::FromWide(next), 0, QLatin1Char(' '));
        }
        StoreSlashed(out, QStringView(text));
    } catch (const std::bad_alloc&) {
        out.Empty();
    }
    va_end(arguments);
}
