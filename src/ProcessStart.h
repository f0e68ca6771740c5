#pragma once

#include <QStringList>

/// Starts \a program, which the system's search path leads to where it has no slash, with the
/// \a arguments, and ends it at once. Nothing happens when there is none. Throws `std::bad_alloc`,
/// and starts nothing then; the platform's own process object would crash.
void StartAndEnd(const QString& program, const QStringList& arguments);
