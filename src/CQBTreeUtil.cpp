#include "CQBTreeUtil.h"

#include <utility>

using Node = CQBTreeNodeBase;

namespace
{

// The two sides of every algorithm below are mirror images; a side is the field of the node
// that leads there.
using Side = Node* Node::*;
constexpr Side left = &Node::m_pLeft;
constexpr Side right = &Node::m_pRight;

constexpr Side Opposite(Side side)
{
    return side == left ? right : left;
}

bool IsRed(const Node* node)
{
    return node != nullptr && node->m_nColor == Node::enRed;
}

bool IsBlack(const Node* node)
{
    return !IsRed(node); // an absent child counts as black
}

Node* Outermost(Node* node, Side side)
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
void Rotate(Node* x, Side side, Node*& root)
{
    const Side other = Opposite(side);
    Node* const y = x->*other;
    x->*other = y->*side;
    if (y->*side != nullptr) {
        (y->*side)->m_pParent = x;
    }
    ReplaceInParent(x, y, root);
    y->*side = x;
    x->m_pParent = y;
}

// The node x with at most one child gives way to that child. An end of the tree moves to the
// outermost node that remains on its side, which may be the header.
void Unlink(Node* x, Node* child, Node*& root, Node*& leftmost, Node*& rightmost)
{
    if (leftmost == x) {
        leftmost = child != nullptr ? Outermost(child, left) : x->m_pParent;
    }
    if (rightmost == x) {
        rightmost = child != nullptr ? Outermost(child, right) : x->m_pParent;
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

// The paths through x, a child of `parent` that may be null, are one black node short.
void RestoreBlackHeight(Node* x, Node* parent, Node*& root)
{
    while (x != root && IsBlack(x)) {
        const Side near = x == parent->m_pLeft ? left : right;
        const Side far = Opposite(near);
        Node* sibling = parent->*far;
        if (IsRed(sibling)) {
            sibling->m_nColor = Node::enBlack;
            parent->m_nColor = Node::enRed;
            Rotate(parent, near, root);
            sibling = parent->*far;
        }
        if (IsBlack(sibling->*near) && IsBlack(sibling->*far)) {
            sibling->m_nColor = Node::enRed;
            x = parent;
            parent = parent->m_pParent;
            continue;
        }
        if (IsBlack(sibling->*far)) {
            (sibling->*near)->m_nColor = Node::enBlack;
            sibling->m_nColor = Node::enRed;
            Rotate(sibling, far, root);
            sibling = parent->*far;
        }
        sibling->m_nColor = parent->m_nColor;
        parent->m_nColor = Node::enBlack;
        (sibling->*far)->m_nColor = Node::enBlack;
        Rotate(parent, near, root);
        break;
    }
    if (x != nullptr) {
        x->m_nColor = Node::enBlack;
    }
}

} // namespace

void CQBTreeUtil::RotateLeft(CQBTreeNodeBase* x, CQBTreeNodeBase*& root)
{
    Rotate(x, left, root);
}

void CQBTreeUtil::RotateRight(CQBTreeNodeBase* x, CQBTreeNodeBase*& root)
{
    Rotate(x, right, root);
}

int CQBTreeUtil::Rebalance(CQBTreeNodeBase* x, CQBTreeNodeBase*& root)
{
    x->m_nColor = Node::enRed;
    while (x != root && IsRed(x->m_pParent)) {
        Node* const grandparent = x->m_pParent->m_pParent;
        const Side side = x->m_pParent == grandparent->m_pLeft ? left : right;
        Node* const uncle = grandparent->*Opposite(side);
        if (IsRed(uncle)) {
            x->m_pParent->m_nColor = Node::enBlack;
            uncle->m_nColor = Node::enBlack;
            grandparent->m_nColor = Node::enRed;
            x = grandparent;
            continue;
        }
        if (x == x->m_pParent->*Opposite(side)) {
            x = x->m_pParent;
            Rotate(x, side, root);
        }
        x->m_pParent->m_nColor = Node::enBlack;
        grandparent->m_nColor = Node::enRed;
        Rotate(grandparent, Opposite(side), root);
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
        Node* const successor = Outermost(z->m_pRight, left);
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
    if (x->m_pParent == nullptr) {
        return x; // the header of an empty tree
    }
    if (x->m_pRight != nullptr) {
        return Outermost(x->m_pRight, left);
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
        return Outermost(x->m_pLeft, right);
    }
    Node* parent = x->m_pParent;
    while (x == parent->m_pLeft) {
        x = parent;
        parent = parent->m_pParent;
    }
    return parent;
}
