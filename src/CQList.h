#pragma once

#include "OrvoExport.h"

/// A chain of raw memory blocks from which a container carves its nodes.
///
///     CQPlex* blocks = nullptr;
///     if (CQPlex* block = Create(&blocks, 64, sizeof(Node))) { ... block->Data() ... }
///     if (blocks != nullptr) { blocks->FreeDataChain(); }
///
/// A block is this header with the storage directly behind it.
struct ORVO_EXPORT CQPlex {
    CQPlex* m_pNext; ///< the next, older block; null at the end of the chain

    /// The block's storage. It is aligned as a pointer is: to 4 bytes on the 32-bit handset
    /// and to 8 on a 64-bit host. What needs more there (a double or a 64-bit integer on the
    /// handset, long double) has to be placed or copied by the client.
    void* Data() { return this + 1; }

    /// Frees this block and every block behind it, the header itself included. Does nothing
    /// for the elements in them.
    void FreeDataChain();
};

/// Allocates a block of \a nMax elements of \a cbElement bytes, links it in front of \a *head
/// and returns it. The storage is not cleared. The chain belongs to the caller.
///
/// Returns null, with the chain unchanged, if \a head is null, if memory cannot be had, or if
/// header and storage together exceed 2^32 - 1 bytes. Asserts that neither count is zero, and
/// returns null for a zero as well.
ORVO_EXPORT CQPlex* Create(CQPlex** head, unsigned int nMax, unsigned int cbElement);
