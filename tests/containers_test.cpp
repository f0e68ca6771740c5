#include "AssertRecorder.h"
#include "TestPrelude.h"

#include <CLimitedCounter.h>
#include <CQBTreeUtil.h>
#include <CQList.h>
#include <TRTTIBase.h>

#include <random>
#include <set>

namespace
{

/// The least container that a client would build on the node operations; a key is an index.
struct Tree {
    CQBTreeNodeBase header{CQBTreeNodeBase::enRed, nullptr, &header, &header};
    CQBTreeNodeBase nodes[90];
    std::set<int> keys; // what should be there

    void Insert(int key)
    {
        keys.insert(key);
        auto *parent = &header, **link = &header.m_pParent;
        while (*link != nullptr) {
            parent = *link;
            link = &nodes[key] < parent ? &parent->m_pLeft : &parent->m_pRight;
        }
        *link = &nodes[key];
        nodes[key] = {CQBTreeNodeBase::enBlack, parent, nullptr, nullptr};
        header.m_pLeft = &nodes[*keys.begin()];
        header.m_pRight = &nodes[*keys.rbegin()];
        EXPECT_EQ(1, CQBTreeUtil::Rebalance(&nodes[key], header.m_pParent));
    }

    /// Steps from the leftmost node through all keys to the header, each step there and back.
    void CheckSteps()
    {
        auto* node = header.m_pLeft;
        for (const int key : keys) {
            ASSERT_EQ(&nodes[key], node);
            node = CQBTreeUtil::Increment(node);
            ASSERT_EQ(&nodes[key], CQBTreeUtil::Decrement(node));
        }
        ASSERT_EQ(&header, node);
    }

    /// Checks links and colours below `parent` and returns the black height.
    static int Check(const CQBTreeNodeBase* node, const CQBTreeNodeBase* parent)
    {
        if (node == nullptr) {
            return 0;
        }
        EXPECT_EQ(parent, node->m_pParent);
        // The header is red, so this also demands a black root.
        EXPECT_TRUE(node->m_nColor == 1 || (node->m_nColor == 0 && parent->m_nColor == 1));
        const int height = Check(node->m_pLeft, node);
        EXPECT_EQ(height, Check(node->m_pRight, node));
        return height + node->m_nColor;
    }
};

struct Foo : TRTTIBase {
    char const* GetClassName() const override { return "CFoo"; }
    bool IsBaseClass(char const* name) override { return std::string_view(name) == "CBase"; }
};

} // namespace

TEST(BlockChain, LinksNewBlocksInFrontAndRefusesOverflowSilently)
{
    AssertRecorder recorder;
    CQPlex* head = nullptr;
    EXPECT_EQ(nullptr, Create(nullptr, 0, 0));
    EXPECT_EQ(nullptr, Create(&head, 0x10000, 0x10000)); // 2^32 wraps to 0 in 32 bits
    EXPECT_EQ(nullptr, Create(&head, ~0u, 1));           // only the header makes it too long
    EXPECT_EQ(AssertReports(), recorder.Take());
    EXPECT_TRUE(Create(&head, 0, 1) == nullptr && Create(&head, 1, 0) == nullptr);
    EXPECT_EQ(AssertReports(2, {"nMax > 0 && cbElement > 0", "src/CQList", 36}), recorder.Take());
    CQPlex* const older = Create(&head, 10, 100);
    CQPlex* const newer = Create(&head, 3, 8);
    ASSERT_EQ(newer, head);
    EXPECT_TRUE(newer->m_pNext == older && older->m_pNext == nullptr);
    EXPECT_EQ(reinterpret_cast<char*>(older) + sizeof(void*), older->Data());
    std::memset(older->Data(), 0xA5, 1000); // every byte is there
    head->FreeDataChain();
}

TEST(RedBlackTree, KeepsEveryInvariantUnderRandomInsertionsAndRemovals)
{
    std::mt19937 random(20240607);
    Tree tree;
    CQBTreeNodeBase*& root = tree.header.m_pParent;
    EXPECT_EQ(&tree.header, CQBTreeUtil::Increment(&tree.header));
    EXPECT_EQ(&tree.header, CQBTreeUtil::Decrement(&tree.header));
    for (int step = 0; step < 6000 && !HasFailure(); ++step) {
        // Grows and shrinks in turn, down to nothing now and then.
        const int key = static_cast<int>(random() % 90);
        const bool grow = random() % 100 < (step / 500 % 2 == 0 ? 75u : 3u);
        if (grow && tree.keys.count(key) == 0) {
            tree.Insert(key);
        } else if (!grow && tree.keys.count(key) != 0) {
            tree.keys.erase(key);
            auto* const node = &tree.nodes[key];
            EXPECT_EQ(node, CQBTreeUtil::RebalanceForRemove(node, root, tree.header.m_pLeft,
                                                            tree.header.m_pRight));
        }
        if (auto* const right = root != nullptr ? root->m_pRight : nullptr) {
            CQBTreeUtil::RotateLeft(root, root);
            EXPECT_EQ(right, root);
            CQBTreeUtil::RotateRight(root, root);
        }
        tree.CheckSteps();
        Tree::Check(root, &tree.header);
    }
}

TEST(LimitedCounter, ReportsItsMaximumButCountsPastIt)
{
    CLimitedCounter counter;
    EXPECT_TRUE(counter.IsUpMax());
    counter.SetMaxCount(1, 9);
    counter.IncreaseOne();
    counter.DecreaseOne();
    EXPECT_TRUE(counter.IsUpMax()); // 1 again, so it was 2
    counter.ReCount();
    EXPECT_FALSE(counter.IsUpMax());
    counter.DecreaseOne(); // stays at 0
    counter.IncreaseOne();
    EXPECT_TRUE(counter.IsUpMax());
    EXPECT_EQ(1, counter.GetMaxCount());
    counter.SetMaxCount(INT_MAX, INT_MAX);
    counter.IncreaseOne();
    EXPECT_TRUE(counter.IsUpMax());
}

TEST(RunTimeTypeNames, CompareTheMostDerivedNameAndThenAskTheBases)
{
    Foo object;
    EXPECT_TRUE(object.IsDerived("CFoo") && object.IsDerived("CBase"));
    EXPECT_FALSE(object.IsDerived("TRTTIBase") || object.IsDerived(nullptr)); // as the bases say
    EXPECT_TRUE(TRTTIBase().IsDerived("TRTTIBase") && !TRTTIBase().IsBaseClass("TRTTIBase"));
    EXPECT_EQ(0, TRTTIBase::base_strcmp("abc", "abc"));
    EXPECT_EQ(-'c', TRTTIBase::base_strcmp("ab", "abc"));
    EXPECT_EQ(0xFF - 0x01, TRTTIBase::base_strcmp("a\xFF", "a\x01")); // unsigned
}
