#pragma once

#include "OrvoExport.h"

/// Low-level conversion between wide text and UTF-8, for the Basic Multilingual Plane: at most
/// three bytes a character. The string classes and CBaseUtil build on it.
///
/// Both routines report every failure (null pointer, negative source length, destination too
/// small) as -1 and then write nothing. Neither writes a terminator. Stateless; any thread.
class ORVO_EXPORT CStrConvertor
{
public:
    /// Encodes \a nSrcLen wide units as UTF-8.
    ///
    /// Units above U+FFFF are dropped and need no room; surrogate values are encoded like any
    /// other unit.
    /// \param nDstLen  capacity of \a pDst in bytes; read, never written.
    /// \return         number of bytes written, or -1.
    static int Unicode2Utf8(char* pDst, int& nDstLen, const wchar_t* pSrc, int nSrcLen);

    /// Decodes zero-terminated UTF-8 into 16-bit units.
    ///
    /// Unit i is written low byte first at byte 2i of \a pDst, although \a pDst is typed as
    /// wide units: two decoded characters share one wide unit. Clients rely on this packed
    /// layout. Bytes above the last unit are left alone, so callers zero \a pDst first.
    ///
    /// Continuation bytes are masked, not validated, and those that the terminator cuts off count
    /// as zero bits. Stray continuation bytes and leads of four-byte sequences are skipped.
    /// \param nDstLen  capacity in characters. It is checked against a count of \a nSrcLen steps.
    ///                 The walk takes a character or a zero byte a step and goes on to
    ///                 \a nSrcLen; the steps that are then missing count 1 each, so a multi-byte
    ///                 text asks for more room than it fills. A byte that is skipped in decoding
    ///                 ends the count.
    ///                 Decoding itself never writes more than 2 x \a nDstLen units, what fits in
    ///                 \a nDstLen wide units.
    /// \param pSrc     text that ends with a zero byte, within or behind \a nSrcLen.
    /// \return         number of 16-bit units written, or -1.
    static int Utf82Unicode(wchar_t* pDst, int nDstLen, char* pSrc, int nSrcLen);
};
