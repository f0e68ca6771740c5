#include <CQInstance.h>

#include <gtest/gtest.h>

namespace
{

int a = 0;
int b = 0;

} // namespace

TEST(Registry, AnswersAnAdditionWithTheFirstIndexOfItsPointer)
{
    EXPECT_EQ(nullptr, CQInstance::GetByUid(-1));
    EXPECT_EQ(nullptr, CQInstance::RemoveByUid(7));
    EXPECT_EQ(0, CQInstance::AddWithUid(&a, 7));
    EXPECT_EQ(1, CQInstance::AddWithUid(&b, 8));
    EXPECT_EQ(0, CQInstance::AddWithUid(&a, 9));
    EXPECT_EQ(&a, CQInstance::GetByUid(9)); // added nevertheless
}

TEST(Registry, LetsTheOldestEntryOfAUidWinAndLeavesTombstones)
{
    CQInstance::AddWithUid(&a, 7);
    CQInstance::AddWithUid(&b, 7);
    EXPECT_EQ(&a, CQInstance::GetByUid(7));
    EXPECT_EQ(&a, CQInstance::RemoveByUid(7));
    EXPECT_EQ(&b, CQInstance::RemoveByUid(7));
    EXPECT_EQ(nullptr, CQInstance::RemoveByUid(7));
    EXPECT_EQ(2, CQInstance::AddWithUid(&b, -1)); // indices do not shift
    EXPECT_EQ(nullptr, CQInstance::GetByUid(-1)); // the tombstone is older
    EXPECT_EQ(0, CQInstance::AddWithUid(nullptr, 3));
    CQInstance::ResetAndDestroy(); // the objects themselves are not touched
}
