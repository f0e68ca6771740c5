#pragma once

#include "OrvoExport.h"

#include <iosfwd>

class CQSString;
class CQWString;
class QDebug;

/// \file
/// Strings in debug output and in the messages of test frameworks: `qDebug() << name`,
/// `std::cerr << name`. Not meant for files or for people.
///
/// A string is written in quotation marks, as UTF-8. Units that are no text are escaped: a byte
/// that belongs to no UTF-8 character or is a control as \\xHH with two digits; a wide unit that is
/// no character or does not print as \\uHHHH with four digits, or as \\UHHHHHHHH with eight; line
/// breaks and tabulators as \\n, \\r and \\t; a quotation mark and a backslash with a backslash
/// before them. Zero units inside a string are written like any other. Without
/// memory an `std::ostream` is left bad, as by output of its own, and QDebug throws
/// `std::bad_alloc`.

/// Writes \a text in quotation marks, escaped as the description of this file says.
/// @{
ORVO_EXPORT std::ostream& operator<<(std::ostream& out, const CQSString& text);
ORVO_EXPORT std::ostream& operator<<(std::ostream& out, const CQWString& text);
ORVO_EXPORT QDebug operator<<(QDebug out, const CQSString& text);
ORVO_EXPORT QDebug operator<<(QDebug out, const CQWString& text);
/// @}
