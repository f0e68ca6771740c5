#pragma once

#include "TestPrelude.h"

#include <OrvoAssert.h>

/// One failed assertion as its handler saw it, or as a test expects it: 0 stands for any line.
struct AssertReport {
    std::string expression, source;
    int line = 0;

    friend bool operator==(const AssertReport& a, const AssertReport& b)
    {
        return a.expression == b.expression && a.source == b.source &&
               (a.line == b.line || a.line == 0 || b.line == 0);
    }
    friend std::ostream& operator<<(std::ostream& out, const AssertReport& report)
    {
        return out << '"' << report.expression << "\" in " << report.source << ':' << report.line;
    }
};
using AssertReports = std::vector<AssertReport>;

/// While it lives, failed assertions are recorded and return, so that a test sees both the
/// report and the fallback behind it. One at a time.
class AssertRecorder
{
public:
    AssertRecorder()
    {
        s_reports.clear();
        OrvoSetAssertHandler([](const char* expression, const char* source, int line) {
            s_reports.push_back({expression, source, line});
        });
    }
    ~AssertRecorder() { OrvoSetAssertHandler(nullptr); }

    /// Returns what was recorded since the last call and starts over.
    static AssertReports Take() { return std::exchange(s_reports, {}); }

private:
    inline static AssertReports s_reports;
};
