#include "CStrConvertor.h"

#include "Utf8Unit.h"

#include <cstdint>

namespace
{

// Length of the sequence that `lead` opens, 0 for a byte that opens none. Leads of four-byte
// sequences count among the latter: the decoder knows the Basic Multilingual Plane only.
int SequenceLength(unsigned lead)
{
    if (lead < 0x80) {
        return 1;
    }
    if ((lead & 0xE0) == 0xC0) {
        return 2;
    }
    return (lead & 0xF0) == 0xE0 ? 3 : 0;
}

// Bytes from `p` on that belong to a sequence of `length`, which a terminating zero cuts off.
int AvailableBytes(const unsigned char* p, int length)
{
    int available = 1;
    while (available < length && p[available] != 0) {
        ++available;
    }
    return available;
}

// The count that the capacity is measured against: `steps` steps through the text, each of them
// one character. It stands still at a byte that opens no sequence, which counts nothing, and at
// the terminating zero, which counts once for each step that is left.
int CountCharacters(const unsigned char* p, int steps)
{
    for (int step = 0; step < steps; ++step) {
        const int length = SequenceLength(*p);
        if (length == 0) {
            return step;
        }
        if (*p == 0) {
            return steps;
        }
        p += AvailableBytes(p, length);
    }
    return steps;
}

// Bytes that the terminator cut off count as zero bits.
unsigned DecodeUnit(const unsigned char* p, int length, int available)
{
    if (length == 1) {
        return *p;
    }
    unsigned unit = *p & (length == 2 ? 0x1FU : 0x0FU);
    for (int i = 1; i < length; ++i) {
        unit = unit << 6 | (i < available ? p[i] & 0x3FU : 0U);
    }
    return unit;
}

} // namespace

int CStrConvertor::Unicode2Utf8(char* pDst, int& nDstLen, const wchar_t* pSrc, int nSrcLen)
{
    if (pDst == nullptr || pSrc == nullptr || nSrcLen < 0) {
        return -1;
    }
    const bool alwaysFits = std::int64_t{3} * nSrcLen <= nDstLen;
    if (!alwaysFits && BmpUtf8Size(pSrc, nSrcLen) > nDstLen) {
        return -1;
    }
    char* p = pDst;
    for (int i = 0; i < nSrcLen; ++i) {
        const auto unit = static_cast<std::uint32_t>(pSrc[i]);
        if (unit < 0x80) {
            *p++ = static_cast<char>(unit);
        } else if (unit < 0x10000) {
            p = PutUtf8Unit(p, unit);
        }
    }
    return static_cast<int>(p - pDst);
}

int CStrConvertor::Utf82Unicode(wchar_t* pDst, int nDstLen, char* pSrc, int nSrcLen)
{
    if (pDst == nullptr || pSrc == nullptr || nSrcLen < 0) {
        return -1;
    }
    const auto* p = reinterpret_cast<const unsigned char*>(pSrc);
    // The count never exceeds the number of steps, so it matters only for a smaller capacity.
    if (nDstLen < nSrcLen && nDstLen < CountCharacters(p, nSrcLen)) {
        return -1;
    }
    auto* const bytes = reinterpret_cast<unsigned char*>(pDst);
    const std::int64_t capacity = std::int64_t{2} * nDstLen;
    std::int64_t written = 0;
    while (*p != 0 && written < capacity) {
        const int length = SequenceLength(*p);
        if (length == 0) {
            ++p;
            continue;
        }
        const int available = AvailableBytes(p, length);
        const unsigned unit = DecodeUnit(p, length, available);
        bytes[2 * written] = static_cast<unsigned char>(unit);
        bytes[2 * written + 1] = static_cast<unsigned char>(unit >> 8);
        ++written;
        p += available;
    }
    return static_cast<int>(written);
}
