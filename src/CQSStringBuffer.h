#pragma once

#include "CQSString.h"

#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>
#include <string_view>

/// \file
/// How the byte string's own sources make its buffers: beside the class, which exports all of
/// its members. Internal; not installed.

struct CQSStringBuffer {
    static std::string_view View(const CQSString& s)
    {
        return {s.m_pData, static_cast<std::size_t>(s.m_nLen)};
    }

    /// Room for \a nLen bytes and the terminator, which is set. Null without memory, and where the
    /// room would pass what a 32-bit count can tell.
    static char* New(std::int64_t nLen)
    {
        if (nLen >= INT_MAX) {
            return nullptr;
        }
        const auto length = static_cast<std::size_t>(nLen);
        char* const pFresh = new (std::nothrow) char[length + 1];
        if (pFresh != nullptr) {
            pFresh[length] = '\0';
        }
        return pFresh;
    }

    /// The same, filled with the \a nLen bytes at \a pData.
    static char* NewCopy(const char* pData, std::int64_t nLen)
    {
        char* const pFresh = New(nLen);
        if (pFresh != nullptr) {
            std::memcpy(pFresh, pData, static_cast<std::size_t>(nLen));
        }
        return pFresh;
    }

    /// Replaces the buffer of \a s and returns 1; null empties the string, 0. New buffers are made
    /// before the old one goes: arguments may lie in it, and clients see that the address has
    /// changed.
    static int Adopt(CQSString& s, char* pFresh, std::int64_t nLen)
    {
        delete[] s.m_pData;
        s.m_pData = pFresh;
        s.m_nLen = pFresh != nullptr ? static_cast<int>(nLen) : 0;
        return pFresh != nullptr ? 1 : 0;
    }
};

/// The bytes of a string, zeros included; View() of all strings without its calls.
inline std::string_view View(const CQSString& s)
{
    return CQSStringBuffer::View(s);
}
