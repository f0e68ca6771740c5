#pragma once

#include <QVarLengthArray>

#include <cstdarg>

/// \file
/// printf formatting by the rules of QString::vasprintf(), without its one string on the heap for
/// each conversion and piece of text. Internal; not installed.

/// What is formatted, in UTF-16; a short text takes no memory from the heap.
using PrintfText = QVarLengthArray<char16_t, 256>;

/// Appends \a format with its conversions replaced. %s reads UTF-8 and %ls UTF-16, both up to a
/// zero; null counts as empty. Throws `std::bad_alloc`.
///
/// A wide format means what its UTF-8 form would mean, so lone surrogates become question marks;
/// but a U+FEFF that begins a piece of its text is kept, as QString does not.
/// @{
void FormatPrintf(PrintfText& out, const char* format, std::va_list arguments);
void FormatPrintf(PrintfText& out, const wchar_t* format, std::va_list arguments);
/// @}
