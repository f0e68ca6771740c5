#pragma once

#include "CQWString.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <memory>
#include <new>

/// \file
/// Internal; not installed.

/// The storage of the wide string, for its own sources: apart from the class, so that none of it
/// is exported. Lengths and capacities count units.
struct WideStore {
    using Units = std::unique_ptr<wchar_t[]>;

    // A buffer has to fit a 32-bit host, so that every host refuses the same lengths.
    static constexpr qint64 MaxCapacity = INT_MAX / sizeof(wchar_t) - 1;

    /// A buffer, zero from \a nFilled on to the terminator: what the caller fills need not be
    /// zeroed first. Null without memory. The array form of new is called by its name because a
    /// 32-bit host's new-expression throws for the greatest sizes.
    static Units New(qint64 nCapacity, qint64 nFilled)
    {
        if (nCapacity > MaxCapacity) {
            return nullptr;
        }
        const std::size_t nSize = (static_cast<std::size_t>(nCapacity) + 1) * sizeof(wchar_t);
        auto* const pUnits = static_cast<wchar_t*>(::operator new[](nSize, std::nothrow));
        if (pUnits != nullptr) {
            std::fill(pUnits + nFilled, pUnits + nCapacity, L'\0');
            pUnits[nCapacity] = L'\0'; // an exact buffer needs no call
        }
        return Units(pUnits);
    }

    /// The first buffer is exact, later ones keep a reserve.
    static qint64 CapacityFor(const CQWString& s, qint64 nLen)
    {
        if (s.m_nMAXLen == 0) {
            return nLen;
        }
        return nLen <= 512 ? nLen * 2 : nLen + 512;
    }

    /// Gives the string another buffer, or none without memory, and returns the old one.
    static Units Exchange(CQWString& s, Units fresh, qint64 nCapacity, int nLen)
    {
        Units replaced(s.m_pData);
        s.m_pData = fresh.release();
        s.m_nMAXLen = s.m_pData == nullptr ? 0 : static_cast<int>(nCapacity);
        s.m_nDataLen = s.m_pData == nullptr ? 0 : nLen;
        return replaced;
    }

    /// Makes room for \a nLen units, at least one, carries the first \a nKeep over, and counts on
    /// the caller to fill \a nFilled. A replaced buffer goes to the caller, so that an argument
    /// that lies in it outlives the growth. False without memory; the string then has no buffer.
    static bool MakeRoom(CQWString& s, qint64 nLen, int nKeep, qint64 nFilled, Units& replaced)
    {
        if (nLen <= s.m_nMAXLen) {
            return true;
        }
        const qint64 nCapacity = CapacityFor(s, nLen);
        replaced = Exchange(s, New(nCapacity, nFilled), nCapacity, nKeep);
        if (s.m_pData != nullptr && nKeep > 0) {
            std::memcpy(s.m_pData, replaced.get(),
                        static_cast<std::size_t>(nKeep) * sizeof(wchar_t));
        }
        return s.m_pData != nullptr;
    }

    /// Puts units, which may lie at any alignment and in the own buffer, behind the first
    /// \a nKeep. 0 without memory.
    static int Put(CQWString& s, int nKeep, const void* pUnits, qint64 nLen)
    {
        Units replaced;
        const qint64 nNewLen = nKeep + nLen;
        if (!MakeRoom(s, nNewLen, nKeep, nNewLen, replaced)) {
            return 0;
        }
        // There is a buffer now. NOLINTNEXTLINE(clang-analyzer-core.NonNullParamChecker)
        std::memmove(s.m_pData + nKeep, pUnits, static_cast<std::size_t>(nLen) * sizeof(wchar_t));
        End(s, static_cast<int>(nNewLen));
        return 1;
    }

    static int Set(CQWString& s, const void* pUnits, qint64 nLen)
    {
        return Put(s, 0, pUnits, nLen);
    }

    /// Counted data is text all the same: it ends at its first zero unit.
    static int SetCut(CQWString& s, const void* pUnits, int nLen)
    {
        if (pUnits == nullptr || nLen < 1 || Set(s, pUnits, nLen) == 0) {
            return 0;
        }
        s.m_nDataLen = CQWString::SafeStrlen(s.m_pData);
        return 1;
    }

    static void End(CQWString& s, int nLen)
    {
        s.m_nDataLen = nLen;
        s.m_pData[nLen] = 0;
    }

    /// For operations that write over units of the string.
    static wchar_t* Data(CQWString& s) { return s.m_pData; }
    static int Capacity(const CQWString& s) { return s.m_nMAXLen; }
};
