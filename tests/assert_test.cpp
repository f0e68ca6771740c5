#include "AssertRecorder.h"
#include "TestPrelude.h"

#include <OrvoAssert.h>

namespace
{

int calls = 0;

void Count(const char*, const char*, int)
{
    ++calls;
}

} // namespace

TEST(Assertion, IsFatalByDefaultAndNamesExpressionSourceAndLine)
{
    EXPECT_DEATH(OrvoAssert(false, "nLen >= 0", "src/CQSString", 17),
                 "\"nLen >= 0\" in src/CQSString, line 17");
}

TEST(Assertion, HandlerThatReturnsMakesFailuresNonFatalAndNullRestoresTheFatalOne)
{
    OrvoSetAssertHandler(Count);
    EXPECT_FALSE(OrvoAssert(false, "0", "src/CQFile"));
    EXPECT_TRUE(OrvoAssert(true, "0", "src/CQFile"));
    EXPECT_EQ(1, calls);
    EXPECT_EQ(Count, OrvoSetAssertHandler(nullptr));
    EXPECT_DEATH(OrvoAssert(false, "0", "src/CQFile", 710), "src/CQFile, line 710");
}

TEST(Assertion, ReportsTheCallersLineUnlessOneIsGiven)
{
    AssertRecorder recorder;
    const int line = __LINE__ + 1;
    OrvoAssert(false, "a", "s");
    OrvoAssert(false, "b", "s", 4711);
    EXPECT_EQ((AssertReports{{"a", "s", line}, {"b", "s", 4711}}), recorder.Take());
}
