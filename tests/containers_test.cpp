#include "AssertRecorder.h"

#include <CLimitedCounter.h>
#include <CQBTreeUtil.h>
#include <CQList.h>
#include <TRTTIBase.h>

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <memory>
#include <random>
#include <set>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace
{

struct KeyNode : CQBTreeNodeBase {
    explicit KeyNode(int k) : CQBTreeNodeBase{}, key(k) {}
    int key;
};

int Key(const CQBTreeNodeBase* node)
{
    return static_cast<const KeyNode*>(node)->key;
}

/// The least container that a client would build on the node operations.
struct Tree {
    CQBTreeNodeBase header{CQBTreeNodeBase::enRed, nullptr, &header, &header};
    std::unordered_map<int, std::unique_ptr<KeyNode>> nodes;

    void Insert(int key)
    {
        auto& node = nodes[key] = std::make_unique<KeyNode>(key);
        node->m_pParent = &header;
        CQBTreeNodeBase** link = &header.m_pParent;
        while (*link != nullptr) {
            node->m_pParent = *link;
            link = key < Key(*link) ? &(*link)->m_pLeft : &(*link)->m_pRight;
        }
        *link = node.get();
        if (header.m_pLeft == &header || key < Key(header.m_pLeft)) {
            header.m_pLeft = node.get();
        }
        if (header.m_pRight == &header || key > Key(header.m_pRight)) {
            header.m_pRight = node.get();
        }
        EXPECT_EQ(1, CQBTreeUtil::Rebalance(node.get(), header.m_pParent));
    }

    void Erase(int key)
    {
        EXPECT_EQ(nodes.at(key).get(),
                  CQBTreeUtil::RebalanceForRemove(nodes.at(key).get(), header.m_pParent,
                                                  header.m_pLeft, header.m_pRight));
        nodes.erase(key);
    }

    /// Walks from one end through all nodes to the header, by Increment() or Decrement().
    std::vector<int> Walk(bool forward)
    {
        std::vector<int> keys;
        auto* node = forward ? header.m_pLeft : CQBTreeUtil::Decrement(&header);
        while (node != &header && keys.size() < nodes.size()) {
            keys.push_back(Key(node));
            if (forward || node != header.m_pLeft) {
                node = forward ? CQBTreeUtil::Increment(node) : CQBTreeUtil::Decrement(node);
            } else {
                node = &header;
            }
        }
        EXPECT_EQ(&header, node);
        return keys;
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
};

struct Bar : Foo {
    char const* GetClassName() const override { return "CBar"; }
    bool IsBaseClass(char const* name) override { return std::string_view(name) == "CFoo"; }
};

} // namespace

TEST(BlockChain, LinksNewBlocksInFrontWithTheirStorageBehindTheHeader)
{
    CQPlex* head = nullptr;
    CQPlex* const older = Create(&head, 10, 100);
    CQPlex* const newer = Create(&head, 3, 8);
    ASSERT_EQ(newer, head);
    EXPECT_EQ(older, newer->m_pNext);
    EXPECT_EQ(nullptr, older->m_pNext);
    EXPECT_EQ(reinterpret_cast<char*>(older) + sizeof(void*), older->Data());
    std::memset(older->Data(), 0xA5, 1000); // every byte is there
    head->FreeDataChain();
}

TEST(BlockChain, RefusesZeroCountsWithAnAssertionAndOverflowWithout)
{
    AssertRecorder recorder;
    CQPlex* head = nullptr;
    EXPECT_EQ(nullptr, Create(nullptr, 0, 0));
    EXPECT_EQ(nullptr, Create(&head, 0x10000, 0x10000)); // 2^32 wraps to 0 in 32 bits
    EXPECT_EQ(nullptr, Create(&head, ~0u, 1));           // only the header makes it too long
    EXPECT_TRUE(recorder.Reports().empty());
    EXPECT_EQ(nullptr, Create(&head, 0, 1));
    EXPECT_EQ(nullptr, Create(&head, 1, 0));
    EXPECT_EQ(nullptr, head);
    ASSERT_EQ(2u, recorder.Reports().size());
    EXPECT_TRUE(recorder.Reports()[0].Is("nMax > 0 && cbElement > 0", "src/CQList", 36));
}

TEST(RedBlackTree, KeepsEveryInvariantUnderRandomInsertionsAndRemovals)
{
    std::mt19937 random(20240607);
    Tree tree;
    std::set<int> model;
    for (int step = 0; step < 6000 && !HasFailure(); ++step) {
        // Grows and shrinks in turn, down to nothing now and then.
        const int key = static_cast<int>(random() % 90);
        const bool grow = random() % 100 < (step / 500 % 2 == 0 ? 75u : 3u);
        if (grow && model.insert(key).second) {
            tree.Insert(key);
        } else if (!grow && model.erase(key) != 0) {
            tree.Erase(key);
        }
        Tree::Check(tree.header.m_pParent, &tree.header);
        EXPECT_EQ(std::vector<int>(model.begin(), model.end()), tree.Walk(true)) << step;
        EXPECT_EQ(std::vector<int>(model.rbegin(), model.rend()), tree.Walk(false)) << step;
    }
    Tree empty;
    EXPECT_EQ(&empty.header, CQBTreeUtil::Increment(&empty.header));
}

TEST(LimitedCounter, ReportsItsMaximumButCountsPastIt)
{
    CLimitedCounter counter;
    EXPECT_TRUE(counter.IsUpMax());
    counter.SetMaxCount(5, 9);
    counter.IncreaseOne();
    counter.DecreaseOne();
    EXPECT_TRUE(counter.IsUpMax()); // 5 again, so it was 6
    for (int i = 0; i < 7; ++i) {
        counter.DecreaseOne(); // stops at 0
    }
    for (int i = 0; i < 5; ++i) {
        EXPECT_FALSE(counter.IsUpMax());
        counter.IncreaseOne();
    }
    EXPECT_TRUE(counter.IsUpMax());
    counter.ReCount();
    EXPECT_FALSE(counter.IsUpMax());
    EXPECT_EQ(5, counter.GetMaxCount());
    counter.SetMaxCount(std::numeric_limits<int>::max(), std::numeric_limits<int>::max());
    counter.IncreaseOne();
    EXPECT_TRUE(counter.IsUpMax());
}

TEST(RunTimeTypeNames, CompareTheMostDerivedNameAndThenAskTheBases)
{
    Bar bar;
    TRTTIBase& object = bar;
    EXPECT_TRUE(object.IsDerived("CBar"));
    EXPECT_TRUE(object.IsDerived("CFoo"));
    EXPECT_FALSE(object.IsDerived("TRTTIBase")); // as IsBaseClass() answers
    EXPECT_FALSE(object.IsDerived(nullptr));
    EXPECT_TRUE(TRTTIBase().IsDerived("TRTTIBase"));
    EXPECT_FALSE(TRTTIBase().IsBaseClass("TRTTIBase"));
    EXPECT_EQ(0, TRTTIBase::base_strcmp("abc", "abc"));
    EXPECT_EQ(-'c', TRTTIBase::base_strcmp("ab", "abc"));
    EXPECT_EQ(0xFF - 0x01, TRTTIBase::base_strcmp("a\xFF", "a\x01")); // unsigned
}
