#pragma once

#include <string>

/// Thrown by the samples: ends the program with one line on stderr and this exit code.
struct SampleFailure {
    int exitCode;
    std::string text;
};

/// What was given is wrong, and nothing was written: exit code 2.
[[noreturn]] inline void RefuseInput(const std::string& text)
{
    throw SampleFailure{2, text};
}

/// Something could not be read or written: exit code 1.
[[noreturn]] inline void FailWith(const std::string& path, const char* what)
{
    throw SampleFailure{1, path + ": " + what};
}

/// What was read back is not what was written: exit code 1.
[[noreturn]] inline void ReportDifference(const std::string& path, const char* what)
{
    throw SampleFailure{1, path + ": read back, " + what + " differs from what was written"};
}
