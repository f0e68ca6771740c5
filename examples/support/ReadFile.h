#pragma once

#include <vector>

class CQSString;

/// The bytes of a file from `from` on, read through CQFile, which takes any length. Throws a
/// SampleFailure when it cannot be opened or read to its end.
std::vector<char> ReadFile(const CQSString& path, int from = 0);
