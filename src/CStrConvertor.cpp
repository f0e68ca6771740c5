#include "CStrConvertor.h"

#include "Utf8Unit.h"

#include <climits>
#include <cstdint>
#include <cstring>

// Both directions go by blocks, in loops that the compiler turns into vector instructions: ASCII is
// recognised and copied a block at a time, and of other text the encoder lays out a block without
// branches, while the decoder takes four Chinese characters a step.

namespace
{

constexpr std::ptrdiff_t BlockSize = 64;
constexpr std::ptrdiff_t ShortBlockSize = 8;

// Encoding

template <std::ptrdiff_t Size>
std::uint32_t AllBits(const wchar_t* p)
{
    std::uint32_t bits = 0;
    for (std::ptrdiff_t i = 0; i < Size; ++i) {
        bits |= static_cast<std::uint32_t>(p[i]);
    }
    return bits;
}

template <std::ptrdiff_t Size>
char* NarrowAscii(char* out, const wchar_t* p)
{
    for (std::ptrdiff_t i = 0; i < Size; ++i) {
        out[i] = static_cast<char>(p[i]);
    }
    return out + Size;
}

char* EncodeUnits(char* out, const wchar_t* p, const wchar_t* end)
{
    while (p != end) {
        const auto unit = static_cast<std::uint32_t>(*p++);
        if (unit < 0x80) {
            *out++ = static_cast<char>(unit);
        } else if (unit < 0x800) {
            *out++ = static_cast<char>(0xC0 | unit >> 6);
            *out++ = static_cast<char>(0x80 | (unit & 0x3F));
        } else if (unit < 0x10000) {
            *out++ = static_cast<char>(0xE0 | unit >> 12);
            *out++ = static_cast<char>(0x80 | (unit >> 6 & 0x3F));
            *out++ = static_cast<char>(0x80 | (unit & 0x3F));
        }
    }
    return out;
}

// The UTF-8 bytes of `unit`, which is below 0x10000, the first of them in the lowest byte, and
// their number in the highest.
std::int32_t CountedUtf8Bytes(std::int32_t unit)
{
    const std::int32_t three =
        0x38080E0 | unit >> 12 | (unit << 2 & 0x3F00) | (unit << 16 & 0x3F0000);
    const std::int32_t two = (three >> 8 & 0xFFFF) | 0x2000040;
    return unit > 0x7FF ? three : unit > 0x7F ? two : unit | 0x1000000;
}

char* PutCounted(char* out, std::uint32_t bytes)
{
    out[0] = static_cast<char>(bytes);
    out[1] = static_cast<char>(bytes >> 8);
    out[2] = static_cast<char>(bytes >> 16);
    out[3] = static_cast<char>(bytes >> 24);
    return out + (bytes >> 24);
}

// Encodes units below 0x10000 without branches. Each one writes four bytes, and the next ones go
// over those that it does not need: behind these units at least 3 bytes must follow.
template <std::ptrdiff_t Size>
char* EncodeBlock(char* out, const wchar_t* p)
{
    std::int32_t bytes[Size];
    for (std::ptrdiff_t i = 0; i < Size; ++i) {
        bytes[i] = CountedUtf8Bytes(static_cast<std::int32_t>(p[i]));
    }
    for (std::ptrdiff_t i = 0; i < Size; i += 4) {
        for (std::ptrdiff_t j = i; j < i + 4; ++j) {
            out = PutCounted(out, static_cast<std::uint32_t>(bytes[j]));
        }
    }
    return out;
}

// Encodes as many whole blocks as there are with 3 units behind them, and moves `p` there.
template <std::ptrdiff_t Size>
char* EncodeBlocks(char* out, const wchar_t*& p, const wchar_t* end)
{
    for (; end - p >= Size + 3; p += Size) {
        const std::uint32_t allBits = AllBits<Size>(p);
        if (allBits < 0x80) {
            out = NarrowAscii<Size>(out, p);
        } else if ((allBits | AllBits<3>(p + Size)) < 0x10000) {
            out = EncodeBlock<Size>(out, p);
        } else {
            out = EncodeUnits(out, p, p + Size);
        }
    }
    return out;
}

char* Encode(char* out, const wchar_t* p, const wchar_t* end)
{
    out = EncodeBlocks<BlockSize>(out, p, end);
    out = EncodeBlocks<ShortBlockSize>(out, p, end);
    return EncodeUnits(out, p, end);
}

// Decoding

// The count that the capacity is measured against: `nSrcLen` steps, each of them one character
// or a zero byte. It stands still at a byte that opens no sequence, which counts nothing; steps
// that are left at the end of the source count 1 each.
int CountSteps(const unsigned char* p, int nSrcLen)
{
    int steps = 0;
    for (std::int64_t at = 0; at < nSrcLen; ++steps) {
        const int length = BmpSequenceLength(p[at]);
        if (length == 0) {
            return steps;
        }
        at += length;
    }
    return nSrcLen;
}

unsigned char* PutUnit(unsigned char* out, unsigned unit)
{
    out[0] = static_cast<unsigned char>(unit);
    out[1] = static_cast<unsigned char>(unit >> 8);
    return out + 2;
}

// Reads all before it writes: what might lie in the output would keep the bytes from being
// widened together.
template <std::ptrdiff_t Size>
unsigned char* WidenAscii(unsigned char* out, const unsigned char* p)
{
    unsigned char bytes[Size];
    std::memcpy(bytes, p, Size);
    for (std::ptrdiff_t i = 0; i < Size; ++i) {
        PutUnit(out + 2 * i, bytes[i]);
    }
    return out + 2 * Size;
}

bool IsTripleLead(unsigned char lead)
{
    return (lead & 0xF0) == 0xE0;
}

unsigned char* DecodeTriple(unsigned char* out, const unsigned char* p)
{
    return PutUnit(out, (p[0] & 0x0FU) << 12 | (p[1] & 0x3FU) << 6 | (p[2] & 0x3FU));
}

// Decodes what begins at `p` and lies before `end`, at least one byte, and moves `p` behind it.
// Continuation bytes are masked, not checked, and count as zero bits behind the end.
unsigned char* DecodeUnit(unsigned char* out, const unsigned char*& p, const unsigned char* end)
{
    const unsigned char lead = *p++;
    if (lead < 0x80) {
        return PutUnit(out, lead);
    }
    const int length = BmpSequenceLength(lead);
    if (length == 0) {
        return out;
    }
    unsigned unit = lead & (length == 2 ? 0x1FU : 0x0FU);
    for (int i = 1; i < length; ++i) {
        unit = unit << 6 | (p < end ? *p++ & 0x3FU : 0U);
    }
    return PutUnit(out, unit);
}

// Decodes what begins before `last`; the bytes behind it that belong to it are there.
unsigned char* DecodeUpTo(const unsigned char* last, unsigned char* out, const unsigned char*& next)
{
    const unsigned char* p = next;
    while (p < last) {
        if (*p < 0x80) {
            do {
                out = PutUnit(out, *p++);
            } while (p < last && *p < 0x80);
        } else if (IsTripleLead(*p)) {
            if (last - p > 9 && IsTripleLead(p[3]) && IsTripleLead(p[6]) && IsTripleLead(p[9])) {
                for (int i = 0; i < 4; ++i) {
                    out = DecodeTriple(out, p + 3 * i);
                }
                p += 12;
            } else {
                out = DecodeTriple(out, p);
                p += 3;
            }
        } else if (BmpSequenceLength(*p) == 2) {
            out = PutUnit(out, (*p & 0x1FU) << 6 | (p[1] & 0x3FU));
            p += 2;
        } else {
            ++p;
        }
    }
    next = p;
    return out;
}

// Decodes up to `end` or as long as there is room, and returns the place behind the last unit.
unsigned char* Decode(unsigned char* out, const unsigned char* outEnd, const unsigned char* p,
                      const unsigned char* end)
{
    // A block never makes more units than it has bytes.
    while (end - p >= 3 && outEnd - out >= 2 * std::min(end - p, BlockSize)) {
        if (end - p >= BlockSize && IsAscii<BlockSize>(p)) {
            out = WidenAscii<BlockSize>(out, p);
            p += BlockSize;
        } else if (end - p >= ShortBlockSize && IsAscii<ShortBlockSize>(p)) {
            out = WidenAscii<ShortBlockSize>(out, p);
            p += ShortBlockSize;
        } else {
            out = DecodeUpTo(p + std::min(end - p, BlockSize) - 2, out, p);
        }
    }
    while (p != end && out != outEnd) {
        out = DecodeUnit(out, p, end);
    }
    return out;
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
    return static_cast<int>(Encode(pDst, pSrc, pSrc + nSrcLen) - pDst);
}

int CStrConvertor::Utf82Unicode(wchar_t* pDst, int nDstLen, char* pSrc, int nSrcLen)
{
    if (pDst == nullptr || pSrc == nullptr || nSrcLen < 0) {
        return -1;
    }
    const auto* const text = reinterpret_cast<const unsigned char*>(pSrc);
    // The count never exceeds the number of steps, so it matters only for a smaller capacity.
    if (nDstLen < nSrcLen && nDstLen < CountSteps(text, nSrcLen)) {
        return -1;
    }
    auto* const out = reinterpret_cast<unsigned char*>(pDst);
    const unsigned char* const end = text + std::strlen(pSrc);
    const std::int64_t capacity = std::int64_t{2} * std::max(nDstLen, 0);
    // Only a text beyond 2 GiB can hold more units than the result can tell.
    if (end - text > INT_MAX && std::min(CountBmpUnits(text, end), capacity) > INT_MAX) {
        return -1;
    }
    return static_cast<int>((Decode(out, out + 2 * capacity, text, end) - out) / 2);
}
