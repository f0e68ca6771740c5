#pragma once

#include <string_view>

/// \file
/// The platform's full Unicode case rules for texts of 32-bit units, without asking for memory.
/// A surrogate pair in two units is one character. Units that are no code point have no case.
/// Internal; not installed.
namespace WideCase
{

/// Map the \a nLen units at \a text in place. A longer result is cut to the length; behind a
/// shorter one, which joined pairs make, the rest is zero.
/// @{
void MakeUpper(wchar_t* text, int nLen);
void MakeLower(wchar_t* text, int nLen);
/// @}

/// Whether the texts are equal but for case, character by character.
bool EqualFolded(std::wstring_view a, std::wstring_view b);

} // namespace WideCase
