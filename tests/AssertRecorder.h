#pragma once

#include <ostream>
#include <string>
#include <vector>

/// One failed assertion as its handler saw it.
struct AssertReport {
    std::string expression;
    std::string source;
    int line;

    /// Compares expression and source; use it where the line is not fixed.
    bool Is(const char* expectedExpression, const char* expectedSource) const;
    /// Compares all three.
    bool Is(const char* expectedExpression, const char* expectedSource, int expectedLine) const;
};

std::ostream& operator<<(std::ostream& out, const AssertReport& report);

/// While it lives, failed assertions are recorded and return, so that a test sees both the
/// report and the fallback behind it. One at a time.
class AssertRecorder
{
public:
    AssertRecorder();
    ~AssertRecorder();
    AssertRecorder(const AssertRecorder&) = delete;
    AssertRecorder& operator=(const AssertRecorder&) = delete;

    const std::vector<AssertReport>& Reports() const;
    /// Returns what was recorded since the last call and starts over.
    std::vector<AssertReport> Take();
};
