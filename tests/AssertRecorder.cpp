#include "AssertRecorder.h"

#include <OrvoAssert.h>

#include <utility>

namespace
{

std::vector<AssertReport> recorded;

void Record(const char* expression, const char* source, int line)
{
    recorded.push_back({expression, source, line});
}

} // namespace

bool AssertReport::Is(const char* expectedExpression, const char* expectedSource) const
{
    return expression == expectedExpression && source == expectedSource;
}

bool AssertReport::Is(const char* expectedExpression, const char* expectedSource,
                      int expectedLine) const
{
    return Is(expectedExpression, expectedSource) && line == expectedLine;
}

std::ostream& operator<<(std::ostream& out, const AssertReport& report)
{
    return out << '"' << report.expression << "\" in " << report.source << ':' << report.line;
}

AssertRecorder::AssertRecorder()
{
    recorded.clear();
    OrvoSetAssertHandler(Record);
}

AssertRecorder::~AssertRecorder()
{
    OrvoSetAssertHandler(nullptr);
}

const std::vector<AssertReport>& AssertRecorder::Reports() const
{
    return recorded;
}

std::vector<AssertReport> AssertRecorder::Take()
{
    return std::exchange(recorded, {});
}
