#include "AssertRecorder.h"
#include "TestPrelude.h"

TEST(Assertion, IsFatalByDefaultAndNamesExpressionSourceAndLine)
{
    EXPECT_DEATH(OrvoAssert(false, "nLen >= 0", "src/CQSString", 17),
                 "\"nLen >= 0\" in src/CQSString, line 17");
}

TEST(Assertion, HandlerThatReturnsMakesFailuresNonFatalAndNullRestoresTheFatalOne)
{
    AssertRecorder recorder;
    const int line = __LINE__ + 1; // of the call, unless one is given
    EXPECT_FALSE(OrvoAssert(false, "a", "s"));
    EXPECT_FALSE(OrvoAssert(false, "b", "s", 4711));
    EXPECT_TRUE(OrvoAssert(true, "c", "s"));
    EXPECT_EQ((AssertReports{{"a", "s", line}, {"b", "s", 4711}}), recorder.Take());
    OrvoAssertHandler const replaced = OrvoSetAssertHandler(nullptr);
    EXPECT_DEATH(OrvoAssert(false, "0", "src/CQFile", 710), "src/CQFile, line 710");
    OrvoSetAssertHandler(replaced);
    EXPECT_FALSE(OrvoAssert(false, "d", "s"));
    EXPECT_EQ(1u, recorder.Take().size());
}
