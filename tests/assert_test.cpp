#include "AssertRecorder.h"

#include <OrvoAssert.h>

#include <gtest/gtest.h>

namespace
{

int replacementCalls = 0;

void Replacement(const char*, const char*, int)
{
    ++replacementCalls;
}

} // namespace

TEST(Assertion, IsFatalByDefaultAndNamesExpressionSourceAndLine)
{
    EXPECT_DEATH(OrvoAssert(false, "nLen >= 0", "src/CQSString", 17),
                 "\"nLen >= 0\" in src/CQSString, line 17");
}

TEST(Assertion, NullRestoresTheFatalHandler)
{
    OrvoSetAssertHandler(Replacement);
    EXPECT_EQ(Replacement, OrvoSetAssertHandler(nullptr));
    EXPECT_DEATH(OrvoAssert(false, "0", "src/CQFile", 710), "src/CQFile, line 710");
}

TEST(Assertion, HandlerThatReturnsMakesFailuresNonFatal)
{
    OrvoSetAssertHandler(Replacement);
    EXPECT_FALSE(OrvoAssert(false, "0", "src/CQFile"));
    EXPECT_TRUE(OrvoAssert(true, "0", "src/CQFile"));
    EXPECT_EQ(1, replacementCalls);
}

TEST(Assertion, ReportsTheCallersLineUnlessOneIsGiven)
{
    AssertRecorder recorder;
    const int line = __LINE__ + 1;
    OrvoAssert(false, "a", "s");
    OrvoAssert(false, "b", "s", 4711);
    EXPECT_TRUE(recorder.Reports().at(0).Is("a", "s", line));
    EXPECT_TRUE(recorder.Reports().at(1).Is("b", "s", 4711));
}
