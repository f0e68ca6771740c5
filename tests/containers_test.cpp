#include "AssertRecorder.h"
#include "TestPrelude.h"

#include <CLimitedCounter.h>
#include <CQList.h>
#include <TRTTIBase.h>

struct Foo : TRTTIBase {
    char const* GetClassName() const override { return "CFoo"; }
    bool IsBaseClass(char const* name) override { return base_strcmp(name, "CBase") == 0; }
};

TEST(BlockChain, LinksNewBlocksInFrontAndRefusesOverflowSilently)
{
    AssertRecorder recorder;
    CQPlex* head = nullptr;
    ExpectAll<CQPlex*>(nullptr, {Create(nullptr, 0, 0),
                                 Create(&head, 0x10000, 0x10000), // 2^32 wraps to 0 in 32 bits
                                 Create(&head, ~0u, 1)}); // only the header makes it too long
    EXPECT_EQ(AssertReports(), recorder.Take());
    ExpectAll<CQPlex*>(nullptr, {Create(&head, 0, 1), Create(&head, 1, 0)});
    EXPECT_EQ(AssertReports(2, {"nMax > 0 && cbElement > 0", "src/CQList", 36}), recorder.Take());
    CQPlex* const older = Create(&head, 10, 100);
    CQPlex* const newer = Create(&head, 3, 8);
    ASSERT_EQ(newer, head);
    EXPECT_EQ(older, newer->m_pNext);
    EXPECT_EQ(nullptr, older->m_pNext);
    EXPECT_EQ(reinterpret_cast<char*>(older) + sizeof(void*), older->Data());
    std::memset(older->Data(), 0xA5, 1000); // every byte is there
    head->FreeDataChain();
}

TEST(LimitedCounter, ReportsItsMaximumButCountsPastIt)
{
    CLimitedCounter counter;
    std::string isUp = counter.IsUpMax() ? "1" : "0";
    const auto count = [&](const char* steps) { // "+", "-", and "0" for a new count
        for (; *steps != '\0'; ++steps) {
            *steps == '+'   ? counter.IncreaseOne()
            : *steps == '-' ? counter.DecreaseOne()
                            : counter.ReCount();
            isUp += counter.IsUpMax() ? '1' : '0';
        }
    };
    counter.SetMaxCount(5, 9);
    count("-++-"); // 9 was cut to 5
    counter.SetMaxCount(2, 1);
    count("+-0-++"); // the count given counts, and down from 0 stays 0
    counter.SetMaxCount(INT_MAX, INT_MAX);
    count("+"); // the last number stays
    EXPECT_EQ("1"
              "0111"
              "100001"
              "1",
              isUp);
    EXPECT_EQ(INT_MAX, counter.GetMaxCount());
}

TEST(RunTimeTypeNames, CompareTheMostDerivedNameAndThenAskTheBases)
{
    Foo object;
    EXPECT_EACH(object.IsDerived("CFoo"), object.IsDerived("CBase"));
    EXPECT_NONE(object.IsDerived("TRTTIBase"), object.IsDerived(nullptr)); // as the bases say
    EXPECT_EACH(TRTTIBase().IsDerived("TRTTIBase"), !TRTTIBase().IsBaseClass("TRTTIBase"));
    EXPECT_EQ(0, TRTTIBase::base_strcmp("abc", "abc"));
    EXPECT_EQ(-'c', TRTTIBase::base_strcmp("ab", "abc"));
    EXPECT_EQ(0xFF - 0x01, TRTTIBase::base_strcmp("a\xFF", "a\x01")); // unsigned
}
