#include "CQBTreeUtil.h"

#include <utility>

using Node = CQBTreeNodeBase;

namespace
{

// The two sides of every algorithm below are mirror images; a side is the field of the node
// that leads there. It is known at compile time, which makes it as good as written out twice.
using Side = Node* Node::*;
constexpr Side left = &Node::m_pLeft;
constexpr Side right = &Node::m_pRight;

template <Side side>
constexpr Side Opposite = side == left ? right : left;

bool IsRed(const Node* node)
{
    return node != nullptr && node->m_nColor == Node::enRed;
}

bool IsBlack(const Node* node)
{
    return !IsRed(node); // an absent child counts as black
}

template <Side side>
Node* Outermost(Node* node)
{
    while (node->*side != nullptr) {
        node = node->*side;
    }
    return node;
}

// Puts `by`, which may be null, in the place of `node` under node's parent. The header is
// recognised through the root: its sides are the tree's ends, not its children.
void ReplaceInParent(Node* node, Node* by, Node*& root)
{
    Node* const parent = node->m_pParent;
    if (node == root) {
        root = by;
    } else if (node == parent->m_pLeft) {
        parent->m_pLeft = by;
    } else {
        parent->m_pRight = by;
    }
    if (by != nullptr) {
        by->m_pParent = parent;
    }
}

// Rotates x down to `side`.
template <Side side>
void Rotate(Node* x, Node*& root)
{
    constexpr Side other = Opposite<side>;
    Node* const y = x->*other;
    x->*other = y->*side;
    if (y->*side != nullptr) {
        (y->*side)->m_pParent = x;
    }
    ReplaceInParent(x, y, root);
    y->*side = x;
    x->m_pParent = y;
}

// The red node x has a red parent, which stands on `side` of the black grandparent. Returns the
// node to go on from: one below a black parent when nothing is left to do.
template <Side side>
Node* RestoreColors(Node* x, Node* grandparent, Node*& root)
{
    Node* const uncle = grandparent->*Opposite<side>;
    if (IsRed(uncle)) {
        x->m_pParent->m_nColor = Node::enBlack;
        uncle->m_nColor = Node::enBlack;
        grandparent->m_nColor = Node::enRed;
        return grandparent;
    }
    if (x == x->m_pParent->*Opposite<side>) {
        x = x->m_pParent;
        Rotate<side>(x, root);
    }
    x->m_pParent->m_nColor = Node::enBlack;
    grandparent->m_nColor = Node::enRed;
    Rotate<Opposite<side>>(grandparent, root);
    return x;
}

// The node x with at most one child gives way to that child. An end of the tree moves to the
// outermost node that remains on its side, which may be the header.
void Unlink(Node* x, Node* child, Node*& root, Node*& leftmost, Node*& rightmost)
{
    if (leftmost == x) {
        leftmost = child != nullptr ? Outermost<left>(child) : x->m_pParent;
    }
    if (rightmost == x) {
        rightmost = child != nullptr ? Outermost<right>(child) : x->m_pParent;
    }
    ReplaceInParent(x, child, root);
}

// The node y, which has no left child, leaves its place to its right child and takes the place,
// the links and the colour of z. Returns the parent of the place that y left.
Node* MoveToPlaceOf(Node* y, Node* z, Node*& root)
{
    Node* parent = y->m_pParent;
    if (parent == z) {
        parent = y;
    } else {
        ReplaceInParent(y, y->m_pRight, root);
        y->m_pRight = z->m_pRight;
        y->m_pRight->m_pParent = y;
    }
    ReplaceInParent(z, y, root);
    y->m_pLeft = z->m_pLeft;
    y->m_pLeft->m_pParent = y;
    std::swap(y->m_nColor, z->m_nColor);
    return parent;
}

// The paths through the child of `parent` on the side `near` are one black node short. Returns
// whether they still are, now together with the paths through its sibling.
template <Side near>
bool IsStillShort(Node* parent, Node*& root)
{
    constexpr Side far = Opposite<near>;
    Node* sibling = parent->*far;
    if (IsRed(sibling)) {
        sibling->m_nColor = Node::enBlack;
        parent->m_nColor = Node::enRed;
        Rotate<near>(parent, root);
        sibling = parent->*far;
    }
    // Paths that are short of a black node have a sibling, and a red node there has two children.
    // NOLINTBEGIN(clang-analyzer-core.NullDereference)
    if (IsBlack(sibling->*near) && IsBlack(sibling->*far)) {
        sibling->m_nColor = Node::enRed;
        return true;
    }
    if (IsBlack(sibling->*far)) {
        (sibling->*near)->m_nColor = Node::enBlack;
        // NOLINTEND(clang-analyzer-core.NullDereference)
        sibling->m_nColor = Node::enRed;
        Rotate<far>(sibling, root);
        sibling = parent->*far;
    }
    sibling->m_nColor = parent->m_nColor;
    parent->m_nColor = Node::enBlack;
    (sibling->*far)->m_nColor = Node::enBlack;
    Rotate<near>(parent, root);
    return false;
}

// The paths through x, a child of `parent` that may be null, are one black node short.
void RestoreBlackHeight(Node* x, Node* parent, Node*& root)
{
    while (x != root && IsBlack(x)) {
        const bool isLeft = x == parent->m_pLeft;
        if (!(isLeft ? IsStillShort<left>(parent, root) : IsStillShort<right>(parent, root))) {
            break;
        }
        x = parent;
        parent = parent->m_pParent;
    }
    if (x != nullptr) {
        x->m_nColor = Node::enBlack;
    }
}

} // namespace

