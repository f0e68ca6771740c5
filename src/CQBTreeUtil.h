#pragma once

#include "OrvoExport.h"

#include <QtGlobal>

/// The links of a red-black tree node. A tree container derives its nodes from it.
///
/// Besides its nodes a tree has a header node, which is red. The header's parent is the root,
/// and the root's parent is the header; the header's left and right are the leftmost and the
/// rightmost node. In an empty tree the header's parent is null and both sides are the header
/// itself. The header stands for the position behind the last element.
struct CQBTreeNodeBase {
    enum : qint32 { enRed = 0, enBlack = 1 };

    qint32 m_nColor;            ///< enRed or enBlack
    CQBTreeNodeBase* m_pParent; ///< the header for the root
    CQBTreeNodeBase* m_pLeft;   ///< null if there is none
    CQBTreeNodeBase* m_pRight;  ///< null if there is none
};

/// The node-level operations of a red-black tree: whatever does not depend on keys. Comparing,
/// and linking a new leaf in its place (with the header's sides), is the container's.
///
/// The algorithms are those of Cormen, Leiserson, Rivest and Stein, "Introduction to
/// Algorithms", over a header node. `root` is always the header's parent field itself, so that
/// a change of the root reaches the header. The pointers are not checked; they must belong to
/// one well-formed tree. No operation allocates or throws.
class ORVO_EXPORT CQBTreeUtil
{
public:
    /// Rotates \a x down to the left; its right child, which it must have, takes its place.
    static void RotateLeft(CQBTreeNodeBase* x, CQBTreeNodeBase*& root);

    /// Rotates \a x down to the right; its left child, which it must have, takes its place.
    static void RotateRight(CQBTreeNodeBase* x, CQBTreeNodeBase*& root);

    /// Colours \a x, which has just been linked in as a leaf, red and restores the red-black
    /// properties above it. Returns 1.
    static int Rebalance(CQBTreeNodeBase* x, CQBTreeNodeBase*& root);

    /// Unlinks \a z and restores the red-black properties. A node with two children is replaced
    /// by its in-order successor; no other node moves in memory. Returns \a z, which the caller
    /// frees; its fields are then meaningless.
    ///
    /// \param leftmost   the header's left field, updated when \a z was the leftmost node.
    /// \param rightmost  the header's right field, likewise.
    static CQBTreeNodeBase* RebalanceForRemove(CQBTreeNodeBase* z, CQBTreeNodeBase*& root,
                                               CQBTreeNodeBase*& leftmost,
                                               CQBTreeNodeBase*& rightmost);

    /// Returns the in-order successor of \a x: the header behind the rightmost node. The header
    /// of an empty tree is its own successor; any other header has none to ask for.
    static CQBTreeNodeBase* Increment(CQBTreeNodeBase* x);

    /// Returns the in-order predecessor of \a x: the rightmost node for the header, and for the
    /// header of an empty tree the header. There is none to ask for the leftmost node.
    static CQBTreeNodeBase* Decrement(CQBTreeNodeBase* x);
};
