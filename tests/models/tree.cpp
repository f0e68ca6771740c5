// The node operations of the red-black tree against those of the standard library, which follow
// the same algorithms over the same header node: links and colours come out the same, always.

#include "Model.h"

#include <CQBTreeUtil.h>

#include <set>

namespace
{

enum { enKeys = 48 };

using Node = CQBTreeNodeBase;
using Reference = std::_Rb_tree_node_base;

/// A node for each key, its index, and the header behind them; once more for the reference.
struct Trees {
    Node nodes[enKeys + 1];
    Reference references[enKeys + 1];
    Node& header = nodes[enKeys];
    Reference& referenceHeader = references[enKeys];
    std::set<int> keys;

    Trees()
    {
        header = {Node::enRed, nullptr, &header, &header};
        referenceHeader = {std::_S_red, nullptr, &referenceHeader, &referenceHeader};
    }

    void Insert(int key)
    {
        Node *node = &nodes[key], *parent = &header, **link = &header.m_pParent;
        while (*link != nullptr) {
            parent = *link;
            link = node < parent ? &parent->m_pLeft : &parent->m_pRight;
        }
        const bool isLeft = parent == &header || node < parent;
        std::_Rb_tree_insert_and_rebalance(isLeft, &references[key], &references[parent - nodes],
                                           referenceHeader);
        *link = node;
        *node = {Node::enBlack, parent, nullptr, nullptr};
        keys.insert(key);
        header.m_pLeft = &nodes[*keys.begin()];
        header.m_pRight = &nodes[*keys.rbegin()];
        MODEL_CHECK(CQBTreeUtil::Rebalance(node, header.m_pParent) == 1);
    }

    void Remove(int key)
    {
        std::_Rb_tree_rebalance_for_erase(&references[key], referenceHeader);
        keys.erase(key);
        MODEL_CHECK(CQBTreeUtil::RebalanceForRemove(&nodes[key], header.m_pParent, header.m_pLeft,
                                                    header.m_pRight) == &nodes[key]);
    }

    void CheckNode(int index) const
    {
        const auto twin = [this](const Reference* reference) {
            return reference == nullptr ? nullptr : &nodes[reference - references];
        };
        const auto& [color, parent, left, right] = references[index];
        const Node& node = nodes[index];
        MODEL_CHECK(node.m_nColor == (color == std::_S_black ? 1 : 0));
        MODEL_CHECK(node.m_pParent == twin(parent));
        MODEL_CHECK(node.m_pLeft == twin(left) && node.m_pRight == twin(right));
    }

    /// Steps from the leftmost node through all keys to the header, each step there and back.
    void CheckSteps() const
    {
        Node* node = header.m_pLeft;
        for (const int key : keys) {
            CheckNode(key);
            MODEL_CHECK(node == &nodes[key]);
            node = CQBTreeUtil::Increment(node);
            MODEL_CHECK(CQBTreeUtil::Decrement(node) == &nodes[key]);
        }
        MODEL_CHECK(node == &header);
        CheckNode(enKeys);
    }
};

} // namespace

void DriveModel(ByteSource& source)
{
    Trees trees;
    MODEL_CHECK(CQBTreeUtil::Increment(&trees.header) == &trees.header);
    MODEL_CHECK(CQBTreeUtil::Decrement(&trees.header) == &trees.header);
    while (!source.IsEmpty()) {
        const int key = source.Between(0, enKeys - 1);
        if (trees.keys.count(key) == 0) {
            trees.Insert(key);
        } else if (source.Byte() % 8 != 0) {
            trees.Remove(key);
        } else if (Node* const right = trees.nodes[key].m_pRight; right != nullptr) {
            CQBTreeUtil::RotateLeft(&trees.nodes[key], trees.header.m_pParent);
            MODEL_CHECK(right->m_pLeft == &trees.nodes[key]);
            CQBTreeUtil::RotateRight(right, trees.header.m_pParent);
        }
        trees.CheckSteps();
    }
}