void CQBTreeUtil::RotateLeft(CQBTreeNodeBase* x, CQBTreeNodeBase*& root)
{
    Rotate<left>(x, root);
}

void CQBTreeUtil::RotateRight(CQBTreeNodeBase* x, CQBTreeNodeBase*& root)
{
    Rotate<right>(x, root);
}

int CQBTreeUtil::Rebalance(CQBTreeNodeBase* x, CQBTreeNodeBase*& root)
{
    x->m_nColor = Node::enRed;
    while (x != root && IsRed(x->m_pParent)) {
        Node* const grandparent = x->m_pParent->m_pParent;
        x = x->m_pParent == grandparent->m_pLeft ? RestoreColors<left>(x, grandparent, root)
                                                 : RestoreColors<right>(x, grandparent, root);
    }
    root->m_nColor = Node::enBlack;
    return 1;
}

CQBTreeNodeBase* CQBTreeUtil::RebalanceForRemove(CQBTreeNodeBase* z, CQBTreeNodeBase*& root,
                                                 CQBTreeNodeBase*& leftmost,
                                                 CQBTreeNodeBase*& rightmost)
{
    Node* child = nullptr; // what moves up into the place that loses a node
    Node* parent = nullptr;
    if (z->m_pLeft != nullptr && z->m_pRight != nullptr) {
        Node* const successor = Outermost<left>(z->m_pRight);
        child = successor->m_pRight;
        parent = MoveToPlaceOf(successor, z, root);
    } else {
        child = z->m_pLeft != nullptr ? z->m_pLeft : z->m_pRight;
        parent = z->m_pParent;
        Unlink(z, child, root, leftmost, rightmost);
    }
    // After the exchange z carries the colour of the place that lost its node.
    if (z->m_nColor == Node::enBlack) {
        RestoreBlackHeight(child, parent, root);
    }
    return z;
}

CQBTreeNodeBase* CQBTreeUtil::Increment(CQBTreeNodeBase* x)
{
    if (x->m_pRight != nullptr) {
        const bool isHeaderOfEmptyTree = x->m_pParent == nullptr;
        return isHeaderOfEmptyTree ? x : Outermost<left>(x->m_pRight);
    }
    Node* parent = x->m_pParent;
    while (x == parent->m_pRight) {
        x = parent;
        parent = parent->m_pParent;
    }
    // When the root is the rightmost node, the climb has gone through the header, whose right
    // is the root, and back down to the root: x is the header then.
    return x->m_pRight == parent ? x : parent;
}

CQBTreeNodeBase* CQBTreeUtil::Decrement(CQBTreeNodeBase* x)
{
    // The root's grandparent is the root itself too, but the root is black.
    const bool isHeader = x->m_pParent == nullptr || (IsRed(x) && x->m_pParent->m_pParent == x);
    if (isHeader) {
        return x->m_pRight;
    }
    if (x->m_pLeft != nullptr) {
        return Outermost<right>(x->m_pLeft);
    }
    Node* parent = x->m_pParent;
    while (x == parent->m_pLeft) {
        x = parent;
        parent = parent->m_pParent;
    }
    return parent;
}
