#pragma once

#include "CQWString.h"
#include "Utf16Unit.h"

#include <QString>

#include <cwchar>
#include <string_view>

/// Paths on their way from the client's texts to Qt, and names on their way back.
namespace PathText
{

/// \a path with every backslash replaced by a slash: clients may pass paths in the form of the
/// old platform, where the file systems of this one take a backslash for part of a name.
inline QString Slashed(QString path)
{
    return path.replace(QLatin1Char('\\'), QLatin1Char('/'));
}

/// The zero-terminated text of 32-bit units \a text, unit by unit; a null QString for null.
/// Units beyond U+10FFFF become U+FFFD.
inline QString FromWide(const wchar_t* text)
{
    return text != nullptr ? ToQString(text) : QString();
}

/// FromWide() and Slashed() in one: the form in which wide paths reach Qt.
inline QString SlashedFromWide(const wchar_t* path)
{
    return Slashed(FromWide(path));
}

/// Sets \a out to \a text, also to an empty one, which the setters of the string ignore. Goes by
/// units, where CQWString(const QString&) would count a character above U+FFFF twice. False
/// without memory.
inline bool Store(CQWString& out, std::wstring_view text)
{
    if (text.empty()) {
        out.Empty();
    } else {
        out.SetData(text.data(), static_cast<int>(text.size()));
    }
    return out.IsEmpty() == text.empty();
}

} // namespace PathText
