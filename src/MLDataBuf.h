#pragma once

#include "OrvoExport.h"

#include <QtGlobal>

#include <cstring>

/// A byte buffer of fixed capacity: appends fill it from the front, MoveDataToHead() empties it
/// from the front.
///
/// Call Create() once on a fresh buffer, either with a size (the buffer owns its storage) or
/// with storage that the caller owns and keeps alive. The buffer never grows, and an append
/// that does not fit is refused whole. Integers are appended in host byte order: convert with
/// HTONS() or HTONL() first where network order is wanted. Sizes are bytes, 32-bit on every
/// host. Not locked; one thread at a time.
class ORVO_EXPORT CMLDataBuf
{
public:
    /// An empty buffer without storage: every size is 0 and every append is refused.
    CMLDataBuf();
    /// Frees storage that the buffer allocated itself, never the caller's.
    virtual ~CMLDataBuf();
    CMLDataBuf(const CMLDataBuf&) = delete;
    CMLDataBuf& operator=(const CMLDataBuf&) = delete;

    /// Allocates \a size zeroed bytes and returns 1. Returns 0 and changes nothing for a size
    /// of 0, one beyond 32 bits, or when memory cannot be had.
    int Create(unsigned long size);

    /// Wraps \a data, \a size bytes that stay the caller's, and returns 1. Returns 0 and changes
    /// nothing for null, a size of 0 or one beyond 32 bits.
    ///
    /// Either Create() leaves the used size as it is and does not free storage that the buffer
    /// already owns: a caller that took GetBuf() keeps it and frees it with `delete[]`. Appends
    /// stay refused while the used size exceeds the new capacity.
    int Create(unsigned char* data, unsigned long size);

    /// The storage, or null before Create().
    unsigned char* GetBuf() const;
    /// Capacity less used size, reduced to 32 bits.
    unsigned long GetFreeSize() const;
    /// Number of bytes appended and not yet moved out.
    unsigned long GetUsedSize() const;
    /// Capacity.
    unsigned long GetMaxSize() const;

    // The appends of one item stand here because a call would cost more than they do.

    /// Appends one byte; returns 1, or 0 when the buffer is full.
    ORVO_EXPORT int Append(unsigned char b) { return AppendItem(b); }
    /// Appends two bytes in host order; returns 2, or 0 with nothing written.
    ORVO_EXPORT int Append(unsigned short v) { return AppendItem(v); }
    /// Appends the low 32 bits as four bytes in host order; returns 4, or 0 with nothing written.
    ORVO_EXPORT int Append(unsigned long v) { return AppendItem(static_cast<quint32>(v)); }
    /// Appends \a len bytes, which may lie in this buffer. Returns \a len, or 0 with nothing
    /// written when they do not fit or \a data is null. Appending no bytes returns 0 as well.
    unsigned long Append(unsigned char const* data, unsigned long len);

    /// Forgets the content and zero-fills the whole storage, if there is any.
    void Zero();

    /// Drops the first \a nStartPos bytes, moves the rest to the front and zero-fills what that
    /// vacates. Asserts a position within 0 and the used size, the latter taken as signed 32-bit
    /// number; 0 and positions outside change nothing.
    void MoveDataToHead(int nStartPos);

private:
    // The used size exceeds the capacity when a second Create() brought smaller storage.
    bool HasRoom(unsigned long len) const
    {
        return m_dwUsedSize <= m_dwMaxSize && len <= m_dwMaxSize - m_dwUsedSize;
    }

    template <class Item>
    int AppendItem(Item item)
    {
        if (!HasRoom(sizeof item)) {
            return 0;
        }
        std::memcpy(m_pData + m_dwUsedSize, &item, sizeof item);
        m_dwUsedSize += static_cast<quint32>(sizeof item);
        return static_cast<int>(sizeof item);
    }

    quint16 m_wMode;
    quint32 m_dwMaxSize;
    quint32 m_dwUsedSize;
    unsigned char* m_pData;
};
