#pragma once

#include <cstdint>

/// \file
/// 32-bit words in byte arrays that need no alignment, for the inner loops of the library: the
/// packing functions of ByteOrder.h and the cipher want them most significant byte first, MD5
/// the other way round. Compilers make one load or store of each.

namespace WordBytes
{

inline std::uint32_t LoadBigEndian(const unsigned char* p)
{
    return std::uint32_t{p[0]} << 24 | std::uint32_t{p[1]} << 16 | std::uint32_t{p[2]} << 8 | p[3];
}

inline void StoreBigEndian(std::uint32_t v, unsigned char* p)
{
    p[0] = static_cast<unsigned char>(v >> 24);
    p[1] = static_cast<unsigned char>(v >> 16);
    p[2] = static_cast<unsigned char>(v >> 8);
    p[3] = static_cast<unsigned char>(v);
}

inline std::uint32_t LoadLittleEndian(const unsigned char* p)
{
    return std::uint32_t{p[3]} << 24 | std::uint32_t{p[2]} << 16 | std::uint32_t{p[1]} << 8 | p[0];
}

inline void StoreLittleEndian(std::uint32_t v, unsigned char* p)
{
    p[0] = static_cast<unsigned char>(v);
    p[1] = static_cast<unsigned char>(v >> 8);
    p[2] = static_cast<unsigned char>(v >> 16);
    p[3] = static_cast<unsigned char>(v >> 24);
}

} // namespace WordBytes
