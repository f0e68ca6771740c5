#pragma once

#include "OrvoExport.h"

/// \file
/// The assertion facility.
///
/// Preconditions of the library are asserted in every build type. A failed assertion reports
/// the expression, the source path and the line to the current handler. The default handler
/// prints them through Qt's fatal message and aborts. A handler that returns makes assertions
/// non-fatal: the operation then gives the fallback that its documentation states.

/// Receives a failed assertion. \a expression and \a source are literals and stay valid.
/// May be called on any thread that uses the library. It may return, abort or throw.
using OrvoAssertHandler = void (*)(const char* expression, const char* source, int line);

/// Installs \a handler for the whole process and returns the one it replaces. Null restores
/// the default, fatal handler. Safe to call from any thread.
ORVO_EXPORT OrvoAssertHandler OrvoSetAssertHandler(OrvoAssertHandler handler);

/// Reports a failed assertion to the current handler; returns when the handler returns.
ORVO_EXPORT void OrvoAssertFailed(const char* expression, const char* source, int line);

/// Reports \a expression unless \a condition holds, and returns \a condition, so that callers
/// write their fallback as `if (!OrvoAssert(...)) return ...;`.
///
/// \param expression  the text that is reported; clients match on it, so it is spelt out here
///                    and does not follow later changes of the C++ expression.
/// \param source      path of the source as clients know it, for example "src/CQSString".
/// \param line        by default the line of the call; some assertions report a fixed line.
inline bool OrvoAssert(bool condition, const char* expression, const char* source,
                       int line = __builtin_LINE())
{
    if (!condition) {
        OrvoAssertFailed(expression, source, line);
    }
    return condition;
}
