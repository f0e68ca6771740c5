#include "BaseUtil.h"

#include "CQSString.h"
#include "CQWString.h"

#include <algorithm>
#include <cstdarg>
#include <limits>
#include <string>

namespace
{

QString FromWide(const wchar_t* text)
{
    return text != nullptr ? QString::fromWCharArray(text) : QString();
}

/// The length as the string classes count it: 0 also where it passes their 32 bits, which counts
/// as memory that cannot be had and leaves an empty string.
template <typename Text>
int CountOf(const Text& text)
{
    const auto size = static_cast<qint64>(text.size());
    return size <= std::numeric_limits<int>::max() ? static_cast<int>(size) : 0;
}

void StoreSlashed(CQSString& out, const QString& text)
{
    QByteArray bytes = text.toUtf8();
    bytes.replace('\\', '/');
    if (!out.SetData(reinterpret_cast<unsigned char*>(bytes.data()), CountOf(bytes))) {
        out.Empty();
    }
}

void StoreSlashed(CQWString& out, const QString& text)
{
    std::wstring units = text.toStdWString();
    std::replace(units.begin(), units.end(), L'\\', L'/');
    const int count = CountOf(units);
    out.Empty();
    if (out.SetData(units.data(), count)) {
        // SetData() ends the text at its first zero; what was formatted is kept whole.
        out.SetStrEnding(count);
    }
}

} // namespace

void CBaseUtil::FormatString(CQSString& out, char const* format, ...)
{
    std::va_list arguments;
    va_start(arguments, format);
    const QString text = QString::vasprintf(format, arguments);
    va_end(arguments);
    StoreSlashed(out, text);
}

void CBaseUtil::FormatString(CQWString& out, wchar_t const* format, ...)
{
    const QByteArray narrow = FromWide(format).toUtf8();
    std::va_list arguments;
    va_start(arguments, format);
    const QString text = QString::vasprintf(narrow.constData(), arguments);
    va_end(arguments);
    StoreSlashed(out, text);
}

void CBaseUtil::FormatStringArg(CQWString& out, wchar_t const* format, wchar_t const* arg, ...)
{
    QString text = FromWide(format);
    std::va_list arguments;
    va_start(arguments, arg);
    for (const wchar_t* next = arg; next != nullptr; next = va_arg(arguments, const wchar_t*)) {
        text = text.arg(FromWide(next), 0, QLatin1Char(' '));
    }
    va_end(arguments);
    StoreSlashed(out, text);
}
